// SPDX-License-Identifier: MIT
//
// The routines of qlimb.h as they are where the compiler has no 128-bit integers.
#pragma once

#include <cstdint>

namespace portable_limb {

uint64_t multiply(uint64_t x, uint64_t y, uint64_t& high);
uint64_t addCarry(uint64_t x, uint64_t y, uint64_t& carry);
uint64_t subtractBorrow(uint64_t x, uint64_t y, uint64_t& borrow);
uint64_t divideWide(uint64_t high, uint64_t low, uint64_t d, uint64_t& remainder);
void multiply(const uint64_t* x, const uint64_t* y, uint64_t* z);
void square(const uint64_t* x, uint64_t* z);
void divide(const uint64_t* x, const uint64_t* y, uint64_t* z);
void shiftDown(uint64_t* x, int n);
void shiftUp(uint64_t* x, int n);

} // namespace portable_limb
