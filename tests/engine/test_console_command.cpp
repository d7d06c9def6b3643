// SPDX-License-Identifier: MIT
#include "Commands.h"

#include <gtest/gtest.h>

namespace {

TEST(ConsoleCommand, ANumberStandsBehindTheWord) {
    long number = -1;
    EXPECT_TRUE(commandHasNumber("pause500", "pause", number));
    EXPECT_EQ(500, number);
    EXPECT_TRUE(commandHasNumber("pause-5", "pause", number));
    EXPECT_EQ(-5, number);
    EXPECT_TRUE(commandHasNumber("echo0x10", "echo", number));
    EXPECT_EQ(16, number);
    for (const char* command : {"pause", "pausex", "paus5", "echorep", ""}) {
        EXPECT_FALSE(commandHasNumber(command, "pause", number)) << command;
    }
}

TEST(ConsoleCommand, APauseOutsideOfZeroToFiveSecondsIsOneSecond) {
    EXPECT_EQ(0, pauseLength(0));
    EXPECT_EQ(100, pauseLength(100));
    EXPECT_EQ(5000, pauseLength(5000));
    for (const long number : {5001L, 7000L, -1L, -5L}) EXPECT_EQ(1000, pauseLength(number)) << number;
}

TEST(ConsoleCommand, CharactersComeAtTheirRate) {
    EXPECT_EQ(1000, waitBetweenCharacters(1));
    EXPECT_EQ(100, waitBetweenCharacters(10));
    EXPECT_EQ(33, waitBetweenCharacters(30));
    EXPECT_EQ(10, waitBetweenCharacters(100));
    for (const long number : {0L, 101L, 500L, -5L}) EXPECT_EQ(0, waitBetweenCharacters(number)) << number;
}

} // namespace
