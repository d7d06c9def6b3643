// SPDX-License-Identifier: MIT
#include "ShownText.h"

#include <algorithm>

namespace {

uint32_t byteAt(std::string_view text, size_t i) {
    return static_cast<unsigned char>(text[i]);
}

// Reads the sequence that begins at `start`. Returns its length, or 0 when there is none.
size_t readUtf8(std::string_view text, size_t start, uint32_t& code) {
    static constexpr uint32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000}; // by length: less would be overlong
    const uint32_t lead = byteAt(text, start);
    const size_t length = lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length == 0 || lead > 0xF4 || length > text.size() - start) return 0;
    code = length == 1 ? lead : lead & (0x7FU >> length);
    for (size_t k = 1; k < length; ++k) {
        const uint32_t byte = byteAt(text, start + k);
        if ((byte & 0xC0U) != 0x80U) return 0;
        code = code << 6 | (byte & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < LEAST[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

// Whether the character changes the direction in which a line is written, or breaks it.
bool isLayout(uint32_t code) {
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

void appendShown(std::string& shown, std::string_view character, bool isShown) {
    if (isShown || character == "\n")
        shown += character;
    else
        shown += character == "\t" ? ' ' : '?';
}

// Most texts are nothing else.
bool isPrintableAscii(char c) {
    return (c >= ' ' && c <= '~') || c == '\n';
}

} // namespace

size_t utf8Length(std::string_view text, size_t start) {
    uint32_t code = 0;
    return readUtf8(text, start, code);
}

bool isUtf8(std::string_view text) {
    for (size_t i = 0, length = 0; i < text.size(); i += length) {
        length = utf8Length(text, i);
        if (length == 0) return false;
    }
    return true;
}

bool hasControls(std::string_view text) {
    for (size_t i = 0, length = 0; i < text.size(); i += length) {
        uint32_t code = 0;
        length = std::max<size_t>(readUtf8(text, i, code), 1);
        if (isControlCharacter(code) && code != '\t') return true;
    }
    return false;
}

std::string shownText(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isPrintableAscii);
    std::string shown(text.begin(), end);
    for (size_t i = shown.size(); i < text.size();) {
        uint32_t code = 0;
        const size_t length = readUtf8(text, i, code);
        const std::string_view character = text.substr(i, length == 0 ? 1 : length);
        appendShown(shown, character, length > 0 && !isControlCharacter(code) && !isLayout(code));
        i += character.size();
    }
    return shown;
}

std::string shownLatin1(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
        appendShown(shown, text.substr(i, 1), !isControlCharacter(byteAt(text, i)));
    return shown;
}
