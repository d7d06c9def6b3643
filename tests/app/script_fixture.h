// SPDX-License-Identifier: MIT
//
// What the tests of scripts have in common.
#pragma once

#import "console_fixture.h"
#import "replacement.h"

#include <chrono>
#include <cstring>
#include <functional>
#include <optional>

// While it lives, something is done behind the lines of a script, which are counted from 1.
class BehindLines {
public:
    explicit BehindLines(std::function<void(int)> what) {
        action() = std::move(what);
        count() = 0;
        original() = reinterpret_cast<Original*>(run.Implementation());
    }

private:
    using Original = void(id, SEL, const char*, BOOL);
    static std::function<void(int)>& action() {
        static std::function<void(int)> one;
        return one;
    }
    static int& count() {
        static int one = 0;
        return one;
    }
    static Original*& original() {
        static Original* one = nullptr;
        return one;
    }
    static void RunLine(id self, SEL command, const char* line, BOOL quick) {
        original()(self, command, line, quick);
        if (line && !quick) action()(++count());
    }

    const Replaced run { [MainConsole class], @selector(ProcessResult::), RunLine };
};

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

    // A second goes by: the console looks for keys again, and long work is said to be long.
    void LetTimePass() const {
        using Clock = std::chrono::steady_clock;
        PartOf<Clock::time_point>("lastInterruptCheck") -= std::chrono::seconds(1);
        auto& longFrom = PartOf<std::optional<Clock::time_point>>("longFrom");
        if (longFrom) *longFrom -= std::chrono::seconds(1);
    }

    static double Seconds(std::chrono::steady_clock::time_point since) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
    }
};
