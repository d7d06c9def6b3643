// SPDX-License-Identifier: MIT
#include "Calculator.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cstring>

CFunctionList funcs;

Function::~Function() {
    delete[] name;
    delete body;
}

CFunctionList::~CFunctionList() {
    for (Function* function : functions) delete function;
}

static void addParameters(Function* function, char* argText) {
    while (argText && *argText && *argText != ',') {
        char* comma = strchr(argText, ',');
        if (comma) *comma = '\0';
        function->args.Push(StrDuplicate(argText))->type = TERM_NAME;
        function->argCount++;
        argText = comma ? comma + 1 : nullptr;
    }
}

// Registration compares names alone: the rule for names that begin with "log" answers look-ups.
Function* CFunctionList::AddFunction(const char* name, char* argText, const Deq* body) {
    Function* function = new Function;
    function->name = StrDuplicate(name);
    addParameters(function, argText);
    Function* old = nullptr;
    for (Function* candidate : functions) {
        if (candidate->argCount == function->argCount && strIsEqualI(candidate->name, name)) old = candidate;
    }
    if (body && !old) old = FunctionExists(name, function->argCount);
    if (old && !old->body) {
        delete function;
        return nullptr;
    }
    if (old) DeleteFunction(old);
    if (body) {
        function->body = new Deq;
        body->CopyTo(function->body);
    }
    functions.push_back(function);
    return function;
}

void CFunctionList::DeleteFunction(const Function* function) {
    auto found = std::find(functions.begin(), functions.end(), function);
    if (found == functions.end()) return;
    delete *found;
    functions.erase(found);
}

Function* CFunctionList::FunctionExists(const char* name, int32_t argCount) {
    const bool isLog = strIsEqualNI(name, "log", 3);
    for (Function* candidate : functions) {
        if (argCount != -1 && candidate->argCount != argCount) continue;
        if (strIsEqualI(candidate->name, name)) return candidate;
        if (isLog && !candidate->body) return candidate;
    }
    return nullptr;
}

bool ZqCalculator::IsValidVariable(const char* text) const {
    if (!IsLetter(*text)) return false;
    for (; *text; text++) {
        if (!IsLetter(*text) && !IsDigit(*text) && *text != '_') return false;
    }
    return true;
}

node* ZqCalculator::VariableExists(const char* name) const {
    for (node* variable = vars.first; variable; variable = variable->next) {
        if (strIsEqual(variable->text, name)) return variable;
    }
    return nullptr;
}

static void addVariable(Deq& vars, const char* name, const qfloat value) {
    node* variable = vars.Push(StrDuplicate(name));
    variable->type = TERM_NAME;
    variable->SetValue(value);
}

void ZqCalculator::InitializeVarsList() {
    vars.Clear();
    target = nullptr;
    lastValue = nullptr;
    lastName = nullptr;
    addVariable(vars, "ans", qzero);
    addVariable(vars, "pi", qpi);
}
