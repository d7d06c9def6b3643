// SPDX-License-Identifier: MIT
//
// The text helpers that front ends and files use, too.
#include "Helpers_String.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(StrIsEqual, ComparesTextsWithCaseAndWithout) {
    EXPECT_TRUE(strIsEqual("aB1", "aB1"));
    EXPECT_FALSE(strIsEqual("aB1", "ab1"));
    EXPECT_FALSE(strIsEqual("a", "ab"));
    EXPECT_TRUE(strIsEqualI("aB1", "Ab1"));
    EXPECT_FALSE(strIsEqualI("ab", "a"));
    EXPECT_FALSE(strIsEqualI("\xC4", "\xE4")); // no letters of ASCII
}

TEST(StrIsEqual, ComparesTheFirstCharactersOrWhatThereIs) {
    EXPECT_TRUE(strIsEqualNI("list all", "LIST", 4));
    EXPECT_FALSE(strIsEqualNI("list", "lisp", 4));
    EXPECT_TRUE(strIsEqualNI("list", "lisp", 3));
    EXPECT_TRUE(strIsEqualNI("abc", "ABC", 10)); // both end before
    EXPECT_FALSE(strIsEqualNI("abc", "abcd", 10));
    EXPECT_TRUE(strIsEqualNI("a", "b", 0));
}

TEST(StrSwapChars, ExchangesTwoCharactersThroughout) {
    char text[] = "1.234,5.6;";
    StrSwapChars(text, '.', ',');
    EXPECT_STREQ("1,234.5,6;", text);
}

TEST(StrRemoveChar, RemovesEveryOne) {
    char text[] = ",1,234,,5,";
    StrRemoveChar(text, ',');
    EXPECT_STREQ("12345", text);
    StrRemoveChar(text, 'x');
    EXPECT_STREQ("12345", text);
    char all[] = "xx";
    StrRemoveChar(all, 'x');
    EXPECT_STREQ("", all);
}

TEST(StrRemoveNewlineChars, LeavesOneLine) {
    char text[] = "\r1\r\n2\n\n3\t\n";
    StrRemoveNewlineChars(text);
    EXPECT_STREQ("123\t", text);
}

TEST(FindStrAfterLastChar, IsWhatFollowsOrTheWholeText) {
    EXPECT_STREQ("c", FindStrAfterLastChar("a/b/c", '/'));
    EXPECT_STREQ("", FindStrAfterLastChar("a/", '/'));
    EXPECT_STREQ("abc", FindStrAfterLastChar("abc", '/'));
    EXPECT_STREQ("abc", FindStrAfterLastChar("abc", '\0'));
}

TEST(WithoutBlanks, LeavesOutBlanksTabsAndLineEnds) {
    EXPECT_EQ(withoutBlanks(" 1 +\t2 \r\n"), "1+2");
    EXPECT_EQ(withoutBlanks(""), "");
}

TEST(Trimmed, LeavesOutBlanksAndTabsAtTheEndsOnly) {
    EXPECT_EQ(trimmed(" \tunit  a\t "), "unit  a");
    EXPECT_EQ(trimmed("a\n"), "a\n"); // no line ends
    EXPECT_EQ(trimmed(" \t "), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(IsControl, IsAnyControlCharacterOfAsciiButTheTab) {
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(isControl(static_cast<char>(code)), (code < 32 && code != 9) || code == 127) << code;
}

} // namespace
