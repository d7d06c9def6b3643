// SPDX-License-Identifier: MIT
//
// What each key does; typing, history, completion and the keys of the text view have files of their own.
#import "keys_fixture.h"

#import <AppKit/NSTextView.h>

namespace {

// --- Key codes ---

TEST_F(Keys, theCodeOfTheKeyAndOfTheOneBeforeAreKept) {
    press(KEY_HOME);
    press(KEY_END);
    EXPECT_EQ(119U, keyCode);
    EXPECT_EQ(115U, prevKey);
    press(@"\001", @"a", NSControlKeyMask);
    EXPECT_EQ(123U, keyCode);
    EXPECT_EQ(119U, prevKey);
}

// --- Return ---

TEST_F(Keys, returnAndKeypadEnterCommitTheEntry) {
    press(KEY_RETURN);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", text());
    EXPECT_EQ("", status());
    type("6");
    press(KEY_ENTER);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> 6\nans = 6\n\n> ", text());
    type("7");
    press(@"\r", NSNumericPadKeyMask);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> 6\nans = 6\n\n> 7\nans = 7\n\n> ", text());
}

TEST_F(Keys, returnCommitsTheEntryWhereverTheCursorIs) {
    select(0, 3);
    press(KEY_RETURN);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", text());
    EXPECT_EQ(text().size(), cursor());
}

TEST_F(Keys, returnWithAModifierCommitsToo) {
    press(KEY_RETURN, NSAlternateKeyMask);
    EXPECT_EQ(first + "4+5\nans = 9\n\n> ", text());
}

TEST_F(Keys, returnEndsAMatchedWalk) {
    update_match_str = 1;
    press(KEY_RETURN);
    EXPECT_EQ(0, update_match_str);
}

TEST_F(Keys, anEntryThatLatin1HasNotIsReportedAndStays) {
    setEntry(@"3\u20ac");
    press(KEY_RETURN);
    EXPECT_EQ(first + "3\u20ac\n** Invalid character/encoding used. **\n\n> ", text());
    press(KEY_UP);
    EXPECT_EQ("1+2", entry()); // not in the history
}

TEST_F(Keys, anEntryWithANulIsReported) {
    const unichar withNul[] = {'1', 0, '2'};
    setEntry([NSString stringWithCharacters:withNul length:3]);
    press(KEY_RETURN);
    EXPECT_TRUE([[console string] hasSuffix:@"\n** Invalid character/encoding used. **\n\n> "]);
    EXPECT_EQ(NSNotFound, static_cast<NSInteger>([[console string] rangeOfString:@"ans = 1\n"].location));
}

TEST_F(Keys, theLongestEntryIsEvaluated) {
    setEntry([@"1" stringByPaddingToLength:9999 withString:@"+1" startingAtIndex:0]);
    press(KEY_RETURN);
    EXPECT_NE(std::string::npos, text().find("\nans = 5000\n"));
}

// --- Escape ---

TEST_F(Keys, escapeClearsTheEntryAndEndsTheWalk) {
    calc.history.HistLocUp();
    update_match_str = 1;
    press(KEY_ESCAPE);
    expect("");
    expectSelection(begin, 0);
    EXPECT_EQ(0, calc.history.location);
    EXPECT_EQ(0, update_match_str);
    EXPECT_EQ(0, hideRequests());
}

TEST_F(Keys, escapeOfAnEmptyEntryHidesTheWindow) {
    setEntry(@"");
    press(KEY_ESCAPE);
    expect("");
    EXPECT_EQ(1, hideRequests());
}

TEST_F(Keys, escapeWithASelectionInTheTranscriptOnlyGoesBackToTheEntry) {
    setEntry(@"");
    select(0, 4);
    press(KEY_ESCAPE);
    expect("");
    expectSelection(begin, 0);
    EXPECT_EQ(0, hideRequests());
}

TEST_F(Keys, escapeWithTheCursorInTheTranscriptClearsTheEntry) {
    select(1);
    press(KEY_ESCAPE);
    expect("");
    EXPECT_EQ(0, hideRequests());
}

// --- Backspace ---

TEST_F(Keys, backspaceDeletesToTheLeft) {
    press(KEY_BACKSPACE);
    expect("4+");
    selectEntry(1);
    press(KEY_BACKSPACE);
    expect("+");
}

TEST_F(Keys, backspaceAtTheStartDeletesNothing) {
    selectEntry(0);
    press(KEY_BACKSPACE);
    expect("4+5");
    expectSelection(begin, 0);
    setEntry(@"");
    press(KEY_BACKSPACE);
    expect("");
}

TEST_F(Keys, backspaceDeletesASelectionInTheEntry) {
    selectEntry(0, 2);
    press(KEY_BACKSPACE);
    expect("5");
    setEntry(@"4+5");
    selectEntry(1, 2);
    press(KEY_BACKSPACE);
    expect("4");
}

TEST_F(Keys, backspaceOfASelectionAcrossThePromptIsClippedToTheEntry) {
    select(begin - 4, 6);
    press(KEY_BACKSPACE);
    expect("5");
    setEntry(@"4+5");
    select(0, begin + 3);
    press(KEY_BACKSPACE);
    expect("");
}

TEST_F(Keys, backspaceInTheTranscriptOnlyGoesToTheEnd) {
    const NSRange places[] = {{0, 0}, {3, 4}, {begin - 1, 0}, {begin - 2, 2}};
    for (const NSRange place : places) {
        [console updateStatusbar:UNTOUCHED];
        select(place.location, place.length);
        press(KEY_BACKSPACE);
        expect("4+5");
        expectSelection(begin + 3, 0);
    }
}

// --- Forward delete ---

TEST_F(Keys, forwardDeleteDeletesToTheRight) {
    selectEntry(0);
    press(KEY_FORWARD_DELETE);
    expect("+5");
    selectEntry(1);
    press(KEY_FORWARD_DELETE);
    expect("+");
    press(KEY_FORWARD_DELETE);
    expect("+");
}

TEST_F(Keys, forwardDeleteDeletesASelectionInTheEntry) {
    selectEntry(0, 2);
    press(KEY_FORWARD_DELETE);
    expect("5");
}

TEST_F(Keys, forwardDeleteOfASelectionAcrossThePromptIsClippedToTheEntry) {
    select(begin - 4, 6);
    press(KEY_FORWARD_DELETE);
    expect("5");
}

TEST_F(Keys, forwardDeleteInTheTranscriptOnlyGoesToTheEnd) {
    const NSRange places[] = {{0, 0}, {3, 4}, {begin - 1, 0}, {begin - 2, 2}};
    for (const NSRange place : places) {
        [console updateStatusbar:UNTOUCHED];
        select(place.location, place.length);
        press(KEY_FORWARD_DELETE);
        expect("4+5");
        expectSelection(begin + 3, 0);
    }
    setEntry(@"");
    select(0);
    press(KEY_FORWARD_DELETE);
    expect("");
}

// --- Home and End ---

TEST_F(Keys, homeGoesToTheStartOfTheEntry) {
    press(KEY_HOME);
    expect("4+5", false);
    expectSelection(begin, 0);
    select(0, 5);
    press(KEY_HOME);
    expectSelection(begin, 0);
}

TEST_F(Keys, shiftHomeSelectsBackToTheStartOfTheEntry) {
    selectEntry(1, 1);
    press(KEY_HOME, NSShiftKeyMask);
    expect("4+5", false);
    expectSelection(begin, 2);
    select(begin - 4, 5);
    press(KEY_HOME, NSShiftKeyMask);
    expectSelection(begin, 1);
    select(0, 2);
    press(KEY_HOME, NSShiftKeyMask);
    expectSelection(begin, 0);
}

TEST_F(Keys, endGoesToTheEnd) {
    select(0, 5);
    press(KEY_END);
    expect("4+5", false);
    expectSelection(begin + 3, 0);
}

TEST_F(Keys, shiftEndSelectsToTheEnd) {
    selectEntry(1);
    press(KEY_END, NSShiftKeyMask);
    expect("4+5", false);
    expectSelection(begin + 1, 2);
    select(0);
    press(KEY_END, NSShiftKeyMask);
    expectSelection(0, begin + 3);
}

// --- Left and Right ---

TEST_F(Keys, leftStopsAtTheStartOfTheEntry) {
    selectEntry(1);
    press(KEY_LEFT);
    expect("4+5");
    expectSelection(begin, 0);
    for (const NSUInteger place : {begin, begin - 1, begin - 2}) {
        [console updateStatusbar:UNTOUCHED];
        select(place);
        press(KEY_LEFT);
        expect("4+5");
        expectSelection(place, 0);
    }
}

TEST_F(Keys, leftMovesInTheTranscript) {
    select(begin - 3);
    press(KEY_LEFT);
    expect("4+5");
    expectSelection(begin - 4, 0);
}

TEST_F(Keys, leftWithControlOrCommandActsAsHome) {
    for (const NSUInteger flag : {NSUInteger(NSControlKeyMask), NSUInteger(NSCommandKeyMask)}) {
        selectEntry(2);
        press(KEY_LEFT, flag);
        expect("4+5", false);
        expectSelection(begin, 0);
        selectEntry(2);
        press(KEY_LEFT, flag | NSShiftKeyMask);
        expectSelection(begin, 2);
    }
}

TEST_F(Keys, controlAActsAsHome) {
    press(@"\001", @"a", NSControlKeyMask);
    expect("4+5", false);
    expectSelection(begin, 0);
    selectEntry(2);
    press(@"\001", @"A", NSControlKeyMask | NSShiftKeyMask);
    expectSelection(begin, 2);
    select(0);
    press(@"\001", @"a", NSControlKeyMask);
    expectSelection(begin, 0);
}

TEST_F(Keys, theLetterATypesItself) {
    type("aA");
    expect("4+5aA");
}

TEST_F(Keys, rightMovesOn) {
    selectEntry(1);
    press(KEY_RIGHT);
    expect("4+5");
    expectSelection(begin + 2, 0);
    select(3);
    press(KEY_RIGHT);
    expectSelection(4, 0);
    selectEntry(3);
    press(KEY_RIGHT);
    expectSelection(begin + 3, 0);
}

TEST_F(Keys, shiftAndAnArrowExtendTheSelection) {
    selectEntry(1);
    press(KEY_RIGHT, NSShiftKeyMask);
    expectSelection(begin + 1, 1);
}

} // namespace
