// SPDX-License-Identifier: MIT
//
// What comes from a terminal as text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The bytes as UTF-8: U+FFFD, which is no part of an entry, stands for each byte that belongs to no
// well-formed sequence, and for each of the control characters U+0080 to U+009F, which are no keys and which
// a terminal could act on when the line is shown. Those of one byte are keys.
std::string asUtf8(std::string_view bytes);

// The lines of a pasted text, which end in CR, LF or both, and what follows the last end. A '?' stands for a
// NUL.
std::vector<std::string> pastedLines(std::string_view text);
