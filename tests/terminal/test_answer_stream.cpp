// SPDX-License-Identifier: MIT
#include "AnswerStream.h"

#include "program.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

class AnswerStreamTest : public testing::Test {
protected:
    AnswerStreamTest() {
        EXPECT_EQ(pipe(ends), 0);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    ~AnswerStreamTest() override {
        close(ends[0]);
        close(ends[1]);
    }

    // What was written since the last call.
    std::string Written() const {
        std::string text(100000, '\0');
        const ssize_t count = read(ends[0], text.data(), text.size());
        text.resize(count > 0 ? static_cast<size_t>(count) : 0);
        return text;
    }

    int ends[2] = {-1, -1};
};

} // namespace

TEST_F(AnswerStreamTest, WritesEachTextAtOnce) {
    AnswerStream stream(ends[1], false);
    EXPECT_TRUE(stream.Write("a"));
    EXPECT_EQ(Written(), "a");
    EXPECT_TRUE(stream.Flush());
    EXPECT_EQ(Written(), "");
}

TEST_F(AnswerStreamTest, CollectsTextsUntilItIsFlushedOrABlockIsFull) {
    AnswerStream stream(ends[1], true);
    EXPECT_TRUE(stream.Write("a"));
    EXPECT_TRUE(stream.Write("b"));
    EXPECT_EQ(Written(), "");
    EXPECT_TRUE(stream.Flush());
    EXPECT_EQ(Written(), "ab");
    EXPECT_TRUE(stream.Write(std::string(65535, 'c')));
    EXPECT_EQ(Written(), "");
    EXPECT_TRUE(stream.Write("d"));
    EXPECT_EQ(Written(), std::string(65535, 'c') + "d");
}

TEST_F(AnswerStreamTest, TellsWhenItCannotWrite) {
    AnswerStream stream(ends[0], true); // the end for reading
    EXPECT_TRUE(stream.Write("a"));
    EXPECT_FALSE(stream.Flush());
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(stream.Flush()) << "it was dropped";
}

TEST(Blocks, AnswersAreWrittenBeforeTheRunWaitsForInputAndBeforeAPause) {
    TerminalSetup setup;
    setup.shellScript = R"((echo 1+1; sleep 100) | "$0" | cat)";
    Terminal piped({}, setup);
    EXPECT_EQ(piped.ReadUntil("ans = 2\n"), "ans = 2\n");
    piped.Type("\x03"); // the run ends while it waits
    piped.Wait();
    setup.shellScript = R"((echo 2+2; echo pause5000; echo 3+3) | "$0" | cat)";
    Terminal paused({}, setup);
    EXPECT_EQ(paused.ReadUntil("ans = 4\n"), "ans = 4\n");
}

TEST(Blocks, AnswersStandInFrontOfTheErrorsBehindThem) {
    Invocation invocation;
    invocation.input = "1+1\n(\n2+2\nf(\nexit";
    invocation.joinErrors = true;
    EXPECT_EQ(runProgram(invocation).out, "ans = 2\n** ERROR: missing parenthesis **\nans = 4\n"
                                          "** ERROR: missing parenthesis **\n");
}

TEST(Blocks, AnswersStandInFrontOfAFileThatCannotBeRead) {
    Invocation invocation;
    invocation.arguments = {"1+1", "-f", "/no/such/file"};
    invocation.joinErrors = true;
    const std::string out = runProgram(invocation).out;
    EXPECT_EQ(out.substr(0, 8), "ans = 2\n") << out;
}
