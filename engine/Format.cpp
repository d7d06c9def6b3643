// SPDX-License-Identifier: MIT
#include "Format.h"

#include "Helpers_String.h"
#include "Outcome.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

// d.ddd... * 10^exponent
struct Decimal {
    bool negative = false;
    std::string digits; // the one before the point first; those that lack are zeros
    int exponent = 0;
};

enum ExponentKind { NO_EXPONENT, PLAIN_EXPONENT, EXPONENT_OF_THREE };

constexpr int ALL_DIGITS = 100;    // decides between the forms, and shows whole numbers in full
constexpr int MOST_FRACTION = 104; // as many as qtoasc delivers
constexpr int MAX_WHOLE_EXPONENT = 99;

// Whether all digits of a number are found without the number library, as those of most numbers that people
// compute: one from 1 to 2^64 whose mantissa has no more than 64 bits. Then they are in `decimal`.
bool hasShortDigits(const qfloat value, Decimal& decimal) {
    const uint32_t bits = value[1] - 0x8000; // in front of the point
    const auto isZero = [](uint32_t word) { return word == 0; };
    if (bits < 1 || bits > 64 || !std::all_of(value + 5, value + 14, isZero)) return false;
    const uint64_t mantissa = uint64_t{value[3]} << 32 | value[4];
    char digits[96];
    char* const point = digits + 20;
    char* first = point;
    for (uint64_t whole = mantissa >> (64 - bits); whole > 0; whole /= 10)
        *--first = static_cast<char>('0' + whole % 10);
    char* end = point;
    for (uint64_t fraction = bits < 64 ? mantissa << bits : 0; fraction > 0; fraction *= 10) {
        const uint64_t low = (fraction & 0xFFFFFFFF) * 10 >> 32;
        *end++ = static_cast<char>('0' + (((fraction >> 32) * 10 + low) >> 32));
    }
    while (end[-1] == '0') end--;
    decimal.negative = qisneg(value) != 0;
    decimal.digits.assign(first, end);
    decimal.exponent = static_cast<int>(point - first) - 1;
    return true;
}

Decimal toDecimal(const qfloat value, int fractionDigits) {
    char text[160];
    qtoasc(value, text, std::clamp(fractionDigits, 0, MOST_FRACTION));
    Decimal decimal;
    decimal.negative = text[0] == '-' && value[1] != 0; // zero has no sign
    const char* const first = text + strcspn(text, "0123456789");
    const char* const end = first + 2 + std::clamp(fractionDigits, 0, MOST_FRACTION);
    const char* last = end;
    while (last - first > 10 && std::memcmp(last - 8, "00000000", 8) == 0) last -= 8;
    while (last > first + 2 && last[-1] == '0') --last;
    decimal.digits.assign(first, 1).append(first + 2, last); // behind the point
    if (*end == 'E') decimal.exponent = atoi(end + 1);
    return decimal;
}

// The number with so many digits, of which `all` has ALL_DIGITS behind the point: these decide, unless they
// end in a tie, which rounding may have made.
Decimal withDigits(const Decimal& all, const qfloat value, size_t digits) {
    const bool isShort = digits >= all.digits.size();
    const char next = isShort ? '0' : all.digits[digits];
    const bool isTie = next == '5' && digits + 1 == all.digits.size();
    Decimal decimal = isTie || digits > ALL_DIGITS ? toDecimal(value, static_cast<int>(digits) - 1) : all;
    decimal.digits.resize(digits, '0');
    if (next < '5' || isTie) return decimal;
    const size_t place = decimal.digits.find_last_not_of('9');
    std::fill(decimal.digits.begin() + static_cast<std::ptrdiff_t>(place + 1), decimal.digits.end(), '0');
    if (place != std::string::npos) {
        decimal.digits[place]++;
    } else { // 9.99 becomes 1.00 with the next exponent
        decimal.digits[0] = '1';
        decimal.exponent++;
    }
    return decimal;
}

ExponentKind exponentKind(const Decimal& all, int sigfigs, int scimode) {
    const int e = all.exponent;
    switch (scimode) {
    case SCI_ALWAYS: return PLAIN_EXPONENT;
    case SCI_PREFIX: return e >= 0 && e < 3 ? NO_EXPONENT : EXPONENT_OF_THREE;
    case SCI_ENGINEERING: return e >= 0 && e < 3 && e < sigfigs - 1 ? NO_EXPONENT : EXPONENT_OF_THREE;
    case SCI_AUTO:
        if (e >= -3 && !(e >= 8 || e > sigfigs)) return NO_EXPONENT;
        // Numbers such as 123456780 have no more digits than their exponent: they are shown in full.
        if (e >= 0 && e < 10 && all.digits.size() <= static_cast<size_t>(e)) return NO_EXPONENT;
        return PLAIN_EXPONENT;
    default: return NO_EXPONENT;
    }
}

// The digits with the point moved `places` to the right of the first digit, filled with zeros.
std::string withPoint(std::string digits, int places) {
    const size_t integerDigits = static_cast<size_t>(places) + 1;
    if (digits.size() < integerDigits) digits.append(integerDigits - digits.size(), '0');
    digits.insert(integerDigits, 1, '.');
    return digits;
}

void removeTrailingZeros(std::string& text, size_t keep) {
    const size_t shortest = text.find('.') + 1 + keep;
    while (text.size() > shortest && text.back() == '0') text.pop_back();
}

std::string exponentForm(const Decimal& decimal, ExponentKind kind, int scimode) {
    int e = decimal.exponent;
    if (kind == EXPONENT_OF_THREE) e = e >= 0 ? e / 3 * 3 : -((2 - e) / 3 * 3);
    std::string text = withPoint(decimal.digits, decimal.exponent - e);
    if (scimode == SCI_AUTO) removeTrailingZeros(text, 1);
    if (scimode == SCI_PREFIX && e >= LEAST_PREFIX && e <= 15)
        return text + METRIC_PREFIXES[e - LEAST_PREFIX];
    return text + 'e' + std::to_string(e);
}

// A value below the last decimal shown rounds to one unit of it or to zero. The value's own digits decide,
// not its rounded ones: with two decimals 0.00096 is 0.00 although it rounds to 0.001.
std::string tinyFixedForm(const Decimal& all, size_t decimals) {
    std::string text = "0." + std::string(decimals, '0');
    const bool isNext =
        all.exponent == -static_cast<int>(decimals) - 1; // its first digit is the next decimal
    if (isNext && all.digits[0] >= '5') text[decimals > 0 ? decimals + 1 : 0] = '1';
    return text;
}

std::string plainForm(Decimal decimal) {
    if (decimal.exponent >= 0) return withPoint(std::move(decimal.digits), decimal.exponent);
    return "0." + std::string(static_cast<size_t>(-decimal.exponent - 1), '0') + decimal.digits;
}

std::string fixedForm(const Decimal& all, const Decimal& decimal, size_t decimals) {
    const bool isTiny = all.exponent < -static_cast<int>(decimals);
    std::string text = isTiny ? tinyFixedForm(all, decimals) : plainForm(decimal);
    text.resize(text.find('.') + 1 + decimals, '0');
    if (decimals == 0) text.pop_back();
    return text;
}

std::string grouped(std::string text, char separator) {
    if (separator == '\0') return text;
    const size_t integerDigits = std::min(text.find('.'), text.size());
    std::string out;
    for (size_t i = 0; i < integerDigits; i++) {
        out += text[i];
        const size_t toFollow = integerDigits - 1 - i;
        if (toFollow > 0 && toFollow % 3 == 0) out += separator;
    }
    return out.append(text, integerDigits);
}

std::string formatFinite(const qfloat value, int sigfigs, int scimode, char separator, bool& negative) {
    Decimal all;
    if (!hasShortDigits(value, all)) all = toDecimal(value, ALL_DIGITS);
    const ExponentKind kind = exponentKind(all, sigfigs, scimode);
    const int e = all.exponent;
    negative = all.negative;
    const bool isWhole = e >= 0 && e <= MAX_WHOLE_EXPONENT && all.digits.size() <= static_cast<size_t>(e) + 1;
    if (kind == NO_EXPONENT && isWhole && scimode != SCI_FIXED) {
        all.digits.resize(static_cast<size_t>(e) + 1, '0');
        return grouped(std::move(all.digits), separator);
    }
    const int shown = scimode == SCI_FIXED ? std::max(sigfigs + e + 1, 1) : sigfigs;
    const auto digitsShown = static_cast<size_t>(shown);
    const bool isPlain = kind == NO_EXPONENT && scimode != SCI_FIXED; // without zeros at the end
    const bool isComplete = isPlain && all.digits.size() <= digitsShown;
    const bool hasFraction = e >= 0 && all.digits.size() > static_cast<size_t>(e) + 1;
    if (isComplete && hasFraction) return grouped(plainForm(std::move(all)), separator);
    Decimal decimal = isComplete ? all : withDigits(all, value, digitsShown);
    if (kind != NO_EXPONENT) return exponentForm(decimal, kind, scimode);
    if (scimode == SCI_FIXED) {
        const std::string text = fixedForm(all, decimal, static_cast<size_t>(sigfigs));
        if (text.find_first_of("123456789") == std::string::npos)
            negative = false; // a rounded zero has no sign
        return grouped(text, separator);
    }
    std::string text = plainForm(std::move(decimal));
    removeTrailingZeros(text, 0);
    if (text.back() == '.') text.pop_back();
    return grouped(std::move(text), separator);
}

std::string decimalText(const qfloat value, int sigfigs, int scimode, char separator) {
    if (value[1] >= OVERFLOW_EXPONENT) return qisneg(value) ? "-OVERFLOW" : "+OVERFLOW";
    bool negative = false;
    sigfigs = std::clamp(sigfigs, scimode == SCI_FIXED ? 0 : 1, ALL_DIGITS);
    std::string text = formatFinite(value, sigfigs, scimode, separator, negative);
    if (negative) text.insert(0, 1, '-');
    return text;
}

std::string numberText(const qfloat value, const EntrySettings& settings, int scimode, char separator) {
    if (settings.displayBase == 10) return decimalText(value, settings.sigFigs, scimode, separator);
    char text[FORMAT_SIZE];
    text[0] = '\0';
    formatNumber(value, settings.displayBase, text, settings.sigFigs, scimode, settings.twosComp, separator);
    return text;
}

} // namespace

void qtoascii(const qfloat value, char* out, int sigfigs, int scimode, char separator) {
    out[decimalText(value, sigfigs, scimode, separator).copy(out, FORMAT_SIZE - 1)] = '\0';
}

void formatNumber(const qfloat value, int base, char* out, int sigfigs, int scimode, bool twoscomp,
                  char separator) {
    switch (base) {
    case 16: qtohex(value, out, twoscomp); break;
    case 10: qtoascii(value, out, sigfigs, scimode, separator); break;
    case 2: qtobin(value, out, twoscomp); break;
    default: break;
    }
}

std::string plainNumber(const qfloat value) {
    return decimalText(value, ALL_DIGITS, SCI_AUTO, '\0');
}

std::string shownNumber(const qfloat value, const EntrySettings& settings, size_t nameLength) {
    const char separator = settings.useSeparator ? settings.separatorChar : '\0';
    std::string text = numberText(value, settings, settings.sciMode, separator);
    if (nameLength + strlen(" = \n") + text.size() >= TEXT_SIZE)
        text = numberText(value, settings, SCI_ALWAYS, '\0');
    if (settings.european) StrSwapChars(text.data(), '.', ',');
    return text;
}
