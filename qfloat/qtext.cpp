// SPDX-License-Identifier: MIT
//
// Text to number: decimal and radix text, and scaling by a power of ten.
#include "qexact.h"
#include "qfloat.h"
#include "qlimb.h"
#include "qregister.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

using limb::COUNT;
using limb::Extended;
using limb::MAX_DIGITS;

namespace {

// What is known of a number after its mantissa has been read.
struct Mantissa {
    uint64_t integer[COUNT] = {}; // all digits as one integer
    int fractionDigits = 0;
    int bitsBelow = 0; // radix digits that no longer fit the integer, in bits
    uint32_t sign = 0;
    bool exponentFollows = false;
};

// Reads the mantissa's characters: the state of one call of asctoq.
class MantissaReader {
public:
    MantissaReader(const char* text, int base, int bits) : p(text), radix(base), bitsPerDigit(bits) {}

    // Returns false on a syntax error. Afterwards `position` is behind the mantissa (and its 'e').
    bool Read(Mantissa& m);
    const char* Position() const { return p; }

private:
    int Digit(char c) const;
    bool Mark(char c, Mantissa& m);
    void Take(int value, Mantissa& m);
    void TakeDecimalRun(Mantissa& m);
    void Flush(Mantissa& m);

    const char* p;
    const int radix, bitsPerDigit;
    int taken = 0;
    bool point = false, signSeen = false, significant = false;
    // Digits not yet in the integer: one multiplication takes all that a limb holds.
    uint64_t pending = 0;
    int pendingDigits = 0;
    int bitsUsed = 0;
};

// The value of a digit, -1 when c is none in this radix.
int MantissaReader::Digit(char c) const {
    int value = -1;
    if (c >= '0' && c <= '9') {
        value = c - '0';
    } else if (c >= 'A' && c <= 'Z') {
        value = c - 55;
    } else if (c >= 'a' && c <= 'z') {
        value = c - 87;
    }
    return value < radix ? value : -1;
}

void MantissaReader::Flush(Mantissa& m) {
    const uint64_t scale =
        bitsPerDigit != 0 ? uint64_t{1} << bitsPerDigit * pendingDigits : limb::LIMB_TENS[pendingDigits];
    limb::multiplyAdd(m.integer, scale, pending);
    pending = 0;
    pendingDigits = 0;
}

void MantissaReader::Take(int value, Mantissa& m) {
    if (!significant && !point && value == 0) return; // leading zeros
    significant = significant || value != 0;
    if (taken == MAX_DIGITS) return;
    ++taken;
    if (point) ++m.fractionDigits;
    if (bitsPerDigit != 0) {
        // Leading zeros of a fraction take no room.
        if (bitsUsed == 0 && value == 0) return;
        if (bitsUsed + bitsPerDigit > 64 * COUNT) {
            m.bitsBelow += bitsPerDigit;
            return;
        }
        bitsUsed += bitsPerDigit;
    }
    pending = pending * static_cast<uint64_t>(radix) + static_cast<uint64_t>(value);
    constexpr int MOST_IN_ANY_RADIX = 15;
    if (++pendingDigits >= MOST_IN_ANY_RADIX) Flush(m);
}

// A character that is no digit, sign and point included; false when it has no business here.
bool MantissaReader::Mark(char c, Mantissa& m) {
    switch (c) {
    case ' ': return true;
    case '.':
        if (point) return false;
        point = true;
        return true;
    case '+':
    case '-':
        if (signSeen) return false;
        signSeen = true;
        if (c == '-') m.sign = NEGATIVE_SIGN;
        return true;
    default: return false;
    }
}

// The digits of a decimal number up to the next other character, once a significant digit has been seen.
void MantissaReader::TakeDecimalRun(Mantissa& m) {
    const char* const start = p;
    const char* const end = p + (MAX_DIGITS - taken);
    for (bool more = true; more && p != end;) {
        const char* const chunk = p;
        const char* const full = p + std::min<std::ptrdiff_t>(end - p, limb::LIMB_DIGITS - pendingDigits);
        uint64_t value = pending;
        for (; p != full; ++p) {
            const unsigned d = static_cast<unsigned char>(*p) - unsigned{'0'};
            if (d > 9) break;
            value = value * 10 + d;
        }
        more = p == full;
        pending = value;
        pendingDigits += static_cast<int>(p - chunk);
        if (pendingDigits == limb::LIMB_DIGITS) Flush(m);
    }
    taken += static_cast<int>(p - start);
    if (point) m.fractionDigits += static_cast<int>(p - start);
}

bool MantissaReader::Read(Mantissa& m) {
    for (;; ++p) {
        if (significant && bitsPerDigit == 0) TakeDecimalRun(m);
        const char c = *p;
        const int value = Digit(c);
        if (value >= 0) {
            Take(value, m);
        } else if (c == 'e' || c == 'E') {
            m.exponentFollows = true;
            ++p;
            break;
        } else if (c == '\0' || c == '\n' || c == '\r') {
            break;
        } else if (!Mark(c, m)) {
            return false;
        }
    }
    Flush(m);
    return true;
}

// Reads "-", "+" (in this order) and digits. Returns 0, or +1 / -1 when the number over- or underflows
// because a digit follows an exponent of 3276 or more.
int readExponent(const char* p, int& exponent) {
    const bool negative = *p == '-';
    if (negative) ++p;
    if (*p == '+') ++p;
    exponent = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        if (exponent >= 3276) return negative ? -1 : 1;
        exponent = exponent * 10 + (*p - '0');
    }
    if (negative) exponent = -exponent;
    return 0;
}

// A radix number is cut to 352 bits; its exponent is a power of two.
void finishRadix(Mantissa& m, int bitsPerDigit, int exponent, qfloat q) {
    const int zeros = limb::leadingZeros(m.integer);
    const int biased = 0x8000 + 64 * COUNT - zeros + m.bitsBelow - bitsPerDigit * m.fractionDigits + exponent;
    if (biased < 1) return;
    q[0] = m.sign;
    if (biased > 0x10000) {
        qinfin(q);
        merror = 3;
        return;
    }
    limb::shiftUp(m.integer, zeros);
    q[1] = static_cast<uint32_t>(biased);
    limb::store(m.integer, q);
}

void finishDecimal(Mantissa& m, int exponent, qfloat q) {
    const int n = exponent - m.fractionDigits;
    if (n >= 16384) {
        q[0] = m.sign;
        qinfin(q);
        merror = 3;
        return;
    }
    if (n < -16383) {
        merror = 4;
        return;
    }
    Extended x;
    const int zeros = limb::leadingZeros(m.integer);
    limb::shiftUp(m.integer, zeros);
    limb::copy(m.integer, x.limb);
    x.exponent = 64 * COUNT - zeros;
    limb::scaleTenExactly(x, n);
    limb::store(x, m.sign, 4, q);
}

// Bits per digit of the radix prefix "0x", "0o" or "0b"; 0 for none.
int prefixBits(const char* text) {
    if (text[0] != '0') return 0;
    switch (text[1]) {
    case 'x': return 4;
    case 'o': return 3;
    case 'b': return 1;
    default: return 0;
    }
}

} // namespace

int asctoq(const char* text, qfloat q) {
    const int status = qparse(text, q);
    if (status != 0) std::puts("asctoq conversion error");
    return status;
}

int qparse(const char* text, qfloat q) {
    qclear(q);
    const int bitsPerDigit = prefixBits(text);
    if (bitsPerDigit != 0) {
        text += 2;
        while (*text == '0') ++text;
        if (*text == '\0') return 0;
    }
    Mantissa m;
    MantissaReader reader(text, bitsPerDigit != 0 ? 1 << bitsPerDigit : 10, bitsPerDigit);
    if (!reader.Read(m)) return -1;
    if (limb::isZero(m.integer)) {
        if (m.exponentFollows) merror = 4;
        return 0;
    }
    int exponent = 0;
    const int range = m.exponentFollows ? readExponent(reader.Position(), exponent) : 0;
    if (range > 0) {
        q[0] = m.sign;
        qinfin(q);
        merror = 3;
    } else if (range < 0) {
        merror = 4;
    } else if (bitsPerDigit != 0) {
        finishRadix(m, bitsPerDigit, exponent, q);
    } else {
        finishDecimal(m, exponent, q);
    }
    return 0;
}

void qdecexp(qfloat q, int64_t n) {
    if (q[1] == 0) {
        qclear(q);
        return;
    }
    // Any q is brought out of range by 10^32767.
    const int64_t limit = 32767;
    const int64_t bounded = n > limit ? limit : n < -limit ? -limit : n;
    Extended x;
    limb::load(q, x);
    if (limb::isZero(x.limb)) {
        qclear(q);
        return;
    }
    limb::scaleTenExactly(x, static_cast<int>(bounded));
    limb::store(x, q[0], 0, q);
}
