// SPDX-License-Identifier: MIT
//
// The Tab key: names of functions for the partial word in front of the cursor.
#import "console_fixture.h"

namespace {

class Completion : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        for (const char* const line : {"zzoo(x)=x", "zzap(x)=2*x", "zzip9_a(x)=3*x"}) Enter(line);
        first = Transcript();
    }

    // The entry and the proposal in it after Tab.
    void ExpectTab(const char* wantedEntry, const char* wantedSelection) {
        Press(KEY_TAB);
        EXPECT_EQ(first, Transcript());
        EXPECT_EQ(wantedEntry, Entry());
        EXPECT_EQ(wantedSelection, Selected());
    }

    std::string first;
};

TEST_F(Completion, ProposesTheRestOfTheNewestNameAndSelectsIt) {
    Type("zz");
    ExpectTab("zzip9_a()", "ip9_a()");
    EXPECT_EQ(2U, CursorInEntry());
}

TEST_F(Completion, EachTabProposesTheNextNameThenNoneThenTheFirstAgain) {
    Type("zz");
    ExpectTab("zzip9_a()", "ip9_a()");
    ExpectTab("zzap()", "ap()");
    ExpectTab("zzoo()", "oo()");
    ExpectTab("zz", "");
    ExpectTab("zzip9_a()", "ip9_a()");
}

TEST_F(Completion, BuiltInNamesAreProposedToo) {
    Type("1+s");
    std::string seen;
    for (int i = 0; i < 40; ++i) {
        Press(KEY_TAB);
        if (Entry() == "1+s") break;
        EXPECT_EQ("1+s", Entry().substr(0, 3));
        EXPECT_EQ("()", Entry().substr(Entry().size() - 2));
        seen += Entry() + " ";
    }
    EXPECT_NE(std::string::npos, seen.find("sin() "));
    EXPECT_NE(std::string::npos, seen.find("sqrt() "));
    EXPECT_EQ("1+s", Entry());
}

TEST_F(Completion, BehindTheFunctionsComeCommandWordsAndVariables) {
    Enter("zzwidth=3");
    first = Transcript();
    Type("zz");
    for (int i = 0; i < 3; ++i) Press(KEY_TAB);
    ExpectTab("zzwidth", "width");
    ExpectTab("zz", "");
    ExpectTab("zzip9_a()", "ip9_a()");
    Press(KEY_ESCAPE);
    Type("sigf");
    ExpectTab("sigfigs ", "igs ");
}

TEST_F(Completion, ACommandsArgumentsAreProposedAlone) {
    Type("display ");
    ExpectTab("display bin", "bin");
    ExpectTab("display dec", "dec");
    ExpectTab("display hex", "hex");
    ExpectTab("display ", "");
}

TEST_F(Completion, BehindAnArrowUnitsAreProposed) {
    Enter("sievers(x)=x");
    first = Transcript();
    Type("5 km->si");
    Press(KEY_TAB);
    EXPECT_EQ(Entry().find("sievers"), std::string::npos) << "no function fits there";
    Press(KEY_ESCAPE);
    Type("5 km->kilomete");
    ExpectTab("5 km->kilometer", "r");
    ExpectTab("5 km->kilomete", "");
}

TEST_F(Completion, AnotherKeyStartsANewCycle) {
    Type("zz");
    Press(KEY_TAB);
    Press(KEY_TAB);
    Press(KEY_BACKSPACE);
    EXPECT_EQ("zz", Entry());
    ExpectTab("zzip9_a()", "ip9_a()");
}

TEST_F(Completion, TypingReplacesTheProposalAndMovingKeepsIt) {
    Type("zzo");
    Press(KEY_TAB);
    Type("p");
    EXPECT_EQ("zzop", Entry());
    Press(KEY_ESCAPE);
    Type("zzo");
    Press(KEY_TAB);
    Press(KEY_RIGHT);
    EXPECT_EQ("zzoo()", Entry());
    EXPECT_EQ("", Selected());
}

TEST_F(Completion, TakesOnlyTheWordInFrontOfTheCursor) {
    Type("1+zza");
    ExpectTab("1+zzap()", "p()");
    Press(KEY_ESCAPE);
    Type("2*(zzip9_");
    ExpectTab("2*(zzip9_a()", "a()");
    Press(KEY_ESCAPE);
    Type("a zzo");
    ExpectTab("a zzoo()", "o()");
}

TEST_F(Completion, KeepsWhatFollowsTheCursor) {
    Type("zza+1");
    SelectEntry(3);
    ExpectTab("zzap()+1", "p()");
}

TEST_F(Completion, ReplacesASelectionBehindTheWord) {
    Type("zza+1");
    SelectEntry(3, 2);
    ExpectTab("zzap()", "p()");
}

TEST_F(Completion, CasesDoNotMatterAndTheTypedOnesStay) {
    Type("ZZA");
    ExpectTab("ZZAp()", "p()");
}

TEST_F(Completion, AWordThatNoNameBeginsWithIsLeftAlone) {
    Type("zzapper");
    ExpectTab("zzapper", "");
    Press(KEY_ESCAPE);
    [console replacePrompt:std::string(9000, 'z').c_str()];
    ExpectTab(std::string(9000, 'z').c_str(), "");
}

TEST_F(Completion, AWholeNameGetsItsParentheses) {
    Type("zzoo");
    ExpectTab("zzoo()", "()");
}

TEST_F(Completion, TheWordBeginsBehindACharacterThatIsNotAscii) {
    Press(@"\u00e9");
    Type("zza");
    ExpectTab("\u00e9zzap()", "p()");
    Press(KEY_ESCAPE);
    Press(@"\u20ac");
    Type("zza");
    ExpectTab("\u20aczzap()", "p()");
}

TEST_F(Completion, AtTheStartOfTheEntryTabDoesNothing) {
    ExpectTab("", "");
    Type("zza");
    SelectEntry(0);
    ExpectTab("zza", "");
    EXPECT_EQ(0U, CursorInEntry());
    SelectEntry(0, 3);
    ExpectTab("zza", "zza");
}

TEST_F(Completion, InTheTranscriptTabDoesNothing) {
    Type("zza");
    for (const NSRange place : {NSMakeRange(4, 0), NSMakeRange(0, 5), NSMakeRange(first.size() - 2, 4)}) {
        Select(place.location, place.length);
        Press(KEY_TAB);
        EXPECT_EQ(first + "zza", Text());
        EXPECT_EQ(place.location, Cursor());
        EXPECT_EQ(place.length, [console selectedRange].length);
    }
}

TEST_F(Completion, NeverInsertsATab) {
    Type("1+");
    for (const NSUInteger flag : {NSUInteger(0), NSUInteger(NSShiftKeyMask), NSUInteger(NSControlKeyMask)}) {
        Press(KEY_TAB, flag);
        EXPECT_EQ(std::string::npos, Text().find('\t'));
        EXPECT_EQ("1+", Entry().substr(0, 2));
    }
}

TEST_F(Completion, PreviewsTheEntry) {
    Type("zza");
    [console updateStatusbar:"no preview so far"];
    Press(KEY_TAB);
    EXPECT_NE("no preview so far", StatusLine());
}

TEST_F(Completion, UndoTakesProposalsBackOneByOne) {
    Type("zz");
    Run(0.01);
    Press(KEY_TAB);
    Run(0.01);
    Press(KEY_TAB);
    Run(0.01);
    [console undo:nil];
    EXPECT_EQ("zzip9_a()", Entry());
    [console undo:nil];
    EXPECT_EQ("zz", Entry());
    [console undo:nil];
    EXPECT_EQ("", Entry());
    EXPECT_EQ(first, Transcript());
}

} // namespace
