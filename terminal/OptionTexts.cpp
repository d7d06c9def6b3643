// SPDX-License-Identifier: MIT
//
// A program of the build: writes the completions for a shell.
//
//   option_texts bash|zsh|fish TEMPLATE FILE
//
// The line "@OPTIONS@" of the template becomes the options of the program tallyquill.
#include "Options.h"
#include "OwnFiles.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view PLACE = "@OPTIONS@\n";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t i = text.find(from); i != std::string::npos; i = text.find(from, i + to.size()))
        text.replace(i, from.size(), to);
    return text;
}

std::string argumentOf(const OptionRow& row) {
    return row.argument ? row.argument : "";
}

// The values that an option offers, with blanks between; empty when it takes any text.
std::string valuesOf(const OptionRow& row) {
    std::string values;
    if (std::get_if<WithOption>(&row.use)) {
        for (const std::string_view name : shippedNames())
            values += (values.empty() ? "" : " ") + std::string(name);
    } else if (argumentOf(row).find('|') != std::string::npos) {
        values = replaced(row.argument, "|", " ");
    }
    return values;
}

// The key of the setting that the option gives a value of its own, such as --deg; empty when it does not.
std::string_view fixedSetting(const OptionRow& row) {
    const auto* const one = std::get_if<SettingOption>(&row.use);
    return one && !row.argument ? one->key : "";
}

std::string bashOptions() {
    std::string options;
    std::string arguments;
    std::string names;
    for (const OptionRow* row = optionTable(); row->name; ++row) {
        const std::string letter = row->letter != 0 ? std::string("-") + row->letter : "";
        options += std::string("--") + row->name + " " + letter + (letter.empty() ? "" : " ");
        if (!row->argument) continue;
        for (const std::string& option : {std::string("--") + row->name, letter}) {
            if (!option.empty()) arguments += "[" + option + "]='" + row->argument + "' ";
        }
        if (std::get_if<WithOption>(&row->use)) names = valuesOf(*row);
    }
    return "    local options='" + options + "'\n    local names='" + names + "'\n    local -A arguments=(" +
           arguments + ")\n";
}

// What zsh completes as the option's argument.
std::string zshArgument(const OptionRow& row) {
    const std::string name = std::string(":") + row.name + ":";
    if (!row.argument) return "";
    if (std::get_if<FileOption>(&row.use)) return name + "_files";
    if (std::get_if<WithOption>(&row.use)) return name + "_sequence compadd - " + valuesOf(row);
    return valuesOf(row).empty() ? name : name + "(" + valuesOf(row) + ")";
}

// What zsh offers no more when the option is there, and '*' of one that may be there again.
std::string zshConditions(const OptionRow& row) {
    if (std::get_if<Options::Action>(&row.use)) return "(- *)";
    if (std::get_if<FileOption>(&row.use) || std::get_if<WithOption>(&row.use)) return "*";
    std::string others;
    for (const OptionRow* other = optionTable(); other->name; ++other) {
        if (other != &row && !fixedSetting(row).empty() && fixedSetting(*other) == fixedSetting(row))
            others += (others.empty() ? "--" : " --") + std::string(other->name);
    }
    return others.empty() ? "" : "(" + others + ")";
}

std::string zshOption(const OptionRow& row, const std::string& help) {
    const std::string name = std::string("--") + row.name + (row.argument ? "=" : "");
    const std::string conditions = zshConditions(row);
    const std::string rest = "[" + replaced(help, "'", "'\\''") + "]" + zshArgument(row) + "' \\\n";
    if (row.letter == 0) return "    '" + conditions + name + rest;
    return "    " + (conditions.empty() ? "" : "'" + conditions + "'") + "{-" + row.letter + "," + name +
           "}'" + rest;
}

std::string fishOption(const OptionRow& row, const std::string& help) {
    std::string line = "complete -c tallyquill ";
    if (row.letter != 0) line += std::string("-s ") + row.letter + " ";
    line += std::string("-l ") + row.name;
    if (row.argument) line += std::get_if<FileOption>(&row.use) ? " -r -F" : " -x";
    if (std::get_if<WithOption>(&row.use))
        line += " -a '(__fish_append , " + valuesOf(row) + ")'";
    else if (!valuesOf(row).empty())
        line += " -a '" + valuesOf(row) + "'";
    return line + " -d '" + replaced(help, "'", "\\'") + "'\n";
}

// False when there is no such shell.
bool optionsFor(const std::string& form, std::string& text) {
    if (form != "bash" && form != "zsh" && form != "fish") return false;
    if (form == "bash") text = bashOptions();
    for (const OptionRow* row = optionTable(); row->name; ++row) {
        std::string help = replaced(row->help, "\n", " ");
        if (form == "zsh") text += zshOption(*row, help);
        help[0] = static_cast<char>(toupper(help[0]));
        if (form == "fish") text += fishOption(*row, help);
    }
    return true;
}

// Replaces the line "@OPTIONS@".
bool putOptions(const std::string& shell, std::string& text) {
    std::string options;
    const size_t place = text.find(PLACE);
    if (!optionsFor(shell, options) || place == std::string::npos) return false;
    text.replace(place, PLACE.size(), options);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        fputs("usage: option_texts bash|zsh|fish TEMPLATE FILE\n", stderr);
        return 2;
    }
    std::ifstream in(argv[2]);
    std::string text((std::istreambuf_iterator<char>(in)), {});
    if (!putOptions(argv[1], text)) {
        fprintf(stderr, "option_texts: %s cannot be filled in as %s\n", argv[2], argv[1]);
        return 1;
    }
    std::ofstream out(argv[3]);
    out << text << std::flush;
    return out ? 0 : 1;
}
