// SPDX-License-Identifier: MIT
//
// The names that can stand at a place of an entry, and the parts that a front end makes completions of its
// own words from.
#pragma once

#include "Settings.h"

#include <cstddef>
#include <string>
#include <vector>

class ZqCalculator;

struct Completion {
    size_t start = 0;                    // the candidates replace what stands from here to the cursor
    std::vector<std::string> candidates; // in the order of their bytes, none twice
};

// What a person may want at the cursor, by place: units and prefixes behind "->"; at the start of a statement
// command words, functions and variables; behind a command word its arguments; elsewhere functions, each with
// its open parenthesis, and variables. Nothing within a number or a comment. Upper and lower case are the
// same in functions and command words.
Completion completionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc);

// An entry up to the cursor, taken apart.
struct EntryPlace {
    size_t start = 0; // of the word
    std::string head; // the statement up to the word, without the blanks in front
    std::string word; // what is to be completed
};

EntryPlace entryPlace(const std::string& entry, size_t cursor);

// The candidates in order, none twice.
Completion completionOf(const EntryPlace& place, std::vector<std::string> candidates);

// Adds units and prefixes that go on from the word. A name behind a prefix counts with it: "kilom" goes on as
// "kilometer".
void addUnits(const EntryPlace& place, std::vector<std::string>& found);

// Adds the next word of each phrase that goes on from here, with the blank behind it.
void addPhrases(const EntryPlace& place, const std::vector<std::string>& phrases,
                std::vector<std::string>& found);

// Adds the phrases of the start, a blank, and each word that can stand behind it; the start and a blank alone
// when these are not known.
void addChoices(std::vector<std::string>& phrases, const std::string& start, const SettingChoices& choices);
