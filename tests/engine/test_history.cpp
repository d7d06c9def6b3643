// SPDX-License-Identifier: MIT
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

TEST(History, isEmptyAtFirst) {
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

TEST(History, keepsTheNewestLines) {
    CHistory history;
    fill(history, 1, 100);
    EXPECT_EQ(99, history.count);
    EXPECT_STREQ("100", history.GetHistoryStr(1));
    EXPECT_STREQ("2", history.GetHistoryStr(99));
    EXPECT_EQ(nullptr, history.GetHistoryStr(100));
}

TEST(History, dropsImmediateRepeatsOnly) {
    CHistory history;
    for (const char* text : {"a", "a", "b", "a"}) insertFiltered(history, text);
    EXPECT_EQ("a|b|a", lines(history));
}

TEST(History, unfilteredInsertionKeepsRepeats) {
    CHistory history;
    history.InsertNewEntry("a");
    history.InsertNewEntry("a");
    history.InsertNewEntry(nullptr);
    EXPECT_EQ("a|a", lines(history));
}

TEST(History, doesNotStoreExitOrEmptyLines) {
    CHistory history;
    for (const char* text : {"", "\n", "\r\n", "exit", "exit\n", "exit\r\n"}) insertFiltered(history, text);
    EXPECT_EQ(0, history.count);
    insertFiltered(history, "exit ");
    insertFiltered(history, "EXIT");
    EXPECT_EQ("EXIT|exit ", lines(history));
}

TEST(History, removesOneLineEndFromTheCallersText) {
    CHistory history;
    char text[] = "a\r\n";
    history.FilteredInsertNew(text, false);
    EXPECT_STREQ("a", text);
    insertFiltered(history, "b\n\n");
    EXPECT_EQ("b\n|a", lines(history));
}

TEST(History, splitsAtDoubleSemicolons) {
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

TEST(History, splitPiecesAreNotFiltered) {
    CHistory history;
    insertFiltered(history, "a;;a;;exit", true);
    EXPECT_EQ("exit|a|a", lines(history));
}

TEST(History, withoutSplitKeepsTheWholeLine) {
    CHistory history;
    insertFiltered(history, "1;;2", false);
    EXPECT_EQ("1;;2", lines(history));
}

TEST(History, browsesUpAndDown) {
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

TEST(History, browsesLinesWithAPrefix) {
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

TEST(History, prefixesAreExactAndEmptyOnesMatchAll) {
    CHistory history;
    for (const char* text : {"Abc", "ab"}) history.InsertNewEntry(text);
    EXPECT_FALSE(history.HistLocUpWithMatch("abc"));
    EXPECT_FALSE(history.HistLocUpWithMatch("aB"));
    EXPECT_TRUE(history.HistLocUpWithMatch(""));
    EXPECT_EQ(1, history.location);
    EXPECT_TRUE(history.HistLocUpWithMatch("Abc"));
    EXPECT_EQ(2, history.location);
}

TEST(History, resetAndLastSetTheLocation) {
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

TEST(History, clearLeavesTheLocation) {
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

TEST(History, limitsTheCapacity) {
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

TEST(History, loweringTheCapacityKeepsTheNewestInAgeOrder) {
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

TEST(History, raisingTheCapacityOfAWrappedRingKeepsItsLines) {
    CHistory history;
    history.SetMaxEntries(3);
    fill(history, 1, 5);
    history.SetMaxEntries(6);
    EXPECT_EQ("5|4|3", lines(history));
    fill(history, 6, 9);
    EXPECT_EQ("9|8|7|6|5|4", lines(history));
}

TEST(History, behavesAsAPlainListUnderRandomOperations) {
    const unsigned seed = std::random_device()();
    RecordProperty("seed", std::to_string(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    printf("seed %u\n", seed);
    std::mt19937 random(seed);
    CHistory history;
    std::deque<std::string> model; // newest first
    int capacity = 99;
    int location = 0;
    const char* const prefixes[] = {"", "a", "ab", "b", "ba", "c"};
    auto begins = [&](int k, const std::string& prefix) {
        return model[static_cast<size_t>(k - 1)].compare(0, prefix.size(), prefix) == 0;
    };
    auto insert = [&](const std::string& text) {
        model.push_front(text);
        if (static_cast<int>(model.size()) > capacity) model.pop_back();
    };
    for (int step = 0; step < 100000; step++) {
        const int count = static_cast<int>(model.size());
        std::string text;
        for (auto i = random() % 4; i > 0; i--) text += "ab;"[random() % 3];
        const std::string prefix = prefixes[random() % 6];
        bool expected = false;
        switch (random() % 16) {
        case 0:
        case 1:
        case 2:
        case 3:
            history.InsertNewEntry(text.c_str());
            insert(text);
            break;
        case 4:
        case 5:
            insertFiltered(history, text + (random() % 2 ? "\n" : ""));
            if (!text.empty() && !(count > 0 && model[0] == text)) insert(text);
            break;
        case 6:
            if (!text.empty() && !(count > 0 && model[0] == text + ";;a")) {
                size_t start = 0;
                const std::string whole = text + ";;a";
                for (size_t cut; (cut = whole.find(";;", start)) != std::string::npos; start = cut + 2) {
                    insert(whole.substr(start, cut - start));
                }
                insert(whole.substr(start));
                insertFiltered(history, whole, true);
            }
            break;
        case 7:
        case 8:
            expected = location < count;
            ASSERT_EQ(expected, history.HistLocUp()) << "step " << step;
            if (expected) location++;
            break;
        case 9:
            expected = location >= 2;
            ASSERT_EQ(expected, history.HistLocDown()) << "step " << step;
            if (location >= 1) location--;
            break;
        case 10:
        case 11: {
            int k = location + 1;
            while (k <= count && !begins(k, prefix)) k++;
            expected = k <= count;
            ASSERT_EQ(expected, history.HistLocUpWithMatch(prefix.c_str())) << "step " << step;
            if (expected) location = k;
            break;
        }
        case 12: {
            int k = std::min(location - 1, count);
            while (k >= 1 && !begins(k, prefix)) k--;
            expected = k >= 1;
            ASSERT_EQ(expected, history.HistLocDownWithMatch(prefix.c_str())) << "step " << step;
            if (expected) location = k;
            break;
        }
        case 13:
            random() % 2 ? history.HistLocReset() : history.HistLocLast();
            location = history.location == 0 ? 0 : count;
            break;
        case 14: {
            if (random() % 8 != 0) break;
            const int n = static_cast<int>(random() % 1200) - 5;
            capacity = n < 1 ? 99 : std::min(n, 999);
            history.SetMaxEntries(n);
            while (static_cast<int>(model.size()) > capacity) model.pop_back();
            location = std::min(location, capacity);
            break;
        }
        default:
            if (random() % 500 != 0) break;
            history.Clear();
            model.clear();
        }
        ASSERT_EQ(static_cast<int>(model.size()), history.count) << "step " << step;
        ASSERT_EQ(location, history.location) << "step " << step;
        ASSERT_EQ(capacity, history.maxEntries) << "step " << step;
        const int k = static_cast<int>(random() % 1000) + 1;
        for (int probe : {1, k, history.count}) {
            const bool exists = probe >= 1 && probe <= history.count;
            const char* line = history.GetHistoryStr(probe == 0 ? 1 : probe);
            if (exists)
                ASSERT_EQ(model[static_cast<size_t>(probe - 1)], line) << "step " << step;
            else
                ASSERT_EQ(nullptr, line) << "step " << step;
        }
        if (step % 1000 == 0) {
            for (size_t i = 0; i < model.size(); i++) {
                ASSERT_EQ(model[i], history.GetHistoryStr(static_cast<int>(i) + 1)) << "step " << step;
            }
        }
    }
}

} // namespace
