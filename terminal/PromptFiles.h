// SPDX-License-Identifier: MIT
//
// What the prompt keeps from one run to the next: the definitions and settings, which it shares with the
// window (Keeper.h), and its own entries (HistoryFile.h). Another program may write the same files meanwhile.
#pragma once

#include "HistoryFile.h"
#include "Keeper.h"
#include "SettingsFile.h"

#include <map>
#include <string>
#include <vector>

class PromptFiles {
public:
    explicit PromptFiles(ZqCalculator& theCalculator, System& calls = System::Real());

    // Reads the files into the calculator. Without it nothing is read and nothing is written. Returns what is
    // to be said to the person, or nothing.
    std::string Open();

    // Definitions that the calculator has and that are not in `before` come from elsewhere and are not kept
    // (Keeper.h).
    void LeaveOut(const std::string& before) { keeper.LeaveOut(before, calc); }

    // The settings, those of the files included; whoever changes one here and in the calculator calls
    // NoteChange. One that an entry changed is here behind EntryDidRun.
    KeptSettings& Settings() { return settings; }
    int ValueOf(const char* key) const { return settings.numbers.at(key); }
    void NoteChange();

    // The entries, the oldest first: at least the newest 10,000, no more than twice as many.
    const std::vector<std::string>& History() const { return history; }

    // Keeps an entry, unless it begins with a blank, is empty or "exit", or repeats the last one. Returns
    // whether it is kept.
    bool AddToHistory(const std::string& entry);

    // Before and after an entry. `isPasted`: one of many.
    void EntryWillRun(bool isPasted);
    void EntryDidRun();

    // Writes what is due, which among entries without a rest is later. Returns in how many milliseconds
    // something will be, -1 never.
    long DoDue(bool isResting = true);

    // What could not be written, once; or nothing.
    std::string TakeNews();

    // Writes everything. Returns what could not be written the last time, told before or not; or nothing.
    std::string Close();

private:
    using Numbers = std::map<std::string, int>;

    void Save();
    std::string SettingsToWrite();
    void Apply(const Setting& setting);
    Numbers SettingsOfEntries() const;

    ZqCalculator& calc;
    Keeper keeper;
    KeptSettings settings;
    KeptSettings written; // as they are in the file
    Numbers ofEntries;    // what commands had set before the entry
    HistoryFile historyFile;
    std::vector<std::string> history;
    std::string historyFailure; // why the last entry could not be kept; empty when it was
    bool isHistoryFailureNew = false;
    bool isOpen = false;
    bool isDue = false; // something is to be written
};
