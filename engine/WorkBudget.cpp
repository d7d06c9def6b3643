// SPDX-License-Identifier: MIT
#include "WorkBudget.h"

#include "Outcome.h"
#include "Statement.h"

int Spending::Stop(WorkBudget::Next next) {
    if (next == WorkBudget::Next::Ask) return AskForInterruption();
    return outcome.Fail(statement.fullEntry ? "** ERROR: too much work **\n"
                                            : "** ERROR: too much work for a preview **\n");
}

int Spending::AskForInterruption() {
    budget.Asked();
    outcome.interrupted = statement.fullEntry && interruptCheck && interruptCheck();
    return outcome.interrupted ? outcome.Fail("** ERROR: interrupted **\n") : 0;
}

std::function<bool(uint64_t)> Spending::ForUnits(UnitsAccount& account) {
    return [this, &account](uint64_t units) {
        if (account.charges) account.charges->push_back(units);
        account.isStopped = SpendForUnits(units) != 0;
        return !account.isStopped;
    };
}
