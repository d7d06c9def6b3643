// SPDX-License-Identifier: MIT
#include "EntrySnapshot.h"

#include "Helpers_String.h"
#include "units.h"

#include <cstring>

EntrySnapshot::EntrySnapshot(const ZqCalculator& calc)
    : lastAnswer(calc.lastAnswer), lastName(calc.lastName ? calc.lastName : ""),
      hasLastName(calc.lastName != nullptr), degreeMode(calc.degreeMode), sciMode(calc.sciMode),
      sigFigs(calc.sigFigs), european(calc.european), histStack(calc.histStack),
      displayBase(calc.displayBase), gospelShown(calc.gospelShown) {
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        variables.emplace_back();
        variables.back().name = variable->text;
        qmov(*variable->value, variables.back().value);
    }
    for (const node* unit = calc.unitDefs.first; unit; unit = unit->next) units.emplace_back(unit->text);
    funcs.BeginChanges();
    units_begin_changes();
}

EntrySnapshot::~EntrySnapshot() {
    funcs.EndChanges();
    units_end_changes();
}

void EntrySnapshot::Restore(ZqCalculator& calc) const {
    funcs.UndoChanges();
    calc.ForgetVariables();
    for (const Variable& variable : variables) {
        const node* restored = calc.AddVariable(variable.name.c_str(), variable.value);
        if (hasLastName && variable.name == lastName) calc.lastName = restored->text;
    }
    RestoreUnits(calc);
    memcpy(calc.lastAnswer, lastAnswer.c_str(), lastAnswer.size() + 1);
    calc.degreeMode = degreeMode;
    calc.sciMode = sciMode;
    calc.sigFigs = sigFigs;
    calc.european = european;
    calc.histStack = histStack;
    calc.displayBase = displayBase;
    calc.gospelShown = gospelShown;
}

void EntrySnapshot::RestoreUnits(ZqCalculator& calc) const {
    units_undo_changes();
    calc.unitDefs.Clear();
    for (const std::string& line : units) calc.unitDefs.Push(StrDuplicate(line))->type = TERM_NAME;
}
