// SPDX-License-Identifier: MIT
//
// Help at the prompt: a mark under what could not be understood, and a line for the traps that people of
// other calculators fall into.
#pragma once

#include "Calculator.h"

#include <cstddef>
#include <string>
#include <string_view>

// Blanks and carets that mark the part of the entry above, which was typed behind a prompt of `promptWidth`
// columns in a terminal of `columns`, with a line feed. Empty when the part is not known or does not end in
// the last row that the entry takes.
std::string markUnder(std::string_view entry, TextRange range, int promptWidth, int columns);

// What may help after this entry, which `calc` has just answered with an error: one line with its line feed,
// or nothing.
std::string hintAfterError(std::string_view entry, ZqCalculator& calc);

// What is worth knowing about an entry that was answered, but is read otherwise elsewhere. Each note is given
// once.
class Notes {
public:
    // One line with its line feed, or nothing.
    std::string For(std::string_view text);

private:
    bool toldPowers = false;
    bool toldMinus = false;
};

// The one of `names` that `name` was probably meant to be: equal except for the case of letters, or with one
// letter (two of more than four, and of four behind the right first one) wrong, missing, too many or
// exchanged with its neighbor. Of equals one that `name` begins with, or the first. Empty for none.
std::string nearestName(std::string_view name, const std::vector<std::string>& names);
