// SPDX-License-Identifier: MIT
#include "ShownText.h"

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

// Of the characters of several bytes only those of two that begin with 0xC2 can be control characters, and their
// second byte is their code.
static bool isControlAt(std::string_view text, std::size_t i, std::size_t length) {
    if (length == 1) return IsControlCharacter(byteAt(text, i));
    return byteAt(text, i) == 0xC2 && IsControlCharacter(byteAt(text, i + 1));
}

static void appendShown(std::string& shown, std::string_view character, bool isShown) {
    if (isShown || character == "\n")
        shown += character;
    else
        shown += character == "\t" ? ' ' : '?';
}

std::string ShownText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = Utf8Length(text, i);
        const std::size_t step = length == 0 ? 1 : length;
        appendShown(shown, text.substr(i, step), length > 0 && !isControlAt(text, i, length));
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
