// SPDX-License-Identifier: MIT
//
// Private to qfloat/: the tables of the elementary functions (qtables.cpp, written by
// scripts/make_tables.py).
//
// "Fixed" values are six limbs in units of 2^-384, hence below 1; the tables hold the nearest ones.
#pragma once

#include "qlimb.h"

namespace limb {

constexpr int INVERSE_FACTORIAL_COUNT = 80;
constexpr int INVERSE_ODD_COUNT = 7;
constexpr int TWO_OVER_PI_LIMBS = 528;
constexpr int EXP_LEVELS = 4;
extern const Extended WHOLE_PI, HALF_PI, quarterPi;                      // nearest 384-bit mantissas
extern const Extended RADIANS_PER_DEGREE;                                // the same
extern const uint64_t INVERSE_FACTORIAL[INVERSE_FACTORIAL_COUNT][COUNT]; // fixed 1/n!, n >= 2
extern const int16_t INVERSE_FACTORIAL_ZEROS[INVERSE_FACTORIAL_COUNT];   // their leading zero bits
extern const uint64_t INVERSE_ODD[INVERSE_ODD_COUNT][COUNT];             // fixed 1/(2k + 1), k >= 1
extern const uint64_t EXP_STEPS[EXP_LEVELS][16][COUNT]; // [l][n]: fixed e^x - 1 of x = n / 16^(l + 1) < ln 2
extern const uint64_t TWO_OVER_PI[TWO_OVER_PI_LIMBS];   // fraction of 2/pi, top limb first

} // namespace limb
