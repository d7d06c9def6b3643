// SPDX-License-Identifier: MIT
//
// What comes from a terminal as text.
#include "TypedText.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(TypedText, AMarkStandsForEachByteThatIsNoUtf8) {
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ("2\xC3\x97\xF0\x9D\x9F\x91", asUtf8("2\xC3\x97\xF0\x9D\x9F\x91"));
    EXPECT_EQ("1" + mark + "2", asUtf8("1\xFF"
                                       "2"));
    EXPECT_EQ(mark + mark + "+", asUtf8("\xE4\xB8+"));
    EXPECT_EQ(mark + "\xC3\x97" + mark, asUtf8("\xC3\xC3\x97\x97"));
    EXPECT_EQ("", asUtf8(""));
}

TEST(TypedText, AMarkStandsForAControlCharacterThatIsNoKey) {
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ("1" + mark + mark + "\u00a0\u00d7", asUtf8("1\u0080\u009f\u00a0\u00d7"));
    EXPECT_EQ("\x1b[A\x07\x7f\t", asUtf8("\x1b[A\x07\x7f\t"));
}

TEST(TypedText, APastedTextIsDividedAtEveryKindOfLineEnd) {
    const std::vector<std::string> three = {"1", "", "2"};
    EXPECT_EQ(three, pastedLines("1\n\n2"));
    EXPECT_EQ(three, pastedLines("1\r\r2"));
    EXPECT_EQ(three, pastedLines("1\r\n\r\n2"));
    EXPECT_EQ(std::vector<std::string>({"1", ""}), pastedLines("1\r"));
    EXPECT_EQ(std::vector<std::string>({""}), pastedLines(""));
    EXPECT_EQ(std::vector<std::string>({"1?2"}), pastedLines(std::string("1\0"
                                                                         "2",
                                                                         3)));
}

} // namespace
