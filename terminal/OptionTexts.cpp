// SPDX-License-Identifier: MIT
//
// A program of the build: writes a template with its places filled in.
//
//   option_texts bash|zsh|fish|man TEMPLATE FILE
//
// In completions the line "@OPTIONS@" becomes the options of the program tallyquill. In man pages a line
// "@TABLE TITLE: HEAD@" becomes the rows of the guide's table in the section TITLE whose head begins with
// HEAD: what both tell is written in the guide alone. "@VERSION@" becomes the version.
#include "Guide.h"
#include "Options.h"
#include "OwnFiles.h"

#include <algorithm>
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

// --- The man pages ---

// As roff reads it.
std::string roff(const std::string& text) {
    static constexpr std::pair<char, const char*> ESCAPES[] = {
        {'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'"', "\\(dq"},
        {'^', "\\(ha"}, {'~', "\\(ti"}, {'`', "\\(ga"}};
    std::string escaped;
    for (const char c : text) {
        const auto* const one = std::find_if(std::begin(ESCAPES), std::end(ESCAPES),
                                             [c](const auto& escape) { return escape.first == c; });
        escaped += one == std::end(ESCAPES) ? std::string(1, c) : one->second;
    }
    return escaped[0] == '.' ? "\\&" + escaped : escaped;
}

// A cell of the guide as a sentence.
std::string sentence(std::string cell) {
    cell[0] = static_cast<char>(toupper(static_cast<unsigned char>(cell[0])));
    return cell.back() == '.' ? cell : cell + ".";
}

// Each row of a table of the guide as a paragraph with its first cell for a heading. `place` is "TITLE:
// HEAD", what guideRows wants. Empty when there is no such table.
std::string paragraphsOf(const std::string& place) {
    const size_t colon = std::min(place.find(": "), place.size());
    const std::string head = place.substr(std::min(colon + 2, place.size()));
    std::string text;
    for (const auto& cells : guideRows(place.substr(0, colon), head))
        text += ".TP\n.B \"" + roff(cells.at(0)) + "\"\n" + roff(sentence(cells.at(1))) + "\n";
    return text;
}

// Replaces the lines "@TABLE TITLE: HEAD@". False when the guide has no such table.
bool putTables(std::string& text) {
    constexpr std::string_view START = "@TABLE ";
    for (size_t at = text.find(START); at != std::string::npos; at = text.find(START, at)) {
        const size_t end = text.find("@\n", at + 1);
        const std::string place = text.substr(at + START.size(), end - at - START.size());
        const std::string paragraphs = paragraphsOf(place);
        if (paragraphs.empty()) {
            fprintf(stderr, "option_texts: the guide has no table %s\n", place.c_str());
            return false;
        }
        text.replace(at, end + 2 - at, paragraphs);
    }
    return true;
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
        fputs("usage: option_texts bash|zsh|fish|man TEMPLATE FILE\n", stderr);
        return 2;
    }
    const std::string form = argv[1];
    std::ifstream in(argv[2]);
    std::string text((std::istreambuf_iterator<char>(in)), {});
    if (!(form == "man" ? putTables(text) : putOptions(form, text))) {
        fprintf(stderr, "option_texts: %s cannot be filled in as %s\n", argv[2], argv[1]);
        return 1;
    }
    std::ofstream out(argv[3]);
    out << replaced(text, "@VERSION@", TALLYQUILL_VERSION) << std::flush;
    return out ? 0 : 1;
}
