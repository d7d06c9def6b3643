// SPDX-License-Identifier: MIT
//
// What stays in Readline, which belongs to the process, from one editor to the next.
#include "ReadlineEditor.h"

#include "Interrupt.h"
#include "ShownText.h"
#include "typed_keys.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

class QuietHost : public PromptHost {
public:
    std::string PromptText(bool) const override { return "> "; }
    long DoDue() override { return -1; }
    std::string PreviewOf(const std::string&) override { return ""; }
    Completion CompletionsAt(const std::string& entry, size_t cursor) override {
        EXPECT_LE(cursor, entry.size());
        return {};
    }
    bool MinusIsSign() const override { return true; }
};

// The first line of an editor that gets these keys and no more, and its status.
LineSource::Status firstLine(const std::string& keys, std::string& line) {
    int ends[2];
    if (pipe(ends) != 0) return LineSource::Status::Failed;
    const bool isWritten = write(ends[1], keys.data(), keys.size()) == static_cast<ssize_t>(keys.size());
    close(ends[1]);
    const int screen = open("/dev/null", O_WRONLY | O_CLOEXEC);
    QuietHost host;
    LineSource::Status status = LineSource::Status::Failed;
    if (isWritten) {
        ReadlineEditor editor(host, ends[0], screen);
        editor.SetHistory({"s=1", "sin(30)"});
        status = editor.Next(line);
    }
    close(ends[0]);
    close(screen);
    return status;
}

TEST(ReadlineEditor, BeginsWithoutTheSearchInWhichTheInputOfAnotherOneEnded) {
    setenv("INPUTRC", "/dev/null", 1);
    setenv("TERM", "xterm", 1);
    std::string line;
    EXPECT_EQ(LineSource::Status::End, firstLine("\x12s", line)); // Ctrl-R
    EXPECT_EQ(LineSource::Status::Line, firstLine("2+3\r", line));
    EXPECT_EQ("2+3", line);
}

// That a process of its own, which ends when the keys do not, finds it so: Readline would keep the keys of
// vi, to which Alt with Ctrl-J turns.
template <class Run> void expectInChild(const std::string& keys, Run run) {
    const auto inChild = [&] {
        alarm(10);
        setenv("INPUTRC", "/dev/null", 1);
        setenv("TERM", "xterm", 1);
        std::exit(run() ? 0 : 1); // with the counts of what it ran
    };
    EXPECT_EXIT(inChild(), testing::ExitedWithCode(0), "") << shownText(keys);
}

// The line that Readline leaves of these keys.
void expectLine(const std::string& keys, const std::string& expected) {
    expectInChild(keys, [&] {
        std::string line;
        firstLine(keys + "\r", line);
        if (line != expected) std::fputs(shownText(line).c_str(), stderr);
        return line == expected;
    });
}

const std::string MARK = "\xEF\xBF\xBD"; // for a byte that is no text

TEST(ReadlineEditor, GoesToTheNextWordWithKeysOfViInWhatIsNoText) {
    for (const char* const command : {"e", "E", "w", "W", "="}) {
        const std::string keys = std::string("\x1b"
                                             "0") +
                                 command + "A";
        expectLine("\x1b\n"
                   "a\xE4\xB8" +
                       keys,
                   "a" + MARK + MARK);
        expectLine("\x1b\n\xFF\xE4\xB8 2" + keys, MARK + MARK + MARK + " 2");
    }
}

// A line was deleted, y got no motion, and "." repeats both.
TEST(ReadlineEditor, AnUnfinishedCommandOfViThatIsRepeatedLeavesNoNul) {
    expectLine("\x1b\n12\x1b"
               "ddi12\x1b"
               "0yz.",
               "?2");
}

// U+0382 is not assigned; the accent has no width.
TEST(ReadlineEditor, KeysOfViEndBehindACharacterThatTheSystemDoesNotKnow) {
    for (const char* const command : {"%", "e", "E", "w", "W", "=", "*"}) {
        const std::string keys = std::string("\x1b") + command + "\x1b$a";
        expectLine("\x1b\n2*x\xCE\x82" + keys, "2*x" + MARK);
        expectLine("\x1b\n2*xa\xCC\x81" + keys, "2*xa\xCC\x81");
    }
    expectLine("2*x\xCE\x82", "2*x\xCE\x82"); // as it is with other keys
}

// Readline's cursor may then be behind the end of the line.
TEST(ReadlineEditor, CompletesBehindASearchInALineThatHadBytesThatAreNoText) {
    setenv("INPUTRC", "/dev/null", 1);
    setenv("TERM", "xterm", 1);
    std::string line;
    // Alt with a letter that is no key, Ctrl-R, Ctrl-S
    EXPECT_EQ(LineSource::Status::End, firstLine("2\x1b\xFF\xFF\xFB\x12\xCF\x13\x13\t\t", line));
}

TEST(ReadlineEditor, ShowsAMarkForBytesThatAreNoText) {
    expectLine("1+2\x02\xFF\x33", "1+" + MARK + "32");          // Ctrl-B
    expectLine("\x1b\xC3\xA9\x32\x02\x33", MARK + "32");        // Alt with a letter that is no key
    expectLine("\x1b\xC3\xA9\x02\x06\x1f\x1f\x32", MARK + "2"); // Ctrl-_ brings the byte not back
}

// Readline would look for quotation marks from the start, for a minute.
TEST(ReadlineEditor, CompletesAtOnceAtTheEndOfAVeryLongLine) {
    std::string keys;
    for (int i = 0; i < 20; i++) keys.append("\x1b").append("9999x"); // Alt with 9999
    expectLine(keys + "\t", std::string(20 * size_t{9999}, 'x'));
}

TEST(ReadlineEditor, TakesAPastedTextToItsEnd) {
    const std::string nul(1, '\0');
    expectLine("\x1b[200~1" + nul + "2\xE4\x1b[201~", "1?2" + MARK);
}

// --- In the middle of a key ---

using Status = LineSource::Status;

// What becomes of these pieces, in a process of its own, as above: the signals are caught there.
void expectStatus(const std::deque<Piece>& pieces, Status expected, const std::string& line = "",
                  int error = 0) {
    expectInChild(pieces.front().bytes, [&] {
        const InterruptCatcher interrupts;
        const EndCatcher ends;
        TypedKeys keys(pieces);
        QuietHost host;
        ReadlineEditor editor(host, STDIN_FILENO, open("/dev/null", O_WRONLY | O_CLOEXEC), keys);
        std::string text;
        errno = 0;
        const Status status = editor.Next(text);
        const bool isRight = status == expected && text == line && (error == 0 || errno == error);
        if (!isRight) std::fprintf(stderr, "%d %s %d", static_cast<int>(status), text.c_str(), errno);
        return isRight;
    });
}

const std::string PASTE = "\x1b[200~";

TEST(ReadlineEditor, APasteThatComesInPiecesIsWhole) {
    expectStatus({{PASTE + "1+"}, {"2\x1b[20"}, {"1~*3\r"}}, Status::Line, "1+2*3");
}

TEST(ReadlineEditor, SignalsInTheMiddleOfAPasteTakeNothingFromIt) {
    for (const int signal : {SIGWINCH, SIGCONT})
        expectStatus({{PASTE + "1+"}, during(signal), {"2\x1b[201~\r"}}, Status::Line, "1+2");
}

// Where there is no /proc, nobody can tell.
bool mayBeStopped(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    return !std::getline(file, text) || text.find(") T ") != std::string::npos;
}

// Another process lets it go on. In a group that no shell looks after the system does not stop it. One that
// is not stopped gets no signal: it would disturb the search for leaks at its end.
void stopAndGoOn() {
    const pid_t stopped = getpid();
    const pid_t other = fork();
    if (other == 0) {
        while (getppid() == stopped) {
            if (mayBeStopped(stopped)) kill(stopped, SIGCONT);
            usleep(10000);
        }
        std::_Exit(0);
    }
    raise(SIGTSTP);
}

TEST(ReadlineEditor, AStopInTheMiddleOfAPasteTakesNothingFromIt) {
    expectStatus({{PASTE + "1+"}, {"", 0, stopAndGoOn}, {"2\x1b[201~\r"}}, Status::Line, "1+2");
}

TEST(ReadlineEditor, ControlCInTheMiddleOfAPasteDropsTheLine) {
    expectStatus({{"7"}, {PASTE + "1+"}, during(SIGINT), {"2\x1b[201~\r"}}, Status::Canceled);
}

TEST(ReadlineEditor, TheEndInTheMiddleOfAPasteRunsNothing) {
    expectStatus({{PASTE + "1+1\n2+2"}}, Status::End);
    expectStatus({{PASTE + "1+1\n2+2"}, during(SIGTERM)}, Status::End);
}

TEST(ReadlineEditor, AFailureInTheMiddleOfAPasteIsTold) {
    expectStatus({{PASTE + "1+1\n2+2"}, {"", EBADF}}, Status::Failed, "", EBADF);
    expectStatus({{PASTE + "1+"}, {"", EAGAIN}, {"2\x1b[201~\r"}}, Status::Line, "1+2");
}

TEST(ReadlineEditor, SignalsBetweenPastedLinesDropThoseThatWait) {
    for (const int signal : {SIGTERM, SIGINT}) {
        expectInChild("", [signal] {
            const InterruptCatcher interrupts;
            const EndCatcher ends;
            TypedKeys keys({{PASTE + "1\n2\n3\x1b[201~"}});
            QuietHost host;
            ReadlineEditor editor(host, STDIN_FILENO, open("/dev/null", O_WRONLY | O_CLOEXEC), keys);
            std::string line;
            const bool isFirst = editor.Next(line) == Status::Pasted && line == "1";
            raise(signal);
            const Status expected = signal == SIGTERM ? Status::End : Status::Canceled;
            return isFirst && editor.Next(line) == expected && line == "1";
        });
    }
}

// An Escape may begin a sequence, which is waited for a moment.
TEST(ReadlineEditor, SignalsBehindAnEscapeTakeNoKey) {
    for (const int signal : {SIGWINCH, SIGCONT})
        expectStatus({{"2+3\x1b"}, during(signal), {"b4\r"}}, Status::Line, "2+43");
    expectStatus({{"2+3\x1b"}, {"", 0, stopAndGoOn}, {"b4\r"}}, Status::Line, "2+43");
    expectStatus({{"2+3\x1b"}, {"b4\r"}}, Status::Line, "2+43");
    expectStatus({{"2+3\x1b"}, during(SIGINT), {"b4\r"}}, Status::Canceled);
    expectStatus({{"2+3\x1b"}, {"", EBADF}}, Status::Failed, "", EBADF);
}

TEST(ReadlineEditor, BehindTheNewestEntryThereIsNone) {
    expectLine("\x1b[B7", "7");
    expectLine("7\x1b[B\x1b[A\x1b[B", "7");
    expectLine("s\x1b[A\x1b[A\x1b[A\x1b[B\x1b[B\x1b[B", "s");
}

} // namespace
