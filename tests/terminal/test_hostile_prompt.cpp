// SPDX-License-Identifier: MIT
//
// Hostile texts at the prompt: in the history, pasted, as keys, and as names that Tab lists.
#include "../hostile.h"
#include "program.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace {

const std::string UP = "\x1b[A";
const std::string SEARCH = "\x12";      // Ctrl-R
const std::string END_OF_LINE = "\x05"; // Ctrl-E
const std::string GIVE_UP = "\x07";     // Ctrl-G: a search, say
const std::string KILL_LINE = "\x15";   // Ctrl-U

std::string pasted(const std::string& text) {
    return "\x1b[200~" + text + "\x1b[201~";
}

// What is shown without the sequences that the editor writes by itself in a terminal without colors: marks of
// pastes, moves of the cursor, what erases and inserts behind it. None of SEQUENCES is one of them.
std::string withoutOwnSequences(const std::string& shown) {
    static const std::regex own("\x1b\\[(\\?2004[hl]|[0-9]*[ABCDP@]|[0-9;]*H|[JK])|\r|\b");
    return std::regex_replace(shown, own, "");
}

// With the editor and without.
class HostileAtThePrompt : public testing::TestWithParam<bool> {
protected:
    HostileAtThePrompt() {
        for (const char* const name : {"Tallyquill", "tallyquill"})
            std::filesystem::create_directory(folder.File(name));
        putContent(folder.File("inputrc"), "set bell-style none\nset enable-active-region off\n");
    }

    // Files in which the text stands wherever it can.
    void PutFiles(const std::string& text) const {
        putContent(folder.File("tallyquill/history"), "1+1\n" + text + "\n");
        putContent(folder.File("tallyquill/init"), text + "\n" + text + "=1\n");
        putContent(folder.File("Tallyquill/pelmo_functions.txt"),
                   "### FUNCTIONS ###\nbait" + text + "(x)=x\n" + text +
                       "(x)=x\n### VARIABLES ###\nans=1\nbait" + text + "=1\n" + text +
                       "=1\n### CUSTOM UNITS ###\nunit bait" + text + "=2 m\nunit " + text +
                       "=2 m\n### HISTORY ###\n" + text + "\n");
    }

    // A prompt at which these keys are typed, each behind the effect of the one before it. Then it still
    // calculates. Returns all that is shown.
    std::string Use(const std::vector<std::string>& keys) const {
        TerminalSetup setup;
        setup.environment = {traps.Path(),
                             "TERM=xterm",
                             "INPUTRC=" + folder.File("inputrc"),
                             "XDG_DATA_HOME=" + folder.Path(),
                             "XDG_CONFIG_HOME=" + folder.Path(),
                             "XDG_STATE_HOME=" + folder.Path()};
        Terminal terminal({GetParam() ? "--plain" : "--color=never"}, setup);
        std::string shown = terminal.ReadUntil("> ");
        int number = 0;
        for (const std::string& key : keys) {
            // Twice: a key may take the next one.
            terminal.Type(key + GIVE_UP + GIVE_UP + END_OF_LINE + KILL_LINE + "1000+" +
                          std::to_string(++number) + "\n");
            const std::string answer = "ans = " + std::to_string(1000 + number) + "\n> ";
            shown += terminal.ReadUntil(answer);
            if (shown.size() > answer.size() && shown.substr(shown.size() - answer.size()) == answer)
                continue;
            ADD_FAILURE() << "no answer: " << shown;
            return shown;
        }
        terminal.Type(END_OF_INPUT);
        EXPECT_NE(-1, terminal.Wait()) << shown;
        return shown;
    }

    // In every way in which a text comes to a prompt.
    void ExpectHarmless(const std::string& text) const {
        PutFiles(text);
        const std::string shown =
            Use({UP + UP + UP + "\n", SEARCH + text.substr(0, 1), SEARCH + "1+", "\t\t", "bait\t\t",
                 text + "\t\t", text + "\n", pasted(text) + "\n", pasted(text + "\n" + text + "\n"),
                 pasted(text) + "\t\t", ":history\n", ":history 1\n", ":help " + text + "\n", "list\n"});
        EXPECT_FALSE(hasControlCharacter(withoutOwnSequences(shown))) << shown;
    }

    TemporaryFolder folder;
    const Traps traps{folder.Path()};
};

TEST_P(HostileAtThePrompt, SequencesReachNoTerminal) {
    for (const std::string& sequence : SEQUENCES) ExpectHarmless(sequence);
}

TEST_P(HostileAtThePrompt, NoTextStartsAProgram) {
    for (const HostileCommand& command : COMMANDS) {
        ExpectHarmless(command.text);
        EXPECT_EQ("", traps.Sprung()) << command.text;
    }
}

// Those with which shells and pagers start an editor or a program, and look into folders.
TEST_P(HostileAtThePrompt, NoKeyStartsAProgram) {
    const std::string shown =
        Use({"bait\x18\x05", "bait\x1b!", "bait\x1b\x05", "!bait\n", ":!bait\n", "v", "bait\x1b\x1b",
             "/bin/s\t\t", "~/\t\t", "$PA\t\t", "`bait\t\t", "bait\x18*", "\x18\x12"});
    EXPECT_EQ("", traps.Sprung());
    EXPECT_EQ(std::string::npos, shown.find("bin/sh"));
}

INSTANTIATE_TEST_SUITE_P(Editors, HostileAtThePrompt, testing::Bool());

} // namespace
