// SPDX-License-Identifier: MIT
//
// Scripts, text files of entries, a line each: reading one, taking turns, and the record that one is saved
// from.
#pragma once

#include "Calculator.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

// Reads a script, entry by entry.
class Script {
public:
    // The bytes of the file. Each line is UTF-8 or, when it is not, ISO Latin-1.
    explicit Script(std::string bytes);

    // The next entry, in ISO Latin-1 without its line feed; what that lacks is a question mark. Comments are
    // left out, and so are blank lines, which only set lines apart: as entries they would repeat the one
    // before. False at the end.
    bool Next(std::string& entry);

private:
    std::string text;
    size_t place = 0; // of the next line
};

// One script is replayed at a time. Those that come meanwhile wait and run in their order; when the window
// closes, none of them does.
struct ScriptTurns {
    bool isReplaying = false;
    std::deque<std::string> waiting; // paths
};

// The entries that ran since the console was cleared. By its look alone, a line of output that begins like a
// prompt would be taken for one.
class EntryRecord {
public:
    void Add(const std::string& entry); // a line in UTF-8; an empty one is left out
    void Clear() { entries.clear(); }

    // A script that repeats them, in UTF-8: a header that can set the engine's settings, the entries, and
    // `typed`, which stands at the prompt.
    std::string Script(const ZqCalculator& engine, const std::string& typed) const;

private:
    std::vector<std::string> entries;
};
