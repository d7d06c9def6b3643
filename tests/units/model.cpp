// SPDX-License-Identifier: MIT
#include "model.h"
#include "table.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace {

const std::string LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
const std::string VALID = LETTERS + "0123456789. \t*^/+-";

bool holdsOnly(const std::string& text, const std::string& set) {
    return text.find_first_not_of(set) == std::string::npos;
}

bool startsWithNumber(const std::string& text) {
    const size_t i = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const auto isDigitAt = [&](size_t k) { return k < text.size() && std::isdigit(text[k]) != 0; };
    return isDigitAt(i) || (i < text.size() && text[i] == '.' && isDigitAt(i + 1));
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> tokens(1);
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '*' || c == '-') {
            tokens.emplace_back();
        } else {
            tokens.back() += c;
        }
    }
    tokens.erase(std::remove(tokens.begin(), tokens.end(), ""), tokens.end());
    return tokens;
}

// 0 for anything but a whole number from 1 to 1000.
int exponentOf(std::string digits) {
    if (digits.empty() || !holdsOnly(digits, "0123456789")) return 0;
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.size() > 4 || digits.empty()) return 0;
    const int exponent = std::stoi(digits);
    return exponent <= 1000 ? exponent : 0;
}

void cancel(Reduced& result) {
    for (size_t i = 0; i < result.numerator.size();) {
        const auto same =
            std::find(result.denominator.begin(), result.denominator.end(), result.numerator[i]);
        if (same == result.denominator.end()) {
            ++i;
        } else {
            result.denominator.erase(same);
            result.numerator.erase(result.numerator.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

} // namespace

UnitModel::UnitModel() {
    for (const TablePrefix& p : tablePrefixes()) prefixes.emplace_back(p.name, std::atof(p.factor.c_str()));
    for (const TableUnit& u : tableUnits()) Define(u.name, u.definition);
}

void UnitModel::Fail(const std::string& format, const std::string& first, const std::string& second) {
    message = format;
    if (format.size() + first.size() + second.size() > 254) return;
    const size_t i = message.find("%s");
    message.replace(i, 2, first);
    const size_t k = message.find("%s", i + first.size());
    if (k != std::string::npos) message.replace(k, 2, second);
}

UnitModel::Meaning UnitModel::LookUpSingular(const std::string& name) const {
    for (size_t u = 0; u < units.size(); ++u) {
        if (units[u].first == name) return {-1, static_cast<int>(u)};
    }
    for (size_t u = 0; u < units.size(); ++u) {
        const std::string& unit = units[u].first;
        if (unit.size() >= name.size() || name.substr(name.size() - unit.size()) != unit) continue;
        for (size_t p = 0; p < prefixes.size(); ++p) {
            if (prefixes[p].first + unit == name) return {static_cast<int>(p), static_cast<int>(u)};
        }
    }
    return {};
}

UnitModel::Meaning UnitModel::LookUp(const std::string& name) const {
    Meaning meaning = LookUpSingular(name);
    const size_t size = name.size();
    if (meaning.unit < 0 && size >= 1 && name.substr(size - 1) == "s") {
        meaning = LookUpSingular(name.substr(0, size - 1));
    }
    if (meaning.unit < 0 && size >= 2 && name.substr(size - 2) == "es") {
        meaning = LookUpSingular(name.substr(0, size - 2));
    }
    return meaning;
}

bool UnitModel::Apply(std::string token, bool isDivisor, const std::string& remainder, Reduced& result) {
    const auto multiply = [&](double factor) {
        result.factor = isDivisor ? result.factor / factor : result.factor * factor;
    };
    if (startsWithNumber(token)) {
        char* end = nullptr;
        const double number = std::strtod(token.c_str(), &end);
        if (number == 0) return Fail("illegal zero factor in '%s'", remainder), false;
        multiply(number);
        if (isDivisor && *end == '\0') return true;
    }
    int exponent = 1;
    const size_t caret = token.find('^');
    if (caret != std::string::npos) {
        exponent = exponentOf(token.substr(caret + 1));
        if (exponent == 0) return Fail("invalid integer exponent in '%s'", remainder), false;
        token.resize(caret);
    }
    if (token.empty() || !holdsOnly(token, LETTERS)) {
        return Fail("invalid non-alphabetic unit name in '%s'", remainder), false;
    }
    const Meaning meaning = LookUp(token);
    if (meaning.unit < 0) return Fail("invalid unit name '%s' in '%s'", token, remainder), false;
    if (meaning.prefix >= 0) {
        for (int i = 0; i < exponent; ++i) multiply(Prefix(meaning.prefix));
    }
    const auto& [name, found] = units[static_cast<size_t>(meaning.unit)];
    std::vector<std::string>& side = isDivisor ? result.denominator : result.numerator;
    std::vector<std::string>& opposite = isDivisor ? result.numerator : result.denominator;
    for (int i = 0; i < exponent; ++i) {
        if (found.isPrimitive) {
            side.push_back(name);
            continue;
        }
        multiply(found.factor);
        side.insert(side.end(), found.numerator.begin(), found.numerator.end());
        opposite.insert(opposite.end(), found.denominator.begin(), found.denominator.end());
    }
    if (side.size() > 100000 || opposite.size() > 100000) {
        return Fail("invalid integer exponent in '%s'", remainder), false;
    }
    return true;
}

std::optional<Reduced> UnitModel::Reduce(const std::string& text) {
    Reduced result;
    if (text == "-primitive") {
        result.isPrimitive = true;
        return result;
    }
    if (std::count(text.begin(), text.end(), '/') >= 2) {
        return Fail("invalid unit string '%s':  only one '%s' allowed", text, "/"), std::nullopt;
    }
    if (!holdsOnly(text, VALID)) return Fail("invalid characters in unit string '%s'", text), std::nullopt;
    std::string remainder = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
    if (startsWithNumber(remainder)) {
        char* end = nullptr;
        const std::string whole = remainder;
        result.factor = std::strtod(whole.c_str(), &end);
        remainder = end;
    }
    std::string copy = remainder;
    const size_t slash = copy.find('/');
    if (slash != std::string::npos) copy.replace(slash, 1, " / ");
    bool isDivisor = false;
    for (const std::string& token : split(copy)) {
        if (token == "/") {
            isDivisor = !isDivisor;
        } else if (!Apply(token, isDivisor, remainder, result)) {
            return std::nullopt;
        }
    }
    std::sort(result.numerator.begin(), result.numerator.end());
    std::sort(result.denominator.begin(), result.denominator.end());
    cancel(result);
    return result;
}

double UnitModel::Convert(const std::string& from, const std::string& to) {
    const std::optional<Reduced> source = Reduce(from);
    const std::optional<Reduced> target = Reduce(to);
    if (!source || !target) return 0.0;
    const bool isDimensionless = source->numerator.empty() && source->denominator.empty();
    if (!isDimensionless &&
        (source->numerator != target->numerator || source->denominator != target->denominator)) {
        return Fail("'%s' and '%s' have incompatible units", from, to), 0.0;
    }
    if (target->factor == 0) return Fail("illegal zero factor in '%s'", to), 0.0;
    return source->factor / target->factor;
}

void UnitModel::Define(const std::string& name, const std::string& definition) {
    for (const auto& known : units) {
        if (known.first == name && name[0] != '#') return Fail("unit '%s' is already defined", name);
    }
    if (name.empty() || !holdsOnly(name, LETTERS)) {
        return Fail("non-alphabetic characters in unit name '%s'", name);
    }
    const std::optional<Reduced> reduced = Reduce(definition);
    if (!reduced) return Fail("'%s' cannot be reduced to primitive units", definition);
    units.emplace_back(name, *reduced);
}

bool UnitModel::Remove(const std::string& name) {
    for (auto& known : units) {
        if (known.first != name || name.empty() || !holdsOnly(name, LETTERS)) continue;
        known.first[0] = '#';
        return false;
    }
    return true;
}
