// SPDX-License-Identifier: MIT
#include "TerminalModes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace {

int received = 0;

void receive(int signal) {
    received = signal;
}

struct sigaction actionOf(int signal) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action;
}

// A pseudo-terminal whose near end has the modes.
class TerminalModesTest : public testing::Test {
protected:
    TerminalModesTest() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_EQ(grantpt(master_), 0);
        EXPECT_EQ(unlockpt(master_), 0);
        near_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
        EXPECT_GE(near_, 0);
        received = 0;
    }
    ~TerminalModesTest() override {
        close(near_);
        close(master_);
    }

    termios modes() const {
        termios modes = {};
        EXPECT_EQ(tcgetattr(near_, &modes), 0);
        return modes;
    }

    int master_;
    int near_ = -1;
};

constexpr int kSignals[] = {SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH};

TEST_F(TerminalModesTest, GivesBackTheActionsThatItFound) {
    struct sigaction found = {};
    found.sa_handler = receive;
    found.sa_flags = SA_RESTART;
    sigaddset(&found.sa_mask, SIGUSR1);
    struct sigaction before[std::size(kSignals)];
    for (std::size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &found, &before[i]);
    {
        const TerminalModes terminal(near_, -1, TerminalModes::Use::Plain);
        for (const int signal : kSignals) EXPECT_NE(actionOf(signal).sa_handler, receive) << signal;
    }
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        const struct sigaction after = actionOf(kSignals[i]);
        EXPECT_EQ(after.sa_handler, receive) << kSignals[i];
        EXPECT_NE(after.sa_flags & SA_RESTART, 0) << kSignals[i];
        EXPECT_EQ(sigismember(&after.sa_mask, SIGUSR1), 1) << kSignals[i];
        sigaction(kSignals[i], &before[i], nullptr);
    }
}

TEST_F(TerminalModesTest, LeavesIgnoredSignalsIgnored) {
    for (const int signal : kSignals) {
        const auto before = std::signal(signal, SIG_IGN);
        {
            const TerminalModes terminal(near_, -1, TerminalModes::Use::Plain);
            EXPECT_EQ(actionOf(signal).sa_handler, SIG_IGN) << signal;
        }
        EXPECT_EQ(std::signal(signal, before), SIG_IGN) << signal;
    }
}

// Whoever handles the signal sees the terminal as it was; afterwards its modes hold again.
TEST_F(TerminalModesTest, PassesASignalOnToWhoeverWasThereBefore) {
    const tcflag_t found = modes().c_lflag;
    const auto before = std::signal(SIGQUIT, receive);
    {
        const TerminalModes terminal(near_, -1, TerminalModes::Use::Plain);
        EXPECT_EQ(modes().c_lflag & ICANON, 0U);
        std::raise(SIGQUIT);
        EXPECT_EQ(received, SIGQUIT);
        EXPECT_EQ(modes().c_lflag & ICANON, 0U);
        received = 0;
        std::raise(SIGQUIT);
        EXPECT_EQ(received, SIGQUIT);
    }
    std::signal(SIGQUIT, before);
    EXPECT_EQ(modes().c_lflag, found);
}

} // namespace
