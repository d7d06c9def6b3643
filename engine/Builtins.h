// SPDX-License-Identifier: MIT
//
// The predefined functions: one table. A row adds a function, to be called, listed and completed; the guide's
// list has the same rows.
#pragma once

#include "WorkBudget.h"
#include "qfloat.h"

#include <cstdint>
#include <vector>

struct EntryContext;

enum class BuiltinKind {
    Plain,
    OfAngle,    // of an angle in degrees or radians; what is next to zero is zero, next to a pole an error
    GivesAngle, // an angle in degrees or radians
    Logarithm   // to base 10, or to the base that the name ends in
};

struct Builtin {
    const char* name; // in lower case
    const char* arguments;
    const char* help; // its line in the guide; null: it has none
    void (*compute)(const qfloat x, qfloat y);
    BuiltinKind kind = BuiltinKind::Plain;
    void (*inDegrees)(const qfloat x, qfloat y) = nullptr; // OfAngle, GivesAngle
    const char* ofNegative = nullptr; // the error for a negative argument, its name and value to be put in
    const char* ofZero = nullptr;
    uint64_t cost = Cost::EXPENSIVE;
    const char* definition = nullptr; // the body of a function that is defined as a person would do it
};

// In the order in which they are registered. Tab completion goes from the last to the first.
const std::vector<Builtin>& builtinTable();

// The row that computes a call of one argument with this name, in lower case: log2 and the like are the row
// of log. Null when there is none.
const Builtin* findBuiltin(const char* name);

// Computes the function of a name that findBuiltin answered with this row. Returns 0, or -1 with a message.
int computeBuiltin(const Builtin& builtin, const char* name, const qfloat x, qfloat value,
                   const EntryContext& entry);

// n! as a double: n * (n - 1) * ... * 1 from n downwards, 1 when n is below 1.
double factorial(int n);
