// SPDX-License-Identifier: MIT
//
// Writing into the transcript, the prompt and the entry.
#import "console_fixture.h"

namespace {

class Prompt : public ConsoleTest {
protected:
    // The entry without a preview.
    void SetEntry(NSString* text) {
        const auto start = static_cast<NSUInteger>(g_linestart);
        [console replaceCharactersInRange:NSMakeRange(start, [[console string] length] - start)
                               withString:text];
    }

    void SetEntry(size_t length) {
        SetEntry([@"" stringByPaddingToLength:length withString:@"7" startingAtIndex:0]);
    }

    bool EndIsVisible() const { return NSMaxY([console visibleRect]) >= NSMaxY([console bounds]) - 1; }

    NSUInteger Length() const { return [[console string] length]; }
};

TEST_F(Prompt, StartsWithAnEmptyEntryBehindThePrompt) {
    EXPECT_EQ("> ", Text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(2U, Cursor());
}

TEST_F(Prompt, GotoEndPutsTheCursorBehindTheLastCharacterAndShowsIt) {
    for (int i = 0; i < 30; ++i) [console insertWithNewPrompt:"one more line"];
    Select(0, 5);
    [console scrollRangeToVisible:NSMakeRange(0, 1)];
    ASSERT_FALSE(EndIsVisible());
    [console gotoEnd];
    EXPECT_EQ(Length(), Cursor());
    EXPECT_EQ("", Selected());
    EXPECT_TRUE(EndIsVisible());
}

TEST_F(Prompt, ReplaceSelectionPutsTextInPlaceOfTheSelection) {
    Type("1+2+3");
    SelectEntry(1, 3);
    [console replaceSelection:@"*"];
    EXPECT_EQ("> 1*3", Text());
    SelectEntry(1);
    [console replaceSelection:@"0"];
    EXPECT_EQ("> 10*3", Text());
}

TEST_F(Prompt, ReplaceSelectionLeavesTheTranscriptAlone) {
    Enter("1+2");
    const std::string before = Text();
    Select(0, 4);
    [console replaceSelection:@"other"];
    EXPECT_EQ(before, Text());
}

TEST_F(Prompt, ClearConsoleLeavesOnlyThePrompt) {
    Enter("1+2");
    Type("45");
    [console clearConsole];
    EXPECT_EQ("> ", Text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(2U, Cursor());
    EXPECT_EQ("", Selected());
}

TEST_F(Prompt, ClearPromptEmptiesTheEntryFromAnywhere) {
    Enter("1+2");
    const std::string before = Text();
    for (const NSUInteger place : {NSUInteger(0), NSUInteger(g_linestart), NSUInteger(g_linestart) + 1}) {
        SetEntry(@"789");
        Select(place);
        [console clearPrompt];
        EXPECT_EQ(before, Text());
        EXPECT_EQ(0U, CursorInEntry());
    }
}

TEST_F(Prompt, ClearPromptOfAnEmptyEntryOnlyMovesTheCursorThere) {
    Enter("1+2");
    const std::string before = Text();
    Select(0, 5);
    [console clearPrompt];
    EXPECT_EQ(before, Text());
    EXPECT_EQ(0U, CursorInEntry());
}

TEST_F(Prompt, ReplacePromptTakesLatin1AndPutsTheCursorBehindIt) {
    Enter("1+2");
    SetEntry(@"789");
    Select(0, 5);
    [console replacePrompt:"\xe9+1"];
    EXPECT_EQ("\u00e9+1", Entry());
    EXPECT_EQ(3U, CursorInEntry());
    EXPECT_EQ("> 1+2\nans = 3\n\n> ", Transcript());
    [console replacePrompt:""];
    EXPECT_EQ("", Entry());
}

TEST_F(Prompt, InsertPromptEndsTheEntryAndOpensAnother) {
    SetEntry(@"12");
    Select(0);
    [console insertPrompt];
    EXPECT_EQ("> 12\n> ", Text());
    EXPECT_EQ(7, g_linestart);
    EXPECT_EQ(7U, Cursor());
}

TEST_F(Prompt, InsertWithNewPromptWritesAnAnswerBelowTheEntry) {
    SetEntry(@"12");
    Select(1);
    [console insertWithNewPrompt:"ans = 12\n"];
    EXPECT_EQ("> 12\nans = 12\n\n> ", Text());
    EXPECT_EQ(Length(), NSUInteger(g_linestart));
    EXPECT_EQ(Length(), Cursor());
    EXPECT_TRUE(EndIsVisible());
}

TEST_F(Prompt, InsertWithoutPromptLeavesTheEntrysStart) {
    SetEntry(@"12");
    Select(0);
    [console insertWithoutPrompt:"\nmore"];
    EXPECT_EQ("> 12\nmore", Text());
    EXPECT_EQ(2, g_linestart);
    EXPECT_EQ(Length(), Cursor());
}

TEST_F(Prompt, InsertPrePromptWritesAboveAnOpenEntry) {
    Enter("1+2");
    SetEntry(@"45");
    Select(0);
    [console insertPrePrompt:"note\n":3];
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n> 45", Text());
    EXPECT_EQ("45", Entry());
    EXPECT_EQ(Length(), Cursor());
    [console insertPrePrompt:"(2)":2]; // in front of the prompt
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n(2)> 45", Text());
    [console insertPrePrompt:"x":0];
    EXPECT_EQ("> 1+2\nans = 3\nnote\n\n(2)> x45", Text());
    EXPECT_EQ("45", Entry());
}

TEST_F(Prompt, InsertPrePromptFurtherBackThanTheTextWritesAtItsStart) {
    SetEntry(@"45");
    [console insertPrePrompt:"note\n":3];
    EXPECT_EQ("note\n> 45", Text());
    EXPECT_EQ("45", Entry());
}

TEST_F(Prompt, GetPromptTextCopiesTheEntryInLatin1) {
    Enter("1+2");
    SetEntry(@"");
    EXPECT_TRUE([console getPromptText]);
    EXPECT_STREQ("", prompt);
    SetEntry(@"3+\u00e9");
    EXPECT_TRUE([console getPromptText]);
    EXPECT_STREQ("3+\xe9", prompt);
}

TEST_F(Prompt, GetPromptTextFailsForWhatLatin1HasNot) {
    SetEntry(@"3\u20ac"); // a euro sign
    EXPECT_FALSE([console getPromptText]);
    SetEntry(@"3\u0301"); // a combining accent
    EXPECT_FALSE([console getPromptText]);
    const unichar withNul[] = {'1', 0, '2'};
    SetEntry([NSString stringWithCharacters:withNul length:3]);
    EXPECT_FALSE([console getPromptText]);
    EXPECT_STREQ("1", prompt);
    SetEntry(@"3\U0001F600"); // two UTF-16 units
    EXPECT_FALSE([console getPromptText]);
}

TEST_F(Prompt, AnEntryFitsUpToTheBuffersTerminator) {
    SetEntry(PROMPT_SIZE - 1);
    EXPECT_TRUE([console getPromptText]);
    EXPECT_EQ(9999U, strlen(prompt));
    SetEntry(PROMPT_SIZE);
    EXPECT_FALSE([console getPromptText]);
    EXPECT_EQ(9999U, strlen(prompt));
}

TEST_F(Prompt, RecallHistoryFetchesALine) {
    Enter("1+2");
    Enter("3*4");
    [console recallHistory:1];
    EXPECT_EQ("3*4", Entry());
    [console recallHistory:2];
    EXPECT_EQ("1+2", Entry());
    EXPECT_EQ(3U, CursorInEntry());
    calc.history.HistLocUp();
    [console recallHistory]; // where the walk stands
    EXPECT_EQ("3*4", Entry());
}

TEST_F(Prompt, RecallHistoryWithoutALineEmptiesTheEntryAndAnEmptyLineChangesNothing) {
    Enter("1+2");
    SetEntry(@"45");
    [console recallHistory:7];
    EXPECT_EQ("", Entry());
    SetEntry(@"45");
    [console recallHistory:0];
    EXPECT_EQ("", Entry());
    calc.history.InsertNewEntry("");
    SetEntry(@"45");
    [console recallHistory:1];
    EXPECT_EQ("45", Entry());
}

TEST_F(Prompt, TheStatusLineLeavesOutALineFeedAtTheEnd) {
    [console updateStatusbar:"ans = 3\n"];
    EXPECT_EQ("ans = 3", StatusLine());
    [console updateStatusbar:"a\nb"];
    EXPECT_EQ("a\nb", StatusLine());
    [console updateStatusbar:""];
    EXPECT_EQ("", StatusLine());
}

// 500,000 characters, of which 400,000 are kept: the memory of long scripts has an end.
TEST_F(Prompt, AVeryLongTranscriptLosesItsOldestEntries) {
    Enter("first=1");
    const std::string answer(1000, '7');
    while (Length() < 499500) {
        NSString* const entry = [@"7" stringByPaddingToLength:90 withString:@"7" startingAtIndex:0];
        [console replacePrompt:[entry UTF8String]];
        [console insertWithNewPrompt:answer.c_str()];
    }
    ASSERT_LE(Length(), 500000U);
    EXPECT_EQ(0U, Text().find("> first=1\n"));
    Enter(("2+3*4 # " + answer).c_str());
    EXPECT_LE(Length(), 400000U);
    EXPECT_GE(Length(), 398000U);
    EXPECT_EQ(0U, Text().find("> 777")) << "the first line is an entry";
    EXPECT_EQ(static_cast<int32_t>(Length()), g_linestart);
    EXPECT_EQ(Length(), Cursor());
    const std::string end = "ans = 14\n\n> ";
    EXPECT_EQ(Text().size() - end.size(), Text().rfind(end));
    Enter("first+1");
    const std::string next = "> first+1\nans = 2\n\n> ";
    EXPECT_EQ(Text().size() - next.size(), Text().rfind(next));
    EXPECT_NE(std::string::npos, std::string([[console scriptText] UTF8String]).find("\nfirst=1\n2+3*4"));
}

TEST_F(Prompt, ALineWithoutAnEndStays) {
    Enter("echo 1");
    const std::string before = Text();
    [console insertWithoutPrompt:std::string(600000, 'x').c_str()];
    EXPECT_EQ(before.size() + 600000, Length());
    EXPECT_EQ(static_cast<int32_t>(before.size()), g_linestart);
}

} // namespace
