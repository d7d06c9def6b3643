// SPDX-License-Identifier: MIT
//
// Spends the work of the entry that runs, and says in the message why it has to stop.
#pragma once

#include "WorkBudget.h"

#include <cstdint>
#include <functional>

struct Outcome;
struct Statement;
struct WorkCounters;

class Spending {
public:
    using InterruptCheck = bool (*)();

    // All of them have to live longer.
    Spending(const Statement& theStatement, Outcome& theOutcome, const InterruptCheck& theCheck,
             WorkCounters& theWork)
        : statement(theStatement), outcome(theOutcome), interruptCheck(theCheck), work(theWork) {}

    WorkBudget budget;

    // Counts work before it is done, and asks for an interruption now and then. Returns 0, or -1 with a
    // message when the evaluation has to stop: a preview at its limit, an entry that is interrupted.
    int Spend(uint64_t units) {
        const WorkBudget::Next next = budget.Spend(units);
        return next == WorkBudget::Next::GO_ON ? 0 : Stop(next);
    }

    // Asks now. Returns 0, or -1 with a message.
    int AskForInterruption();

    // What the unit library asks before it works; `isStopped` is set, with a message, when it must not go on.
    // The flag has to live longer.
    std::function<bool(uint64_t)> ForUnits(bool& isStopped);

private:
    int Stop(WorkBudget::Next next);

    const Statement& statement;
    Outcome& outcome;
    const InterruptCheck& interruptCheck;
    WorkCounters& work;
};
