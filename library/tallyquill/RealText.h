// SPDX-License-Identifier: MIT
//
// Real numbers as texts: reading, the literals 1.5_real, writing to and reading from streams. Part of Real.h.
//
// The decimal point is '.', whatever the program's locale.
#pragma once

#include "Real.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace tallyquill {

constexpr int MOST_FIGURES = 105; // that qtoasc writes

namespace detail {

constexpr size_t FIGURES_READ = 104;               // that qparse reads
constexpr int64_t EXPONENT_LIMIT = 100000;         // beyond all numbers
constexpr int64_t TEXT_EXPONENT_LIMIT = 1LL << 40; // beyond what digits of a text in memory make up for

[[noreturn]] inline void refuse(std::string_view text) {
    throw std::invalid_argument("not a number: " + std::string(text));
}

inline int radixOf(std::string_view text) {
    if (text.size() < 3 || text[0] != '0') return 10;
    switch (text[1]) {
    case 'x':
    case 'X': return 16;
    case 'o':
    case 'O': return 8;
    case 'b':
    case 'B': return 2;
    default: return 10;
    }
}

inline int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 99;
}

// Digits with at most one point, at least one digit; exact up to 352 bits, behind which digits count for the
// scale alone.
inline Real readRadix(std::string_view digits, int radix) {
    const int bitsPerDigit = radix == 16 ? 4 : radix == 8 ? 3 : 1;
    constexpr int MOST_DIGITS = 352;
    Real value;
    bool isBehindPoint = false;
    size_t count = 0;
    int figures = 0; // from the first that is not 0
    int64_t scale = 0;
    for (const char c : digits) {
        if (c == '.' && !isBehindPoint) {
            isBehindPoint = true;
            continue;
        }
        if (digitOf(c) >= radix) refuse(digits);
        ++count;
        if (isBehindPoint) scale -= bitsPerDigit;
        if (figures == 0 && c == '0') continue;
        if (figures++ < MOST_DIGITS)
            value = ldexp(value, bitsPerDigit) + Real(digitOf(c));
        else
            scale += bitsPerDigit;
    }
    if (count == 0) refuse(digits);
    return ldexp(value, scale);
}

// An exponent: a sign or none, and digits. Beyond the limit it does not grow.
inline int64_t readExponent(std::string_view digits, std::string_view text) {
    const bool isBelowZero = !digits.empty() && digits[0] == '-';
    if (!digits.empty() && (digits[0] == '+' || digits[0] == '-')) digits.remove_prefix(1);
    if (digits.empty()) refuse(text);
    int64_t exponent = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') refuse(text);
        exponent = std::min<int64_t>(exponent * 10 + (c - '0'), TEXT_EXPONENT_LIMIT);
    }
    return isBelowZero ? -exponent : exponent;
}

// Digits with at most one point, and an exponent or none. The routine gets the figures that count as a whole
// number with an exponent: it would drop digits behind its 104th without a change to the scale.
inline Real readDecimal(std::string_view text) {
    const size_t mark = std::min(text.find_first_of("eE"), text.size());
    int64_t exponent = mark < text.size() ? readExponent(text.substr(mark + 1), text) : 0;
    std::string figures;
    bool isBehindPoint = false;
    size_t count = 0;
    for (const char c : text.substr(0, mark)) {
        if (c == '.' && !isBehindPoint) {
            isBehindPoint = true;
            continue;
        }
        if (c < '0' || c > '9') refuse(text);
        ++count;
        exponent -= isBehindPoint ? 1 : 0;
        if (figures.empty() && c == '0') continue;
        if (figures.size() < FIGURES_READ)
            figures += c;
        else
            ++exponent;
    }
    if (count == 0) refuse(text);
    if (figures.empty()) return {};
    figures += 'e' + std::to_string(std::clamp(exponent, -EXPONENT_LIMIT, EXPONENT_LIMIT));
    qfloat words;
    qparse(figures.c_str(), words);
    return Real(words);
}

// A magnitude's figures and the exponent of the first: 1234 with three figures is "123" and 3.
struct Figures {
    std::string digits;
    int64_t exponent = 0;
};

// Whether a magnitude lies exactly between two numbers of one figure, the lower of which is digit * 10^k and
// odd. Below 1 only 0.75 does, being a binary number; with k above 150 the half has more than 352 bits.
inline bool isTieOfOneFigure(const Real& x, int digit, int64_t k) {
    if (k < 0) return x == Real(0.75);
    return k <= 150 && x == Real(2 * digit + 1) / 2 * pow(Real(10), Real(k));
}

// Rounded to so many figures, at least one; those behind the 105th are zeros. Ties go to the even figure,
// also that of a single one, which qtoasc cuts.
inline Figures figuresOf(const Real& x, int64_t count) {
    char buffer[3 + 104 + 8];
    qtoasc(x.Words(), buffer, static_cast<int>(std::min<int64_t>(count, MOST_FIGURES)) - 1);
    const std::string_view text(buffer);
    const size_t mark = text.find('E');
    Figures found{std::string(1, text[1]), readExponent(text.substr(mark + 1), text)};
    found.digits += text.substr(3, mark - 3);
    found.digits.resize(static_cast<size_t>(count), '0');
    const int digit = text[1] - '0';
    if (count > 1 || digit % 2 == 0 || !isTieOfOneFigure(x, digit, found.exponent)) return found;
    return digit == 9 ? Figures{"1", found.exponent + 1} : Figures{std::to_string(digit + 1), found.exponent};
}

// The figures with so many decimals, which they reach or are filled up to with zeros.
inline std::string placePoint(const Figures& figures, int64_t decimals) {
    const int64_t whole = std::max<int64_t>(figures.exponent + 1, 0); // figures in front of the point
    std::string text = figures.digits;
    if (figures.exponent < 0) text.insert(0, static_cast<size_t>(-figures.exponent - 1), '0');
    text.resize(static_cast<size_t>(whole + decimals), '0');
    if (decimals > 0) text.insert(static_cast<size_t>(whole), 1, '.');
    return whole == 0 ? '0' + text : text;
}

inline std::string fixedText(const Real& x, int64_t decimals) {
    const Figures all = figuresOf(x, MOST_FIGURES);
    const int64_t count = all.exponent + 1 + decimals;
    if (x == Real() || count < 0) return placePoint({"0", 0}, decimals);
    if (count > 0) return placePoint(figuresOf(x, count), decimals);
    // The first figure stands one place behind the last decimal.
    const bool isAboveHalf =
        decimals == 0 ? x > Real(0.5) : all.digits > '5' + std::string(MOST_FIGURES - 1, '0');
    return placePoint({isAboveHalf ? "1" : "0", -decimals}, decimals);
}

inline std::string scientificText(const Figures& figures) {
    std::string text = figures.digits.substr(0, 1);
    if (figures.digits.size() > 1) text += '.' + figures.digits.substr(1);
    const std::string exponent = std::to_string(std::abs(figures.exponent));
    text += figures.exponent < 0 ? "e-" : "e+";
    return text + (exponent.size() < 2 ? "0" : "") + exponent;
}

// As many figures as the precision says, and without zeros at the end unless they are wanted.
inline std::string generalText(const Real& x, int64_t precision, bool keepsZeros) {
    const int64_t count = std::max<int64_t>(precision, 1);
    Figures figures =
        x == Real() ? Figures{std::string(static_cast<size_t>(count), '0'), 0} : figuresOf(x, count);
    if (!keepsZeros) figures.digits.resize(std::max<size_t>(figures.digits.find_last_not_of('0') + 1, 1));
    if (figures.exponent < -4 || figures.exponent >= count) return scientificText(figures);
    const auto left = static_cast<int64_t>(figures.digits.size());
    return placePoint(figures, std::max<int64_t>(left - 1 - figures.exponent, 0));
}

// As std::ostream has a double in this format; hexfloat is taken for defaultfloat. A precision below 0 is 6.
inline std::string formatted(const Real& x, std::ios_base::fmtflags flags, int64_t precision) {
    if (precision < 0) precision = 6;
    const std::ios_base::fmtflags notation = flags & std::ios_base::floatfield;
    const Real magnitude = abs(x);
    std::string text;
    if (x.IsOverflow())
        text = "overflow";
    else if (notation == std::ios_base::fixed)
        text = fixedText(magnitude, precision);
    else if (notation == std::ios_base::scientific)
        text = x == Real() ? scientificText({std::string(static_cast<size_t>(precision) + 1, '0'), 0})
                           : scientificText(figuresOf(magnitude, precision + 1));
    else
        text = generalText(magnitude, precision, (flags & std::ios_base::showpoint) != 0);
    if ((flags & std::ios_base::showpoint) != 0 && !x.IsOverflow() && text.find('.') > text.size())
        text.insert(std::min(text.find('e'), text.size()), 1, '.');
    if ((flags & std::ios_base::uppercase) != 0)
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (x.IsNegative()) return '-' + text;
    return (flags & std::ios_base::showpos) != 0 ? '+' + text : text;
}

// --- Reading from a stream ---

constexpr std::string_view DECIMAL_DIGITS = "0123456789";

inline bool isNext(std::istream& in, std::string_view characters) {
    const int c = in.peek();
    return c != std::istream::traits_type::eof() && characters.find(static_cast<char>(c)) < characters.size();
}

inline bool takeOneOf(std::istream& in, std::string_view characters, std::string& text) {
    if (!isNext(in, characters)) return false;
    text += static_cast<char>(in.get());
    return true;
}

// A mark counts only with one of these characters behind it.
inline bool takeMark(std::istream& in, std::string_view marks, const std::string& behind, std::string& text) {
    if (!takeOneOf(in, marks, text)) return false;
    if (isNext(in, behind)) return true;
    in.unget();
    text.pop_back();
    return false;
}

// With at most one point.
inline void takeDigits(std::istream& in, std::string_view digits, std::string& text) {
    while (takeOneOf(in, digits, text)) {
    }
    if (!takeOneOf(in, ".", text)) return;
    while (takeOneOf(in, digits, text)) {
    }
}

// The longest text that may be a number.
inline std::string takeNumber(std::istream& in) {
    constexpr std::pair<std::string_view, std::string_view> RADICES[] = {
        {"xX", "0123456789abcdefABCDEF"}, {"oO", "01234567"}, {"bB", "01"}};
    std::string text;
    takeOneOf(in, "+-", text);
    if (takeOneOf(in, "0", text)) {
        for (const auto& [marks, digits] : RADICES) {
            if (!takeMark(in, marks, std::string(digits) + '.', text)) continue;
            takeDigits(in, digits, text);
            return text;
        }
    }
    takeDigits(in, DECIMAL_DIGITS, text);
    if (!takeMark(in, "eE", std::string(DECIMAL_DIGITS) + "+-", text)) return text;
    takeOneOf(in, "+-", text);
    while (takeOneOf(in, DECIMAL_DIGITS, text)) {
    }
    return text;
}

} // namespace detail

// Reads a sign or none, then digits with at most one point, and a decimal number's exponent: "-1.5e-3",
// "0x1F.8". A decimal number is the one nearest to its first 104 figures, others are exact up to 352 bits. A
// number beyond the range is the overflow value, or 0, with a code (qparse). Anything else throws
// std::invalid_argument.
inline Real::Real(std::string_view text) : Real() {
    std::string_view digits = text;
    const bool isNegative = !digits.empty() && digits[0] == '-';
    if (!digits.empty() && (digits[0] == '-' || digits[0] == '+')) digits.remove_prefix(1);
    const int radix = detail::radixOf(digits);
    *this = radix == 10 ? detail::readDecimal(digits) : detail::readRadix(digits.substr(2), radix);
    if (isNegative) qneg(words);
}

// The number with so many figures (1 to 105), in the shorter of the two notations: "0.1", "1.5e+20".
inline std::string toString(const Real& x, int figures = MOST_FIGURES - 5) {
    return detail::formatted(x, std::ios_base::fmtflags{}, figures);
}

inline std::ostream& operator<<(std::ostream& out, const Real& x) {
    std::string text = detail::formatted(x, out.flags(), out.precision());
    const auto width = static_cast<size_t>(std::max<std::streamsize>(out.width(), 0));
    if (text.size() < width && (out.flags() & std::ios_base::adjustfield) == std::ios_base::internal) {
        const size_t behindSign = text[0] == '-' || text[0] == '+' ? 1 : 0;
        text.insert(behindSign, width - text.size(), out.fill());
    }
    return out << text;
}

// Takes a number and leaves what follows it: of "1.5km" the letters, of "5eV" too. What is no number leaves x
// as it was and sets failbit.
inline std::istream& operator>>(std::istream& in, Real& x) {
    const std::istream::sentry hasText(in);
    if (!hasText) return in;
    const std::string text = detail::takeNumber(in);
    try {
        x = Real(std::string_view(text));
    } catch (const std::invalid_argument&) {
        in.setstate(std::ios_base::failbit);
    }
    return in;
}

// 1.5_real, 1'000_real, 0x1F_real: 104 figures count, as the compiler makes no double of it. 017_real is 17.
inline namespace literals {
inline Real operator""_real(const char* text) {
    std::string digits(text);
    digits.erase(std::remove(digits.begin(), digits.end(), '\''), digits.end());
    return Real(std::string_view(digits));
}
} // namespace literals

} // namespace tallyquill
