// SPDX-License-Identifier: MIT
//
// What may reach the engine as one entry, and how its answers become lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct EntrySettings;

// The longest entry, in bytes without its line end.
constexpr size_t MAX_ENTRY_LENGTH = 9999;

// What is kept of a longer line. The byte more tells an overlong line apart, or is the CR of its line end.
constexpr size_t KEPT_LENGTH = MAX_ENTRY_LENGTH + 1;

enum class EntryFault { None, TooLong, NotText };

// Says whether `entry` (without its line end) can be evaluated. NotText: it is no valid UTF-8, or it holds a
// control character other than a tab. The engine would drop some control characters silently, so that two
// numbers became one, and it uses others as marks of its own.
EntryFault checkEntry(std::string_view entry);

// Whether a line holds nothing but blanks and tabs. Handed to the engine, an empty line is a person's Return
// on an empty prompt, which repeats the last assignment; in a file, a pipe or a pasted text it only sets
// lines apart.
bool isBlankLine(std::string_view line);

// The message for a fault, one line with its line feed; empty for None.
std::string_view faultMessage(EntryFault fault);

// `text` with a line feed at its end, which some of the engine's messages lack; an empty text stays empty.
std::string asLine(std::string_view text);

// The sign between a number's whole part and its decimals.
char decimalMark(const EntrySettings& settings);
