// SPDX-License-Identifier: MIT
//
// The built program behind a pseudo-terminal.
#include "program.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>

namespace {

TEST(Prompt, IsShownBeforeEachEntry) {
    Terminal terminal({});
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("2+3*4\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 14\n> ");
    terminal.Type("ans+1\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 15\n> ");
}

TEST(Prompt, EndOfInputEndsTheSessionOnAFreshLine) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type(END_OF_INPUT);
    EXPECT_EQ(terminal.ReadUntil("\n"), "\n");
    EXPECT_EQ(terminal.Wait(), 0);
}

TEST(Prompt, AnErrorIsFollowedByAFreshPromptAndMakesTheStatusOne) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("1/0\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "** ERROR: divide by zero **\n> ");
    terminal.Type(END_OF_INPUT);
    terminal.ReadUntil("\n");
    EXPECT_EQ(terminal.Wait(), 1);
}

TEST(Prompt, AnEmptyEntryIsFollowedByAFreshPrompt) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("x=1\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "x = 1\n> ");
}

TEST(Prompt, ReturnAloneRepeatsTheLastAssignment) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("x=1\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "x = 1\n> ");
    terminal.Type("x=x+1\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "x = 2\n> ");
    terminal.Type("\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "x = 3\n> ");
    terminal.Type("\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "x = 4\n> ");
}

TEST(Prompt, ABlankLineOfAPastedTextRepeatsNothing) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("x=1\nx=x+1\n\n\nx\n");
    EXPECT_EQ(terminal.ReadUntil("ans = 2\n> "), "x = 1\n> x = 2\n> > > ans = 2\n> ");
}

TEST(Prompt, StaysOutOfAFileThatCollectsTheAnswers) {
    const TemporaryFile file;
    TerminalSetup setup;
    setup.outputFile = file.Path();
    Terminal terminal({}, setup);
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("6*7\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type(END_OF_INPUT);
    terminal.ReadUntil("\n");
    EXPECT_EQ(terminal.Wait(), 0);
    EXPECT_EQ(file.Content(), "ans = 42\n");
}

TEST(Prompt, EndsWhenAnAnswerCannotBeWritten) {
    TerminalSetup setup;
    setup.outputFile = "/dev/full";
    Terminal terminal({}, setup);
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("6*7\n");
    EXPECT_EQ(terminal.ReadUntil("device\n"), "tallyquill: standard output: No space left on device\n");
    EXPECT_EQ(terminal.Wait(), 3);
}

TEST(Prompt, IsNotShownForLinesOfAFile) {
    const TemporaryFile file;
    std::ofstream(file.Path()) << "1+1\n2+2\n";
    TerminalSetup setup;
    setup.inputFile = file.Path();
    Terminal terminal({}, setup);
    EXPECT_EQ(terminal.ReadUntil("ans = 4\n"), "ans = 2\nans = 4\n");
    EXPECT_EQ(terminal.Wait(), 0);
    EXPECT_EQ(terminal.ReadUntil("nothing more"), "");
}

TEST(Prompt, IsNotShownForEntriesGivenAsArguments) {
    Terminal terminal({"1+1"});
    EXPECT_EQ(terminal.ReadUntil("\n"), "ans = 2\n");
    EXPECT_EQ(terminal.Wait(), 0);
}

std::string sumOfOnes(int terms) {
    std::string sum = "1";
    for (int i = 1; i < terms; ++i) sum += "+1";
    return sum;
}

// A terminal's own line mode would cut these at 4,095 bytes and give a wrong sum.
TEST(Prompt, TakesLinesLongerThanATerminalsLineModeDoes) {
    for (const int terms : {2047, 2048, 2049, 4999}) {
        Terminal terminal({});
        terminal.ReadUntil("> ");
        terminal.Type(sumOfOnes(terms) + "\n");
        EXPECT_EQ(terminal.ReadUntil("> "), "ans = " + std::to_string(terms) + "\n> ");
    }
}

TEST(Prompt, RefusesALineOfTenThousandCharactersAndTakesTheNext) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type(std::string(10001, '1') + "\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "** ERROR: 10000 max characters **\n> ");
    terminal.Type("2+2\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 4\n> ");
}

TEST(Prompt, ErasesCharactersWordsAndLines) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("2+4\x7f"
                  "3\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 5\n> ");
    terminal.Type("1/0\x15"
                  "6*7\n"); // Ctrl-U
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 42\n> ");
    terminal.Type("8 + 99\x17"
                  "1\n"); // Ctrl-W
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 9\n> ");
}

TEST(Prompt, ShowsWhatIsTypedAndErased) {
    Terminal terminal({}, withEcho());
    terminal.ReadUntil("> ");
    terminal.Type("12\x7f+3\n");
    EXPECT_EQ(terminal.ReadUntil("\n> "), "12\b \b+3\nans = 4\n> ");
    terminal.Type("x\xc3\xa9\x7f\n"); // one key erases both bytes of an accented letter
    EXPECT_EQ(terminal.ReadUntil("\n> "), "x\xc3\xa9\b \b\n  ^\n** ERROR 7: invalid term = x **\n> ");
}

TEST(Prompt, ArrowKeysTypeNothing) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("2\x1b[A+\x1bOD2\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 4\n> ");
}

TEST(Prompt, ShowsNoControlCharacterThatIsTyped) {
    Terminal terminal({}, withEcho());
    terminal.ReadUntil("> ");
    terminal.Type("a\x07\xc2\x9b"
                  "2J\xc2\xb2\n");
    EXPECT_EQ(terminal.ReadUntil("\n> "), "a^G?2J\xc2\xb2\n** Invalid character/encoding used. **\n> ");
}

// --- Stopped and continued ---

TEST(Prompt, IsShownAgainWithWhatWasTypedInTheForeground) {
    TerminalSetup setup = withEcho();
    setup.shellScript = "\"$0\"; fg";
    Terminal terminal({}, setup);
    terminal.ReadUntil("> ");
    terminal.Type("1+2");
    EXPECT_EQ(terminal.ReadUntil("1+2"), "1+2");
    terminal.Type("\x1a"); // Ctrl-Z
    terminal.ReadUntil("\r> 1+2");
    terminal.Type("+3\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "+3\nans = 6\n> ");
}

// While it is in the background, the terminal has the modes that the shell's line editor sets.
TEST(Prompt, TakesTheModesOfTheForeground) {
    for (const std::string go : {"fg", "bg; wait %1; fg"}) {
        TerminalSetup setup = withEcho();
        setup.shellScript = "modes=$(stty -g); stty -icanon -echo -icrnl; \"$0\" & wait %1; stty $modes; " +
                            go +
                            "; stty -a | tr ' ;' '\\n\\n' | grep -x -e '-*icanon' -e '-*icrnl'; echo end";
        Terminal terminal({}, setup);
        terminal.ReadUntil("> ");
        terminal.Type("6*7\r");
        EXPECT_EQ(terminal.ReadUntil("ans = 42\n> "), "6*7\nans = 42\n> ") << go;
        terminal.Type("\x04");
        EXPECT_EQ(terminal.ReadUntil("end\n"), "\nicrnl\nicanon\nend\n") << go; // given back as found
    }
}

TEST(Prompt, IsShownAgainAfterAStopFromOutside) {
    Terminal terminal({}, withEcho());
    terminal.ReadUntil("> ");
    for (int i = 0; i < 3; ++i) {
        terminal.StopAndContinue();
        EXPECT_EQ(terminal.ReadUntil("\r> "), "\r> ");
    }
    terminal.Type("6*7");
    terminal.ReadUntil("6*7");
    terminal.StopAndContinue();
    EXPECT_EQ(terminal.ReadUntil("6*7"), "\r> 6*7");
    terminal.Type("\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "\nans = 42\n> ");
}

TEST(Prompt, AStopDuringAnEntryShowsNoSecondPrompt) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type(
        "echo2 abcd\n"); // half a second between two letters, so that the stop comes before the last
    terminal.ReadUntil("a");
    terminal.StopAndContinue();
    EXPECT_EQ(terminal.ReadUntil("> "), "bcd\n> ");
}

// --- Modes and signals that were set before ---

TEST(Prompt, ATerminalThatDoesNotBlockIsWaitedFor) {
    TerminalSetup setup;
    setup.nonBlocking = true;
    Terminal terminal({}, setup);
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("6*7\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 42\n> ");
    terminal.Type(END_OF_INPUT);
    terminal.ReadUntil("\n");
    EXPECT_EQ(terminal.Wait(), 0);
}

TEST(Prompt, ASignalThatWasIgnoredIsIgnored) {
    for (const int signal : {SIGHUP, SIGTERM, SIGQUIT, SIGINT, SIGTSTP}) {
        TerminalSetup setup;
        setup.ignoredSignal = signal;
        Terminal terminal({}, setup);
        terminal.ReadUntil("> ");
        terminal.Signal(signal);
        terminal.Type("1+1\n");
        EXPECT_EQ(terminal.ReadUntil("> "), "ans = 2\n> ") << signal;
    }
}

TEST(Prompt, ASignalThatEndsAProgramEndsThisOne) {
    for (const int signal : {SIGHUP, SIGTERM, SIGQUIT}) {
        Terminal terminal({});
        terminal.ReadUntil("> ");
        terminal.Signal(signal);
        EXPECT_EQ(terminal.Wait(), -1) << signal;
    }
}

} // namespace
