// SPDX-License-Identifier: MIT
//
// Speed as ratios: each row times one of our routines and its peer on the same operands in the same run
// (interleaved at random) and prints ours / peer.  A bar is what a release must not exceed; it is printed
// beside the ratio and never asserted, because the machine may be busy.
#pragma once

#include "qfloat.h"

#include <mpfr.h>

#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace bench {

// Adds a row.  `ours` and `peer` do the operation once on operand number i (0 .. operandCount - 1).
void addRow(const std::string& name, double bar, std::function<void(size_t i)> ours,
            std::function<void(size_t i)> peer);

constexpr size_t OPERAND_COUNT = 256;
constexpr mpfr_prec_t PRECISION = 352;

// A list of operands in both forms.
class Operands {
public:
    // Dense random mantissas, random signs unless positive, exponents lowest .. highest (value 0.m * 2^e).
    Operands(unsigned seed, int lowest, int highest, bool positive = false);
    ~Operands();
    Operands(const Operands&) = delete;
    Operands& operator=(const Operands&) = delete;

    uint32_t* Ours(size_t i) { return &numbers[i * 14]; }
    mpfr_ptr Peer(size_t i) { return &peers[i]; }

private:
    std::vector<uint32_t> numbers;
    std::vector<__mpfr_struct> peers;
};

// m = q at the precision of m (exact at 352 bits).
void toPeer(const qfloat q, mpfr_ptr m);

// Each *_bench.cpp has one static object of this type; main calls `add` of all of them, which adds the rows.
struct RowGroup {
    explicit RowGroup(void (*add)());
};

} // namespace bench
