// SPDX-License-Identifier: MIT
#include "Session.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using Outcome = Session::Outcome;

// A session that answers into pipes or, with a terminal for the answers, into that.
class SessionTest : public testing::Test {
protected:
    SessionTest() {
        EXPECT_EQ(pipe(answers_), 0);
        EXPECT_EQ(pipe(errors_), 0);
        for (const int end : {answers_[0], errors_[0]}) fcntl(end, F_SETFL, O_NONBLOCK);
        session_ = std::make_unique<Session>(answers_[1], errors_[1]);
    }
    ~SessionTest() override {
        for (const int end : {answers_[0], answers_[1], errors_[0], errors_[1]}) close(end);
    }

    static std::string take(int descriptor) {
        char text[4096];
        const ssize_t count = read(descriptor, text, sizeof text);
        return count > 0 ? std::string(text, static_cast<std::size_t>(count)) : std::string();
    }
    std::string answers() const { return take(answers_[0]); }
    std::string errors() const { return take(errors_[0]); }

    int answers_[2] = {-1, -1};
    int errors_[2] = {-1, -1};
    std::unique_ptr<Session> session_;
};

TEST_F(SessionTest, AnswersAndErrorsTakeTheirOwnWays) {
    EXPECT_EQ(session_->run("2+3*4"), Outcome::Answered);
    EXPECT_EQ(answers(), "ans = 14\n");
    EXPECT_EQ(errors(), "");
    EXPECT_FALSE(session_->anyRefused());
    EXPECT_EQ(session_->run("()"), Outcome::Refused);
    EXPECT_EQ(answers(), "");
    EXPECT_EQ(errors(), "** ERROR: empty parenthesis **\n");
    EXPECT_TRUE(session_->anyRefused());
}

TEST_F(SessionTest, AnEarlierRefusalIsNotForgotten) {
    session_->run("1/0");
    EXPECT_EQ(session_->run("1"), Outcome::Answered);
    EXPECT_TRUE(session_->anyRefused());
}

TEST_F(SessionTest, ANewConsoleShowsTenSignificantDigitsInAutoModeWithoutGrouping) {
    session_->run("1/3");
    EXPECT_EQ(answers(), "ans = 0.3333333333\n");
    session_->run("123456789");
    EXPECT_EQ(answers(), "ans = 1.23456789e8\n");
    session_->run("1234567");
    EXPECT_EQ(answers(), "ans = 1234567\n");
}

TEST_F(SessionTest, AnAnswerThatCannotBeWrittenIsReported) {
    Session session(-1, errors_[1]);
    EXPECT_EQ(session.run("1"), Outcome::OutputLost);
}

TEST_F(SessionTest, ExitEndsTheSession) {
    EXPECT_EQ(session_->carryOut("exit"), Outcome::Ended);
    EXPECT_EQ(answers(), "");
    EXPECT_FALSE(session_->anyRefused());
}

TEST_F(SessionTest, ClearWritesNothingIntoAPipe) {
    setenv("TERM", "xterm", 1);
    EXPECT_EQ(session_->carryOut("clear"), Outcome::Answered);
    EXPECT_EQ(answers(), "");
}

TEST_F(SessionTest, ClearClearsATerminalUnlessThatIsDumb) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(slave, 0);
    fcntl(master, F_SETFL, O_NONBLOCK);
    Session session(slave, errors_[1]);
    setenv("TERM", "dumb", 1);
    EXPECT_EQ(session.carryOut("clear"), Outcome::Answered);
    EXPECT_EQ(take(master), "");
    setenv("TERM", "xterm", 1);
    EXPECT_EQ(session.carryOut("clear"), Outcome::Answered);
    EXPECT_EQ(take(master), "\x1b[H\x1b[2J");
    close(slave);
    close(master);
}

TEST_F(SessionTest, AnyOtherCommandIsRefusedByName) {
    EXPECT_EQ(session_->carryOut("pause500"), Outcome::Refused);
    EXPECT_EQ(errors(), "** ERROR: 'pause500' does not work in a terminal **\n");
    EXPECT_TRUE(session_->anyRefused());
}

} // namespace
