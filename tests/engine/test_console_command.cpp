// SPDX-License-Identifier: MIT
#include "ConsoleCommand.h"

#include <gtest/gtest.h>

namespace {

using Kind = ConsoleCommand::Kind;

TEST(ConsoleCommand, AWordIsItsKind) {
    EXPECT_EQ(Kind::Clear, consoleCommand("clear").kind);
    EXPECT_EQ(Kind::Exit, consoleCommand("exit").kind);
    EXPECT_EQ(Kind::ReplaceEntry, consoleCommand("echorep").kind);
    EXPECT_EQ(Kind::Convert, consoleCommand("convert").kind);
    EXPECT_EQ(Kind::OpenWebPage, consoleCommand("gospel").kind);
    for (const char* message : {"", "dance", "clear ", "clearly", "exi", "convert+5", "x"}) {
        EXPECT_EQ(Kind::None, consoleCommand(message).kind) << message;
    }
}

TEST(ConsoleCommand, ANumberStandsBehindTheWord) {
    for (const char* message : {"pause500", "pause 500", "pause0x1f4"}) {
        EXPECT_EQ(Kind::Pause, consoleCommand(message).kind) << message;
        EXPECT_EQ(500, consoleCommand(message).milliseconds) << message;
    }
    EXPECT_EQ(Kind::TypeOut, consoleCommand("echo20").kind);
    for (const char* message : {"pause", "pausex", "paus5", "echo", "echorep5"}) {
        EXPECT_EQ(Kind::None, consoleCommand(message).kind) << message;
    }
}

TEST(ConsoleCommand, APauseOutsideOfZeroToFiveSecondsIsOneSecond) {
    EXPECT_EQ(0, consoleCommand("pause0").milliseconds);
    EXPECT_EQ(100, consoleCommand("pause100").milliseconds);
    EXPECT_EQ(5000, consoleCommand("pause5000").milliseconds);
    for (const char* message : {"pause5001", "pause7000", "pause-1", "pause-5"}) {
        EXPECT_EQ(1000, consoleCommand(message).milliseconds) << message;
    }
}

TEST(ConsoleCommand, CharactersComeAtTheirRate) {
    EXPECT_EQ(1000, consoleCommand("echo1").milliseconds);
    EXPECT_EQ(100, consoleCommand("echo10").milliseconds);
    EXPECT_EQ(33, consoleCommand("echo30").milliseconds);
    EXPECT_EQ(10, consoleCommand("echo100").milliseconds);
    for (const char* message : {"echo0", "echo101", "echo500", "echo-5"}) {
        EXPECT_EQ(0, consoleCommand(message).milliseconds) << message;
    }
}

} // namespace
