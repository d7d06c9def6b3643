// SPDX-License-Identifier: MIT
#include "Answer.h"

#include "Format.h"
#include "Helpers_String.h"

#include <algorithm>
#include <string_view>
#include <utility>

// How many digits of a number are read: the others are dropped without their scale.
constexpr size_t DIGITS_READ = 104;
constexpr int32_t ALL_FIGURES = 100;

namespace {

// The digits of a shown number behind its leading zeros, as they are counted when it is read: zeros behind
// the point are digits, those of the exponent are none.
size_t countDigits(std::string_view text) {
    text.remove_prefix(text.substr(0, 1) == "-" ? 1 : 0);
    const bool isRadix = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0b";
    text = isRadix ? text.substr(2) : text.substr(0, text.find('e'));
    text.remove_prefix(std::min(text.find_first_not_of("0 "), text.size()));
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return isDigit(c) || (c >= 'A' && c <= 'F'); }));
}

} // namespace

void Answer::Keep(const std::string& line, const char* variable, const qfloat number,
                  const EntrySettings& now, std::string text) {
    const auto isLineEnd = [](char c) { return c == '\r' || c == '\n'; };
    entry.assign(line.begin(), std::find_if(line.begin(), line.end(), isLineEnd));
    name = variable;
    qmov(number, value);
    settings = now;
    shown = std::move(text);
}

std::string Answer::In(int base, const EntrySettings& now) const {
    if (shown.empty()) return "";
    EntrySettings inBase = now;
    inBase.displayBase = base;
    return shownNumber(value, inBase, 0);
}

std::string Answer::Plain(const EntrySettings& now) const {
    if (shown.empty()) return "";
    EntrySettings plain = settings;
    plain.twosComp = plain.useSeparator = false;
    plain.european = now.european;
    std::string text = shownNumber(value, plain, name.size());
    if (countDigits(text) > DIGITS_READ) {
        if (plain.displayBase != 10 || plain.sciMode == SCI_FIXED) plain.sigFigs = ALL_FIGURES;
        plain.displayBase = 10;
        plain.sciMode = SCI_AUTO;
        text = shownNumber(value, plain, name.size());
    }
    if (now.tenKey && text[0] == '-') text = text.substr(1) + '-';
    return text;
}
