// SPDX-License-Identifier: MIT
//
// What each key does; typing, history, completion and the keys of the text view have files of their own.
#import "keys_fixture.h"

#import <AppKit/NSTextView.h>

namespace {

// --- Key codes ---

TEST_F(Keys, TheCodeOfTheKeyAndOfTheOneBeforeAreKept) {
    Press(KEY_HOME);
    Press(KEY_END);
    EXPECT_EQ(119U, keyCode);
    EXPECT_EQ(115U, prevKey);
    Press(@"\001", @"a", NSControlKeyMask);
    EXPECT_EQ(123U, keyCode);
    EXPECT_EQ(119U, prevKey);
}

// --- Return ---

TEST_F(Keys, ReturnAndKeypadEnterCommitTheEntry) {
    Press(KEY_RETURN);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", Text());
    EXPECT_EQ("", StatusLine());
    Type("6");
    Press(KEY_ENTER);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> 6\nans = 6\n\n> ", Text());
    Type("7");
    Press(@"\r", NSNumericPadKeyMask);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> 6\nans = 6\n\n> 7\nans = 7\n\n> ", Text());
}

TEST_F(Keys, ReturnCommitsTheEntryWhereverTheCursorIs) {
    Select(0, 3);
    Press(KEY_RETURN);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", Text());
    EXPECT_EQ(Text().size(), Cursor());
}

TEST_F(Keys, ReturnWithAModifierCommitsToo) {
    Press(KEY_RETURN, NSAlternateKeyMask);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", Text());
}

TEST_F(Keys, ReturnEndsAMatchedWalk) {
    update_match_str = 1;
    Press(KEY_RETURN);
    EXPECT_EQ(0, update_match_str);
}

TEST_F(Keys, AnEntryThatLatin1HasNotIsReportedAndStays) {
    SetEntry(@"3\u20ac");
    Press(KEY_RETURN);
    EXPECT_EQ(first + "3\u20ac\n** Invalid character/encoding used. **\n\n> ", Text());
    Press(KEY_UP);
    EXPECT_EQ("1+2", Entry()); // not in the history
}

TEST_F(Keys, AnEntryWithANulIsReported) {
    const unichar withNul[] = {'1', 0, '2'};
    SetEntry([NSString stringWithCharacters:withNul length:3]);
    Press(KEY_RETURN);
    EXPECT_TRUE([[console string] hasSuffix:@"\n** Invalid character/encoding used. **\n\n> "]);
    EXPECT_EQ(NSNotFound, static_cast<NSInteger>([[console string] rangeOfString:@"ans = 1\n"].location));
}

TEST_F(Keys, TheLongestEntryIsEvaluated) {
    SetEntry([@"1" stringByPaddingToLength:9999 withString:@"+1" startingAtIndex:0]);
    Press(KEY_RETURN);
    EXPECT_NE(std::string::npos, Text().find("\nans = 5000\n"));
}

// --- Escape ---

TEST_F(Keys, EscapeClearsTheEntryAndEndsTheWalk) {
    calc.history.HistLocUp();
    update_match_str = 1;
    Press(KEY_ESCAPE);
    Expect("");
    ExpectSelection(begin, 0);
    EXPECT_EQ(0, calc.history.location);
    EXPECT_EQ(0, update_match_str);
    EXPECT_EQ(0, HideRequests());
}

TEST_F(Keys, EscapeOfAnEmptyEntryHidesTheWindow) {
    SetEntry(@"");
    Press(KEY_ESCAPE);
    Expect("");
    EXPECT_EQ(1, HideRequests());
}

TEST_F(Keys, EscapeWithASelectionInTheTranscriptOnlyGoesBackToTheEntry) {
    SetEntry(@"");
    Select(0, 4);
    Press(KEY_ESCAPE);
    Expect("");
    ExpectSelection(begin, 0);
    EXPECT_EQ(0, HideRequests());
}

TEST_F(Keys, EscapeWithTheCursorInTheTranscriptClearsTheEntry) {
    Select(1);
    Press(KEY_ESCAPE);
    Expect("");
    EXPECT_EQ(0, HideRequests());
}

// --- Backspace ---

TEST_F(Keys, BackspaceDeletesToTheLeft) {
    Press(KEY_BACKSPACE);
    Expect("4+");
    SelectEntry(1);
    Press(KEY_BACKSPACE);
    Expect("+");
}

TEST_F(Keys, BackspaceAtTheStartDeletesNothing) {
    SelectEntry(0);
    Press(KEY_BACKSPACE);
    Expect("4+5");
    ExpectSelection(begin, 0);
    SetEntry(@"");
    Press(KEY_BACKSPACE);
    Expect("");
}

TEST_F(Keys, BackspaceDeletesASelectionInTheEntry) {
    SelectEntry(0, 2);
    Press(KEY_BACKSPACE);
    Expect("5");
    SetEntry(@"4+5");
    SelectEntry(1, 2);
    Press(KEY_BACKSPACE);
    Expect("4");
}

TEST_F(Keys, BackspaceOfASelectionAcrossThePromptIsClippedToTheEntry) {
    Select(begin - 4, 6);
    Press(KEY_BACKSPACE);
    Expect("5");
    SetEntry(@"4+5");
    Select(0, begin + 3);
    Press(KEY_BACKSPACE);
    Expect("");
}

TEST_F(Keys, BackspaceInTheTranscriptOnlyGoesToTheEnd) {
    const NSRange places[] = {{0, 0}, {3, 4}, {begin - 1, 0}, {begin - 2, 2}};
    for (const NSRange place : places) {
        [console updateStatusbar:UNTOUCHED];
        Select(place.location, place.length);
        Press(KEY_BACKSPACE);
        Expect("4+5");
        ExpectSelection(begin + 3, 0);
    }
}

// --- Forward delete ---

TEST_F(Keys, ForwardDeleteDeletesToTheRight) {
    SelectEntry(0);
    Press(KEY_FORWARD_DELETE);
    Expect("+5");
    SelectEntry(1);
    Press(KEY_FORWARD_DELETE);
    Expect("+");
    Press(KEY_FORWARD_DELETE);
    Expect("+");
}

TEST_F(Keys, ForwardDeleteDeletesASelectionInTheEntry) {
    SelectEntry(0, 2);
    Press(KEY_FORWARD_DELETE);
    Expect("5");
}

TEST_F(Keys, ForwardDeleteOfASelectionAcrossThePromptIsClippedToTheEntry) {
    Select(begin - 4, 6);
    Press(KEY_FORWARD_DELETE);
    Expect("5");
}

TEST_F(Keys, ForwardDeleteInTheTranscriptOnlyGoesToTheEnd) {
    const NSRange places[] = {{0, 0}, {3, 4}, {begin - 1, 0}, {begin - 2, 2}};
    for (const NSRange place : places) {
        [console updateStatusbar:UNTOUCHED];
        Select(place.location, place.length);
        Press(KEY_FORWARD_DELETE);
        Expect("4+5");
        ExpectSelection(begin + 3, 0);
    }
    SetEntry(@"");
    Select(0);
    Press(KEY_FORWARD_DELETE);
    Expect("");
}

// --- Home and End ---

TEST_F(Keys, HomeGoesToTheStartOfTheEntry) {
    Press(KEY_HOME);
    Expect("4+5", false);
    ExpectSelection(begin, 0);
    Select(0, 5);
    Press(KEY_HOME);
    ExpectSelection(begin, 0);
}

TEST_F(Keys, ShiftHomeSelectsBackToTheStartOfTheEntry) {
    SelectEntry(1, 1);
    Press(KEY_HOME, NSShiftKeyMask);
    Expect("4+5", false);
    ExpectSelection(begin, 2);
    Select(begin - 4, 5);
    Press(KEY_HOME, NSShiftKeyMask);
    ExpectSelection(begin, 1);
    Select(0, 2);
    Press(KEY_HOME, NSShiftKeyMask);
    ExpectSelection(begin, 0);
}

TEST_F(Keys, EndGoesToTheEnd) {
    Select(0, 5);
    Press(KEY_END);
    Expect("4+5", false);
    ExpectSelection(begin + 3, 0);
}

TEST_F(Keys, ShiftEndSelectsToTheEnd) {
    SelectEntry(1);
    Press(KEY_END, NSShiftKeyMask);
    Expect("4+5", false);
    ExpectSelection(begin + 1, 2);
    Select(0);
    Press(KEY_END, NSShiftKeyMask);
    ExpectSelection(0, begin + 3);
}

// --- Left and Right ---

TEST_F(Keys, LeftStopsAtTheStartOfTheEntry) {
    SelectEntry(1);
    Press(KEY_LEFT);
    Expect("4+5");
    ExpectSelection(begin, 0);
    for (const NSUInteger place : {begin, begin - 1, begin - 2}) {
        [console updateStatusbar:UNTOUCHED];
        Select(place);
        Press(KEY_LEFT);
        Expect("4+5");
        ExpectSelection(place, 0);
    }
}

TEST_F(Keys, LeftMovesInTheTranscript) {
    Select(begin - 3);
    Press(KEY_LEFT);
    Expect("4+5");
    ExpectSelection(begin - 4, 0);
}

TEST_F(Keys, LeftWithControlOrCommandActsAsHome) {
    for (const NSUInteger flag : {NSUInteger(NSControlKeyMask), NSUInteger(NSCommandKeyMask)}) {
        SelectEntry(2);
        Press(KEY_LEFT, flag);
        Expect("4+5", false);
        ExpectSelection(begin, 0);
        SelectEntry(2);
        Press(KEY_LEFT, flag | NSShiftKeyMask);
        ExpectSelection(begin, 2);
    }
}

TEST_F(Keys, ControlAActsAsHome) {
    Press(@"\001", @"a", NSControlKeyMask);
    Expect("4+5", false);
    ExpectSelection(begin, 0);
    SelectEntry(2);
    Press(@"\001", @"A", NSControlKeyMask | NSShiftKeyMask);
    ExpectSelection(begin, 2);
    Select(0);
    Press(@"\001", @"a", NSControlKeyMask);
    ExpectSelection(begin, 0);
}

TEST_F(Keys, ControlAAgainSelectsTheEntryAndThenEverything) {
    for (int i = 0; i < 2; ++i) Press(@"\001", @"a", NSControlKeyMask);
    EXPECT_EQ("4+5", Selected());
    Press(@"\001", @"a", NSControlKeyMask);
    EXPECT_EQ(Text(), Selected());
}

TEST_F(Keys, TheLetterATypesItself) {
    Type("aA");
    Expect("4+5aA");
}

TEST_F(Keys, RightMovesOn) {
    SelectEntry(1);
    Press(KEY_RIGHT);
    Expect("4+5");
    ExpectSelection(begin + 2, 0);
    Select(3);
    Press(KEY_RIGHT);
    ExpectSelection(4, 0);
    SelectEntry(3);
    Press(KEY_RIGHT);
    ExpectSelection(begin + 3, 0);
}

TEST_F(Keys, ShiftAndAnArrowExtendTheSelection) {
    SelectEntry(1);
    Press(KEY_RIGHT, NSShiftKeyMask);
    ExpectSelection(begin + 1, 1);
}

} // namespace
