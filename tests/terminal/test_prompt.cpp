// SPDX-License-Identifier: MIT
//
// The built program behind a pseudo-terminal.
#include "program.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

const std::string kEndOfInput = "\x04"; // Ctrl-D

TEST(Prompt, IsShownBeforeEachEntry) {
    Terminal terminal({});
    EXPECT_EQ(terminal.readUntil("> "), "> ");
    terminal.type("2+3*4\n");
    EXPECT_EQ(terminal.readUntil("> "), "ans = 14\n> ");
    terminal.type("ans+1\n");
    EXPECT_EQ(terminal.readUntil("> "), "ans = 15\n> ");
}

TEST(Prompt, EndOfInputEndsTheSessionOnAFreshLine) {
    Terminal terminal({});
    terminal.readUntil("> ");
    terminal.type(kEndOfInput);
    EXPECT_EQ(terminal.readUntil("\n"), "\n");
    EXPECT_EQ(terminal.wait(), 0);
}

TEST(Prompt, AnErrorIsFollowedByAFreshPromptAndMakesTheStatusOne) {
    Terminal terminal({});
    terminal.readUntil("> ");
    terminal.type("1/0\n");
    EXPECT_EQ(terminal.readUntil("> "), "** ERROR: divide by zero **\n> ");
    terminal.type(kEndOfInput);
    terminal.readUntil("\n");
    EXPECT_EQ(terminal.wait(), 1);
}

TEST(Prompt, AnEmptyEntryIsFollowedByAFreshPrompt) {
    Terminal terminal({});
    terminal.readUntil("> ");
    terminal.type("\n");
    EXPECT_EQ(terminal.readUntil("> "), "> ");
    terminal.type("x=1\n");
    EXPECT_EQ(terminal.readUntil("> "), "x = 1\n> ");
}

TEST(Prompt, StaysOutOfAFileThatCollectsTheAnswers) {
    const TemporaryFile file;
    Terminal terminal({}, file.path());
    EXPECT_EQ(terminal.readUntil("> "), "> ");
    terminal.type("6*7\n");
    EXPECT_EQ(terminal.readUntil("> "), "> ");
    terminal.type(kEndOfInput);
    terminal.readUntil("\n");
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_EQ(file.content(), "ans = 42\n");
}

TEST(Prompt, IsNotShownForLinesOfAFile) {
    const TemporaryFile file;
    std::ofstream(file.path()) << "1+1\n2+2\n";
    Terminal terminal({}, "", file.path());
    EXPECT_EQ(terminal.readUntil("ans = 4\n"), "ans = 2\nans = 4\n");
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_EQ(terminal.readUntil("nothing more"), "");
}

TEST(Prompt, IsNotShownForEntriesGivenAsArguments) {
    Terminal terminal({"1+1"});
    EXPECT_EQ(terminal.readUntil("\n"), "ans = 2\n");
    EXPECT_EQ(terminal.wait(), 0);
}

} // namespace
