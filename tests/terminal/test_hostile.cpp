// SPDX-License-Identifier: MIT
//
// Hostile texts from everywhere a text can come from, but the prompt.
#include "../hostile.h"
#include "program.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

class Hostile : public testing::Test {
protected:
    Hostile() {
        for (const char* const name : {"Tallyquill", "tallyquill"})
            std::filesystem::create_directory(folder.File(name));
    }

    Result RunWith(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::string& variable = "LINES=24") const {
        Invocation invocation;
        invocation.arguments = arguments;
        invocation.input = input;
        invocation.environment = {traps.Path(), "XDG_DATA_HOME=" + folder.Path(),
                                  "XDG_CONFIG_HOME=" + folder.Path(), variable};
        return runProgram(invocation);
    }

    void ExpectHarmless(const std::string& text) const {
        const std::string script = folder.File("script");
        putContent(script, text + "\n1+1\n");
        putContent(folder.File("tallyquill/init"), text + "\n");
        putContent(folder.File("Tallyquill/pelmo_functions.txt"),
                   "### FUNCTIONS ###\n" + text + "(x)=" + text + "\n### VARIABLES ###\nans=" + text +
                       "\n### CUSTOM UNITS ###\nunit " + text + "=" + text + "\n### HISTORY ###\n" + text +
                       "\n");
        putContent(folder.File("Tallyquill/pelmo_settings.plist"), "<?xml " + text + "</plist>");
        const std::vector<Result> runs = {
            RunWith({"--", text}),
            RunWith({"--", "echo " + text}),
            RunWith({text}),
            RunWith({"--" + text, "1"}),
            RunWith({"--json", "--", text}),
            RunWith({"-f", script}),
            RunWith({"-f", folder.File("no" + text)}),
            RunWith({"--with", text}),
            RunWith({"--user", "--", "list"}),
            RunWith({"--each", "x1*2"}, text + "\n1 " + text + "\n"),
            RunWith({"--each", "x1*2", "--separator", text}, "1" + text + "2\n"),
            RunWith({}, text + "\n"),
            RunWith({"--trace", "--", text}),
            RunWith({"--", "1"}, "", "HOME=/" + text),
            RunWith({"--", "convert 5 miles to km"}, "", "TALLYQUILL_QUERY_URL=file://" + text),
            RunWith({"--", "1"}, "", "LC_ALL=" + text),
            RunWith({"--", "1"}, "", "TERM=" + text)};
        for (size_t i = 0; i < runs.size(); ++i) {
            EXPECT_NE(-1, runs[i].status) << i << ": " << text;
            EXPECT_FALSE(hasControlCharacter(runs[i].out)) << i << ": " << runs[i].out;
            EXPECT_FALSE(hasControlCharacter(runs[i].err)) << i << ": " << runs[i].err;
        }
    }

    TemporaryFolder folder;
    const Traps traps{folder.Path()};
};

TEST_F(Hostile, SequencesReachNoTerminalWhereverTheyComeFrom) {
    for (const std::string& sequence : SEQUENCES) ExpectHarmless(sequence);
}

TEST_F(Hostile, NoTextStartsAProgramWhereverItComesFrom) {
    for (const HostileCommand& command : COMMANDS) {
        ExpectHarmless(command.text);
        EXPECT_EQ("", traps.Sprung()) << command.text;
    }
}

// The traps work: a shell that gets such a text starts one of them.
TEST_F(Hostile, EveryCommandSpringsATrapInAShell) {
    for (const HostileCommand& command : COMMANDS) {
        Invocation shell;
        shell.program = "/bin/sh";
        shell.environment = {traps.Path()};
        shell.arguments = {"-c", std::string(command.line).replace(command.line.find('%'), 1, command.text)};
        const Result result = runProgram(shell);
        EXPECT_NE("", traps.Sprung()) << shell.arguments[1] << "\n" << result.err;
    }
}

// So does curl's: an address that the person has set is asked, and it is the program curl that does it.
TEST_F(Hostile, OnlyAServiceThatThePersonHasSetIsAsked) {
    RunWith({"--", "convert 5 miles to km"}, "", "TALLYQUILL_QUERY_URL=http://127.0.0.1:9");
    EXPECT_EQ("curl\n", traps.Sprung());
}

// What tells of control characters finds them, and in nothing else.
TEST_F(Hostile, ControlCharactersAreFoundInEveryCode) {
    for (const std::string& sequence : SEQUENCES) EXPECT_TRUE(hasControlCharacter(sequence)) << sequence;
    for (unsigned byte = 0x80; byte <= 0x9f; ++byte) {
        const char raw = static_cast<char>(byte);
        for (const char* const before : {"", "a", "\xc3\xa9", "\xe2\x80\x9c", "\xe2", "\xf0\x9f"})
            EXPECT_TRUE(hasControlCharacter(std::string(before) + raw + "a")) << byte << before;
        EXPECT_TRUE(hasControlCharacter(std::string("a\xc2") + raw)) << byte;
    }
    for (const char* const text :
         {"", "1+1 = 2\n\t", "\u00a0\u00e9\u00d7\u03c0\u201c\u2248\U0001f600", "\xe9", "\xff"})
        EXPECT_FALSE(hasControlCharacter(text)) << text;
}

} // namespace
