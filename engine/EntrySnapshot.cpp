// SPDX-License-Identifier: MIT
#include "EntrySnapshot.h"

#include "units.h"

#include <cstring>

EntrySnapshot::EntrySnapshot(ZqCalculator& calculator)
    : calc(calculator), target(calc.target), lastAnswer(calc.lastAnswer), lastName(calc.lastName),
      degreeMode(calc.degreeMode), sciMode(calc.sciMode), sigFigs(calc.sigFigs), european(calc.european),
      histStack(calc.histStack), displayBase(calc.displayBase), gospelShown(calc.gospelShown) {
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
    calc.target = target;
    calc.lastName = lastName;
    memcpy(calc.lastAnswer, lastAnswer.c_str(), lastAnswer.size() + 1);
    calc.degreeMode = degreeMode;
    calc.sciMode = sciMode;
    calc.sigFigs = sigFigs;
    calc.european = european;
    calc.histStack = histStack;
    calc.displayBase = displayBase;
    calc.gospelShown = gospelShown;
}
