// SPDX-License-Identifier: MIT
//
// The arrows Up and Down: recall of earlier entries, all of them or those that begin with what was typed.
#import "console_fixture.h"

namespace {

class HistoryKeys : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        for (const char* const line : {"sin(30)", "1+2", "sqrt(16)", "sin(90)", "3*4"}) enter(line);
        first = transcript();
    }

    // The entry after the key.
    std::string after(uint32_t key) {
        press(key);
        EXPECT_EQ(first, transcript());
        return entry();
    }

    std::string first;
};

TEST_F(HistoryKeys, upWalksAllEntriesFromTheNewest) {
    EXPECT_EQ("3*4", after(KEY_UP));
    EXPECT_EQ(3U, cursorInEntry());
    EXPECT_EQ("ans = 12", status());
    EXPECT_EQ("sin(90)", after(KEY_UP));
    EXPECT_EQ("sqrt(16)", after(KEY_UP));
    EXPECT_EQ("1+2", after(KEY_UP));
    EXPECT_EQ("sin(30)", after(KEY_UP));
    EXPECT_EQ("sin(30)", after(KEY_UP)); // the oldest
}

TEST_F(HistoryKeys, downWalksBackAndClearsTheLineBehindTheNewest) {
    for (int i = 0; i < 3; i++) press(KEY_UP);
    EXPECT_EQ("sin(90)", after(KEY_DOWN));
    EXPECT_EQ("3*4", after(KEY_DOWN));
    EXPECT_EQ("", after(KEY_DOWN));
    EXPECT_EQ("", status());
    EXPECT_EQ("3*4", after(KEY_UP));
}

TEST_F(HistoryKeys, downBeforeAnyUpClearsTheLine) {
    type("45");
    selectEntry(0);
    EXPECT_EQ("", after(KEY_DOWN));
}

TEST_F(HistoryKeys, upWithTypedTextWalksTheEntriesThatBeginWithIt) {
    type("si");
    EXPECT_EQ("sin(90)", after(KEY_UP));
    EXPECT_EQ("ans = 1", status());
    EXPECT_EQ("sin(30)", after(KEY_UP));
    EXPECT_EQ("sin(30)", after(KEY_UP));
    EXPECT_STREQ("si", matchstr);
    EXPECT_EQ("sin(90)", after(KEY_DOWN));
}

TEST_F(HistoryKeys, downPastTheNewestMatchLeavesTheLine) {
    type("si");
    press(KEY_UP);
    EXPECT_EQ("sin(90)", after(KEY_DOWN));
    EXPECT_EQ("sin(90)", after(KEY_DOWN));
}

TEST_F(HistoryKeys, withoutAMatchTheEntryStays) {
    type("7");
    EXPECT_EQ("7", after(KEY_UP));
    EXPECT_EQ("7", after(KEY_DOWN));
    EXPECT_EQ("ans = 7", status());
}

TEST_F(HistoryKeys, thePrefixIsTakenOnce) {
    type("s");
    EXPECT_EQ("sin(90)", after(KEY_UP));
    EXPECT_EQ("sqrt(16)", after(KEY_UP)); // begins with "s", not with "sin(90)"
    EXPECT_STREQ("s", matchstr);
}

TEST_F(HistoryKeys, typingTakesThePrefixAnew) {
    type("s");
    press(KEY_UP);
    press(KEY_ESCAPE);
    type("sq");
    EXPECT_EQ("sqrt(16)", after(KEY_UP));
    EXPECT_STREQ("sq", matchstr);
}

TEST_F(HistoryKeys, returnAndEscapeEndTheWalk) {
    type("s");
    press(KEY_UP);
    EXPECT_EQ(1, update_match_str);
    press(KEY_ESCAPE);
    EXPECT_EQ(0, update_match_str);
    type("s");
    press(KEY_UP);
    press(KEY_RETURN);
    EXPECT_EQ(0, update_match_str);
    first = transcript();
    EXPECT_EQ("sin(90)", after(KEY_UP)); // the newest of all
}

TEST_F(HistoryKeys, withTheCursorAtTheStartAllEntriesAreWalked) {
    type("si");
    press(KEY_HOME);
    EXPECT_EQ("3*4", after(KEY_UP));
    EXPECT_EQ(0, matching_enable);
    EXPECT_EQ("sin(90)", after(KEY_UP));
    EXPECT_EQ("sqrt(16)", after(KEY_UP));
}

TEST_F(HistoryKeys, withTheCursorInTheTranscriptAllEntriesAreWalked) {
    type("si");
    select(1, 4);
    EXPECT_EQ("3*4", after(KEY_UP));
}

TEST_F(HistoryKeys, thePrefixHasAtMost100Characters) {
    const std::string hundred = "1" + std::string(99, '0');
    const std::string longer = hundred + "+1";
    [console replacePrompt:longer.c_str()];
    press(KEY_RETURN);
    enter("8");
    first = transcript();
    [console replacePrompt:(hundred + "+").c_str()];
    type("2"); // differs behind the hundredth character
    EXPECT_EQ(longer, after(KEY_UP));
    EXPECT_EQ(hundred, matchstr);
}

TEST_F(HistoryKeys, modifiersDoNotMatter) {
    press(KEY_UP, NSAlternateKeyMask);
    EXPECT_EQ("3*4", entry());
    press(KEY_UP, NSShiftKeyMask);
    EXPECT_EQ("sin(90)", entry());
}

TEST_F(HistoryKeys, upCanBeUndone) {
    type("7");
    run(0.01);
    press(KEY_HOME);
    press(KEY_UP);
    ASSERT_EQ("3*4", entry());
    run(0.01);
    [console undo:nil];
    EXPECT_EQ("7", entry());
    EXPECT_EQ(first, transcript());
}

} // namespace
