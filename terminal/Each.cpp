// SPDX-License-Identifier: MIT
#include "Each.h"

#include "Calculator.h"
#include "EntryText.h"
#include "Helpers_String.h"
#include "ScreenText.h"
#include "qfloat.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr std::string_view MINUS_SIGN = "\u2212";
constexpr size_t MAX_DIGITS = 104; // so many the number library reads; it drops the others
constexpr int SHOWN_FIELD = 60;    // columns of a field in a message

// Marks between groups of digits besides the comma or the point.
constexpr std::array<std::string_view, 7> GROUP_MARKS = {"'",      " ",      "\u2019", "\u00a0",
                                                         "\u202f", "\u2009", "\u2007"};

bool removeStart(std::string_view& text, std::string_view start) {
    if (!startsWith(text, start)) return false;
    text.remove_prefix(start.size());
    return true;
}

bool removeEnd(std::string_view& text, std::string_view end) {
    if (text.size() < end.size() || text.substr(text.size() - end.size()) != end) return false;
    text.remove_suffix(end.size());
    return true;
}

// Takes digits off the text.
std::string takeDigits(std::string_view& text) {
    size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    std::string digits(text.substr(0, count));
    text.remove_prefix(count);
    return digits;
}

// The mark at the front of the text that stands between two digits there, or nothing.
std::string_view groupMarkAt(std::string_view text, std::string_view mark) {
    const auto stands = [text](std::string_view one) {
        return startsWith(text, one) && text.size() > one.size() && isDigit(text[one.size()]);
    };
    if (stands(mark)) return mark;
    const auto* const found = std::find_if(GROUP_MARKS.begin(), GROUP_MARKS.end(), stands);
    return found == GROUP_MARKS.end() ? std::string_view() : *found;
}

// Takes a whole number off the text, with one mark between all of its groups. False when a group has not
// three digits.
bool takeWhole(std::string_view& text, std::string_view mark, std::string& digits) {
    digits = takeDigits(text);
    const std::string_view used = groupMarkAt(text, mark);
    if (used.empty()) return true;
    if (digits.empty() || digits.size() > 3) return false;
    while (removeStart(text, used)) {
        const std::string group = takeDigits(text);
        if (group.size() != 3) return false;
        digits += group;
    }
    return true;
}

// Takes "e-3" off the text; an exponent needs a digit.
std::string takeExponent(std::string_view& text) {
    std::string_view rest = text;
    if (!removeStart(rest, "e") && !removeStart(rest, "E")) return "";
    const bool isNegative = removeStart(rest, "-");
    if (!isNegative) removeStart(rest, "+");
    const std::string digits = takeDigits(rest);
    if (digits.empty()) return "";
    text = rest;
    return (isNegative ? "e-" : "e") + digits;
}

// "0xFF", "0b101" or "0o17".
bool isOfBase(std::string_view text) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 3> BASES = {
        {{"0x", "0123456789abcdefABCDEF"}, {"0b", "01"}, {"0o", "01234567"}}};
    return std::any_of(BASES.begin(), BASES.end(), [text](const auto& base) {
        return text.size() > 2 && startsWith(text, base.first) &&
               text.find_first_not_of(base.second, 2) == std::string_view::npos;
    });
}

// Removes the sign, wherever it is.
bool removeMinus(std::string_view& text) {
    if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
        text = trimmed(text.substr(1, text.size() - 2));
        return true;
    }
    if (removeStart(text, "-") || removeStart(text, MINUS_SIGN)) return true;
    if (removeStart(text, "+")) return false;
    return removeEnd(text, "-") || removeEnd(text, MINUS_SIGN);
}

bool hasCurrencySign(std::string_view field) {
    static constexpr std::array<std::string_view, 4> SIGNS = {"$", "\u00a2", "\u00a3", "\u00a5"};
    const auto has = [field](std::string_view sign) { return field.find(sign) != std::string_view::npos; };
    // U+20A0 to U+20BF are currency signs too, the euro among them.
    const size_t block = field.find("\xe2\x82");
    const bool isOfBlock = block != std::string_view::npos && block + 2 < field.size() &&
                           static_cast<unsigned char>(field[block + 2]) >= 0xa0;
    return isOfBlock || std::any_of(SIGNS.begin(), SIGNS.end(), has);
}

bool hasTooManyDigits(std::string_view digits) {
    const size_t first = std::min(digits.find_first_not_of('0'), digits.size());
    return digits.find_last_not_of('0') + 1 > first + MAX_DIGITS;
}

// A number as the number library reads it. Of one that is longer than that, zeros at its ends go into the
// exponent.
std::string decimalText(const std::string& whole, const std::string& fraction, const std::string& exponent) {
    std::string digits = whole + fraction;
    if (digits.size() <= MAX_DIGITS)
        return (whole.empty() ? "0" : whole) + (fraction.empty() ? "" : "." + fraction) + exponent;
    const size_t first = digits.find_first_not_of('0');
    if (first == std::string::npos) return "0";
    const size_t end = digits.find_last_not_of('0') + 1;
    constexpr long FAR = 10000000; // beyond the range, and no sum with it overflows
    const long given = exponent.empty() ? 0 : std::strtol(exponent.c_str() + 1, nullptr, 10);
    const long power =
        std::clamp(given, -FAR, FAR) + static_cast<long>(whole.size()) - static_cast<long>(end);
    return digits.substr(first, end - first) + "e" + std::to_string(power);
}

// What is to be said of a field that is no number.
std::string faultOf(std::string_view field, bool areGroupsWrong, bool hasDecimalComma) {
    if (hasCurrencySign(field)) return "has a currency sign";
    if (field.find('%') != std::string_view::npos) return "has a percent sign";
    if (!areGroupsWrong) return "is no number";
    return hasDecimalComma ? "has groups that are not three digits long"
                           : "has groups that are not three digits long; --comma reads decimal commas";
}

} // namespace

FieldNumber readField(std::string_view field, bool hasDecimalComma) {
    FieldNumber number;
    std::string_view rest = trimmed(field);
    if (rest.size() > 2 && rest.front() == '"' && rest.back() == '"')
        rest = trimmed(rest.substr(1, rest.size() - 2));
    number.isNegative = removeMinus(rest);
    const std::string tooMany = "has more than " + std::to_string(MAX_DIGITS) + " digits";
    if (isOfBase(rest)) {
        if (hasTooManyDigits(rest.substr(2)))
            number.fault = tooMany;
        else
            number.digits = rest;
        return number;
    }
    std::string whole;
    const bool areGroupsRight = takeWhole(rest, hasDecimalComma ? "." : ",", whole);
    std::string fraction;
    if (areGroupsRight && removeStart(rest, hasDecimalComma ? "," : ".")) fraction = takeDigits(rest);
    const bool hasDigits = !whole.empty() || !fraction.empty();
    const std::string exponent = hasDigits ? takeExponent(rest) : "";
    if (!areGroupsRight || !hasDigits || !rest.empty())
        number.fault = faultOf(field, !areGroupsRight, hasDecimalComma);
    else if (hasTooManyDigits(whole + fraction))
        number.fault = tooMany;
    else
        number.digits = decimalText(whole, fraction, exponent);
    return number;
}

namespace {

std::vector<std::string> splitAtBlanks(std::string_view line) {
    std::vector<std::string> fields;
    for (size_t start = line.find_first_not_of(BLANKS); start != std::string_view::npos;) {
        const size_t end = line.find_first_of(BLANKS, start);
        fields.emplace_back(line.substr(start, end - start));
        start = line.find_first_not_of(BLANKS, end);
    }
    return fields;
}

// Takes a field in quotes off the line. The second quote may lack.
std::string takeQuoted(std::string_view& line) {
    std::string field;
    line.remove_prefix(1);
    while (!line.empty()) {
        const bool isDoubled = startsWith(line, "\"\"");
        if (!isDoubled && removeStart(line, "\"")) break;
        field += line.front();
        line.remove_prefix(isDoubled ? 2 : 1);
    }
    return field;
}

} // namespace

std::vector<std::string> splitFields(std::string_view line, std::string_view separator) {
    if (separator.empty()) return splitAtBlanks(line);
    std::vector<std::string> fields;
    for (;;) {
        std::string quoted;
        const size_t start = line.find_first_not_of(' ');
        if (start != std::string_view::npos && line[start] == '"') {
            line.remove_prefix(start);
            quoted = takeQuoted(line);
        }
        const size_t end = line.find(separator);
        fields.push_back(quoted + std::string(trimmed(line.substr(0, end))));
        if (end == std::string_view::npos) return fields;
        line.remove_prefix(end + separator.size());
    }
}

std::vector<size_t> fieldsNamedIn(std::string_view entry) {
    std::vector<size_t> fields;
    for (size_t i = 0; i < entry.size();) {
        const size_t start = i;
        while (i < entry.size() && isOfName(entry[i])) ++i;
        const std::string word(entry.substr(start, i - start));
        if (i == start) ++i;
        const bool isNumbered = word.size() > 1 && word.size() < 8 && word[1] != '0' &&
                                word.find_first_not_of("0123456789", 1) == std::string::npos;
        if (word.empty() || word[0] != 'x' || (word.size() > 1 && !isNumbered)) continue;
        fields.push_back(isNumbered ? std::strtoul(word.c_str() + 1, nullptr, 10) : 1);
    }
    std::sort(fields.begin(), fields.end());
    fields.erase(std::unique(fields.begin(), fields.end()), fields.end());
    return fields;
}

std::vector<std::string> namesAssignedIn(std::string_view entry) {
    std::vector<std::string> names;
    while (!entry.empty()) {
        std::string_view statement = entry.substr(0, entry.find(';'));
        entry.remove_prefix(std::min(statement.size() + 1, entry.size()));
        const size_t equals = statement.substr(0, statement.find('#')).find('=');
        if (equals == std::string_view::npos || startsWith(statement.substr(equals), "==")) continue;
        const std::string name(trimmed(statement.substr(0, equals)));
        if (isValidName(name) && name != "ans" && fieldsNamedIn(name).empty()) names.push_back(name);
    }
    return names;
}

Each::Each(ZqCalculator& with, std::string_view entry, std::string_view fieldSeparator)
    : calc(with), separator(fieldSeparator == "\\t" ? "\t" : fieldSeparator), wanted(fieldsNamedIn(entry)) {
    for (const std::string& name : namesAssignedIn(entry)) Set(name, {"0", false, ""});
}

bool Each::Set(const std::string& name, const FieldNumber& number) {
    // One that is new is made by an assignment.
    if (!calc.VariableExists(name.c_str())) calc.Calculate((name + "=0").c_str());
    const node* const variable = calc.VariableExists(name.c_str());
    if (!variable || !variable->value) return true;
    qfloat& value = *variable->value;
    calc.Str2Num(number.digits.c_str(), value);
    merror = 0; // no error of the entry
    const bool isZero = value[1] == 0;
    if (number.isNegative && !isZero) qneg(value);
    return value[1] < OVERFLOW_EXPONENT;
}

std::string Each::TakeField(size_t number, const std::string& field) {
    FieldNumber value = readField(field, calc.european);
    if (value.fault.empty() &&
        (!Set("x" + std::to_string(number), value) || (number == 1 && !Set("x", value))))
        value.fault = "is beyond the range";
    return value.fault.empty() ? ""
                               : "** ERROR: '" + cutToWidth(field, SHOWN_FIELD) + "' " + value.fault + " **";
}

std::string Each::Take(std::string_view line) {
    if (wanted.empty()) return "";
    const std::vector<std::string> fields = splitFields(line, separator);
    for (const size_t number : wanted) {
        if (number > fields.size()) return "** ERROR: there is no field x" + std::to_string(number) + " **";
        if (fields[number - 1].empty())
            return "** ERROR: the field x" + std::to_string(number) + " is empty **";
        std::string error = TakeField(number, fields[number - 1]);
        if (!error.empty()) return error;
    }
    return "";
}
