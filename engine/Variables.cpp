// SPDX-License-Identifier: MIT
#include "Variables.h"

#include "Helpers_String.h"

std::unique_ptr<node> makeTerm(std::string_view name) {
    std::unique_ptr<node> variable(node::WithRoom());
    variable->type = TERM_NAME;
    variable->SetText(name);
    return variable;
}

void Variables::Add(const char* name, const qfloat value) {
    auto variable = makeTerm(name);
    variable->SetValue(value);
    Append(variable.release());
}

void Variables::Delete(node* variable) {
    if (outcome.lastName == variable->text) {
        outcome.lastName = nullptr;
        outcome.lastValue = nullptr;
    }
    if (statement.target == variable) statement.target = nullptr;
    NamedTerms::Delete(variable);
}

void Variables::Reset() {
    DeleteAll();
    statement.target = nullptr;
    outcome.lastValue = nullptr;
    outcome.lastName = nullptr;
    Add("ans", qzero);
    Add("pi", qpi);
}

int Variables::CheckNames() {
    Find(""); // notices other changes
    if (!isForeign) return 0;
    for (node* variable = First(); variable; variable = variable->next) {
        work.names++;
        if (variable->text && isValidName(variable->text)) continue;
        outcome.Fail("** ERROR: invalid variable name: %s **\n", {variable->text ? variable->text : ""});
        if (statement.fullEntry) Delete(variable);
        return STATUS_ERROR;
    }
    isForeign = false;
    return 0;
}
