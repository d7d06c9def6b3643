// SPDX-License-Identifier: MIT
//
// Ctrl-C, and entries that would never end.
#include "Interrupt.h"
#include "Session.h"
#include "program.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

const std::string CONTROL_C = "\x03";

// A chain of functions that each call the one before twice: the last takes 2^length calls.
std::string chain(int length) {
    std::string lines = "f1(x)=x+1\n";
    for (int i = 2; i <= length; ++i) {
        const std::string before = "f" + std::to_string(i - 1) + "(x)";
        lines += "f" + std::to_string(i) + "(x)=" + before + "+" + before + "\n";
    }
    return lines;
}

std::string repeated(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

TEST(ControlC, EndsAnEntryAndThePromptReturns) {
    Terminal terminal({}, withEcho());
    terminal.ReadUntil("> ");
    terminal.Type("x=7\n");
    terminal.ReadUntil("> ");
    terminal.Type(chain(25));
    terminal.ReadUntil("f25(x)=f24(x)+f24(x)\n> ");
    terminal.Type("x=8; f25(1)\n");
    terminal.ReadUntil("f25(1)\n"); // the line is taken: from here on a key can only end its evaluation
    EXPECT_NE(terminal.InterruptUntil("** ERROR: interrupted **\n> ").find("** ERROR: interrupted **\n> "),
              std::string::npos);
    terminal.Type("x\n");
    terminal.ReadUntil("ans = 7\n> ");
    terminal.Type(END_OF_INPUT);
    terminal.ReadUntil("\n");
    EXPECT_EQ(terminal.Wait(), 1);
}

// Sends Ctrl-C's signal to this process, again and again, for as long as it lives. It begins when the
// descriptor has something to read, so that the signal cannot come before what it has to interrupt.
class Interrupter {
public:
    explicit Interrupter(int descriptor)
        : thread([this, descriptor] {
              while (!ends) {
                  pollfd shown = {descriptor, POLLIN, 0};
                  if (poll(&shown, 1, 2) == 0) continue;
                  kill(getpid(), SIGINT);
                  std::this_thread::sleep_for(std::chrono::milliseconds(2));
              }
          }) {}
    ~Interrupter() {
        ends = true;
        thread.join();
    }
    Interrupter(const Interrupter&) = delete;
    Interrupter& operator=(const Interrupter&) = delete;

private:
    const InterruptCatcher catcher; // outside of entries it would end the tests
    std::atomic<bool> ends{false};
    std::thread thread;
};

TEST(ControlC, EndsAPauseAndTypedText) {
    int answers[2];
    ASSERT_EQ(pipe(answers), 0);
    Session session(answers[1], answers[1]);
    {
        const Interrupter interrupter(answers[0]);
        EXPECT_EQ(session.Run("echo1 abcdefgh"), Session::Outcome::Interrupted); // a second after each
        EXPECT_EQ(session.Run("pause5000"), Session::Outcome::Interrupted);
    }
    EXPECT_EQ(session.Run("1+1"), Session::Outcome::Answered);
    close(answers[1]);
    char shown[100] = "";
    const ssize_t count = read(answers[0], shown, sizeof shown - 1);
    close(answers[0]);
    const std::string text(shown, static_cast<size_t>(std::max<ssize_t>(count, 0)));
    EXPECT_EQ(text.substr(0, 1), "a");
    EXPECT_EQ(text.find("abcd"), std::string::npos) << text;
    EXPECT_NE(text.find("ans = 2\n"), std::string::npos) << text;
}

TEST(ControlC, AtThePromptDropsWhatIsTyped) {
    Terminal terminal({}, withEcho());
    terminal.ReadUntil("> ");
    terminal.Type("1/0");
    EXPECT_EQ(terminal.ReadUntil("1/0"), "1/0");
    terminal.Type(CONTROL_C);
    EXPECT_EQ(terminal.ReadUntil("> "), "\n> ");
    terminal.Type("6*7\n");
    EXPECT_EQ(terminal.ReadUntil("ans = 42\n> "), "6*7\nans = 42\n> ");
}

TEST(ControlC, EndsARunOfArguments) {
    Terminal terminal({"1+1", "pause5000", "2+2"});
    terminal.ReadUntil("ans = 2\n");
    terminal.Type(CONTROL_C);
    EXPECT_EQ(terminal.ReadUntil("ans = 4\n").find("ans = 4"), std::string::npos);
    EXPECT_EQ(terminal.Wait(), -1); // by the signal
}

TEST(ControlC, IsCaughtOnlyDuringAnEntry) {
    const auto before = std::signal(SIGINT, SIG_IGN);
    {
        const InterruptCatcher catcher;
        std::raise(SIGINT); // ignored before, ignored now
        EXPECT_FALSE(isInterrupted());
    }
    std::signal(SIGINT, SIG_DFL);
    {
        const InterruptCatcher catcher;
        std::raise(SIGINT);
        EXPECT_TRUE(isInterrupted());
        EXPECT_FALSE(sleepUnlessInterrupted(5000));
    }
    EXPECT_EQ(std::signal(SIGINT, before), SIG_DFL);
    forgetInterrupt();
    EXPECT_FALSE(isInterrupted());
    EXPECT_TRUE(sleepUnlessInterrupted(1));
}

TEST(ControlC, OnceEndsAStreamOfShortLines) {
    const TemporaryFile lines;
    std::ofstream(lines.Path()) << repeated("sqrt(2)+sqrt(3)+sqrt(5)\n", 400000);
    TerminalSetup setup;
    setup.inputFile = lines.Path();
    for (int i = 0; i < 5; ++i) {
        const TemporaryFile answers;
        setup.outputFile = answers.Path();
        Terminal terminal({}, setup);
        for (int wait = 0; wait < 20000 && answers.Content().empty(); ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ASSERT_FALSE(answers.Content().empty());
        terminal.Type(CONTROL_C);
        EXPECT_EQ(terminal.Wait(), -1); // by the signal, not at the end of the lines
    }
}

// --- Memory, in KiB ---

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KEEPS_FREED_MEMORY
#endif
#endif

// The address sanitizer holds on to freed memory and keeps books.
#ifdef KEEPS_FREED_MEMORY
constexpr long MEMORY_LIMIT = 640L * 1024;
#else
constexpr long MEMORY_LIMIT = 64L * 1024;
#endif

void expectInMemory(const std::string& lines, const std::string& lastError) {
    const Result run = pipeThrough(lines);
    EXPECT_EQ(run.err, lastError);
    EXPECT_LT(run.peakMemory, MEMORY_LIMIT);
}

TEST(Memory, IsBoundedForRecursion) {
    const std::string error = "** ERROR 5.1: circular function suspected: f **\n";
    expectInMemory("f(x)=f(x)+1\nf(1)\n", error);
    expectInMemory("f(x)=f(x)+f(x)\nf(1)\n", error);
    expectInMemory("g(x)=x\nf(x)=g(x)\ng(x)=f(x)\nf(1)\n", error);
    expectInMemory("f(x)=x" + repeated("+x", 4900) + "+f(x)\nf(1)\n", error);
    expectInMemory("f(x)=0x1" + repeated("+0x1", 1990) + "+f(x)\nf(1)\n", error);
}

TEST(Memory, IsBoundedForLongTexts) {
    expectInMemory("f(x,y)=x" + repeated("+x", 4000) + "\nf(" + std::string(9900, 'a') + ",1)\n",
                   "** ERROR 5.1: circular function suspected: f **\n");
    expectInMemory(repeated("(", 4990) + "1" + repeated(")", 4990) + "\n", "");
    expectInMemory("1" + repeated("+1", 4999) + "\n" + std::string(9999, 'x') + "+\n",
                   "** ERROR: 10000 max characters **\n");
}

TEST(Memory, IsBoundedForCallsThatDouble) {
    const Result run = pipeThrough(chain(19) + "f19(1)\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.substr(run.out.rfind("ans")), "ans = 524288\n");
    EXPECT_LT(run.peakMemory, MEMORY_LIMIT);
}

} // namespace
