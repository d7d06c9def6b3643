// SPDX-License-Identifier: MIT
//
// Undo: of what was done to the entry, never of the transcript.
#import "console_fixture.h"

namespace {

class Undo : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        enter("1+2");
        first = transcript();
    }

    // Undo groups what one event did.
    void nextEvent() { run(0.01); }

    std::string undone() {
        [console undo:nil];
        nextEvent();
        EXPECT_EQ(first, transcript());
        return entry();
    }

    std::string first;
};

TEST_F(Undo, takesTypingBackAndPreviews) {
    type("45");
    nextEvent();
    type("+6");
    nextEvent();
    EXPECT_EQ("45", undone());
    EXPECT_EQ("ans = 45", status());
    EXPECT_EQ("", undone());
    EXPECT_EQ("", undone());
}

TEST_F(Undo, restoresWhatWasDeleted) {
    type("45");
    nextEvent();
    selectEntry(0, 1);
    press(KEY_BACKSPACE);
    nextEvent();
    ASSERT_EQ("5", entry());
    EXPECT_EQ("45", undone());
    EXPECT_EQ("ans = 45", status());
}

TEST_F(Undo, doesNothingInAnEmptyEntry) {
    type("45");
    nextEvent();
    press(KEY_ESCAPE);
    nextEvent();
    EXPECT_EQ("", undone());
}

TEST_F(Undo, withTheCursorElsewhereRestoresAnEmptiedEntry) {
    type("45");
    nextEvent();
    press(KEY_ESCAPE);
    nextEvent();
    select(1);
    EXPECT_EQ("45", undone());
}

TEST_F(Undo, takesAPasteBack) {
    type("45");
    nextEvent();
    setPasteboard("+1\n2");
    [console paste:nil];
    nextEvent();
    EXPECT_EQ("45", undone());
}

TEST_F(Undo, takesBackWhatOperatorsInsert) {
    for (const char* const keys : {"*", "-", "--", "---", "----", "---5"}) {
        for (const char* key = keys; *key; key++) {
            const char one[] = {*key, '\0'};
            type(one);
            nextEvent();
        }
        ASSERT_NE("", entry());
        for (int i = 0; i < 9; i++) undone();
        EXPECT_EQ("", entry()) << keys;
        [[console undoManager] removeAllActions];
    }
}

TEST_F(Undo, stepsThroughTheFormsOfAMinus) {
    type("-");
    nextEvent();
    type("-");
    nextEvent();
    ASSERT_EQ("ans-", entry());
    EXPECT_EQ("-", undone());
    EXPECT_EQ("", undone());
}

TEST_F(Undo, knowsNothingOfEarlierEntries) {
    type("45");
    nextEvent();
    press(KEY_RETURN);
    first = transcript();
    nextEvent();
    type("6");
    nextEvent();
    EXPECT_EQ("", undone());
    select(3); // where undo is asked although the entry is empty
    EXPECT_EQ("", undone());
}

TEST_F(Undo, afterClearingKnowsNothing) {
    type("45");
    nextEvent();
    [console clearConsole];
    first = "> ";
    type("6");
    nextEvent();
    EXPECT_EQ("", undone());
    select(0);
    EXPECT_EQ("", undone());
}

TEST_F(Undo, afterOutputAboveTheEntryKnowsNothing) {
    type("45");
    nextEvent();
    [console insertPrePrompt:"note\n":3];
    first = transcript();
    EXPECT_EQ("45", undone());
}

TEST_F(Undo, redoRestoresTheEntry) {
    type("45");
    nextEvent();
    undone();
    [[console undoManager] redo];
    EXPECT_EQ("45", entry());
    EXPECT_EQ(first, transcript());
}

// Any mixture of editing, undo and redo.
TEST_F(Undo, noSequenceHarmsTheTranscript) {
    unsigned state = 12345;
    const auto dice = [&state](unsigned sides) {
        state = state * 1103515245U + 12345U;
        return (state >> 16) % sides;
    };
    setPasteboard("8\n9");
    for (int i = 0; i < 600; i++) {
        const auto length = static_cast<unsigned>([[console string] length]);
        switch (dice(14)) {
        case 0: type("-"); break;
        case 1: type("s"); break;
        case 2: press(KEY_TAB); break;
        case 3: press(KEY_BACKSPACE); break;
        case 4: press(KEY_FORWARD_DELETE); break;
        case 5: press(KEY_UP); break;
        case 6: press(KEY_DOWN); break;
        case 7: [console paste:nil]; break;
        case 8: [console cut:nil]; break;
        case 9: [console undo:nil]; break;
        case 10: [[console undoManager] redo]; break;
        case 11: select(dice(length), dice(6)); break;
        case 12: nextEvent(); break;
        default:
            if (dice(8) > 0) break;
            press(KEY_RETURN);
            // What an empty entry repeats is answered in front of "\n> ".
            first.resize(first.size() - 3);
            ASSERT_EQ(first, text().substr(0, first.size())) << "step " << i;
            first = transcript();
        }
        ASSERT_EQ(first, transcript()) << "step " << i;
        ASSERT_EQ("> ", first.substr(first.size() - 2));
    }
}

} // namespace
