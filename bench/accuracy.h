// SPDX-License-Identifier: MIT
//
// The error of each function in units of the last place, against MPFR at 700 bits: a table of rows, one per
// function and kind of argument.  A file of rows (accuracy_*.cpp) has one static accuracy::Rows object.
#ifndef TALLYQUILL_BENCH_ACCURACY_H
#define TALLYQUILL_BENCH_ACCURACY_H

#include "qfloat.h"

#include <mpfr.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>

namespace accuracy {

constexpr mpfr_prec_t PRECISION = 700;

class Random {
public:
    explicit Random(uint64_t seed) : engine(seed) {}
    uint64_t Next() { return engine(); }
    int64_t Between(int64_t low, int64_t high) {
        return low + static_cast<int64_t>(engine() % (static_cast<uint64_t>(high - low) + 1));
    }

private:
    std::mt19937_64 engine;
};

// Dense random mantissa, value 0.m * 2^e with e in lowest .. highest, either sign unless positive.
void drawNumber(Random& random, int64_t lowest, int64_t highest, bool positive, qfloat q);

// q = the number nearest to m, m = q (exact).
void fromMpfr(mpfr_srcptr m, qfloat q);
void toMpfr(const qfloat q, mpfr_ptr m);

// Functions of one argument ignore y.
struct Row {
    std::string function;  // "qexp"
    std::string arguments; // what is drawn: "|x| < 20"
    long count;            // how many
    std::function<void(Random&, qfloat x, qfloat y)> draw;
    std::function<void(const qfloat x, const qfloat y, qfloat z)> ours;
    std::function<void(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y)> truth;
    bool absolute = false; // measure in units of 2^-352 instead of the last place
};

// Adds a row.
void add(const Row& row);

struct Rows {
    explicit Rows(void (*addAll)()) { addAll(); }
};

} // namespace accuracy

#endif
