// SPDX-License-Identifier: MIT
#include "EntryText.h"

namespace {

unsigned byteAt(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

// The length of the UTF-8 sequence that `lead` begins; 0 for a byte that cannot begin one.
std::size_t sequenceLength(unsigned lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2; // 0xC0 and 0xC1 would be overlong
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4; // beyond lies nothing below U+110000
    return 0;
}

// Whether `second` may follow `lead`: refuses overlong forms, surrogates and values above U+10FFFF.
bool secondByteFits(unsigned lead, unsigned second) {
    switch (lead) {
    case 0xE0: return second >= 0xA0;
    case 0xED: return second <= 0x9F;
    case 0xF0: return second >= 0x90;
    case 0xF4: return second <= 0x8F;
    default: return true;
    }
}

// The length of the well-formed sequence at `i`; 0 when there is none.
std::size_t sequenceAt(std::string_view text, std::size_t i) {
    const unsigned lead = byteAt(text, i);
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > text.size() - i) return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((byteAt(text, i + k) & 0xC0U) != 0x80U) return 0;
    }
    if (length > 1 && !secondByteFits(lead, byteAt(text, i + 1))) return 0;
    return length;
}

bool isControl(unsigned byte) {
    return (byte < 0x20 && byte != '\t') || byte == 0x7F;
}

} // namespace

EntryFault checkEntry(std::string_view entry) {
    if (entry.size() > kMaxEntryLength) return EntryFault::TooLong;
    for (std::size_t i = 0; i < entry.size();) {
        const std::size_t length = sequenceAt(entry, i);
        if (length == 0 || isControl(byteAt(entry, i))) return EntryFault::NotText;
        i += length;
    }
    return EntryFault::None;
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
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
