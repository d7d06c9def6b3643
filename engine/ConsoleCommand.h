// SPDX-License-Identifier: MIT
//
// What the engine asks of its front end when an entry is answered with STATUS_COMMAND, as a value.
#pragma once

#include <string_view>

struct ConsoleCommand {
    enum class Kind {
        None,         // no command of the engine's
        Clear,        // clear the console
        Exit,         // end the program
        Pause,        // wait so many milliseconds
        TypeOut,      // show echoText, waiting so many milliseconds between two characters
        ReplaceEntry, // put echoText in the place of the entry
        Convert,      // ask the online service the query in echoText
        OpenWebPage
    };
    Kind kind = Kind::None;
    long milliseconds = 0; // of Pause and TypeOut
};

// Reads the message of such an answer: "clear", "exit", "pause<n>", "echo<n>", "echorep", "convert" or
// "gospel". A pause lasts n milliseconds, but a second where n is negative or above five seconds. Characters
// come n a second, and without waiting where n is 0, negative or above 100.
ConsoleCommand consoleCommand(std::string_view message);
