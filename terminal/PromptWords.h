// SPDX-License-Identifier: MIT
//
// The words of the prompt itself. They begin with ':', which no entry does.
#pragma once

#include "Calculator.h"
#include "SettingsFile.h"

#include <string>
#include <string_view>
#include <vector>

// What the words work on. All of it has to live longer.
struct PromptState {
    ZqCalculator& calc;
    KeptSettings& settings;                  // :set changes them; the caller keeps them
    const std::vector<std::string>& history; // the entries, the oldest first
    int columns = 80;                        // of the screen
};

struct PromptReply {
    enum Kind { TEXT, ERROR, END } kind = TEXT; // END: the person wants to end the program
    std::string text;                           // lines to show
};

// A word is a row of promptWords and a function, which gets what stands behind the word, without blanks
// around it.
struct PromptWord {
    const char* word;     // with its ':'
    const char* argument; // as :help shows it; empty: it takes none
    const char* help;     // what it does
    PromptReply (*run)(const PromptState& state, const std::string& argument);
};

const std::vector<PromptWord>& promptWords();

// Carries out a line that begins with ':'. So many letters of a word as tell it from the others will
// do, in any case.
PromptReply runPromptWord(const PromptState& state, std::string_view line);
