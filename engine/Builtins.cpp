// SPDX-License-Identifier: MIT
#include "Builtins.h"

#include "EntryContext.h"
#include "Helpers_String.h"
#include "Scanner.h"
#include "qtrig.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool isNegative(const qfloat x) {
    return qisneg(x) && !isZero(x);
}

// |x| < 10^-80
bool isTiny(const qfloat x) {
    qfloat magnitude;
    qmov(x, magnitude);
    qabs(magnitude);
    return qcmp(magnitude, qsmall) < 0;
}

void qceil(const qfloat x, qfloat y) {
    qfloat whole;
    qfloat argument;
    qmov(x, argument);
    qfixintegers(argument);
    qfloor(argument, whole);
    if (qcmp(whole, argument) != 0)
        qadd(qone, whole, y);
    else
        qmov(whole, y);
}

void qfloorFixed(const qfloat x, qfloat y) {
    qfloat argument;
    qmov(x, argument);
    qfixintegers(argument);
    qfloor(argument, y);
}

void qabsolute(const qfloat x, qfloat y) {
    qmov(x, y);
    qabs(y);
}

// The double nearest to x; beyond the range the largest one. That the range ends is no error of the entry.
double asDouble(const qfloat x) {
    const int pending = merror;
    double d = 0;
    qtoe(x, &d);
    merror = pending;
    return d;
}

void qrandom(const qfloat x, qfloat y) {
    // NOLINTNEXTLINE(bugprone-random-generator-seed,cert-msc30-c,cert-msc50-cpp,misc-predictable-rand)
    const double d = rand() / 2147483647.0 * asDouble(x);
    etoq(&d, y);
}

const char* const LOG_OF_NEGATIVE = "** ERROR: %s of negative number: %g **\n";
const char* const LOG_OF_ZERO = "** ERROR: %s of zero **\n";
const char* const ROOT_OF_NEGATIVE = "** ERROR: sqrt of negative number **\n";

// The base of a name such as log2 or log1.5, or null: the whole rest must be a decimal number.
const char* logBase(const char* name) {
    if (strncmp(name, "log", 3) != 0) return nullptr;
    const char* base = name + 3;
    std::string_view rest;
    const bool hasDigit = isDigit(base[0]) || (base[0] == '.' && isDigit(base[1]));
    return hasDigit && findDecString(base, rest) == 1 ? base : nullptr;
}

int checkArgument(const Builtin& builtin, const char* name, const qfloat x, Outcome& outcome) {
    if (isNegative(x) && builtin.ofNegative) {
        char number[40];
        snprintf(number, sizeof number, "%g", asDouble(x));
        return outcome.Fail(builtin.ofNegative, {name, number});
    }
    return isZero(x) && builtin.ofZero ? outcome.Fail(builtin.ofZero, {name}) : 0;
}

// A base so small that a machine number holds it as zero counts as zero.
int computeLogarithm(const char* name, const qfloat x, qfloat value, Outcome& outcome) {
    qfloat base;
    qmov(qten, base);
    if (const char* text = logBase(name)) {
        asctoq(text, base);
        if (merror == MATH_UNDERFLOW) merror = 0; // of reading a base such as 0e5
        if (static_cast<float>(asDouble(base)) == 0.0F) return outcome.Fail("** ERROR: log base zero **\n");
    }
    qlogbase(x, base, value);
    return 0;
}

// What is next to nothing is a zero that the angle's last digit has moved, and a tangent next to a pole is
// one.
int roundCircular(const Builtin& builtin, qfloat value, Outcome& outcome) {
    if (isTiny(value)) {
        qclear(value);
        return 0;
    }
    if (builtin.compute != qtan) return 0;
    qfloat reciprocal;
    qdiv(value, qone, reciprocal);
    return isTiny(reciprocal) ? outcome.Fail("** ERROR: tan result undefined **\n") : 0;
}

} // namespace

const std::vector<Builtin>& builtinTable() {
    using Kind = BuiltinKind;
    static const std::vector<Builtin> table = {
        {"sinc", "x", nullptr, nullptr}, // a name alone
        {"tanh", "x", "hyperbolic tangent", qtanh},
        {"cosh", "x", "hyperbolic cosine", qcosh},
        {"sinh", "x", "hyperbolic sine", qsinh},
        {"rand", "x", "another random number from 0 to x each time", qrandom},
        {"floor", "x", "the largest whole number that is not above x", qfloorFixed},
        {"round", "x", "the nearest whole number; halves go up, -2.5 to -2", qround},
        {"ceil", "x", "the smallest whole number that is not below x", qceil},
        {"abs", "x", "x without its sign", qabsolute},
        {"atan", "x", "inverse tangent, an angle", qatn, Kind::GivesAngle, qatndeg},
        {"acos", "x", "inverse cosine, an angle", qacos, Kind::GivesAngle, qacosdeg},
        {"asin", "x", "inverse sine, an angle", qasin, Kind::GivesAngle, qasindeg},
        {"tan", "x", "tangent of the angle x", qtan, Kind::OfAngle, qtandeg},
        {"cos", "x", "cosine of the angle x", qcos, Kind::OfAngle, qcosdeg},
        {"sin", "x", "sine of the angle x", qsin, Kind::OfAngle, qsindeg},
        {"exp", "x", "e to the power x", qexp},
        {"ln", "x", "natural logarithm", qlog, Kind::Plain, nullptr, LOG_OF_NEGATIVE, LOG_OF_ZERO},
        {"log", "x", "logarithm to base 10; log2(x), log1.5(x) and the like to their base", qlog,
         Kind::Logarithm, nullptr, LOG_OF_NEGATIVE, LOG_OF_ZERO, 2 * Cost::EXPENSIVE},
        {"sqrt", "x", "square root", qsqrt, Kind::Plain, nullptr, ROOT_OF_NEGATIVE},
        {"mod", "x,d", "remainder of x divided by d", nullptr, Kind::Plain, nullptr, nullptr, nullptr, 0,
         "x%d"},
    };
    return table;
}

const Builtin* findBuiltin(const char* name) {
    const char* row = logBase(name) ? "log" : name;
    for (const Builtin& builtin : builtinTable()) {
        if (builtin.compute && strIsEqual(builtin.name, row)) return &builtin;
    }
    return nullptr;
}

int computeBuiltin(const Builtin& builtin, const char* name, const qfloat x, qfloat value,
                   const EntryContext& entry) {
    if (entry.spending.Spend(builtin.cost) != 0 || checkArgument(builtin, name, x, entry.outcome) != 0)
        return STATUS_ERROR;
    qclear(value);
    if (builtin.kind == BuiltinKind::Logarithm) return computeLogarithm(name, x, value, entry.outcome);
    const bool isInDegrees = entry.settings.degreeMode && builtin.inDegrees;
    (isInDegrees ? builtin.inDegrees : builtin.compute)(x, value);
    if (builtin.kind == BuiltinKind::OfAngle) return roundCircular(builtin, value, entry.outcome);
    if (builtin.kind == BuiltinKind::GivesAngle && merror != 0)
        return entry.outcome.Fail("** ERROR: %s range of -1 .. +1 **\n", {name});
    return 0;
}

double factorial(int n) {
    double product = 1.0;
    for (; n >= 1; n--) product *= n;
    return product;
}
