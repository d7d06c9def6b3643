// SPDX-License-Identifier: MIT
//
// The limb arithmetic once more, built without 128-bit integers, for test_limb.cpp to compare.
#define TALLYQUILL_NO_INT128 1
#include "../../qfloat/qlimb.cpp"

#include "portable_limb.h"

// Only powers of ten read the table; they are not part of the comparison.
const limb::Extended limb::portable::TENS[14] = {};

namespace portable_limb {

uint64_t multiply(uint64_t x, uint64_t y, uint64_t& high) {
    return limb::multiply(x, y, high);
}
uint64_t addCarry(uint64_t x, uint64_t y, uint64_t& carry) {
    return limb::addCarry(x, y, carry);
}
uint64_t subtractBorrow(uint64_t x, uint64_t y, uint64_t& borrow) {
    return limb::subtractBorrow(x, y, borrow);
}
uint64_t divideWide(uint64_t high, uint64_t low, uint64_t d, uint64_t& remainder) {
    return limb::divideWide(high, low, d, remainder);
}
void multiply(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    limb::multiply(x, y, z);
}
void square(const uint64_t* x, uint64_t* z) {
    limb::square(x, z);
}
void divide(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    limb::divide(x, y, z);
}
void shiftDown(uint64_t* x, int n) {
    limb::shiftDown(x, n);
}
void shiftUp(uint64_t* x, int n) {
    limb::shiftUp(x, n);
}

} // namespace portable_limb
