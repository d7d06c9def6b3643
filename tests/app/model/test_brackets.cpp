// SPDX-License-Identifier: MIT
#include "Brackets.h"

#include <gtest/gtest.h>

TEST(Brackets, ThePartnerOfTheOneBeforeTheCursor) {
    EXPECT_EQ(partnerOfBracketAt(u"2*(3+4)", 7), 2U);
    EXPECT_EQ(partnerOfBracketAt(u"2*(3+4)", 3), 6U);
    EXPECT_EQ(partnerOfBracketAt(u"((1)+(2))", 9), 0U);
    EXPECT_EQ(partnerOfBracketAt(u"((1)+(2))", 8), 5U);
    EXPECT_EQ(partnerOfBracketAt(u"((1)+(2))", 2), 3U);
}

TEST(Brackets, WithoutOneBeforeTheCursorThatOfTheOneBehindIt) {
    EXPECT_EQ(partnerOfBracketAt(u"2*(3+4)", 2), 6U);
    EXPECT_EQ(partnerOfBracketAt(u"2*(3+4)", 6), 2U);
    EXPECT_EQ(partnerOfBracketAt(u"(1)(2)", 3), 0U) << "the one before comes first";
}

TEST(Brackets, AllKindsCountAlike) {
    EXPECT_EQ(partnerOfBracketAt(u"[1+{2)]", 7), 0U);
    EXPECT_EQ(partnerOfBracketAt(u"[1+{2)]", 6), 3U);
}

TEST(Brackets, NothingWithoutABracketOrAPartner) {
    EXPECT_EQ(partnerOfBracketAt(u"", 0), std::nullopt);
    EXPECT_EQ(partnerOfBracketAt(u"1+2", 2), std::nullopt);
    EXPECT_EQ(partnerOfBracketAt(u"(1", 1), std::nullopt);
    EXPECT_EQ(partnerOfBracketAt(u"1)", 2), std::nullopt);
    EXPECT_EQ(partnerOfBracketAt(u"(1)", 99), std::nullopt);
}
