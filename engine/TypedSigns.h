// SPDX-License-Identifier: MIT
//
// What people type and paste that is not yet what the engine reads.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Signs that come with texts copied from pages become what the engine reads: the minus sign, the signs of
// multiplication and division, raised digits ("10²³" is "10^23"), the letter pi, the arrow, the many blanks,
// and the full-width forms of the ASCII characters. All else stays, also what is no UTF-8.
class TypedSigns {
public:
    // Reads text in UTF-8 that may come in pieces, cut between characters. An object remembers whether the
    // piece before ended in a raised digit.
    std::string Read(std::string_view text);

private:
    bool isRaised = false;
};

// An operator that is typed first applies to the last answer; a minus can also be a sign. This is what it
// does to the entry before it is inserted itself: so many characters at the start become `text`, and the
// cursor stands behind them.
struct HeadChange {
    size_t length;
    const char* text;
};

// The change that the character `typed` makes when the cursor is at `place`, if any. With `minusIsSign` a
// first minus is a sign and the second one puts "ans" in front of it; without, the first one does.
std::optional<HeadChange> changeByOperator(std::string_view entry, size_t place, char typed,
                                           bool minusIsSign);
