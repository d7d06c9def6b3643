// SPDX-License-Identifier: MIT
//
// Reduction of a unit expression to a factor and primitive names.
#include "unitlist.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

namespace {

constexpr int64_t maxNames = 100000;      // above or below the '/', a square being two
constexpr int64_t maxNameBytes = 4000000; // of these names together

struct ByName {
    bool operator()(const std::string* a, const std::string* b) const { return a != b && *a < *b; }
};

// The names on one side of the '/', those that will cancel included.
struct Side {
    int64_t names = 0;
    int64_t bytes = 0;
};

struct Reduction {
    const char* text;
    const char* remainder; // the text behind the leading number, quoted by the messages
    const UnitsCharge& charge;
    double factor = 1.0;
    std::map<const std::string*, int64_t, ByName> powers = {}; // what cancels has the count 0
    Side above = {};
    Side below = {};
    bool isDivisor = false;
};

bool fail(const char* format, const char* text) {
    throw_exception1(format, text);
    return false;
}

bool spend(const Reduction& reduction, uint64_t work) {
    return !reduction.charge || reduction.charge(work) ||
           fail("unit string '%s' takes too long", reduction.text);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// strtod alone would also take the first letters of "inch" or "nanometer" for the words inf and nan.
bool beginsWithNumber(const char* text) {
    if (*text == '+' || *text == '-') ++text;
    return isDigit(text[0]) || (text[0] == '.' && isDigit(text[1]));
}

bool readExponent(std::string_view digits, int& exponent) {
    exponent = 0;
    for (const char c : digits) {
        if (!isDigit(c)) return false;
        exponent = 10 * exponent + (c - '0');
        if (exponent > maxExponent) return false;
    }
    return exponent >= 1;
}

// One step after the other, so that the result is rounded as people know it.
void applyFactor(Reduction& reduction, double factor, int exponent) {
    for (int i = 0; i < exponent; ++i) {
        const double before = reduction.factor;
        if (reduction.isDivisor) {
            reduction.factor /= factor;
        } else {
            reduction.factor *= factor;
        }
        if (reduction.factor == before) break; // 1, 0 and infinite ones stay what they are
    }
}

// Counts the names, as often as the exponent says.
bool addNames(Reduction& reduction, const std::vector<UnitPower>& names, int exponent) {
    for (const UnitPower& power : names) {
        const size_t length = power.name->size();
        if (!spend(reduction, UnitsCost::NAME + length / UnitsCost::NAME_BYTES)) return false;
        const int64_t count = int64_t{power.count} * (reduction.isDivisor ? -exponent : exponent);
        const int64_t times = count < 0 ? -count : count;
        Side& side = count < 0 ? reduction.below : reduction.above;
        side.names += times;
        side.bytes += times * static_cast<int64_t>(length);
        if (side.names > maxNames || side.bytes > maxNameBytes) {
            return fail("invalid integer exponent in '%s'", reduction.remainder);
        }
        reduction.powers[power.name] += count;
    }
    return true;
}

bool applyToken(Reduction& reduction, const std::string& token) {
    if (!spend(reduction, UnitsCost::LOOK_UP + token.size() / UnitsCost::TEXT_BYTES)) return false;
    if (beginsWithNumber(token.c_str())) {
        char* end = nullptr;
        const double number = std::strtod(token.c_str(), &end);
        if (number == 0.0) return fail("illegal zero factor in '%s'", reduction.remainder);
        // The divisor takes a number, as a whole; any other is refused below for its digits.
        if (reduction.isDivisor && *end == '\0') return applyFactor(reduction, number, 1), true;
    }
    int exponent = 1;
    const size_t caret = token.find('^');
    if (caret != std::string::npos && !readExponent(std::string_view(token).substr(caret + 1), exponent)) {
        return fail("invalid integer exponent in '%s'", reduction.remainder);
    }
    const std::string name = token.substr(0, caret);
    if (!isLettersOnly(name)) {
        return fail("invalid non-alphabetic unit name in '%s'", reduction.remainder);
    }
    const UnitMatch match = unitTable.FindFactor(name);
    if (match.found == nullptr) {
        throw_exception2("invalid unit name '%s' in '%s'", name.c_str(), reduction.remainder);
        return false;
    }
    if (!spend(reduction, 2 * static_cast<uint64_t>(exponent) / UnitsCost::MULTIPLICATIONS)) return false;
    if (match.prefix != nullptr) applyFactor(reduction, match.prefix->factor, exponent);
    applyFactor(reduction, match.found->reduced.factor, exponent);
    return addNames(reduction, match.found->reduced.powers, exponent);
}

bool applyTokens(Reduction& reduction) {
    const std::string_view text = reduction.remainder;
    for (size_t start = 0; start < text.size();) {
        if (text[start] == *divider) reduction.isDivisor = true;
        if (text[start] == *divider || std::strchr(separators, text[start]) != nullptr) {
            ++start;
            continue;
        }
        const size_t end = std::min(text.find_first_of(" \t*-/", start), text.size());
        if (!applyToken(reduction, std::string(text.substr(start, end - start)))) return false;
        start = end;
    }
    return true;
}

} // namespace

std::optional<ReducedUnit> reduceUnit(const char* text, const UnitsCharge& charge) {
    if (std::strcmp(text, primitivestring) == 0) return ReducedUnit{};
    Reduction reduction{text, text, charge};
    if (!spend(reduction, std::strlen(text) / UnitsCost::TEXT_BYTES)) return std::nullopt;
    if (std::strchr(text, *divider) != std::strrchr(text, *divider)) {
        throw_exception2("invalid unit string '%s':  only one '%s' allowed", text, divider);
        return std::nullopt;
    }
    if (text[std::strspn(text, validchars)] != '\0') {
        throw_exception1("invalid characters in unit string '%s'", text);
        return std::nullopt;
    }
    reduction.remainder = text + std::strspn(text, " \t");
    if (beginsWithNumber(reduction.remainder)) {
        char* end = nullptr;
        reduction.factor = std::strtod(reduction.remainder, &end);
        reduction.remainder = end;
    }
    if (!applyTokens(reduction)) return std::nullopt;
    ReducedUnit result{reduction.factor, {}};
    result.powers.reserve(reduction.powers.size());
    for (const auto& [name, count] : reduction.powers) {
        if (count != 0) result.powers.push_back({name, static_cast<int32_t>(count)});
    }
    return result;
}
