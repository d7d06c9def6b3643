// SPDX-License-Identifier: MIT
//
// The arrows Up and Down: recall of earlier entries, all of them or those that begin with what was typed.
#import "console_fixture.h"

namespace {

class HistoryKeys : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        for (const char* const line : {"sin(30)", "1+2", "sqrt(16)", "sin(90)", "3*4"}) Enter(line);
        first = Transcript();
    }

    // The entry after the key.
    std::string After(uint32_t key) {
        Press(key);
        EXPECT_EQ(first, Transcript());
        return Entry();
    }

    std::string first;
};

TEST_F(HistoryKeys, UpWalksAllEntriesFromTheNewest) {
    EXPECT_EQ("3*4", After(KEY_UP));
    EXPECT_EQ(3U, CursorInEntry());
    EXPECT_EQ("ans = 12", StatusLine());
    EXPECT_EQ("sin(90)", After(KEY_UP));
    EXPECT_EQ("sqrt(16)", After(KEY_UP));
    EXPECT_EQ("1+2", After(KEY_UP));
    EXPECT_EQ("sin(30)", After(KEY_UP));
    EXPECT_EQ("sin(30)", After(KEY_UP)); // the oldest
}

TEST_F(HistoryKeys, DownWalksBackAndClearsTheLineBehindTheNewest) {
    for (int i = 0; i < 3; ++i) Press(KEY_UP);
    EXPECT_EQ("sin(90)", After(KEY_DOWN));
    EXPECT_EQ("3*4", After(KEY_DOWN));
    EXPECT_EQ("", After(KEY_DOWN));
    EXPECT_EQ("", StatusLine());
    EXPECT_EQ("3*4", After(KEY_UP));
}

TEST_F(HistoryKeys, DownBeforeAnyUpClearsTheLine) {
    Type("45");
    SelectEntry(0);
    EXPECT_EQ("", After(KEY_DOWN));
}

TEST_F(HistoryKeys, UpWithTypedTextWalksTheEntriesThatBeginWithIt) {
    Type("si");
    EXPECT_EQ("sin(90)", After(KEY_UP));
    EXPECT_EQ("ans = 1", StatusLine());
    EXPECT_EQ("sin(30)", After(KEY_UP));
    EXPECT_EQ("sin(30)", After(KEY_UP));
    EXPECT_STREQ("si", matchstr);
    EXPECT_EQ("sin(90)", After(KEY_DOWN));
}

TEST_F(HistoryKeys, DownPastTheNewestMatchLeavesTheLine) {
    Type("si");
    Press(KEY_UP);
    EXPECT_EQ("sin(90)", After(KEY_DOWN));
    EXPECT_EQ("sin(90)", After(KEY_DOWN));
}

TEST_F(HistoryKeys, WithoutAMatchTheEntryStays) {
    Type("7");
    EXPECT_EQ("7", After(KEY_UP));
    EXPECT_EQ("7", After(KEY_DOWN));
    EXPECT_EQ("ans = 7", StatusLine());
}

TEST_F(HistoryKeys, ThePrefixIsTakenOnce) {
    Type("s");
    EXPECT_EQ("sin(90)", After(KEY_UP));
    EXPECT_EQ("sqrt(16)", After(KEY_UP)); // begins with "s", not with "sin(90)"
    EXPECT_STREQ("s", matchstr);
}

TEST_F(HistoryKeys, TypingTakesThePrefixAnew) {
    Type("s");
    Press(KEY_UP);
    Press(KEY_ESCAPE);
    Type("sq");
    EXPECT_EQ("sqrt(16)", After(KEY_UP));
    EXPECT_STREQ("sq", matchstr);
}

TEST_F(HistoryKeys, ReturnAndEscapeEndTheWalk) {
    Type("s");
    Press(KEY_UP);
    EXPECT_EQ(1, update_match_str);
    Press(KEY_ESCAPE);
    EXPECT_EQ(0, update_match_str);
    Type("s");
    Press(KEY_UP);
    Press(KEY_RETURN);
    EXPECT_EQ(0, update_match_str);
    first = Transcript();
    EXPECT_EQ("sin(90)", After(KEY_UP)); // the newest of all
}

TEST_F(HistoryKeys, WithTheCursorAtTheStartAllEntriesAreWalked) {
    Type("si");
    Press(KEY_HOME);
    EXPECT_EQ("3*4", After(KEY_UP));
    EXPECT_EQ(0, matching_enable);
    EXPECT_EQ("sin(90)", After(KEY_UP));
    EXPECT_EQ("sqrt(16)", After(KEY_UP));
}

TEST_F(HistoryKeys, WithTheCursorInTheTranscriptAllEntriesAreWalked) {
    Type("si");
    Select(1, 4);
    EXPECT_EQ("3*4", After(KEY_UP));
}

TEST_F(HistoryKeys, ThePrefixHasAtMost100Characters) {
    const std::string hundred = "1" + std::string(99, '0');
    const std::string longer = hundred + "+1";
    [console replacePrompt:longer.c_str()];
    Press(KEY_RETURN);
    Enter("8");
    first = Transcript();
    [console replacePrompt:(hundred + "+").c_str()];
    Type("2"); // differs behind the hundredth character
    EXPECT_EQ(longer, After(KEY_UP));
    EXPECT_EQ(hundred, matchstr);
}

TEST_F(HistoryKeys, ModifiersDoNotMatter) {
    Press(KEY_UP, NSAlternateKeyMask);
    EXPECT_EQ("3*4", Entry());
    Press(KEY_UP, NSShiftKeyMask);
    EXPECT_EQ("sin(90)", Entry());
}

TEST_F(HistoryKeys, UpCanBeUndone) {
    Type("7");
    Run(0.01);
    Press(KEY_HOME);
    Press(KEY_UP);
    ASSERT_EQ("3*4", Entry());
    Run(0.01);
    [console undo:nil];
    EXPECT_EQ("7", Entry());
    EXPECT_EQ(first, Transcript());
}

} // namespace
