// SPDX-License-Identifier: MIT
//
// Undo: of what was done to the entry, never of the transcript.
#import "console_fixture.h"

namespace {

class Undo : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        Enter("1+2");
        first = Transcript();
    }

    // Undo groups what one event did.
    void NextEvent() { Run(0.01); }

    std::string Undone() {
        [console undo:nil];
        NextEvent();
        EXPECT_EQ(first, Transcript());
        return Entry();
    }

    std::string first;
};

TEST_F(Undo, TakesTypingBackAndPreviews) {
    Type("45");
    NextEvent();
    Type("+6");
    NextEvent();
    EXPECT_EQ("45", Undone());
    EXPECT_EQ("ans = 45", StatusLine());
    EXPECT_EQ("", Undone());
    EXPECT_EQ("", Undone());
}

TEST_F(Undo, RestoresWhatWasDeleted) {
    Type("45");
    NextEvent();
    SelectEntry(0, 1);
    Press(KEY_BACKSPACE);
    NextEvent();
    ASSERT_EQ("5", Entry());
    EXPECT_EQ("45", Undone());
    EXPECT_EQ("ans = 45", StatusLine());
}

TEST_F(Undo, DoesNothingInAnEmptyEntry) {
    Type("45");
    NextEvent();
    Press(KEY_ESCAPE);
    NextEvent();
    EXPECT_EQ("", Undone());
}

TEST_F(Undo, WithTheCursorElsewhereRestoresAnEmptiedEntry) {
    Type("45");
    NextEvent();
    Press(KEY_ESCAPE);
    NextEvent();
    Select(1);
    EXPECT_EQ("45", Undone());
}

TEST_F(Undo, TakesAPasteBack) {
    Type("45");
    NextEvent();
    SetPasteboard("+1\n2");
    [console paste:nil];
    NextEvent();
    EXPECT_EQ("45", Undone());
}

TEST_F(Undo, TakesBackWhatOperatorsInsert) {
    for (const char* const keys : {"*", "-", "--", "---", "----", "---5"}) {
        for (const char* key = keys; *key; ++key) {
            const char one[] = {*key, '\0'};
            Type(one);
            NextEvent();
        }
        ASSERT_NE("", Entry());
        for (int i = 0; i < 9; ++i) Undone();
        EXPECT_EQ("", Entry()) << keys;
        [[console undoManager] removeAllActions];
    }
}

TEST_F(Undo, StepsThroughTheFormsOfAMinus) {
    Type("-");
    NextEvent();
    Type("-");
    NextEvent();
    ASSERT_EQ("ans-", Entry());
    EXPECT_EQ("-", Undone());
    EXPECT_EQ("", Undone());
}

TEST_F(Undo, KnowsNothingOfEarlierEntries) {
    Type("45");
    NextEvent();
    Press(KEY_RETURN);
    first = Transcript();
    NextEvent();
    Type("6");
    NextEvent();
    EXPECT_EQ("", Undone());
    Select(3); // where undo is asked although the entry is empty
    EXPECT_EQ("", Undone());
}

TEST_F(Undo, AfterClearingKnowsNothing) {
    Type("45");
    NextEvent();
    [console clearConsole];
    first = "> ";
    Type("6");
    NextEvent();
    EXPECT_EQ("", Undone());
    Select(0);
    EXPECT_EQ("", Undone());
}

TEST_F(Undo, AfterOutputAboveTheEntryKnowsNothing) {
    Type("45");
    NextEvent();
    [console insertPrePrompt:"note\n":3];
    first = Transcript();
    EXPECT_EQ("45", Undone());
}

TEST_F(Undo, RedoRestoresTheEntry) {
    Type("45");
    NextEvent();
    Undone();
    [[console undoManager] redo];
    EXPECT_EQ("45", Entry());
    EXPECT_EQ(first, Transcript());
}

// --- Drafts and New ---

TEST_F(Undo, BringsBackADraftThatEscapeTook) {
    Type("45");
    NextEvent();
    Press(KEY_ESCAPE);
    NextEvent();
    ASSERT_EQ("", Entry());
    [console undoChange:nil];
    EXPECT_EQ("45", Entry());
    EXPECT_EQ("ans = 45", StatusLine());
}

TEST_F(Undo, BringsBackADraftThatTheHistoryReplaced) {
    Type("1");
    NextEvent();
    Press(KEY_UP);
    NextEvent();
    ASSERT_EQ("1+2", Entry());
    [console undoChange:nil];
    NextEvent();
    EXPECT_EQ("1", Entry());
    SelectEntry(0);
    Press(KEY_DOWN); // past the newest
    NextEvent();
    ASSERT_EQ("", Entry());
    [console undoChange:nil];
    EXPECT_EQ("1", Entry());
    EXPECT_EQ(first, Transcript());
}

TEST_F(Undo, BringsBackWhatNewCleared) {
    Type("45");
    NextEvent();
    const std::string before = Text();
    [console newDocument:nil];
    NextEvent();
    ASSERT_EQ("> ", Text());
    [console undoChange:nil];
    NextEvent();
    EXPECT_EQ(before, Text());
    Press(KEY_RETURN);
    EXPECT_EQ(before + "\nans = 45\n\n> ", Text());
    EXPECT_NE(std::string([[console scriptText] UTF8String]).find("\n1+2\n45\n"), std::string::npos);
}

TEST_F(Undo, NewOfAClearConsoleForgetsNothing) {
    const std::string before = Text();
    for (int i = 0; i < 2; ++i) {
        [console newDocument:nil];
        NextEvent();
    }
    [console undoChange:nil];
    EXPECT_EQ(before, Text());
}

TEST_F(Undo, WhatComesBackHasTheFontOfNow) {
    [console newDocument:nil];
    NextEvent();
    NSFont* const bigger = [NSFont userFixedPitchFontOfSize:29];
    [console setFont:bigger];
    [console undoChange:nil];
    EXPECT_EQ([[console textStorage] attribute:NSFontAttributeName atIndex:0 effectiveRange:NULL], bigger);
    EXPECT_EQ([console font], bigger);
}

TEST_F(Undo, ClearsAgainWhatItBroughtBack) {
    const std::string before = Text();
    [console newDocument:nil];
    NextEvent();
    [console undoChange:nil];
    NextEvent();
    [console redo:nil];
    NextEvent();
    EXPECT_EQ("> ", Text());
    [console undoChange:nil];
    EXPECT_EQ(before, Text());
}

TEST_F(Undo, LeavesTheConsoleClearedOnceSomethingWasAnswered) {
    [console newDocument:nil];
    NextEvent();
    Enter("3");
    NextEvent();
    [console undoChange:nil];
    EXPECT_EQ("> 3\nans = 3\n\n> ", Text());
}

// Any mixture of editing, undo and redo.
TEST_F(Undo, GoesBackAHundredSteps) {
    for (int i = 0; i < 150; ++i) {
        Type("7");
        [console breakUndoCoalescing];
        NextEvent();
    }
    int steps = 0;
    for (;[[console undoManager] canUndo] && steps < 150; ++steps) Undone();
    EXPECT_EQ(steps, 100);
    EXPECT_EQ(Entry(), std::string(50, '7'));
}

TEST_F(Undo, NoSequenceHarmsTheTranscript) {
    unsigned state = 12345;
    const auto dice = [&state](unsigned sides) {
        state = state * 1103515245U + 12345U;
        return (state >> 16) % sides;
    };
    SetPasteboard("8\n9");
    for (int i = 0; i < 600; ++i) {
        const auto length = static_cast<unsigned>([[console string] length]);
        switch (dice(14)) {
        case 0: Type("-"); break;
        case 1: Type("s"); break;
        case 2: Press(KEY_TAB); break;
        case 3: Press(KEY_BACKSPACE); break;
        case 4: Press(KEY_FORWARD_DELETE); break;
        case 5: Press(KEY_UP); break;
        case 6: Press(KEY_DOWN); break;
        case 7: [console paste:nil]; break;
        case 8: [console cut:nil]; break;
        case 9: [console undo:nil]; break;
        case 10: [[console undoManager] redo]; break;
        case 11: Select(dice(length), dice(6)); break;
        case 12: NextEvent(); break;
        default:
            if (dice(8) > 0) break;
            Press(KEY_RETURN);
            // What an empty entry repeats is answered in front of "\n> ".
            first.resize(first.size() - 3);
            ASSERT_EQ(first, Text().substr(0, first.size())) << "step " << i;
            first = Transcript();
        }
        ASSERT_EQ(first, Transcript()) << "step " << i;
        ASSERT_EQ("> ", first.substr(first.size() - 2));
    }
}

} // namespace
