// SPDX-License-Identifier: MIT
//
// Scripts that are replayed: their lines, and what ends or delays them.
#import "script_fixture.h"

#include <chrono>
#include <cstdlib>

class Replaying : public ScriptTest {};

TEST_F(Replaying, AReplayShowsAnswersAndEndsWithAPrompt) {
    EXPECT_EQ(Replay("x=5\nx*2\n"), "\nx = 5\nans = 10\n\n> ");
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(g_linestart, static_cast<int32_t>([[console string] length]));
}

TEST_F(Replaying, LinesThatBeginWithANumberSignAreNeverExecuted) {
    Replay("# x=1\n#x=2\n###\n### HISTORY ###\n#");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(calc.history.count, 0);
}

TEST_F(Replaying, ACommentBehindAnEntryIsLeftOut) {
    Replay("x=5 # five\n");
    EXPECT_EQ(Variable("x"), "5");
}

TEST_F(Replaying, ABlankLineIsNoEntry) {
    Replay("x=5\nx=x+1\n\n  \t\n\r\n");
    EXPECT_EQ(Variable("x"), "6");
}

TEST_F(Replaying, LineEndsOfOtherSystemsAndTheLastLineWithoutOne) {
    Replay("x=5\r\nclear\r\ny=7");
    EXPECT_EQ(Variable("x"), "5");
    EXPECT_EQ(Variable("y"), "7");
}

TEST_F(Replaying, AByteOrderMarkIsNoText) {
    EXPECT_EQ(Replay("\xEF\xBB\xBF# note\nx=5\n"), "\nx = 5\n\n> ");
    EXPECT_EQ(Replay("\xEF\xBB\xBFx=6\n"), "\nx = 6\n\n> ");
    EXPECT_EQ(Replay("\xEF\xBB\xBF"), "\n\n> ");
    Replay("x=x+1\n");
    Replay("\xEF\xBB\xBF\n");
    EXPECT_EQ(Variable("x"), "7"); // the blank line repeated nothing
}

TEST_F(Replaying, AnEmptyFileGivesANewPrompt) {
    EXPECT_EQ(Replay(""), "\n\n> ");
    EXPECT_EQ(Replay("\n"), "\n\n> ");
}

TEST_F(Replaying, WhatCannotBeOpenedIsRefusedWithoutAMessage) {
    EXPECT_FALSE([console loadFile:String(home + "/none.script")]);
    EXPECT_FALSE([console loadFile:String(home)]);
    EXPECT_FALSE([console loadFile:@""]);
    EXPECT_FALSE([console loadFile:nil]);
    ASSERT_EQ(mkfifo((home + "/pipe").c_str(), 0600), 0);
    EXPECT_FALSE([console loadFile:String(home + "/pipe")]);
    EXPECT_EQ(Text(), "> ");
    EXPECT_TRUE(alerts.empty());
}

TEST_F(Replaying, NothingHidesBehindANul) {
    Replay(std::string("x=5\0+1\ny=7\n", 12));
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(Variable("y"), "7");
}

TEST_F(Replaying, BytesOfChanceAreErrorsAndNothingWorse) {
    std::string bytes;
    for (int i = 0; i < 4000; ++i) bytes += static_cast<char>(i * 7919 % 251 + (i % 40 == 0 ? 4 : 0));
    Replay(bytes);
    Enter("40+2");
    EXPECT_STREQ(calc.lastAnswer, "42");
}

// A cut line would be another entry.
TEST_F(Replaying, LinesOfMoreThan998CharactersAreReadWhole) {
    std::string line = "x=0";
    for (int i = 0; i < 2000; ++i) line += "+1";
    Replay(line + "\n");
    EXPECT_EQ(Variable("x"), "2000");
}

TEST_F(Replaying, ALineThatIsTooLongForAnEntryIsAnErrorAndTheNextOneRuns) {
    std::string line = "x=0";
    while (line.size() < 20000) line += "+1";
    const std::string output = Replay(line + "\ny=7\n");
    EXPECT_NE(output.find("ERROR"), std::string::npos);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(Variable("y"), "7");
}

TEST_F(Replaying, ClearEmptiesTheConsoleAndTheScriptGoesOn) {
    const std::string output = Replay("x=5\nclear\ny=7\n");
    EXPECT_EQ(output.find("x = 5"), std::string::npos);
    EXPECT_NE(output.find("y = 7"), std::string::npos);
    EXPECT_EQ(output.substr(output.size() - 3), "\n> ");
}

TEST_F(Replaying, ExitClosesTheWindowAndEndsTheScript) {
    Replay("x=5\nexit\nx=6\n");
    EXPECT_FALSE([window isVisible]);
    EXPECT_EQ(Variable("x"), "5");
}

TEST_F(Replaying, APauseWaits) {
    const auto start = std::chrono::steady_clock::now();
    Replay("pause 300\nx=5\n");
    EXPECT_GE(Seconds(start), 0.3); // on a busy machine it takes longer
    EXPECT_EQ(Variable("x"), "5");
}

TEST_F(Replaying, EscapeWhileALinePausesEndsTheReplayBehindThatLine) {
    Post(@"\033");
    const std::string output = Replay("x=5\npause 5000\nx=6\n");
    EXPECT_EQ(Variable("x"), "5");
    EXPECT_EQ(output.substr(output.size() - 3), "\n> ");
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Replaying, AnInterruptionTellsTheEngine) {
    Post(@"\033");
    Replay("pause 5000\nx=6\n");
    EXPECT_TRUE(calc.interrupted);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
}

TEST_F(Replaying, EscapeWhileATextIsTypedOutEndsTheReplay) {
    Post(@"\033");
    Replay("echo5 a long text that takes its time\nx=6\n");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
}

TEST_F(Replaying, OtherKeysDoNotEndIt) {
    Post(@"x");
    Replay("pause 200\nx=6\n");
    EXPECT_EQ(Variable("x"), "6");
}

TEST_F(Replaying, AnEarlierEntrysInterruptionDoesNotEndTheNextScript) {
    scriptInterrupted = true;
    Replay("x=5\nx=6\n");
    EXPECT_EQ(Variable("x"), "6");
}

TEST_F(Replaying, TheNextScriptRunsWholeAfterAnInterruption) {
    Post(@"\033");
    Replay("pause 5000\nx=5\n");
    Replay("x=6\nx=x+1\n");
    EXPECT_EQ(Variable("x"), "7");
}

// The system hands over a file whenever the run loop turns, also while a script pauses.
TEST_F(Replaying, AScriptThatComesDuringAnotherWaitsForItsEnd) {
    const std::string other = home + "/other.script";
    Write(other, "y=x\n");
    [console performSelector:@selector(loadFile:) withObject:String(other) afterDelay:0.05];
    Replay("x=5\npause 400\nx=6\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    WaitForVariable("y");
    EXPECT_EQ(Variable("y"), "6");
}

TEST_F(Replaying, AScriptThatWaitsForOneThatClosesTheWindowNeverRuns) {
    const std::string other = home + "/other.script";
    Write(other, "y=1\n");
    [console performSelector:@selector(loadFile:) withObject:String(other) afterDelay:0];
    Replay("pause 50\nexit\n");
    EXPECT_FALSE([window isVisible]);
    EXPECT_FALSE([console hasWaitingScripts]);
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    EXPECT_EQ(Text().find("y = 1"), std::string::npos);
}

TEST_F(Replaying, AScriptThatComesDuringAnEntryWaitsForItsEnd) {
    Write(Path(), "y=1\n");
    [console entryWillRun];
    EXPECT_TRUE([console loadFile:String(Path())]);
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    EXPECT_EQ(Text(), "> ");
    [console entryDidRun];
    WaitForVariable("y");
    EXPECT_EQ(Variable("y"), "1");
}

// --- Long scripts ---

namespace {

int layouts = 0, settingsWrites = 0;

void (*originalAppend)(id, SEL, NSAttributedString*) = nullptr;

void countAppend(id self, SEL command, NSAttributedString* text) {
    ++layouts;
    originalAppend(self, command, text);
}

void countSettings(id, SEL) {
    ++settingsWrites;
}

std::string repeated(const char* line, int times) {
    std::string lines;
    for (int i = 0; i < times; ++i) lines += line;
    return lines;
}

NSUInteger charactersLookedAt = 0;
NSString* (*originalRest)(id, SEL, NSUInteger) = nullptr;

NSString* countRest(id self, SEL command, NSUInteger from) {
    NSString* const rest = originalRest(self, command, from);
    charactersLookedAt += [rest length];
    return rest;
}

} // namespace

// Lines are gathered for as long as no interruption is looked for, which is said here to be never.
TEST_F(Replaying, TheOutputOfShortLinesIsLaidOutTogether) {
    const Replaced check(
        [MainConsole class], @selector(isInterrupted), +[](id, SEL) -> BOOL { return NO; });
    const Replaced append([MainConsole class], @selector(append:), countAppend);
    originalAppend = reinterpret_cast<decltype(originalAppend)>(append.Implementation());
    layouts = 0;
    const std::string text = Replay(repeated("echo a\n1/0\n", 300));
    EXPECT_EQ(text, "\n" + repeated("a\n** ERROR: divide by zero **\n", 300) + "\n> ");
    EXPECT_LE(layouts, 3) << "a line feed, the output, the prompt";
}

// What stands where the entry does is no entry: neither brackets nor a preview are looked for in it.
TEST_F(Replaying, NoLineLooksAtTheOutputAboveIt) {
    const Replaced rest([[console string] class], @selector(substringFromIndex:), countRest);
    originalRest = reinterpret_cast<decltype(originalRest)>(rest.Implementation());
    charactersLookedAt = 0;
    Replay(repeated("echo (a)\nmode rad\nmode deg\n", 200));
    EXPECT_LT(charactersLookedAt, 600u * 100); // lines
}

TEST_F(Replaying, ItsSettingsAreWrittenTogether) {
    {
        const Replaced save([MainConsole class], @selector(saveSettings), countSettings);
        settingsWrites = 0;
        Replay(repeated("mode rad\ndisplay hex\nmode deg\ndisplay bin\n", 20));
        EXPECT_EQ(settingsWrites, 0);
    }
    WriteWhatIsDue();
    const std::string settings = Read(SettingsPath());
    EXPECT_NE(settings.find("<key>dispbase</key>\n\t<integer>2</integer>"), std::string::npos) << settings;
}

// The engine asks every few hundred steps, over the lines of a script together.
TEST_F(Replaying, EscapeEndsAScriptOfShortLines) {
    const int many = 20000;
    const BehindLines lines([this](int line) {
        if (line != 100) return;
        Post(@"\033");
        LetTimePass();
    });
    Replay("n=0\n" + repeated("n=n+1\n", many));
    EXPECT_GE(atoi(Variable("n").c_str()), 99);
    EXPECT_LT(atoi(Variable("n").c_str()), many);
    EXPECT_EQ(Entry(), "");
    Enter("1+1");
    EXPECT_STREQ(calc.lastAnswer, "2");
}

TEST_F(Replaying, ALongScriptOfShortLinesIsSaidToBeCalculatedUntilItsEnd) {
    const int many = 20000;
    std::string early, late;
    const BehindLines lines([&](int line) {
        if (line == 100) {
            early = StatusLine();
            LetTimePass();
        }
        if (line == many) late = StatusLine();
    });
    Replay(repeated("n=2\n", many));
    EXPECT_EQ(early, "");
    EXPECT_EQ(late, "Calculating... Escape ends it.");
    EXPECT_EQ(StatusLine(), "");
}

TEST_F(Replaying, OutputAboveWhatAnotherLineWritesStaysAboveIt) {
    EXPECT_EQ(Replay("echo one\necho100 two\necho three\n6*7\ndisplay hex\necho four\nclear\necho five\n"),
              "\nfive\n\n> ");
    EXPECT_EQ(Replay("echo one\npause 1\necho100 two\n1/0\necho three\n"),
              "\none\ntwo\n** ERROR: divide by zero **\nthree\n\n> ");
}
