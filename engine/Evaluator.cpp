// SPDX-License-Identifier: MIT
//
// Evaluation in place: each operator replaces itself and its operands by one number term.
#include "Calculator.h"

#include "Helpers_String.h"
#include "units.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static bool isZero(const qfloat number) {
    return number[1] == 0;
}

static void setTruth(bool truth, qfloat value) {
    qmov(truth ? qone : qzero, value);
}

int ZqCalculator::Spend(uint64_t units) {
    const WorkBudget::Next next = budget.Spend(units);
    if (next == WorkBudget::Next::GO_ON) return 0;
    if (next == WorkBudget::Next::ASK) return AskForInterruption();
    return Fail(fullEntry ? "** ERROR: too much work **\n" : "** ERROR: too much work for a preview **\n");
}

int ZqCalculator::AskForInterruption() {
    budget.Asked();
    interrupted = fullEntry && interruptCheck && interruptCheck();
    return interrupted ? Fail("** ERROR: interrupted **\n") : 0;
}

// The next operator: first those of the calls that were expanded, the latest call first.
node* ZqCalculator::NextOperator(node**& next) {
    if (expanded.empty()) return *next ? *next++ : nullptr;
    node* op = expanded.back();
    expanded.pop_back();
    return op;
}

int ZqCalculator::ProcTermsLoop() {
    qclear(result);
    expanded.clear();
    node** next = opOrder;
    while (node* op = NextOperator(next)) {
        work.reduced++;
        if (Spend(Cost::OPERATOR) != 0) return STATUS_ERROR;
        if (op->type == OP_OPEN) {
            reorder = 0;
            if (ProcParenth(op) < 0) return STATUS_ERROR;
        } else if (!ProcPair(op, op->type)) {
            return STATUS_ERROR;
        }
    }
    if (terms.count > 1) return Fail("** ERROR: could not compute (%i) **\n", {std::to_string(terms.count)});
    if (terms.count == 1) return Node2Num(terms.first, result);
    message[0] = '\0';
    return STATUS_MESSAGE;
}

int ZqCalculator::ProcParenth(node* open) {
    puts("Attempting ProcParenth...");
    node* from = open;
    node* before = open->prev;
    if (before && before->type == TERM_FUNC) {
        from = ProcFunction(before);
        if (!from) return -1;
    } else if (before && before->type == TERM_NAME) {
        return Fail("** ERROR: unrecognized function '%s' **\n", {before->text});
    }
    node* enclosed = from->next;
    if (!enclosed || !enclosed->next || enclosed->next->type != OP_CLOSE) return 0;
    // A body of one term needs no second visit of its parenthesis.
    if (enclosed->prev == open && !expanded.empty() && expanded.back() == open) expanded.pop_back();
    terms.Del(enclosed->next);
    terms.Del(enclosed->prev);
    enclosed->level--;
    return 1;
}

int ZqCalculator::Node2Num(const node* term, qfloat value) {
    if (term->type == TERM_NUMBER && term->value) {
        qmov(*term->value, value);
        return 0;
    }
    if (isOp(term->type)) return Fail("** ERROR 8: invalid term = %s **\n", {getOp(term->type).text});
    const char* text = term->text ? term->text : "";
    const node* variable = term->type == TERM_NAME ? VariableExists(text) : nullptr;
    if (variable && variable->value) {
        qmov(*variable->value, value);
        return 0;
    }
    if (strncmp(text, "0x", 2) == 0) return Fail("** ERROR 7: %s is not a valid hex term **\n", {text});
    if (strncmp(text, "0b", 2) == 0) return Fail("** ERROR 7: %s is not a valid binary term **\n", {text});
    if (strncmp(text, "0o", 2) == 0) return Fail("** ERROR 7: %s is not a valid octal term **\n", {text});
    return Fail("** ERROR 7: invalid term = %s **\n", {text});
}

// What the operator takes beyond others.
static uint64_t extraWork(int32_t code, const qfloat left, const qfloat right) {
    if (code == OP_POWER || code == OP_FACTORIAL) return Cost::EXPENSIVE;
    const bool isLong = code == OP_REMAINDER && left[1] > right[1];
    return isLong ? (left[1] - right[1]) / Cost::REMAINDER_BITS : 0;
}

// What computes with the overflow value overflows, wherever that came from.
void ZqCalculator::NoteOverflow(const qfloat operand) {
    qfloat overflow = {};
    qinfin(overflow);
    overflow[0] = operand[0];
    if (memcmp(operand, overflow, sizeof overflow) == 0) merror = MATH_OVERFLOW;
}

node* ZqCalculator::ProcPair(node* op, int32_t code) {
    if (code == OP_UNIT_MARK) return op;
    if (code == OP_CONVERT) return ProcConversion(op);
    node* left = op->prev && !isOp(op->prev->type) ? op->prev : nullptr;
    node* right = code == OP_FACTORIAL ? nullptr : op->next;
    qfloat leftValue = {};
    qfloat rightValue = {};
    qfloat value = {};
    if (left && Node2Num(left, leftValue) != 0) return nullptr;
    if (code == OP_FACTORIAL) {
        if (Spend(extraWork(code, leftValue, rightValue)) != 0) return nullptr;
        qfac(leftValue, value);
    } else {
        if (!right) {
            Fail("** ERROR 3: operator '%s' missing argument **\n", {getOp(code).text});
            return nullptr;
        }
        if (Node2Num(right, rightValue) != 0) return nullptr;
        if (Spend(extraWork(code, leftValue, rightValue)) != 0) return nullptr;
        if (ApplyBinary(code, leftValue, rightValue, value) != 0) return nullptr;
    }
    NoteOverflow(leftValue);
    NoteOverflow(rightValue);
    return FinishPair(op, left, right, value, getOp(code).text);
}

// The floor of x * 2^n. A zero has no exponent to shift.
static void shiftBits(const qfloat x, int64_t n, qfloat value) {
    if (isZero(x)) {
        qclear(value);
        return;
    }
    qldexp(x, n, value);
    qfloor(value, value);
}

static int64_t integerPart(const qfloat x) {
    int64_t n = 0;
    qfloat fraction;
    qifrac(x, &n, fraction);
    return n;
}

int ZqCalculator::ApplyBinary(int32_t code, const qfloat left, const qfloat right, qfloat value) {
    switch (code) {
    case OP_ADD: qadd(right, left, value); break;
    case OP_SUBTRACT: qsub(right, left, value); break;
    case OP_MULTIPLY: qmul(right, left, value); break;
    case OP_DIVIDE:
        if (isZero(right)) return Fail("** ERROR: divide by zero **\n");
        qdiv(right, left, value);
        break;
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
        return Fail("** ERROR 16Q: invalid op:%c (%i) **\n", {character, std::to_string(code)});
    }
    }
    return 0;
}

// Puts the result in the place of the operator and its operands.
node* ZqCalculator::FinishPair(node* op, node* left, node* right, const qfloat value, const char* name) {
    node* term = left ? left : op;
    term->type = TERM_NUMBER;
    term->DropText();
    term->SetValue(value);
    if (right) terms.Del(right);
    if (left) terms.Del(op);
    return checkMathError(name, message) == 0 ? term : nullptr;
}

static bool isOperand(const node* term) {
    return term && (term->type == TERM_NUMBER || term->type == TERM_NAME || term->type == OP_CLOSE);
}

// Asks before the work is done: a preview gives up, and an entry asks for an interruption.
std::function<bool(uint64_t)> ZqCalculator::ChargeForUnits(bool& isStopped) {
    return [this, &isStopped](uint64_t units) {
        work.units += units;
        isStopped = Spend(units) != 0;
        return !isStopped;
    };
}

// How many of the unit `to` are in one `from`. Returns 0, or -1 with a message.
int ZqCalculator::ConversionFactor(const char* from, const char* to, qfloat value) {
    if (Spend(Cost::EXPENSIVE) != 0) return STATUS_ERROR;
    bool isStopped = false;
    units_clear_exception();
    const double factor = units_convert(from, to, ChargeForUnits(isStopped));
    if (isStopped) return STATUS_ERROR;
    if (const char* error = units_check_exception()) return Fail("** ERROR 13: %s **\n", {error});
    // The unit library works in doubles; beyond their range it has no digits to give.
    if (!std::isnormal(factor)) {
        return Fail("** ERROR 13: the factor from '%s' to '%s' is out of range **\n", {from, to});
    }
    char digits[40] = "";
    snprintf(digits, sizeof digits, "%.16g", factor);
    asctoq(digits, value);
    return 0;
}

// from -> to: the source unit becomes the number of target units in it.
node* ZqCalculator::ProcConversion(node* arrow) {
    node* source = arrow->prev;
    node* destination = arrow->next;
    if (!source || !source->text || !destination || !destination->text) {
        Fail("** ERROR 12: missing conversion unit **");
        return nullptr;
    }
    qfloat value;
    if (ConversionFactor(source->text, destination->text, value) != 0) return nullptr;
    source->type = TERM_NUMBER;
    source->DropText();
    source->SetValue(value);
    terms.Del(destination);
    terms.Del(arrow);
    node* mark = source->prev;
    if (!mark || mark->type != OP_UNIT_MARK) return source;
    if (!isOperand(mark->prev)) {
        terms.Del(mark);
        return source;
    }
    mark->type = OP_MULTIPLY;
    return ProcPair(mark, OP_MULTIPLY);
}
