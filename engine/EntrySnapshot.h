// SPDX-License-Identifier: MIT
//
// What an entry may change, kept while it runs: an interrupted entry changes nothing.
#ifndef TALLYQUILL_ENTRYSNAPSHOT_H
#define TALLYQUILL_ENTRYSNAPSHOT_H

#include "Calculator.h"

class EntrySnapshot {
public:
    // Keeps variables, the lines of units and settings, and has the lists of functions and units record their
    // changes.
    explicit EntrySnapshot(const ZqCalculator& calc);
    ~EntrySnapshot();
    EntrySnapshot(const EntrySnapshot&) = delete;
    EntrySnapshot& operator=(const EntrySnapshot&) = delete;

    // Puts everything back.
    void Restore(ZqCalculator& calc) const;

private:
    struct Variable {
        std::string name;
        qfloat value;
    };

    void RestoreUnits(ZqCalculator& calc) const;

    std::vector<Variable> variables;
    std::vector<std::string> units;
    std::string lastAnswer;
    std::string lastName;
    bool hasLastName;
    bool degreeMode;
    int32_t sciMode;
    int32_t sigFigs;
    bool european;
    bool histStack;
    int32_t displayBase;
    bool gospelShown;
};

#endif
