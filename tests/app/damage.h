// SPDX-License-Identifier: MIT
//
// Damage by chance to the bytes of a file, for tests that must survive it.
#pragma once

#include <random>
#include <string>

// The text, which is not empty, with one to eight bytes changed, cut off somewhere, or with a piece of it
// missing or doubled.
inline std::string damaged(std::string text, std::mt19937& random) {
    const auto below = [&random](size_t end) { return static_cast<size_t>(random() % end); };
    const size_t place = below(text.size());
    switch (below(6)) {
    case 0: return text.substr(0, place);
    case 1: return text.erase(place, below(20) + 1);
    case 2: return text.insert(place, text.substr(below(text.size()), below(40)));
    case 3: // one bit
        text[place] = static_cast<char>(text[place] ^ (1 << below(8)));
        return text;
    default:
        for (size_t count = below(8) + 1; count > 0; --count) {
            text[below(text.size())] = static_cast<char>(below(256));
        }
        return text;
    }
}
