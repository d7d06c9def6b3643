// SPDX-License-Identifier: MIT
#include "Syntax.h"

#include "Outcome.h"
#include "WorkBudget.h"

#include <algorithm>
#include <numeric>

namespace {

// The last '(' without a partner.
const node* lastOpen(const Deq& terms) {
    int32_t closed = 0;
    const node* term = terms.last;
    for (; term->type != OP_OPEN || closed > 0; term = term->prev)
        closed += term->type == OP_CLOSE ? 1 : term->type == OP_OPEN ? -1 : 0;
    return term;
}

// Whether an operand is still to come: what follows '!' or ')' has its left operand.
bool isOpenEnded(const node* term) {
    return isOp(term->type) && term->type != OP_FACTORIAL && term->type != OP_CLOSE;
}

// Which of its operands the operator lacks, as a number of the error; null: none.
const char* lackedOperand(const node* term) {
    const OpEntry& op = getOp(term->type);
    if (op.needsLeft && !term->prev) return "1";
    if (op.needsLeft && isOpenEnded(term->prev)) return "2";
    if (op.needsRight && !term->next) return "3";
    return op.needsRight && term->next->type == OP_CLOSE ? "4" : nullptr;
}

// Whether a '-' behind this term negates before the term's operator is applied. Operators of precedence 0
// bind nothing.
bool bindsTighterThanMinus(const node* term) {
    if (!term || !isOpenEnded(term)) return false;
    const int precedence = getOp(term->type).precedence;
    return precedence > 0 && precedence < getOp(OP_SUBTRACT).precedence;
}

// The '(' of the group or call behind a '-', or null.
const node* groupBehind(const node* minus) {
    const node* term = minus->next;
    if (term && (term->type == TERM_FUNC || term->type == TERM_NAME)) term = term->next;
    return term && term->type == OP_OPEN ? term : nullptr;
}

int failParenthesis(const node* term, Outcome& outcome) {
    return outcome.FailAt(term, "** ERROR: missing parenthesis **\n");
}

int32_t levelOf(const node* op) {
    return std::max(op->level, 0);
}

int32_t precedenceOf(const node* term) {
    return getOp(term->type).precedence;
}

struct Range {
    int32_t least = INT32_MAX;
    int32_t most = INT32_MIN;

    void Add(int32_t number) {
        least = std::min(least, number);
        most = std::max(most, number);
    }
};

// Sorts by a number in this range and keeps the order of equal ones: how many operators each number has is
// counted, and they are dealt out.
template <class Number> void deal(std::vector<node*>& order, Range range, Number numberOf) {
    if (range.least == range.most) return;
    std::vector<uint32_t> places(static_cast<size_t>(range.most - range.least) + 2);
    const auto place = [&](const node* op) { return places.begin() + (numberOf(op) - range.least); };
    for (const node* op : order) place(op)[1]++;
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<node*> dealt(order.size());
    for (node* op : order) dealt[(*place(op))++] = op;
    order.swap(dealt);
}

void orderFew(std::vector<node*>& order) {
    const auto isBefore = [](const node* a, const node* b) {
        return levelOf(a) != levelOf(b) ? levelOf(a) > levelOf(b) : precedenceOf(a) < precedenceOf(b);
    };
    for (size_t i = 1; i < order.size(); i++) {
        node* const op = order[i];
        size_t place = i;
        for (; place > 0 && isBefore(op, order[place - 1]); place--) order[place] = order[place - 1];
        order[place] = op;
    }
}

} // namespace

// A wrong parenthesis is told before the first operator without its operands, wherever that is.
int checkSyntax(const Deq& terms, Outcome& outcome, WorkCounters& work, int32_t& operators) {
    work.checked += static_cast<uint64_t>(terms.count);
    int32_t values = 0;
    int32_t depth = 0;
    std::vector<int32_t> raised; // the depths of the raised groups that are open
    const node* toRaise = nullptr;
    const node* wrong = nullptr;
    for (node* term = terms.first; term; term = term->next) {
        if (term->type == OP_OPEN) {
            depth++;
            if (term->next && term->next->type == OP_CLOSE)
                return outcome.FailAt(term, "** ERROR: empty parenthesis **\n");
            if (term == toRaise) raised.push_back(depth);
        }
        term->level = depth + static_cast<int32_t>(raised.size());
        if (term->type == OP_CLOSE) {
            if (!raised.empty() && raised.back() == depth) raised.pop_back();
            if (--depth < 0) return failParenthesis(term, outcome);
        } else if (term->type != OP_OPEN && isOp(term->type)) {
            if (!wrong && lackedOperand(term)) wrong = term;
            if (term->type == OP_SUBTRACT && bindsTighterThanMinus(term->prev)) {
                term->level++;
                toRaise = groupBehind(term);
            }
        } else if (term->type != OP_OPEN) {
            values += term->type == TERM_NAME || term->type == TERM_FUNC || term->type == TERM_NUMBER ? 1 : 0;
        }
    }
    if (depth != 0) return failParenthesis(lastOpen(terms), outcome);
    if (!wrong) return operators = terms.count - values, 0;
    return outcome.FailAt(wrong, "** ERROR %s: operator '%s' missing argument **\n",
                          {lackedOperand(wrong), getOp(wrong->type).text});
}

// A long list takes a time that grows with the number of terms, whatever their levels.
void orderOperators(const Deq& terms, std::vector<node*>& order) {
    constexpr size_t FEW = 16;
    Range precedences;
    Range depths; // the deepest first
    order.clear();
    order.reserve(static_cast<size_t>(terms.count) + 1); // the caller's null ends it
    for (node* term = terms.first; term; term = term->next) {
        const int32_t precedence = precedenceOf(term);
        if (precedence == 0 || term->type == OP_CLOSE) continue;
        order.push_back(term);
        precedences.Add(precedence);
        depths.Add(-levelOf(term));
    }
    if (order.size() <= FEW) return orderFew(order);
    deal(order, precedences, precedenceOf);
    deal(order, depths, [](const node* op) { return -levelOf(op); });
}
