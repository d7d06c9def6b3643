// SPDX-License-Identifier: MIT
//
// A calculator and the file that holds what was defined between two runs.
#pragma once

#include "../engine/functions_fixture.h"
#include "DefinitionsFile.h"
#include "FileKeeping.h"
#include "temporary_folder.h"

#include <memory>
#include <string>

const char* const EMPTY_FILE =
    "### FUNCTIONS ###\n"
    "mod(x,d)=x%d\n"
    "### VARIABLES ###\n"
    "ans=0\n"
    "pi=3.141592653589793238462643383279502884197169399375105820974944592307816406286208"
    "998628034825342117068\n"
    "### CUSTOM UNITS ###\n"
    "### HISTORY ###\n";

// A calculator as one run of the program has it, and the file between two runs.
class DefinitionsFile : public testing::Test {
protected:
    DefinitionsFile() { StartAgain(); }
    ~DefinitionsFile() override { deleteAllFunctions(); }
    DefinitionsFile(const DefinitionsFile&) = delete;
    DefinitionsFile& operator=(const DefinitionsFile&) = delete;

    TemporaryFolder folder;
    const std::string path = folder.File("functions.txt");
    std::unique_ptr<ZqCalculator> calc;

    void StartAgain() {
        deleteAllFunctions();
        deleteAllUnits();
        calc = std::make_unique<ZqCalculator>();
        calc->InitializeFunctionsAndVars();
    }

    int Enter(const std::string& line) { return calc->ProcessEntry(line.c_str(), false); }
    std::string Answer(const std::string& line) {
        return Enter(line) == STATUS_RESULT ? calc->resultLine : calc->message;
    }
    std::string Text() const { return definitionsText(*calc); }

    // Ends this run and begins the next one.
    DefinitionsRead NextRun() {
        EXPECT_TRUE(writeFileAtomically(path, Text()));
        StartAgain();
        return readDefinitions(*calc, path);
    }

    // The file comes through whole: what is written after it was read is the same text.
    void ExpectNothingLost() {
        const std::string before = Text();
        const DefinitionsRead read = NextRun();
        EXPECT_TRUE(read.opened);
        EXPECT_FALSE(read.damaged) << before;
        EXPECT_EQ(before, Text());
    }

    // A run that begins with this file; whether the file counts as damaged.
    bool IsDamaged(const std::string& text) {
        StartAgain();
        putContent(path, text);
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_TRUE(read.opened);
        return read.damaged;
    }
};

inline std::string fileWith(const std::string& lines, const std::string& history = "") {
    return "### FUNCTIONS ###\n" + lines + "### VARIABLES ###\n### CUSTOM UNITS ###\n### HISTORY ###\n" +
           history;
}
