// SPDX-License-Identifier: MIT
#include "Session.h"

#include "unitlist.h"
#include "units.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace {

using Outcome = Session::Outcome;

// A session that answers into pipes or, with a terminal for the answers, into that.
class SessionTest : public testing::Test {
protected:
    SessionTest() {
        EXPECT_EQ(pipe(answers), 0);
        EXPECT_EQ(pipe(errors), 0);
        for (const int end : {answers[0], errors[0]}) fcntl(end, F_SETFL, O_NONBLOCK);
        session = std::make_unique<Session>(answers[1], errors[1]);
    }
    ~SessionTest() override {
        for (const int end : {answers[0], answers[1], errors[0], errors[1]}) close(end);
    }

    static std::string Take(int descriptor) {
        char text[4096];
        const ssize_t count = read(descriptor, text, sizeof text);
        return count > 0 ? std::string(text, static_cast<size_t>(count)) : std::string();
    }
    std::string Answers() const { return Take(answers[0]); }
    std::string Errors() const { return Take(errors[0]); }

    int answers[2] = {-1, -1};
    int errors[2] = {-1, -1};
    std::unique_ptr<Session> session;
};

// Building the catalogue would take most of the time in which the program starts.
TEST(SessionStart, BuildsTheCatalogueOfUnitsWhenAConversionNeedsIt) {
    unitFreeMemory();
    Session session(-1, -1);
    EXPECT_TRUE(unitTable.IsEmpty());
    session.Run("2+3");
    EXPECT_TRUE(unitTable.IsEmpty());
    session.Run("1 ft->m");
    EXPECT_FALSE(unitTable.IsEmpty());
    EXPECT_STREQ(session.Calculator().resultLine, "ans = 0.3048\n");
}

TEST_F(SessionTest, AnswersAndErrorsTakeTheirOwnWays) {
    EXPECT_EQ(session->Run("2+3*4"), Outcome::Answered);
    EXPECT_EQ(Answers(), "ans = 14\n");
    EXPECT_EQ(Errors(), "");
    EXPECT_FALSE(session->AnyRefused());
    EXPECT_EQ(session->Run("()"), Outcome::Refused);
    EXPECT_EQ(Answers(), "");
    EXPECT_EQ(Errors(), "** ERROR: empty parenthesis **\n");
    EXPECT_TRUE(session->AnyRefused());
}

TEST_F(SessionTest, AnAnswerBeyondTheRangeIsShownAndCountsAsAFailure) {
    EXPECT_EQ(session->Run("1e9000"), Outcome::Answered);
    EXPECT_FALSE(session->AnyRefused());
    EXPECT_EQ(session->Run("1e10000"), Outcome::Answered);
    EXPECT_EQ(Answers(), "ans = 1.0e9000\nans = +OVERFLOW\n");
    EXPECT_EQ(Errors(), "");
    EXPECT_TRUE(session->AnyRefused());
}

TEST_F(SessionTest, AValueBeyondTheRangeThatDispShowsCountsToo) {
    EXPECT_EQ(session->Run("a=1e10000;b=1;disp b"), Outcome::Answered);
    EXPECT_FALSE(session->AnyRefused());
    EXPECT_EQ(session->Run("disp a"), Outcome::Answered);
    EXPECT_EQ(Answers(), "b = 1\na = +OVERFLOW\n");
    EXPECT_TRUE(session->AnyRefused());
}

TEST_F(SessionTest, AnEarlierRefusalIsNotForgotten) {
    session->Run("1/0");
    EXPECT_EQ(session->Run("1"), Outcome::Answered);
    EXPECT_TRUE(session->AnyRefused());
}

TEST_F(SessionTest, ANewConsoleShowsTenSignificantDigitsInAutoModeWithoutGrouping) {
    session->Run("1/3");
    EXPECT_EQ(Answers(), "ans = 0.3333333333\n");
    session->Run("123456789");
    EXPECT_EQ(Answers(), "ans = 1.23456789e8\n");
    session->Run("1234567");
    EXPECT_EQ(Answers(), "ans = 1234567\n");
}

// Fills a pipe so that the next write to it waits.
void fill(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFL);
    fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
    const std::string block(4096, '.');
    while (write(descriptor, block.data(), block.size()) > 0) continue;
    fcntl(descriptor, F_SETFL, flags);
}

// How much the pipe holds.
int heldBy(int descriptor) {
    int bytes = 0;
    EXPECT_EQ(ioctl(descriptor, FIONREAD, &bytes), 0);
    return bytes;
}

// The answer does not fit into the pipe, so the session waits in the middle of it when Ctrl-C comes.
TEST_F(SessionTest, ControlCThatComesTooLateForAnEntryEndsTheRunBehindItsAnswer) {
    fill(answers[1]);
    char block[4096];
    ASSERT_GT(read(answers[0], block, sizeof block), 0);
    const int held = heldBy(answers[0]);
    const std::string answer = std::string(9900, 'x') + "\n";
    std::string shown;
    std::thread reader([&] {
        while (heldBy(answers[0]) <= held) std::this_thread::yield();
        kill(getpid(), SIGINT);
        while (shown.find('\n') == std::string::npos) shown += Answers();
    });
    EXPECT_EQ(session->Run("echo " + std::string(9900, 'x')), Outcome::Interrupted);
    reader.join();
    EXPECT_EQ(shown.substr(shown.find('x')), answer);
    EXPECT_EQ(session->Run("1+1"), Outcome::Answered);
}

TEST_F(SessionTest, AnAnswerThatCannotBeWrittenIsReported) {
    Session unwritten(-1, errors[1]);
    EXPECT_EQ(unwritten.Run("1"), Outcome::OutputLost);
}

TEST_F(SessionTest, ExitEndsTheSession) {
    EXPECT_EQ(session->CarryOut("exit"), Outcome::Ended);
    EXPECT_EQ(Answers(), "");
    EXPECT_FALSE(session->AnyRefused());
}

TEST_F(SessionTest, ClearWritesNothingIntoAPipe) {
    setenv("TERM", "xterm", 1);
    EXPECT_EQ(session->CarryOut("clear"), Outcome::Answered);
    EXPECT_EQ(Answers(), "");
}

TEST_F(SessionTest, ClearClearsATerminalUnlessThatIsDumb) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(slave, 0);
    fcntl(master, F_SETFL, O_NONBLOCK);
    Session shown(slave, errors[1]);
    setenv("TERM", "dumb", 1);
    EXPECT_EQ(shown.CarryOut("clear"), Outcome::Answered);
    EXPECT_EQ(Take(master), "");
    setenv("TERM", "xterm", 1);
    EXPECT_EQ(shown.CarryOut("clear"), Outcome::Answered);
    EXPECT_EQ(Take(master), "\x1b[H\x1b[2J");
    close(slave);
    close(master);
}

TEST_F(SessionTest, AnyOtherCommandIsRefusedByName) {
    EXPECT_EQ(session->CarryOut("dance"), Outcome::Refused);
    EXPECT_EQ(Errors(), "** ERROR: 'dance' does not work in a terminal **\n");
    EXPECT_EQ(session->CarryOut("pause"), Outcome::Refused);
    EXPECT_EQ(Errors(), "** ERROR: 'pause' does not work in a terminal **\n");
    EXPECT_TRUE(session->AnyRefused());
}

TEST_F(SessionTest, ACommandIsQuotedWithoutControlCharacters) {
    EXPECT_EQ(session->CarryOut("dance\x1b]0;x\x07"), Outcome::Refused);
    EXPECT_EQ(Errors(), "** ERROR: 'dance?]0;x?' does not work in a terminal **\n");
}

TEST_F(SessionTest, EchoedTextComesBeforeTheAnswerOrTheError) {
    session->Run("echo one; echo two; 1+1");
    EXPECT_EQ(Answers(), "one\ntwo\nans = 2\n");
    session->Run("echo one; 1/0");
    EXPECT_EQ(Answers(), "one\n");
    EXPECT_EQ(Errors(), "** ERROR: divide by zero **\n");
    session->Run("echo");
    EXPECT_EQ(Answers(), "\n");
    session->Run("disp pi");
    EXPECT_EQ(Answers(), "pi = 3.141592654\n");
}

TEST_F(SessionTest, OnlyTheCommandsThatShowTextShowWhatWasEchoed) {
    EXPECT_EQ(session->Run("echo a; echo100 b"), Outcome::Answered);
    EXPECT_EQ(Answers(), "a\nb\n");
    EXPECT_EQ(session->Run("echorep Done: 50%"), Outcome::Answered);
    EXPECT_EQ(Answers(), "Done: 50%\n");
    EXPECT_EQ(session->Run("echo lost; pause1"), Outcome::Answered);
    EXPECT_EQ(session->Run("echo lost; clear"), Outcome::Answered);
    EXPECT_EQ(Answers(), "");
    EXPECT_EQ(session->Run("echo lost; exit"), Outcome::Ended);
    EXPECT_EQ(Answers(), "");
}

// No less time passes than was asked for; how much that is, the tests of ConsoleCommand.h say.
void expectAtLeast(long milliseconds, Session& session, const char* entry) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(session.Run(entry), Outcome::Answered) << entry;
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(milliseconds)) << entry;
}

TEST_F(SessionTest, PausesAsLongAsAskedFor) {
    expectAtLeast(100, *session, "pause 100");
    expectAtLeast(1000, *session, "pause7000");
    EXPECT_EQ(Answers(), "");
}

TEST_F(SessionTest, TypesTextOutAtItsRate) {
    // Ten characters and a line feed: ten waits of 10 milliseconds.
    expectAtLeast(100, *session, "echo100 0123456789");
    EXPECT_EQ(Answers(), "0123456789\n");
    for (const char* const entry : {"echo0 0123456789", "echo500 0123456789", "echo101 0123456789"}) {
        EXPECT_EQ(session->Run(entry), Outcome::Answered) << entry;
        EXPECT_EQ(Answers(), "0123456789\n");
    }
    EXPECT_EQ(session->Run("echo50 gr\xC3\xB6\xC3\x9F"), Outcome::Answered);
    EXPECT_EQ(Answers(), "gr\xC3\xB6\xC3\x9F\n");
}

TEST_F(SessionTest, ConversionsAreNotFoundWithoutAService) {
    unsetenv("TALLYQUILL_QUERY_URL");
    EXPECT_EQ(session->Run("convert 5 miles to km"), Outcome::Answered);
    EXPECT_EQ(Answers(), "Not found.\n");
    setenv("TALLYQUILL_QUERY_URL", "", 1);
    EXPECT_EQ(session->Run("convert 5 miles to km"), Outcome::Answered);
    EXPECT_EQ(Answers(), "Not found.\n");
    EXPECT_FALSE(session->AnyRefused());
    unsetenv("TALLYQUILL_QUERY_URL");
}

TEST_F(SessionTest, ThePageIsNotOpenedWithoutAnAddress) {
    unsetenv("TALLYQUILL_WEB_URL");
    session->Run("gospel");
    EXPECT_NE(Answers().find("    << type 'gospel' for more >>\n"), std::string::npos);
    EXPECT_EQ(session->Run("gospel"), Outcome::Answered);
    EXPECT_EQ(Answers(), "There is no web page to open.\n");
    EXPECT_FALSE(session->AnyRefused());
}

// --- Answers that cannot be written ---

// What an entry comes to where there is nowhere to answer.
Outcome unwritten(const std::string& entry, const Session::Style& style) {
    Session session(-1, -1, style);
    session.Calculator().traced = false;
    return session.Run(entry);
}

TEST(UnwrittenAnswers, OfEveryKindAreReported) {
    for (const char* const entry :
         {"1", "echo text", "echo text; 1/0", "f(x)=x", "mode deg", "echo50 text", "convert 5 miles to km"})
        EXPECT_EQ(Outcome::OutputLost, unwritten(entry, {})) << entry;
    EXPECT_EQ(Outcome::Refused, unwritten("1/0", {})); // errors go elsewhere
    EXPECT_EQ(Outcome::Ended, unwritten("exit", {}));
}

TEST(UnwrittenAnswers, AsObjectsAreReported) {
    Session::Style objects;
    objects.json = true;
    for (const char* const entry : {"1", "1/0", "echo text", "mode deg", "\x01"})
        EXPECT_EQ(Outcome::OutputLost, unwritten(entry, objects)) << entry;
}

TEST(UnwrittenAnswers, ThatWereCollectedAreReportedBeforeAnErrorOrACommand) {
    Session::Style blocks;
    blocks.inBlocks = true;
    for (const char* const next : {"1/0", "clear", "exit"}) {
        Session session(-1, -1, blocks);
        session.Calculator().traced = false;
        EXPECT_EQ(Outcome::Answered, session.Run("1"));
        EXPECT_EQ(Outcome::OutputLost, session.Run(next)) << next;
    }
    Session session(-1, -1, blocks);
    session.Run("1");
    EXPECT_FALSE(session.End());
}

TEST(UnwrittenAnswers, OfATerminalAreReported) {
    class ATerminal : public System {
    public:
        int IsTerminal(int) override { return 1; }
    } terminal;
    setenv("TERM", "xterm", 1);
    Session session(-1, -1, {}, terminal);
    session.Calculator().traced = false;
    EXPECT_EQ(Outcome::OutputLost, session.Run("clear"));                 // a sequence
    EXPECT_EQ(Outcome::OutputLost, session.Run("convert 5 miles to km")); // that it checks
}

TEST_F(SessionTest, TextThatIsTypedOutIsNoValue) {
    Session::Style style;
    style.quiet = true;
    Session quiet(answers[1], errors[1], style);
    EXPECT_EQ(Outcome::Answered, quiet.Run("echo50 text"));
    style.quiet = false;
    style.last = true;
    Session last(answers[1], errors[1], style);
    EXPECT_EQ(Outcome::Answered, last.Run("echo50 text"));
    EXPECT_EQ("", Answers());
}

} // namespace
