// SPDX-License-Identifier: MIT
#include "Json.h"

#include "Format.h"
#include "ShownText.h"

#include <cstdint>
#include <cstdio>

namespace {

constexpr uint32_t REPLACEMENT = 0xFFFD;

// The code of a well-formed character of `length` bytes.
uint32_t codeOf(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return first;
    uint32_t code = first & (0x7FU >> character.size());
    for (const char byte : character.substr(1))
        code = code << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    return code;
}

void appendUnit(std::string& json, uint32_t unit) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", unit & 0xFFFFU);
    json += escape;
}

void appendCode(std::string& json, uint32_t code) {
    if (code == '"' || code == '\\') {
        json += '\\';
        json += static_cast<char>(code);
    } else if (code >= 0x20 && code < 0x7F) {
        json += static_cast<char>(code);
    } else if (code > 0xFFFF) {
        appendUnit(json, 0xD800U + ((code - 0x10000U) >> 10U));
        appendUnit(json, 0xDC00U + ((code - 0x10000U) & 0x3FFU));
    } else {
        appendUnit(json, code);
    }
}

std::string orNull(const std::optional<std::string>& text) {
    return text ? jsonString(*text) : "null";
}

size_t charactersIn(std::string_view text) {
    size_t count = 0;
    for (const char byte : text) count += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U ? 1 : 0;
    return count;
}

std::string positionIn(std::string_view entry, TextRange range) {
    if (range.start < 0 || static_cast<size_t>(range.start) > entry.size()) return "null";
    const auto start = static_cast<size_t>(range.start);
    const auto length = static_cast<size_t>(range.length);
    return "{\"start\": " + std::to_string(charactersIn(entry.substr(0, start))) +
           ", \"length\": " + std::to_string(charactersIn(entry.substr(start, length))) + "}";
}

// Without the line feed; null when nothing is left.
std::optional<std::string> textOf(std::string_view text) {
    while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    if (text.empty()) return {};
    return std::string(text);
}

} // namespace

JsonAnswer jsonAnswer(const Outcome& outcome, int status, std::string_view shown) {
    JsonAnswer answer;
    switch (status) {
    case STATUS_RESULT: {
        const std::string_view line = outcome.resultLine;
        answer.status = "value";
        answer.name = line.substr(0, line.find(" = "));
        answer.text = textOf(line.substr(answer.name->size() + 3));
        if (!outcome.overflowed) answer.value = plainNumber(outcome.result);
        break;
    }
    case STATUS_MESSAGE:
        answer.status = "message";
        answer.message = textOf(shown);
        break;
    case STATUS_COMMAND:
        answer.status = "command";
        answer.message = outcome.message;
        answer.text = textOf(shown);
        break;
    default:
        answer.status = "error";
        answer.message = textOf(shown);
        answer.position = outcome.errorRange;
    }
    return answer;
}

std::string jsonString(std::string_view text) {
    std::string json = "\"";
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8Length(text, i);
        appendCode(json, length == 0 ? REPLACEMENT : codeOf(text.substr(i, length)));
        i += length == 0 ? 1 : length;
    }
    return json + '"';
}

std::string jsonLine(const JsonAnswer& answer) {
    return "{\"entry\": " + jsonString(answer.entry) + ", \"line\": " + std::to_string(answer.line) +
           ", \"status\": " + jsonString(answer.status) + ", \"name\": " + orNull(answer.name) +
           ", \"value\": " + orNull(answer.value) + ", \"text\": " + orNull(answer.text) +
           ", \"message\": " + orNull(answer.message) +
           ", \"position\": " + positionIn(answer.entry, answer.position) + "}\n";
}
