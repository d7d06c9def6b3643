// SPDX-License-Identifier: MIT
#include "PromptCompletion.h"

#include "Builtins.h"
#include "Calculator.h"
#include "Guide.h"
#include "PromptWords.h"

namespace {

// What the prompt's own words and their arguments look like, except units.
std::vector<std::string> promptPhrases() {
    std::vector<std::string> phrases;
    for (const PromptWord& word : promptWords())
        phrases.push_back(word.word + std::string(*word.argument == '\0' ? "" : " "));
    addChoices(phrases, ":base", DISPLAY_BASES);
    for (const Setting& setting : SETTINGS) {
        const bool isOnOrOff =
            setting.kind == Setting::FLAG && setting.choices.begin() == setting.choices.end();
        addChoices(phrases, std::string(":set ") + setting.key,
                   isOnOrOff ? SettingChoices(ON_OFF) : setting.choices);
    }
    std::vector<std::string> topics = guideTopics();
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

} // namespace

Completion promptCompletionsAt(const std::string& entry, size_t cursor, const ZqCalculator& calc) {
    const EntryPlace place = entryPlace(entry, cursor);
    if (place.head[0] != ':') return completionsAt(entry, cursor, calc);
    std::vector<std::string> found;
    addPhrases(place, promptPhrases(), found);
    if (place.head == ":units ") addUnits(place, found);
    return completionOf(place, std::move(found));
}
