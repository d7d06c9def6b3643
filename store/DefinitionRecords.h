// SPDX-License-Identifier: MIT
//
// The text of the definitions file, line by line: what each line defines, and in which order they can be
// read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The sections of the file. A line stands in that of the last header before it.
enum Section : size_t { FUNCTIONS, VARIABLES, UNITS, HISTORY, NO_SECTION };
constexpr std::array<const char*, 4> HEADERS = {"### FUNCTIONS ###", "### VARIABLES ###",
                                                "### CUSTOM UNITS ###", "### HISTORY ###"};

// All texts are parts of the one that it was read from, which has to stay.
struct DefinitionRecord {
    enum class Kind { Unit, Function, Variable, Nothing };

    Kind kind = Kind::Nothing; // by what the line says, wherever it stands
    Section section = NO_SECTION;
    std::string_view line;       // as it stands, without its end, which may be CR LF
    std::string_view statement;  // the line without its comment
    std::string_view name;       // of Nothing: what stands in front of the '='
    std::string_view parameters; // of a function: "x,y". Blanks may stand in it, and in a function's name
    std::string_view body;       // what stands behind the '='

    // Equal for two records that define the same: a function of this name, whatever its case, and this number
    // of parameters; a variable; a unit. Empty without a '='.
    std::string Key() const;

    int32_t ParameterCount() const;
};

// "f(x)=...", "a=..." or "unit u=...". Anything else, a command word say, or a line with a ';' or a control
// character other than a tab, is Nothing.
DefinitionRecord recordOf(std::string_view line);

using Sections = std::array<std::string, HEADERS.size()>; // whole lines

// The text of a file: each section behind its header.
std::string textOf(const Sections& sections);

// Lines with their ends, by the keys of what they define. Ten times the lines take ten times as long to find.
using DefinitionLines = std::unordered_map<std::string, std::string>;

struct DefinitionsText {
    explicit DefinitionsText(std::string whole);
    DefinitionsText(const DefinitionsText&) = delete;
    DefinitionsText& operator=(const DefinitionsText&) = delete;

    const std::string text;
    std::vector<DefinitionRecord> records; // those between the first line and the history that are not blank
    std::vector<std::string_view> history; // its lines, without their ends
    bool isFramed; // it begins with the first header, has that of the history, and its last line has an end

    // The lines of the records that stand in a section and have a key; of several with one key all, one
    // after the other.
    DefinitionLines LinesByKey() const;

    std::string History() const; // the section's text
};

// The positions of the records that define something, in the order in which they can be read: the units, the
// functions, the variables; units and variables behind those that they use, also through functions.
// Otherwise, and of records that use each other in a circle, the order stays. Of records with the same key
// the first counts as used. What is too long for an entry counts as using nothing.
std::vector<size_t> orderOfReading(const std::vector<DefinitionRecord>& records);

// Of each record whether it uses one of the others. It is asked while the units are there that they use.
std::vector<bool> usesAny(const std::vector<DefinitionRecord>& records,
                          const std::vector<DefinitionRecord>& others);
