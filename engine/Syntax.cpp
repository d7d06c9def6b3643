// SPDX-License-Identifier: MIT
#include "Syntax.h"

#include "Outcome.h"
#include "WorkBudget.h"

#include <algorithm>
#include <numeric>

// The last '(' without a partner.
static const node* lastOpen(const Deq& terms) {
    int32_t closed = 0;
    const node* term = terms.last;
    for (; term->type != OP_OPEN || closed > 0; term = term->prev)
        closed += term->type == OP_CLOSE ? 1 : term->type == OP_OPEN ? -1 : 0;
    return term;
}

static int checkDepths(const Deq& terms, Outcome& outcome, WorkCounters& work) {
    int32_t depth = 0;
    for (node* term = terms.first; term; term = term->next) {
        work.checked++;
        if (term->type == OP_OPEN) {
            depth++;
            if (term->next && term->next->type == OP_CLOSE)
                return outcome.FailAt(term, "** ERROR: empty parenthesis **\n");
        }
        term->level = depth;
        if (term->type == OP_CLOSE && --depth < 0)
            return outcome.FailAt(term, "** ERROR: missing parenthesis **\n");
    }
    return depth == 0 ? 0 : outcome.FailAt(lastOpen(terms), "** ERROR: missing parenthesis **\n");
}

// Whether an operand is still to come: what follows '!' or ')' has its left operand.
static bool isOpenEnded(const node* term) {
    return isOp(term->type) && term->type != OP_FACTORIAL && term->type != OP_CLOSE;
}

static int checkOperands(const node* term, Outcome& outcome) {
    const OpEntry& op = getOp(term->type);
    const char* number = nullptr;
    if (op.needsLeft && !term->prev)
        number = "1";
    else if (op.needsLeft && isOpenEnded(term->prev))
        number = "2";
    else if (op.needsRight && !term->next)
        number = "3";
    else if (op.needsRight && term->next->type == OP_CLOSE)
        number = "4";
    return number
               ? outcome.FailAt(term, "** ERROR %s: operator '%s' missing argument **\n", {number, op.text})
               : 0;
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

int checkSyntax(const Deq& terms, Outcome& outcome, WorkCounters& work) {
    if (checkDepths(terms, outcome, work) != 0) return STATUS_ERROR;
    std::vector<int32_t> raised; // the depths of the raised groups that are open
    const node* toRaise = nullptr;
    for (node* term = terms.first; term; term = term->next) {
        work.checked++;
        const int32_t depth = term->level;
        if (term == toRaise) raised.push_back(depth);
        term->level += static_cast<int32_t>(raised.size());
        if (!isOp(term->type)) continue;
        if (checkOperands(term, outcome) != 0) return STATUS_ERROR;
        if (term->type == OP_CLOSE && !raised.empty() && raised.back() == depth) raised.pop_back();
        if (term->type == OP_SUBTRACT && bindsTighterThanMinus(term->prev)) {
            term->level++;
            toRaise = groupBehind(term);
        }
    }
    return 0;
}

namespace {

struct Operator {
    node* term;
    int32_t level;
    int32_t precedence;
};

// Sorts by a number from 0 to `most` and keeps the order of equal ones: how many operators each number has is
// counted, and they are dealt out.
template <class Number> void deal(std::vector<Operator>& operators, int32_t most, Number numberOf) {
    std::vector<uint32_t> places(static_cast<size_t>(most) + 2);
    const auto place = [&](const Operator& op) { return places.begin() + numberOf(op); };
    for (const Operator& op : operators) place(op)[1]++;
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<Operator> dealt(operators.size());
    for (const Operator& op : operators) dealt[(*place(op))++] = op;
    operators.swap(dealt);
}

Operator operatorOf(node* term) {
    return {term, std::max(term->level, 0), getOp(term->type).precedence};
}

void orderMany(std::vector<node*>& order) {
    std::vector<Operator> operators(order.size());
    std::transform(order.begin(), order.end(), operators.begin(), operatorOf);
    const auto isLower = [](const Operator& a, const Operator& b) { return a.level < b.level; };
    const int32_t highest = std::max_element(operators.begin(), operators.end(), isLower)->level;
    deal(operators, MAX_PRECEDENCE, [](const Operator& op) { return op.precedence; });
    if (highest > 0) deal(operators, highest, [=](const Operator& op) { return highest - op.level; });
    std::transform(operators.begin(), operators.end(), order.begin(),
                   [](const Operator& op) { return op.term; });
}

void orderFew(std::vector<node*>& order) {
    const auto isBefore = [](const Operator& a, const Operator& b) {
        return a.level != b.level ? a.level > b.level : a.precedence < b.precedence;
    };
    for (size_t i = 1; i < order.size(); i++) {
        node* const term = order[i];
        const Operator op = operatorOf(term);
        size_t place = i;
        for (; place > 0 && isBefore(op, operatorOf(order[place - 1])); place--)
            order[place] = order[place - 1];
        order[place] = term;
    }
}

} // namespace

// A long list takes a time that grows with the number of terms, whatever their levels.
void orderOperators(const Deq& terms, std::vector<node*>& order) {
    constexpr size_t FEW = 16;
    order.clear();
    for (node* term = terms.first; term; term = term->next) {
        if (getOp(term->type).precedence != 0 && term->type != OP_CLOSE) order.push_back(term);
    }
    order.size() > FEW ? orderMany(order) : orderFew(order);
}
