// SPDX-License-Identifier: MIT
#include "Program.h"

#include "Helpers_String.h"
#include "WorkBudget.h"

#include <algorithm>
#include <utility>

namespace {

// Goes through the operators as the evaluator does. Of a term that is a value `start` is its place.
class Maker {
public:
    Maker(Program& result, const Deq& body, const std::vector<int32_t>& parameters) : program(result) {
        body.CopyTo(&terms);
        for (const node* original = body.first; original; original = original->next) {
            node* const term = nodes.empty() ? terms.first : nodes.back()->next;
            term->start = ~static_cast<Program::Place>(nodes.size());
            program.leaves.push_back({parameters[nodes.size()], original});
            nodes.push_back(term);
        }
    }

    bool Make(const std::vector<int32_t>& order) {
        if (std::any_of(nodes.begin(), nodes.end(), IsLongName)) return false;
        for (const int32_t position : order) {
            if (!Apply(nodes[static_cast<size_t>(position)])) return false;
        }
        if (terms.count != 1 || !IsValue(terms.first)) return false;
        program.result = terms.first->start;
        return true;
    }

private:
    static bool IsLongName(const node* term) { return term->type != TERM_NUMBER && isLongText(term->text); }

    static bool IsValue(const node* term) {
        return term && (term->type == TERM_NUMBER || term->type == TERM_NAME);
    }

    Program::Place NewRegister() {
        if (free.empty()) return static_cast<Program::Place>(program.registers++);
        const Program::Place place = free.back();
        free.pop_back();
        return place;
    }

    // Deletes a term whose value is used up.
    void Use(node* term) {
        if (IsValue(term) && term->start >= 0) free.push_back(term->start);
        terms.Del(term);
    }

    bool Apply(node* op) {
        if (op->type == OP_OPEN) return Open(op);
        return op->type == OP_CONVERT ? Convert(op) : Pair(op);
    }

    static bool IsName(const node* term) { return term && term->type == TERM_NAME; }

    bool IsParameter(const node* name) const {
        return program.leaves[static_cast<size_t>(~name->start)].parameter >= 0;
    }

    bool Convert(node* arrow) {
        const node *const from = arrow->prev, *const unit = arrow->next;
        if (!IsName(from) || !IsName(unit)) return false;
        Program::Conversion units = {from->start, unit->start, !IsParameter(from) && !IsParameter(unit)};
        const Program::Place to = NewRegister();
        terms.Del(arrow->next);
        terms.Del(arrow->prev);
        Program::Place converted = Program::NOWHERE;
        if (arrow->prev && arrow->prev->type == OP_UNIT_MARK) {
            terms.Del(arrow->prev);
            node* const left = arrow->prev;
            if (left && left->type == OP_CLOSE) return false;
            if (IsValue(left)) {
                converted = left->start;
                Use(left);
            }
        }
        program.steps.push_back(
            {OP_CONVERT, to, converted, static_cast<Program::Place>(program.conversions.size())});
        program.conversions.push_back(std::move(units));
        arrow->type = TERM_NUMBER;
        arrow->start = to;
        return true;
    }

    bool Pair(node* op) {
        node* const left = IsValue(op->prev) ? op->prev : nullptr;
        node* const right = op->type == OP_FACTORIAL ? nullptr : op->next;
        if (op->type != OP_FACTORIAL && !IsValue(right)) return false;
        const Program::Place to = NewRegister();
        program.steps.push_back(
            {op->type, to, left ? left->start : Program::NOWHERE, right ? right->start : Program::NOWHERE});
        if (left) Use(left);
        if (right) Use(right);
        op->type = TERM_NUMBER;
        op->start = to;
        return true;
    }

    bool Open(node* open) {
        if (open->prev && open->prev->type == TERM_FUNC) return Call(open);
        if (IsValue(open->prev) || !IsValue(open->next) || open->next->next->type != OP_CLOSE) return false;
        program.steps.push_back({OP_OPEN, Program::NOWHERE, Program::NOWHERE, Program::NOWHERE});
        terms.Del(open->next->next);
        terms.Del(open);
        return true;
    }

    bool Call(node* open) {
        Program::Call call;
        call.name = lowerCased(open->prev->text);
        call.level = open->level;
        call.terms = terms.count;
        for (node* term = open->next;; term = term->next->next) {
            if (!IsValue(term) || (term->next->type != OP_COMMA && term->next->type != OP_CLOSE))
                return false;
            call.arguments.push_back(term->start);
            if (term->next->type == OP_CLOSE) break;
        }
        const Program::Place to = NewRegister();
        const auto number = static_cast<Program::Place>(program.calls.size());
        program.steps.push_back({TERM_FUNC, to, Program::NOWHERE, number});
        program.calls.push_back(std::move(call));
        terms.Del(open->prev);
        while (open->next->type != OP_CLOSE) Use(open->next);
        terms.Del(open->next);
        open->type = TERM_NUMBER;
        open->start = to;
        return true;
    }

    Program& program;
    Deq terms;
    std::vector<node*> nodes; // by their positions; those of deleted terms are not used again
    std::vector<Program::Place> free;
};

} // namespace

void Program::Make(const Deq& body, const std::vector<int32_t>& parameters,
                   const std::vector<int32_t>& order) {
    if (!Maker(*this, body, parameters).Make(order)) *this = Program();
}
