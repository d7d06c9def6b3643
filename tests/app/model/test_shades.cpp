// SPDX-License-Identifier: MIT
#include "Shades.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

static double difference(const Shade& one, const Shade& other) {
    return std::max(
        {std::abs(one.red - other.red), std::abs(one.green - other.green), std::abs(one.blue - other.blue)});
}

TEST(Shades, TheContrastIsThatOfTheAccessibilityGuidelines) {
    EXPECT_NEAR(contrast({0, 0, 0}, {1, 1, 1}), 21, 1e-9);
    EXPECT_NEAR(contrast({1, 1, 1}, {0, 0, 0}), 21, 1e-9);
    EXPECT_NEAR(contrast({0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}), 1, 1e-9);
    // #767676 is the lightest gray that is legible on white, the guidelines' own example: 4.54.
    EXPECT_NEAR(contrast({0x76 / 255.0, 0x76 / 255.0, 0x76 / 255.0}, {1, 1, 1}), 4.54, 0.005);
}

TEST(Shades, ABackgroundIsLightWhereBlackIsMoreLegibleThanWhite) {
    EXPECT_FALSE(isLight({0.1, 0.1, 0.1}));
    EXPECT_FALSE(isLight({0, 0, 1}));
    EXPECT_FALSE(isLight({0.4, 0.4, 0.4}));
    EXPECT_TRUE(isLight({1, 1, 1}));
    EXPECT_TRUE(isLight({1, 1, 0}));
    EXPECT_TRUE(isLight({0.6, 0.6, 0.6}));
}

// All pairs of 4 x 4 x 4 colors.
TEST(Shades, AnswersAndErrorsAreLegibleAndDifferWhateverThePersonChose) {
    const auto color = [](int i) { return Shade{(i & 3) / 3.0, (i >> 2 & 3) / 3.0, (i >> 4 & 3) / 3.0}; };
    for (int i = 0; i < 64 * 64; ++i) {
        const Shade text = color(i % 64), back = color(i / 64);
        const TextShades shades = textShades(text, back);
        ASSERT_GE(contrast(shades.answer, back), 4.5) << i;
        ASSERT_GE(contrast(shades.error, back), 4.5) << i;
        // What the person chose is not legible itself, or hardly anything else is.
        if (contrast(text, back) < 4.5 || std::max(contrast(back, {0, 0, 0}), contrast(back, {1, 1, 1})) < 9)
            continue;
        ASSERT_GE(difference(shades.answer, text), 0.2) << i;
        ASSERT_GE(difference(shades.error, text), 0.2) << i;
        ASSERT_GE(difference(shades.error, shades.answer), 0.2) << i;
    }
}

// The person may have chosen a text that is not legible itself.
TEST(Shades, ABracketStaysAsLegibleOnItsMark) {
    const auto color = [](int i) { return Shade{(i & 3) / 3.0, (i >> 2 & 3) / 3.0, (i >> 4 & 3) / 3.0}; };
    for (int i = 0; i < 64 * 64; ++i) {
        const Shade text = color(i % 64), back = color(i / 64);
        const Shade mark = textShades(text, back).mark;
        ASSERT_GE(contrast(text, mark), std::min(4.5, contrast(text, back)) - 1e-9) << i;
    }
    EXPECT_NEAR(textShades({1, 1, 1}, {0, 0, 0}).mark.red, 0.25, 1e-9) << "where there is room, it is seen";
}

TEST(Shades, AnyColorIsMadeLegibleAnywhere) {
    EXPECT_EQ(difference(legible({1, 1, 0}, {0, 0, 0}), {1, 1, 0}), 0) << "it is already";
    for (int i = 0; i < 11 * 11; ++i) {
        const double text = i % 11 / 10.0, back = i / 11 / 10.0;
        EXPECT_GE(contrast(legible({text, text, text}, {back, back, back}), {back, back, back}), 4.5) << i;
    }
}
