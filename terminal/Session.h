// SPDX-License-Identifier: MIT
//
// One run of the terminal console: entries go to the engine, what it answers goes to the right stream.
#pragma once

#include "Calculator.h"

#include <string_view>

class Session {
public:
    enum class Outcome {
        Answered,  // the entry was evaluated or its command carried out
        Refused,   // the entry was answered with an error
        Ended,     // the entry was the exit command
        OutputLost // the answer could not be written; errno says why
    };

    // Answers are written to the descriptor `answers`, errors to `errors`. Both stay the caller's.
    Session(int answers, int errors);

    // Evaluates one entry without line end and shows what the engine answers. An entry that is too long or no
    // text is refused without reaching the engine.
    Outcome run(std::string_view entry);

    // Whether any entry so far was refused.
    bool anyRefused() const { return anyRefused_; }

    // Carries out a command that the engine hands to its front end: exit; clear, which does nothing unless
    // answers go to a terminal that understands escape sequences. Any other command is refused.
    Outcome carryOut(std::string_view command);

private:
    Outcome refuse(std::string_view message);
    bool show(std::string_view text);

    int answers_;
    int errors_;
    bool anyRefused_ = false;
    ZqCalculator calc_;
};
