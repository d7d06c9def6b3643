// SPDX-License-Identifier: MIT
//
// Answers for programs: a JSON object for each statement, on a line of its own and in ASCII.
#pragma once

#include "Outcome.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

struct JsonAnswer {
    std::string_view entry = {};  // the statement
    size_t line = 0;              // of the input, or the number of the argument; from 1
    std::string_view status = {}; // "value", "message", "error" or "command"
    // Null where the statement has none.
    std::optional<std::string> name = {};    // the variable that holds the value
    std::optional<std::string> value = {};   // with 100 figures; null beyond the range too
    std::optional<std::string> text = {};    // as it is shown
    std::optional<std::string> message = {}; // of a message or an error; the word of a command
    TextRange position = {};                 // what the error is about, in bytes of the statement
};

// What the engine has answered to a statement, with what was shown meanwhile: texts, or the error.
JsonAnswer jsonAnswer(const Outcome& outcome, int status, std::string_view shown);

// The object with all its fields, and a line feed. Its position counts characters and not bytes.
std::string jsonLine(const JsonAnswer& answer);

// A text in UTF-8 as JSON has it, in quotes. Each byte that is no UTF-8 becomes U+FFFD; what is not ASCII is
// written by its number.
std::string jsonString(std::string_view text);
