// SPDX-License-Identifier: MIT
//
// The text helpers that front ends and files use, too.
#include "Helpers_String.h"

#include <gtest/gtest.h>

namespace {

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
