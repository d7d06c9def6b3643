// SPDX-License-Identifier: MIT
//
// The way of answers to their descriptor.
#pragma once

#include "System.h"

#include <string>
#include <string_view>

class AnswerStream {
public:
    // Writes each text at once, or collects texts and writes blocks of them. The descriptor stays the
    // caller's.
    AnswerStream(int to, bool inBlocks, System& calls = System::Real())
        : system(calls), descriptor(to), isCollecting(inBlocks) {}

    int Descriptor() const { return descriptor; }

    // False when that failed; errno says why.
    bool Write(std::string_view text);

    // Writes what was collected. False when that failed; errno says why. What could not be written is
    // dropped.
    bool Flush();

private:
    System& system;
    int descriptor;
    bool isCollecting;
    std::string collected;
};
