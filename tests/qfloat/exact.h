// SPDX-License-Identifier: MIT
//
// The functions whose results are the numbers nearest to the true values, MPFR beside each, and arguments for
// them: random ones and hard ones.  The tests and bench/accuracy share this.
#pragma once

#include "qfloat.h"
#include "real.h"

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace exact {

using oracle::Number;
using Engine = std::mt19937_64;

struct Arguments {
    Number x, y; // y stays zero where there is one argument
};

// Exponents that an argument is drawn from: 2^(lowest - 1) <= |x| < 2^highest.
struct Range {
    int64_t lowest, highest;
    bool isPositive;
};

struct Function {
    std::string name;
    std::function<void(const qfloat x, const qfloat y, qfloat z)> ours;
    std::function<void(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y, mpfr_rnd_t)> truth;
    Range whole, usual;      // of x
    Range second;            // of y; lowest > highest where there is none
    bool isSecondWhole;      // y is a whole number
    bool isSpecialNextToOne; // rather than next to 0
};

const std::vector<Function>& functions();

// Random arguments over the whole range: dense, sparse, short ones, all beside short ones.
Arguments randomArguments(const Function& f, Engine& engine);

// Hard ones: values that continued fractions bring to about 2^-100 units from a midpoint; numbers whose
// value is that of a midpoint, rounded; numbers next to 0 or 1; neighbors of constants and powers of two.
Arguments hardArguments(const Function& f, Engine& engine);

enum class Verdict { Right, Wrong, OutOfRange };

// Compares ours with the true value rounded to nearest, ties away from 0.  OutOfRange where that is no number
// of the format with an exponent word in 1 .. 0xFFFF.
Verdict judge(const Function& f, const Arguments& a);

// "x = ..., y = ..., gives ..., not ...": the words of the numbers.
std::string describe(const Function& f, const Arguments& a);

} // namespace exact
