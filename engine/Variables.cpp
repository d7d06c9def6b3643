// SPDX-License-Identifier: MIT
//
// Names, variables and the user's units.
#include "Calculator.h"
#include "Helpers_String.h"

#include <cstring>

bool ZqCalculator::IsValidVariable(const char* text) const {
    return IsValidName(text);
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

node* ZqCalculator::VariableExists(const char* name) const {
    return variables.Find(name);
}

// Of "unit name=definition".
std::string_view ZqCalculator::UnitName(std::string_view text) {
    const std::string_view head = "unit ";
    if (text.substr(0, head.size()) != head) return "";
    return text.substr(head.size(), text.find('=') - head.size());
}

node* ZqCalculator::UnitExists(const char* name) const {
    return unitLines.Find(name);
}

void ZqCalculator::AddVariable(const char* name, const qfloat value) {
    node* variable = new node;
    variable->type = TERM_NAME;
    variable->text = StrDuplicate(name);
    variables.Append(variable);
    variables.SetValue(variable, value);
}

void ZqCalculator::ForgetVariables() {
    variables.DeleteAll();
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
    variables.Delete(variable);
}

// Walks the variables only when some were put in since the last walk; the engine's own have valid names.
int ZqCalculator::CheckVariableNames() {
    if (checkedVariables == vars.insertions) return 0;
    for (node* variable = vars.first; variable; variable = variable->next) {
        work.names++;
        if (variable->text && IsValidVariable(variable->text)) continue;
        Fail("** ERROR: invalid variable name: %s **\n", {variable->text ? variable->text : ""});
        if (fullEntry) DeleteVariable(variable);
        return STATUS_ERROR;
    }
    checkedVariables = vars.insertions;
    return 0;
}

void ZqCalculator::InitializeVarsList() {
    ForgetVariables();
    AddVariable("ans", qzero);
    AddVariable("pi", qpi);
}
