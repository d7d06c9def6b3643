// SPDX-License-Identifier: MIT
//
// The settings file: an XML property list with a key for each row of SETTINGS. Numbers are integers; colors
// and the font are data that spell them out in ASCII.
#pragma once

#include "Settings.h"

#include <map>
#include <string>

// Values by their keys. One that the file lacks is missing.
struct KeptSettings {
    std::map<std::string, int> numbers;
    std::map<std::string, std::string> texts; // empty for a font that is the console's own
};

KeptSettings defaultSettings();

// Reads a file's bytes. False, without any values, when they are no XML property list of a dictionary, or one
// with more than 256 KiB or 1,000 lists inside lists. A value of another kind than its row's, or that its row
// cannot have, gives the default.
bool readSettings(const std::string& bytes, KeptSettings& kept);

// The text of the file. What `present`, the bytes of the file as it is, has under keys that no row has stays.
std::string settingsText(const KeptSettings& kept, const std::string& present);
