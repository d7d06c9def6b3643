// SPDX-License-Identifier: MIT
//
// What a run takes from a person's files, and the definitions that ship. Nothing is written. Except in
// takeOwnSettings, an entry's settings, `ans` and the history stay as they are, whatever the files hold, so
// that what a script answers depends on definitions alone.
#pragma once

#include "System.h"

#include <string>
#include <string_view>
#include <vector>

class ZqCalculator;

// What came of reading a file that need not be there.
struct FileReading {
    bool isLost = false;   // it is there and cannot be read
    std::string complaint; // what is to be said to the person, with the file's name; or nothing
};

// Takes the functions, variables and units of the definitions file (DefinitionsFile.h), which the window and
// the prompt keep.
FileReading takeOwnDefinitions(ZqCalculator& calc, System& system = System::Real());

// Takes the settings of the entries to come from the settings file (SettingsFile.h).
FileReading takeOwnSettings(ZqCalculator& calc, System& system = System::Real());

// Carries out the lines of the file "init" in the folder for configuration (Folder.h), entries that define
// what a person wants to have in every run. What they answer is not shown, and settings end with the file.
FileReading takeInitFile(ZqCalculator& calc, System& system = System::Real());

// Takes the definitions that ship under the name, a file of the folder definitions/. Nothing happens when it
// is none of shippedNames. They are compiled in.
void takeShipped(ZqCalculator& calc, std::string_view name);
std::vector<std::string_view> shippedNames();

// The entries of that file, one a line; empty when the name is none of them.
std::string_view shippedText(std::string_view name);
