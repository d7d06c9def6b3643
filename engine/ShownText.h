// SPDX-License-Identifier: MIT
//
// Text as it may reach a screen. A control character in a name, a page or a file could move the cursor,
// rename a terminal's window or hide a part of an answer; none is shown, wherever the text comes from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Whether a character (its code in Unicode, or in ISO Latin-1) is a control character: below 0x20, and 0x7F
// to 0x9F.
constexpr bool isControlCharacter(uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

// The length of the well-formed UTF-8 sequence that begins at `start`, 1 to 4 bytes; 0 when there is none: a
// byte that cannot stand there, an overlong form, a surrogate, a value above U+10FFFF. `start` lies inside
// the text.
size_t utf8Length(std::string_view text, size_t start);

// Whether all of the text is well-formed UTF-8.
bool isUtf8(std::string_view text);

// Whether well-formed UTF-8 has a control character. A tab is none.
bool hasControls(std::string_view text);

// The UTF-8 text without control characters but line feeds: a tab becomes a blank, every other one a '?', and
// so does each byte that belongs to no well-formed sequence, and each character that reorders or breaks a
// line: U+061C, U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069.
std::string shownText(std::string_view text);

// The same for a text in ISO Latin-1, in which every byte is a character.
std::string shownLatin1(std::string_view text);
