// SPDX-License-Identifier: MIT
//
// The check of terms, and the order in which their operators are applied.
#pragma once

#include "deq.h"

#include <cstdint>
#include <vector>

struct Outcome;
struct WorkCounters;

// Checks that every parenthesis has its partner and every operator its operands, and sets the terms' levels:
// both parentheses of a pair carry the depth of what they enclose, and a '-' that acts before the operator on
// its left, as in 2^-3, stands a level higher, with the group behind it. Returns 0 and how many terms are
// operators, or -1 with a message.
int checkSyntax(const Deq& terms, Outcome& outcome, WorkCounters& work, int32_t& operators);

// Puts the operators among checked terms into `order`, in the order in which they are applied: highest level
// first, then by precedence, then from left to right. It visits each term once.
void orderOperators(const Deq& terms, std::vector<node*>& order);
