// SPDX-License-Identifier: MIT
#include "History.h"

#include "Helpers_String.h"

#include <algorithm>
#include <cstring>

CHistory::~CHistory() {
    Clear();
}

void CHistory::Insert(std::string_view text) {
    char*& slot = entries[next];
    if (slot && strlen(slot) >= text.size()) {
        memmove(slot, text.data(), text.size()); // the text may be the slot's own
        slot[text.size()] = '\0';
    } else {
        const char* const oldest = slot;
        slot = strDuplicate(text);
        delete[] oldest;
    }
    if (count < maxEntries) count++;
    next = next + 1 < maxEntries ? next + 1 : 0;
}

bool CHistory::IsToBeStored(std::string_view text) const {
    return !text.empty() && text != "exit" && (count == 0 || text != GetHistoryStr(1));
}

void CHistory::FilteredInsertNew(char* text, bool split) {
    if (!text) return;
    const std::string_view line = withoutLineEnd(text);
    if (split)
        Record(text);
    else if (IsToBeStored(line))
        Insert(line);
    text[line.size()] = '\0';
}

void CHistory::Record(std::string_view text) {
    text = withoutLineEnd(text);
    if (!IsToBeStored(text)) return;
    for (size_t cut; (cut = text.find(";;")) != std::string_view::npos; text.remove_prefix(cut + 2))
        Insert(text.substr(0, cut));
    Insert(text);
}

const char* CHistory::GetHistoryStr(int k) const {
    if (k < 0) k = location;
    if (k < 1 || k > count) return nullptr;
    return entries[SlotOf(k)];
}

bool CHistory::HistLocUp() {
    if (location >= count) return false;
    location++;
    return true;
}

bool CHistory::HistLocDown() {
    if (location < 1) return false;
    location--;
    return location > 0;
}

bool CHistory::Browse(const char* prefix, int32_t step) {
    matching = true;
    const int32_t from = step < 0 ? std::min(location, count + 1) : location; // it may be beyond the lines
    for (int32_t k = from + step; k >= 1 && k <= count; k += step) {
        if (strncmp(GetHistoryStr(k), prefix, strlen(prefix)) != 0) continue;
        location = k;
        return true;
    }
    return false;
}

void CHistory::HistLocLast() {
    location = count;
    matching = false;
}

void CHistory::SetMaxEntries(int n) {
    n = n < 1 ? HISTORY_DEFAULT_ENTRIES : std::min(n, HISTORY_SLOTS);
    std::rotate(entries, entries + next, entries + maxEntries); // the newest line into the last slot
    const int32_t kept = std::min(count, n);
    std::for_each(entries + maxEntries - count, entries + maxEntries - kept,
                  [](char*& line) { delete[] line; });
    std::rotate(entries, entries + maxEntries - kept, entries + maxEntries);
    std::fill(entries + kept, std::end(entries), nullptr);
    count = kept;
    next = kept % n; // a full ring goes on at its oldest line, slot 0
    location = std::min(location, n);
    maxEntries = n;
}

void CHistory::Clear() {
    for (int32_t k = 1; k <= count; k++) {
        char*& line = entries[SlotOf(k)];
        delete[] line;
        line = nullptr;
    }
    count = 0;
    next = 0;
    matching = false;
}
