// SPDX-License-Identifier: MIT
//
// The errors of the number library.
#pragma once

#include <cstdint>

// The exponent word of the overflow value: numbers from there on are shown as OVERFLOW.
constexpr uint32_t OVERFLOW_EXPONENT = 0x10000;

// Codes of the number library's `merror`.
enum MathError : int { MATH_OVERFLOW = 3, MATH_UNDERFLOW = 4 };

// Reports the pending error of the number library: 0 when there is none; else clears it, returns its code and
// writes "** ERROR: 'name' text **\n" into `out` (TEXT_SIZE bytes, may be null), without the name when null.
int checkMathError(const char* name, char* out);
