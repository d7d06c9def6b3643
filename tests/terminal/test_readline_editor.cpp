// SPDX-License-Identifier: MIT
//
// What stays in Readline, which belongs to the process, from one editor to the next.
#include "ReadlineEditor.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

class QuietHost : public PromptHost {
public:
    std::string PromptText(bool) const override { return "> "; }
    long DoDue() override { return -1; }
    std::string PreviewOf(const std::string&) override { return ""; }
    Completion CompletionsAt(const std::string&, size_t) override { return {}; }
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

} // namespace
