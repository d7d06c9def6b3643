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

// Makes a folder and those above it that are missing, readable and writable by their owner alone. Whether
// there is one now shows when something is written there.
void makeFolder(const std::string& path, System& system = System::Real());
