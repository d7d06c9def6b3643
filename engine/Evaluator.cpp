// SPDX-License-Identifier: MIT
#include "Evaluator.h"

#include "units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

int Evaluator::ProcTermsLoop() {
    qclear(outcome.result);
    operators.clear();
    longTexts = 0;
    isExpanding = false;
    work.reduced += static_cast<uint64_t>(statement.enclosed);
    if (spending.Spend(static_cast<uint64_t>(statement.enclosed) * Cost::OPERATOR) != 0) return STATUS_ERROR;
    node** next = statement.opOrder;
    while (!operators.empty() || *next) {
        node* const op = operators.empty() ? *next++ : operators.back();
        if (!operators.empty()) operators.pop_back();
        work.reduced++;
        if (spending.Spend(Cost::OPERATOR) != 0) return STATUS_ERROR;
        if (op->type == OP_OPEN) {
            statement.reorder = 0;
            if (ProcParenth(op) < 0) return STATUS_ERROR;
        } else if (!ProcPair(op, op->type)) {
            return STATUS_ERROR;
        }
    }
    const Deq& terms = statement.terms;
    if (terms.count > 1) {
        return outcome.Fail("** ERROR: could not compute (%i) **\n", {std::to_string(terms.count)});
    }
    if (terms.count == 1) return Node2Num(terms.first, outcome.result);
    outcome.message[0] = '\0';
    return STATUS_MESSAGE;
}

void Evaluator::Trace() const {
    if (statement.traced) puts("Attempting ProcParenth...");
}

int Evaluator::ProcParenth(node* open) {
    Trace();
    node* from = open;
    node* before = open->prev;
    if (before && before->type == TERM_FUNC) {
        from = ProcFunction(before);
        if (!from) return -1;
    } else if (before && before->type == TERM_NAME) {
        return outcome.FailAt(before, "** ERROR: unrecognized function '%s' **\n", {before->text});
    }
    node* enclosed = from->next;
    if (!enclosed || !enclosed->next || enclosed->next->type != OP_CLOSE) return 0;
    if (enclosed->prev == open && !operators.empty() && operators.back() == open) operators.pop_back();
    statement.terms.Del(enclosed->next);
    statement.terms.Del(enclosed->prev);
    enclosed->level--;
    return 1;
}

namespace {

bool isOperand(const node* term) {
    return term && (term->type == TERM_NUMBER || term->type == TERM_NAME || term->type == OP_CLOSE);
}

// The unit that the unit library's message names last; the target when that is both or none.
const node* wrongUnit(std::string_view error, const node* source, const node* destination) {
    const size_t sourceAt = error.rfind("'" + std::string(source->text) + "'");
    const size_t destinationAt = error.rfind("'" + std::string(destination->text) + "'");
    const bool isDestination = destinationAt != std::string_view::npos && destinationAt >= sourceAt;
    return sourceAt == std::string_view::npos || isDestination ? destination : source;
}

} // namespace

const qfloat* Evaluator::KnownValue(const node* term) {
    if (term->type == TERM_NAME && term->text)
        term = variables.Find(term->text);
    else if (term->type != TERM_NUMBER)
        return nullptr;
    return term ? term->value : nullptr;
}

const qfloat* Evaluator::ValueOf(const node* term) {
    if (term->type == TERM_NUMBER && term->value) return term->value; // most are numbers
    const qfloat* const value = KnownValue(term);
    return value ? value : RefuseTerm(term);
}

// It has no value.
const qfloat* Evaluator::RefuseTerm(const node* term) {
    const char* format = "** ERROR 7: invalid term = %s **\n";
    const char* text = term->text ? term->text : "";
    if (isOp(term->type)) {
        format = "** ERROR 8: invalid term = %s **\n";
        text = getOp(term->type).text;
    } else if (strncmp(text, "0x", 2) == 0) {
        format = "** ERROR 7: %s is not a valid hex term **\n";
    } else if (strncmp(text, "0b", 2) == 0) {
        format = "** ERROR 7: %s is not a valid binary term **\n";
    } else if (strncmp(text, "0o", 2) == 0) {
        format = "** ERROR 7: %s is not a valid octal term **\n";
    }
    return outcome.FailAt(term, format, {text}), nullptr;
}

int Evaluator::Node2Num(const node* term, qfloat value) {
    const qfloat* known = ValueOf(term);
    if (!known) return STATUS_ERROR;
    qmov(*known, value);
    return 0;
}

node* Evaluator::ProcPair(node* op, int32_t code) {
    if (code == OP_UNIT_MARK) return op;
    if (code == OP_CONVERT) return ProcConversion(op);
    const char* name = getOp(code).text;
    node* left = op->prev && !isOp(op->prev->type) ? op->prev : nullptr;
    node* right = code == OP_FACTORIAL ? nullptr : op->next;
    const qfloat* leftValue = left ? ValueOf(left) : &NO_OPERAND;
    if (!leftValue) return nullptr;
    if (!right && code != OP_FACTORIAL)
        return outcome.FailAt(op, "** ERROR 3: operator '%s' missing argument **\n", {name}), nullptr;
    const qfloat* rightValue = right ? ValueOf(right) : &NO_OPERAND;
    if (!rightValue) return nullptr;
    qfloat value = {};
    if (spending.Spend(extraWork(code, *leftValue, *rightValue)) != 0) return nullptr;
    if (applyOperator(code, *leftValue, *rightValue, value, outcome) != 0) return nullptr;
    return FinishPair(op, left, right, value, name);
}

// Puts the result in the place of the operator and its operands.
node* Evaluator::FinishPair(node* op, node* left, node* right, const qfloat value, const char* name) {
    node* term = left ? left : op;
    term->BecomeNumber(value);
    if (right) statement.terms.Del(right);
    if (left) statement.terms.Del(op);
    return merror == 0 || checkMathError(name, outcome.message) == 0 ? term : nullptr;
}

// How many of the target units are in one source unit, and what the unit library charged for that. Returns 0,
// or -1 with a message.
int Evaluator::ConversionFactor(const node* source, const node* destination, qfloat value,
                                std::vector<uint64_t>* charges) {
    const char* from = source->text;
    const char* to = destination->text;
    if (spending.Spend(Cost::EXPENSIVE) != 0) return STATUS_ERROR;
    Spending::UnitsAccount account = {false, charges};
    units_clear_exception();
    const double factor = units_convert(from, to, spending.ForUnits(account));
    if (account.isStopped) return STATUS_ERROR;
    if (const char* error = units_check_exception()) {
        return outcome.FailAt(wrongUnit(error, source, destination), "** ERROR 13: %s **\n", {error});
    }
    // The unit library works in doubles; beyond their range it has no digits to give.
    if (!std::isnormal(factor)) {
        return outcome.FailAt(destination, "** ERROR 13: the factor from '%s' to '%s' is out of range **\n",
                              {from, to});
    }
    char digits[40] = "";
    snprintf(digits, sizeof digits, "%.16g", factor);
    asctoq(digits, value);
    return 0;
}

// from -> to: the source unit becomes the number of target units in it.
node* Evaluator::ProcConversion(node* arrow) {
    node* source = arrow->prev;
    node* destination = arrow->next;
    if (!source || !source->text || !destination || !destination->text)
        return outcome.FailAt(arrow, "** ERROR 12: missing conversion unit **"), nullptr;
    qfloat value;
    if (ConversionFactor(source, destination, value) != 0) return nullptr;
    source->BecomeNumber(value);
    statement.terms.Del(destination);
    statement.terms.Del(arrow);
    node* mark = source->prev;
    if (!mark || mark->type != OP_UNIT_MARK) return source;
    if (!isOperand(mark->prev)) {
        statement.terms.Del(mark);
        return source;
    }
    mark->type = OP_MULTIPLY;
    return ProcPair(mark, OP_MULTIPLY);
}
