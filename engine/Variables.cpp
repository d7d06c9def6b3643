// SPDX-License-Identifier: MIT
//
// Names, variables and the user's units.
#include "Calculator.h"
#include "Helpers_String.h"

#include <cstring>

bool ZqCalculator::IsValidVariable(const char* text) const {
    if (!IsLetter(*text)) return false;
    for (; *text; text++) {
        if (!IsLetter(*text) && !IsDigit(*text) && *text != '_') return false;
    }
    return true;
}

bool ZqCalculator::IsValidArgList(const char* text) {
    const std::string list = text;
    size_t start = 0;
    while (start <= list.size()) {
        const size_t comma = std::min(list.find(',', start), list.size());
        const std::string piece = list.substr(start, comma - start);
        if (!IsValidVariable(piece.c_str())) {
            Fail("** ERROR: invalid argument: %s **\n", {piece});
            return false;
        }
        start = comma + 1;
    }
    return true;
}

// A line asks for every name in it, and a preview is evaluated at every key press. Insertions only grow, so that
// they and the number of nodes tell every change of the list. One more variable at the end is the usual one.
void ZqCalculator::UpdateVariableIndex() const {
    VariableIndex& index = variableIndex;
    if (index.insertions == vars.insertions && index.count == vars.count) return;
    const bool isOneMore = vars.insertions == index.insertions + 1 && vars.count == index.count + 1 &&
                           vars.last->prev == index.last;
    node* variable = vars.last;
    if (!isOneMore) {
        index.byName.clear();
        variable = vars.first;
    }
    for (; variable; variable = variable->next) {
        if (variable->text) index.byName.emplace(variable->text, variable);
    }
    index.insertions = vars.insertions;
    index.count = vars.count;
    index.last = vars.last;
}

node* ZqCalculator::VariableExists(const char* name) const {
    UpdateVariableIndex();
    const auto found = variableIndex.byName.find(name);
    return found == variableIndex.byName.end() ? nullptr : found->second;
}

node* ZqCalculator::UnitExists(const char* name) const {
    const std::string head = "unit " + std::string(name) + "=";
    for (node* line = unitDefs.first; line; line = line->next) {
        if (line->text && strncmp(line->text, head.c_str(), head.size()) == 0) return line;
    }
    return nullptr;
}

node* ZqCalculator::AddVariable(const char* name, const qfloat value) {
    node* variable = vars.Push(StrDuplicate(name));
    variable->type = TERM_NAME;
    variable->SetValue(value);
    return variable;
}

void ZqCalculator::ForgetVariables() {
    vars.Clear();
    target = nullptr;
    lastValue = nullptr;
    lastName = nullptr;
}

void ZqCalculator::DeleteVariable(node* variable) {
    if (lastName == variable->text) {
        lastName = nullptr;
        lastValue = nullptr;
    }
    if (target == variable) target = nullptr;
    vars.Del(variable);
}

void ZqCalculator::InitializeVarsList() {
    ForgetVariables();
    AddVariable("ans", qzero);
    AddVariable("pi", qpi);
}
