// SPDX-License-Identifier: MIT
//
// Every setting that is kept is a row of the table SETTINGS. Command words, the settings file, both front
// ends and the preferences take what they need from there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

enum SciMode : int32_t { SCI_AUTO, SCI_NEVER, SCI_ALWAYS, SCI_ENGINEERING, SCI_PREFIX, SCI_FIXED };

// What an entry is read and answered with. A front end sets them before each entry; commands change some of
// them.
struct EntrySettings {
    bool degreeMode = false;    // angles in degrees
    int32_t sciMode = SCI_AUTO; // a SciMode
    int32_t sigFigs = 10;       // significant figures, 1 to 100; in fixed mode the number of decimals
    bool european = false;      // decimal comma: ',' and '.' trade places on input and output
    bool histStack = true;      // entries are recorded in the history; never kept
    bool tenKey = false;        // adding-machine entry: the sign follows its number
    int32_t displayBase = 10;   // 10, 16 or 2
    bool twosComp = false;      // two's complement display in hexadecimal and binary
    bool useSeparator = false;  // group the integer digits in decimal display
    char separatorChar = ',';   // the grouping character
};

// The field that an entry uses, of one of these types, or none.
struct EntryUse {
    std::variant<std::monostate, bool EntrySettings::*, int32_t EntrySettings::*, char EntrySettings::*>
        field;
    bool isOfStart = false; // set once, when the functions file has been read, and not before each entry

    bool IsOfEachEntry() const { return field.index() != 0 && !isOfStart; }
};

// One of the values that a setting can have.
struct SettingChoice {
    int value;
    const char* word;  // in a command and in a script
    size_t letters;    // so many of its letters tell it, whatever follows; 0: the whole word and nothing else
    const char* shown; // in the command's answer
    const char* title = nullptr; // in the preferences
};

struct SettingChoices {
    constexpr SettingChoices() = default;
    template <size_t N>
    constexpr SettingChoices(const SettingChoice (&list)[N]) : first(list), last(list + N) {}
    const SettingChoice* begin() const { return first; }
    const SettingChoice* end() const { return last; }

    const SettingChoice* first = nullptr;
    const SettingChoice* last = nullptr;
};

// The command that changes a setting: the word, a blank and a choice's word; or the word and a number.
struct SettingCommand {
    const char* word = nullptr;
    const char* answer = nullptr;  // the value stands behind it
    const char* refusal = nullptr; // the error for another value; null: such a statement is no command
};

// The values that a setting can have.
struct SettingValue {
    // A number, up to CHARACTER; or a text: of a color its calibrated red, green, blue and alpha, "0.1 0.9
    // 0.9 1", and of a font its points and name, "13 DejaVuSansMono".
    enum Kind { FLAG, NUMBER, CHARACTER, COLOR, FONT };

    Kind kind = FLAG;
    int standard = 0;        // the default
    int least = 0, most = 1; // of a number; with choices only these
    const char* text = "";   // the default of a color; that of the font is the console's own
};

constexpr SettingValue flagSetting(int standard) {
    return {SettingValue::FLAG, standard};
}
constexpr SettingValue numberSetting(int standard, int least, int most) {
    return {SettingValue::NUMBER, standard, least, most};
}
constexpr SettingValue colorSetting(const char* standard) {
    return {SettingValue::COLOR, 0, 0, 0, standard};
}

struct Setting : SettingValue {
    constexpr Setting(const char* settingKey, const char* line, const SettingValue& value,
                      const char* controlTitle = nullptr, EntryUse use = {}, SettingChoices values = {},
                      SettingCommand changedBy = {})
        : SettingValue(value), key(settingKey), help(line), title(controlTitle), entry(use), choices(values),
          command(changedBy) {}

    const char* key;   // in the file
    const char* help;  // what it does; of one with a command, as in the guide
    const char* title; // in the preferences; null: it has no control there
    EntryUse entry;
    SettingChoices choices;
    SettingCommand command;

    bool IsNumber() const { return kind <= CHARACTER; }

    // Whether the setting can have the value.
    bool IsPossible(double number) const;
    bool IsPossible(const std::string& description) const;

    // What a number that is missing in the file reads as: 0, or the default where that is no value.
    int WhenMissing() const { return least > 0 ? standard : 0; }

    // Sets the field that an entry uses, if there is one. As the grouping mark a point counts as a comma: a
    // decimal comma makes a point of it.
    void Apply(int value, EntrySettings& settings) const;

    // The value of that field; the default when there is none.
    int ValueIn(const EntrySettings& settings) const;

    // The choice that the argument of the command tells; null when it tells none.
    const SettingChoice* ChoiceIn(const std::string& argument) const;

    // Reads a value of a number as a person writes it: the whole word of a choice, "on" or "off" of a flag, a
    // number, or of CHARACTER the character itself. False when it is none, or the setting cannot have it.
    bool Read(const std::string& word, int& value) const;

    // The command that sets the value, such as "mode deg". A value that is no choice counts as the default.
    std::string CommandFor(int value) const;
};

inline constexpr SettingChoice ON_OFF[] = {{1, "on", 0, "ON"}, {0, "off", 0, "OFF"}};
inline constexpr SettingChoice ANGLES[] = {{1, "deg", 3, "DEGREE MODE"}, {0, "rad", 3, "RADIAN MODE"}};
inline constexpr SettingChoice DISPLAY_BASES[] = {
    {2, "bin", 3, "BIN"}, {10, "dec", 3, "DEC"}, {16, "hex", 3, "HEX"}};
inline constexpr SettingChoice SCI_MODES[] = {
    {SCI_AUTO, "auto", 4, "AUTO", "Auto"},
    {SCI_NEVER, "never", 5, "NEVER", "Never"},
    {SCI_ALWAYS, "always", 6, "ALWAYS", "Always"},
    {SCI_ENGINEERING, "eng", 3, "ENGINEERING", "Engineering"},
    {SCI_PREFIX, "prefix", 6, "PREFIX", "Metric prefixes"},
    {SCI_FIXED, "finance", 3, "FIXED", "Fixed decimals"},
    {SCI_FIXED, "fixed", 3, "FIXED"}, // another word for it
};

// clang-format off
inline constexpr Setting SETTINGS[] = {
    // key, help, its value: default, least and most;
    //     title, use, choices, command
    {"tipscode", "which tips the window has shown", numberSetting(0, 0, INT32_MAX)},
    {"firstrun", "counts the starts of the window", numberSetting(1, 0, INT32_MAX - 1)}, // it is counted up
    {"snaptoscreen", "the window snaps to the edges of the screen", flagSetting(1),
        "Snap to screen edges"},
    {"transback", "the window fades when another program is in front", flagSetting(1),
        "Fade the window when inactive"},
    {"statusicon", "shows the status item in the menu bar", flagSetting(1),
        "Show the status item"},
    {"startclear", "the window starts with an empty transcript", flagSetting(0),
        "Start with an empty transcript"},
    {"alwaystop", "kept for older files; changes nothing", flagSetting(0)},
    {"mintotray", "kept for older files; changes nothing", flagSetting(0)},
    {"autoeval", "shows the answer below the line while you type at the prompt", flagSetting(1)},
    {"twoscomp", "negative answers in hex and bin as two's complement", flagSetting(0),
        "Two's complement in hex and binary", {&EntrySettings::twosComp}},
    // The misspelling in its answer is what people and scripts know.
    {"european", "decimal comma, or point", flagSetting(0),
        "Decimal comma", {&EntrySettings::european}, ON_OFF, {"european", "EUROPEAN DELIMETERS "}},
    {"tenkey", "reads the sign behind a number, as adding machines do", flagSetting(0),
        nullptr, {&EntrySettings::tenKey, true}},
    {"separator", "groups the digits of answers by thousands", flagSetting(0),
        "Group digits by thousands", {&EntrySettings::useSeparator}},
    {"doublenegans", "a minus typed first is a sign; off: it puts ans in front", flagSetting(1)},
    {"degmode", "angles in degrees or radians", flagSetting(1),
        nullptr, {&EntrySettings::degreeMode}, ANGLES, {"mode", ""}},
    {"scimode", "when and how numbers have exponents", numberSetting(SCI_AUTO, SCI_AUTO, SCI_FIXED),
        "Exponents:", {&EntrySettings::sciMode}, SCI_MODES,
        {"scimode", "SCIENTIFIC MODE: ", "invalid scimode choice"}},
    {"nsfont", "the window's font: its points and its name", {SettingValue::FONT}},
    {"schar", "the mark between groups of digits", {SettingValue::CHARACTER, ',', ' ', 255},
        "Grouping mark:", {&EntrySettings::separatorChar}},
    {"histsz", "so many entries of the window are kept, 1 to 999", numberSetting(30, 1, 999),
        "Lines of history:"},
    {"dispbase", "the base in which answers are shown", numberSetting(10, 2, 16),
        nullptr, {&EntrySettings::displayBase}, DISPLAY_BASES, {"display", "DISPLAY "}},
    {"sigfigs", "shows so many significant figures, 1 to 100", numberSetting(10, 1, 100),
        "Significant figures:", {&EntrySettings::sigFigs}, {},
        {"sigfigs", "SIGNIFICANT FIGURES: ", "bad significant figures"}},
    {"financed", "kept for older files; changes nothing", numberSetting(2, 0, 100)},
    // X servers count in 16 bits.
    {"x", "the window's left edge on the screen, in points", numberSetting(450, -30000, 30000)},
    {"y", "the window's lower edge on the screen, in points", numberSetting(250, -30000, 30000)},
    {"cx", "the window's width, in points", numberSetting(450, 100, 10000)},
    {"cy", "the window's height, in points", numberSetting(250, 100, 10000)},
    {"bgcolor", "the window's background: red, green, blue and alpha, 0 to 1",
        colorSetting("0.1 0.1 0.1 1"),
        "Background color:"},
    {"fgcolor", "the window's text: red, green, blue and alpha, 0 to 1",
        colorSetting("0.1 0.9 0.9 1"),
        "Text color:"},
    {"trans", "how much the window fades, in percent", numberSetting(25, 0, 100),
        "Transparency:"},
};
// clang-format on

// The row of the key; null when there is none.
const Setting* findSetting(std::string_view key);

// The settings of a console that nobody has changed yet.
EntrySettings standardSettings();

// A color's parts, each from 0 to 1. False when the text is none.
bool readColor(const std::string& text, double (&parts)[4]);
std::string colorText(const double (&parts)[4]);

// A font's size, from 4 to 200 points, and its name. False when the text is none.
bool readFont(const std::string& text, double& points, std::string& name);
std::string fontText(double points, const std::string& name);

// Why a character, an ISO Latin-1 one if any, cannot be the mark between groups of digits, such as "# begins
// a comment."; empty when it can. What the engine reads as part of a number or beside one would make another
// number of an answer.
std::string groupingMarkFault(int character);
