// SPDX-License-Identifier: MIT
//
// Private to qfloat/: square root, exponential and logarithm of Extended values, for the routines that round
// once at the end. The arguments are magnitudes; signs are passed and returned beside them. An Extended
// with an all-zero mantissa is zero, whatever its exponent. Outputs may be inputs. Nothing sets merror.
#pragma once

#include "qlimb.h"

namespace elem {

using limb::Extended;

// y = e^x, or e^-x when `negative`, for 0 <= x < 2^20. Relative error below 2^-377 plus x's own error.
void exp(const Extended& x, bool negative, Extended& y);
constexpr uint32_t EXP_UNITS = 1 << 7; // of the last of the 384 bits

// y = |ln x| for x > 0; returns true when ln x is negative. Relative error below 2^-373, also next to 1. For
// an x of 352 bits it is below 2^-377 where |ln x| is below 2^-5 or above 1, and 2^-377 absolutely between.
// ln 1 is an all-zero mantissa.
bool log(const Extended& x, Extended& y);
constexpr uint32_t LOG_UNITS = 1 << 11;

// y = the square root of x. Relative error below 2^-379.
void sqrt(const Extended& x, Extended& y);

// s = e^r - 1 for 0 <= r < ln 2, both binary fractions of six limbs (value = limbs / 2^384).
// Error below 64 units of the last limb.
void expFraction(const uint64_t* r, uint64_t* s);

// x = 1 + f for the fraction f of six limbs that x.limb holds.
inline void onePlus(Extended& x) {
    limb::shiftDown(x.limb, 1);
    x.limb[limb::COUNT - 1] |= limb::TOP_BIT;
    x.exponent = 1;
}

// Whether x is zero.
inline bool isZero(const Extended& x) {
    return limb::isZero(x.limb);
}

// q = x with the given sign word, rounded half up to 352 bits, where an exponent word of 0x10000 may still be
// stored with its mantissa, as products and quotients may. Above: the overflow value and merror = 3; below
// 1: 0 without a code.
void store(const Extended& x, uint32_t sign, uint32_t* q);

} // namespace elem
