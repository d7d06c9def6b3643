// SPDX-License-Identifier: MIT
//
// Other programs as children of this one, without a shell.
#pragma once

#include "System.h"

#include <string>
#include <sys/types.h>
#include <vector>

// Starts the program `arguments[0]`, which is looked for in PATH, with nothing on its standard input. Its
// standard output goes to the descriptor `output`, to nowhere when that is -1; its errors go nowhere. Returns
// its process, -1 when it cannot be started.
pid_t startProgram(std::vector<std::string> arguments, int output, System& system = System::Real());

// Waits for the end of a child and forgets it. Returns its exit status; -1 when a signal ended it or when it
// is not known, as in a process that ignores SIGCHLD.
int waitForProgram(pid_t process, System& system = System::Real());
