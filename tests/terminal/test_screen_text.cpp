// SPDX-License-Identifier: MIT
#include "ScreenText.h"

#include <clocale>
#include <gtest/gtest.h>

namespace {

class ScreenText : public testing::Test {
protected:
    ScreenText() { std::setlocale(LC_CTYPE, "C.UTF-8"); }
    ~ScreenText() override { std::setlocale(LC_CTYPE, "C"); }
};

void expectPlace(const char* text, int width, int row, int column) {
    const ScreenPlace place = placeBehind(text, {}, width);
    EXPECT_EQ(place.row, row) << text;
    EXPECT_EQ(place.column, column) << text;
}

TEST_F(ScreenText, ATextWrapsAtTheWidth) {
    expectPlace("", 10, 0, 0);
    expectPlace("123456789", 10, 0, 9);
    expectPlace("1234567890", 10, 1, 0); // the cursor waits on the next row
    expectPlace("12345678901", 10, 1, 1);
    expectPlace("123456789012345678901", 10, 2, 1);
}

TEST_F(ScreenText, CharactersTakeTheColumnsThatTerminalsGiveThem) {
    expectPlace("é", 10, 0, 1);
    expectPlace("e\u0301", 10, 0, 1); // a letter and its accent
    expectPlace("漢", 10, 0, 2);
    expectPlace("12345678漢", 10, 1, 0);
    expectPlace("123456789漢", 10, 1, 2); // it does not fit
    expectPlace("\x01", 10, 0, 2);        // ^A
    expectPlace("a\tb", 20, 0, 9);
}

TEST_F(ScreenText, WhatTakesNoRoomInAPromptIsMarked) {
    EXPECT_EQ(withoutMarkedParts("\001\x1b[1m\002> \001\x1b[0m\002"), "> ");
    EXPECT_EQ(withoutMarkedParts("> "), "> ");
}

TEST_F(ScreenText, ACutTextIsMarked) {
    EXPECT_EQ(cutToWidth("1234567890", 10), "1234567890");
    EXPECT_EQ(cutToWidth("12345678901", 10), "123456789…");
    EXPECT_EQ(cutToWidth("漢漢漢", 5), "漢漢…");
    EXPECT_EQ(cutToWidth("漢漢漢", 4), "漢…");
    EXPECT_EQ(cutToWidth("12", 1), "…");
}

TEST_F(ScreenText, ACharacterThatHasOnlyBegunIsLeftForLater) {
    EXPECT_EQ(wholeCharacters("2+3"), 3U);
    EXPECT_EQ(wholeCharacters("2\xC3\x97"), 3U);
    EXPECT_EQ(wholeCharacters("2\xC3"), 1U);
    EXPECT_EQ(wholeCharacters("2\xE2\x88"), 1U);
    EXPECT_EQ(wholeCharacters("2\xF0\x9D\x9F"), 1U);
    EXPECT_EQ(wholeCharacters("\x97\x97\x97\x97"), 4U); // no character begins here
}

} // namespace
