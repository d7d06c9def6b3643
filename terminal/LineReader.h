// SPDX-License-Identifier: MIT
//
// Lines from a descriptor in bounded memory.
#pragma once

#include <cstddef>
#include <string>

class LineReader {
public:
    enum class Status {
        Line,  // a line was read
        End,   // nothing is left
        Failed // the descriptor cannot be read; errno says why
    };

    // Reads from `descriptor`, which stays the caller's. Of each line at most `keep` bytes are kept.
    LineReader(int descriptor, std::size_t keep) : descriptor_(descriptor), keep_(keep) {}

    // Puts the next line into `line`, without its LF or CR LF. Of a line longer than `keep` its first `keep`
    // bytes are given and the rest is read and dropped, whatever its length. Bytes behind the last LF are a
    // line too.
    Status next(std::string& line);

private:
    // Makes at least one unread byte available.
    Status fill();

    // Drops the CR of a CR LF, unless it was the byte of an overlong line at which keeping stopped.
    static void dropCarriageReturn(std::string& line, bool complete);

    int descriptor_;
    std::size_t keep_;
    std::size_t start_ = 0; // block_[start_, end_) is unread
    std::size_t end_ = 0;
    char block_[65536] = {};
};
