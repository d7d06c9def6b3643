// SPDX-License-Identifier: MIT
//
// Private to qfloat/: arithmetic on 384-bit mantissas held in six 64-bit limbs, least significant first.
//
// The eleven mantissa words and the guard word of a working register are exactly six limbs, so a stored
// number is loaded pairwise (the lower half of limb 0, the guard, is zero). Internal steps that need more
// than 352 bits (powers of ten, the elementary functions) keep all 384 and round once at the end.
#pragma once

#include <cstdint>
#include <cstring>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

// TALLYQUILL_NO_INT128 selects the portable 32x32 arithmetic where the compiler has 128-bit integers too,
// so that a test can compare the two.
#if defined(__SIZEOF_INT128__) && !defined(TALLYQUILL_NO_INT128)
#define TALLYQUILL_INT128 1
#endif

namespace limb {
#if !TALLYQUILL_INT128
inline namespace portable {
#endif

constexpr int COUNT = 6;
constexpr uint64_t TOP_BIT = uint64_t{1} << 63;

// A value 0.m * 2^exponent with the mantissa m of 384 bits, normalized (top bit of limb[5] set).
struct Extended {
    uint64_t limb[COUNT];
    int64_t exponent;
};

constexpr Extended ONE = {{0, 0, 0, 0, 0, TOP_BIT}, 1};

// So many digits of a decimal number count: 10^104 < 2^346, they are an exact integer of six limbs.
constexpr int MAX_DIGITS = 104;

// 10^(2^k), k = 0 .. 13, to the nearest 384-bit mantissa.
extern const Extended TENS[14];

// 10^n, as far as a limb holds it.
constexpr int LIMB_DIGITS = 19;
constexpr uint64_t LIMB_TENS[LIMB_DIGITS + 1] = {1,
                                                 10,
                                                 100,
                                                 1000,
                                                 10000,
                                                 100000,
                                                 1000000,
                                                 10000000,
                                                 100000000,
                                                 1000000000,
                                                 10000000000,
                                                 100000000000,
                                                 1000000000000,
                                                 10000000000000,
                                                 100000000000000,
                                                 1000000000000000,
                                                 10000000000000000,
                                                 100000000000000000,
                                                 1000000000000000000,
                                                 10000000000000000000U};

// ---------------------------------------------------------------------------------------------------------
// Single limbs

#if TALLYQUILL_INT128
__extension__ typedef unsigned __int128 uint128;

// Returns the low limb of x * y and puts the high one into `high`.
inline uint64_t multiply(uint64_t x, uint64_t y, uint64_t& high) {
    const uint128 p = uint128{x} * y;
    high = static_cast<uint64_t>(p >> 64);
    return static_cast<uint64_t>(p);
}

// Returns x + y + carry (carry 0 or 1) and leaves the carry out.
inline uint64_t addCarry(uint64_t x, uint64_t y, uint64_t& carry) {
#if defined(__x86_64__) // compilers make add-with-carry chains of this form only
    unsigned long long s;
    carry = _addcarry_u64(static_cast<unsigned char>(carry), x, y, &s);
    return s;
#else
    const uint128 s = uint128{x} + y + carry;
    carry = static_cast<uint64_t>(s >> 64);
    return static_cast<uint64_t>(s);
#endif
}

// Returns x - y - borrow (borrow 0 or 1) and leaves the borrow out.
inline uint64_t subtractBorrow(uint64_t x, uint64_t y, uint64_t& borrow) {
#if defined(__x86_64__)
    unsigned long long d;
    borrow = _subborrow_u64(static_cast<unsigned char>(borrow), x, y, &d);
    return d;
#else
    const uint128 d = uint128{x} - y - borrow;
    borrow = static_cast<uint64_t>(d >> 64) & 1;
    return static_cast<uint64_t>(d);
#endif
}
#else
inline uint64_t multiply(uint64_t x, uint64_t y, uint64_t& high) {
    const uint64_t mask = 0xFFFFFFFF;
    const uint64_t ll = (x & mask) * (y & mask);
    const uint64_t lh = (x & mask) * (y >> 32);
    const uint64_t hl = (x >> 32) * (y & mask);
    const uint64_t middle = (ll >> 32) + (lh & mask) + (hl & mask);
    high = (x >> 32) * (y >> 32) + (lh >> 32) + (hl >> 32) + (middle >> 32);
    return (middle << 32) | (ll & mask);
}

inline uint64_t addCarry(uint64_t x, uint64_t y, uint64_t& carry) {
    const uint64_t s = x + y;
    const uint64_t t = s + carry;
    carry = static_cast<uint64_t>(s < x) | static_cast<uint64_t>(t < s);
    return t;
}

inline uint64_t subtractBorrow(uint64_t x, uint64_t y, uint64_t& borrow) {
    const uint64_t d = x - y;
    const uint64_t t = d - borrow;
    borrow = static_cast<uint64_t>(x < y) | static_cast<uint64_t>(d < borrow);
    return t;
}
#endif

// Number of zero bits above the highest one; x is not 0.
inline int leadingZeros(uint64_t x) {
#if defined(__GNUC__)
    return __builtin_clzll(x);
#else
    int n = 0;
    for (; !(x & TOP_BIT); x <<= 1) ++n;
    return n;
#endif
}

// floor((high * 2^64 + low) / d) with the remainder; high < d, so the quotient fits.
inline uint64_t divideWide(uint64_t high, uint64_t low, uint64_t d, uint64_t& remainder) {
#if TALLYQUILL_INT128 && defined(__x86_64__)
    uint64_t q;
    __asm__("divq %4" : "=a"(q), "=d"(remainder) : "0"(low), "1"(high), "r"(d) : "cc");
    return q;
#elif TALLYQUILL_INT128
    const uint128 n = (uint128{high} << 64) | low;
    const uint64_t q = static_cast<uint64_t>(n / d);
    remainder = low - q * d;
    return q;
#else
    // Two steps of 32 quotient bits; the divisor is shifted so that its top bit is set.
    const int s = leadingZeros(d);
    if (s > 0) {
        d <<= s;
        high = (high << s) | (low >> (64 - s));
        low <<= s;
    }
    uint64_t q = 0;
    for (int half = 0; half < 2; ++half) {
        const uint64_t next = half == 0 ? low >> 32 : low & 0xFFFFFFFF;
        uint64_t digit = high / (d >> 32);
        uint64_t rest = high % (d >> 32);
        while (digit > 0xFFFFFFFF ||
               (rest <= 0xFFFFFFFF && digit * (d & 0xFFFFFFFF) > ((rest << 32) | next))) {
            --digit;
            rest += d >> 32;
        }
        high = ((high << 32) | next) - digit * d;
        q = (q << 32) | digit;
    }
    remainder = high >> s;
    return q;
#endif
}

// The reciprocal floor((2^128 - 1) / d) - 2^64 of a limb with its top bit set.
inline uint64_t reciprocal(uint64_t d) {
    uint64_t rest;
    return divideWide(~d, ~uint64_t{0}, d, rest);
}

// As divideWide for a d with its top bit set, by its reciprocal v (Moeller and Granlund, "Improved division
// by invariant integers", algorithm 4): one full product instead of a division.
inline uint64_t divideBy(uint64_t high, uint64_t low, uint64_t d, uint64_t v, uint64_t& remainder) {
    uint64_t q1;
    uint64_t q0 = multiply(v, high, q1);
    uint64_t carry = 0;
    q0 = addCarry(q0, low, carry);
    q1 = q1 + high + carry + 1;
    uint64_t r = low - q1 * d;
    if (r > q0) {
        --q1;
        r += d;
    }
    if (r >= d) {
        ++q1;
        r -= d;
    }
    remainder = r;
    return q1;
}

// ---------------------------------------------------------------------------------------------------------
// Six limbs

// Two words of a number, the first the upper one, as a limb and back: where the machine stores the lower half
// first, one load or store and an exchange of the halves.
inline uint64_t loadPair(const uint32_t* q) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    uint64_t x;
    std::memcpy(&x, q, sizeof x);
    return x << 32 | x >> 32;
#else
    return uint64_t{q[0]} << 32 | q[1];
#endif
}

inline void storePair(uint64_t x, uint32_t* q) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    x = x << 32 | x >> 32;
    std::memcpy(q, &x, sizeof x);
#else
    q[0] = static_cast<uint32_t>(x >> 32);
    q[1] = static_cast<uint32_t>(x);
#endif
}

// Words 3..13 of a stored number as limbs, guard zero.
inline void load(const uint32_t* q, uint64_t* x) {
    for (int i = 0; i < COUNT - 1; ++i) x[COUNT - 1 - i] = loadPair(q + 3 + 2 * i);
    x[0] = uint64_t{q[13]} << 32;
}

// Limbs into words 3..13 of a stored number; the guard is dropped.
inline void store(const uint64_t* x, uint32_t* q) {
    for (int i = 0; i < COUNT - 1; ++i) storePair(x[COUNT - 1 - i], q + 3 + 2 * i);
    q[13] = static_cast<uint32_t>(x[0] >> 32);
}

inline void copy(const uint64_t* x, uint64_t* y) {
    std::memcpy(y, x, COUNT * sizeof *x);
}

inline bool isZero(const uint64_t* x) {
    return (x[0] | x[1] | x[2] | x[3] | x[4] | x[5]) == 0;
}

// y += x; returns the carry.
inline uint64_t add(const uint64_t* x, uint64_t* y) {
    uint64_t carry = 0;
    for (int i = 0; i < COUNT; ++i) y[i] = addCarry(y[i], x[i], carry);
    return carry;
}

// y -= x; returns the borrow.
inline uint64_t subtract(const uint64_t* x, uint64_t* y) {
    uint64_t borrow = 0;
    for (int i = 0; i < COUNT; ++i) y[i] = subtractBorrow(y[i], x[i], borrow);
    return borrow;
}

// -1, 0, 1 as x < y, x = y, x > y.
inline int compare(const uint64_t* x, const uint64_t* y) {
    for (int i = COUNT - 1; i >= 0; --i) {
        if (x[i] != y[i]) return x[i] < y[i] ? -1 : 1;
    }
    return 0;
}

// The low limb of (high * 2^64 + low) >> n and the high limb of it << n, 0 <= n < 64.
#if TALLYQUILL_INT128
inline uint64_t joinDown(uint64_t high, uint64_t low, int n) {
    return static_cast<uint64_t>(((uint128{high} << 64) | low) >> n);
}
inline uint64_t joinUp(uint64_t high, uint64_t low, int n) {
    return static_cast<uint64_t>((((uint128{high} << 64) | low) << n) >> 64);
}
#else
inline uint64_t joinDown(uint64_t high, uint64_t low, int n) {
    return (low >> n) | ((high << 1) << (63 - n));
}
inline uint64_t joinUp(uint64_t high, uint64_t low, int n) {
    return (high << n) | ((low >> 1) >> (63 - n));
}
#endif

// x >>= n, 0 <= n; bits shifted out below are lost.
inline void shiftDown(uint64_t* x, int n) {
    if (n >= 64) {
        const int limbs = n >> 6 < COUNT ? n >> 6 : COUNT;
        for (int i = 0; i < COUNT; ++i) x[i] = i + limbs < COUNT ? x[i + limbs] : 0;
        n &= 63;
    }
    for (int i = 0; i < COUNT - 1; ++i) x[i] = joinDown(x[i + 1], x[i], n);
    x[COUNT - 1] >>= n;
}

// x <<= n, 0 <= n; bits shifted out above are lost.
inline void shiftUp(uint64_t* x, int n) {
    if (n >= 64) {
        const int limbs = n >> 6 < COUNT ? n >> 6 : COUNT;
        for (int i = COUNT - 1; i >= 0; --i) x[i] = i - limbs >= 0 ? x[i - limbs] : 0;
        n &= 63;
    }
    for (int i = COUNT - 1; i > 0; --i) x[i] = joinUp(x[i], x[i - 1], n);
    x[0] <<= n;
}

// The count of zero bits above the highest one; 384 when x is zero.
inline int leadingZeros(const uint64_t* x) {
    for (int i = COUNT - 1; i >= 0; --i) {
        if (x[i] != 0) return 64 * (COUNT - 1 - i) + leadingZeros(x[i]);
    }
    return 64 * COUNT;
}

// Rounds to 352 bits, half up on the top bit of the guard, and clears the guard. Returns 1 when the
// mantissa became 1.0; it is then stored as 0.5 and the exponent must be raised by one.
inline int roundHalfUp(uint64_t* x) {
    const bool wasHigh = x[0] >> 63 != 0;
    x[0] = (x[0] + (uint64_t{1} << 31)) & ~uint64_t{0xFFFFFFFF};
    if (x[0] != 0 || !wasHigh) return 0;
    for (int i = 1; i < COUNT; ++i) {
        if (++x[i] != 0) return 0;
    }
    x[COUNT - 1] = TOP_BIT;
    return 1;
}

// The upper six limbs of the twelve-limb product, z = floor(x * y / 2^384) less at most 6 units: the products
// of limbs i, j with i + j < 5 (15 of 36) are not formed. z may be x or y.
void multiply(const uint64_t* x, const uint64_t* y, uint64_t* z);

// The same for y = x: squares each cross product once.
void square(const uint64_t* x, uint64_t* z);

// z = floor(x * y / 2^64) for one limb y; exact except the limb cut below.
inline void multiplyLimb(const uint64_t* x, uint64_t y, uint64_t* z) {
    uint64_t high;
    multiply(x[0], y, high);
    for (int i = 1; i < COUNT; ++i) {
        uint64_t next;
        uint64_t carry = 0;
        z[i - 1] = addCarry(multiply(x[i], y, next), high, carry);
        high = next + carry;
    }
    z[COUNT - 1] = high;
}

// x = x * y + addend for integers; returns the limb carried out above.
inline uint64_t multiplyAdd(uint64_t* x, uint64_t y, uint64_t addend) {
    for (int i = 0; i < COUNT; ++i) {
        uint64_t high;
        uint64_t carry = 0;
        x[i] = addCarry(multiply(x[i], y, high), addend, carry);
        addend = high + carry;
    }
    return addend;
}

// z = floor(x * 2^384 / y), at most 16 units off, for x < y and y normalized; exact for a y of one limb.
// z may be x or y.
// Schoolbook division, one 64-bit quotient digit a step, with the divisor cut by a limb from the second
// step on (what is cut stays below the quotient's last limb).
void divide(const uint64_t* x, const uint64_t* y, uint64_t* z);

// z = floor(x * 2^64 * 2^320 / y) = x * 2^384 / (y * 2^320) exactly, for x[5] < y and y with its top bit set:
// division by a one-limb mantissa.
void divideLimb(const uint64_t* x, uint64_t y, uint64_t* z);

// ---------------------------------------------------------------------------------------------------------
// Extended values

// z = x * y and z = x / y, within 14 and 40 units of the 384-bit mantissa; the exponents are unbounded.
void multiply(const Extended& x, const Extended& y, Extended& z);
void divide(const Extended& x, const Extended& y, Extended& z);

// z = x + y, and z = x - y for x >= y, within 2 units of the 384-bit mantissa of z (of x for the difference);
// nothing is rounded, what falls below is cut. A difference of zero has an all-zero mantissa.
void add(const Extended& x, const Extended& y, Extended& z);
void subtract(const Extended& x, const Extended& y, Extended& z);

// -1, 0, 1 as x < y, x = y, x > y.
int compare(const Extended& x, const Extended& y);

// |q| for a q that is not zero, exactly, whatever its normalization. An all-zero mantissa stays all zero.
void load(const uint32_t* q, Extended& x);

// q = x with the given sign word, rounded half up to 352 bits. Above the range: the overflow value and
// merror = 3. Below it: 0, and merror = underflowCode unless that is 0.
void store(const Extended& x, uint32_t sign, int underflowCode, uint32_t* q);

// p = 10^n for 0 <= n < 16384, within 2^-376 of its value; exact for n <= 160.
void powerOfTen(int n, Extended& p);

// x = x * 10^n, within 2^-375 of its value for |n| < 16384, 2^-374 for |n| < 32768.
void scaleTen(Extended& x, int n);

#if !TALLYQUILL_INT128
} // namespace portable
#endif
} // namespace limb
