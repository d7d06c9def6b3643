// SPDX-License-Identifier: MIT
//
// Private to qfloat/: the steps of Horner's rule in fixed point, in as many limbs as still count.
//
// In sum = c0 + x (c1 + x (c2 + ...)) with a small x and shrinking c, the inner sums have leading zeros, and
// their errors are multiplied by x again and again: a step takes the limbs between.
#pragma once

#include "qlimb.h"

namespace limb {

enum class Signs { Alternating, Equal };

// `steps` steps sum = c + x * sum, or c - x * sum when alternating; all of n limbs (1 .. 6), fractions in
// units of 2^(-64 n), as are the sums. The first step takes the c given, each next one that `stride` limbs
// before. Each product is cut by less than n + 1 units.
template <Signs SIGNS>
void hornerSteps(const uint64_t* x, const uint64_t* c, int stride, int steps, uint64_t* sum, int n);

// The same for an x of one limb, in units of 2^-64: each product is cut by less than one unit.
template <Signs SIGNS>
void hornerSteps(uint64_t x, const uint64_t* c, int stride, int steps, uint64_t* sum, int n);

} // namespace limb
