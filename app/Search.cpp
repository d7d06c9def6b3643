// SPDX-License-Identifier: MIT
#include "Search.h"

#include "Helpers_String.h"

#include <algorithm>
#include <utility>

namespace {

// Whatever the locale: in a Turkish one the small letter of I has no dot.
char16_t small(char16_t c) {
    return c < 0x80 ? static_cast<char16_t>(lowerCase(static_cast<char>(c))) : c;
}

bool beginsAt(const std::u16string& text, size_t at, const std::u16string& wanted) {
    return std::equal(wanted.begin(), wanted.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                      [](char16_t a, char16_t b) { return small(a) == small(b); });
}

bool contains(const char* line, const std::u16string& wanted) {
    std::u16string text;
    for (; *line; ++line) text += static_cast<unsigned char>(*line);
    for (size_t at = 0; at + wanted.size() <= text.size(); ++at) {
        if (beginsAt(text, at, wanted)) return true;
    }
    return false;
}

} // namespace

void Search::Begin(In where, std::string entry, EntryRange selected) {
    in = where;
    draft = std::move(entry);
    selection = selected;
    wanted.clear();
    place.reset();
    isFound = true;
}

Search::Step Search::Press(const KeyPress& key) {
    direction = Direction::Same;
    const KeyAction action = actionOf(key);
    const bool isAgain = action == KeyAction::Find || action == KeyAction::FindEarlier;
    switch (key.code) {
    case KEY_ESCAPE: return Step::GiveUp;
    case KEY_RETURN:
    case KEY_ENTER: return Step::Keep;
    case KEY_BACKSPACE:
        if (!wanted.empty()) wanted.pop_back();
        place.reset();
        return Step::Look;
    case KEY_UP: direction = Direction::Older; return Step::Look;
    case KEY_DOWN: direction = Direction::Newer; return Step::Look;
    default: break;
    }
    if (isAgain) {
        direction = Direction::Older;
        return Step::Look;
    }
    const bool isText = key.typed >= u' ' && key.typed != 0x7f && (key.typed < 0xf700 || key.typed > 0xf8ff);
    if (!isText || (key.held & (CONTROL_KEY | COMMAND_KEY)) != 0) return Step::Leave;
    wanted += key.typed;
    return Step::Look;
}

std::optional<EntryRange> Search::FindIn(const std::u16string& text) {
    isFound = true;
    if (wanted.empty() || wanted.size() > text.size()) {
        isFound = wanted.empty();
        return std::nullopt;
    }
    const size_t last = text.size() - wanted.size();
    const bool isNewer = direction == Direction::Newer;
    // From the last match on, or behind it; the newest match comes first.
    size_t at = place && *place <= last ? *place : last;
    const bool skips = place && direction != Direction::Same;
    for (bool isFirst = skips;; isFirst = false) {
        if (!isFirst && beginsAt(text, at, wanted)) {
            place = at;
            return EntryRange{at, wanted.size()};
        }
        if (at == (isNewer ? last : 0)) break;
        at = isNewer ? at + 1 : at - 1;
    }
    isFound = false;
    if (!skips) return std::nullopt;
    return EntryRange{*place, wanted.size()};
}

int Search::FindIn(const CHistory& history) {
    isFound = true;
    if (wanted.empty()) return 0;
    const bool isNewer = direction == Direction::Newer;
    const int start = place ? static_cast<int>(*place) : 1;
    const bool skips = place && direction != Direction::Same;
    for (int k = skips ? start + (isNewer ? -1 : 1) : start; k >= 1; k += isNewer ? -1 : 1) {
        const char* const line = history.GetHistoryStr(k);
        if (!line) break;
        if (!contains(line, wanted)) continue;
        place = static_cast<size_t>(k);
        return k;
    }
    isFound = false;
    return skips ? start : 0;
}

std::u16string Search::Text() const {
    return (in == In::Transcript ? u"Find: " : u"Earlier entry: ") + wanted +
           (isFound ? u"" : u"  (not found)");
}
