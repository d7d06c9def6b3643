// SPDX-License-Identifier: MIT
//
// A real number with about 106 decimal digits, as a C++ class over the routines of qfloat.h and qtrig.h:
//
//   using namespace tallyquill;
//   Real a = 2, b = 3, c = 4;
//   std::cout << std::setprecision(50) << sqrt(a * b + c) << '\n';
//
// Every operator and function is one call of the routine named beside it, and has its range, its rounding and
// its error codes: docs/library.md. Nothing throws but the reading of texts, and std::bad_alloc where memory
// for an elementary function runs out. A failure gives the value that the routine documents and leaves its
// code in `merror` until takeError().
//
// One thread at a time, as the routines.
#pragma once

#include "qfloat.h"
#include "qtrig.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace tallyquill {

// One of 64 bits at most.
template <typename Number> constexpr bool IS_INTEGER = std::is_integral_v<Number> && sizeof(Number) <= 8;

class Real {
public:
    Real() : Real(qzero) {}

    // An integer, exactly.
    template <typename Integer, std::enable_if_t<IS_INTEGER<Integer>, int> = 0>
    Real(Integer number) : Real(qzero) { // NOLINT(google-explicit-constructor): as the built-in numbers mix
        if (number == 0) return;
        const bool isBelowZero = number < Integer{0};
        uint64_t bits = isBelowZero ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
        uint32_t exponent = BIAS + 64;
        for (; bits >> 63 == 0; --exponent) bits <<= 1;
        words[0] = isBelowZero ? NEGATIVE : 0;
        words[1] = exponent;
        words[3] = static_cast<uint32_t>(bits >> 32);
        words[4] = static_cast<uint32_t>(bits);
    }

    // A double, exactly: 0.1 is not a tenth, 0.1_real is. Infinities and NaNs become numbers near 2^1024.
    Real(double number) { etoq(&number, words); } // NOLINT(google-explicit-constructor)

    // The number nearest to a decimal text, or a hexadecimal, octal or binary one behind 0x, 0o, 0b:
    // RealText.h.
    explicit Real(std::string_view text);
    Real(long double) = delete; // it would lose digits
    Real(std::nullptr_t) = delete;

    // The 14 words of a stored number (qfloat.h).
    explicit Real(const uint32_t* stored) { std::memcpy(words, stored, sizeof words); }
    const uint32_t* Words() const { return words; }
    uint32_t* Words() { return words; }

    // The double that qtoe gives: the nearest one, where the value is not next to the middle of two. The
    // largest one, with a code, beyond its range. A float, and a long double, is that double.
    template <typename Float, std::enable_if_t<std::is_floating_point_v<Float>, int> = 0>
    explicit operator Float() const {
        double number = 0;
        qtoe(words, &number);
        return static_cast<Float>(number);
    }

    // The integer part, toward zero; the least or the greatest integer of its type beyond that one's range.
    template <typename Integer,
              std::enable_if_t<IS_INTEGER<Integer> && !std::is_same_v<Integer, bool>, int> = 0>
    explicit operator Integer() const {
        using Range = std::numeric_limits<Integer>;
        const bool isBelowZero = IsNegative();
        const uint64_t most = static_cast<uint64_t>(Range::max()) + (isBelowZero && Range::is_signed ? 1 : 0);
        const uint64_t magnitude = isBelowZero && !Range::is_signed ? 0 : WholePart();
        if (magnitude >= most) return isBelowZero ? Range::min() : Range::max();
        return static_cast<Integer>(isBelowZero ? 0 - magnitude : magnitude);
    }

    // Whether it is not 0.
    explicit operator bool() const { return words[1] != 0; }

    bool IsNegative() const { return qisneg(words) != 0; }
    // Whether it stands for a result beyond the range.
    bool IsOverflow() const { return words[1] >= OVERFLOW_WORD; }

    Real operator+() const { return *this; }
    Real operator-() const { // qneg
        Real negated = *this;
        qneg(negated.words);
        return negated;
    }
    Real& operator+=(const Real& b) { return *this = *this + b; }
    Real& operator-=(const Real& b) { return *this = *this - b; }
    Real& operator*=(const Real& b) { return *this = *this * b; }
    Real& operator/=(const Real& b) { return *this = *this / b; }
    Real& operator%=(const Real& b) { return *this = *this % b; }
    Real& operator++() { return *this += Real(qone); }
    Real& operator--() { return *this -= Real(qone); }
    Real operator++(int) {
        const Real before = *this;
        ++*this;
        return before;
    }
    Real operator--(int) {
        const Real before = *this;
        --*this;
        return before;
    }

    friend Real operator+(const Real& a, const Real& b) { return Combine(qadd, b, a, a.words[0]); }
    friend Real operator-(const Real& a, const Real& b) { return Combine(qsub, b, a, a.words[0]); }
    friend Real operator*(const Real& a, const Real& b) { return Combine(qmul, a, b, 0); }
    // Dividing by zero gives the overflow value with the sign of a quotient; 0 / 0 is 0.
    friend Real operator/(const Real& a, const Real& b) {
        return Combine(qdiv, b, a, a.IsNegative() != b.IsNegative() ? NEGATIVE : 0);
    }

    // What is left of a, as fmod.
    friend Real operator%(const Real& a, const Real& b) { return Combine(qremain, b, a, 0); }

    // By qcmp: differences too small for qsub to show count as none.
    friend bool operator==(const Real& a, const Real& b) { return qcmp(a.words, b.words) == 0; }
    friend bool operator!=(const Real& a, const Real& b) { return qcmp(a.words, b.words) != 0; }
    friend bool operator<(const Real& a, const Real& b) { return qcmp(a.words, b.words) < 0; }
    friend bool operator<=(const Real& a, const Real& b) { return qcmp(a.words, b.words) <= 0; }
    friend bool operator>(const Real& a, const Real& b) { return qcmp(a.words, b.words) > 0; }
    friend bool operator>=(const Real& a, const Real& b) { return qcmp(a.words, b.words) >= 0; }

    // The result of a routine of one or two operands. Some routines leave the sign of an overflow as it was:
    // it is `sign` then.
    static Real Apply(void (*routine)(const uint32_t*, uint32_t*), const Real& x) {
        Real result{Unset()};
        result.words[0] = 0;
        routine(x.words, result.words);
        return result;
    }
    static Real Combine(void (*routine)(const uint32_t*, const uint32_t*, uint32_t*), const Real& a,
                        const Real& b, uint32_t sign) {
        Real result{Unset()};
        result.words[0] = sign;
        routine(a.words, b.words, result.words);
        return result;
    }

private:
    static constexpr uint32_t NEGATIVE = 0xFFFFFFFF;
    static constexpr uint32_t BIAS = 0x8000; // of the exponent word
    static constexpr uint32_t OVERFLOW_WORD = 0x10000;

    // The integer part of the magnitude; the greatest integer where it has more than 64 bits.
    uint64_t WholePart() const {
        if (words[1] <= BIAS) return 0;
        const uint32_t bits = words[1] - BIAS;
        const uint64_t first = uint64_t{words[3]} << 32 | words[4];
        return bits > 64 ? std::numeric_limits<uint64_t>::max() : first >> (64 - bits);
    }

    struct Unset {};
    // cppcheck-suppress uninitMemberVarPrivate ; a routine writes all words
    explicit Real(Unset) {}

    qfloat words;
};

// The code of the last failure, one of qfloat.h's, or 0; it is taken away.
inline int takeError() {
    const int code = merror;
    merror = 0;
    return code;
}

// --- Parts ---

inline Real abs(Real x) {
    qabs(x.Words());
    return x;
}
inline Real floor(const Real& x) {
    return Real::Apply(qfloor, x);
}
inline Real ceil(const Real& x) {
    return -floor(-x);
}
inline Real trunc(const Real& x) {
    return x.IsNegative() ? ceil(x) : floor(x);
}
// The nearest integer, halves away from zero, as std::round has them.
inline Real round(const Real& x) {
    return x.IsNegative() ? -Real::Apply(qround, -x) : Real::Apply(qround, x);
}
// x - k y for the integer k, toward zero, that leaves less than y: exact (qremain).
inline Real fmod(const Real& x, const Real& y) {
    return Real::Combine(qremain, y, x, 0);
}
inline Real ldexp(Real x, int64_t n) { // x 2^n
    if (x != Real()) qldexp(x.Words(), n, x.Words());
    return x;
}
inline Real frexp(Real x, int64_t* exponent) {
    qfrexp(x.Words(), exponent, x.Words());
    return x;
}
// Also of a negative zero.
inline bool signbit(const Real& x) {
    return x.IsNegative();
}

// --- Elementary functions: each result is the number nearest to the true value ---

inline Real sqrt(const Real& x) {
    return Real::Apply(qsqrt, x);
}
inline Real exp(const Real& x) {
    return Real::Apply(qexp, x);
}
inline Real log(const Real& x) {
    return Real::Apply(qlog, x);
}
inline Real log(const Real& x, const Real& base) {
    return Real::Combine(qlogbase, x, base, 0);
}
inline Real log2(const Real& x) {
    return log(x, Real(qtwo));
}
inline Real log10(const Real& x) {
    return log(x, Real(qten));
}
inline Real pow(const Real& x, const Real& y) {
    return Real::Combine(qpow, x, y, 0);
}
inline Real factorial(const Real& x) {
    return Real::Apply(qfac, x);
}

// Angles in radians.
inline Real sin(const Real& x) {
    return Real::Apply(qsin, x);
}
inline Real cos(const Real& x) {
    return Real::Apply(qcos, x);
}
inline Real tan(const Real& x) {
    return Real::Apply(qtan, x);
}
inline Real asin(const Real& x) {
    return Real::Apply(qasin, x);
}
inline Real acos(const Real& x) {
    return Real::Apply(qacos, x);
}
inline Real atan(const Real& x) {
    return Real::Apply(qatn, x);
}

// Angles in degrees, which are reduced exactly: the sine of 30 is 0.5.
inline Real sinDegrees(const Real& x) {
    return Real::Apply(qsindeg, x);
}
inline Real cosDegrees(const Real& x) {
    return Real::Apply(qcosdeg, x);
}
inline Real tanDegrees(const Real& x) {
    return Real::Apply(qtandeg, x);
}
inline Real asinDegrees(const Real& x) {
    return Real::Apply(qasindeg, x);
}
inline Real acosDegrees(const Real& x) {
    return Real::Apply(qacosdeg, x);
}
inline Real atanDegrees(const Real& x) {
    return Real::Apply(qatndeg, x);
}

inline Real sinh(const Real& x) {
    return Real::Apply(qsinh, x);
}
inline Real cosh(const Real& x) {
    return Real::Apply(qcosh, x);
}
inline Real tanh(const Real& x) {
    return Real::Apply(qtanh, x);
}

// --- Constants, exact to the last bit ---

inline Real pi() {
    return Real(qpi);
}
inline Real ln2() {
    return Real(qlog2);
}

} // namespace tallyquill

// NOLINTBEGIN(readability-identifier-naming): the standard's names
template <> class std::numeric_limits<tallyquill::Real> {
    using Real = tallyquill::Real;

public:
    static constexpr bool is_specialized = true;
    static constexpr bool is_signed = true;
    static constexpr bool is_integer = false;
    static constexpr bool is_exact = false;
    static constexpr int radix = 2;
    static constexpr int digits = 352;
    static constexpr int digits10 = 105;
    // So many tell all numbers apart. Texts have 105 at most (RealText.h): whoever needs each bit keeps
    // Words().
    static constexpr int max_digits10 = 107;
    static constexpr int min_exponent = -32767;
    static constexpr int min_exponent10 = -9864;
    static constexpr int max_exponent = 32767;
    static constexpr int max_exponent10 = 9863;
    // The overflow value stands for results beyond the range, and is no infinity: 1 / it is not 0.
    static constexpr bool has_infinity = false;
    static constexpr bool has_quiet_NaN = false;
    static constexpr bool has_signaling_NaN = false;
    static constexpr std::float_denorm_style has_denorm = std::denorm_absent;
    static constexpr bool has_denorm_loss = false;
    // Differences of magnitudes are cut (qadd), all else goes to the nearest.
    static constexpr std::float_round_style round_style = std::round_indeterminate;
    static constexpr bool is_iec559 = false;
    static constexpr bool is_bounded = true;
    static constexpr bool is_modulo = false;
    static constexpr bool traps = false;
    static constexpr bool tinyness_before = false;

    static Real min() noexcept { return tallyquill::ldexp(Real(1), min_exponent - 1); }
    static Real max() noexcept {
        Real largest(qzero);
        qinfin(largest.Words());
        largest.Words()[1] = 0xFFFF;
        return largest;
    }
    static Real lowest() noexcept { return -max(); }
    static Real epsilon() noexcept { return tallyquill::ldexp(Real(1), 1 - digits); }
    static Real round_error() noexcept { return tallyquill::ldexp(Real(1), -1); }
    static Real infinity() noexcept { return {}; }
    static Real quiet_NaN() noexcept { return {}; }
    static Real signaling_NaN() noexcept { return {}; }
    static Real denorm_min() noexcept { return min(); }
};
// NOLINTEND(readability-identifier-naming)

// Equal numbers have equal hashes.
template <> struct std::hash<tallyquill::Real> {
    size_t operator()(const tallyquill::Real& x) const noexcept {
        const uint32_t* const words = x.Words();
        constexpr uint32_t OFTEN_EQUAL =
            352; // exponents up to here: zero, and numbers that qcmp may take for equal
        if (words[1] <= OFTEN_EQUAL) return 0;
        const std::string_view bytes(reinterpret_cast<const char*>(words + 1), 13 * sizeof *words);
        return std::hash<std::string_view>()(bytes) + (x.IsNegative() ? 1 : 0);
    }
};

#include "RealText.h"
