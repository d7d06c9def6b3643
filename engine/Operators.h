// SPDX-License-Identifier: MIT
//
// What the operators compute.
#pragma once

#include "qfloat.h"

#include <cstdint>

struct Outcome;

// What applying the operator takes beyond others, in units of work.
uint64_t extraWork(int32_t code, const qfloat left, const qfloat right);

// Applies the operator of the code; a factorial has no right operand. Returns 0 and the value, or -1 with a
// message. An error of the number library is left in `merror`, an overflow too where an operand is the
// overflow value.
int applyOperator(int32_t code, const qfloat left, const qfloat right, qfloat value, Outcome& outcome);

// What computes with the overflow value overflows, wherever that came from: sets `merror` then.
void noteOverflow(const qfloat operand);
