// SPDX-License-Identifier: MIT
#include "TranscriptFile.h"

#include <gtest/gtest.h>

static std::string lines(int first, int last) {
    std::string text;
    for (int i = first; i <= last; ++i) text += "line " + std::to_string(i) + "\n";
    return text;
}

TEST(TranscriptFile, HoldsTheLastThreeHundredLines) {
    EXPECT_EQ(endOfTranscript(""), "");
    EXPECT_EQ(endOfTranscript("> 1+1\nans = 2\n\n"), "> 1+1\nans = 2\n\n");
    EXPECT_EQ(endOfTranscript(lines(1, 300)), lines(1, 300));
    EXPECT_EQ(endOfTranscript(lines(1, 301)), lines(2, 301));
    EXPECT_EQ(endOfTranscript(std::string(1000, '\n')), std::string(300, '\n'));
}

TEST(TranscriptFile, HoldsWholeLinesAndNotTooManyBytes) {
    const std::string most = std::string(TRANSCRIPT_BYTES - 3, '7') + "\n";
    EXPECT_EQ(endOfTranscript("9\n\n" + most), "\n" + most);
    EXPECT_EQ(endOfTranscript("9\n8\n" + most), "8\n" + most);
    EXPECT_EQ(endOfTranscript("9\n88\n" + most), most);
    EXPECT_EQ(endOfTranscript(std::string(TRANSCRIPT_BYTES, '7')), "") << "with its end it is too long";
    EXPECT_EQ(endOfTranscript("cut off"), "cut off\n");
}

TEST(TranscriptFile, HoldsNoControlCharacters) {
    EXPECT_EQ(endOfTranscript("a\x1b[31mb\x07\r\tc\n"), "a?[31mb?? c\n");
    EXPECT_EQ(endOfTranscript(std::string("a\0b\n", 4)), "a?b\n");
    EXPECT_EQ(endOfTranscript("\xc2\xb5 \xff \xc2\x85\n"), "\xc2\xb5 ? ?\n");
}
