// SPDX-License-Identifier: MIT
#include "StatusHint.h"

#include "Commands.h"
#include "Functions.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <vector>

namespace {

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::vector<std::string> commandWords() {
    std::vector<std::string> words;
    for (const Command& command : commandTable()) words.emplace_back(command.word);
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) words.emplace_back(setting.command.word);
    }
    return words;
}

// A command is the first word of a statement.
bool isCommand(std::string_view statement) {
    std::string word;
    for (size_t i = statement.find_first_not_of(" \t"); i < statement.size() && isLetter(statement[i]); ++i)
        word += lowerCase(statement[i]);
    const std::vector<std::string> words = commandWords();
    return !word.empty() && std::find(words.begin(), words.end(), word) != words.end();
}

// What is said about a name that is known but cannot stand alone, or of which more may follow.
struct Known {
    bool isNone = true; // nothing known begins with the name
    std::string lacks;  // what the name itself lacks
};

Known known(const std::string& name, bool isFactor, const ZqCalculator& calculator) {
    Known found;
    const auto meet = [&](const std::string& other, const std::string& typed, const char* lack) {
        if (!startsWith(other, typed)) return;
        found.isNone = false;
        if (other == typed) found.lacks = lack;
    };
    for (const UnitSpelling& spelling : units_spellings(name))
        meet(spelling.name, name, spelling.IsPrefix() ? "" : "missing ->");
    for (int i = 0; const Function* function = funcs.Get(i); ++i)
        meet(lowerCased(function->name), lowerCased(name), "missing (");
    for (const node* variable = calculator.vars.first; variable; variable = variable->next)
        meet(variable->text, name, isFactor ? "missing *" : "");
    for (const std::string& word : commandWords()) meet(word, lowerCased(name), "");
    return found;
}

// The name in what could not be understood: 3wdith multiplies nothing, but the digits are none of it.
std::string nameIn(std::string_view part) {
    const size_t start = part.find_first_not_of("0123456789., \t");
    if (start == std::string_view::npos) return "";
    part = part.substr(start);
    return std::string(part.substr(0, part.find_last_not_of(" \t") + 1));
}

std::string missingBracket(std::string_view part) {
    constexpr std::string_view OPENING = "([{", CLOSING = ")]}";
    const char bracket = part.empty() ? '(' : part[0];
    const size_t opened = OPENING.find(bracket), closed = CLOSING.find(bracket);
    if (opened != std::string_view::npos) return std::string("missing ") + CLOSING[opened];
    return closed == std::string_view::npos ? "" : std::string("missing ") + OPENING[closed];
}

} // namespace

std::string statusHint(std::string_view entry, const ZqCalculator& calculator) {
    const TextRange range = calculator.errorRange;
    const auto start = static_cast<size_t>(range.start), length = static_cast<size_t>(range.length);
    if (range.start < 0 || start + length > entry.size()) return "";
    const std::string_view part = entry.substr(start, length), message = calculator.message;
    const size_t before = entry.substr(0, start).rfind(';');
    if (isCommand(entry.substr(before == std::string_view::npos ? 0 : before + 1))) return "";
    if (contains(message, "missing parenthesis")) return missingBracket(part);
    if (contains(message, "empty parenthesis")) return "missing number";
    if (contains(message, "missing argument")) return part == "->" ? "missing unit" : "missing number";
    const bool isUnknown = contains(message, "invalid term") || contains(message, "unrecognized function") ||
                           contains(message, "invalid unit name");
    const std::string name = isUnknown ? nameIn(part) : "";
    if (name.empty()) return "";
    const Known found = known(name, name.size() < part.size(), calculator);
    const bool goesOn = entry.find_first_not_of(" \t", start + length) != std::string_view::npos;
    if (!found.lacks.empty()) return found.lacks;
    return goesOn || found.isNone ? "unknown: " + name : "";
}
