// SPDX-License-Identifier: MIT
#include "Helpers_String.h"

#include <algorithm>
#include <cstring>

bool strIsEqual(const char* a, const char* b) {
    return strcmp(a, b) == 0;
}

bool strIsEqualI(const char* a, const char* b) {
    while (*a && lowerCase(*a) == lowerCase(*b)) a++, b++;
    return lowerCase(*a) == lowerCase(*b);
}

bool strIsEqualNI(const char* a, const char* b, size_t n) {
    for (size_t i = 0; i < n; i++) {
        if (lowerCase(a[i]) != lowerCase(b[i])) return false;
        if (a[i] == '\0') return true;
    }
    return true;
}

void StrSwapChars(char* text, char a, char b) {
    for (; *text; text++) {
        if (*text == a)
            *text = b;
        else if (*text == b)
            *text = a;
    }
}

void StrRemoveChar(char* text, char c) {
    char* out = text;
    for (; *text; text++) {
        if (*text != c) *out++ = *text;
    }
    *out = '\0';
}

void StrRemoveNewlineChars(char* text) {
    StrRemoveChar(text, '\n');
    StrRemoveChar(text, '\r');
}

const char* FindStrAfterLastChar(const char* text, char c) {
    const char* found = c ? strrchr(text, c) : nullptr;
    return found ? found + 1 : text;
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

std::string withoutBlanks(std::string_view text) {
    std::string joined(text);
    joined.erase(std::remove_if(joined.begin(), joined.end(), isBlank), joined.end());
    return joined;
}

std::string_view withoutLineEnd(std::string_view text) {
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    return text;
}

char* strDuplicate(std::string_view text) {
    char* copy = new char[text.size() + 1];
    if (!text.empty()) memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

std::string strShown(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (char c : text) shown.append(c == '\x10' || c == '\x11' ? "->" : std::string_view(&c, 1));
    return shown;
}

std::string lowerCased(std::string text) {
    for (char& c : text) c = lowerCase(c);
    return text;
}

bool isValidName(std::string_view text) {
    return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), isOfName);
}
