// SPDX-License-Identifier: MIT
#include "ConsoleCommand.h"

#include <cstdlib>
#include <string>

bool CommandHasNumber(std::string_view command, std::string_view word, long& number) {
    if (command.substr(0, word.size()) != word) return false;
    const std::string rest(command.substr(word.size()));
    char* end = nullptr;
    number = strtol(rest.c_str(), &end, 0);
    return end != rest.c_str();
}

long PauseLength(long number) {
    return number >= 0 && number <= 5000 ? number : 1000;
}

long WaitBetweenCharacters(long number) {
    return number > 0 && number <= 100 ? 1000 / number : 0;
}
