// SPDX-License-Identifier: MIT
#include "Outcome.h"

#include "Helpers_String.h"

#include <algorithm>
#include <cstdio>

void copyTexts(char* out, std::initializer_list<std::string_view> texts) {
    size_t used = 0;
    for (const std::string_view text : texts) used += text.copy(out + used, TEXT_SIZE - 1 - used);
    out[used] = '\0';
}

Outcome& Outcome::operator=(const Outcome& other) {
    if (this == &other) return *this;
    status = other.status;
    copyText(message, other.message);
    copyText(echoText, other.echoText);
    qmov(other.result, result);
    copyText(resultLine, other.resultLine);
    lastValue = other.lastValue;
    lastName = other.lastName;
    copyText(lastAnswer, other.lastAnswer);
    errorRange = other.errorRange;
    interrupted = other.interrupted;
    overflowed = other.overflowed;
    return *this;
}

int Outcome::Tell(std::string_view text) {
    copyText(message, text);
    return STATUS_MESSAGE;
}

int Outcome::FailAt(TextRange range, std::string_view format, std::initializer_list<std::string_view> texts) {
    errorRange = range;
    return Fail(format, texts);
}

int Outcome::FailAt(const node* term, std::string_view format,
                    std::initializer_list<std::string_view> texts) {
    return FailAt(TextRange{term->start, int32_t{term->length}}, format, texts);
}

int Outcome::Fail(std::string_view format, std::initializer_list<std::string_view> texts) {
    const size_t room = (sizeof message - 1 - format.size()) / std::max<size_t>(texts.size(), 1);
    std::string text;
    auto next = texts.begin();
    for (size_t i = 0; i < format.size(); i++) {
        if (format[i] == '%' && i + 1 < format.size() && next != texts.end()) {
            text += strShown(*next++).substr(0, room);
            i++;
        } else {
            text += format[i];
        }
    }
    copyText(message, text);
    return STATUS_ERROR;
}

int checkMathError(const char* name, char* out) {
    const int code = merror;
    if (code == 0) return 0;
    merror = 0;
    const char* text = MATH_ERROR_TEXTS[code >= 0 && code < 7 ? code : 0];
    if (!out) return code;
    if (name)
        snprintf(out, TEXT_SIZE, "** ERROR: '%.1000s' %s **\n", strShown(name).c_str(), text);
    else
        snprintf(out, TEXT_SIZE, "** ERROR: %s **\n", text);
    return code;
}
