// SPDX-License-Identifier: MIT
//
// The names that can stand at a place of an entry.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

class ZqCalculator;

struct Completion {
    size_t start = 0;                    // the candidates replace what stands from here to the cursor
    std::vector<std::string> candidates; // in the order of their bytes, none twice
};

// What a person may want at the cursor, by place: units and prefixes behind "->"; at the start of a statement
// command words, functions and variables; behind a command word its arguments; behind ':' the prompt's words
// and theirs; elsewhere functions, each with its open parenthesis, and variables. Upper and lower case are
// the same in functions and command words.
Completion completionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc);
