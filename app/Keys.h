// SPDX-License-Identifier: MIT
//
// What the keys do, in the console and in the menus: one table, a row for each key and for each item of a
// menu. To add one, add a row, and for a new action its code in Transcript.cpp. docs/guide.md has the same
// table; a test compares.
#pragma once

#include <cstddef>
#include <cstdint>

// Virtual key codes as macOS has them.
enum VirtualKey : uint32_t {
    KEY_A = 0,
    KEY_RETURN = 36,
    KEY_TAB = 48,
    KEY_BACKSPACE = 51,
    KEY_ESCAPE = 53,
    KEY_ENTER = 76, // keypad
    KEY_F6 = 97,
    KEY_F10 = 109,
    KEY_HOME = 115,
    KEY_FORWARD_DELETE = 117,
    KEY_END = 119,
    KEY_LEFT = 123,
    KEY_RIGHT = 124,
    KEY_DOWN = 125,
    KEY_UP = 126,
    KEY_OTHER = 0xffff // any other key, on GNUstep
};

// AppKit's flags of the keys that are held.
enum Modifier : unsigned long {
    SHIFT_KEY = 1 << 17,
    CONTROL_KEY = 1 << 18,
    COMMAND_KEY = 1 << 20,
    FUNCTION_KEY = 1 << 23
};

struct KeyPress {
    uint32_t code;  // virtual
    char16_t plain; // the character without the modifiers but Shift; 0 when there is none or more than one
    char16_t typed; // the first one with them, or 0
    unsigned long held; // modifiers
};

enum class KeyAction {
    Type, // any key without a row
    Commit,
    Complete,
    Escape,
    Home,
    HomeOrSelect, // again the entry, again everything
    End,
    Left,
    Right,
    Up,
    Down,
    Backspace,
    Delete,
    Operator,
    Minus,
    Copy,
    Find,        // in the transcript
    FindEarlier, // an earlier entry
    Controls,    // to those above the console
    MenuBar,
    Interrupt, // ends what runs, and is looked for only then
    Menu       // the menu's alone
};

enum class Target { FirstResponder, Console, Delegate, Preferences, Application };

struct MenuItem {
    const char* menu = nullptr; // null: none
    const char* title = "";     // "-": a separator
    const char* selector = "";
    Target target = Target::FirstResponder;
    int tag = 0;
    // On Linux Control does it too and the menu shows that, where other programs there use Control: the
    // selector, nearly always the same one. Null: only Command does.
    const char* withControl = nullptr;
};

struct KeyRow {
    const char* name;   // as the guide writes it; "": no key
    uint32_t code;      // KEY_OTHER: the character tells
    char character;     // 0: none. In a menu a capital stands for Shift
    unsigned long held; // the modifiers that have to be held; others may be
    KeyAction action;
    const char*
        does; // as the guide says; null: the text of the row above, which has all their names, says it too
    MenuItem item = {};
};

struct KeyTable {
    const KeyRow* rows;
    size_t count;
    const KeyRow* begin() const { return rows; }
    const KeyRow* end() const { return rows + count; }
};

// All rows. Of two rows for a key press the first one holds. The items of a menu stand in its order.
KeyTable keyTable();

// What the console does with a key press; it carries out neither Interrupt nor Menu.
KeyAction actionOf(const KeyPress& press);

// The item that the key press chooses in the menus, for Linux: with Command, or with Control where the row
// says so. Null when there is none.
const KeyRow* menuRow(const KeyPress& press);

// Whether the key press ends what runs.
bool isInterrupt(const KeyPress& press);
