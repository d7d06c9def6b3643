// SPDX-License-Identifier: MIT
//
// The whole of a run of the program for terminals, pipes and scripts, but for what it does to its process.
#pragma once

#include "System.h"

// Does what the arguments of the program ask for, with the standard descriptors: 1 leads elsewhere from then
// on. Returns the exit status; a signal that ends the program ends it here. When the memory runs out, that is
// told and nothing else written.
int runConsole(int argc, char** argv, System& system = System::Real());
