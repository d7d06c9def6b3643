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

static int32_t levelOf(const node* term) {
    return std::max(term->level, 0);
}

static int32_t precedenceOf(const node* term) {
    return getOp(term->type).precedence;
}

// Whether the first is applied earlier wherever the two stand.
static bool isBefore(const node* a, const node* b) {
    return levelOf(a) != levelOf(b) ? levelOf(a) > levelOf(b) : precedenceOf(a) < precedenceOf(b);
}

// Sorts by a number from 0 to `most` and keeps the order of equal ones: how many terms each number has is
// counted, and they are dealt out.
template <class Number> static void deal(std::vector<node*>& order, int32_t most, Number numberOf) {
    std::vector<uint32_t> places(static_cast<size_t>(most) + 2);
    const auto place = [&](const node* term) { return places.begin() + numberOf(term); };
    for (const node* term : order) place(term)[1]++;
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<node*> dealt(order.size());
    for (node* term : order) dealt[(*place(term))++] = term;
    order.swap(dealt);
}

// A short list is sorted by insertion, a long one in a time that grows with the number of terms, whatever
// their levels.
void orderOperators(const Deq& terms, std::vector<node*>& order) {
    constexpr size_t SHORT = 16;
    order.clear();
    int32_t highest = 0;
    for (node* term = terms.first; term; term = term->next) {
        if (precedenceOf(term) == 0 || term->type == OP_CLOSE) continue;
        order.push_back(term);
        highest = std::max(highest, levelOf(term));
    }
    if (order.size() > SHORT) {
        deal(order, MAX_PRECEDENCE, precedenceOf);
        if (highest > 0) deal(order, highest, [=](const node* term) { return highest - levelOf(term); });
        return;
    }
    for (size_t i = 1; i < order.size(); i++) {
        node* const term = order[i];
        size_t place = i;
        for (; place > 0 && isBefore(term, order[place - 1]); place--) order[place] = order[place - 1];
        order[place] = term;
    }
}
