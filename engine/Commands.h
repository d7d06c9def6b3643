// SPDX-License-Identifier: MIT
//
// The command words: statements that are carried out instead of computed.
#pragma once

#include "EntryContext.h"

#include <string>
#include <string_view>
#include <vector>

class Definitions;
struct Answer;
struct CommandText;

struct Commands : EntryContext {
    Answer& answer;
    NamedTerms& unitLines;
    Definitions& definitions;
    Undo& undo;

    bool isGospelShown = false; // the next "gospel" opens the page

    static constexpr int NO_COMMAND = 0;

    // Carries a statement out. Returns its status, or NO_COMMAND when it is none.
    int Run(std::string_view typed);
};

// A command word is a row of commandTable and a function.
struct Command {
    enum Match {
        WORD,          // the first word is this one
        WORD_ARGUMENT, // so it is, and something follows
        NUMBER,        // the word, then a number, blanks between them or not
        EXACT,         // this is the whole statement
        SETTING,       // the command of a setting: its words and their help are in the table SETTINGS
        FUNCTION       // the whole statement is the name of a function
    };

    const char* word;
    Match match;
    const char* usage; // examples as in the guide, with commas between them; null: another word for a command
    const char* help;  // what they do; null: the next row tells it
    int (*run)(Commands& commands, const CommandText& text); // returns a status
};

// In the order in which they are tried; the first match wins.
const std::vector<Command>& commandTable();
