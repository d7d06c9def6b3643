// SPDX-License-Identifier: MIT
#include "TypedSigns.h"

#include "ShownText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

// The characters from `first` to `last` stand for `text`; without one, for the ASCII characters from `ascii`
// on.
struct SignRow {
    uint32_t first;
    uint32_t last;
    const char* text;
    char ascii = 0;
    bool isRaised = false;
};

// In the order of their codes.
constexpr SignRow SIGNS[] = {
    {0xA0, 0xA0, " "},                    // no-break space
    {0xB2, 0xB3, nullptr, '2', true},     // raised 2 and 3
    {0xB7, 0xB7, "*"},                    // middle dot
    {0xB9, 0xB9, nullptr, '1', true},     // raised 1
    {0xD7, 0xD7, "*"},                    // multiplication sign
    {0xF7, 0xF7, "/"},                    // division sign
    {0x3C0, 0x3C0, "pi"},                 //
    {0x2000, 0x200A, " "},                // thin and other spaces
    {0x200B, 0x200B, ""},                 // zero width space
    {0x2010, 0x2013, "-"},                // hyphens and dashes
    {0x202F, 0x202F, " "},                // narrow no-break space
    {0x2044, 0x2044, "/"},                // fraction slash
    {0x205F, 0x205F, " "},                // mathematical space
    {0x2070, 0x2070, nullptr, '0', true}, // raised digits and signs
    {0x2074, 0x2079, nullptr, '4', true}, //
    {0x207A, 0x207A, nullptr, '+', true}, //
    {0x207B, 0x207B, nullptr, '-', true}, //
    {0x2192, 0x2192, "->"},               // arrow
    {0x2212, 0x2212, "-"},                // minus sign
    {0x2215, 0x2215, "/"},                // division slash
    {0x2217, 0x2217, "*"},                // asterisk operator
    {0x2219, 0x2219, "*"},                // bullet operator
    {0x22C5, 0x22C5, "*"},                // dot operator
    {0x3000, 0x3000, " "},                // ideographic space
    {0xFEFF, 0xFEFF, ""},                 // byte order mark
    {0xFF01, 0xFF5E, nullptr, '!'},       // full-width forms
};

// The code of a whole character in UTF-8.
uint32_t codeOf(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return lead;
    uint32_t code = lead & (0x7FU >> character.size());
    for (const char byte : character.substr(1)) code = code << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
    return code;
}

const SignRow* findSign(uint32_t code) {
    const auto* const row = std::find_if(std::begin(SIGNS), std::end(SIGNS),
                                         [code](const SignRow& one) { return code <= one.last; });
    return row != std::end(SIGNS) && code >= row->first ? row : nullptr;
}

} // namespace

std::string TypedSigns::Read(std::string_view text) {
    std::string read;
    for (size_t i = 0; i < text.size();) {
        const size_t length = std::max<size_t>(utf8Length(text, i), 1);
        const std::string_view character = text.substr(i, length);
        const uint32_t code = codeOf(character);
        const SignRow* const row = length > 1 ? findSign(code) : nullptr;
        const bool wasRaised = isRaised;
        isRaised = row && row->isRaised;
        if (isRaised && !wasRaised) read += '^';
        if (!row)
            read += character;
        else if (row->text)
            read += row->text;
        else
            read += static_cast<char>(static_cast<uint32_t>(row->ascii) + code - row->first);
        i += length;
    }
    return read;
}

std::optional<HeadChange> changeByOperator(std::string_view entry, size_t place, char typed,
                                           bool minusIsSign) {
    const bool isMinus = typed == '-';
    if (!isMinus && typed != '+' && typed != '*' && typed != '/') return std::nullopt;
    if (place == 0) return isMinus && minusIsSign ? std::nullopt : std::optional(HeadChange{0, "ans"});
    if (isMinus && place == 1 && entry[0] == '-') return HeadChange{1, "ans"};
    if (isMinus && place == 4 && entry.substr(0, 4) == "ans-") return HeadChange{4, ""};
    return std::nullopt;
}
