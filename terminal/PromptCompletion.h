// SPDX-License-Identifier: MIT
//
// What Tab proposes at the prompt.
#pragma once

#include "Completion.h"

// As completionsAt, and behind ':' the prompt's words and theirs.
Completion promptCompletionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc);
