// SPDX-License-Identifier: MIT
#include "OtherHabits.h"

#include "EntryText.h"
#include "Helpers_String.h"
#include "OwnFiles.h"
#include "units.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::string_view BASES = "display hex shows answers so; at the prompt, :base hex the last one";
constexpr std::string_view ROOTS = "roots are powers: write 27^(1/3)";
constexpr std::string_view POWERS = "a power is written with ^: write 2^3";

constexpr struct {
    std::string_view name, hint;
} FUNCTIONS[] = {{"atan2", "where x is above zero, it is atan(y/x)"},
                 {"max", "there is none at first; define max(a,b)=(a+b+abs(a-b))/2"},
                 {"min", "there is none at first; define min(a,b)=(a+b-abs(a-b))/2"},
                 {"cbrt", ROOTS},
                 {"root", ROOTS},
                 {"pow", POWERS},
                 {"hex", BASES},
                 {"bin", BASES},
                 {"dec", BASES}};

constexpr struct {
    std::string_view word, sign, what;
} OPERATORS[] = {{"to", "->", "a conversion"},    {"in", "->", "a conversion"},
                 {"as", "->", "a conversion"},    {"mod", "%", "a remainder"},
                 {"xor", "@", "an exclusive or"}, {"and", "&", "an and of bits"},
                 {"or", "|", "an or of bits"}};

bool isBase(std::string_view word) {
    return word == "hex" || word == "bin" || word == "dec";
}

// Whether a line of the set defines a unit of exactly this name.
bool isDefined(std::string_view set, std::string_view unit) {
    return shippedText(set).find("\nunit " + std::string(unit) + "=") != std::string_view::npos;
}

} // namespace

std::string hintForFunction(std::string_view name) {
    const std::string wanted = lowerCased(std::string(name));
    for (const auto& function : FUNCTIONS) {
        if (wanted == function.name) return std::string(function.hint);
    }
    return "";
}

std::string hintForWords(std::string_view entry) {
    for (const auto& one : OPERATORS) {
        const std::string word = " " + std::string(one.word) + " ";
        const size_t at = lowerCased(std::string(entry)).find(word);
        if (at == std::string_view::npos) continue;
        const std::string_view left = trimmed(entry.substr(0, at));
        const std::string_view right = trimmed(entry.substr(at + word.size()));
        if (left.empty() || right.empty()) continue;
        const bool isConversion = one.sign == "->";
        if (isConversion && isBase(lowerCased(std::string(right)))) return std::string(BASES);
        const std::string gap = isConversion ? "" : " ";
        std::string hint = std::string(one.what) + " is written with ";
        return hint.append(one.sign)
            .append(": write ")
            .append(left)
            .append(gap)
            .append(one.sign)
            .append(gap)
            .append(right);
    }
    return "";
}

std::string hintForUnit(std::string_view unit) {
    constexpr std::string_view SET = "everyday";
    constexpr std::string_view WATT_HOURS = "Wh";
    bool isThere = isDefined(SET, unit);
    for (const std::string& prefix : units_prefix_names()) {
        isThere = isThere || (startsWith(unit, prefix) && isDefined(SET, unit.substr(prefix.size())));
    }
    if (!isThere) return "";
    const size_t start = unit.size() - std::min(WATT_HOURS.size(), unit.size());
    const std::string written =
        unit.substr(start) == WATT_HOURS ? "; or write " + std::string(unit.substr(0, start)) + "W*h" : "";
    return std::string(unit) + " is there after tallyquill --with everyday" + written;
}
