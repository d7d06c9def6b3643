// SPDX-License-Identifier: MIT
#include "Completion.h"

#include "Builtins.h"
#include "Calculator.h"
#include "Guide.h"
#include "Helpers_String.h"
#include "PromptWords.h"
#include "units.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

std::string inLowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = lowerCase(c);
    return lower;
}

bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The entry up to the cursor, taken apart.
struct Place {
    std::string head; // the statement up to the word, without the blanks in front
    std::string word; // what is to be completed
};

void addFunctions(const Place& place, std::vector<std::string>& found, const char* end) {
    const std::string word = inLowerCase(place.word);
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (beginsWith(inLowerCase(function->name), word)) found.push_back(function->name + std::string(end));
    }
}

void addVariables(const Place& place, const ZqCalculator& calc, std::vector<std::string>& found) {
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        if (beginsWith(variable->text, place.word)) found.emplace_back(variable->text);
    }
}

// A name behind a prefix counts with it: "kilom" goes on as "kilometer".
void addUnits(const Place& place, std::vector<std::string>& found) {
    const std::vector<std::string> units = units_names();
    const auto add = [&](const std::string& prefix) {
        for (const std::string& unit : units) {
            if (beginsWith(prefix + unit, place.word)) found.push_back(prefix + unit);
        }
    };
    add("");
    for (const std::string& prefix : units_prefix_names()) {
        if (place.word.size() > prefix.size() && beginsWith(place.word, prefix))
            add(prefix);
        else if (beginsWith(prefix, place.word))
            found.push_back(prefix);
    }
}

using Phrases = std::vector<std::string>;

// The start, a blank, and each word that can stand behind it; the start alone when these are not known.
void addChoices(Phrases& phrases, const std::string& start, const SettingChoices& choices) {
    if (choices.begin() == choices.end()) phrases.push_back(start + " ");
    for (const SettingChoice& choice : choices) phrases.push_back(start + " " + choice.word);
}

// What the command words and their arguments look like.
Phrases commandPhrases() {
    Phrases phrases;
    for (const Command& command : commandTable()) {
        const bool hasArgument = command.match == Command::WORD_ARGUMENT || command.match == Command::WORD;
        if (*command.word != '\0') phrases.push_back(command.word + std::string(hasArgument ? " " : ""));
    }
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) addChoices(phrases, setting.command.word, setting.choices);
    }
    return phrases;
}

// What the prompt's own words and their arguments look like, but for units.
Phrases promptPhrases() {
    Phrases phrases;
    for (const PromptWord& word : promptWords())
        phrases.push_back(word.word + std::string(*word.argument == '\0' ? "" : " "));
    addChoices(phrases, ":base", DISPLAY_BASES);
    for (const Setting& setting : SETTINGS) {
        const bool isOnOrOff =
            setting.kind == Setting::FLAG && setting.choices.begin() == setting.choices.end();
        addChoices(phrases, std::string(":set ") + setting.key,
                   isOnOrOff ? SettingChoices(ON_OFF) : setting.choices);
    }
    Phrases topics = guideTopics();
    for (const Builtin& builtin : builtinTable()) {
        if (builtin.help) topics.emplace_back(builtin.name);
    }
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) topics.emplace_back(setting.command.word);
    }
    for (const Command& command : commandTable()) {
        if (command.help) topics.emplace_back(command.word);
    }
    for (const std::string& topic : topics) phrases.push_back(":help " + topic);
    return phrases;
}

// The next word of each phrase that goes on from here, with the blank behind it.
void addPhrases(const Place& place, const Phrases& phrases, std::vector<std::string>& found) {
    const std::string typed = inLowerCase(place.head + place.word);
    for (const std::string& phrase : phrases) {
        if (!beginsWith(inLowerCase(phrase), typed) || phrase.size() == typed.size()) continue;
        const std::string rest = phrase.substr(place.head.size());
        const size_t blank = rest.find(' ');
        found.push_back(rest.substr(0, blank == std::string::npos ? blank : blank + 1));
    }
}

// Whether what is completed is the argument of one of these words.
bool isArgumentOf(const Place& place, std::initializer_list<const char*> words) {
    const std::string head = inLowerCase(place.head);
    return std::any_of(words.begin(), words.end(),
                       [&head](const char* word) { return head == word + std::string(" "); });
}

std::vector<std::string> candidatesAt(const Place& place, const ZqCalculator& calc, bool isCall) {
    std::vector<std::string> found;
    if (place.head[0] == ':') {
        addPhrases(place, promptPhrases(), found);
        if (place.head == ":units ") addUnits(place, found);
        return found;
    }
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
            if (beginsWith(name, place.word)) found.push_back(name);
        }
        if (beginsWith("all", place.word)) found.emplace_back("all");
        return found;
    }
    addPhrases(place, commandPhrases(), found);
    if (!place.head.empty() && !found.empty()) return found; // the argument of a command
    addFunctions(place, found, isCall ? "" : "(");
    addVariables(place, calc, found);
    return found;
}

} // namespace

Completion completionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc) {
    const std::string typed = entry.substr(0, cursor);
    Completion completion;
    completion.start = typed.size();
    while (completion.start > 0 && isOfName(typed[completion.start - 1])) --completion.start;
    Place place;
    place.word = typed.substr(completion.start);
    const size_t statement = typed.rfind(';', completion.start) + 1; // 0 when there is none
    place.head = typed.substr(statement, completion.start - statement);
    place.head.erase(0, std::min(place.head.find_first_not_of(" \t"), place.head.size()));
    const bool isNumber = !place.word.empty() && place.word[0] >= '0' && place.word[0] <= '9';
    if (isNumber || place.head.find('#') != std::string::npos) return completion;
    completion.candidates = candidatesAt(place, calc, entry[cursor] == '(');
    std::sort(completion.candidates.begin(), completion.candidates.end());
    completion.candidates.erase(std::unique(completion.candidates.begin(), completion.candidates.end()),
                                completion.candidates.end());
    return completion;
}
