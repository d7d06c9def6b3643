// SPDX-License-Identifier: MIT
//
// What an entry may change, kept while it runs: an interrupted entry changes nothing.
#ifndef TALLYQUILL_ENTRYSNAPSHOT_H
#define TALLYQUILL_ENTRYSNAPSHOT_H

#include "Calculator.h"

#include <functional>
#include <string>
#include <vector>

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
    // Has Restore put back what the setting is now.
    template <class T> void Keep(T& setting) {
        settings.emplace_back([&setting, value = setting] { setting = value; });
    }

    ZqCalculator& calc;
    std::string lastAnswer;
    std::vector<std::function<void()>> settings;
};

#endif
