// SPDX-License-Identifier: MIT
//
// A calculator that begins with the predefined functions alone.
#pragma once

#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <string>

inline std::string repeated(const std::string& text, size_t times) {
    std::string out;
    for (size_t i = 0; i < times; i++) out += text;
    return out;
}

class Functions : public testing::Test {
protected:
    Functions() {
        deleteAllFunctions();
        deleteAllUnits();
        calc.InitializeFunctionsAndVars();
    }
    ~Functions() override { deleteAllFunctions(); }
    Functions(const Functions&) = delete;
    Functions& operator=(const Functions&) = delete;

    ZqCalculator calc;

    int Enter(const std::string& line) { return calc.ProcessEntry(line.c_str(), false); }
    int Preview(const std::string& line) { return calc.ProcessEntry(line.c_str(), true); }

    std::string Answer(const std::string& line) {
        return Enter(line) == STATUS_RESULT ? calc.resultLine : calc.message;
    }

    // A chain: f1(x)=x+1, and each of the others calls the one before it twice.
    void DefineChain(int length) {
        Enter("f1(x)=x+1");
        for (int i = 2; i <= length; i++) {
            const std::string before = "f" + std::to_string(i - 1) + "(x)";
            ASSERT_EQ(STATUS_MESSAGE, Enter("f" + std::to_string(i) + "(x)=" + before + "+" + before));
        }
    }
};
