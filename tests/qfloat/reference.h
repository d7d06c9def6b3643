// SPDX-License-Identifier: MIT
//
// The elementary functions a second time, by the plain textbook algorithms over the public arithmetic:
// Newton's square root, tanh's continued fraction for e^x, the artanh series for ln, squaring with a rounding
// at every step.  They have the special values, codes and branch points that the library must have; their
// accuracy is what the library must at least reach.
#pragma once

#include "oracle.h"

#include "qfloat.h"

namespace reference {

void integer(int64_t n, qfloat q); // q is n
void squareRoot(const qfloat x, qfloat y);
void exponential(const qfloat x, qfloat y);
void logarithm(const qfloat x, qfloat y);
void power(const qfloat x, const qfloat y, qfloat z);
void integerPower(const qfloat x, const qfloat y, qfloat z);
void factorial(const qfloat x, qfloat y);

} // namespace reference

namespace oracle {

// What a routine leaves behind.
struct Outcome {
    Number value;
    int code; // merror, cleared before the call
};

bool operator==(const Outcome& a, const Outcome& b);
std::ostream& operator<<(std::ostream& out, const Outcome& o);

using Unary = void (*)(const qfloat, qfloat);
using Binary = void (*)(const qfloat, const qfloat, qfloat);

// Calls the routine with a separate output, then with the output in the place of each input; the test fails
// unless all agree.  The output arrays are full of other values; their sign word is 0.
Outcome run(Unary routine, const Number& x);
Outcome run(Binary routine, const Number& a, const Number& b);

// The number q of a double, a decimal text's nearest number, and q moved by `units` of the last place.
Number number(double d);
Number neighbor(const Number& q, int units);
Number negated(Number q);

// A dense or patterned mantissa, value 0.m * 2^e with e in low .. high.
Number randomWithin(Random& random, int64_t low, int64_t high, bool positive);

} // namespace oracle
