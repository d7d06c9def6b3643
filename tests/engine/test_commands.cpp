// SPDX-License-Identifier: MIT
//
// Command words with a memory or a limit.
#include "Helpers_String.h"
#include "functions_fixture.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace {

TEST_F(Functions, UnitsAreFoundByTheirDefinitionsHead) {
    calc.unitDefs.Push(strDuplicate("unit furlong=220 yard"));
    calc.unitDefs.Push(strDuplicate("unit fur=1 furlong"));
    EXPECT_STREQ("unit furlong=220 yard", calc.UnitExists("furlong")->text);
    EXPECT_STREQ("unit fur=1 furlong", calc.UnitExists("fur")->text);
    EXPECT_EQ(nullptr, calc.UnitExists("Furlong"));
    EXPECT_EQ(nullptr, calc.UnitExists("furl"));
    EXPECT_EQ(nullptr, calc.UnitExists(""));
    EXPECT_EQ("unit furlong=220 yard\nunit fur=1 furlong\n", Answer("list units"));
    EXPECT_EQ("** deleted unit furlong **\n", Answer("del furlong"));
    EXPECT_EQ("unit fur=1 furlong\n", Answer("list units"));
}

TEST_F(Functions, DeletingAVariableForgetsItsName) {
    Enter("x=1");
    EXPECT_STREQ("x", calc.lastName);
    Enter("del x");
    EXPECT_EQ(nullptr, calc.lastName);
    EXPECT_EQ(nullptr, calc.lastValue);
    EXPECT_EQ("ans = 2\n", Answer("2"));
    Enter("del all");
    EXPECT_EQ(nullptr, calc.lastName);
}

TEST_F(Functions, EverySecondGospelIsLeftToTheFrontEnd) {
    const std::string first = Answer("gospel");
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
    EXPECT_GT(std::count(first.begin(), first.end(), '.'), 3);
    EXPECT_EQ("    << type 'gospel' for more >>\n", first.substr(first.rfind("    <<")));
    EXPECT_EQ("gospel", Answer("GOSPEL"));
    EXPECT_EQ(STATUS_COMMAND, calc.status);
    EXPECT_EQ(first, Answer("gospel"));
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
}

TEST_F(Functions, WhatIsEchoedBeyondTheTextsSizeIsRefused) {
    const std::string thousand(1000, 'x');
    EXPECT_EQ("** ERROR: 10000 max characters to show **\n", Answer(repeated("echo " + thousand + ";", 12)));
    EXPECT_EQ(9u * 1001u, strlen(calc.echoText));
    const std::string nine = "echo " + std::string(9000, 'x') + ";echo ";
    EXPECT_EQ(STATUS_MESSAGE, Enter(nine + std::string(997, 'z'))); // with two line ends and the NUL 10000
    EXPECT_EQ(9999u, strlen(calc.echoText));
    EXPECT_EQ("** ERROR: 10000 max characters to show **\n", Answer(nine + std::string(998, 'z')));
    EXPECT_EQ(STATUS_MESSAGE, Enter("echo " + std::string(9990, 'y')));
    EXPECT_EQ(9991u, strlen(calc.echoText));
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + std::string(5000, 'a')));
    EXPECT_EQ("convert+" + std::string(1000, 'a'), calc.echoText);
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + repeated("a ", 1000)));
    EXPECT_EQ("convert+" + repeated("a+", 500), calc.echoText);
}

// --- The guide ---

// The rows of the guide's table of command words, without its head and without links.
std::vector<std::string> commandsOfGuide() {
    std::ifstream guide(GUIDE);
    std::string line;
    while (std::getline(guide, line) && line != "## Command words") continue;
    std::vector<std::string> rows;
    while (std::getline(guide, line) && line.rfind("## ", 0) != 0) {
        if (line[0] == '|')
            rows.push_back(std::regex_replace(line, std::regex("\\[([^\\]]*)\\]\\([^)]*\\)"), "$1"));
    }
    rows.erase(rows.begin(),
               rows.begin() + std::min<std::ptrdiff_t>(2, static_cast<std::ptrdiff_t>(rows.size())));
    return rows;
}

std::string rowOf(const std::string& usage, const std::string& help) {
    return "| `" + std::regex_replace(usage, std::regex(", "), "`, `") + "` | " + help + " |";
}

// Of more choices than fit into a cell the first one has the command in front, and the others stand behind
// the help.
std::string rowOf(const Setting& setting) {
    const std::string word = setting.command.word;
    std::string usage;
    std::string help = setting.help;
    const bool isLong = std::distance(setting.choices.begin(), setting.choices.end()) > 3;
    for (const SettingChoice& choice : setting.choices) {
        if (usage.empty() || !isLong)
            usage += (usage.empty() ? "" : ", ") + word + " " + choice.word;
        else
            help += (&choice == setting.choices.begin() + 1 ? ": also `" : ", `") + std::string(choice.word) +
                    "`";
    }
    if (usage.empty()) usage = word + " " + std::to_string(setting.standard);
    return rowOf(usage, help);
}

std::vector<std::string> rowsOfSettings() {
    std::vector<std::string> rows;
    for (const Setting& setting : SETTINGS) {
        if (setting.command.word) rows.push_back(rowOf(setting));
    }
    return rows;
}

std::vector<std::string> rowsOfCommands() {
    std::vector<std::string> rows = rowsOfSettings();
    std::string usage;
    for (const Command& command : commandTable()) {
        if (!command.usage) continue;
        usage += (usage.empty() ? "" : ", ") + std::string(command.usage);
        if (!command.help) continue;
        rows.push_back(rowOf(usage, command.help));
        usage.clear();
    }
    return rows;
}

TEST_F(Functions, CommandWordsAreThoseOfTheGuide) {
    EXPECT_EQ(rowsOfCommands(), commandsOfGuide());
}

// --- The table ---

TEST_F(Functions, WhatTheTableOfCommandsShowsIsCarriedOut) {
    const std::string nothing = "** ERROR 7";
    for (const Command& command : commandTable()) {
        if (!command.usage) continue;
        const std::string first = std::string(command.usage).substr(0, std::string(command.usage).find(", "));
        const int status = Enter(first);
        EXPECT_TRUE(status == STATUS_MESSAGE || status == STATUS_COMMAND || first == "del NAME" ||
                    first == "disp NAME")
            << first << calc.message;
        EXPECT_NE(nothing, std::string(calc.message).substr(0, nothing.size())) << first;
        EXPECT_NE(STATUS_COMMAND, Preview(first));
    }
}

} // namespace
