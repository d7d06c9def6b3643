// SPDX-License-Identifier: MIT
//
// Functions belong to the process: a test that wants to begin like a new calculator removes them first.
#pragma once

#include "Functions.h"

inline void deleteAllFunctions() {
    while (const Function* function = funcs.Get(0)) funcs.DeleteFunction(function);
}
