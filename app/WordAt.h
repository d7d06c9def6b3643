// SPDX-License-Identifier: MIT
//
// What a double click takes of a line of the console, without AppKit.
#pragma once

#include "Transcript.h"

#include <string>

struct NumberMarks {
    char16_t decimal = u'.';
    char16_t grouping = 0; // 0: digits are not grouped
};

// The number, with its prefix, groups, marks, exponent and metric suffix, or the name that holds the
// character at `place`; any other character alone. Behind the end of the line, what stands at the end.
EntryRange wordAt(const std::u16string& line, size_t place, NumberMarks marks);
