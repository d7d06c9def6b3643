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

node* ZqCalculator::VariableExists(const char* name) const {
    for (node* variable = vars.first; variable; variable = variable->next) {
        if (strIsEqual(variable->text, name)) return variable;
    }
    return nullptr;
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
