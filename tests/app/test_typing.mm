// SPDX-License-Identifier: MIT
//
// Typing: where it goes, and operators that apply to the previous answer.
#import "console_fixture.h"

namespace {

class Typing : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        Enter("1+2");
        first = Transcript();
    }

    // What typing the text into an empty entry gives.
    std::string Typed(const char* keys) {
        [console clearPrompt];
        Type(keys);
        EXPECT_EQ(first, Transcript());
        return Entry();
    }

    std::string first;
};

TEST_F(Typing, EveryKeyPreviewsTheEntry) {
    Type("4");
    EXPECT_EQ("ans = 4", StatusLine());
    Type("*5");
    EXPECT_EQ("ans = 20", StatusLine());
    Press(KEY_BACKSPACE);
    EXPECT_EQ("", StatusLine()); // "4*" has no value
    EXPECT_EQ(first, Transcript());
}

TEST_F(Typing, ArmsTheMatchingOfTheHistory) {
    matching_enable = 0;
    update_match_str = 1;
    Type("4");
    EXPECT_EQ(1, matching_enable);
    EXPECT_EQ(0, update_match_str);
}

TEST_F(Typing, InTheTranscriptGoesToTheEndOfTheEntry) {
    Type("45");
    for (const NSRange place : {NSMakeRange(0, 0), NSMakeRange(2, 3), NSMakeRange(first.size() - 1, 0)}) {
        Select(place.location, place.length);
        Type("6");
    }
    EXPECT_EQ(first + "45666", Text());
}

TEST_F(Typing, OverASelectionAcrossThePromptReplacesNothing) {
    Type("45");
    Select(first.size() - 2, 3);
    Type("6");
    EXPECT_EQ(first + "456", Text());
    [console selectAll:nil];
    Type("7");
    EXPECT_EQ(first + "4567", Text());
}

TEST_F(Typing, ReplacesASelectionInTheEntry) {
    Type("45");
    SelectEntry(0, 2);
    Type("6");
    EXPECT_EQ("6", Entry());
}

TEST_F(Typing, AnOperatorFirstAppliesToThePreviousAnswer) {
    EXPECT_EQ("ans+", Typed("+"));
    EXPECT_EQ("ans*", Typed("*"));
    EXPECT_EQ("ans/", Typed("/"));
    EXPECT_EQ("ans*5", Typed("*5"));
    EXPECT_EQ("ans = 15", StatusLine());
    EXPECT_EQ("^", Typed("^"));
    EXPECT_EQ("ans**", Typed("**"));
}

TEST_F(Typing, TheKeypadsOperatorsAreOperatorsToo) {
    Press(@"*", NSNumericPadKeyMask);
    EXPECT_EQ("ans*", Entry());
}

TEST_F(Typing, TheOperatorRuleLooksOnlyAtTheCursor) {
    Type("45");
    SelectEntry(0);
    Type("*");
    EXPECT_EQ("ans*45", Entry());
    EXPECT_EQ(4U, CursorInEntry());
}

TEST_F(Typing, AnOperatorOverASelectionOnlyReplacesIt) {
    Type("45");
    SelectEntry(0, 2);
    Type("*");
    EXPECT_EQ("*", Entry());
}

TEST_F(Typing, AnOperatorTypedInTheTranscriptAppliesToThePreviousAnswer) {
    Select(0, 4);
    Type("/");
    EXPECT_EQ(first + "ans/", Text());
}

TEST_F(Typing, AMinusFirstIsASignWhenDoubleNegationsAreOn) {
    [console setSetting:@"doublenegans" to:1];
    EXPECT_EQ("-", Typed("-"));
    EXPECT_EQ("ans-", Typed("--"));
    EXPECT_EQ("-", Typed("---"));
    EXPECT_EQ("ans-", Typed("----"));
    EXPECT_EQ("ans-5", Typed("--5"));
    EXPECT_EQ("ans = -2", StatusLine());
}

TEST_F(Typing, AMinusFirstAppliesToThePreviousAnswerWhenDoubleNegationsAreOff) {
    [console setSetting:@"doublenegans" to:0];
    EXPECT_EQ("ans-", Typed("-"));
    EXPECT_EQ("-", Typed("--"));
    EXPECT_EQ("ans-", Typed("---"));
    EXPECT_EQ("-5", Typed("--5"));
}

TEST_F(Typing, TheSecondMinusKeepsTheRestOfTheEntry) {
    Type("-45");
    SelectEntry(1);
    Type("-");
    EXPECT_EQ("ans-45", Entry());
    EXPECT_EQ(4U, CursorInEntry());
    Type("-");
    EXPECT_EQ("-45", Entry());
    EXPECT_EQ(1U, CursorInEntry());
}

TEST_F(Typing, AMinusElsewhereIsJustAMinus) {
    EXPECT_EQ("5-", Typed("5-"));
    EXPECT_EQ("5--", Typed("5--"));
    EXPECT_EQ("abc--", Typed("abc--"));
    EXPECT_EQ("ans+-", Typed("+-"));
    EXPECT_EQ("-5-", Typed("-5-"));
    EXPECT_EQ("-+", Typed("-+"));
    Type("--");
    [console clearPrompt];
    Type("-5");
    SelectEntry(1, 1);
    Type("-"); // over a selection
    EXPECT_EQ("--", Entry());
}

TEST_F(Typing, TakesCharactersThatTheCalculatorDoesNotKnow) {
    Press(@"\u20ac", NSAlternateKeyMask);
    Press(@"\u00e9");
    EXPECT_EQ("\u20ac\u00e9", Entry());
    EXPECT_EQ("", StatusLine());
    EXPECT_EQ(first, Transcript());
}

} // namespace
