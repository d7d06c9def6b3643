// SPDX-License-Identifier: MIT
//
// UTF-8 texts on a screen: how many columns they take, and where they end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Sets the characters of a person's locale, or those of UTF-8, which is what the engine reads: only then is
// it known here which characters are wide. Readline looks at the environment, for each line.
void useUtf8();

// Where a text that wraps at the width of a screen puts its end, counted from where it began. A text that
// fills a row ends at the start of the next one.
struct ScreenPlace {
    int row = 0;
    int column = 0;
};

// The place behind the UTF-8 text that begins at `from`: control characters take two columns, as in ^A, tabs
// go to the next multiple of eight, and a wide character that does not fit begins the next row.
ScreenPlace placeBehind(std::string_view text, ScreenPlace from, int width);

// The UTF-8 text with U+FFFD for each character that the locale does not know, as one that Unicode got later.
std::string knownCharacters(std::string_view text);

// The columns of one line of text, and those of the last line of several.
size_t columnsOf(std::string_view text);
size_t columnBehind(const std::string& text);

// Adds the words of a line to a text, with line ends where a line would be wider than `width`. Such a line
// begins with `indent` blanks.
void addWords(std::string& text, const std::string& words, size_t indent, size_t width);

// The text without what no screen shows: each "\001...\002".
std::string withoutMarkedParts(std::string_view text);

// At most so many columns of the UTF-8 text; one that was cut ends in "…", so that no number looks like
// another one.
std::string cutToWidth(std::string_view text, int width);

// So many bytes of the UTF-8 text as make whole characters: its last one may have only begun.
size_t wholeCharacters(std::string_view text);
