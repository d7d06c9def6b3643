// SPDX-License-Identifier: MIT
#include "EntryText.h"

#include "Helpers_String.h"
#include "Settings.h"
#include "ShownText.h"

#include <algorithm>

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

bool isBlankLine(std::string_view line) {
    return trimmed(line).empty();
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

char decimalMark(const EntrySettings& settings) {
    return settings.european ? ',' : '.';
}
