// SPDX-License-Identifier: MIT
#include "Brackets.h"

namespace {

// 1 opens, -1 closes, 0 is no bracket.
int turnOf(char16_t c) {
    if (std::u16string_view(u"([{").find(c) != std::u16string_view::npos) return 1;
    return std::u16string_view(u")]}").find(c) != std::u16string_view::npos ? -1 : 0;
}

std::optional<size_t> partner(std::u16string_view entry, size_t place) {
    const int turn = turnOf(entry[place]);
    int depth = 0;
    for (size_t i = place; i < entry.size(); i += static_cast<size_t>(turn)) { // below 0 it is huge
        depth += turnOf(entry[i]);
        if (depth == 0) return i;
    }
    return std::nullopt;
}

} // namespace

std::optional<size_t> partnerOfBracketAt(std::u16string_view entry, size_t cursor) {
    if (cursor > 0 && cursor <= entry.size() && turnOf(entry[cursor - 1]) != 0)
        return partner(entry, cursor - 1);
    if (cursor < entry.size() && turnOf(entry[cursor]) != 0) return partner(entry, cursor);
    return std::nullopt;
}
