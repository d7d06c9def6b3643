// SPDX-License-Identifier: MIT
//
// The lines a person entered, newest last, in a ring of bounded size, with a position for browsing them.
#pragma once

#include <cstdint>
#include <string_view>

constexpr int32_t HISTORY_SLOTS = 999;
constexpr int32_t HISTORY_DEFAULT_ENTRIES = 99;

class CHistory {
public:
    CHistory() = default; // empty, 99 lines
    virtual ~CHistory();
    CHistory(const CHistory&) = delete;
    CHistory& operator=(const CHistory&) = delete;

    // Stores a copy of the text as the newest line; a full ring loses its oldest line. Null is ignored.
    void InsertNewEntry(const char* text) {
        if (text) Insert(text);
    }

    // Stores a typed line: one trailing line feed and then one trailing carriage return are removed from the
    // caller's text; an empty line, the line "exit" and a repeat of the newest line are not stored. With
    // `split` the pieces between ";;" are stored one by one, empty ones included.
    void FilteredInsertNew(char* text, bool split);

    // The same with `split`, for a text that stays as it is.
    void Record(std::string_view text);

    // k >= 1: the k-th newest line; k < 0: the line at the browsing position. Null when there is no such
    // line. The text stays the history's own.
    const char* GetHistoryStr(int k) const;

    bool HistLocUp();   // one line older; false at the oldest
    bool HistLocDown(); // one line newer; true while a stored line is selected

    // To the next older or newer line that begins with the prefix (exactly, case counts). False, without a
    // move, when there is none; the line being typed is never reached.
    bool HistLocUpWithMatch(const char* prefix) { return Browse(prefix, 1); }
    bool HistLocDownWithMatch(const char* prefix) { return Browse(prefix, -1); }

    void HistLocReset() { location = 0; } // to the line being typed
    void HistLocLast();                   // to the oldest line, out of prefix matching

    // Changes the capacity: at most 999, a value below 1 means 99. The newest lines stay.
    void SetMaxEntries(int n);

    // Removes all lines. The browsing position stays.
    void Clear();

    char* entries[HISTORY_SLOTS] = {}; // owned lines; the first maxEntries slots are used
    int32_t maxEntries = HISTORY_DEFAULT_ENTRIES;
    int32_t count = 0;     // stored lines
    int32_t next = 0;      // slot of the next line
    int32_t location = 0;  // browsing position: 0 the line being typed, k the k-th newest line
    bool matching = false; // in prefix-matching browsing

private:
    void Insert(std::string_view text);
    bool IsToBeStored(std::string_view text) const;
    bool Browse(const char* prefix, int32_t step);
    int32_t SlotOf(int32_t k) const { return next - k < 0 ? next - k + maxEntries : next - k; } // k <= count
};
