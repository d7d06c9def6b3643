// SPDX-License-Identifier: MIT
//
// Numbers as text.
#include "Calculator.h"

#include "Helpers_String.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// d.ddd... * 10^exponent
struct Decimal {
    bool negative = false;
    std::string digits; // the one before the point first
    int exponent = 0;

    size_t SignificantDigits() const { return digits.find_last_not_of('0') + 1; }
};

enum ExponentKind { NO_EXPONENT, PLAIN_EXPONENT, EXPONENT_OF_THREE };

constexpr int ALL_DIGITS = 100;    // decides between the forms, and shows whole numbers in full
constexpr int MOST_FRACTION = 104; // as many as qtoasc delivers
constexpr int MAX_WHOLE_EXPONENT = 99;

Decimal toDecimal(const qfloat value, int fractionDigits) {
    char text[160];
    qtoasc(value, text, std::clamp(fractionDigits, 0, MOST_FRACTION));
    Decimal decimal;
    const char* p = text;
    for (; *p && *p != 'E'; p++) {
        if (*p == '-') decimal.negative = true;
        if (IsDigit(*p)) decimal.digits += *p;
    }
    if (*p == 'E') decimal.exponent = atoi(p + 1);
    if (value[1] == 0) decimal.negative = false; // zero has no sign
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
        if (e >= 0 && e < 10 && all.SignificantDigits() <= static_cast<size_t>(e)) return NO_EXPONENT;
        return PLAIN_EXPONENT;
    default: return NO_EXPONENT;
    }
}

// The digits with the point moved `places` to the right of the first digit, filled with zeros.
std::string withPoint(const std::string& digits, int places) {
    const size_t integerDigits = static_cast<size_t>(places) + 1;
    std::string text = digits;
    if (text.size() < integerDigits) text.append(integerDigits - text.size(), '0');
    return text.insert(integerDigits, 1, '.');
}

void removeTrailingZeros(std::string& text, size_t keep) {
    const size_t shortest = text.find('.') + 1 + keep;
    while (text.size() > shortest && text.back() == '0') text.pop_back();
}

// -18 a, -15 f, -12 p, -9 n, -6 u, -3 m, -2 c, 0 blank, 3 k, 6 M, 9 G, 12 T, 15 P
const char prefixes[] = "a  f  p  n  u  mc    k  M  G  T  P";

std::string exponentForm(const Decimal& decimal, ExponentKind kind, int scimode) {
    int e = decimal.exponent;
    if (kind == EXPONENT_OF_THREE) e = e >= 0 ? e / 3 * 3 : -((2 - e) / 3 * 3);
    std::string text = withPoint(decimal.digits, decimal.exponent - e);
    if (scimode == SCI_AUTO) removeTrailingZeros(text, 1);
    if (scimode == SCI_PREFIX && e >= -18 && e <= 15) return text + prefixes[e + 18];
    return text + 'e' + std::to_string(e);
}

// A value below 1 in fixed mode, whose text has decimals beyond the last one shown: it rounds to one unit of
// the last place or to zero. `leading` is the value's first digit before any rounding.
void roundTinyFixed(std::string& text, size_t decimals, char leading) {
    const size_t beyond = 2 + decimals; // behind "0."
    if (beyond < text.size() && text[beyond] >= '1' && leading >= '5') {
        text[decimals > 0 ? beyond - 1 : 0] = '1';
    }
}

std::string plainForm(const Decimal& decimal) {
    if (decimal.exponent >= 0) return withPoint(decimal.digits, decimal.exponent);
    return "0." + std::string(static_cast<size_t>(-decimal.exponent - 1), '0') + decimal.digits;
}

std::string fixedForm(const Decimal& decimal, int digitsShown, size_t decimals, char leading) {
    std::string text = plainForm(decimal);
    if (decimal.exponent < 0 && digitsShown == 1) roundTinyFixed(text, decimals, leading);
    const size_t point = text.find('.');
    text.resize(point + 1 + decimals, '0');
    if (decimals == 0) text.pop_back();
    return text;
}

std::string grouped(const std::string& text, char separator) {
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
    const Decimal all = toDecimal(value, ALL_DIGITS);
    const ExponentKind kind = exponentKind(all, sigfigs, scimode);
    const int e = all.exponent;
    negative = all.negative;
    const bool isWhole =
        e >= 0 && e <= MAX_WHOLE_EXPONENT && all.SignificantDigits() <= static_cast<size_t>(e) + 1;
    if (kind == NO_EXPONENT && isWhole && scimode != SCI_FIXED) {
        const std::string text = withPoint(all.digits, e);
        return grouped(text.substr(0, text.find('.')), separator);
    }
    const int digitsShown = scimode == SCI_FIXED ? std::max(sigfigs + e + 1, 1) : sigfigs;
    const Decimal decimal = toDecimal(value, digitsShown - 1);
    if (kind != NO_EXPONENT) return exponentForm(decimal, kind, scimode);
    if (scimode == SCI_FIXED) {
        const char leading = all.digits.empty() ? '0' : all.digits[0];
        return grouped(fixedForm(decimal, digitsShown, static_cast<size_t>(sigfigs), leading), separator);
    }
    std::string text = plainForm(decimal);
    removeTrailingZeros(text, 0);
    if (text.back() == '.') text.pop_back();
    return grouped(text, separator);
}

} // namespace

void qtoascii(const qfloat value, char* out, int sigfigs, int scimode, char separator) {
    if (value[1] >= 0x10000) {
        snprintf(out, FORMAT_SIZE, "%cOVERFLOW", qisneg(value) ? '-' : '+');
        return;
    }
    bool negative = false;
    sigfigs = std::clamp(sigfigs, scimode == SCI_FIXED ? 0 : 1, ALL_DIGITS);
    const std::string text = formatFinite(value, sigfigs, scimode, separator, negative);
    snprintf(out, FORMAT_SIZE, "%s%s", negative ? "-" : "", text.c_str());
}

int ZqCalculator::FormatResult(int base, char* out, int sigfigs, int scimode, bool twoscomp, char separator) {
    switch (base) {
    case 16: qtohex(result, out, twoscomp); break;
    case 10: qtoascii(result, out, sigfigs, scimode, separator); break;
    case 2: qtobin(result, out, twoscomp); break;
    default: break;
    }
    return 0;
}
