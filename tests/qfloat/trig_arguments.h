// SPDX-License-Identifier: MIT
//
// The functions under test with their oracles, and arguments for them: random ones and hard ones.
#pragma once

#include "oracle.h"
#include "qfloat.h"

#include <ostream>
#include <vector>

namespace trigtest {

using oracle::Number;

enum class Symmetry { Odd, Even, None };

struct Function {
    const char* name;
    void (*ours)(const qfloat, qfloat);
    void (*reference)(const qfloat, qfloat);
    int (*exact)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
    Symmetry symmetry;
    int64_t lowest, usual, highest; // exponents: arguments below 2^usual are the everyday ones
};

// For GoogleTest's messages.
void printTo(const Function& f, std::ostream* out);

extern const Function FUNCTIONS[9]; // sin cos tan atan asin acos sinh cosh tanh
const Function& find(const char* name);

// f(x), with merror = 0 before.
Number valueOf(const Function& f, const Number& x);

// An argument within the range where f is computed.
Number randomArgument(oracle::Random& random, const Function& f);

// The numbers nearest to the value, a few units of the last place to either side of it and their negatives,
// as far as they are within the range of f.
void addAround(const Function& f, const oracle::Real& value, std::vector<Number>& list);

// Arguments next to the points where a method may change or a function has a zero, a pole or an extreme, and
// at the ends of the range.
std::vector<Number> branchArguments(const Function& f);

// Numbers next to random multiples of pi/2 with exponents up to `highest`.
std::vector<Number> nearMultiples(oracle::Random& random, const Function& f, int n, int64_t highest);

// For each exponent, the numbers m * 2^scale, m < 2^352, that come closest to a multiple of pi/2.
std::vector<Number> closestToMultiples(const Function& f, int64_t lowestScale, int64_t highestScale,
                                       int64_t step);

} // namespace trigtest
