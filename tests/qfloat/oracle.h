// SPDX-License-Identifier: MIT
//
// What the number type is tested against: exact values in MPFR and GMP, and random operands.
#pragma once

#include "../seed.h"
#include "real.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace oracle {

using Register = std::array<uint32_t, 15>; // a working register

constexpr int64_t OVERFLOW_EXPONENT = 0x10000;

// How far a rounded result may be from the true value, in units of the last place: what is cut below the
// guard word shifts the rounding boundary by much less than this excess over one half.
constexpr double ALMOST_HALF = 0.5000001;

class Random {
public:
    explicit Random(uint64_t salt) : engine(testSeed() + salt) {}
    uint64_t Next() { return engine(); }
    uint32_t Word() { return static_cast<uint32_t>(engine() >> 32); }
    int64_t Between(int64_t low, int64_t high) {
        return low + static_cast<int64_t>(engine() % (static_cast<uint64_t>(high - low) + 1));
    }
    bool Chance(int percent) { return Between(1, 100) <= percent; }

private:
    std::mt19937_64 engine;
};

// A test that draws random operands.  The salt is the test's name, so that each test draws its own numbers
// in any order of execution.
class Seeded : public ::testing::Test {
protected:
    Seeded();
    Random random;

private:
    ::testing::ScopedTrace trace;
};

// Rounds to the nearest, ties to even; the value is not zero.
Rounded roundToEven(const Real& value);

Number overflowValue(uint32_t sign);

// The number that equals the value exactly (the test fails when there is none in range).
Number exactly(const Real& value);

// What multiply, divide and their like give for a rounded value: the overflow value and code 3 for an
// exponent above 0x10000, zero without a code for one below 1.  `code` is left alone otherwise.
Number withinRange(const Rounded& value, int& code);

// |got - exact| in units of the last place of a 352-bit number of exact's size.
double errorInUlps(const Number& got, const Real& exact);

// Number from a text of the form [-]<hexadecimal integer>, scaled by 2^exponent; for hand-written cases.
Number scaled(const std::string& hexInteger, int64_t exponent);
// The number nearest to a decimal text (half up), by MPFR.
Number decimal(const std::string& text);
// The words as text, for failure messages.
std::string show(const Number& q);
std::string show(const Register& r);

// Random operands: dense, sparse, one-word, short, long runs of equal bits, all ones; exponents around one,
// anywhere, at the ends of the range; zeros; the overflow value; both signs.
Number randomMantissa(Random& random);
int64_t randomExponent(Random& random);
Number randomOperand(Random& random);
// A second operand: independent of a, of similar size, equal to a or its negative, or so close to it that
// their difference is a few thousand units of the last place.
Number randomPartner(Random& random, const Number& a);

} // namespace oracle
