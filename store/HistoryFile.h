// SPDX-License-Identifier: MIT
//
// The entries of the prompt, a line each, the oldest first. Programs that run at the same time append to the
// one file; none of their lines is lost.
#pragma once

#include "System.h"

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

class HistoryFile {
public:
    static constexpr size_t LINES = 10000;

    // The file need not exist, nor its folder, which is made for the first line.
    explicit HistoryFile(std::string where, System& calls = System::Real())
        : path(std::move(where)), system(calls) {}

    // The newest LINES of its lines that can be entries (no control characters but tabs). `reason`, when
    // given, receives why it cannot be read; nothing when there is none.
    std::vector<std::string> Read(std::error_code* reason = nullptr);

    // Appends a line, which holds no line feed. False when that failed, and `reason` says why.
    bool Append(const std::string& line, std::error_code& reason);

    // Removes the oldest lines when there are more than LINES.
    void Shorten();

private:
    std::string path;
    System& system;
    bool isCut = false; // the last line in it has no end
};
