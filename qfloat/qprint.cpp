// SPDX-License-Identifier: MIT
//
// Number to decimal text.
//
// The mantissa y = |q| / 10^k is known within 2^-375 of itself, its fraction so within 2^-371. Taking the
// digits out multiplies that by 10 each and is else exact: what remains after all of them decides the
// rounding unless it is nearer to one half than its error. Then |q| is compared with the midpoint of the two
// texts, as whole numbers.
#include "qexact.h"
#include "qfloat.h"
#include "qlimb.h"
#include "qregister.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using limb::COUNT;
using limb::Extended;
using limb::MAX_DIGITS;

namespace {

constexpr int CHUNK_DIGITS = 16; // two times eight
// floor(log10 x), at most one off, from the top 64 bits.
int estimateExponent(const Extended& x) {
    const double top = std::ldexp(static_cast<double>(x.limb[COUNT - 1]), -64);
    return static_cast<int>(
        std::floor(static_cast<double>(x.exponent) * 0.30102999566398119521 + std::log10(top)));
}

// y in [1, 10) as 4 integer bits above 380 fraction bits.
void toFixed(Extended& y) {
    limb::shiftDown(y.limb, static_cast<int>(4 - y.exponent));
}

// Finds the decimal exponent k and the mantissa y = x / 10^k in [1, 10). An x within y's error of a power of
// ten may get either exponent: its digits, zeros or nines, round to the same text.
void findMantissa(const Extended& x, int& k, Extended& y) {
    k = estimateExponent(x);
    for (;;) {
        y = x;
        limb::scaleTen(y, -k);
        if (y.exponent < 1) {
            --k;
        } else if (y.exponent > 4) {
            ++k;
        } else {
            toFixed(y);
            if (y.limb[COUNT - 1] >> 60 < 10) return;
            ++k;
        }
    }
}

// Writes the eight digits of a value below 10^8: all groups of four, then of two, then the digits, at once,
// each in its part of a limb, by products instead of divisions ((x * 10486) >> 20 is x / 100 for every x <
// 10000, (x * 103) >> 10 is x / 10 for every x < 100).
void putEight(uint64_t value, char* out) {
    const uint64_t four = value / 10000;
    uint64_t x = four | (value - four * 10000) << 32;
    const uint64_t two = (x * 10486) >> 20 & 0x0000007F0000007F;
    x = two | (x - two * 100) << 16;
    const uint64_t ten = (x * 103) >> 10 & 0x000F000F000F000F;
    x = (ten | (x - ten * 10) << 8) + 0x3030303030303030;
    for (int i = 0; i < 8; ++i) out[i] = static_cast<char>(x >> 8 * i);
}

void putChunk(uint64_t value, int n, char* out) {
    if (n == CHUNK_DIGITS) {
        const uint64_t high = value / limb::LIMB_TENS[8];
        putEight(high, out);
        putEight(value - high * limb::LIMB_TENS[8], out + 8);
        return;
    }
    for (; n > 0; value /= 10) out[--n] = static_cast<char>('0' + value % 10);
}

// Whether so many digits of the fraction are all zeros or all nines, as short decimals end. False also where
// its top bits are not all the same, of which a digit has less than 10/3.
bool endsInRun(const uint64_t* fraction, int digits, char& digit) {
    const bool isNine = (fraction[COUNT - 1] & limb::TOP_BIT) != 0;
    digit = isNine ? '9' : '0';
    uint64_t others[COUNT];
    for (int i = 0; i < COUNT; ++i) others[i] = isNine ? ~fraction[i] : fraction[i];
    return limb::isZero(others) || limb::leadingZeros(others) > 10 * digits / 3;
}

// Writes the first `digits` digits of the fraction. Where they end in zeros or nines, these tell how to round
// (order as of compareHalf): nines are written as zeros, and the digits in front of them, whose number is
// returned, are to be rounded up. Else order is 0, and the fraction is left as what remains.
int putFraction(uint64_t* fraction, int digits, char* out, int& order) {
    order = 0;
    for (int written = 0; written < digits;) {
        const int left = digits - written;
        char run = 0;
        if (left > CHUNK_DIGITS && endsInRun(fraction, left + 1, run)) {
            std::memset(out + written, '0', static_cast<size_t>(left));
            order = run == '0' ? -1 : 1;
            return written;
        }
        const int n = std::min(left, CHUNK_DIGITS);
        putChunk(limb::multiplyAdd(fraction, limb::LIMB_TENS[n], 0), n, out + written);
        written += n;
    }
    return digits;
}

char* putExponent(int k, char* out) {
    *out++ = 'E';
    if (k < 0) {
        *out++ = '-';
        k = -k;
    }
    int n = 1;
    while (k >= static_cast<int>(limb::LIMB_TENS[n])) ++n;
    putChunk(static_cast<uint64_t>(k), n, out);
    out[n] = '\0';
    return out + n;
}

// -1, 0, 1 as the rest of the fraction is below, at or above one half.
int compareHalf(const uint64_t* rest) {
    const uint64_t half[COUNT] = {0, 0, 0, 0, 0, limb::TOP_BIT};
    return limb::compare(rest, half);
}

// Whether the rest of the fraction is so near to one half that its error, 10^digits * 2^-371, could decide.
bool nearHalf(const uint64_t* rest, int digits) {
    const int boundary = 366 - (10 * digits + 2) / 3; // the top bits that must differ from a half
    const uint64_t top = rest[COUNT - 1];
    const uint64_t distance = top >= limb::TOP_BIT ? top - limb::TOP_BIT : limb::TOP_BIT - top;
    return boundary >= 64 ? distance <= 1 : distance >> (64 - boundary) == 0;
}

// Compares `value` with the midpoint "digits written so far, then 5".
int compareMidpoint(const Extended& value, const char* text, int digits, int k) {
    Extended midpoint = {};
    midpoint.limb[0] = static_cast<uint64_t>(text[1] - '0');
    for (int i = 0; i < digits; ++i) {
        limb::multiplyAdd(midpoint.limb, 10, static_cast<uint64_t>(text[3 + i] - '0'));
    }
    limb::multiplyAdd(midpoint.limb, 10, 5);
    const int zeros = limb::leadingZeros(midpoint.limb);
    limb::shiftUp(midpoint.limb, zeros);
    midpoint.exponent = 64 * COUNT - zeros;
    ++limb::comparisons;
    return -limb::compareScaledTen(midpoint, k - digits - 1, value);
}

// Adds one unit to the last digit written; returns 1 when 9.99 became 10.00 (written 1.00).
int roundUp(char* text, int digits) {
    for (char* p = text + 2 + digits; p > text + 2; --p) {
        if (*p != '9') {
            ++*p;
            return 0;
        }
        *p = '0';
    }
    if (text[1] != '9') {
        ++text[1];
        return 0;
    }
    text[1] = '1';
    return 1;
}

} // namespace

void qtoasc(const qfloat q, char* buffer, int digits) {
    if (digits > MAX_DIGITS) digits = MAX_DIGITS;
    if (digits < 0) digits = 0;
    int k = 0;
    Extended value, y = {};
    limb::load(q, value);
    // The buffer is sized for the exponents of numbers, so a larger word counts as the overflow value's.
    constexpr int64_t HIGHEST = OVERFLOW_EXPONENT - EXPONENT_BIAS;
    if (value.exponent > HIGHEST) value.exponent = HIGHEST;
    const bool zero = q[1] == 0 || limb::isZero(value.limb);
    if (!zero) findMantissa(value, k, y);
    buffer[0] = q[0] != 0 ? '-' : ' ';
    buffer[1] = static_cast<char>('0' + (y.limb[COUNT - 1] >> 60));
    buffer[2] = '.';
    limb::shiftUp(y.limb, 4);
    int order = 0;
    const int rounded = putFraction(y.limb, digits, buffer + 3, order);
    if (order == 0) {
        order = compareHalf(y.limb);
        if (nearHalf(y.limb, digits)) order = compareMidpoint(value, buffer, digits, k);
    }
    // A tie goes to the even digit; with no digit written, the point counts as even.
    const bool lastIsOdd = (buffer[2 + digits] & 1) != 0;
    if (order > 0 || (order == 0 && lastIsOdd)) k += roundUp(buffer, rounded);
    putExponent(k, buffer + 3 + digits);
}
