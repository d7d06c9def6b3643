// SPDX-License-Identifier: MIT
//
// Looking for a text while it is typed.
#include "Search.h"

#include <gtest/gtest.h>

namespace {

using Step = Search::Step;

const std::u16string TEXT = u"> width=3\nwidth = 3\n\n> 2*Width\nans = 6\n\n> ";

class SearchTest : public ::testing::Test {
protected:
    Step Key(uint32_t code) { return search.Press({code, 0, 0, 0}); }

    Step Control(char16_t letter) {
        return search.Press({KEY_OTHER, letter, static_cast<char16_t>(letter - 96), CONTROL_KEY});
    }

    void Type(const std::u16string& text) {
        for (const char16_t c : text) EXPECT_EQ(search.Press({KEY_OTHER, c, c, 0}), Step::Look);
    }

    // Where the match begins, or -1.
    int Found() {
        const auto range = search.FindIn(TEXT);
        return range ? static_cast<int>(range->location) : -1;
    }

    Search search;
};

class TranscriptSearch : public SearchTest {
protected:
    void SetUp() override { search.Begin(Search::In::Transcript, "", {}); }
};

TEST_F(TranscriptSearch, FindsTheNewestPlaceWhateverTheCase) {
    Type(u"wIDth");
    EXPECT_EQ(Found(), 25);
    EXPECT_EQ(search.Text(), u"Find: wIDth");
}

TEST_F(TranscriptSearch, GoesToOlderPlacesAndBack) {
    Type(u"width");
    EXPECT_EQ(Found(), 25);
    EXPECT_EQ(Key(KEY_UP), Step::Look);
    EXPECT_EQ(Found(), 10);
    EXPECT_EQ(Control('f'), Step::Look);
    EXPECT_EQ(Found(), 2);
    EXPECT_EQ(Key(KEY_DOWN), Step::Look);
    EXPECT_EQ(Found(), 10);
}

TEST_F(TranscriptSearch, StaysAtTheLastPlaceWhenThereIsNoOther) {
    Type(u"2*w");
    EXPECT_EQ(Found(), 23);
    Key(KEY_UP);
    EXPECT_EQ(Found(), 23);
    EXPECT_EQ(search.Text(), u"Find: 2*w  (not found)");
    Key(KEY_DOWN);
    EXPECT_EQ(Found(), 23);
}

TEST_F(TranscriptSearch, GoesOnFromWhatWasFoundWhileMoreIsTyped) {
    Type(u"width");
    Found();
    Key(KEY_UP);
    EXPECT_EQ(Found(), 10);
    Type(u"=");
    EXPECT_EQ(Found(), 2);
    Key(KEY_BACKSPACE);
    EXPECT_EQ(Found(), 25) << "from the newest again";
}

TEST_F(TranscriptSearch, SaysWhenThereIsNothing) {
    Type(u"height");
    EXPECT_EQ(Found(), -1);
    EXPECT_EQ(search.Text(), u"Find: height  (not found)");
    for (int i = 0; i < 10; ++i) Key(KEY_BACKSPACE);
    EXPECT_EQ(Found(), -1);
    EXPECT_EQ(search.Text(), u"Find: ");
}

TEST_F(TranscriptSearch, EndsWithReturnEscapeOrAnyOtherKey) {
    EXPECT_EQ(Key(KEY_RETURN), Step::Keep);
    EXPECT_EQ(Key(KEY_ESCAPE), Step::GiveUp);
    EXPECT_EQ(Key(KEY_LEFT), Step::Leave);
    EXPECT_EQ(Control('a'), Step::Leave);
    EXPECT_EQ(search.Press({KEY_OTHER, 'v', 'v', COMMAND_KEY}), Step::Leave);
    EXPECT_EQ(search.Press({KEY_OTHER, 0xf704, 0xf704, FUNCTION_KEY}), Step::Leave) << "a function key";
}

TEST_F(SearchTest, FindsEarlierEntriesFromTheNewest) {
    CHistory history;
    for (const char* const line : {"width=3", "sin(30)", "2*Width", "1+1"}) history.InsertNewEntry(line);
    search.Begin(Search::In::History, "", {});
    EXPECT_EQ(search.FindIn(history), 0);
    Type(u"idt");
    EXPECT_EQ(search.FindIn(history), 2);
    EXPECT_EQ(search.Text(), u"Earlier entry: idt");
    Control('r');
    EXPECT_EQ(search.FindIn(history), 4);
    Control('r');
    EXPECT_EQ(search.FindIn(history), 4);
    EXPECT_EQ(search.Text(), u"Earlier entry: idt  (not found)");
    Key(KEY_DOWN);
    EXPECT_EQ(search.FindIn(history), 2);
    Type(u"x");
    EXPECT_EQ(search.FindIn(history), 0);
}

} // namespace
