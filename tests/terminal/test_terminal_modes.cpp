// SPDX-License-Identifier: MIT
#include "TerminalModes.h"

#include "Interrupt.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <utility>

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
    TerminalModesTest() : master(posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_EQ(grantpt(master), 0);
        EXPECT_EQ(unlockpt(master), 0);
        nearEnd = open(ptsname(master), O_RDWR | O_NOCTTY);
        EXPECT_GE(nearEnd, 0);
        received = 0;
    }
    ~TerminalModesTest() override {
        close(nearEnd);
        close(master);
    }

    termios Modes() const {
        termios modes = {};
        EXPECT_EQ(tcgetattr(nearEnd, &modes), 0);
        return modes;
    }

    void Type(const std::string& keys) const {
        EXPECT_EQ(write(master, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    int master;
    int nearEnd = -1;
};

constexpr int SIGNALS[] = {SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH};

TEST_F(TerminalModesTest, GivesBackTheActionsThatItFound) {
    struct sigaction found = {};
    found.sa_handler = receive;
    found.sa_flags = SA_RESTART;
    sigaddset(&found.sa_mask, SIGUSR1);
    struct sigaction before[std::size(SIGNALS)];
    for (size_t i = 0; i < std::size(SIGNALS); ++i) sigaction(SIGNALS[i], &found, &before[i]);
    {
        const TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain);
        for (const int signal : SIGNALS) EXPECT_NE(actionOf(signal).sa_handler, receive) << signal;
    }
    for (size_t i = 0; i < std::size(SIGNALS); ++i) {
        const struct sigaction after = actionOf(SIGNALS[i]);
        EXPECT_EQ(after.sa_handler, receive) << SIGNALS[i];
        EXPECT_NE(after.sa_flags & SA_RESTART, 0) << SIGNALS[i];
        EXPECT_EQ(sigismember(&after.sa_mask, SIGUSR1), 1) << SIGNALS[i];
        sigaction(SIGNALS[i], &before[i], nullptr);
    }
}

void receiveInfo(int signal, siginfo_t*, void*) {
    received = signal;
}

TEST(SignalCatcher, GivesBackAnActionThatIsToldMoreAndCatchesNoSignalThatIsNone) {
    struct sigaction told = {};
    told.sa_sigaction = receiveInfo;
    told.sa_flags = SA_SIGINFO;
    struct sigaction before = {};
    sigaction(SIGUSR2, &told, &before);
    SignalCatcher catcher;
    catcher.Start(SIGUSR2, receive);
    EXPECT_TRUE(catcher.IsCatching(SIGUSR2));
    catcher.Start(9999, receive);
    EXPECT_FALSE(catcher.IsCatching(SIGUSR2));
    EXPECT_FALSE(catcher.IsCatching(9999));
    EXPECT_EQ(receiveInfo, actionOf(SIGUSR2).sa_sigaction);
    sigaction(SIGUSR2, &before, nullptr);
}

TEST(SignalCatcher, HasNoSignalThatCannotBeCaught) {
    SignalCatcher catcher;
    catcher.Start(SIGKILL, receive);
    EXPECT_FALSE(catcher.IsCatching(SIGKILL));
}

// The system would stop the program in tcdrain. An interruption of that is no reason to take the terminal.
TEST_F(TerminalModesTest, WaitsForTheForegroundThroughInterruptions) {
    class InBackground : public System {
    public:
        pid_t Foreground(int) override { return interruptions < 3 ? getpgrp() + 1 : getpgrp(); }
        int Drain(int) override {
            ++interruptions;
            errno = EINTR;
            return -1;
        }
        int Modes(int terminal, termios& modes) override {
            EXPECT_EQ(interruptions, 3);
            return System::Modes(terminal, modes);
        }
        int interruptions = 0;
    } system;
    { const TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain, system); }
    EXPECT_EQ(system.interruptions, 3);
}

// As where the terminal is gone.
TEST_F(TerminalModesTest, DoesNotWaitWhereWaitingForTheForegroundFails) {
    class NoForeground : public System {
    public:
        pid_t Foreground(int) override { return getpgrp() + 1; }
        int Drain(int) override {
            ++drains;
            errno = EIO;
            return -1;
        }
        int drains = 0;
    } system;
    { const TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain, system); }
    EXPECT_EQ(system.drains, 1);
    EXPECT_NE(Modes().c_lflag & ICANON, 0U);
}

TEST_F(TerminalModesTest, LeavesIgnoredSignalsIgnored) {
    for (const int signal : SIGNALS) {
        const auto before = std::signal(signal, SIG_IGN);
        {
            const TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain);
            EXPECT_EQ(actionOf(signal).sa_handler, SIG_IGN) << signal;
        }
        EXPECT_EQ(std::signal(signal, before), SIG_IGN) << signal;
    }
}

// Whoever handles the signal sees the terminal as it was; afterwards its modes hold again.
TEST_F(TerminalModesTest, PassesASignalOnToWhoeverWasThereBefore) {
    const tcflag_t found = Modes().c_lflag;
    const auto before = std::signal(SIGQUIT, receive);
    {
        const TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain);
        EXPECT_EQ(Modes().c_lflag & ICANON, 0U);
        std::raise(SIGQUIT);
        EXPECT_EQ(received, SIGQUIT);
        EXPECT_EQ(Modes().c_lflag & ICANON, 0U);
        received = 0;
        std::raise(SIGQUIT);
        EXPECT_EQ(received, SIGQUIT);
    }
    std::signal(SIGQUIT, before);
    EXPECT_EQ(Modes().c_lflag, found);
}

// The terminal itself takes away what was typed before Ctrl-C; its signal goes to a terminal's own programs
// only.
void pressCtrlC(int terminal) {
    tcflush(terminal, TCIFLUSH);
    std::raise(SIGINT);
}

TEST_F(TerminalModesTest, KeysBehindACtrlCBetweenWaitingAndReadingAreOfTheNextLine) {
    for (const TerminalModes::Use use : {TerminalModes::Use::Plain, TerminalModes::Use::Editing}) {
        const InterruptCatcher catcher;
        TerminalModes terminal(nearEnd, -1, use);
        char bytes[8] = {};
        Type("ab");
        ASSERT_EQ(terminal.Wait(-1), TerminalModes::Event::Input);
        pressCtrlC(nearEnd);
        Type("cd");
        errno = 0;
        EXPECT_EQ(terminal.Read(bytes, sizeof bytes), -1) << bytes;
        EXPECT_EQ(errno, EAGAIN);
        EXPECT_EQ(terminal.Wait(-1), TerminalModes::Event::Interrupted);
        forgetInterrupt();
        ASSERT_EQ(terminal.Wait(10000), TerminalModes::Event::Input);
        ASSERT_EQ(terminal.Read(bytes, sizeof bytes), 2);
        EXPECT_STREQ(bytes, "cd");
    }
}

TEST_F(TerminalModesTest, ReadingDoesNotWaitForKeysThatCtrlCTookAway) {
    for (const TerminalModes::Use use : {TerminalModes::Use::Plain, TerminalModes::Use::Editing}) {
        TerminalModes terminal(nearEnd, -1, use);
        char bytes[8] = {};
        Type("ab");
        ASSERT_EQ(terminal.Wait(-1), TerminalModes::Event::Input);
        tcflush(nearEnd, TCIFLUSH);
        errno = 0;
        EXPECT_EQ(terminal.Read(bytes, sizeof bytes), -1);
        EXPECT_EQ(errno, EAGAIN);
    }
}

TEST_F(TerminalModesTest, TheEndIsReadWhenTheTerminalIsGone) {
    TerminalModes terminal(nearEnd, -1, TerminalModes::Use::Plain);
    close(std::exchange(master, -1));
    ASSERT_EQ(terminal.Wait(-1), TerminalModes::Event::Input);
    char bytes[8] = {};
    EXPECT_EQ(terminal.Read(bytes, sizeof bytes), 0);
}

} // namespace
