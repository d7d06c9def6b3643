// SPDX-License-Identifier: MIT
//
// What the parts of the engine that read, define and evaluate work on. All of it has to live longer than
// they.
#pragma once

#include "Outcome.h"
#include "Settings.h"
#include "Statement.h"
#include "Variables.h"
#include "WorkBudget.h"

struct EntryContext {
    Statement& statement;
    Outcome& outcome;
    EntrySettings& settings;
    Variables& variables;
    Spending& spending;
    WorkCounters& work;
};
