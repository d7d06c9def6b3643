// SPDX-License-Identifier: MIT
#include "ShownText.h"

#include <gtest/gtest.h>

namespace {

using std::string_literals::operator""s;

TEST(ShownText, LeavesPlainTextAndLinesAsTheyAre) {
    for (const char* const text :
         {"", "ans = 5\n", "a\nb\n", "\xC2\xA0\xC2\xB2 \xE2\x89\x88 \xF0\x9F\x98\x80"}) {
        EXPECT_EQ(shownText(text), text);
    }
}

TEST(ShownText, ShowsNoControlCharacter) {
    EXPECT_EQ(shownText("\x1B]0;x\x07"), "?]0;x?");
    EXPECT_EQ(shownText("\0\x01\x1F\x7F"s), "????");
    EXPECT_EQ(shownText("a\tb\rc\b"), "a b?c?");
    EXPECT_EQ(shownText("\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0"), "???\xC2\xA0");
    EXPECT_EQ(shownText("a\xC2\x9B"
                        "2J"),
              "a?2J");
}

// They would show a line in another order than it has, or break it.
TEST(ShownText, ShowsNoCharacterThatReordersOrBreaksLines) {
    // NOLINTBEGIN(misc-misleading-bidirectional): these characters are what the test is about
    for (const char* const text :
         {"\xD8\x9C", "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAA",
          "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA9"}) {
        // NOLINTEND(misc-misleading-bidirectional)
        EXPECT_EQ(shownText(std::string("1") + text + "2"), "1?2");
    }
    for (const char* const text : {"\xD8\x9B", "\xD8\x9D", "\xE2\x80\x8D", "\xE2\x80\x90", "\xE2\x80\xA7",
                                   "\xE2\x80\xAF", "\xE2\x81\xA5", "\xE2\x81\xAA", "\xE2\x82\xA8"}) {
        EXPECT_EQ(shownText(text), text);
    }
}

TEST(ShownText, ShowsNoByteThatIsNoUtf8) {
    EXPECT_EQ(shownText("\x9B"
                        "2J"),
              "?2J");
    EXPECT_EQ(shownText("a\xC3"), "a?");              // cut
    EXPECT_EQ(shownText("\xC0\x9B"), "??");           // overlong
    EXPECT_EQ(shownText("\xED\xA0\x80"), "???");      // a surrogate
    EXPECT_EQ(shownText("\xF4\x90\x80\x80"), "????"); // above U+10FFFF
    EXPECT_EQ(shownText("\xE2\x89\xC3\xB6"), "??\xC3\xB6");
}

TEST(ShownText, KnowsWhatIsUtf8) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("gr\xC3\xB6\xC3\x9F"
                       "er"));
    EXPECT_FALSE(isUtf8("8 km\xB2"));
    EXPECT_FALSE(isUtf8("8 km\xC2"));
}

TEST(ShownText, KnowsControlCharacters) {
    for (const char* const text : {"", "1+1", "a\tb", "\u00a0\u00d7\u201c\U0001f600"})
        EXPECT_FALSE(hasControls(text)) << text;
    for (const char* const text : {"\n", "a\x1b[2J", "a\x7f", "a\u0080", "\u00d7\u009f"})
        EXPECT_TRUE(hasControls(text)) << text;
    EXPECT_TRUE(hasControls(std::string_view("a\0", 2)));
}

TEST(ShownLatin1, ShowsNoControlCharacter) {
    EXPECT_EQ(shownLatin1("a\x1B[2J\n\tb\x7F\x80\x9F\xA0\xFF"), "a?[2J\n b???\xA0\xFF");
}

} // namespace
