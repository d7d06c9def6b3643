// SPDX-License-Identifier: MIT
//
// Private to qfloat/: what the circular, inverse and hyperbolic functions share.
//
// One unit of the last place of a stored number is at least 2^31 units of an Extended mantissa, so errors of
// a few hundred of those shift the rounding boundary by less than 2^-20 units of the last place.
#pragma once

#include "qregister.h"
#include "qtables.h"

namespace trig {

using limb::Extended;

inline uint32_t signWord(bool negative) {
    return negative ? NEGATIVE_SIGN : 0;
}

// |q| into x; false for a zero, whose mantissa or exponent word is zero.
bool loadMagnitude(const uint32_t* q, Extended& x);

// y = 0 with the given sign word, or pi * 2^-halvings with it.
void storeZero(uint32_t sign, uint32_t* y);
void storePi(int halvings, uint32_t sign, uint32_t* y);

// An angle x = (quadrant + 4n) * pi/2 + r, |r| <= pi/4: r as sign and magnitude.
struct Reduced {
    Extended magnitude;
    bool negative;
    unsigned quadrant; // 0 .. 3
};

// Reduces x > 0, x.exponent <= 2^15. The magnitude is within 2^-379 of the true one, relative to itself,
// however close x comes to a multiple of pi/2.
Reduced reduceAngle(const Extended& x);

// An angle of x > 0 degrees = (quadrant + 4n) * 90 + d, |d| <= 45, reduced exactly: d in radians as sign and
// magnitude, within 2^-379; an all-zero mantissa for a multiple of 90.
Reduced reduceDegrees(const uint32_t* x);

// rest = the remainder of |x| by 360, exactly.
void remainderOfTurn(const uint32_t* x, uint32_t* rest);

// s = sin r and c = cos r for 0 < r < 0.79, within 2^-379 relative.
void sine(const Extended& r, Extended& s);
void cosine(const Extended& r, Extended& c);

// y = the square root of (1 - a)(1 + a), 0 < a < 1: within 2^-378 relative; for a <= 0.71 within 1.8 *
// 2^-379.
void cosineOfArcsine(const Extended& a, Extended& y);

// Both for r = n * 2^-32 with 0 < n < 0.79 * 2^32: r squared is a single limb, which takes a third of
// the time.
void sinCosShort(uint64_t n, Extended& s, Extended& c);

// s = sinh x and c = cosh x for 0 < x < 0.79, within 2^-379 relative.
void sinhCoshSeries(const Extended& x, Extended& s, Extended& c);

// y = arctan(n / d) for n, d > 0, within 2^-376 relative.
void arctangent(const Extended& n, const Extended& d, Extended& y);

} // namespace trig
