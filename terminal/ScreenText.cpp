// SPDX-License-Identifier: MIT
#include "ScreenText.h"

#include "ShownText.h"

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <langinfo.h>
#include <sstream>

namespace {

// Bytes that are no UTF-8 count as a character each.
size_t lengthAt(std::string_view text, size_t start) {
    return std::max<size_t>(utf8Length(text, start), 1);
}

// That of the locale, which is -1 for a character of several bytes that it does not know.
int knownWidth(std::string_view character) {
    if (character.size() == 1)
        return static_cast<unsigned char>(character[0]) < 0x20 || character[0] == 0x7F ? 2 : 1;
    wchar_t wide = 0;
    std::mbstate_t state = {};
    const size_t read = std::mbrtowc(&wide, character.data(), character.size(), &state);
    return read == character.size() ? wcwidth(wide) : 1;
}

int widthOf(std::string_view character) {
    return std::max(knownWidth(character), 0);
}

} // namespace

void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_CTYPE, "");
}

ScreenPlace placeBehind(std::string_view text, ScreenPlace from, int width) {
    ScreenPlace place = from;
    for (size_t i = 0; i < text.size();) {
        const std::string_view character = text.substr(i, lengthAt(text, i));
        const int columns = character == "\t" ? 8 - place.column % 8 : widthOf(character);
        if (columns == 2 && character.size() > 1 && place.column + columns > width)
            place = {place.row + 1, 0};
        place.column += columns;
        if (place.column >= width) place = {place.row + 1, std::max(place.column - width, 0)};
        i += character.size();
    }
    return place;
}

std::string knownCharacters(std::string_view text) {
    std::string known;
    for (size_t i = 0; i < text.size();) {
        const std::string_view character = text.substr(i, lengthAt(text, i));
        known += knownWidth(character) < 0 ? "\xEF\xBF\xBD" : character;
        i += character.size();
    }
    return known;
}

size_t columnsOf(std::string_view text) {
    return static_cast<size_t>(placeBehind(text, {}, INT_MAX).column);
}

size_t columnBehind(const std::string& text) {
    return columnsOf(std::string_view(text).substr(text.rfind('\n') + 1));
}

void addWords(std::string& text, const std::string& words, size_t indent, size_t width) {
    std::istringstream each(words);
    size_t column = columnBehind(text);
    bool isFirst = true;
    for (std::string word; each >> word; isFirst = false) {
        const size_t size = columnsOf(word);
        const bool isFull = !isFirst && column + 1 + size > width;
        if (isFull) text += "\n" + std::string(indent, ' ');
        if (!isFull && !isFirst) text += ' ';
        column = isFull ? indent + size : column + size + (isFirst ? 0 : 1);
        text += word;
    }
}

std::string withoutMarkedParts(std::string_view text) {
    std::string plain;
    bool isMarked = false;
    for (const char byte : text) {
        if (byte == '\001' || byte == '\002')
            isMarked = byte == '\001';
        else if (!isMarked)
            plain += byte;
    }
    return plain;
}

std::string cutToWidth(std::string_view text, int width) {
    int columns = 0;
    size_t kept = 0; // what fits beside the mark
    for (size_t i = 0; i < text.size();) {
        const std::string_view character = text.substr(i, lengthAt(text, i));
        columns += widthOf(character);
        if (columns > width) return std::string(text.substr(0, kept)) + "…";
        i += character.size();
        if (columns < width) kept = i;
    }
    return std::string(text);
}

size_t wholeCharacters(std::string_view text) {
    for (size_t back = 1; back <= std::min<size_t>(3, text.size()); ++back) {
        const auto lead = static_cast<unsigned char>(text[text.size() - back]);
        if (lead < 0x80) break;
        if (lead < 0xC0) continue;
        const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
        return length > back ? text.size() - back : text.size();
    }
    return text.size();
}
