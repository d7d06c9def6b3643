// SPDX-License-Identifier: MIT
//
// Calculators for the fuzz targets: each begins like a new program, and long entries are interrupted.
#pragma once

#include "../engine/clean_start.h"
#include "Calculator.h"
#include "fuzz.h"

#include <cstdlib>
#include <memory>
#include <string>

// So many questions for an interruption are answered with no, and the next one with yes.
class Patience {
public:
    static constexpr int QUESTIONS = 20;

    static void Begin() { questionsLeft = QUESTIONS; }
    static bool IsOver() { return questionsLeft-- <= 0; }

private:
    static inline int questionsLeft = QUESTIONS;
};

// Whether an entry of the text, or a line of a file, may change the unit library. The header of a file's
// section does not.
inline bool mayChangeUnits(std::string_view text) {
    const std::string lower = lowerCased(std::string(text));
    size_t word = lower.find("unit");
    while (word < lower.size() && lower.compare(word, 9, "units ###") == 0)
        word = lower.find("unit", word + 4);
    return word < lower.size() || lower.find("del") < lower.size();
}

// Whether it may change a function, too.
inline bool mayChangeFunctions(std::string_view text) {
    return text.find('=') < text.size() || lowerCased(std::string(text)).find("del") < text.size();
}

// A calculator for such a text. Functions and units belong to the process, so there is one at a time; those
// that no text since could change are as they were at the start.
inline std::unique_ptr<ZqCalculator> newCalculator(std::string_view text) {
    static bool areFunctionsNew = false;
    static bool areUnitsNew = true;
    auto calc = std::make_unique<ZqCalculator>();
    if (!areUnitsNew) deleteAllUnits();
    if (areFunctionsNew) {
        calc->InitializeVarsList();
        calc->initialized = true;
    } else {
        deleteAllFunctions();
        calc->InitializeFunctionsAndVars();
    }
    areFunctionsNew = !mayChangeFunctions(text);
    areUnitsNew = !mayChangeUnits(text);
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
