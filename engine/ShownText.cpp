// SPDX-License-Identifier: MIT
#include "ShownText.h"

#include <algorithm>

static uint32_t byteAt(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

// The length of the UTF-8 sequence that `lead` begins; 0 for a byte that cannot begin one.
static std::size_t sequenceLength(uint32_t lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2; // 0xC0 and 0xC1 would be overlong
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4; // beyond lies nothing below U+110000
    return 0;
}

// Whether `second` may follow `lead`: refuses overlong forms, surrogates and values above U+10FFFF.
static bool secondByteFits(uint32_t lead, uint32_t second) {
    switch (lead) {
    case 0xE0: return second >= 0xA0;
    case 0xED: return second <= 0x9F;
    case 0xF0: return second >= 0x90;
    case 0xF4: return second <= 0x8F;
    default: return true;
    }
}

std::size_t Utf8Length(std::string_view text, std::size_t start) {
    const uint32_t lead = byteAt(text, start);
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > text.size() - start) return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((byteAt(text, start + k) & 0xC0U) != 0x80U) return 0;
    }
    if (length > 1 && !secondByteFits(lead, byteAt(text, start + 1))) return 0;
    return length;
}

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = Utf8Length(text, i);
        if (length == 0) return false;
        i += length;
    }
    return true;
}

// The code of the character of so many bytes.
static uint32_t codeAt(std::string_view text, std::size_t i, std::size_t length) {
    const uint32_t lead = byteAt(text, i);
    if (length == 1) return lead;
    uint32_t code = lead & (0x7FU >> length);
    for (std::size_t k = 1; k < length; ++k) code = code << 6 | (byteAt(text, i + k) & 0x3FU);
    return code;
}

// Whether the character changes the direction in which a line is written, or breaks it.
static bool isLayout(uint32_t code) {
    const bool isDirection = code == 0x061C || code == 0x200E || code == 0x200F ||
                             (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return isDirection || code == 0x2028 || code == 0x2029;
}

static bool isHiddenAt(std::string_view text, std::size_t i, std::size_t length) {
    const uint32_t code = codeAt(text, i, length);
    return IsControlCharacter(code) || isLayout(code);
}

static void appendShown(std::string& shown, std::string_view character, bool isShown) {
    if (isShown || character == "\n")
        shown += character;
    else
        shown += character == "\t" ? ' ' : '?';
}

// Most texts are nothing else.
static bool isPrintableAscii(char c) {
    return (c >= ' ' && c <= '~') || c == '\n';
}

std::string ShownText(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isPrintableAscii);
    std::string shown(text.begin(), end);
    for (std::size_t i = shown.size(); i < text.size();) {
        const std::size_t length = Utf8Length(text, i);
        const std::size_t step = length == 0 ? 1 : length;
        appendShown(shown, text.substr(i, step), length > 0 && !isHiddenAt(text, i, length));
        i += step;
    }
    return shown;
}

std::string ShownLatin1(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        appendShown(shown, text.substr(i, 1), !IsControlCharacter(byteAt(text, i)));
    return shown;
}
