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
    int Run(const std::string& typed);
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

// --- What the commands that the engine hands to its front end (a status of STATUS_COMMAND) ask for ---

// Whether the command is the word with a number behind it, as in pause500 or pause0x10; then `number` is that
// one.
bool commandHasNumber(std::string_view command, std::string_view word, long& number);

// How long pause<n> waits, in milliseconds: n, but a second where n is negative or above five seconds.
long pauseLength(long number);

// How long echo<n> waits between two characters, in milliseconds: for n characters a second. 0, not at all,
// where n is 0, negative or above 100.
long waitBetweenCharacters(long number);
