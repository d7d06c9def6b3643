// SPDX-License-Identifier: MIT
//
// The table of settings: what a row says is what entries, command words and files get. A new row is tested
// here without being named.
#include "Settings.h"
#include "functions_fixture.h"

#include "../guide.h"
#include "../settings_table.h"
#include "questions.h"

#include <set>
#include <string>

namespace {

// Stands for the value of any field.
struct AnyValue {
    template <class Field> operator Field() const;
};

// How many fields an aggregate has: as long as it can be made of these values and one more, there are more.
template <class, class... Values> constexpr size_t fieldsFrom(long) {
    return sizeof...(Values);
}
template <class Aggregate, class... Values>
constexpr auto fieldsFrom(int) -> decltype(Aggregate{Values()..., AnyValue()}, size_t()) {
    return fieldsFrom<Aggregate, Values..., AnyValue>(0);
}

class SettingsTable : public Functions {};

// --- The guide ---

// The default as a person writes it.
std::string standardText(const Setting& setting) {
    if (!setting.IsNumber()) return setting.text;
    for (const SettingChoice& choice : setting.choices) {
        if (choice.value == setting.standard) return choice.word;
    }
    if (setting.kind == Setting::FLAG) return setting.standard != 0 ? "on" : "off";
    if (setting.kind == Setting::CHARACTER) return {static_cast<char>(setting.standard)};
    return std::to_string(setting.standard);
}

TEST_F(SettingsTable, IsThatOfTheGuide) {
    std::vector<GuideCells> rows;
    for (const Setting& setting : SETTINGS) {
        const std::string text = standardText(setting);
        rows.push_back(
            {std::string("`") + setting.key + "`", text.empty() ? "" : "`" + text + "`", setting.help});
    }
    EXPECT_EQ(guideTable(GUIDE, "| Setting | At first | What it is |"), rows);
}

} // namespace

TEST_F(SettingsTable, EveryKeyIsThereOnceAndItsDefaultIsPossible) {
    std::set<std::string> keys;
    for (const Setting& setting : SETTINGS) {
        EXPECT_TRUE(keys.insert(setting.key).second) << setting.key;
        EXPECT_EQ(findSetting(setting.key), &setting);
        EXPECT_TRUE(!setting.IsNumber() || setting.IsPossible(setting.standard)) << setting.key;
        EXPECT_TRUE(setting.kind != Setting::COLOR || setting.IsPossible(std::string(setting.text)))
            << setting.key;
    }
    EXPECT_EQ(findSetting("no such key"), nullptr);
}

TEST_F(SettingsTable, NumbersBesideTheRangeAreRefused) {
    for (const Setting& setting : SETTINGS) {
        if (!setting.IsNumber()) continue;
        for (const double number : {setting.least - 1.0, setting.most + 1.0, setting.standard + 0.5, 1e300}) {
            EXPECT_FALSE(setting.IsPossible(number)) << setting.key << number;
        }
        EXPECT_TRUE(setting.IsPossible(otherValue(setting))) << setting.key;
        EXPECT_FALSE(setting.IsPossible(std::string("1"))) << setting.key;
    }
}

TEST_F(SettingsTable, AMissingNumberReadsAsZeroOrAsADefaultWhereZeroIsNoValue) {
    for (const Setting& setting : SETTINGS) {
        if (!setting.IsNumber()) continue;
        const bool isZeroPossible = setting.IsPossible(0.0);
        EXPECT_EQ(setting.WhenMissing(), isZeroPossible ? 0 : setting.standard) << setting.key;
    }
}

TEST_F(SettingsTable, WhatARowSetsForAnEntryIsReadFromThere) {
    for (const Setting& setting : SETTINGS) {
        EntrySettings entry;
        const int other = setting.IsNumber() ? otherValue(setting) : 0;
        setting.Apply(other, entry);
        const bool isUsed = setting.entry.field.index() != 0;
        EXPECT_EQ(setting.ValueIn(entry), isUsed ? other : setting.standard) << setting.key;
    }
}

// What every file and every other program has taken since the first version.
TEST_F(SettingsTable, DefaultsAreThoseOfAConsoleThatNobodyHasChanged) {
    const std::pair<const char*, int> defaults[] = {
        {"tipscode", 0},   {"firstrun", 1},     {"snaptoscreen", 1}, {"transback", 1}, {"statusicon", 1},
        {"startclear", 0}, {"alwaystop", 0},    {"mintotray", 0},    {"autoeval", 1},  {"twoscomp", 0},
        {"european", 0},   {"tenkey", 0},       {"separator", 0},    {"degmode", 1},   {"scimode", 0},
        {"schar", ','},    {"doublenegans", 1}, {"histsz", 30},      {"dispbase", 10}, {"sigfigs", 10},
        {"financed", 2},   {"x", 450},          {"y", 250},          {"cx", 450},      {"cy", 250},
        {"trans", 25}};
    for (const auto& [key, value] : defaults) EXPECT_EQ(findSetting(key)->standard, value) << key;
}

TEST_F(SettingsTable, EveryFieldThatAnEntryUsesHasARow) {
    size_t rows = 0;
    for (const Setting& setting : SETTINGS) rows += setting.entry.field.index() != 0 ? 1 : 0;
    EXPECT_EQ(fieldsFrom<EntrySettings>(0), rows + 1) << "histStack is not kept: a command alone changes it";
}

TEST_F(SettingsTable, APointAsTheGroupingMarkCountsAsAComma) {
    EntrySettings entry;
    findSetting("schar")->Apply('.', entry);
    EXPECT_EQ(entry.separatorChar, ',');
    findSetting("schar")->Apply(0xb7, entry);
    EXPECT_EQ(findSetting("schar")->ValueIn(entry), 0xb7);
}

TEST_F(SettingsTable, EveryCommandSetsItsValueAndAnInterruptedEntryTakesItBack) {
    for (const Setting& setting : SETTINGS) {
        if (!setting.command.word) continue;
        for (const int value : {otherValue(setting), setting.standard}) {
            const std::string command = setting.CommandFor(value);
            EXPECT_EQ(STATUS_MESSAGE, Enter(command)) << command;
            EXPECT_EQ(setting.ValueIn(calc), value) << command;
        }
        questions = 0;
        stopAt = 2; // at the second statement
        calc.interruptCheck = countQuestions;
        EXPECT_EQ(STATUS_ERROR, Enter(setting.CommandFor(otherValue(setting)) + ";1")) << setting.key;
        calc.interruptCheck = nullptr;
        EXPECT_EQ(setting.ValueIn(calc), setting.standard) << setting.key;
    }
}

TEST_F(SettingsTable, EveryChoiceHasACommandThatSaysItInItsAnswer) {
    for (const Setting& setting : SETTINGS) {
        for (const SettingChoice& choice : setting.choices) {
            const std::string command = setting.command.word + (" " + std::string(choice.word));
            EXPECT_NE(Answer(command).find(choice.shown), std::string::npos) << command;
            EXPECT_EQ(setting.ValueIn(calc), choice.value) << command;
        }
    }
}

TEST_F(SettingsTable, AValueIsReadAsAPersonWritesIt) {
    const auto read = [](const char* key, const char* word) {
        int value = -1;
        return findSetting(key)->Read(word, value) ? value : -1;
    };
    for (const Setting& setting : SETTINGS) {
        for (const SettingChoice& choice : setting.choices)
            EXPECT_EQ(read(setting.key, choice.word), choice.value);
    }
    EXPECT_EQ(read("twoscomp", "on"), 1);
    EXPECT_EQ(read("twoscomp", "off"), 0);
    EXPECT_EQ(read("sigfigs", "33"), 33);
    EXPECT_EQ(read("schar", "'"), '\'');
    for (const auto& [key, word] : {std::pair("degmode", "degrees"),
                                    {"degmode", "1"},
                                    {"dispbase", "8"},
                                    {"twoscomp", "yes"},
                                    {"sigfigs", "0"},
                                    {"sigfigs", "3.5"},
                                    {"sigfigs", ""},
                                    {"sigfigs", "3x"},
                                    {"schar", "5"},
                                    {"schar", "ab"},
                                    {"bgcolor", "1"}})
        EXPECT_EQ(read(key, word), -1) << key << ' ' << word;
}

TEST_F(SettingsTable, AScriptNamesAngleModeExponentsAndBase) {
    EXPECT_EQ(findSetting("degmode")->CommandFor(0), "mode rad");
    EXPECT_EQ(findSetting("scimode")->CommandFor(SCI_FIXED), "scimode finance");
    EXPECT_EQ(findSetting("scimode")->CommandFor(9), "scimode auto") << "what is none counts as the default";
    EXPECT_EQ(findSetting("dispbase")->CommandFor(7), "display dec");
    EXPECT_EQ(findSetting("sigfigs")->CommandFor(33), "sigfigs 33");
}

TEST_F(SettingsTable, OfAWordSoManyLettersCountAsTheCommandsHaveAlwaysTaken) {
    EXPECT_EQ("** DEGREE MODE **\n", Answer("Mode Degrees"));
    EXPECT_EQ("** SCIENTIFIC MODE: FIXED **\n", Answer("scimode fin"));
    EXPECT_EQ("** SCIENTIFIC MODE: FIXED **\n", Answer("scimode fixpoint"));
    EXPECT_EQ("** SCIENTIFIC MODE: ENGINEERING **\n", Answer("scimode eng"));
    EXPECT_EQ("** ERROR: invalid scimode choice **\n", Answer("scimode alwa"));
    EXPECT_EQ("** DISPLAY HEX **\n", Answer("display hexadecimal"));
    EXPECT_EQ(STATUS_ERROR, Enter("european once")) << "no command, and no expression";
    EXPECT_FALSE(calc.european);
}

TEST_F(SettingsTable, AGroupingMarkIsNothingThatAnEntryReadsOtherwise) {
    for (int c = 0; c <= 0x100; c++) {
        const std::string sign(1, static_cast<char>(c));
        std::string fault;
        if (c < ' ' || (c >= 0x7f && c < 0xa0) || c > 0xff)
            fault = "This character cannot be shown.";
        else if (strchr("+-*/%^!<>&|@", c))
            fault = sign + " is an operator.";
        else if (strchr("()[]{}", c))
            fault = sign + " is a bracket.";
        else if (c >= '0' && c <= '9')
            fault = sign + " is a digit.";
        else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
            fault = sign + " is a letter.";
        else if (c == '=')
            fault = "= assigns and compares.";
        else if (c == '#')
            fault = "# begins a comment.";
        else if (c == '_')
            fault = "_ is part of names.";
        EXPECT_EQ(groupingMarkFault(c), fault) << c;
    }
}

TEST_F(SettingsTable, ColorsAndFontsAreTextsWithinTheirRanges) {
    double parts[4] = {};
    EXPECT_TRUE(readColor("0.5 0.25 1 0", parts));
    EXPECT_EQ(colorText(parts), "0.5 0.25 1 0");
    for (const char* const text :
         {"", "a b c d", "0.5 0.5 0.5", "2 0 0 1", "-1 0 0 1", "nan 0 0 1", "0 0 inf 1"}) {
        EXPECT_FALSE(readColor(text, parts)) << text;
    }
    double points = 0;
    std::string name;
    EXPECT_TRUE(readFont("13.5 DejaVu Sans", points, name));
    EXPECT_EQ(fontText(points, name), "13.5 DejaVu Sans");
    for (const char* const text : {"", "13", "13 ", "nan x", "0 x", "3.9 x", "201 x", "1e9 x", "x 13"}) {
        EXPECT_FALSE(readFont(text, points, name)) << text;
    }
}
