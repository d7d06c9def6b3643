// SPDX-License-Identifier: MIT
//
// Calls of functions: reading a call, the predefined functions, and the report of arithmetic errors.
#include "Call.h"
#include "Helpers_String.h"
#include "qtrig.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

void ZqCalculator::InitializeFunctionsAndVars() {
    // Tab completion goes from the last to the first.
    static const char* const names[] = {"sinc", "tanh", "cosh", "sinh", "rand", "floor", "round",
                                        "ceil", "abs",  "atan", "acos", "asin", "tan",   "cos",
                                        "sin",  "exp",  "ln",   "log",  "sqrt"};
    InitializeVarsList();
    srand(static_cast<unsigned>(clock()));
    for (const char* name : names) {
        char parameter[] = "x";
        funcs.AddFunction(name, parameter, nullptr);
    }
    const bool wasEuropean = european;
    const bool wasTenKey = tenKey;
    european = tenKey = false; // the definition is written with ',' and signs in front
    DefineFunction("mod(x,d)=x%d");
    european = wasEuropean;
    tenKey = wasTenKey;
    message[0] = '\0';
    initialized = true;
}

// --- The predefined functions of one argument ---

namespace {

bool isZero(const qfloat x) {
    return x[1] == 0;
}

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

enum AngleUse { NO_ANGLE, TAKES_ANGLE, GIVES_ANGLE };

typedef void (*Compute)(const qfloat x, qfloat y);

struct Predefined {
    const char* name;
    Compute compute;
    AngleUse angle;
    Compute ofDegrees = nullptr; // TAKES_ANGLE
};

const Predefined predefined[] = {
    {"sqrt", qsqrt, NO_ANGLE},
    {"abs", qabsolute, NO_ANGLE},
    {"exp", qexp, NO_ANGLE},
    {"round", qround, NO_ANGLE},
    {"ceil", qceil, NO_ANGLE},
    {"floor", qfloorFixed, NO_ANGLE},
    {"sinh", qsinh, NO_ANGLE},
    {"cosh", qcosh, NO_ANGLE},
    {"tanh", qtanh, NO_ANGLE},
    {"sin", qsin, TAKES_ANGLE, qsindeg},
    {"cos", qcos, TAKES_ANGLE, qcosdeg},
    {"tan", qtan, TAKES_ANGLE, qtandeg},
    {"asin", qasin, GIVES_ANGLE},
    {"acos", qacos, GIVES_ANGLE},
    {"atan", qatn, GIVES_ANGLE},
    {"rand", qrandom, NO_ANGLE},
};

const Predefined* findPredefined(const char* name) {
    for (const Predefined& function : predefined) {
        if (strIsEqual(function.name, name)) return &function;
    }
    return nullptr;
}

// The base of a name such as log2 or log1.5, or null: the whole rest must be a decimal number.
const char* logBase(const char* name) {
    if (strncmp(name, "log", 3) != 0) return nullptr;
    const char* base = name + 3;
    std::string_view rest;
    const bool hasDigit = IsDigit(base[0]) || (base[0] == '.' && IsDigit(base[1]));
    return hasDigit && findDecString(base, rest) == 1 ? base : nullptr;
}

bool isLogarithm(const char* name) {
    return strIsEqual(name, "ln") || strIsEqual(name, "log") || logBase(name);
}

// A base so small that a machine number holds it as zero counts as zero.
bool isZeroBase(const qfloat base) {
    return static_cast<float>(asDouble(base)) == 0.0F;
}

void divideByLogarithm(const qfloat base, qfloat value) {
    qfloat logarithm;
    qlog(base, logarithm);
    qdiv(logarithm, value, value);
}

std::string numberText(double number) {
    char text[40];
    snprintf(text, sizeof text, "%g", number);
    return text;
}

} // namespace

// --- Calls ---

// Reads name(term,term,...) from the name on. False when it is no flat list.
static bool readCall(node* functionTerm, node*& open, node*& close, std::vector<const node*>& arguments) {
    open = functionTerm->next;
    if (!open || open->type != OP_OPEN) return false;
    for (node* term = open->next; term && !isOp(term->type); term = term->next) {
        arguments.push_back(term);
        term = term->next;
        if (!term || (term->type != OP_COMMA && term->type != OP_CLOSE)) return false;
        if (term->type == OP_CLOSE) {
            close = term;
            return true;
        }
    }
    return false;
}

node* ZqCalculator::ProcFunction(node* functionTerm) {
    Call call;
    call.function = functionTerm;
    if (!readCall(functionTerm, call.open, call.close, call.arguments)) return functionTerm->next;
    for (char* c = functionTerm->text; *c; c++) *c = LowerCase(*c);
    if (call.arguments.size() != 1) return ExpandFunction(call);

    qfloat x;
    qfloat value;
    if (CallArgument(call, x) != 0) return nullptr;
    // Once a predefined function is deleted its name is free, and the person's own function counts.
    const Function* known = funcs.FindByName(call.Name(), 1);
    const bool isOwn = known && known->body;
    if (isOwn || !(isLogarithm(call.Name()) || findPredefined(call.Name()))) return ExpandFunction(call);
    NoteOverflow(x);
    if (checkMathError(call.Name(), message) != 0) return nullptr;
    if (CallPredefined(call.Name(), x, value) != 0) return nullptr;
    return FinishPredefined(call, value);
}

// The value of the only argument: a number, or a variable.
int ZqCalculator::CallArgument(const Call& call, qfloat value) {
    const node* argument = call.arguments[0];
    if (argument->type == TERM_NUMBER && argument->value) {
        qmov(*argument->value, value);
        return 0;
    }
    const bool isName = argument->type == TERM_NAME && argument->text;
    const node* variable = isName ? VariableExists(argument->text) : nullptr;
    if (variable && variable->value) {
        qmov(*variable->value, value);
        return 0;
    }
    if (!argument->text) return Fail("** ERROR 5: invalid argument in function %s **\n", {call.Name()});
    return Fail("** ERROR 5: invalid argument '%s' in function %s **\n", {argument->text, call.Name()});
}

int ZqCalculator::CallLogarithm(const char* name, const qfloat x, qfloat value) {
    if (isNegative(x)) {
        return Fail("** ERROR: %s of negative number: %s **\n", {name, numberText(asDouble(x))});
    }
    if (isZero(x)) return Fail("** ERROR: %s of zero **\n", {name});
    qfloat base;
    qmov(qten, base);
    if (const char* text = logBase(name)) {
        asctoq(text, base);
        if (merror == MATH_UNDERFLOW) merror = 0; // of reading a base such as 0e5
        if (isZeroBase(base)) return Fail("** ERROR: log base zero **\n");
    }
    qlog(x, value);
    if (strIsEqual(name, "ln")) return 0;
    if (Spend(Cost::EXPENSIVE) != 0) return STATUS_ERROR;
    divideByLogarithm(base, value);
    return 0;
}

int ZqCalculator::CallPredefined(const char* name, const qfloat x, qfloat value) {
    if (Spend(Cost::EXPENSIVE) != 0) return STATUS_ERROR;
    if (isLogarithm(name)) return CallLogarithm(name, x, value);
    const Predefined* function = findPredefined(name);
    if (function->compute == qsqrt && isNegative(x)) {
        return Fail("** ERROR: sqrt of negative number **\n");
    }
    const bool ofDegrees = degreeMode && function->angle == TAKES_ANGLE;
    qclear(value);
    (ofDegrees ? function->ofDegrees : function->compute)(x, value);
    if (function->angle == TAKES_ANGLE) return RoundCircular(name, value);
    if (function->angle == GIVES_ANGLE) {
        if (merror != 0) return Fail("** ERROR: %s range of -1 .. +1 **\n", {name});
        if (degreeMode) qmul(qrad2deg, value, value);
    }
    return 0;
}

// What is next to nothing is a zero that the angle's last digit has moved, and a tangent next to a pole is one.
int ZqCalculator::RoundCircular(const char* name, qfloat value) {
    if (isTiny(value)) {
        qclear(value);
        return 0;
    }
    if (!strIsEqual(name, "tan")) return 0;
    qfloat reciprocal;
    qdiv(value, qone, reciprocal);
    return isTiny(reciprocal) ? Fail("** ERROR: tan result undefined **\n") : 0;
}

// The argument becomes the result; the evaluator removes the parentheses that are left around it.
node* ZqCalculator::FinishPredefined(const Call& call, const qfloat value) {
    node* argument = call.open->next;
    argument->type = TERM_NUMBER;
    argument->DropText();
    argument->SetValue(value);
    if (checkMathError(call.Name(), message) != 0) return nullptr;
    terms.Del(call.function);
    return call.open;
}

double factorial(int n) {
    double product = 1.0;
    for (; n >= 1; n--) product *= n;
    return product;
}
