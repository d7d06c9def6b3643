// SPDX-License-Identifier: MIT
//
// One entry for every line of input: the numbers of the line are x, x1, x2, ... in the entry.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class ZqCalculator;

// A number as people have it in files.
struct FieldNumber {
    std::string digits;      // as the engine reads it: "1234.50", "1e-3", "0xFF"; empty when it is none
    bool isNegative = false; // its sign
    std::string fault;       // when it is none: what follows the field in a message, such as "is no number"
};

// Reads a field, with or without double quotes around it. Thousands may be grouped: by commas (by points with
// a decimal comma), apostrophes or blanks, also those that do not break a line. "-5", the same with the minus
// of typesetters, "5-" and "(5)" are negative. Currency signs, percent signs and whatever else stands beside
// the digits make it no number, and so do groups that are not three digits long: "1,23" is either wrong or
// has a decimal comma. A number of more than 104 digits, not counting zeros at its ends, is none either: it
// would be cut.
FieldNumber readField(std::string_view field, bool hasDecimalComma);

// The fields of a line: between runs of blanks and tabs, or with a separator between these. Then a field in
// double quotes may contain it, two quotes in it stand for one, and blanks around fields do not count.
std::vector<std::string> splitFields(std::string_view line, std::string_view separator);

// The fields that an entry names, ascending: 1 for x and x1, 2 for x2 and so on.
std::vector<size_t> fieldsNamedIn(std::string_view entry);

// The variables that an entry assigns, but x, x1, ... and ans.
std::vector<std::string> namesAssignedIn(std::string_view entry);

class Each {
public:
    // The variables that the entry assigns begin with 0, whatever a person has kept under these names, so
    // that `s=s+x` sums up. The separator is as in splitFields.
    Each(ZqCalculator& with, std::string_view entry, std::string_view fieldSeparator);

    // Sets the fields that the entry names to the numbers of a line. Returns the error when one is missing,
    // no number or beyond the range; else an empty text.
    std::string Take(std::string_view line);

private:
    std::string TakeField(size_t number, const std::string& field);
    bool Set(const std::string& name, const FieldNumber& number);

    ZqCalculator& calc;
    std::string separator;
    std::vector<size_t> wanted;
};
