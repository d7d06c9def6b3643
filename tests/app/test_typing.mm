// SPDX-License-Identifier: MIT
//
// Typing: where it goes, and operators that apply to the previous answer.
#import "console_fixture.h"

namespace {

class Typing : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        enter("1+2");
        first = transcript();
    }

    // What typing the text into an empty entry gives.
    std::string typed(const char* keys) {
        [console clearPrompt];
        type(keys);
        EXPECT_EQ(first, transcript());
        return entry();
    }

    std::string first;
};

TEST_F(Typing, everyKeyPreviewsTheEntry) {
    type("4");
    EXPECT_EQ("ans = 4", status());
    type("*5");
    EXPECT_EQ("ans = 20", status());
    press(KEY_BACKSPACE);
    EXPECT_EQ("", status()); // "4*" has no value
    EXPECT_EQ(first, transcript());
}

TEST_F(Typing, armsTheMatchingOfTheHistory) {
    matching_enable = 0;
    update_match_str = 1;
    type("4");
    EXPECT_EQ(1, matching_enable);
    EXPECT_EQ(0, update_match_str);
}

TEST_F(Typing, inTheTranscriptGoesToTheEndOfTheEntry) {
    type("45");
    for (const NSRange place : {NSMakeRange(0, 0), NSMakeRange(2, 3), NSMakeRange(first.size() - 1, 0)}) {
        select(place.location, place.length);
        type("6");
    }
    EXPECT_EQ(first + "45666", text());
}

TEST_F(Typing, overASelectionAcrossThePromptReplacesNothing) {
    type("45");
    select(first.size() - 2, 3);
    type("6");
    EXPECT_EQ(first + "456", text());
    [console selectAll:nil];
    type("7");
    EXPECT_EQ(first + "4567", text());
}

TEST_F(Typing, replacesASelectionInTheEntry) {
    type("45");
    selectEntry(0, 2);
    type("6");
    EXPECT_EQ("6", entry());
}

TEST_F(Typing, anOperatorFirstAppliesToThePreviousAnswer) {
    EXPECT_EQ("ans+", typed("+"));
    EXPECT_EQ("ans*", typed("*"));
    EXPECT_EQ("ans/", typed("/"));
    EXPECT_EQ("ans*5", typed("*5"));
    EXPECT_EQ("ans = 15", status());
    EXPECT_EQ("^", typed("^"));
    EXPECT_EQ("ans**", typed("**"));
}

TEST_F(Typing, theKeypadsOperatorsAreOperatorsToo) {
    press(@"*", NSNumericPadKeyMask);
    EXPECT_EQ("ans*", entry());
}

TEST_F(Typing, theOperatorRuleLooksOnlyAtTheCursor) {
    type("45");
    selectEntry(0);
    type("*");
    EXPECT_EQ("ans*45", entry());
    EXPECT_EQ(4U, cursorInEntry());
}

TEST_F(Typing, anOperatorOverASelectionOnlyReplacesIt) {
    type("45");
    selectEntry(0, 2);
    type("*");
    EXPECT_EQ("*", entry());
}

TEST_F(Typing, anOperatorTypedInTheTranscriptAppliesToThePreviousAnswer) {
    select(0, 4);
    type("/");
    EXPECT_EQ(first + "ans/", text());
}

TEST_F(Typing, aMinusFirstIsASignWhenDoubleNegationsAreOn) {
    [console setSetting:@"doublenegans" to:1];
    EXPECT_EQ("-", typed("-"));
    EXPECT_EQ("ans-", typed("--"));
    EXPECT_EQ("-", typed("---"));
    EXPECT_EQ("ans-", typed("----"));
    EXPECT_EQ("ans-5", typed("--5"));
    EXPECT_EQ("ans = -2", status());
}

TEST_F(Typing, aMinusFirstAppliesToThePreviousAnswerWhenDoubleNegationsAreOff) {
    [console setSetting:@"doublenegans" to:0];
    EXPECT_EQ("ans-", typed("-"));
    EXPECT_EQ("-", typed("--"));
    EXPECT_EQ("ans-", typed("---"));
    EXPECT_EQ("-5", typed("--5"));
}

TEST_F(Typing, theSecondMinusKeepsTheRestOfTheEntry) {
    type("-45");
    selectEntry(1);
    type("-");
    EXPECT_EQ("ans-45", entry());
    EXPECT_EQ(4U, cursorInEntry());
    type("-");
    EXPECT_EQ("-45", entry());
    EXPECT_EQ(1U, cursorInEntry());
}

TEST_F(Typing, aMinusElsewhereIsJustAMinus) {
    EXPECT_EQ("5-", typed("5-"));
    EXPECT_EQ("5--", typed("5--"));
    EXPECT_EQ("abc--", typed("abc--"));
    EXPECT_EQ("ans+-", typed("+-"));
    EXPECT_EQ("-5-", typed("-5-"));
    EXPECT_EQ("-+", typed("-+"));
    type("--");
    [console clearPrompt];
    type("-5");
    selectEntry(1, 1);
    type("-"); // over a selection
    EXPECT_EQ("--", entry());
}

TEST_F(Typing, takesCharactersThatTheCalculatorDoesNotKnow) {
    press(@"\u20ac", NSAlternateKeyMask);
    press(@"\u00e9");
    EXPECT_EQ("\u20ac\u00e9", entry());
    EXPECT_EQ("", status());
    EXPECT_EQ(first, transcript());
}

} // namespace
