// SPDX-License-Identifier: MIT
#include "EntrySnapshot.h"

#include "units.h"

#include <cstring>

EntrySnapshot::EntrySnapshot(ZqCalculator& calculator) : calc(calculator), lastAnswer(calc.lastAnswer) {
    Keep(calc.target);
    Keep(calc.answer);
    Keep(calc.lastName); // of a variable, which comes back as the same term
    Keep<EntrySettings>(calc);
    Keep(calc.gospelShown);
    calc.variables.BeginChanges();
    calc.unitLines.BeginChanges();
    funcs.BeginChanges();
    units_begin_changes();
}

EntrySnapshot::~EntrySnapshot() {
    calc.variables.EndChanges();
    calc.unitLines.EndChanges();
    funcs.EndChanges();
    units_end_changes();
}

void EntrySnapshot::Restore() {
    const bool allChecked = calc.checkedVariables == calc.vars.insertions;
    calc.variables.UndoChanges();
    if (allChecked) calc.checkedVariables = calc.vars.insertions; // those that came back had valid names
    calc.unitLines.UndoChanges();
    funcs.UndoChanges();
    units_undo_changes();
    memcpy(calc.lastAnswer, lastAnswer.c_str(), lastAnswer.size() + 1);
    for (const auto& putBack : settings) putBack();
}
