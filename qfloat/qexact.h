// SPDX-License-Identifier: MIT
//
// Private to qfloat/: how a result of 384 bits, known with a small error, is made one that rounds to 352 bits
// as the true value does.
//
// Rounding half up asks one thing of a normalized result: whether its last 32 bits reach the half, 2^31. An
// error of a few units of the last limb leaves that open only within those few units of the half. Whole
// numbers then tell exactly whether the true value reaches it: for products, quotients, roots and decimal
// numbers there is such a comparison, and hence an end.
#pragma once

#include "qlimb.h"

namespace limb {

// How often whole numbers have decided; tests and bench/ read it.
extern uint64_t comparisons;

// Makes z, normalized, which differs from a true value t by at most `error` units of the last limb (error <
// 2^30), round as t. isAtMost(c) tells exactly whether c <= t; it is asked only where z lies that near to a
// half c, a random z once in 2^31 / error times. With c <= t the rounding is up: a t half way goes away from
// zero.
template <class Test> inline void settleByComparison(uint64_t* z, uint32_t error, Test isAtMost) {
    constexpr uint32_t HALF = uint32_t{1} << 31;
    const auto guard = static_cast<uint32_t>(z[0]);
    if (guard + error - HALF > 2 * error) return;
    ++comparisons;
    z[0] = z[0] - guard + HALF;
    if (!isAtMost(z)) --z[0];
}

// The upper six limbs of x * y as multiply gives them, but rounding as the true product does, also after a
// shift up by one bit.
void multiplyExactly(const uint64_t* x, const uint64_t* y, uint64_t* z);

// The quotient as divide gives it, for y / 2 <= x < y and y normalized, but rounding as the true one does.
void divideExactly(const uint64_t* x, const uint64_t* y, uint64_t* z);

// x = x * 10^n as scaleTen gives it, but rounding as the true value does; |n| < 32768.
void scaleTenExactly(Extended& x, int n);

// -1, 0, 1 as x * y is below, equal to or above z * 2^384, exactly.
int compareProduct(const uint64_t* x, const uint64_t* y, const uint64_t* z);

// -1, 0, 1 as x * 10^n is below, equal to or above y, exactly, for normalized x and y and |n| < 32768.
// The time grows with n^2: 0.1 ms for n = 10000.
int compareScaledTen(const Extended& x, int n, const Extended& y);

} // namespace limb
