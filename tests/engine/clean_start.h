// SPDX-License-Identifier: MIT
//
// Functions and units belong to the process: a test that wants to begin like a new calculator removes them
// first.
#pragma once

#include "Functions.h"
#include "units.h"

inline void deleteAllFunctions() {
    while (const Function* function = funcs.Get(0)) funcs.DeleteFunction(function);
}

// The catalogue is built anew by the next conversion.
inline void deleteAllUnits() {
    unitFreeMemory();
    units_clear_exception();
}
