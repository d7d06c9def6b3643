// SPDX-License-Identifier: MIT
//
// The interactive prompt: a person types entries at a terminal and is answered until the end of input.
#pragma once

#include "System.h"

class PromptFiles;
class Session;

struct PromptOptions {
    bool isPlain = false;   // lines are read without an editor, and no escape sequence is written
    bool hasColors = false; // of the prompt
};

enum class PromptEnd {
    Ended,     // the person has ended it
    InputLost, // the terminal cannot be read; errno says why
    OutputLost // an answer could not be written; errno says why
};

// Reads entries from the terminal at standard input and lets the session answer them, on the descriptor
// `answers`. Ctrl-C drops what is typed or ends what is evaluated, and the next prompt follows. A signal
// that asks for the end (Interrupt.h) ends it.
PromptEnd runPrompt(Session& session, PromptFiles& files, int answers, const PromptOptions& options,
                    System& system = System::Real());

// Where prompts go when a person types and answers go to `answers`: not into a file that collects them, else
// nowhere (-1).
int promptDescriptor(int answers, System& system = System::Real());
