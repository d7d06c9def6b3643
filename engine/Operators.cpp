// SPDX-License-Identifier: MIT
#include "Evaluator.h"

#include <cstring>
#include <string>

namespace {

void setTruth(bool truth, qfloat value) {
    qmov(truth ? qone : qzero, value);
}

// The floor of x * 2^n. A zero has no exponent to shift.
void shiftBits(const qfloat x, int64_t n, qfloat value) {
    if (isZero(x)) {
        qclear(value);
        return;
    }
    qldexp(x, n, value);
    qfloor(value, value);
}

int64_t integerPart(const qfloat x) {
    int64_t n = 0;
    qfloat fraction;
    qifrac(x, &n, fraction);
    return n;
}

} // namespace

uint64_t extraWork(int32_t code, const qfloat left, const qfloat right) {
    if (code == OP_POWER || code == OP_FACTORIAL) return Cost::EXPENSIVE;
    const bool isLong = code == OP_REMAINDER && left[1] > right[1];
    return isLong ? (left[1] - right[1]) / Cost::REMAINDER_BITS : 0;
}

void noteOverflow(const qfloat operand) {
    if (operand[1] != OVERFLOW_EXPONENT) return;
    qfloat overflow = {};
    qinfin(overflow);
    if (memcmp(operand + 1, overflow + 1, sizeof overflow - sizeof *overflow) == 0) merror = MATH_OVERFLOW;
}

int applyOperator(int32_t code, const qfloat left, const qfloat right, qfloat value, Outcome& outcome) {
    switch (code) {
    case OP_ADD: qadd(right, left, value); break;
    case OP_SUBTRACT: qsub(right, left, value); break;
    case OP_MULTIPLY: qmul(right, left, value); break;
    case OP_DIVIDE:
        if (isZero(right)) return outcome.Fail("** ERROR: divide by zero **\n");
        qdiv(right, left, value);
        break;
    case OP_FACTORIAL: qfac(left, value); break;
    case OP_REMAINDER: qremain(right, left, value); break;
    case OP_OR: qlogic(left, right, value, '|'); break;
    case OP_XOR: qlogic(left, right, value, '^'); break;
    case OP_AND: qlogic(left, right, value, '&'); break;
    case OP_POWER: qpow(left, right, value); break;
    case OP_SHIFT_RIGHT: shiftBits(left, -integerPart(right), value); break;
    case OP_SHIFT_LEFT: shiftBits(left, integerPart(right), value); break;
    case OP_GREATER: setTruth(qcmp(left, right) > 0, value); break;
    case OP_LESS: setTruth(qcmp(left, right) < 0, value); break;
    case OP_GREATER_EQUAL: setTruth(qcmp(left, right) >= 0, value); break;
    case OP_LESS_EQUAL: setTruth(qcmp(left, right) <= 0, value); break;
    case OP_EQUAL: setTruth(qcmp(left, right) == 0, value); break;
    case OP_NOT_EQUAL: setTruth(qcmp(left, right) != 0, value); break;
    case OP_LOGICAL_AND: setTruth(!isZero(left) && !isZero(right), value); break;
    case OP_LOGICAL_OR: setTruth(!isZero(left) || !isZero(right), value); break;
    default: {
        const char character[] = {static_cast<char>(code), '\0'};
        return outcome.Fail("** ERROR 16Q: invalid op:%c (%i) **\n", {character, std::to_string(code)});
    }
    }
    noteOverflow(left);
    noteOverflow(right);
    return 0;
}
