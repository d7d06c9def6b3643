// SPDX-License-Identifier: MIT
//
// How a run of the program ends, and what it says then.
#pragma once

#include "System.h"

#include <string>

enum ExitStatus {
    ALL_ANSWERED = 0,
    SOME_REFUSED = 1, // an entry failed, or its answer is beyond the range
    BAD_USAGE = 2,    // the options cannot be understood
    FILE_LOST = 3,    // a file, the input or the output cannot be read or written, or memory ran out
};

// Tells the person on standard error what is wrong.
void complain(const std::string& text, System& system = System::Real());

// Answers cannot be delivered; `error` says why. A reader that has gone away, as head does, needs no message.
// Returns FILE_LOST.
int outputLost(int error, System& system = System::Real());

// The input of this name cannot be read; errno says why. Returns FILE_LOST.
int inputLost(const std::string& name, System& system = System::Real());
