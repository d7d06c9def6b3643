// SPDX-License-Identifier: MIT
//
// The table of keys: what is found for a key press, and that the guide says the same.
#include "Keys.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

namespace {

KeyPress press(uint32_t code, unsigned long held = 0) {
    return {code, 0, 0, held};
}

KeyPress character(char16_t plain, unsigned long held = 0) {
    return {KEY_OTHER, plain, plain, held};
}

// --- What is found ---

TEST(Keys, AKeyWithAModifierComesBeforeTheKeyAlone) {
    EXPECT_EQ(actionOf(press(KEY_LEFT)), KeyAction::Left);
    EXPECT_EQ(actionOf(press(KEY_LEFT, SHIFT_KEY)), KeyAction::Left);
    EXPECT_EQ(actionOf(press(KEY_LEFT, CONTROL_KEY)), KeyAction::Home);
    EXPECT_EQ(actionOf(press(KEY_LEFT, COMMAND_KEY | SHIFT_KEY)), KeyAction::Home);
    EXPECT_EQ(actionOf(press(KEY_A, CONTROL_KEY)), KeyAction::HomeOrSelect);
    EXPECT_EQ(actionOf(press(KEY_A)), KeyAction::Type);
}

TEST(Keys, OperatorsAreToldByWhatIsTyped) {
    EXPECT_EQ(actionOf(character('*')), KeyAction::Operator);
    EXPECT_EQ(actionOf({KEY_OTHER, '8', '*', SHIFT_KEY}), KeyAction::Operator);
    EXPECT_EQ(actionOf({KEY_OTHER, '*', 'x', 0}), KeyAction::Type);
    EXPECT_EQ(actionOf(character('-')), KeyAction::Minus);
    EXPECT_EQ(actionOf(character('-', COMMAND_KEY)), KeyAction::Type);
    EXPECT_EQ(actionOf(character('-', CONTROL_KEY)), KeyAction::Type);
}

TEST(Keys, TheMenusKeysAreLeftToTheMenusButForCopy) {
    EXPECT_EQ(actionOf(character('v', COMMAND_KEY)), KeyAction::Type);
    EXPECT_EQ(actionOf(character('c', COMMAND_KEY)), KeyAction::Copy);
    EXPECT_EQ(actionOf(character('c')), KeyAction::Type);
    EXPECT_EQ(actionOf(character(0x163, COMMAND_KEY)), KeyAction::Type)
        << "0x63, which is c, in its low byte";
}

TEST(Keys, ThreeOfThemEndWhatRuns) {
    EXPECT_TRUE(isInterrupt(press(KEY_ESCAPE)));
    EXPECT_TRUE(isInterrupt(character('q', COMMAND_KEY)));
    EXPECT_TRUE(isInterrupt({KEY_OTHER, 'c', 3, CONTROL_KEY}));
    EXPECT_FALSE(isInterrupt(character('q')));
    EXPECT_FALSE(isInterrupt(character('c', COMMAND_KEY)));
    EXPECT_FALSE(isInterrupt(press(KEY_RETURN)));
}

// --- Menus ---

std::string chosen(char16_t plain, unsigned long held) {
    const KeyRow* const row = menuRow(character(plain, held));
    return row ? row->item.title : "";
}

TEST(MenuKeys, AreTakenWithCommand) {
    EXPECT_EQ(chosen('c', COMMAND_KEY), "Copy");
    EXPECT_EQ(chosen('h', COMMAND_KEY), "Hide Tallyquill");
    EXPECT_EQ(chosen('y', COMMAND_KEY), "");
    EXPECT_EQ(chosen('c', 0), "");
    EXPECT_EQ(chosen('c', SHIFT_KEY), "");
    EXPECT_EQ(chosen(0x443, COMMAND_KEY), "") << "0x43, which is C, in its low byte";
}

TEST(MenuKeys, AreTakenWithControlWhereOtherProgramsDo) {
    const struct {
        char key;
        const char* title;
    } expected[] = {{'c', "Copy"},
                    {'v', "Paste"},
                    {'x', "Cut"},
                    {'z', "Undo"},
                    {'n', "New"},
                    {'o', "Open Script..."},
                    {'s', "Save Script..."},
                    {'q', "Quit Tallyquill"},
                    {',', "Preferences..."},
                    {'+', "Bigger"},
                    {'-', "Smaller"},
                    {'0', "Default Size"}};
    for (const auto& one : expected)
        EXPECT_EQ(chosen(static_cast<char16_t>(one.key), CONTROL_KEY), one.title);
    for (const char key : {'a', 'h', 'w', 'm'})
        EXPECT_EQ(chosen(static_cast<char16_t>(key), CONTROL_KEY), "")
            << key << " moves, erases or ends a line";
}

TEST(MenuKeys, ShiftIsToldFromCapsLock) {
    EXPECT_EQ(chosen('Z', CONTROL_KEY | SHIFT_KEY), "Redo");
    EXPECT_EQ(chosen('Z', CONTROL_KEY), "Undo") << "Caps Lock alone";
    EXPECT_EQ(chosen('z', CONTROL_KEY | SHIFT_KEY), "Redo") << "both";
    EXPECT_EQ(chosen('S', COMMAND_KEY | SHIFT_KEY), "Save Script As...");
    EXPECT_EQ(chosen('F', CONTROL_KEY | SHIFT_KEY), "Functions");
    EXPECT_EQ(chosen('U', CONTROL_KEY | SHIFT_KEY), "Units");
    EXPECT_EQ(chosen('f', CONTROL_KEY), "") << "which finds";
}

TEST(MenuKeys, PlusNeedsNoShift) {
    EXPECT_EQ(chosen('=', CONTROL_KEY), "Bigger");
    EXPECT_EQ(chosen('+', CONTROL_KEY | SHIFT_KEY), "Bigger");
}

TEST(MenuKeys, ControlXIsTheDesktopsOwnCut) {
    const KeyRow* const row = menuRow(character('x', CONTROL_KEY));
    ASSERT_NE(row, nullptr);
    EXPECT_STREQ(row->item.selector, "cut:");
    EXPECT_STREQ(row->item.withControl, "cutSelection:");
}

// --- The rows ---

TEST(Keys, AreNotTakenTwice) {
    std::set<std::string> seen;
    for (const KeyRow& row : keyTable()) {
        if (row.name[0] == '\0') continue;
        const bool isInterrupt = row.action == KeyAction::Interrupt;
        EXPECT_TRUE(seen.insert(row.name + std::string(isInterrupt ? " while something runs" : "")).second)
            << row.name;
    }
}

TEST(Keys, WithACharacterAreNamedForIt) {
    for (const KeyRow& row : keyTable()) {
        const bool isNamedInWords = row.held != 0 && row.character != 0 && strchr(",+-", row.character);
        if (row.character == 0 || isNamedInWords) continue;
        std::string name;
        if (row.held & CONTROL_KEY) name += "Control-";
        if (row.held & COMMAND_KEY) name += "Command-";
        if (isupper(row.character)) name += "Shift-";
        name += static_cast<char>(toupper(row.character));
        EXPECT_EQ(row.name, row.held == 0 ? "`" + name + "`" : name);
    }
}

// --- The guide ---

// The lines of the guide's table of keys, without its head.
std::vector<std::string> guideRows() {
    std::ifstream guide(TALLYQUILL_GUIDE);
    std::string line;
    while (std::getline(guide, line) && line != "## Keys") {
    }
    std::vector<std::string> rows;
    while (std::getline(guide, line) && line.rfind("## ", 0) != 0) {
        if (line[0] == '|') rows.push_back(line);
    }
    if (rows.size() > 2) rows.erase(rows.begin(), rows.begin() + 2);
    return rows;
}

std::vector<std::string> tableRows() {
    std::vector<std::string> rows;
    std::string names;
    std::string does;
    const auto end = [&] {
        if (!names.empty()) rows.push_back("| " + names + " | " + does + " |");
    };
    for (const KeyRow& row : keyTable()) {
        if (row.name[0] == '\0') continue;
        if (!row.does) {
            names += std::string(", ") + row.name;
            continue;
        }
        end();
        names = row.name;
        does = row.does;
    }
    end();
    return rows;
}

TEST(Keys, AreThoseOfTheGuide) {
    EXPECT_EQ(guideRows(), tableRows());
}

} // namespace
