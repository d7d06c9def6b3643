// SPDX-License-Identifier: MIT
#include "Keys.h"

#include "Helpers_String.h"

namespace {

using K = KeyAction;
using T = Target;

constexpr KeyRow key(const char* name, uint32_t code, unsigned long held, KeyAction action,
                     const char* does) {
    return {name, code, 0, held, action, does};
}

constexpr KeyRow typed(const char* name, char character, KeyAction action, const char* does) {
    return {name, KEY_OTHER, character, 0, action, does};
}

constexpr KeyRow control(const char* name, char character, KeyAction action, const char* does) {
    return {name, KEY_OTHER, character, CONTROL_KEY, action, does};
}

// An item of a menu, with the key `character` and Command, or without a key.
constexpr KeyRow item(const char* name, char character, const char* does, const MenuItem& item) {
    return {name, KEY_OTHER, character, COMMAND_KEY, KeyAction::Menu, does, item};
}

// One with which Control goes too.
constexpr KeyRow desktop(const char* name, char character, const char* does, MenuItem chosen) {
    chosen.withControl = chosen.selector;
    return item(name, character, does, chosen);
}

constexpr KeyRow item(const MenuItem& item) {
    return {"", KEY_OTHER, 0, 0, KeyAction::Menu, nullptr, item};
}

constexpr KeyRow KEYS[] = {
    key("Return", KEY_RETURN, 0, K::Commit, "evaluates the entry, wherever in it the cursor is"),
    key("Enter", KEY_ENTER, 0, K::Commit, nullptr),
    key("Tab", KEY_TAB, 0, K::Complete,
        "completes the name of a function: `sq` becomes `sqrt()`; again for the next one that fits, then "
        "variables and command words; behind `->` units. The proposal is selected: type over it, or press "
        "End to keep it"),
    key("Escape", KEY_ESCAPE, 0, K::Escape,
        "empties the entry. On an empty entry it hides the window (see [the window](#the-window))"),
    key("Escape", KEY_ESCAPE, 0, K::Interrupt, "end a script, a pause or a long calculation"),
    {"Control-C", KEY_OTHER, 'c', CONTROL_KEY, K::Interrupt, nullptr},
    {"Command-Q", KEY_OTHER, 'q', COMMAND_KEY, K::Interrupt, nullptr},
    {"Control-Q", KEY_OTHER, 'q', CONTROL_KEY, K::Interrupt, nullptr},
    key("Home", KEY_HOME, 0, K::Home, "to the start of the entry; Shift selects up to there"),
    key("Control-Left", KEY_LEFT, CONTROL_KEY, K::Home, "as Home"),
    key("Command-Left", KEY_LEFT, COMMAND_KEY, K::Home, nullptr),
    key("Control-A", KEY_A, CONTROL_KEY, K::HomeOrSelect,
        "as Home; again selects the entry, and again everything"),
    key("End", KEY_END, 0, K::End, "to the end of the entry; Shift selects up to there"),
    key("Left", KEY_LEFT, 0, K::Left, "move in the entry, not into the prompt"),
    key("Right", KEY_RIGHT, 0, K::Right, nullptr),
    key("Up", KEY_UP, 0, K::Up,
        "earlier entries: all of them while the entry is empty, or those that begin with what you have "
        "typed"),
    key("Down", KEY_DOWN, 0, K::Down, nullptr),
    control("Control-R", 'r', K::FindEarlier,
            "finds an earlier entry by any part of it, which you type: Up or Control-R for an older one, "
            "Down for a newer; Return puts it at the prompt, Escape gives up"),
    control("Control-F", 'f', K::Find,
            "finds a text in the window, likewise; Return leaves it selected, Escape goes back to the entry"),
    key("F6", KEY_F6, 0, K::Controls,
        "to the controls above: Tab goes on to the next one, Left and Right choose, Space opens a list, "
        "Escape goes back to the entry"),
    key("F10", KEY_F10, 0, K::MenuBar,
        "opens the menus (on Linux): the arrows choose, Return takes, Escape and typing on close"),
    key("Backspace", KEY_BACKSPACE, 0, K::Backspace, "delete in the entry; the prompt and the answers stay"),
    key("Delete", KEY_FORWARD_DELETE, 0, K::Delete, nullptr),
    typed("`+`", '+', K::Operator,
          "first in the entry: continues with the last answer: `ans` is put in front"),
    typed("`*`", '*', K::Operator, nullptr),
    typed("`/`", '/', K::Operator, nullptr),
    typed("`-`", '-', K::Minus,
          "first in the entry: is a sign; a second `-` makes it `ans-`, a third `-` again"),

    item({"Tallyquill", "About Tallyquill", "showAbout:", T::Delegate}),
    item({"Tallyquill", "-"}),
    desktop("Command-comma", ',', "opens the preferences",
            {"Tallyquill", "Preferences...", "menuPreferences:", T::Preferences}),
    item({"Tallyquill", "-"}),
    item("Command-H", 'h', "hides the window, quits; closing the window quits too",
         {"Tallyquill", "Hide Tallyquill", "hideMainWindow:", T::Delegate}),
    desktop("Command-Q", 'q', nullptr, {"Tallyquill", "Quit Tallyquill", "terminate:", T::Application}),

    desktop("Command-N", 'n', "clears the console; so does the command `clear`",
            {"File", "New", "newDocument:", T::Console}),
    desktop("Command-O", 'o', "opens a script, saves one",
            {"File", "Open Script...", "openDocument:", T::Console}),
    desktop("Command-S", 's', nullptr, {"File", "Save Script...", "saveDocument:", T::Console}),
    desktop("Command-Shift-S", 'S', nullptr, {"File", "Save Script As...", "saveDocumentAs:", T::Console}),

    item("Command-Z", 'z',
         "undoes changes of the entry, and takes the undoing back; Control-Z also brings back what Escape, "
         "Up, Down or New replaced",
         {"Edit", "Undo", "undo:", T::FirstResponder, 0, "undoChange:"}),
    desktop("Command-Shift-Z", 'Z', nullptr, {"Edit", "Redo", "redo:"}),
    item({"Edit", "-"}),
    item("Command-X", 'x',
         "of a selection that begins above the entry, cuts what is in the entry; above the entry it copies. "
         "Inside the entry it does nothing",
         {"Edit", "Cut", "cut:", T::FirstResponder, 0, "cutSelection:"}),
    {"Command-C",
     KEY_OTHER,
     'c',
     COMMAND_KEY,
     K::Copy,
     "copies the selection. With nothing selected it copies the last answer, and the answer blinks. What is "
     "copied reads back as the same number: with the decimal mark of now, without grouping marks, a negative "
     "one in hex or binary with its sign",
     {"Edit", "Copy", "copy:", T::FirstResponder, 0, "copy:"}},
    desktop("Command-V", 'v', "pastes as plain text. Several lines become one entry with `; ` between them",
            {"Edit", "Paste", "paste:"}),
    item("Command-A", 'a', "selects all", {"Edit", "Select All", "selectAll:"}),

    desktop("Command-1", '1', "answers in binary, decimal, hexadecimal",
            {"Display", "Binary", "menuChangeBase:", T::Console, 0}),
    desktop("Command-2", '2', nullptr, {"Display", "Decimal", "menuChangeBase:", T::Console, 1}),
    desktop("Command-3", '3', nullptr, {"Display", "Hexadecimal", "menuChangeBase:", T::Console, 2}),

    item({"Display", "-"}),
    desktop("Command-plus", '+', "makes the text bigger, smaller, as it was at first",
            {"Display", "Bigger", "makeTextBigger:", T::Console}),
    desktop("Command-minus", '-', nullptr, {"Display", "Smaller", "makeTextSmaller:", T::Console}),
    desktop("Command-0", '0', nullptr, {"Display", "Default Size", "resetTextSize:", T::Console}),

    item("Command-M", 'm', "minimizes the window, closes it", {"Window", "Minimize", "performMiniaturize:"}),
    item({"Window", "Zoom", "performZoom:"}),
    item("Command-W", 'w', nullptr, {"Window", "Close", "performClose:"}),
    item({"Window", "-"}),
    item({"Window", "Bring All to Front", "arrangeInFront:", T::Application}),

    desktop("Command-?", '?', "opens the guide, in which Home and End go to its ends",
            {"Help", "Tallyquill Guide", "showGuide:", T::Delegate}),
    desktop("Command-Shift-F", 'F', "lists all functions, all units",
            {"Help", "Functions", "showFunctions:", T::Console}),
    desktop("Command-Shift-U", 'U', nullptr, {"Help", "Units", "showUnits:", T::Console}),
    item({"Help", "Tutorial", "tutorial:", T::Console}),
};

// A character that is typed is identified by itself; with a modifier the key's own tells.
bool matches(const KeyRow& row, const KeyPress& press) {
    if ((row.held & press.held) != row.held) return false;
    if (row.code != KEY_OTHER) return row.code == press.code;
    if (row.character == 0) return false;
    const char16_t wanted = static_cast<unsigned char>(row.character);
    if (row.held != 0) return wanted == press.plain;
    return wanted == press.typed && (press.held & (COMMAND_KEY | CONTROL_KEY)) == 0;
}

// The key's character: a letter is a capital where Shift is held, whatever Caps Lock says. The key of plus
// needs no Shift.
char16_t menuCharacter(const KeyPress& press) {
    if (press.plain == '=') return '+';
    const char key = press.plain < 0x80 ? static_cast<char>(press.plain) : '\0';
    if (!isLetter(key)) return press.plain;
    const char small = lowerCase(key);
    return static_cast<char16_t>((press.held & SHIFT_KEY) ? small - 'a' + 'A' : small);
}

} // namespace

KeyTable keyTable() {
    return {KEYS, sizeof KEYS / sizeof *KEYS};
}

KeyAction actionOf(const KeyPress& press) {
    for (const KeyRow& row : keyTable()) {
        const bool isOurs = row.action != KeyAction::Interrupt && row.action != KeyAction::Menu;
        if (isOurs && matches(row, press)) return row.action;
    }
    return KeyAction::Type;
}

const KeyRow* menuRow(const KeyPress& press) {
    const bool hasControl = (press.held & CONTROL_KEY) != 0;
    for (const KeyRow& row : keyTable()) {
        if (!row.item.menu || row.character == 0) continue;
        const bool isHeld = hasControl ? row.item.withControl != nullptr : (press.held & row.held) != 0;
        if (isHeld && menuCharacter(press) == static_cast<unsigned char>(row.character)) return &row;
    }
    return nullptr;
}

bool isInterrupt(const KeyPress& press) {
    for (const KeyRow& row : keyTable()) {
        if (row.action == KeyAction::Interrupt && matches(row, press)) return true;
    }
    return false;
}
