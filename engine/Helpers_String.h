// SPDX-License-Identifier: MIT
//
// Small text helpers. Case is folded for the letters A to Z only, whatever the locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

bool strIsEqual(const char* a, const char* b);             // exactly equal
bool strIsEqualI(const char* a, const char* b);            // equal except for case
bool strIsEqualNI(const char* a, const char* b, size_t n); // the first n characters are equal except for case

void StrSwapChars(char* text, char a, char b); // exchanges a and b throughout the text
void StrRemoveChar(char* text, char c);        // removes every c
void StrRemoveNewlineChars(char* text);        // removes every carriage return and line feed

// The text behind the last c; the whole text when there is none.
const char* FindStrAfterLastChar(const char* text, char c);

// A copy from new char[].
char* strDuplicate(std::string_view text);

// The text as people read it: the internal characters of a unit conversion (0x10, 0x11) become "->".
std::string strShown(std::string_view text);

// ASCII characters; any char value is allowed.
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isBlank(char c) { // or a line end
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
constexpr bool isControl(char c) { // that is no tab
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f';
}
constexpr bool isOfName(char c) { // behind the first letter of a name
    return isLetter(c) || isDigit(c) || c == '_';
}
constexpr char lowerCase(char c) { // A to Z become a to z
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string lowerCased(std::string text);

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// What may stand between words.
constexpr std::string_view BLANKS = " \t";

// The text without the blanks and tabs around it.
std::string_view trimmed(std::string_view text);

// The text without its blanks, tabs and line ends.
std::string withoutBlanks(std::string_view text);

// The text without one line feed at its end, and then without one carriage return.
std::string_view withoutLineEnd(std::string_view text);

// Whether the text is the name of a variable, a function or a parameter: a letter, then characters of a name.
bool isValidName(std::string_view text);
constexpr int MAX_NAME = 50; // names have fewer characters
