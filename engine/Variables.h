// SPDX-License-Identifier: MIT
//
// The variables: "ans" first, then "pi", then those that a person assigned, in their order.
#pragma once

#include "NamedTerms.h"
#include "Outcome.h"
#include "Statement.h"
#include "WorkBudget.h"

#include <memory>
#include <string_view>

class Variables {
public:
    // The list holds them; its owner may change it in other ways too, but not while an entry runs. A variable
    // that is deleted is no statement's target any more, and not the one that was last assigned.
    Variables(Deq& theList, Statement& theStatement, Outcome& theOutcome, Undo& theUndo,
              WorkCounters& theWork)
        : list(theList), statement(theStatement), outcome(theOutcome), work(theWork),
          terms(
              theList, [](std::string_view text) { return text; }, theUndo, theWork.indexed) {}

    node* First() const { return list.first; } // "ans"

    // The variable with exactly this name, or null.
    node* Find(std::string_view name) { return terms.Find(name); }

    void Append(std::unique_ptr<node> variable) { terms.Append(variable.release()); }
    void SetValue(node* variable, const qfloat value) { terms.SetValue(variable, value); }
    void Delete(node* variable);

    // Leaves "ans" = 0 and "pi".
    void Reset();

    // Whether all have valid names: someone may have put others into the list. Returns 0, or -1 with a
    // message; then the full entry deletes the first that has not. It walks only a list that was changed in
    // another way.
    int CheckNames();

private:
    void Add(const char* name, const qfloat value);

    Deq& list;
    Statement& statement;
    Outcome& outcome;
    WorkCounters& work;
    NamedTerms terms;
};

// A term of this name without a value.
std::unique_ptr<node> makeTerm(std::string_view name);
