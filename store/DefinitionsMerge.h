// SPDX-License-Identifier: MIT
//
// Two programs may have the definitions file open, two windows, say. Each writes what it has; what the
// other one defined meanwhile stays in the file.
#pragma once

#include "DefinitionRecords.h"
#include "System.h"

#include <map>
#include <set>
#include <string>
#include <system_error>

class DefinitionsMerge {
public:
    // The definitions in this text, whatever their values, are no other program's: they were read or written
    // here. `unread` are lines that were not read, for which we have another line: they stay as long as we
    // have that.
    void Know(const std::string& text, std::map<std::string, std::string> unread = {});

    // Definitions that are in `after` and not in `before`, and were never known here, are kept elsewhere:
    // their lines are written as little as if they were not there, until they say something else. Both texts
    // are as definitionsText makes them.
    void LeaveOut(const std::string& before, const std::string& after);

    // `ours` with the definitions of `theirs`, the text that is in the file now, that are in neither and were
    // never known here. Each stands at the end of its section. What was deleted here stays deleted, of a name
    // in both our line stays. `ours` is as definitionsText makes it and is known
    // from now on.
    std::string Merge(const std::string& ours, const std::string& theirs);

    // The definitions of `theirs` that Merge would add to `ours`, as a text like it. From now on they are
    // known.
    std::string TakeForeign(const std::string& ours, const std::string& theirs);

    // Whether the history in the file is other programs' and stays; otherwise ours takes its place.
    bool leavesHistory = false;

    // Merges `ours` with what is in the file at `path` and writes it there. Of programs that do so at the
    // same moment one waits for the other. Returns whether it is there now; otherwise the file is as it was,
    // and `reason` says why.
    bool Write(const std::string& path, const std::string& ours, std::error_code& reason,
               System& system = System::Real());

private:
    using Lines = std::map<std::string, std::string>; // by what they define

    Lines PresentIn(const DefinitionsText& ours) const;
    bool IsForeign(const std::string& key, const std::string& line, const Lines& present) const;
    Sections ForeignIn(const DefinitionsText& others, const Lines& present) const;

    std::set<std::string> known;
    std::set<std::string> leftOut; // lines
    std::map<std::string, std::string> twins;
};
