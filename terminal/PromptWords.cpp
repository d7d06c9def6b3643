// SPDX-License-Identifier: MIT
#include "PromptWords.h"

#include "Builtins.h"
#include "EntryText.h"
#include "Format.h"
#include "Guide.h"
#include "Helpers_String.h"
#include "NameRows.h"
#include "ScreenText.h"
#include "units.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t WIDTH = 80; // of the lists, in columns

PromptReply refuse(const std::string& text) {
    return {PromptReply::ERROR, text + "\n"};
}

bool containsI(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](char a, char b) { return lowerCase(a) == lowerCase(b); }) != text.end();
}

// "  left      right", the right texts below each other.
std::string twoColumns(std::string_view left, const std::string& right) {
    constexpr size_t COLUMN = 28;
    std::string text = "  " + std::string(left);
    if (right.empty()) return text + "\n";
    text.resize(text.size() < COLUMN ? COLUMN : text.size() + 2, ' ');
    addWords(text, right, COLUMN, WIDTH);
    return text + "\n";
}

std::string callOf(const Builtin& builtin) {
    return std::string(builtin.name) + "(" + builtin.arguments + ")";
}

// --- :help ---

std::string helpOfWords() {
    std::string text = "Type an expression and press Return. Words of the prompt:\n";
    for (const PromptWord& word : promptWords()) {
        const std::string left = word.word + std::string(*word.argument ? " " : "") + word.argument;
        text += twoColumns(left, word.help);
    }
    text += "Topics for :help:";
    size_t column = WIDTH;
    for (const std::string& topic : guideTopics()) {
        if (column + topic.size() + 3 > WIDTH) {
            text += "\n  ";
            column = 0;
        }
        text += topic + (topic == guideTopics().back() ? "" : ", ");
        column += topic.size() + 2;
    }
    return text + "\n";
}

// The lines about a function, a command word or a setting of this name.
std::string helpOfName(const std::string& name) {
    std::string text;
    for (const Builtin& builtin : builtinTable()) {
        if (name == builtin.name && builtin.help) text += twoColumns(callOf(builtin), builtin.help);
    }
    for (const Command& command : commandTable()) {
        if (command.usage && command.help && command.word && strIsEqualI(command.word, name.c_str())) {
            text += twoColumns(command.usage, command.help);
        }
    }
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word && name == setting.command.word) {
            text += twoColumns(setting.command.word, setting.help);
        }
    }
    return text;
}

// Of lines from several parts of the guide; more are no answer.
constexpr size_t MOST_LINES = 20;

PromptReply help(const PromptState& state, const std::string& topic) {
    if (topic.empty()) return {PromptReply::TEXT, helpOfWords()};
    std::string text = helpOfName(topic);
    if (text.empty()) text = guideSection(topic, state.columns);
    const bool isSection = !text.empty(); // or a name
    if (text.empty()) text = guideLines(topic, state.columns);
    const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    if (isSection || (lines > 0 && lines <= MOST_LINES)) return {PromptReply::TEXT, text};
    std::string titles;
    for (const std::string& title : guideTopics(topic)) titles += (titles.empty() ? "" : ", ") + title;
    const std::string rest = titles.empty() ? ":help lists the topics" : "these topics tell of it: " + titles;
    return {PromptReply::ERROR, plainText("no help on '" + topic + "'; " + rest, state.columns)};
}

// --- :vars, :funcs, :units ---

PromptReply variables(const PromptState& state, const std::string&) {
    std::string text;
    for (const node* variable = state.calc.vars.first; variable; variable = variable->next) {
        const std::string value = shownNumber(*variable->value, state.calc, strlen(variable->text));
        text += std::string(variable->text) + " = " + value + "\n";
    }
    return {PromptReply::TEXT, text};
}

std::string lineOf(const NameRow& row) {
    return row.text.empty() ? row.shown + "\n" : twoColumns(row.shown, row.text);
}

PromptReply functions(const PromptState&, const std::string&) {
    std::string text;
    bool isOwn = false; // the row before
    for (const NameRow& row : functionRows()) {
        if (isOwn && !row.text.empty()) text += "\n";
        isOwn = row.text.empty();
        text += lineOf(row);
    }
    return {PromptReply::TEXT, text};
}

bool canConvert(const std::string& from, const std::string& to) {
    units_clear_exception();
    const double factor = units_convert(from.c_str(), to.c_str());
    const bool isDone = !units_check_exception() && factor != 0.0;
    units_clear_exception();
    return isDone;
}

PromptReply units(const PromptState&, const std::string& part) {
    std::string named;
    std::string related;
    const bool isUnit = !part.empty() && canConvert(part, part);
    for (const NameRow& row : unitRows()) {
        if (containsI(row.name, part))
            named += twoColumns(row.shown, row.text);
        else if (isUnit && canConvert(part, row.name))
            related += twoColumns(row.shown, row.text);
    }
    if (!related.empty()) related = "Units that " + part + " can be converted to:\n" + related;
    if (named.empty() && related.empty()) {
        if (isUnit) return {PromptReply::TEXT, "no named unit is its equal; " + part + " can be converted\n"};
        return refuse("no unit's name contains '" + part + "'");
    }
    if (!part.empty()) return {PromptReply::TEXT, named + related};
    std::string prefixes = "Prefixes:";
    for (const std::string& prefix : units_prefix_names()) prefixes += " " + prefix;
    return {PromptReply::TEXT, named + prefixes + "\n"};
}

// --- :set ---

std::string valueText(const Setting& setting, const KeptSettings& settings) {
    if (!setting.IsNumber()) {
        const auto text = settings.texts.find(setting.key);
        return text == settings.texts.end() ? setting.text : text->second;
    }
    const auto found = settings.numbers.find(setting.key);
    const int value = found == settings.numbers.end() ? setting.standard : found->second;
    for (const SettingChoice& choice : setting.choices) {
        if (choice.value == value) return choice.word;
    }
    if (setting.kind == Setting::FLAG) return value != 0 ? "on" : "off";
    if (setting.kind == Setting::CHARACTER) return {static_cast<char>(value)};
    return std::to_string(value);
}

std::string settingLine(const Setting& setting, const KeptSettings& settings) {
    return twoColumns(std::string(setting.key) + " = " + valueText(setting, settings), setting.help);
}

// The number that a text stands for. False when the setting has no such value.
bool readValue(const Setting& setting, const std::string& text, int& value) {
    if (setting.choices.begin() == setting.choices.end()) return setting.Read(lowerCased(text), value);
    const SettingChoice* choice = setting.ChoiceIn(lowerCased(text));
    if (choice) value = choice->value;
    return choice != nullptr;
}

// The setting of this key, or of the command with this word.
const Setting* settingNamed(const std::string& name) {
    for (const Setting& setting : SETTINGS) {
        if (name == setting.key || (setting.command.word && name == setting.command.word)) return &setting;
    }
    return nullptr;
}

PromptReply set(const PromptState& state, const std::string& argument) {
    if (argument.empty()) {
        std::string text;
        for (const Setting& setting : SETTINGS) text += settingLine(setting, state.settings);
        return {PromptReply::TEXT, text};
    }
    const size_t blank = std::min(argument.find_first_of(" \t="), argument.size());
    const std::string name = argument.substr(0, blank);
    const std::string text =
        argument.substr(std::min(argument.find_first_not_of(" \t=", blank), argument.size()));
    const Setting* setting = settingNamed(lowerCased(name));
    if (!setting) return refuse("no setting is called '" + name + "'; :set lists them");
    if (!text.empty() && setting->IsNumber()) {
        int value = 0;
        if (!readValue(*setting, text, value)) return refuse("'" + text + "' is no value of " + name);
        if (setting->kind == Setting::CHARACTER && value == decimalMark(state.calc))
            return refuse("'" + text + "' is the decimal mark");
        state.settings.numbers[setting->key] = value;
        setting->Apply(value, state.calc);
        if (strcmp(setting->key, "histsz") == 0) state.calc.history.SetMaxEntries(value);
    } else if (!text.empty()) {
        if (!setting->IsPossible(text)) return refuse("'" + text + "' is no value of " + name);
        state.settings.texts[setting->key] = text;
    }
    return {PromptReply::TEXT, settingLine(*setting, state.settings)};
}

// --- The others ---

PromptReply history(const PromptState& state, const std::string& part) {
    std::string text;
    for (const std::string& entry : state.history) {
        if (containsI(entry, part)) text += entry + "\n";
    }
    return {PromptReply::TEXT, text};
}

PromptReply base(const PromptState& state, const std::string& argument) {
    const Setting& setting = *findSetting("dispbase");
    const SettingChoice* choice = setting.ChoiceIn(lowerCased(argument));
    if (!choice) return refuse(":base takes bin, dec or hex");
    const Answer& answer = state.calc.answer;
    const std::string value = answer.In(choice->value, state.calc);
    if (value.empty()) return refuse("there is no answer yet");
    return {PromptReply::TEXT, answer.name + " = " + value + "\n"};
}

PromptReply quit(const PromptState&, const std::string&) {
    return {PromptReply::END, ""};
}

} // namespace

const std::vector<PromptWord>& promptWords() {
    static const std::vector<PromptWord> table = {
        {":help", "[TOPIC]", "this list, a part of the guide, or a name", help},
        {":vars", "", "the variables and their values", variables},
        {":funcs", "", "your functions, and those that are always there", functions},
        {":units", "[PART or UNIT]", "the units, those named so, those UNIT converts to", units},
        {":set", "[NAME [VALUE]]", "the settings, or one; a new value is kept", set},
        {":history", "[PART]", "the entries; those that contain PART", history},
        {":base", "bin|dec|hex", "the last answer again in this base", base},
        {":quit", "", "ends the program", quit},
    };
    return table;
}

PromptReply runPromptWord(const PromptState& state, std::string_view line) {
    const size_t end = std::min(line.find_first_of(" \t"), line.size());
    const std::string typed = lowerCased(std::string(line.substr(0, end)));
    const std::string argument(trimmed(line.substr(end)));
    const PromptWord* found = nullptr;
    for (const PromptWord& word : promptWords()) {
        if (std::string_view(word.word).substr(0, typed.size()) != typed || typed.size() < 2) continue;
        if (found) return refuse("'" + typed + "' may be " + found->word + " or " + word.word);
        found = &word;
    }
    if (!found) return refuse("no word of the prompt is called '" + typed + "'; :help lists them");
    if (!argument.empty() && !*found->argument)
        return refuse(std::string(found->word) + " takes nothing behind it");
    return found->run(state, argument);
}
