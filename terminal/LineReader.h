// SPDX-License-Identifier: MIT
//
// Lines from a descriptor in bounded memory.
#pragma once

#include "System.h"

#include <cstddef>
#include <string>

class LineReader {
public:
    enum class Status {
        Line,  // a line was read
        End,   // nothing is left
        Failed // the descriptor cannot be read; errno says why
    };

    // Reads from `from`, which stays the caller's. Of each line at most `length` bytes are kept.
    // cppcheck-suppress uninitMemberVar ; the block is touched as far as there is input
    LineReader(int from, size_t length, System& calls = System::Real())
        : system(calls), descriptor(from), keep(length) {}

    // Puts the next line into `line`, without its LF or CR LF. Of a line longer than that its first
    // bytes are given and the rest is read and dropped, whatever its length. Bytes behind the last LF are a
    // line too.
    Status Next(std::string& line);

    // Whether Next has a whole line already and need not read.
    bool HasLine() const;

    // Whether reading would not have to wait.
    bool IsReady() const;

private:
    // Makes at least one unread byte available.
    Status Fill();

    // Drops the CR of a CR LF, unless it was the byte of an overlong line at which keeping stopped.
    static void DropCarriageReturn(std::string& line, bool complete);

    System& system;
    int descriptor;
    size_t keep;
    size_t start = 0; // block[start, end) is unread
    size_t end = 0;
    char block[65536];
};
