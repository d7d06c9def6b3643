// SPDX-License-Identifier: MIT
//
// Two programs may have the definitions file open, two windows, say. What one of them defines, changes or
// deletes counts for both: of each name that was not changed here, the file's definition counts. Only when
// both change the same name, the one that writes last decides.
//
// Texts of ours are as definitionsText makes them, texts of theirs are what is in the file.
#pragma once

#include "DefinitionRecords.h"
#include "System.h"

#include <set>
#include <string>
#include <system_error>

class DefinitionsMerge {
public:
    // What another program changed: lines of the file to take in, and lines of ours to delete before that.
    struct Foreign {
        std::set<std::string> keys; // of all changes
        std::string defined;
        std::string deleted;
    };

    // The file was read: it held `theirs`, and `ours` is what there is now. Its lines with the keys in
    // `refused` cannot be read by anyone: they are not written again.
    void Know(const std::string& theirs, const std::string& ours, const std::set<std::string>& refused = {});

    // Definitions that are in `after` and not in `before`, and were not in the file, are kept elsewhere:
    // their lines are written as little as if they were not there, until they say something else. But a
    // primitive unit is written that a unit which is written uses.
    void LeaveOut(const std::string& before, const std::string& after);
    const std::set<std::string>& LeftOut() const { return leftOut; } // lines with their ends

    // What is to be written. A line of the file that counts stays as it stands there; new ones are at the
    // end of their section. Each program has its own `ans`. Where `theirs` is cut off nothing
    // counts as changed in it, and where it has no `ans`, nothing as deleted: no program left it so.
    std::string Merge(const std::string& ours, const std::string& theirs);

    // Whether it is known without a look at ours that TakeForeign has nothing to tell: the text of the file
    // is as it was read or written here.
    bool IsSettled(const std::string& theirs) const { return theirs == settled; }

    // What Merge takes from `theirs` and has not been told of before. Whoever has carried it out calls
    // Took with what there is then, so that it does not count as changed here.
    Foreign TakeForeign(const std::string& ours, const std::string& theirs);
    void Took(const Foreign& foreign, const std::string& ours);

    // Whether the history in the file is other programs' and stays; otherwise ours takes its place.
    bool leavesHistory = false;

    // Merges `ours` with what is in the file at `path` and writes it there. Of programs that do so at the
    // same moment one waits for the other. Returns whether it is there now; otherwise the file is as it was,
    // and `reason` says why.
    bool Write(const std::string& path, const std::string& ours, std::error_code& reason,
               System& system = System::Real());

private:
    struct Theirs {
        explicit Theirs(const std::string& content);

        DefinitionsText text;
        DefinitionLines lines;
        bool isWhole; // what it lacks was deleted: every program writes its `ans`
    };

    // What is written, and its lines that are not ours.
    struct Merged {
        std::string text;
        DefinitionLines others;
    };

    std::string WrittenOf(const std::string& ours) const;
    bool Agree(const std::string& written, const std::string& theirs);
    void TakeApart();
    Merged MergedOf(const std::string& written, const std::string& inFile, DefinitionLines& mine);
    const std::string& Choose(const std::string& key, const std::string& mine, const Theirs& theirs) const;
    void Wrote(Merged&& written, DefinitionLines&& now);

    std::string settled;           // a text of the file that has the lines of `file`, or nothing
    bool isAgreed = false;         // ours was the same: `present` and `file` are not made from it yet
    DefinitionLines present;       // ours, when the file was last read or written
    DefinitionLines file;          // the file's then, except what TakeForeign is still to tell
    std::set<std::string> leftOut; // lines
};
