// SPDX-License-Identifier: MIT
//
// Calls of functions, and the report of arithmetic errors.
#include "Calculator.h"

#include "Helpers_String.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

void ZqCalculator::InitializeFunctionsAndVars() {
    static const char* const names[] = {"sinc", "tanh", "cosh", "sinh", "rand", "floor", "round",
                                        "ceil", "abs",  "atan", "acos", "asin", "tan",   "cos",
                                        "sin",  "exp",  "ln",   "log",  "sqrt"};
    InitializeVarsList();
    srand(static_cast<unsigned>(clock()));
    for (const char* name : names) {
        char parameter[] = "x";
        funcs.AddFunction(name, parameter, nullptr);
    }
    initialized = true;
}

node* ZqCalculator::ProcFunction(node* functionTerm) {
    Fail("** ERROR: function '%s' is not available **\n", {functionTerm->text});
    return nullptr;
}

int ZqCalculator::DefineFunction(const char*) {
    return Fail("** ERROR: the definition of functions is not available **\n");
}

int checkMathError(const char* name, char* out) {
    const int code = merror;
    if (code == 0) return 0;
    merror = 0;
    const char* text = mathErrorTexts[code >= 0 && code < 7 ? code : 0];
    if (!out) return code;
    if (name)
        snprintf(out, TEXT_SIZE, "** ERROR: '%.1000s' %s **\n", StrShown(name).c_str(), text);
    else
        snprintf(out, TEXT_SIZE, "** ERROR: %s **\n", text);
    return code;
}
