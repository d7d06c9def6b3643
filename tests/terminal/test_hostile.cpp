// SPDX-License-Identifier: MIT
//
// Texts that want to do something to the terminal or the system, from everywhere a text can come from.
#include "program.h"
#include "temporary_folder.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

// A title, a clipboard, a color, an answer-back, an 8-bit sequence, an erased line, a bell, a backspace.
const std::vector<std::string> SEQUENCES = {"\x1b]0;owned\x07",
                                            "\x1b]52;c;b3duZWQ=\x07",
                                            "\x1b[31m",
                                            "\x1b[6n",
                                            "\u009b31m",
                                            "\x1b[2K\r",
                                            "a\x07",
                                            "a\x08"
                                            "b",
                                            "\x7f",
                                            "\x0e\x9b"
                                            "2J"};

// What a shell or an opener of addresses would act on.
const std::vector<std::string> COMMANDS = {"$(trap)",
                                           "`trap`",
                                           "; trap",
                                           "| trap",
                                           "!trap",
                                           "&& trap &",
                                           "'; trap; '",
                                           "system(trap)",
                                           "exec trap",
                                           "<(trap)",
                                           "http://example.org/",
                                           "file:///etc/passwd",
                                           "web",
                                           "convert \"$(trap)\" to km",
                                           "-f|trap",
                                           "--each=$(trap)"};

bool hasControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) {
                           return std::iscntrl(static_cast<unsigned char>(c)) != 0 && c != '\n' && c != '\t';
                       }) ||
           text.find("\xc2\x9b") != std::string::npos;
}

class Hostile : public testing::Test {
protected:
    Hostile() {
        std::filesystem::create_directory(bin);
        for (const char* const name : {"trap", "sh", "curl", "xdg-open", "open", "less", "stty"}) {
            putContent(bin + "/" + name, "#!/bin/sh\necho \"$0\" >> " + folder.File("sprung") + "\n");
            chmod((bin + "/" + name).c_str(), 0700);
        }
        for (const char* const name : {"Tallyquill", "tallyquill"})
            std::filesystem::create_directory(folder.File(name));
    }

    Result RunWith(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::string& variable = "LINES=24") const {
        Invocation invocation;
        invocation.arguments = arguments;
        invocation.input = input;
        invocation.environment = {"PATH=" + bin, "XDG_DATA_HOME=" + folder.Path(),
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
    const std::string bin = folder.File("bin");
};

TEST_F(Hostile, SequencesReachNoTerminalWhereverTheyComeFrom) {
    for (const std::string& sequence : SEQUENCES) ExpectHarmless(sequence);
}

TEST_F(Hostile, NoTextStartsAProgramWhereverItComesFrom) {
    for (const std::string& command : COMMANDS) ExpectHarmless(command);
    EXPECT_EQ("", contentOf(folder.File("sprung")));
}

// The trap works: an address that the person has set is asked, and it is the program curl that does it.
TEST_F(Hostile, OnlyAServiceThatThePersonHasSetIsAsked) {
    RunWith({"--", "convert 5 miles to km"}, "", "TALLYQUILL_QUERY_URL=http://127.0.0.1:9");
    EXPECT_EQ(bin + "/curl\n", contentOf(folder.File("sprung")));
}

} // namespace
