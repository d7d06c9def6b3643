// SPDX-License-Identifier: MIT
//
// Plain reading and writing of file descriptors: interrupted calls go on, descriptors that are set not to
// block are waited for.
#pragma once

#include "System.h"

#include <cstddef>
#include <string_view>

// Reads at most `size` bytes. Returns their number, 0 at the end, -1 with errno set when reading failed.
long readSome(int descriptor, char* to, size_t size, System& system = System::Real());

// Writes all of `text`. Returns false with errno set when that failed.
bool writeAll(int descriptor, std::string_view text, System& system = System::Real());

// Keeps the real standard output for the answers, under a descriptor of its own, and turns descriptor 1,
// where the engine writes its trace, to /dev/null or, with `trace`, to standard error. Returns the descriptor
// for the answers, -1 with errno set when standard output is closed or cannot be set aside.
int setAnswersAside(bool trace, System& system = System::Real());
