// SPDX-License-Identifier: MIT
//
// Private to qfloat/: how a result of 384 bits, known with a small error, is made one that rounds to 352 bits
// as the true value does.
//
// Rounding reads the bits of the result down to 2^31 units of the last limb.  An error of a few units changes
// them only where a multiple of 2^31 lies between the result and the true value t.  Whole numbers then tell
// exactly on which side t lies; that there is a true value which they can tell, and hence an end, is what
// makes products, quotients, roots and decimal numbers simpler than the elementary functions.
#pragma once

#include "qlimb.h"

namespace limb {

// Results are settled at the multiples of 2^28 units, for those whose normalising still takes up to three
// bits.
constexpr uint64_t SETTLED_UNIT = uint64_t{1} << 28;

// Moves z so that floor(z / 2^28) = floor(t / 2^28), both in units of the last limb, for a true value t that
// differs from z by at most `error` units, error < 2^26.  isAtMost(c) tells exactly whether c <= t; it is
// asked only where z lies that near to a multiple c of 2^28 (a random z once in 2^27 / error times). The
// half-up rounding of z is then that of t: both have the same bits above 2^28, and t's own bit of 2^31, of
// 2^30, ... (where z is still shifted up) is the one that decides, ties included.
template <class Test> inline void settle(uint64_t* z, uint64_t error, Test isAtMost) {
    if (((z[0] + error) & (SETTLED_UNIT - 1)) > 2 * error) return;
    uint64_t c[COUNT] = {error};
    if (add(z, c) != 0) return; // t is next to 2^384, to which z rounds, too
    c[0] &= ~(SETTLED_UNIT - 1);
    copy(c, z);
    if (isAtMost(c)) return;
    const uint64_t one[COUNT] = {1};
    subtract(one, z);
}

// The upper six limbs of x * y as multiply gives them, but with the true product's bits from 2^28 units on.
void multiplyExactly(const uint64_t* x, const uint64_t* y, uint64_t* z);

// The quotient as divide gives it, for x < y and y normalised, but with the true one's bits from 2^28 units
// on.
void divideExactly(const uint64_t* x, const uint64_t* y, uint64_t* z);

// -1, 0, 1 as x * y is below, equal to or above z * 2^384, exactly.
int compareProduct(const uint64_t* x, const uint64_t* y, const uint64_t* z);

// -1, 0, 1 as x * 10^n is below, equal to or above y, exactly, for normalised x and y and |n| < 32768.
// The time grows with n^2: 0.1 ms for n = 10000.
int compareScaledTen(const Extended& x, int n, const Extended& y);

} // namespace limb
