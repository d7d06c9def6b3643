// SPDX-License-Identifier: MIT
//
// Finding texts of the window and earlier entries.
#import "keys_fixture.h"

#include <functional>

namespace {

class Finding : public Keys {
protected:
    void Find() { Press(@"\006", @"f", NSControlKeyMask); }
    void FindEarlier() { Press(@"\022", @"r", NSControlKeyMask); }
};

TEST_F(Finding, ATextIsSelectedAndCanBeCopied) {
    Find();
    EXPECT_EQ("Find: ", StatusLine());
    Type("ans");
    EXPECT_EQ("Find: ans", StatusLine());
    EXPECT_EQ("ans", Selected());
    EXPECT_EQ(Text().find("ans"), Cursor());
    Press(KEY_RETURN);
    EXPECT_EQ("ans", Selected());
    EXPECT_EQ("ans = 9", StatusLine());
    Expect("4+5");
}

TEST_F(Finding, EscapeGoesBackToTheEntry) {
    SelectEntry(1);
    Find();
    Type("an");
    Press(KEY_ESCAPE);
    Expect("4+5");
    EXPECT_EQ(CursorInEntry(), 1U);
    EXPECT_EQ("ans = 9", StatusLine());
}

TEST_F(Finding, AnEarlierEntryComesToThePrompt) {
    FindEarlier();
    EXPECT_EQ("Earlier entry: ", StatusLine());
    Type("+2");
    EXPECT_EQ("1+2", Entry());
    EXPECT_EQ("Earlier entry: +2", StatusLine());
    Press(KEY_RETURN); // to change it, or to evaluate it with another Return
    Expect("1+2");
    EXPECT_EQ("ans = 3", StatusLine());
}

// Escape would bring back the draft of before, over what was chosen.
TEST_F(Finding, WhateverElseChangesTheEntryEndsIt) {
    NSMenuItem* const hex = [[[NSMenuItem alloc] init] autorelease];
    [hex setTag:2];
    const std::function<void()> changes[] = {
        [this] { [console typeName:@"sin("]; }, [this] { [console undoChange:nil]; },
        [this] { [console redo:nil]; },         [this] { [console cutSelection:nil]; },
        [this] { [console cut:nil]; },          [this, hex] { [console menuChangeBase:hex]; },
        [this] { [console newDocument:nil]; }};
    for (const auto& change : changes) {
        FindEarlier();
        Type("+2");
        ASSERT_EQ("Earlier entry: +2", StatusLine());
        change();
        EXPECT_NE(StatusLine().substr(0, 8), "Earlier ");
        [console gotoEnd];
        Type("7"); // goes to the entry
        EXPECT_EQ(Entry().back(), '7');
    }
}

TEST_F(Finding, EscapeBringsTheDraftBack) {
    FindEarlier();
    Type("+2");
    EXPECT_EQ("1+2", Entry());
    Press(KEY_ESCAPE);
    Expect("4+5");
}

TEST_F(Finding, WhatIsNotFoundChangesNothing) {
    FindEarlier();
    Type("x");
    EXPECT_EQ("Earlier entry: x  (not found)", StatusLine());
    Expect("4+5");
}

TEST_F(Finding, ATextThatIsNotThereLeavesTheSelection) {
    SelectEntry(1);
    Find();
    Type("q");
    EXPECT_EQ("Find: q  (not found)", StatusLine());
    EXPECT_EQ("", Selected());
    EXPECT_EQ(CursorInEntry(), 1U);
    Press(KEY_BACKSPACE);
    EXPECT_EQ("Find: ", StatusLine());
    Expect("4+5");
}

TEST_F(Finding, EscapeBringsAnEmptyEntryBack) {
    [console clearPrompt];
    FindEarlier();
    Type("+2");
    EXPECT_EQ("1+2", Entry());
    Press(KEY_ESCAPE);
    Expect("");
    EXPECT_EQ(CursorInEntry(), 0U);
    Type("7");
    Expect("7");
}

TEST_F(Finding, AnyOtherKeyEndsItAndDoesWhatItDoes) {
    FindEarlier();
    Type("+2");
    Press(KEY_HOME);
    EXPECT_EQ(CursorInEntry(), 0U);
    Type("7*");
    Expect("7*1+2");
    EXPECT_EQ("ans = 9", StatusLine());
}

TEST_F(Finding, APasteEndsIt) {
    Find();
    SetPasteboard("+1");
    [console paste:nil];
    Expect("4+5+1");
    Type("2");
    Expect("4+5+12");
}

} // namespace
