// SPDX-License-Identifier: MIT
//
// Calculators for the fuzz targets: each begins like a new program, and long entries are interrupted.
#pragma once

#include "../engine/clean_start.h"
#include "Calculator.h"
#include "fuzz.h"
#include "unitlist.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

// So many questions for an interruption are answered with no, and the next one with yes.
class Patience {
public:
    static constexpr int QUESTIONS = 20;

    static void Begin() { questionsLeft = QUESTIONS; }
    static bool IsOver() { return questionsLeft-- <= 0; }

private:
    static inline int questionsLeft = QUESTIONS;
};

// Removes the functions that were added to those of a new program. False when one of these is not there any
// more.
inline bool removeAddedFunctions() {
    const std::vector<Builtin>& own = builtinTable();
    std::vector<const Function*> added;
    size_t kept = 0;
    const auto isOwn = [](const Function& function, const Builtin& builtin) {
        if (std::strcmp(function.name, builtin.name) != 0) return false;
        if (!function.body || !builtin.definition) return !function.body && !builtin.definition;
        const std::string head = std::string(builtin.name) + '(' + builtin.arguments + ")=";
        return function.ToString() == head + builtin.definition;
    };
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (kept < own.size() && isOwn(*function, own[kept]))
            kept++;
        else
            added.push_back(function);
    }
    for (const Function* function : added) funcs.DeleteFunction(function);
    return kept == own.size();
}

// Has the units of a new program again. Building the catalogue takes longer than most runs.
inline void renewUnits() {
    static const size_t own = units_names().size();
    size_t kept = 0;
    for (const std::string& name : units_names()) {
        if (unitTable.Find(name)->position < own)
            kept++;
        else
            removeUnit(name.c_str());
    }
    if (kept == own) return;
    deleteAllUnits();
    unitInitialize();
}

// A calculator as in a new program. Functions and units belong to the process, so there is one at a time.
inline std::unique_ptr<ZqCalculator> newCalculator() {
    static uint64_t functions = 0; // their versions when they were those of a new program
    static uint64_t units = 0;
    static char randomState[8];
    // With a state of the smallest size each entry can begin with the same random numbers quickly.
    if (functions == 0) initstate(1, randomState, sizeof randomState);
    auto calc = std::make_unique<ZqCalculator>();
    if (units != units_version()) renewUnits();
    units = units_version();
    if (functions == funcs.Version() || (functions != 0 && removeAddedFunctions())) {
        calc->InitializeVarsList();
        calc->initialized = true;
    } else {
        deleteAllFunctions();
        calc->InitializeFunctionsAndVars();
    }
    funcs.TabCompleteReset();
    units_clear_exception();
    functions = funcs.Version();
    merror = 0;
    subflg = 0;
    static_cast<EntrySettings&>(*calc) = standardSettings();
    calc->traced = false;
    calc->interruptCheck = Patience::IsOver;
    return calc;
}

// One entry. Random numbers begin anew with each.
inline int enter(ZqCalculator& calc, const std::string& line, bool isQuick) {
    std::srand(1); // NOLINT(cert-msc51-cpp): always the same ones
    Patience::Begin();
    return calc.ProcessEntry(line, isQuick);
}

// All that an entry has answered.
inline std::string answerOf(const ZqCalculator& calc, int status) {
    std::string text = std::to_string(status) + '|' + calc.resultLine + '|' + calc.message;
    text += '|' + std::to_string(calc.errorRange.start) + '+' + std::to_string(calc.errorRange.length);
    return text + (calc.overflowed ? "|overflowed\n" : "\n");
}
