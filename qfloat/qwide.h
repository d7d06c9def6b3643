// SPDX-License-Identifier: MIT
//
// Private to qfloat/: the second way of the elementary functions, floating point of any width.
//
// The first way works with 384 bits and a proven bound; where the bits behind the 352 do not tell to which
// side of the midpoint between two numbers the true value belongs, it is computed once more here, and with
// twice as many limbs each time until it is clear (decided()). Speed matters little here, so there is one
// plain series for each family and no table: nothing of the first way's tables and proven bounds, which hold
// for its six limbs alone, decides here too. No width that is known when this is compiled would be enough for
// every argument, so the width is a number of the run and doubling it always ends.
//
// Errors. With n limbs let u = 2^(2 - 64 n). Sums of two numbers of one sign and products have a relative
// error below u, quotients by a limb 2 u, quotients and roots 8 u; a difference loses u times the larger
// operand. The functions add up at most 2^12 terms at 14 limbs, cancel at most four bits and magnify an
// error by 2^15 (the exponential's argument) and 2^8 (its squarings): the result is right to 2^(60 - 64 n)
// relative, and doubling the limbs doubles the terms. decided() gives the whole lowest limb away for that.
#pragma once

#include "qlimb.h"

#include <functional>
#include <vector>

namespace wide {

using limb::Extended;

// The width that almost every call needs, in limbs: numbers of 352 bits seldom agree in 832.
constexpr size_t FIRST_WIDTH = 14;

// 0.m * 2^exponent with the mantissa m in limbs, least significant first; the top bit is set, or all bits are
// zero for zero. Operands of one operation have the same width.
struct Wide {
    std::vector<uint64_t> limb;
    int64_t exponent;
    bool negative;

    // Exactly these values, for a width of at least six limbs; q is a stored number that is not zero.
    Wide(int64_t whole, size_t width);
    static Wide OfDouble(double value, size_t width);
    static Wide Of(const uint32_t* q, size_t width);
    static Wide OfMagnitude(const uint32_t* q, size_t width);

    size_t Width() const { return limb.size(); }
    bool IsZero() const { return limb.back() == 0; }
    double MantissaAsDouble() const; // 1/2 .. 1, or 0
    Wide Resized(size_t width) const;
};

Wide operator+(const Wide& x, const Wide& y);
Wide operator-(const Wide& x, const Wide& y);
Wide operator*(const Wide& x, const Wide& y);
Wide operator/(const Wide& x, const Wide& y); // y is not zero
Wide operator/(const Wide& x, uint64_t y);
Wide operator-(Wide x);
Wide timesPowerOfTwo(Wide x, int64_t n);
Wide sqrt(const Wide& x); // x > 0

// -1, 0, 1 as |x| < |y|, |x| = |y|, |x| > |y|.
int compareMagnitudes(const Wide& x, const Wide& y);

// The whole number nearest to x >= 0 (halves go up), and its two lowest bits.
Wide nearestWhole(const Wide& x);
unsigned lowBits(const Wide& whole);

struct SineCosine {
    Wide sine, cosine;
};

Wide pi(size_t width);
Wide exp(const Wide& x);                       // |x| < 2^20
Wide log(const Wide& x);                       // x > 0 with at most 352 bits
Wide power(const Wide& x, const Wide& y);      // x > 0, |y ln x| < 2^20
SineCosine circular(const Wide& x);            // x > 0 radians with at most 352 bits
SineCosine circularOfDegrees(const Wide& x);   // 0 < x <= 360 degrees with at most 352 bits
SineCosine hyperbolic(const Wide& x);          // 0 < x < 2^20
Wide arctangent(const Wide& n, const Wide& d); // arctan(n / d) for n, d > 0
Wide cosineOfArcsine(const Wide& a);           // the root of 1 - a^2, 0 < a < 1

// The leading 384 bits, cut, of a value that is computed with more and more limbs until it is clear to which
// 352-bit number it rounds. The value must not be a midpoint between two numbers.
Extended decided(const std::function<Wide(size_t width)>& value);

// The leading 384 bits of x, cut.
Extended leading(const Wide& x);

// How often decided() has run; tests and bench/ read it.
extern uint64_t decisions;

} // namespace wide
