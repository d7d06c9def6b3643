// SPDX-License-Identifier: MIT
#include "../cases.h"
#include "../seed.h"
#include "History.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>
#include <vector>

namespace {

void insertFiltered(CHistory& history, std::string text, bool split = false) {
    history.FilteredInsertNew(text.data(), split);
}

// Newest first, joined by '|'.
std::string lines(const CHistory& history) {
    std::string out;
    for (int k = 1; k <= history.count; k++) out += std::string(k > 1 ? "|" : "") + history.GetHistoryStr(k);
    return out;
}

void fill(CHistory& history, int from, int to) {
    for (int i = from; i <= to; i++) history.InsertNewEntry(std::to_string(i).c_str());
}

TEST(History, IsEmptyAtFirst) {
    CHistory history;
    EXPECT_EQ(99, history.maxEntries);
    EXPECT_EQ(0, history.count);
    EXPECT_EQ(0, history.location);
    EXPECT_FALSE(history.matching);
    for (int k : {-1, 0, 1}) EXPECT_EQ(nullptr, history.GetHistoryStr(k));
    EXPECT_FALSE(history.HistLocUp());
    EXPECT_FALSE(history.HistLocDown());
    EXPECT_FALSE(history.HistLocUpWithMatch(""));
    EXPECT_FALSE(history.HistLocDownWithMatch(""));
}

TEST(History, KeepsTheNewestLines) {
    CHistory history;
    fill(history, 1, 100);
    EXPECT_EQ(99, history.count);
    EXPECT_STREQ("100", history.GetHistoryStr(1));
    EXPECT_STREQ("2", history.GetHistoryStr(99));
    EXPECT_EQ(nullptr, history.GetHistoryStr(100));
}

TEST(History, DropsImmediateRepeatsOnly) {
    CHistory history;
    for (const char* text : {"a", "a", "b", "a"}) insertFiltered(history, text);
    EXPECT_EQ("a|b|a", lines(history));
}

TEST(History, UnfilteredInsertionKeepsRepeats) {
    CHistory history;
    history.InsertNewEntry("a");
    history.InsertNewEntry("a");
    history.InsertNewEntry(nullptr);
    EXPECT_EQ("a|a", lines(history));
}

TEST(History, DoesNotStoreExitOrEmptyLines) {
    CHistory history;
    for (const char* text : {"", "\n", "\r\n", "exit", "exit\n", "exit\r\n"}) insertFiltered(history, text);
    EXPECT_EQ(0, history.count);
    insertFiltered(history, "exit ");
    insertFiltered(history, "EXIT");
    EXPECT_EQ("EXIT|exit ", lines(history));
}

TEST(History, RemovesOneLineEndFromTheCallersText) {
    CHistory history;
    char text[] = "a\r\n";
    history.FilteredInsertNew(text, false);
    EXPECT_STREQ("a", text);
    insertFiltered(history, "b\n\n");
    EXPECT_EQ("b\n|a", lines(history));
}

TEST(History, SplitsAtDoubleSemicolons) {
    CHistory history;
    char text[] = "1+1;;2+2";
    history.FilteredInsertNew(text, true);
    EXPECT_STREQ("1+1;;2+2", text);
    EXPECT_EQ("2+2|1+1", lines(history));
    insertFiltered(history, "3;;", true);
    EXPECT_EQ("|3|2+2|1+1", lines(history));
    insertFiltered(history, ";;;", true);
    EXPECT_EQ(";||" + std::string("|3|2+2|1+1"), lines(history));
}

TEST(History, RecordsAsItSplitsButLeavesTheTextAsItIs) {
    CHistory history;
    for (const char* text : {"", "\r\n", "exit\n", "a;;a\n\n", "b;;c", "c"}) history.Record(text);
    EXPECT_EQ("c|b|a\n|a", lines(history));
    history.Record(std::string_view("dd", 1)); // it has no terminator
    EXPECT_EQ("d|c|b|a\n|a", lines(history));
    history.SetMaxEntries(1);
    history.Record(std::string_view("ee", 1)); // into the memory of the line before
    EXPECT_EQ("e", lines(history));
}

TEST(History, SplitPiecesAreNotFiltered) {
    CHistory history;
    insertFiltered(history, "a;;a;;exit", true);
    EXPECT_EQ("exit|a|a", lines(history));
}

TEST(History, WithoutSplitKeepsTheWholeLine) {
    CHistory history;
    insertFiltered(history, "1;;2", false);
    EXPECT_EQ("1;;2", lines(history));
}

TEST(History, BrowsesUpAndDown) {
    CHistory history;
    fill(history, 1, 2);
    EXPECT_TRUE(history.HistLocUp());
    EXPECT_STREQ("2", history.GetHistoryStr(-1));
    EXPECT_TRUE(history.HistLocUp());
    EXPECT_STREQ("1", history.GetHistoryStr(-1));
    EXPECT_FALSE(history.HistLocUp());
    EXPECT_EQ(2, history.location);
    EXPECT_TRUE(history.HistLocDown());
    EXPECT_FALSE(history.HistLocDown()); // back at the line being typed
    EXPECT_EQ(0, history.location);
    EXPECT_EQ(nullptr, history.GetHistoryStr(-1));
    EXPECT_FALSE(history.HistLocDown());
}

TEST(History, BrowsesLinesWithAPrefix) {
    CHistory history;
    for (const char* text : {"a1", "b", "a2"}) history.InsertNewEntry(text);
    EXPECT_TRUE(history.HistLocUpWithMatch("a"));
    EXPECT_EQ(1, history.location);
    EXPECT_TRUE(history.matching);
    EXPECT_TRUE(history.HistLocUpWithMatch("a"));
    EXPECT_EQ(3, history.location);
    EXPECT_FALSE(history.HistLocUpWithMatch("a"));
    EXPECT_EQ(3, history.location);
    EXPECT_TRUE(history.HistLocDownWithMatch("a"));
    EXPECT_EQ(1, history.location);
    EXPECT_FALSE(history.HistLocDownWithMatch("a"));
    EXPECT_EQ(1, history.location);
}

TEST(History, PrefixesAreExactAndEmptyOnesMatchAll) {
    CHistory history;
    for (const char* text : {"Abc", "ab"}) history.InsertNewEntry(text);
    EXPECT_FALSE(history.HistLocUpWithMatch("abc"));
    EXPECT_FALSE(history.HistLocUpWithMatch("aB"));
    EXPECT_TRUE(history.HistLocUpWithMatch(""));
    EXPECT_EQ(1, history.location);
    EXPECT_TRUE(history.HistLocUpWithMatch("Abc"));
    EXPECT_EQ(2, history.location);
}

TEST(History, ResetAndLastSetTheLocation) {
    CHistory history;
    fill(history, 1, 5);
    history.HistLocUpWithMatch("");
    history.HistLocReset();
    EXPECT_EQ(0, history.location);
    EXPECT_TRUE(history.matching);
    history.HistLocLast();
    EXPECT_EQ(5, history.location);
    EXPECT_FALSE(history.matching);
}

TEST(History, ClearLeavesTheLocation) {
    CHistory history;
    fill(history, 1, 5);
    history.HistLocUpWithMatch("");
    history.Clear();
    EXPECT_EQ(0, history.count);
    EXPECT_EQ(0, history.next);
    EXPECT_EQ(1, history.location);
    EXPECT_FALSE(history.matching);
    EXPECT_EQ(nullptr, history.GetHistoryStr(-1));
    fill(history, 6, 7);
    EXPECT_EQ("7|6", lines(history));
}

TEST(History, LimitsTheCapacity) {
    CHistory history;
    history.SetMaxEntries(5000);
    EXPECT_EQ(999, history.maxEntries);
    history.SetMaxEntries(0);
    EXPECT_EQ(99, history.maxEntries);
    history.SetMaxEntries(-3);
    EXPECT_EQ(99, history.maxEntries);
    history.SetMaxEntries(1);
    fill(history, 1, 3);
    EXPECT_EQ("3", lines(history));
    history.SetMaxEntries(999);
    fill(history, 4, 1500);
    EXPECT_EQ(999, history.count);
    EXPECT_STREQ("502", history.GetHistoryStr(999));
}

TEST(History, LoweringTheCapacityKeepsTheNewestInAgeOrder) {
    CHistory history;
    fill(history, 1, 120);
    history.location = 50;
    history.SetMaxEntries(10);
    EXPECT_EQ("120|119|118|117|116|115|114|113|112|111", lines(history));
    EXPECT_STREQ("111", history.entries[0]);
    EXPECT_STREQ("120", history.entries[9]);
    EXPECT_EQ(0, history.next);
    EXPECT_EQ(10, history.location);
    fill(history, 121, 121);
    EXPECT_STREQ("121", history.GetHistoryStr(1));
    EXPECT_STREQ("112", history.GetHistoryStr(10));
}

TEST(History, RaisingTheCapacityOfAWrappedRingKeepsItsLines) {
    CHistory history;
    history.SetMaxEntries(3);
    fill(history, 1, 5);
    history.SetMaxEntries(6);
    EXPECT_EQ("5|4|3", lines(history));
    fill(history, 6, 9);
    EXPECT_EQ("9|8|7|6|5|4", lines(history));
}

// The history and, beside it, a plain list that does the same.
class Pair {
public:
    void Step() {
        switch (random() % 16) {
        case 0:
        case 1:
        case 2:
        case 3: Insert(); break;
        case 4:
        case 5: InsertFiltered(); break;
        case 6: InsertSplit(); break;
        case 7:
        case 8: Up(); break;
        case 9: Down(); break;
        case 10:
        case 11: UpWithMatch(); break;
        case 12: DownWithMatch(); break;
        case 13: Jump(); break;
        case 14:
            if (random() % 8 == 0) Resize();
            break;
        default:
            if (random() % 500 == 0) Clear();
        }
    }

    // The state, and the lines at both ends and somewhere.
    void Compare() {
        ASSERT_EQ(Count(), history.count);
        ASSERT_EQ(location, history.location);
        ASSERT_EQ(capacity, history.maxEntries);
        CompareLine(1);
        CompareLine(static_cast<int>(random() % 1000) + 1);
        if (Count() > 0) CompareLine(Count());
    }

    void CompareAllLines() {
        for (int k = 1; k <= Count(); k++) CompareLine(k);
    }

private:
    std::mt19937 random = seededRandom();
    CHistory history;
    std::deque<std::string> model; // newest first
    int capacity = 99;
    int location = 0;

    int Count() const { return static_cast<int>(model.size()); }

    std::string Text() {
        std::string text;
        for (auto i = random() % 4; i > 0; i--) text += "ab;"[random() % 3];
        return text;
    }

    std::string Prefix() {
        static const char* const prefixes[] = {"", "a", "ab", "b", "ba", "c"};
        return prefixes[random() % 6];
    }

    bool Begins(int k, const std::string& prefix) const {
        return model[static_cast<size_t>(k - 1)].compare(0, prefix.size(), prefix) == 0;
    }

    void Add(const std::string& text) {
        model.push_front(text);
        if (Count() > capacity) model.pop_back();
    }

    void CompareLine(int k) const {
        const char* line = history.GetHistoryStr(k);
        if (k <= Count())
            ASSERT_EQ(model[static_cast<size_t>(k - 1)], line);
        else
            ASSERT_EQ(nullptr, line);
    }

    void Insert() {
        const std::string text = Text();
        history.InsertNewEntry(text.c_str());
        Add(text);
    }

    void InsertFiltered() {
        const std::string text = Text();
        insertFiltered(history, text + (random() % 2 ? "\n" : ""));
        if (!text.empty() && !(Count() > 0 && model[0] == text)) Add(text);
    }

    void InsertSplit() {
        const std::string text = Text();
        const std::string whole = text + ";;a";
        if (text.empty() || (Count() > 0 && model[0] == whole)) return;
        size_t start = 0;
        for (size_t cut; (cut = whole.find(";;", start)) != std::string::npos; start = cut + 2) {
            Add(whole.substr(start, cut - start));
        }
        Add(whole.substr(start));
        insertFiltered(history, whole, true);
    }

    void Up() {
        const bool expected = location < Count();
        ASSERT_EQ(expected, history.HistLocUp());
        if (expected) location++;
    }

    void Down() {
        ASSERT_EQ(location >= 2, history.HistLocDown());
        if (location >= 1) location--;
    }

    void UpWithMatch() {
        const std::string prefix = Prefix();
        int k = location + 1;
        while (k <= Count() && !Begins(k, prefix)) k++;
        ASSERT_EQ(k <= Count(), history.HistLocUpWithMatch(prefix.c_str()));
        if (k <= Count()) location = k;
    }

    void DownWithMatch() {
        const std::string prefix = Prefix();
        int k = std::min(location - 1, Count());
        while (k >= 1 && !Begins(k, prefix)) k--;
        ASSERT_EQ(k >= 1, history.HistLocDownWithMatch(prefix.c_str()));
        if (k >= 1) location = k;
    }

    void Jump() {
        const bool isReset = random() % 2 == 0;
        isReset ? history.HistLocReset() : history.HistLocLast();
        location = isReset ? 0 : Count();
    }

    void Resize() {
        const int n = static_cast<int>(random() % 1200) - 5;
        capacity = n < 1 ? 99 : std::min(n, 999);
        history.SetMaxEntries(n);
        while (Count() > capacity) model.pop_back();
        location = std::min(location, capacity);
    }

    void Clear() {
        history.Clear();
        model.clear();
    }
};

TEST(History, BehavesAsAPlainListUnderRandomOperations) {
    SCOPED_TRACE(seedText());
    Pair pair;
    for (int step = 0; step < cases(100000); step++) {
        pair.Step();
        pair.Compare();
        if (step % 1000 == 0) pair.CompareAllLines();
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << "step " << step;
    }
}

} // namespace
