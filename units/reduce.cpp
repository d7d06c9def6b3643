// SPDX-License-Identifier: MIT
//
// Reduction of a unit expression to a factor and primitive names.
#include "unitlist.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int64_t MAX_NAMES = 100000;       // above or below the '/', a square being two
constexpr int64_t MAX_NAME_BYTES = 4000000; // of these names together

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// strtod alone would also take the first letters of "inch" or "nanometer" for the words inf and nan.
bool beginsWithNumber(const char* text) {
    if (*text == '+' || *text == '-') ++text;
    return isDigit(text[0]) || (text[0] == '.' && isDigit(text[1]));
}

// 0 when it is not 1 to MAX_EXPONENT.
int readExponent(std::string_view digits) {
    int exponent = 0;
    for (const char c : digits) {
        if (!isDigit(c) || (exponent = 10 * exponent + (c - '0')) > MAX_EXPONENT) return 0;
    }
    return exponent;
}

class Reduction {
public:
    Reduction(const char* whole, const UnitsCharge& toPay) : text(whole), remainder(whole), charge(toPay) {}

    // False with a message.
    bool Run();
    ReducedUnit result;

private:
    bool Fail(const char* format) const { return throw_exception1(format, remainder); }
    bool Spend(uint64_t work) const {
        return !charge || charge(work) || throw_exception1("unit string '%s' takes too long", text);
    }
    void ApplyFactor(double factor, int exponent);
    bool AddNames(const std::vector<UnitPower>& powers, int exponent);
    void JoinNames();
    bool ApplyToken(const std::string& token);

    const char* text;
    const char* remainder; // the text behind the leading number, quoted by the messages
    const UnitsCharge& charge;
    int64_t names[2] = {}; // above and below the '/', those that will cancel included
    int64_t bytes[2] = {};
    bool isDivisor = false;
};

// One step after the other, so that the result is rounded as people know it.
void Reduction::ApplyFactor(double factor, int exponent) {
    for (int i = 0; i < exponent; ++i) {
        const double before = result.factor;
        result.factor = isDivisor ? before / factor : before * factor;
        if (result.factor == before) break; // 1, 0 and infinite ones stay what they are
    }
}

// Counts the names, as often as the exponent says.
bool Reduction::AddNames(const std::vector<UnitPower>& powers, int exponent) {
    for (const UnitPower& power : powers) {
        const size_t length = power.name->size();
        if (!Spend(UnitsCost::NAME + length / UnitsCost::NAME_BYTES)) return false;
        const int64_t count = int64_t{power.count} * (isDivisor ? -exponent : exponent);
        const size_t side = count < 0 ? 1 : 0;
        names[side] += std::abs(count);
        bytes[side] += std::abs(count) * static_cast<int64_t>(length);
        if (names[side] > MAX_NAMES || bytes[side] > MAX_NAME_BYTES)
            return Fail("invalid integer exponent in '%s'");
        result.powers.push_back({power.name, static_cast<int32_t>(count)});
    }
    return true;
}

// Sorts the names, and leaves each once and none that cancels.
void Reduction::JoinNames() {
    std::vector<UnitPower>& powers = result.powers;
    const auto isBefore = [](const UnitPower& a, const UnitPower& b) {
        return a.name != b.name && *a.name < *b.name;
    };
    std::sort(powers.begin(), powers.end(), isBefore);
    size_t kept = 0;
    for (const UnitPower& power : powers) {
        if (kept > 0 && powers[kept - 1].name == power.name)
            powers[kept - 1].count += power.count;
        else
            powers[kept++] = power;
    }
    powers.resize(kept);
    const auto cancels = [](const UnitPower& power) { return power.count == 0; };
    powers.erase(std::remove_if(powers.begin(), powers.end(), cancels), powers.end());
    powers.shrink_to_fit();
}

bool Reduction::ApplyToken(const std::string& token) {
    if (!Spend(UnitsCost::LOOK_UP + token.size() / UnitsCost::TEXT_BYTES)) return false;
    if (beginsWithNumber(token.c_str())) {
        char* end = nullptr;
        const double number = std::strtod(token.c_str(), &end);
        if (number == 0.0) return Fail("illegal zero factor in '%s'");
        // The divisor takes a number, as a whole; any other is refused below for its digits.
        if (isDivisor && *end == '\0') return ApplyFactor(number, 1), true;
    }
    const size_t caret = token.find('^');
    const int exponent = caret == std::string::npos ? 1 : readExponent(token.c_str() + caret + 1);
    if (exponent == 0) return Fail("invalid integer exponent in '%s'");
    const std::string name = token.substr(0, caret);
    if (!isLettersOnly(name)) return Fail("invalid non-alphabetic unit name in '%s'");
    const UnitReading reading = unitTable.FindFactor(name);
    if (!reading.found) return throw_exception2("invalid unit name '%s' in '%s'", name.c_str(), remainder);
    if (!Spend(2 * static_cast<uint64_t>(exponent) / UnitsCost::MULTIPLICATIONS)) return false;
    if (reading.prefix) ApplyFactor(reading.prefix->factor, exponent);
    ApplyFactor(reading.found->reduced.factor, exponent);
    return AddNames(reading.found->reduced.powers, exponent);
}

bool Reduction::Run() {
    if (!Spend(std::strlen(text) / UnitsCost::TEXT_BYTES)) return false;
    if (std::strchr(text, *divider) != std::strrchr(text, *divider))
        return throw_exception2("invalid unit string '%s':  only one '%s' allowed", text, divider);
    if (text[std::strspn(text, validchars)] != '\0')
        return throw_exception1("invalid characters in unit string '%s'", text);
    remainder += std::strspn(text, " \t");
    if (beginsWithNumber(remainder)) {
        char* end = nullptr;
        result.factor = std::strtod(remainder, &end);
        remainder = end;
    }
    for (const char* next = remainder; *(next += std::strspn(next, separators)) != '\0';) {
        const size_t length = std::strcspn(next, " \t*-/");
        if (length == 0)
            isDivisor = true;
        else if (!ApplyToken(std::string(next, length)))
            return false;
        next += std::max<size_t>(length, 1);
    }
    JoinNames();
    return true;
}

} // namespace

std::optional<ReducedUnit> reduceUnit(const char* text, const UnitsCharge& charge) {
    if (std::strcmp(text, primitivestring) == 0) return ReducedUnit{};
    Reduction reduction(text, charge);
    return reduction.Run() ? std::optional(std::move(reduction.result)) : std::nullopt;
}
