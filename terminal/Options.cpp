// SPDX-License-Identifier: MIT
#include "Options.h"

#include "EntryText.h"
#include "OwnFiles.h"

#include <algorithm>

namespace {

using Action = Options::Action;

// clang-format off
constexpr OptionRow TABLE[] = {
    {"file", 'f', "FILE", "evaluate the lines of FILE; - is standard input", FileOption{}},
    {"each", 0, "ENTRY",
        "evaluate ENTRY for each line of standard input, whose\n"
        "fields are the numbers x (the first), x1, x2, ...", &Options::each},
    {"separator", 'F', "SEP", "with --each, fields stand between SEPs and not blanks", &Options::separator},
    {"quiet", 'q', nullptr, "print values alone, no names and no messages", &Options::quiet},
    {"last", 0, nullptr, "print the last value only", &Options::last},
    {"json", 0, nullptr, "print a JSON object for each statement, errors too", &Options::json},
    {"fail-fast", 0, nullptr, "stop at the first error", &Options::failFast},
    {"preview", 0, nullptr, "evaluate as while one types: briefly, storing nothing", &Options::preview},
    {"with", 0, "LIST",
        "also define what ships as everyday, constants, money,\n"
        "time, temperature: their names with commas between", WithOption{}},
    {"no-files", 0, nullptr, "read none of your own definitions", &Options::noFiles},
    {"user", 0, nullptr, "take your own settings too, as the window has them", &Options::user},
    {"deg", 0, nullptr, "angles in degrees, as without it", SettingOption{"degmode", "deg"}},
    {"rad", 0, nullptr, "angles in radians", SettingOption{"degmode", "rad"}},
    {"figures", 0, "N", "significant figures, 1 to 100; of fixed, decimals", SettingOption{"sigfigs"}},
    {"base", 0, "bin|dec|hex", "the base of answers", SettingOption{"dispbase"}},
    {"exponents", 0, "auto|never|always|eng|prefix|finance|fixed",
        "when and how answers have exponents", SettingOption{"scimode"}},
    {"twos-complement", 0, nullptr,
        "negative answers in hex and bin as two's complement", SettingOption{"twoscomp", "1"}},
    {"group", 0, nullptr, "group the digits of answers by thousands", SettingOption{"separator", "1"}},
    {"mark", 0, "CHARACTER", "the mark between groups, instead of a comma", SettingOption{"schar"}},
    {"comma", 0, nullptr, "decimal comma, in entries too", SettingOption{"european", "on"}},
    {"ten-key", 0, nullptr,
        "read the sign behind a number, as adding machines do", SettingOption{"tenkey", "1"}},
    {"plain", 0, nullptr, "at the prompt, no editor, no preview and no colors", &Options::plain},
    {"color", 0, "auto|always|never", "whether the output has colors", &Options::color},
    {"trace", 0, nullptr, "show the trace of the evaluation on standard error", &Options::trace},
    {"help", 'h', nullptr, "show this help and exit", Action::ShowHelp},
    {"version", 'V', nullptr, "show the version and exit", Action::ShowVersion},
    {nullptr, 0, nullptr, nullptr, {}},
};
// clang-format on

// One option as it was given.
struct Given {
    const OptionRow* row = nullptr;
    std::string_view shown; // as it stands on the command line, without its value
    std::string_view value; // behind "=" or the letter
    bool hasValue = false;
};

class Parser {
public:
    Parser(int count, const char* const* arguments) : argc(count), argv(arguments) {}

    Options Parse() {
        bool onlyEntries = false;
        while (next < argc && options.action == Action::Evaluate) {
            const std::string_view argument = argv[next++];
            if (onlyEntries || argument.empty() || argument.front() != '-')
                options.inputs.push_back({argument});
            else if (argument == "--")
                onlyEntries = true;
            else if (argument.substr(0, 2) == "--")
                TakeName(argument);
            else
                TakeLetters(argument);
        }
        if (options.action == Action::Evaluate) RefuseUseless();
        return std::move(options);
    }

private:
    void Refuse(const std::string& why) {
        options.action = Action::RefuseUsage;
        options.refusal = why;
    }

    // What would be ignored: fields of no lines, and the decimal mark between groups.
    void RefuseUseless() {
        if (!options.separator.empty() && options.each.empty())
            Refuse("option '--separator' goes with '--each'");
        EntrySettings settings = standardSettings();
        for (const auto& [setting, value] : options.settings) setting->Apply(value, settings);
        const std::string mark(1, decimalMark(settings));
        for (const auto& [setting, value] : options.settings) {
            if (setting->kind == Setting::CHARACTER && value == mark[0])
                Refuse("'" + mark + "' is the decimal mark and no value of option '--mark'");
        }
    }

    void RefuseUnknown(std::string_view argument) {
        const std::string text(argument);
        Refuse("unknown option '" + text +
               "'\nAn entry that begins with '-' goes behind '--': tallyquill -- '" + text + "'");
    }

    void TakeName(std::string_view argument) {
        const size_t equals = argument.find('=');
        Given given;
        given.shown = argument.substr(0, equals);
        given.hasValue = equals != std::string_view::npos;
        if (given.hasValue) given.value = argument.substr(equals + 1);
        for (const OptionRow& row : TABLE) {
            if (row.name && given.shown.substr(2) == row.name) given.row = &row;
        }
        if (!given.row) return RefuseUnknown(argument);
        Take(given);
    }

    void TakeLetters(std::string_view argument) {
        for (size_t i = 1; i < argument.size() || i == 1; ++i) {
            Given given;
            given.shown = argument.substr(0, i + 1);
            for (const OptionRow& row : TABLE) {
                if (row.letter != 0 && i < argument.size() && argument[i] == row.letter) given.row = &row;
            }
            if (!given.row) return RefuseUnknown(argument);
            const bool takesRest = given.row->argument != nullptr;
            given.hasValue = takesRest && i + 1 < argument.size();
            if (given.hasValue) given.value = argument.substr(i + 1);
            Take(given);
            if (takesRest || options.action != Action::Evaluate) return;
        }
    }

    void Take(Given given) {
        const std::string name = "option '" + std::string(given.shown) + "'";
        const char* const argument = given.row->argument;
        if (!argument && given.hasValue) return Refuse(name + " takes no value");
        if (argument && !given.hasValue) {
            if (next >= argc) return Refuse(name + " needs a value: " + argument);
            given.value = argv[next++];
        }
        if (!Use(*given.row, given.value))
            Refuse("'" + std::string(given.value) + "' is no value of " + name + ": " +
                   PossibleValues(*given.row));
    }

    static std::string PossibleValues(const OptionRow& row) {
        const auto* const one = std::get_if<SettingOption>(&row.use);
        const Setting* const setting = one ? findSetting(one->key) : nullptr;
        if (setting && setting->kind == Setting::NUMBER && setting->choices.begin() == setting->choices.end())
            return std::to_string(setting->least) + " to " + std::to_string(setting->most);
        if (!std::get_if<WithOption>(&row.use)) return row.argument;
        std::string names;
        for (const std::string_view name : shippedNames()) {
            names += names.empty() ? "" : ", ";
            names += name;
        }
        return names;
    }

    // Whether the value is one of those in "a|b|c", or there are none.
    static bool IsChoice(const std::string& choices, std::string_view value) {
        if (choices.find('|') == std::string::npos) return true;
        const bool isOne = value.find('|') == std::string_view::npos;
        return isOne && ("|" + choices + "|").find("|" + std::string(value) + "|") != std::string::npos;
    }

    // False when the value is not a good one.
    bool Use(const OptionRow& row, std::string_view value) {
        const OptionUse& use = row.use;
        if (const auto* const flag = std::get_if<bool Options::*>(&use)) options.** flag = true;
        if (const auto* const action = std::get_if<Action>(&use)) options.action = *action;
        if (std::get_if<FileOption>(&use)) options.inputs.push_back({value, true});
        if (const auto* const text = std::get_if<std::string_view Options::*>(&use)) {
            options.** text = value;
            return !value.empty() && IsChoice(row.argument, value);
        }
        if (std::get_if<WithOption>(&use)) return UseShipped(value);
        const auto* const one = std::get_if<SettingOption>(&use);
        if (!one) return true;
        const Setting* const setting = findSetting(one->key);
        int number = 0;
        if (!setting->Read(*one->value == '\0' ? std::string(value) : one->value, number)) return false;
        options.settings.emplace_back(setting, number);
        return true;
    }

    // False when a name is unknown.
    bool UseShipped(std::string_view list) {
        const std::vector<std::string_view> names = shippedNames();
        for (;;) {
            const std::string_view name = list.substr(0, list.find(','));
            if (std::find(names.begin(), names.end(), name) == names.end()) return false;
            options.with.push_back(name);
            if (name.size() == list.size()) return true;
            list.remove_prefix(name.size() + 1);
        }
    }

    int argc;
    const char* const* argv;
    int next = 1;
    Options options;
};

// Where the help of an option begins; further right, it goes to the next line.
constexpr size_t HELP_COLUMN = 25;

std::string helpOf(const OptionRow& row) {
    std::string line = row.letter != 0 ? std::string("  -") + row.letter + ", --" : "      --";
    line += row.name;
    if (row.argument) line += std::string("=") + row.argument;
    if (line.size() + 2 > HELP_COLUMN)
        line += '\n' + std::string(HELP_COLUMN, ' ');
    else
        line.resize(HELP_COLUMN, ' ');
    for (const char* c = row.help; *c != '\0'; ++c) {
        line += *c;
        if (*c == '\n') line.append(HELP_COLUMN, ' ');
    }
    return line + '\n';
}

} // namespace

const OptionRow* optionTable() {
    return TABLE;
}

std::string helpText() {
    std::string text = "Usage: tallyquill [OPTION]... [--] [ENTRY]...\n"
                       "Evaluate each ENTRY and print its answer. Without ENTRY and FILE, evaluate the\n"
                       "lines of standard input; when that is a terminal, prompt for them. Files and\n"
                       "entries are evaluated in the order in which they are given.\n"
                       "\n";
    for (const OptionRow* row = TABLE; row->name; ++row) text += helpOf(*row);
    return text + "\n"
                  "An ENTRY that begins with a minus sign goes behind --, as in:\n"
                  "  tallyquill -- -2^2\n"
                  "\n"
                  "The entry convert TEXT asks the service at TALLYQUILL_QUERY_URL, the second\n"
                  "gospel opens TALLYQUILL_WEB_URL; without these variables nothing is asked or\n"
                  "opened.\n"
                  "\n"
                  "Answers go to standard output, errors to standard error.\n"
                  "Exit status: 0 all entries were answered, 1 some entry failed or overflowed,\n"
                  "2 bad usage, 3 a file, the input or the output could not be read or written,\n"
                  "130 Ctrl-C.\n";
}

Options parseOptions(int argc, const char* const* argv) {
    return Parser(argc, argv).Parse();
}
