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

class Variables : public NamedTerms {
public:
    // The list holds them; its owner may change it in other ways too, but not while an entry runs. A variable
    // that is deleted is no statement's target any more, and not the one that was last assigned.
    Variables(Deq& terms, Statement& theStatement, Outcome& theOutcome, Undo& changes, WorkCounters& theWork)
        : NamedTerms(
              terms, [](std::string_view text) { return text; }, changes, theWork.indexed),
          statement(theStatement), outcome(theOutcome), work(theWork) {}

    void Delete(node* variable);

    // Leaves "ans" = 0 and "pi".
    void Reset();

    // Whether all have valid names: someone may have put others into the list. Returns 0, or -1 with a
    // message; then the full entry deletes the first that has not. It walks only a list that was changed in
    // another way.
    int CheckNames();

private:
    void Add(const char* name, const qfloat value);

    Statement& statement;
    Outcome& outcome;
    WorkCounters& work;
};

// A term of this name without a value.
std::unique_ptr<node> makeTerm(std::string_view name);
