// SPDX-License-Identifier: MIT
#include "Settings.h"

#include "deq.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

const Setting* findSetting(std::string_view key) {
    const auto* const row = std::find_if(std::begin(SETTINGS), std::end(SETTINGS),
                                         [key](const Setting& setting) { return key == setting.key; });
    return row == std::end(SETTINGS) ? nullptr : row;
}

namespace {

// The first choice with the value; the end when there is none.
const SettingChoice* choiceOf(int value, const SettingChoices& choices) {
    return std::find_if(choices.begin(), choices.end(),
                        [value](const SettingChoice& one) { return one.value == value; });
}

bool isOfOperator(int c) {
    for (const OpEntry* op = ops; op->code != 0; op++) {
        if (c < 0x80 && c != ',' && strchr(op->text, c)) return true;
    }
    return false;
}

} // namespace

bool Setting::IsPossible(double number) const {
    if (!IsNumber() || !(number >= least && number <= most && number == std::floor(number))) return false;
    const int value = static_cast<int>(number);
    if (kind == CHARACTER) return groupingMarkFault(value).empty();
    return choices.begin() == choices.end() || choiceOf(value, choices) != choices.end();
}

bool Setting::IsPossible(const std::string& description) const {
    double parts[4];
    std::string name;
    return kind == COLOR ? readColor(description, parts)
                         : kind == FONT && readFont(description, parts[0], name);
}

void Setting::Apply(int value, EntrySettings& settings) const {
    if (const auto* flag = std::get_if<bool EntrySettings::*>(&entry.field)) settings.** flag = value != 0;
    if (const auto* number = std::get_if<int32_t EntrySettings::*>(&entry.field)) settings.** number = value;
    if (const auto* mark = std::get_if<char EntrySettings::*>(&entry.field))
        settings.** mark = value == '.' ? ',' : static_cast<char>(value);
}

int Setting::ValueIn(const EntrySettings& settings) const {
    if (const auto* flag = std::get_if<bool EntrySettings::*>(&entry.field)) return settings.**flag ? 1 : 0;
    if (const auto* number = std::get_if<int32_t EntrySettings::*>(&entry.field)) return settings.**number;
    if (const auto* mark = std::get_if<char EntrySettings::*>(&entry.field))
        return static_cast<unsigned char>(settings.**mark);
    return standard;
}

const SettingChoice* Setting::ChoiceIn(const std::string& argument) const {
    for (const SettingChoice& one : choices) {
        if (one.letters == 0 ? argument == one.word
                             : argument.compare(0, one.letters, one.word, one.letters) == 0)
            return &one;
    }
    return nullptr;
}

bool Setting::Read(const std::string& word, int& value) const {
    const bool hasChoices = choices.begin() != choices.end();
    for (const SettingChoice& one : kind == FLAG && !hasChoices ? SettingChoices(ON_OFF) : choices) {
        if (word == one.word) {
            value = one.value;
            return true;
        }
    }
    if (hasChoices || !IsNumber() || word.empty()) return false;
    char* end = nullptr;
    const bool isCharacter = kind == CHARACTER && word.size() == 1;
    const double number = isCharacter ? static_cast<unsigned char>(word[0]) : strtod(word.c_str(), &end);
    if ((!isCharacter && *end != '\0') || !IsPossible(number)) return false;
    value = static_cast<int>(number);
    return true;
}

std::string Setting::CommandFor(int value) const {
    const SettingChoice* one = choiceOf(value, choices);
    if (one == choices.end()) one = choiceOf(standard, choices);
    return command.word + (" " + (one == choices.end() ? std::to_string(value) : one->word));
}

EntrySettings standardSettings() {
    EntrySettings settings;
    for (const Setting& setting : SETTINGS) setting.Apply(setting.standard, settings);
    return settings;
}

bool readColor(const std::string& text, double (&parts)[4]) {
    const bool isRead =
        sscanf(text.c_str(), "%lf %lf %lf %lf", &parts[0], &parts[1], &parts[2], &parts[3]) == 4;
    return isRead && std::all_of(std::begin(parts), std::end(parts),
                                 [](double part) { return part >= 0 && part <= 1; });
}

std::string colorText(const double (&parts)[4]) {
    char text[80];
    snprintf(text, sizeof text, "%.6g %.6g %.6g %.6g", parts[0], parts[1], parts[2], parts[3]);
    return text;
}

bool readFont(const std::string& text, double& points, std::string& name) {
    const size_t blank = std::min(text.find(' '), text.size());
    points = strtod(text.substr(0, blank).c_str(), nullptr);
    name = text.substr(std::min(blank + 1, text.size()));
    return points >= 4 && points <= 200 && !name.empty();
}

std::string fontText(double points, const std::string& name) {
    char text[40];
    snprintf(text, sizeof text, "%.6g ", points);
    return text + name;
}

std::string groupingMarkFault(int c) {
    if (c < ' ' || (c >= 0x7f && c < 0xa0) || c > 0xff) return "This character cannot be shown.";
    const char* fault = nullptr;
    if (c < 0x80 && isalpha(c)) fault = "is a letter.";
    if (c >= '0' && c <= '9') fault = "is a digit.";
    if (isOfOperator(c)) fault = "is an operator.";
    if (c < 0x80 && strchr("()[]{}", c)) fault = "is a bracket.";
    if (c == '=') fault = "assigns and compares.";
    if (c == '#') fault = "begins a comment.";
    if (c == '_') fault = "is part of names.";
    return fault ? static_cast<char>(c) + (" " + std::string(fault)) : "";
}
