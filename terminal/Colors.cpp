// SPDX-License-Identifier: MIT
#include "Colors.h"

#include <cstdlib>
#ifdef TALLYQUILL_READLINE
#include <termcap.h>
#endif

namespace {

// The eight colors that every terminal has, which people choose to be readable; the value is bold.
constexpr const char* CODES[] = {
    "32", // Prompt
    "36", // Name
    "1",  // Value
    "31", // Error
    "33", // Hint
};

std::string_view variable(const char* name) {
    const char* const text = std::getenv(name);
    return text ? text : "";
}

} // namespace

bool knowsSequences() {
    const std::string kind(variable("TERM"));
    if (kind.empty() || kind == "dumb") return false;
#ifdef TALLYQUILL_READLINE
    return tgetent(nullptr, kind.c_str()) != 0;
#else
    return true;
#endif
}

bool wantsColors(std::string_view choice, int descriptor, System& system) {
    if (choice == "always" || choice == "never") return choice == "always";
    if (!variable("NO_COLOR").empty()) return false;
    const std::string_view forced = variable("CLICOLOR_FORCE");
    if (!forced.empty() && forced != "0") return true;
    return system.IsTerminal(descriptor) == 1 && knowsSequences();
}

std::string colored(Shade shade, std::string_view text) {
    const bool isLine = !text.empty() && text.back() == '\n';
    if (isLine) text.remove_suffix(1);
    if (text.empty()) return isLine ? "\n" : "";
    const std::string start = std::string("\x1b[") + CODES[static_cast<int>(shade)] + "m";
    return start + std::string(text) + "\x1b[0m" + (isLine ? "\n" : "");
}

std::string coloredAnswer(std::string_view line) {
    constexpr std::string_view EQUALS = " = ";
    const size_t equals = line.find(EQUALS);
    if (equals == std::string_view::npos) return colored(Shade::Value, line);
    return colored(Shade::Name, line.substr(0, equals)) + std::string(EQUALS) +
           colored(Shade::Value, line.substr(equals + EQUALS.size()));
}
