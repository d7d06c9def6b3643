// SPDX-License-Identifier: MIT
//
// The record of an answer: of a statement that was evaluated, shown or not, or of disp.
#pragma once

#include "Settings.h"
#include "qfloat.h"

#include <string>

struct Answer {
    std::string entry; // the line that was typed, or that an empty one repeated
    std::string name;  // the variable that has the value
    qfloat value = {};
    EntrySettings settings; // in which it was written
    std::string shown;      // the value as it was written; empty: there has been no answer yet

    // Records an answer to the line, written as this text in the settings of now.
    void Keep(const std::string& line, const char* variable, const qfloat number, const EntrySettings& now,
              std::string text);

    // The value in base 10, 16 or 2, otherwise in the settings of now. Empty when there is none.
    std::string In(int base, const EntrySettings& now) const;

    // The value as it was shown, but so that it reads back in the settings of now: with their decimal mark,
    // in adding-machine entry with the sign behind it, without grouping marks and without two's complement,
    // which reads as another number. Where it would have more than the 104 digits that are read, it is
    // decimal with an exponent. Empty when there is none.
    std::string Plain(const EntrySettings& now) const;
};
