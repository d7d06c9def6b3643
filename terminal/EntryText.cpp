// SPDX-License-Identifier: MIT
#include "EntryText.h"

#include "Settings.h"

#include "Helpers_String.h"
#include "ShownText.h"

#include <algorithm>
#include <iterator>

namespace {

bool isControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code < 0x20 && byte != '\t') || code == 0x7F;
}

} // namespace

EntryFault checkEntry(std::string_view entry) {
    if (entry.size() > MAX_ENTRY_LENGTH) return EntryFault::TooLong;
    const auto isAscii = [](char c) { return c >= ' ' && c <= '~'; }; // most entries are nothing else
    const auto* const plain = std::find_if_not(entry.begin(), entry.end(), isAscii);
    for (size_t i = static_cast<size_t>(plain - entry.begin()); i < entry.size();) {
        const size_t length = utf8Length(entry, i);
        if (length == 0 || isControl(entry[i])) return EntryFault::NotText;
        i += length;
    }
    return EntryFault::None;
}

bool isBlank(std::string_view line) {
    return trimmed(line).empty();
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

std::string_view faultMessage(EntryFault fault) {
    switch (fault) {
    case EntryFault::TooLong: return "** ERROR: 10000 max characters **\n";
    case EntryFault::NotText: return "** Invalid character/encoding used. **\n";
    case EntryFault::None: break;
    }
    return "";
}

std::string asLine(std::string_view text) {
    std::string line(text);
    if (!line.empty() && line.back() != '\n') line += '\n';
    return line;
}

std::string withoutBlanks(std::string_view text) {
    std::string joined;
    std::copy_if(text.begin(), text.end(), std::back_inserter(joined), [](char c) { return !isBlank(c); });
    return joined;
}

char decimalMark(const EntrySettings& settings) {
    return settings.european ? ',' : '.';
}
