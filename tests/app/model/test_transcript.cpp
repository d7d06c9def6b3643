// SPDX-License-Identifier: MIT
//
// What the keys do with the transcript and the entry, decided without a window.
#include "../../engine/clean_start.h"
#include "Transcript.h"

#include <gtest/gtest.h>

#include <new>

namespace {

using Edit = KeyEffect::Edit;
using Then = KeyEffect::Then;

// A transcript of 10 characters, the last two being the prompt, and an entry behind it.
class TranscriptTest : public ::testing::Test {
protected:
    void SetUp() override {
        calc.~ZqCalculator();
        new (&calc) ZqCalculator;
        deleteAllFunctions();
        g_linestart = START;
        prompt[0] = matchstr[0] = '\0';
        matching_enable = update_match_str = 0;
        keyCode = prevKey = 0;
    }

    // The effect of the key with this entry, the selection counted from its start.
    KeyEffect Press(const KeyPress& key, const std::u16string& entry, int place, size_t length = 0) const {
        const size_t location = static_cast<size_t>(START + place);
        return Transcript(entry, {location, length}).Press(key, minusIsSign);
    }
    KeyEffect Press(uint32_t code, const std::u16string& entry, int place, size_t length = 0,
                    unsigned long held = 0) const {
        return Press(KeyPress{code, 0, 0, held}, entry, place, length);
    }
    KeyEffect Type(char16_t c, const std::u16string& entry, int place, size_t length = 0) const {
        return Press(KeyPress{KEY_OTHER, c, c, 0}, entry, place, length);
    }

    static void ExpectSelected(const std::optional<EntryRange>& range, int place, size_t length) {
        ASSERT_TRUE(range);
        EXPECT_EQ(static_cast<int>(range->location) - START, place);
        EXPECT_EQ(range->length, length);
    }

    static constexpr int START = 10;
    bool minusIsSign = false;
};

// --- The entry as an 8-bit string ---

TEST_F(TranscriptTest, TheEntryIsFetchedAsLatin1) {
    EXPECT_TRUE(Transcript(u"2\u00d73", {}).FetchPrompt());
    EXPECT_STREQ(prompt, "2\xd7"
                         "3");
    EXPECT_FALSE(Transcript(u"1+\u20ac", {}).FetchPrompt());
    EXPECT_STREQ(prompt, "1+?");
    EXPECT_FALSE(Transcript(std::u16string(u"1\0002", 3), {}).FetchPrompt());
}

TEST_F(TranscriptTest, AnEntryOf9999CharactersFits) {
    EXPECT_TRUE(Transcript(std::u16string(9999, '1'), {}).FetchPrompt());
    EXPECT_FALSE(Transcript(std::u16string(10000, '1'), {}).FetchPrompt());
    EXPECT_EQ(strlen(prompt), 9999u);
    EXPECT_TRUE(Transcript(std::u16string(9000, '1'), {START, 0}).HasRoomFor(999));
    EXPECT_FALSE(Transcript(std::u16string(9000, '1'), {START, 0}).HasRoomFor(1000));
    EXPECT_TRUE(Transcript(std::u16string(9000, '1'), {START, 1}).HasRoomFor(1000));
}

// --- Return ---

TEST_F(TranscriptTest, ReturnCommitsAndEndsTheWalk) {
    update_match_str = 1;
    EXPECT_EQ(Press(KEY_RETURN, u"1+1", 1).then, Then::Commit);
    EXPECT_EQ(update_match_str, 0);
    EXPECT_EQ(Press(KEY_ENTER, u"", 0).then, Then::Commit);
}

// --- Completion ---

TEST_F(TranscriptTest, TabProposesNamesFromTheNewestAndThenNone) {
    char first[] = "sine(x)=x", second[] = "sing(x)=x";
    calc.ProcessEntry(first, false);
    calc.ProcessEntry(second, false);
    KeyEffect effect = Press(KEY_TAB, u"1+si", 4);
    EXPECT_EQ(effect.edit, Edit::Replace);
    EXPECT_EQ(effect.text, "ng()");
    ExpectSelected(effect.selectAfter, 4, 4);
    EXPECT_STREQ(prompt, "si");
    EXPECT_EQ(Press(KEY_TAB, u"1+sing()", 4, 4).text, "ne()");
    EXPECT_EQ(Press(KEY_TAB, u"1+sine()", 4, 4).text, "");
    Press(KEY_END, u"1+si", 4);
    EXPECT_EQ(Press(KEY_TAB, u"1+si", 4).text, "ng()") << "another key begins anew";
}

TEST_F(TranscriptTest, TabDoesNothingAtTheStartOfTheEntry) {
    const KeyEffect effect = Press(KEY_TAB, u"si", 0);
    EXPECT_EQ(effect.edit, Edit::None);
    EXPECT_EQ(effect.then, Then::Preview);
}

TEST_F(TranscriptTest, ThePartialWordEndsAtWhatIsNoLetter) {
    EXPECT_EQ(Transcript(u"1+a_2b", {START + 6, 0}).PartialWord().location, START + 2u);
    EXPECT_EQ(Transcript(u"1+a_2b", {START + 6, 0}).PartialWord().length, 4u);
    EXPECT_EQ(Transcript(u"ab", {START + 2, 0}).PartialWord().location, START + 0u) << "not into the prompt";
    EXPECT_EQ(Transcript(u"\u00e4b", {START + 2, 0}).PartialWord().length, 1u);
    EXPECT_EQ(Transcript(u"ab", {4, 0}).PartialWord().length, 0u);
}

// --- Escape ---

TEST_F(TranscriptTest, EscapeEmptiesTheEntryAndHidesOnAnEmptyOne) {
    update_match_str = 1;
    EXPECT_EQ(Press(KEY_ESCAPE, u"1", 1).edit, Edit::Clear);
    EXPECT_EQ(update_match_str, 0);
    EXPECT_EQ(Press(KEY_ESCAPE, u"", 0).then, Then::Hide);
    EXPECT_EQ(Press(KEY_ESCAPE, u"", -5, 2).then, Then::Preview) << "something is selected";
}

// --- Deleting ---

TEST_F(TranscriptTest, BackspaceSparesThePrompt) {
    EXPECT_EQ(Press(KEY_BACKSPACE, u"12", 1).then, Then::Pass);
    EXPECT_EQ(Press(KEY_BACKSPACE, u"12", 0).then, Then::Preview);
    EXPECT_EQ(Press(KEY_BACKSPACE, u"12", 0, 1).then, Then::Pass);
    const KeyEffect across = Press(KEY_BACKSPACE, u"12", -4, 5);
    ExpectSelected(across.select, 0, 1);
    EXPECT_EQ(across.then, Then::Pass);
    const KeyEffect above = Press(KEY_BACKSPACE, u"12", -4, 2);
    EXPECT_TRUE(above.goesToEnd);
    EXPECT_EQ(above.then, Then::Preview);
}

TEST_F(TranscriptTest, ForwardDeleteAtTheStartDeletesWhatIsBehindIt) {
    EXPECT_EQ(Press(KEY_FORWARD_DELETE, u"12", 0).then, Then::Pass);
    const KeyEffect across = Press(KEY_FORWARD_DELETE, u"12", -4, 5);
    ExpectSelected(across.select, 0, 1);
    EXPECT_EQ(across.then, Then::Pass);
    EXPECT_TRUE(Press(KEY_FORWARD_DELETE, u"12", -4).goesToEnd);
    EXPECT_EQ(Press(KEY_FORWARD_DELETE, u"", -4).then, Then::Preview);
}

// --- Moving ---

TEST_F(TranscriptTest, HomeAndEndStayInTheEntryAndShiftSelects) {
    ExpectSelected(Press(KEY_HOME, u"123", 2).select, 0, 0);
    ExpectSelected(Press(KEY_HOME, u"123", 2, 1, SHIFT_KEY).select, 0, 3);
    ExpectSelected(Press(KEY_HOME, u"123", -5, 1, SHIFT_KEY).select, 0, 0);
    ExpectSelected(Press(KEY_LEFT, u"123", 2, 0, CONTROL_KEY | SHIFT_KEY).select, 0, 2);
    ExpectSelected(Press(KEY_END, u"123", 1, 0, SHIFT_KEY).select, 1, 2);
    EXPECT_TRUE(Press(KEY_END, u"123", 1).goesToEnd);
    EXPECT_EQ(Press(KEY_END, u"123", 1).then, Then::Nothing);
}

TEST_F(TranscriptTest, TheLeftArrowDoesNotEnterThePrompt) {
    EXPECT_EQ(Press(KEY_LEFT, u"12", 1).then, Then::Pass);
    for (const int place : {0, -1, -2}) EXPECT_EQ(Press(KEY_LEFT, u"12", place).then, Then::Preview) << place;
    EXPECT_EQ(Press(KEY_LEFT, u"12", -3).then, Then::Pass);
}

TEST_F(TranscriptTest, ControlACountsAsTheLeftArrow) {
    Press(KEY_A, u"12", 2, 0, CONTROL_KEY);
    EXPECT_EQ(keyCode, KEY_LEFT);
    Press(KEY_TAB, u"12", 2);
    EXPECT_EQ(prevKey, KEY_LEFT);
}

// --- History ---

TEST_F(TranscriptTest, TheArrowsMatchWhatWasTyped) {
    for (const char* line : {"sin(1)", "cos(1)", "sin(2)"}) calc.history.InsertNewEntry(line);
    Type('i', u"s", 1);
    EXPECT_EQ(matching_enable, 1);
    EXPECT_EQ(Press(KEY_UP, u"si", 2).edit, Edit::Recall);
    EXPECT_STREQ(matchstr, "si");
    EXPECT_STREQ(calc.history.GetHistoryStr(-1), "sin(2)");
    EXPECT_EQ(Press(KEY_UP, u"sin(2)", 6).edit, Edit::Recall);
    EXPECT_STREQ(calc.history.GetHistoryStr(-1), "sin(1)");
    EXPECT_EQ(Press(KEY_UP, u"sin(1)", 6).edit, Edit::None);
    EXPECT_EQ(Press(KEY_DOWN, u"sin(1)", 6).edit, Edit::Recall);
    EXPECT_EQ(Press(KEY_DOWN, u"sin(2)", 6).edit, Edit::None) << "the entry stays";
    EXPECT_STREQ(matchstr, "si") << "taken once";
}

TEST_F(TranscriptTest, AtTheStartOfTheEntryTheArrowsWalkThroughAll) {
    for (const char* line : {"sin(1)", "cos(1)"}) calc.history.InsertNewEntry(line);
    matching_enable = 1;
    EXPECT_EQ(Press(KEY_UP, u"", 0).edit, Edit::Recall);
    EXPECT_EQ(matching_enable, 0);
    EXPECT_EQ(Press(KEY_DOWN, u"cos(1)", 6).edit, Edit::Clear) << "past the newest";
}

TEST_F(TranscriptTest, ThePrefixHasAtMost100Characters) {
    matching_enable = 1;
    Press(KEY_UP, std::u16string(200, '1'), 200);
    EXPECT_EQ(std::string(matchstr), std::string(100, '1'));
}

// --- Typing ---

TEST_F(TranscriptTest, AnOperatorTypedFirstAppliesToTheAnswer) {
    for (const char16_t c : {u'+', u'*', u'/', u'-'}) {
        const KeyEffect effect = Type(c, u"5", 0);
        EXPECT_EQ(effect.edit, Edit::Type);
        EXPECT_EQ(effect.text, "ans");
        EXPECT_EQ(effect.then, Then::Pass);
        EXPECT_EQ(Type(c, u"5", 0, 1).edit, Edit::None) << "it replaces what is selected";
        EXPECT_EQ(Type(c, u"5", 1).edit, Edit::None);
    }
    minusIsSign = true;
    EXPECT_EQ(Type('-', u"", 0).edit, Edit::None);
    EXPECT_EQ(Type('+', u"", 0).text, "ans");
}

TEST_F(TranscriptTest, ASecondMinusChangesOver) {
    KeyEffect effect = Type('-', u"-", 1);
    ExpectSelected(effect.select, 0, 1);
    EXPECT_EQ(effect.text, "ans");
    ExpectSelected(effect.selectAfter, 3, 0);
    effect = Type('-', u"ans-", 4);
    ExpectSelected(effect.select, 0, 4);
    EXPECT_EQ(effect.edit, Edit::Replace);
    EXPECT_EQ(effect.text, "");
    ExpectSelected(effect.selectAfter, 0, 0);
    EXPECT_EQ(Type('-', u"5", 1).edit, Edit::None);
    EXPECT_EQ(Type('-', u"5-3-", 4).edit, Edit::None);
}

TEST_F(TranscriptTest, WhatIsTypedInTheTranscriptGoesToTheEnd) {
    KeyEffect effect = Type('*', u"", -4, 2);
    EXPECT_TRUE(effect.goesToEnd);
    EXPECT_EQ(effect.text, "ans") << "the entry is empty";
    effect = Type('*', u"5", -4);
    EXPECT_TRUE(effect.goesToEnd);
    EXPECT_EQ(effect.edit, Edit::None);
    EXPECT_FALSE(Press(KEY_OTHER, u"5", -4, 0, FUNCTION_KEY).goesToEnd);
    EXPECT_FALSE(Press(KEY_OTHER, u"5", -4, 0, CONTROL_KEY).goesToEnd);
}

TEST_F(TranscriptTest, CommandCCopiesTheAnswerWhenNothingIsSelected) {
    const KeyPress copy = {KEY_OTHER, 'c', 'c', COMMAND_KEY};
    EXPECT_EQ(Press(copy, u"5", 1).then, Then::Copy);
    EXPECT_EQ(Press(copy, u"5", 0, 1).then, Then::Preview);
    const KeyPress other = {KEY_OTHER, 'y', 'y', COMMAND_KEY};
    EXPECT_EQ(Press(other, u"5", 1).then, Then::Preview) << "no character is typed";
}

} // namespace
