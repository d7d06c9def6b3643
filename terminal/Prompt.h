// SPDX-License-Identifier: MIT
//
// The interactive prompt: a person types entries at a terminal and is answered until the end of input.
#pragma once

class Session;

struct PromptOptions {
    bool isPlain = false; // lines are read without an editor, and no escape sequence is written
};

enum class PromptEnd {
    Ended,     // the person has ended it
    InputLost, // the terminal cannot be read; errno says why
    OutputLost // an answer could not be written; errno says why
};

// Reads entries from the terminal at standard input and lets the session answer them, on the descriptor
// `answers`. Ctrl-C drops what is typed or ends what is evaluated, and the next prompt follows.
PromptEnd runPrompt(Session& session, int answers, const PromptOptions& options);
