// SPDX-License-Identifier: MIT
#include "Completion.h"

#include "Calculator.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cstring>

namespace {

void addFunctions(const EntryPlace& place, std::vector<std::string>& found, const char* end) {
    const std::string word = lowerCased(place.word);
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (startsWith(lowerCased(function->name), word)) found.push_back(function->name + std::string(end));
    }
}

void addVariables(const EntryPlace& place, const ZqCalculator& calc, std::vector<std::string>& found) {
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        if (startsWith(variable->text, place.word)) found.emplace_back(variable->text);
    }
}

// What the command words and their arguments look like.
std::vector<std::string> commandPhrases() {
    std::vector<std::string> phrases;
    for (const Command& command : commandTable()) {
        const bool hasArgument = command.match == Command::WORD_ARGUMENT || command.match == Command::WORD;
        if (*command.word != '\0') phrases.push_back(command.word + std::string(hasArgument ? " " : ""));
    }
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) addChoices(phrases, setting.command.word, setting.choices);
    }
    return phrases;
}

// Whether what is completed is the argument of one of these words.
bool isArgumentOf(const EntryPlace& place, std::initializer_list<const char*> words) {
    const std::string head = lowerCased(place.head);
    return std::any_of(words.begin(), words.end(),
                       [&head](const char* word) { return head == word + std::string(" "); });
}

std::vector<std::string> candidatesAt(const EntryPlace& place, const ZqCalculator& calc, bool isCall) {
    std::vector<std::string> found;
    const size_t arrow = place.head.rfind("->");
    if (arrow != std::string::npos) {
        const std::string between = place.head.substr(arrow + 2);
        if (between.find_first_of("(),=<>") == std::string::npos) {
            addUnits(place, found);
            return found;
        }
    }
    if (isArgumentOf(place, {"del", "rem", "disp"})) {
        addVariables(place, calc, found);
        if (place.head[1] == 'i') return found; // disp
        addFunctions(place, found, "");
        for (const node* unit = calc.unitDefs.first; unit; unit = unit->next) {
            const std::string name(unit->text + 5, std::strcspn(unit->text + 5, "=")); // behind "unit "
            if (startsWith(name, place.word)) found.push_back(name);
        }
        if (startsWith("all", place.word)) found.emplace_back("all");
        return found;
    }
    addPhrases(place, commandPhrases(), found);
    if (!place.head.empty() && !found.empty()) return found; // the argument of a command
    addFunctions(place, found, isCall ? "" : "(");
    addVariables(place, calc, found);
    return found;
}

} // namespace

void addChoices(std::vector<std::string>& phrases, const std::string& start, const SettingChoices& choices) {
    if (choices.begin() == choices.end()) phrases.push_back(start + " ");
    for (const SettingChoice& choice : choices) phrases.push_back(start + " " + choice.word);
}

void addPhrases(const EntryPlace& place, const std::vector<std::string>& phrases,
                std::vector<std::string>& found) {
    const std::string typed = lowerCased(place.head + place.word);
    for (const std::string& phrase : phrases) {
        if (!startsWith(lowerCased(phrase), typed) || phrase.size() == typed.size()) continue;
        const std::string rest = phrase.substr(place.head.size());
        const size_t blank = rest.find(' ');
        found.push_back(rest.substr(0, blank == std::string::npos ? blank : blank + 1));
    }
}

void addUnits(const EntryPlace& place, std::vector<std::string>& found) {
    for (const UnitSpelling& spelling : units_spellings(place.word)) {
        const bool isBehindPrefix = spelling.prefixLength > 0 && !spelling.IsPrefix();
        if (!isBehindPrefix || place.word.size() > spelling.prefixLength) found.push_back(spelling.name);
    }
}

EntryPlace entryPlace(const std::string& entry, size_t cursor) {
    const std::string typed = entry.substr(0, cursor);
    EntryPlace place;
    place.start = typed.size();
    while (place.start > 0 && isOfName(typed[place.start - 1])) --place.start;
    place.word = typed.substr(place.start);
    const size_t statement = typed.rfind(';', place.start) + 1; // 0 when there is none
    place.head = typed.substr(statement, place.start - statement);
    place.head.erase(0, std::min(place.head.find_first_not_of(" \t"), place.head.size()));
    return place;
}

Completion completionOf(const EntryPlace& place, std::vector<std::string> candidates) {
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    return {place.start, std::move(candidates)};
}

Completion completionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc) {
    const EntryPlace place = entryPlace(entry, cursor);
    const bool isNumber = !place.word.empty() && isDigit(place.word[0]);
    if (isNumber || place.head.find('#') != std::string::npos) return {place.start, {}};
    return completionOf(place, candidatesAt(place, calc, entry[cursor] == '('));
}
