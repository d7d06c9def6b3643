// SPDX-License-Identifier: MIT
//
// The check of a statement's terms, and the order in which their operators are applied.
#include "Calculator.h"

#include <algorithm>

int ZqCalculator::VerifyTermsSyntax() {
    if (CheckVariableNames() != 0) return STATUS_ERROR;
    opCount = 0;
    if (!terms.first) return 0;
    if (CheckDepths() != 0 || CheckOperands() != 0) return STATUS_ERROR;
    RaiseUnaryMinus();
    opCount = terms.CountNumberOfOperators();
    return 0;
}

// Walks the variables only when some were put in since the last walk; the engine's own have valid names.
int ZqCalculator::CheckVariableNames() {
    if (checkedVariables == vars.insertions) return 0;
    for (node* variable = vars.first; variable; variable = variable->next) {
        work.names++;
        if (variable->text && IsValidVariable(variable->text)) continue;
        Fail("** ERROR: invalid variable name: %s **\n", {variable->text ? variable->text : ""});
        if (fullEntry) DeleteVariable(variable);
        return STATUS_ERROR;
    }
    checkedVariables = vars.insertions;
    return 0;
}

// Both parentheses of a pair carry the depth of what they enclose.
int ZqCalculator::CheckDepths() {
    int32_t depth = 0;
    for (node* term = terms.first; term; term = term->next) {
        work.checked++;
        if (term->type == OP_OPEN) {
            if (term->next && term->next->type == OP_CLOSE) return Fail("** ERROR: empty parenthesis **\n");
            depth++;
        }
        term->level = depth;
        if (term->type == OP_CLOSE) depth--;
        if (depth < 0) break;
    }
    return depth == 0 ? 0 : Fail("** ERROR: missing parenthesis **\n");
}

// Whether an operand ends here: what follows '!' or ')' has its left operand.
static bool isOpenEnded(const node* term) {
    return isOp(term->type) && term->type != OP_FACTORIAL && term->type != OP_CLOSE;
}

int ZqCalculator::CheckOperands() {
    for (const node* term = terms.first; term; term = term->next) {
        work.checked++;
        if (!isOp(term->type)) continue;
        const OpEntry& op = getOp(term->type);
        if (op.needsLeft && !term->prev)
            return Fail("** ERROR 1: operator '%s' missing argument **\n", {op.text});
        if (op.needsLeft && isOpenEnded(term->prev)) {
            return Fail("** ERROR 2: operator '%s' missing argument **\n", {op.text});
        }
        if (op.needsRight && !term->next)
            return Fail("** ERROR 3: operator '%s' missing argument **\n", {op.text});
        if (op.needsRight && term->next->type == OP_CLOSE) {
            return Fail("** ERROR 4: operator '%s' missing argument **\n", {op.text});
        }
    }
    return 0;
}

// Whether a '-' behind this term negates before the term's operator is applied. Operators of precedence 0
// bind nothing.
static bool bindsTighterThanMinus(const node* term) {
    if (!term || !isOpenEnded(term)) return false;
    const int precedence = getOp(term->type).precedence;
    return precedence > 0 && precedence < getOp(OP_SUBTRACT).precedence;
}

// The '(' of the group or call behind a '-', or null.
static const node* groupBehind(const node* minus) {
    const node* term = minus->next;
    if (term && (term->type == TERM_FUNC || term->type == TERM_NAME)) term = term->next;
    return term && term->type == OP_OPEN ? term : nullptr;
}

// Raises each '-' that must act before the operator on its left, with the group it negates, in one walk: a
// raise holds until the group's ')'.
void ZqCalculator::RaiseUnaryMinus() {
    std::vector<bool> isRaised; // for every open '(': whether its group is raised
    const node* raisedGroup = nullptr;
    int32_t raise = 0;
    for (node* term = terms.first; term; term = term->next) {
        work.checked++;
        if (term->type == OP_OPEN) {
            isRaised.push_back(term == raisedGroup);
            if (term == raisedGroup) raise++;
        }
        term->level += raise;
        if (term->type == OP_CLOSE) {
            if (isRaised.back()) raise--;
            isRaised.pop_back();
        } else if (term->type == OP_SUBTRACT && bindsTighterThanMinus(term->prev)) {
            term->level++;
            raisedGroup = groupBehind(term);
        }
    }
}

// A bucket pass: the operators are gathered by precedence, then dealt out by level, so that the work grows
// with the number of terms and not with levels times precedences. `lowest` is the lowest level among them.
std::vector<node*> ZqCalculator::OrderOperators(node* first, const node* end, int32_t lowest) {
    std::vector<node*> byPrecedence[MAX_PRECEDENCE + 1];
    std::vector<size_t> position; // by level: first the number of operators, then the place of the next one
    const auto row = [lowest](const node* term) {
        return static_cast<size_t>(std::max(term->level - lowest, 0));
    };
    for (node* term = first; term != end; term = term->next) {
        work.ordered++;
        const int precedence = getOp(term->type).precedence;
        if (precedence == 0 || term->type == OP_CLOSE) continue;
        if (row(term) >= position.size()) position.resize(row(term) + 1);
        position[row(term)]++;
        byPrecedence[precedence].push_back(term);
    }
    size_t total = 0;
    for (size_t level = position.size(); level-- > 0;) {
        const size_t number = position[level];
        position[level] = total;
        total += number;
    }
    std::vector<node*> order(total);
    for (const auto& operators : byPrecedence) {
        for (node* term : operators) order[position[row(term)]++] = term;
    }
    return order;
}

void ZqCalculator::OrderOperatorStack() {
    const std::vector<node*> order = OrderOperators(terms.first, nullptr, 0);
    std::copy(order.begin(), order.end(), opOrder);
    opOrder[order.size()] = nullptr;
}
