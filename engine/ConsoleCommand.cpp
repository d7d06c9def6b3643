// SPDX-License-Identifier: MIT
#include "ConsoleCommand.h"

#include <cstdlib>
#include <string>

namespace {

using Kind = ConsoleCommand::Kind;

struct Row {
    std::string_view word;
    Kind kind;
    bool hasNumber;
};

constexpr Row ROWS[] = {
    {"clear", Kind::Clear, false},          {"exit", Kind::Exit, false},
    {"echorep", Kind::ReplaceEntry, false}, {"convert", Kind::Convert, false},
    {"gospel", Kind::OpenWebPage, false},   {"pause", Kind::Pause, true},
    {"echo", Kind::TypeOut, true},
};

long millisecondsOf(Kind kind, long number) {
    if (kind == Kind::Pause) return number >= 0 && number <= 5000 ? number : 1000;
    return number > 0 && number <= 100 ? 1000 / number : 0;
}

} // namespace

ConsoleCommand consoleCommand(std::string_view message) {
    for (const Row& row : ROWS) {
        if (message.substr(0, row.word.size()) != row.word) continue;
        const std::string rest(message.substr(row.word.size()));
        if (!row.hasNumber) {
            if (rest.empty()) return {row.kind, 0};
            continue;
        }
        char* end = nullptr;
        const long number = strtol(rest.c_str(), &end, 0);
        if (end != rest.c_str()) return {row.kind, millisecondsOf(row.kind, number)};
    }
    return {};
}
