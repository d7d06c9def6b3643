// SPDX-License-Identifier: MIT
//
// What the tests of scripts have in common.
#pragma once

#import "console_fixture.h"

#include <chrono>
#include <cstring>

class ScriptTest : public ConsoleTest {
protected:
    const char* const header = "# PELMO SCRIPT: uncomment line below to include calculator settings.\n";

    std::string Script() const { return [[console scriptText] UTF8String]; }
    // What is saved, without the header.
    std::string SavedEntries() const {
        const std::string text = Script();
        return text.substr(text.find('\n', strlen(header)) + 1);
    }

    std::string Path() const { return home + "/test.script"; }
    static NSString* String(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

    // Replays lines; the transcript is what it adds.
    std::string Replay(const std::string& lines) {
        Write(Path(), lines);
        const size_t before = Text().size();
        EXPECT_TRUE([console loadFile:String(Path())]);
        const std::string all = Text();
        return all.size() < before ? all : all.substr(before);
    }

    std::string Variable(const char* name) {
        const std::string line = "display dec; ans=" + std::string(name);
        EXPECT_EQ(calc.ProcessEntry(line.c_str(), false), STATUS_RESULT) << name;
        return calc.lastAnswer;
    }

    void WaitForVariable(const char* name) {
        for (int i = 0; i < 200 && !calc.VariableExists(name); ++i) Run(0.05);
    }

    static double Seconds(std::chrono::steady_clock::time_point since) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
    }
};
