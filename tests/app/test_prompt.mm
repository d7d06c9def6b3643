// SPDX-License-Identifier: MIT
//
// Writing into the transcript, the prompt and the entry.
#import "console_fixture.h"

namespace {

class Prompt : public ConsoleTest {
protected:
    // The entry without a preview.
    void setEntry(NSString* text) {
        const auto start = static_cast<NSUInteger>(g_linestart);
        [console replaceCharactersInRange:NSMakeRange(start, [[console string] length] - start)
                               withString:text];
    }

    void setEntry(size_t length) {
        setEntry([@"" stringByPaddingToLength:length withString:@"7" startingAtIndex:0]);
    }

    bool endIsVisible() const { return NSMaxY([console visibleRect]) >= NSMaxY([console bounds]) - 1; }

    NSUInteger length() const { return [[console string] length]; }
};

TEST_F(Prompt, startsWithAnEmptyEntryBehindThePrompt) {
    EXPECT_EQ("> ", text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(2U, cursor());
}

TEST_F(Prompt, gotoEndPutsTheCursorBehindTheLastCharacterAndShowsIt) {
    for (int i = 0; i < 30; i++) [console insertWithNewPrompt:"one more line"];
    select(0, 5);
    [console scrollRangeToVisible:NSMakeRange(0, 1)];
    ASSERT_FALSE(endIsVisible());
    [console gotoEnd];
    EXPECT_EQ(length(), cursor());
    EXPECT_EQ("", selected());
    EXPECT_TRUE(endIsVisible());
}

TEST_F(Prompt, replaceSelectionPutsTextInPlaceOfTheSelection) {
    type("1+2+3");
    selectEntry(1, 3);
    [console replaceSelection:@"*"];
    EXPECT_EQ("> 1*3", text());
    selectEntry(1);
    [console replaceSelection:@"0"];
    EXPECT_EQ("> 10*3", text());
}

TEST_F(Prompt, replaceSelectionLeavesTheTranscriptAlone) {
    enter("1+2");
    const std::string before = text();
    select(0, 4);
    [console replaceSelection:@"other"];
    EXPECT_EQ(before, text());
}

TEST_F(Prompt, clearConsoleLeavesOnlyThePrompt) {
    enter("1+2");
    type("45");
    [console clearConsole];
    EXPECT_EQ("> ", text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(2U, cursor());
    EXPECT_EQ("", selected());
}

TEST_F(Prompt, clearPromptEmptiesTheEntryFromAnywhere) {
    enter("1+2");
    const std::string before = text();
    for (const NSUInteger place : {NSUInteger(0), NSUInteger(g_linestart), NSUInteger(g_linestart) + 1}) {
        setEntry(@"789");
        select(place);
        [console clearPrompt];
        EXPECT_EQ(before, text());
        EXPECT_EQ(0U, cursorInEntry());
    }
}

TEST_F(Prompt, clearPromptOfAnEmptyEntryOnlyMovesTheCursorThere) {
    enter("1+2");
    const std::string before = text();
    select(0, 5);
    [console clearPrompt];
    EXPECT_EQ(before, text());
    EXPECT_EQ(0U, cursorInEntry());
}

TEST_F(Prompt, replacePromptTakesLatin1AndPutsTheCursorBehindIt) {
    enter("1+2");
    setEntry(@"789");
    select(0, 5);
    [console replacePrompt:"\xe9+1"];
    EXPECT_EQ("\u00e9+1", entry());
    EXPECT_EQ(3U, cursorInEntry());
    EXPECT_EQ("> 1+2\nans = 3\n\n> ", transcript());
    [console replacePrompt:""];
    EXPECT_EQ("", entry());
}

TEST_F(Prompt, insertPromptEndsTheEntryAndOpensAnother) {
    setEntry(@"12");
    select(0);
    [console insertPrompt];
    EXPECT_EQ("> 12\n> ", text());
    EXPECT_EQ(7, g_linestart);
    EXPECT_EQ(7U, cursor());
}

TEST_F(Prompt, insertWithNewPromptWritesAnAnswerBelowTheEntry) {
    setEntry(@"12");
    select(1);
    [console insertWithNewPrompt:"ans = 12\n"];
    EXPECT_EQ("> 12\nans = 12\n\n> ", text());
    EXPECT_EQ(length(), NSUInteger(g_linestart));
    EXPECT_EQ(length(), cursor());
    EXPECT_TRUE(endIsVisible());
}

TEST_F(Prompt, insertWithoutPromptLeavesTheEntrysStart) {
    setEntry(@"12");
    select(0);
    [console insertWithoutPrompt:"\nmore"];
    EXPECT_EQ("> 12\nmore", text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(length(), cursor());
}

TEST_F(Prompt, insertPrePromptWritesAboveAnOpenEntry) {
    enter("1+2");
    setEntry(@"45");
    select(0);
    [console insertPrePrompt:"note\n":3];
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n> 45", text());
    EXPECT_EQ("45", entry());
    EXPECT_EQ(length(), cursor());
    [console insertPrePrompt:"(2)":2]; // in front of the prompt
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n(2)> 45", text());
    [console insertPrePrompt:"x":0];
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n(2)> x45", text());
    EXPECT_EQ("45", entry());
}

TEST_F(Prompt, insertPrePromptFurtherBackThanTheTextWritesAtItsStart) {
    setEntry(@"45");
    [console insertPrePrompt:"note\n":3];
    EXPECT_EQ("note\n> 45", text());
    EXPECT_EQ("45", entry());
}

TEST_F(Prompt, getPromptTextCopiesTheEntryInLatin1) {
    enter("1+2");
    setEntry(@"");
    EXPECT_TRUE([console getPromptText]);
    EXPECT_STREQ("", prompt);
    setEntry(@"3+\u00e9");
    EXPECT_TRUE([console getPromptText]);
    EXPECT_STREQ("3+\xe9", prompt);
}

TEST_F(Prompt, getPromptTextFailsForWhatLatin1HasNot) {
    setEntry(@"3\u20ac"); // a euro sign
    EXPECT_FALSE([console getPromptText]);
    setEntry(@"3\u0301"); // a combining accent
    EXPECT_FALSE([console getPromptText]);
    const unichar withNul[] = {'1', 0, '2'};
    setEntry([NSString stringWithCharacters:withNul length:3]);
    EXPECT_FALSE([console getPromptText]);
    EXPECT_STREQ("1", prompt);
    setEntry(@"3\U0001F600"); // two UTF-16 units
    EXPECT_FALSE([console getPromptText]);
}

TEST_F(Prompt, anEntryFitsUpToTheBuffersTerminator) {
    setEntry(PROMPT_SIZE - 1);
    EXPECT_TRUE([console getPromptText]);
    EXPECT_EQ(9999U, strlen(prompt));
    setEntry(PROMPT_SIZE);
    EXPECT_FALSE([console getPromptText]);
    EXPECT_EQ(9999U, strlen(prompt));
}

TEST_F(Prompt, recallHistoryFetchesALine) {
    enter("1+2");
    enter("3*4");
    [console recallHistory:1];
    EXPECT_EQ("3*4", entry());
    [console recallHistory:2];
    EXPECT_EQ("1+2", entry());
    EXPECT_EQ(3U, cursorInEntry());
    calc.history.HistLocUp();
    [console recallHistory]; // where the walk stands
    EXPECT_EQ("3*4", entry());
}

TEST_F(Prompt, recallHistoryWithoutALineEmptiesTheEntryAndAnEmptyLineChangesNothing) {
    enter("1+2");
    setEntry(@"45");
    [console recallHistory:7];
    EXPECT_EQ("", entry());
    setEntry(@"45");
    [console recallHistory:0];
    EXPECT_EQ("", entry());
    calc.history.InsertNewEntry("");
    setEntry(@"45");
    [console recallHistory:1];
    EXPECT_EQ("45", entry());
}

TEST_F(Prompt, theStatusLineLeavesOutALineFeedAtTheEnd) {
    [console updateStatusbar:"ans = 3\n"];
    EXPECT_EQ("ans = 3", status());
    [console updateStatusbar:"a\nb"];
    EXPECT_EQ("a\nb", status());
    [console updateStatusbar:""];
    EXPECT_EQ("", status());
}

} // namespace
