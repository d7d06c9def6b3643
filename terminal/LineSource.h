// SPDX-License-Identifier: MIT
//
// Where the prompt's lines come from, and what whoever reads them asks of the prompt.
#pragma once

#include "Completion.h"

#include <string>
#include <vector>

class PromptHost {
public:
    virtual ~PromptHost() = default;

    // What stands in front of each line. An editor gets it with marks around what takes no room.
    virtual std::string PromptText(bool forEditor) const = 0;

    // Called when nobody types. Does what is due, and returns in how many milliseconds something will be: -1
    // never.
    virtual long DoDue() = 0;

    // The answer to show below the entry while it is typed; empty when there is none to show.
    virtual std::string PreviewOf(const std::string& entry) = 0;

    // The names that fit at the cursor.
    virtual Completion CompletionsAt(const std::string& entry, size_t cursor) = 0;

    // Whether a minus that is typed first is a sign.
    virtual bool MinusIsSign() const = 0;
};

class LineSource {
public:
    enum class Status {
        Line,     // a line was typed; it is empty when someone pressed Return alone
        Pasted,   // a line of a pasted text of several lines
        Blank,    // an empty line that came together with other input, as in a pasted text
        Cut,      // a line that is too long for the terminal, which may have dropped its end
        Canceled, // Ctrl-C came (Interrupt.h): what was typed or pasted is dropped
        End,      // end of input (Ctrl-D on an empty line), a hang-up or a signal that asks for the end
        Failed    // the terminal cannot be read; errno says why
    };

    virtual ~LineSource() = default;

    // Shows the prompt and puts the next line into `line`, without its line end. When the program goes on
    // after a stop, the prompt and what was typed are shown again.
    virtual Status Next(std::string& line) = 0;

    // So many columns the source has put in front of the prompt of the last line.
    virtual int PromptIndent() const { return 0; }

    // The lines that may be brought back, from the oldest on; and one more. The last one is not stored again.
    virtual void SetHistory(const std::vector<std::string>&) {}
    virtual void AddToHistory(const std::string&) {}
};
