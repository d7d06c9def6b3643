// SPDX-License-Identifier: MIT
//
// What an entry may change, kept while it runs: an interrupted entry changes nothing.
#ifndef TALLYQUILL_ENTRYSNAPSHOT_H
#define TALLYQUILL_ENTRYSNAPSHOT_H

#include "Calculator.h"

class EntrySnapshot {
public:
    // Keeps the settings and has variables, functions and units record their changes. The calculator has to live
    // longer.
    explicit EntrySnapshot(ZqCalculator& calculator);
    ~EntrySnapshot();
    EntrySnapshot(const EntrySnapshot&) = delete;
    EntrySnapshot& operator=(const EntrySnapshot&) = delete;

    // Puts everything back.
    void Restore();

private:
    ZqCalculator& calc;
    node* target;
    std::string lastAnswer;
    char* lastName; // of a variable, which comes back as the same term
    bool degreeMode;
    int32_t sciMode;
    int32_t sigFigs;
    bool european;
    bool histStack;
    int32_t displayBase;
    bool gospelShown;
};

#endif
