// SPDX-License-Identifier: MIT
//
// Where a person's files are.
#pragma once

#include "System.h"

#include <string>

// The folder of this person's files, which need not exist, without a '/' at its end. On macOS
// ~/Library/Application Support/Tallyquill; else $XDG_DATA_HOME/Tallyquill when that begins with '/', or
// ~/.local/share/Tallyquill. ~ is $HOME when that begins with '/', or what the system says. Where there is
// none of them it is "Tallyquill", in the current folder.
std::string ownFolder();

// The files in that folder.
std::string settingsPath(const std::string& folder);
std::string definitionsPath(const std::string& folder);
std::string transcriptPath(const std::string& folder);

// The folder of what a person has written to configure the terminal's program: $XDG_CONFIG_HOME/tallyquill
// when that begins with '/', or ~/.config/tallyquill, as above. It is never made.
std::string configFolder();

// The file of the prompt's entries: "tallyquill/history" in $XDG_STATE_HOME when that begins with '/', or in
// ~/.local/state, as above.
std::string historyPath();

// Makes a folder and those above it that are missing, readable and writable by their owner alone. Whether
// there is one now shows when something is written there.
void makeFolder(const std::string& path, System& system = System::Real());
