// SPDX-License-Identifier: MIT
//
// The command line of the terminal console. Every option is a row of one table.
#pragma once

#include "Settings.h"

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

struct Options {
    enum class Action { Evaluate, ShowHelp, ShowVersion, RefuseUsage };

    // What is evaluated: an entry, or the lines of a file.
    struct Input {
        std::string_view text; // the entry, or the file's name; "-" is standard input
        bool isFile = false;
    };

    Action action = Action::Evaluate;
    std::string refusal; // RefuseUsage: what is wrong, one or two lines without the last line feed

    std::vector<Input> inputs;          // in the order in which they were given
    bool quiet = false;                 // values alone
    bool last = false;                  // the last value alone
    bool json = false;                  // an object for each statement (Json.h)
    bool failFast = false;              // the first error ends the run
    std::string_view each;              // the entry for every line of standard input; empty: none
    std::string_view separator;         // what stands between the fields of these; empty: blanks
    bool preview = false;               // as while one types: within a limit of work, and nothing is stored
    std::vector<std::string_view> with; // names of definitions that ship (OwnFiles.h)
    bool noFiles = false;               // no file of the person's is read
    bool user = false;                  // the person's settings are taken too
    bool plain = false;                 // the prompt reads lines without an editor
    std::string_view color;             // "auto", "always" or "never"; empty: auto
    bool trace = false;                 // the engine's trace goes to standard error

    std::vector<std::pair<const Setting*, int>> settings; // what differs from those
};

// What an option does: it sets a flag or a text, decides the action, adds an input,
// or names of definitions between commas. Or it sets a setting,
// to the value that its choice's word or number (empty: the option's argument) tells.
struct SettingOption {
    const char* key;
    const char* value = "";
};
struct FileOption {};
struct WithOption {};
using OptionUse = std::variant<bool Options::*, std::string_view Options::*, Options::Action, SettingOption,
                               FileOption, WithOption>;

struct OptionRow {
    const char* name;     // behind "--"
    char letter;          // behind one '-', or 0
    const char* argument; // what --help calls its argument, or "a|b|c" when it is one of these; null: none
    const char* help;
    OptionUse use;
};

// Ends with a row whose name is null.
const OptionRow* optionTable();

// What --help shows.
std::string helpText();

// Reads the arguments behind the program's name. Options may stand anywhere before "--"; behind it everything
// is an entry. "--name=value" and "--name value", "-xvalue" and "-x value" are the same, and "-xy" is "-x
// -y". The first option that asks for help or the version, is unknown or lacks a good value decides the
// action and ends the reading. The views point into argv.
Options parseOptions(int argc, const char* const* argv);
