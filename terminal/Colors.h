// SPDX-License-Identifier: MIT
//
// The colors of what the terminal shows: one table.
#pragma once

#include "System.h"

#include <string>
#include <string_view>

enum class Shade { Prompt, Name, Value, Error, Hint };

// Whether TERM names a terminal that understands escape sequences: one that is not dumb, and that the
// editor's library, if there is one, has heard of.
bool knowsSequences();

// Whether what goes to the descriptor gets colors. `choice` is "always", "never" or "auto" (also when it is
// empty): then by CLICOLOR_FORCE and NO_COLOR, and otherwise when it is a terminal that knows escape
// sequences.
bool wantsColors(std::string_view choice, int descriptor, System& system = System::Real());

// The text in its color, a line feed at its end behind that.
std::string colored(Shade shade, std::string_view text);

// "name = value" with each in its color.
std::string coloredAnswer(std::string_view line);
