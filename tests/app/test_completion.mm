// SPDX-License-Identifier: MIT
//
// The Tab key: names of functions for the partial word in front of the cursor.
#import "console_fixture.h"

namespace {

class Completion : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        for (const char* const line : {"zzoo(x)=x", "zzap(x)=2*x", "zzip9_a(x)=3*x"}) enter(line);
        first = transcript();
    }

    // The entry and the proposal in it after Tab.
    void expectTab(const char* wantedEntry, const char* wantedSelection) {
        press(KEY_TAB);
        EXPECT_EQ(first, transcript());
        EXPECT_EQ(wantedEntry, entry());
        EXPECT_EQ(wantedSelection, selected());
    }

    std::string first;
};

TEST_F(Completion, proposesTheRestOfTheNewestNameAndSelectsIt) {
    type("zz");
    expectTab("zzip9_a()", "ip9_a()");
    EXPECT_EQ(2U, cursorInEntry());
}

TEST_F(Completion, eachTabProposesTheNextNameThenNoneThenTheFirstAgain) {
    type("zz");
    expectTab("zzip9_a()", "ip9_a()");
    expectTab("zzap()", "ap()");
    expectTab("zzoo()", "oo()");
    expectTab("zz", "");
    expectTab("zzip9_a()", "ip9_a()");
}

TEST_F(Completion, builtInNamesAreProposedToo) {
    type("s");
    std::string seen;
    for (int i = 0; i < 40; i++) {
        press(KEY_TAB);
        if (entry() == "s") break;
        EXPECT_EQ("s", entry().substr(0, 1));
        EXPECT_EQ("()", entry().substr(entry().size() - 2));
        seen += entry() + " ";
    }
    EXPECT_NE(std::string::npos, seen.find("sin() "));
    EXPECT_NE(std::string::npos, seen.find("sqrt() "));
    EXPECT_EQ("s", entry());
}

TEST_F(Completion, anotherKeyStartsANewCycle) {
    type("zz");
    press(KEY_TAB);
    press(KEY_TAB);
    press(KEY_BACKSPACE);
    EXPECT_EQ("zz", entry());
    expectTab("zzip9_a()", "ip9_a()");
}

TEST_F(Completion, typingReplacesTheProposalAndMovingKeepsIt) {
    type("zzo");
    press(KEY_TAB);
    type("p");
    EXPECT_EQ("zzop", entry());
    press(KEY_ESCAPE);
    type("zzo");
    press(KEY_TAB);
    press(KEY_RIGHT);
    EXPECT_EQ("zzoo()", entry());
    EXPECT_EQ("", selected());
}

TEST_F(Completion, takesOnlyTheWordInFrontOfTheCursor) {
    type("1+zza");
    expectTab("1+zzap()", "p()");
    press(KEY_ESCAPE);
    type("2*(zzip9_");
    expectTab("2*(zzip9_a()", "a()");
    press(KEY_ESCAPE);
    type("a zzo");
    expectTab("a zzoo()", "o()");
}

TEST_F(Completion, keepsWhatFollowsTheCursor) {
    type("zza+1");
    selectEntry(3);
    expectTab("zzap()+1", "p()");
}

TEST_F(Completion, replacesASelectionBehindTheWord) {
    type("zza+1");
    selectEntry(3, 2);
    expectTab("zzap()", "p()");
}

TEST_F(Completion, casesDoNotMatterAndTheTypedOnesStay) {
    type("ZZA");
    expectTab("ZZAp()", "p()");
}

TEST_F(Completion, aWordThatNoNameBeginsWithIsLeftAlone) {
    type("zzapper");
    expectTab("zzapper", "");
    press(KEY_ESCAPE);
    [console replacePrompt:std::string(9000, 'z').c_str()];
    expectTab(std::string(9000, 'z').c_str(), "");
}

TEST_F(Completion, aWholeNameGetsItsParentheses) {
    type("zzoo");
    expectTab("zzoo()", "()");
}

TEST_F(Completion, theWordBeginsBehindACharacterThatIsNotAscii) {
    press(@"\u00e9");
    type("zza");
    expectTab("\u00e9zzap()", "p()");
    press(KEY_ESCAPE);
    press(@"\u20ac");
    type("zza");
    expectTab("\u20aczzap()", "p()");
}

TEST_F(Completion, atTheStartOfTheEntryTabDoesNothing) {
    expectTab("", "");
    type("zza");
    selectEntry(0);
    expectTab("zza", "");
    EXPECT_EQ(0U, cursorInEntry());
    selectEntry(0, 3);
    expectTab("zza", "zza");
}

TEST_F(Completion, inTheTranscriptTabDoesNothing) {
    type("zza");
    for (const NSRange place : {NSMakeRange(4, 0), NSMakeRange(0, 5), NSMakeRange(first.size() - 2, 4)}) {
        select(place.location, place.length);
        press(KEY_TAB);
        EXPECT_EQ(first + "zza", text());
        EXPECT_EQ(place.location, cursor());
        EXPECT_EQ(place.length, [console selectedRange].length);
    }
}

TEST_F(Completion, neverInsertsATab) {
    type("1+");
    for (const NSUInteger flag : {NSUInteger(0), NSUInteger(NSShiftKeyMask), NSUInteger(NSControlKeyMask)}) {
        press(KEY_TAB, flag);
        EXPECT_EQ(std::string::npos, text().find('\t'));
        EXPECT_EQ("1+", entry().substr(0, 2));
    }
}

TEST_F(Completion, previewsTheEntry) {
    type("zza");
    [console updateStatusbar:"no preview so far"];
    press(KEY_TAB);
    EXPECT_NE("no preview so far", status());
}

TEST_F(Completion, undoTakesProposalsBackOneByOne) {
    type("zz");
    run(0.01);
    press(KEY_TAB);
    run(0.01);
    press(KEY_TAB);
    run(0.01);
    [console undo:nil];
    EXPECT_EQ("zzip9_a()", entry());
    [console undo:nil];
    EXPECT_EQ("zz", entry());
    [console undo:nil];
    EXPECT_EQ("", entry());
    EXPECT_EQ(first, transcript());
}

} // namespace
