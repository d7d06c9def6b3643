// SPDX-License-Identifier: MIT
//
// Copy, sign, compare, add, subtract, multiply, divide.
#include "qexact.h"
#include "qfloat.h"
#include "qlimb.h"
#include "qregister.h"

#include <cstring>

using limb::COUNT;

void qmov(const qfloat a, qfloat b) {
    std::memmove(b, a, sizeof(qfloat));
}

void qmovz(const qfloat a, uint32_t* b) {
    std::memmove(b, a, sizeof(qfloat));
    b[14] = 0;
}

void qclear(qfloat a) {
    std::memset(a, 0, sizeof(qfloat));
}
void qneg(qfloat a) {
    a[0] = a[0] != 0 ? 0 : NEGATIVE_SIGN;
}
void qabs(qfloat a) {
    a[0] = 0;
}
int qisneg(const qfloat a) {
    return a[0] != 0;
}

void qinfin(qfloat a) {
    a[1] = OVERFLOW_EXPONENT;
    a[2] = 0;
    std::memset(a + 3, 0xFF, 11 * sizeof *a);
}

void qnrmlz(qfloat a) {
    qmovz(a, ac1);
    if (normlz(ac1) != 0) {
        qclear(a);
        return;
    }
    const int64_t exponent = int64_t{ac1[1]} - SC;
    if (exponent > OVERFLOW_EXPONENT) {
        qinfin(a);
        merror = 3;
    } else if (exponent < 0) {
        qclear(a);
    } else {
        ac1[1] = static_cast<uint32_t>(exponent);
        qmov(ac1, a);
    }
}

namespace {

void overflow(qfloat c) {
    qinfin(c);
    merror = 3;
}

// The mantissa of a number as limbs: all zero when the exponent says that it is zero.
inline void loadValue(const qfloat a, uint64_t* x) {
    if (a[1] == 0) {
        std::memset(x, 0, COUNT * sizeof *x);
    } else {
        limb::load(a, x);
    }
}

// Shifts x up until its top bit is set; returns the shift, or 384 when x is zero.
inline int normalize(uint64_t* x) {
    if (x[COUNT - 1] & limb::TOP_BIT) return 0;
    const int n = limb::leadingZeros(x);
    if (n < 64 * COUNT) limb::shiftUp(x, n);
    return n;
}

// Halves a mantissa whose carry went out above the top.
inline void takeCarry(uint64_t* x) {
    limb::shiftDown(x, 1);
    x[COUNT - 1] |= limb::TOP_BIT;
}

// Stores a result; exponents below `lowest` give zero.
inline void storeResult(uint32_t sign, int64_t exponent, int64_t lowest, const uint64_t* x, qfloat c) {
    if (exponent > OVERFLOW_EXPONENT) {
        c[0] = sign;
        overflow(c);
    } else if (exponent < lowest) {
        qclear(c);
    } else {
        c[0] = sign;
        c[1] = static_cast<uint32_t>(exponent);
        c[2] = 0;
        limb::store(x, c);
    }
}

// The end of a sum: exponent and mantissa into c, unless out of range.
inline void storeSum(uint32_t sign, int64_t exponent, const uint64_t* x, qfloat c) {
    if (exponent > OVERFLOW_EXPONENT)
        overflow(c); // c's sign word stays
    else
        storeResult(sign, exponent, 0, x, c);
}

// big + small, magnitudes; small is already aligned.
void addMagnitudes(const uint64_t* small, uint64_t* big, uint32_t sign, int64_t exponent, qfloat c) {
    subflg = 0;
    if (limb::add(small, big) != 0) {
        takeCarry(big);
        ++exponent;
    } else {
        const int n = normalize(big);
        if (n == 64 * COUNT) {
            qclear(c);
            return;
        }
        exponent -= n;
    }
    if (exponent <= OVERFLOW_EXPONENT && exponent >= 0) exponent += limb::roundHalfUp(big);
    storeSum(sign, exponent, big, c);
}

// big - small, magnitudes; small is already aligned. Not rounded: the guard is dropped.
void subtractMagnitudes(const uint64_t* small, uint64_t* big, uint32_t sign, int64_t exponent, qfloat c) {
    subflg = 1;
    if (limb::subtract(small, big) != 0) {
        // Only for a mantissa that was not normalized.
        for (int i = 0; i < COUNT; ++i) big[i] = ~big[i];
        sign = sign != 0 ? 0 : NEGATIVE_SIGN;
    }
    // A remainder below 4095 units of the last mantissa word is what rounding left of equal numbers.
    if ((big[5] | big[4] | big[3] | big[2] | big[1]) == 0 && (big[0] >> 32) < 0xFFF) {
        qclear(c);
        return;
    }
    exponent -= normalize(big);
    storeSum(sign, exponent, big, c);
}

// The sum of two numbers of the same exponent and mantissa.
void addEqual(uint32_t signA, uint32_t signB, const qfloat b, qfloat c) {
    if ((signA != 0) != (signB != 0) || b[1] == 0) {
        qclear(c);
    } else if (b[1] < OVERFLOW_EXPONENT) {
        qmov(b, c);
        c[0] = signB;
        ++c[1];
    } else {
        overflow(c);
        c[0] = signA;
    }
}

// c = b + a with signA in the place of a's sign word.
void qadd1(const qfloat a, uint32_t signA, const qfloat b, qfloat c) {
    const int64_t d = int64_t{b[1]} - int64_t{a[1]};
    const uint32_t signB = b[0];
    if (d > 353) {
        qmov(b, c);
        return;
    }
    if (d < -353) {
        qmov(a, c);
        c[0] = signA;
        return;
    }
    uint64_t x[COUNT], y[COUNT];
    loadValue(a, x);
    loadValue(b, y);
    uint64_t *small = x, *big = y;
    uint32_t sign = signB;
    if (d < 0) {
        small = y, big = x, sign = signA;
    } else if (d == 0) {
        const int order = limb::compare(x, y);
        if (order == 0) {
            addEqual(signA, signB, b, c);
            return;
        }
        if (order > 0) small = y, big = x, sign = signA;
    }
    const int64_t exponent = d < 0 ? a[1] : b[1];
    if (d != 0) limb::shiftDown(small, static_cast<int>(d < 0 ? -d : d));
    if ((signA != 0) == (signB != 0)) {
        addMagnitudes(small, big, sign, exponent, c);
    } else {
        subtractMagnitudes(small, big, sign, exponent, c);
    }
}

} // namespace

void qadd(const qfloat a, const qfloat b, qfloat c) {
    subflg = 0;
    qadd1(a, a[0], b, c);
}

void qsub(const qfloat a, const qfloat b, qfloat c) {
    subflg = 1;
    qadd1(a, a[0] != 0 ? 0 : NEGATIVE_SIGN, b, c);
}

namespace {

// The order of signed exponents is that of numbers which differ in them.
inline int64_t signedExponent(const qfloat a) {
    return a[0] != 0 ? -int64_t{a[1]} : int64_t{a[1]};
}

// It stays out of qcmp, which would set up its frame for every two numbers.
__attribute__((noinline)) int compareTiny(const qfloat a, const qfloat b) {
    qfloat d = {};
    qsub(b, a, d);
    if (d[1] == 0) return 0;
    return qisneg(d) ? -1 : 1;
}

} // namespace

int qcmp(const qfloat a, const qfloat b) {
    if (a[1] <= MANTISSA_BITS && b[1] <= MANTISSA_BITS) return compareTiny(a, b);
    const int64_t x = signedExponent(a), y = signedExponent(b);
    if (x != y) return x < y ? -1 : 1;
    for (int i = 2; i <= 13; ++i) {
        if (a[i] != b[i]) return (a[i] > b[i]) == (x > 0) ? 1 : -1;
    }
    return 0;
}

namespace {

inline uint32_t productSign(const qfloat a, const qfloat b) {
    return (a[0] != 0) == (b[0] != 0) ? 0 : NEGATIVE_SIGN;
}

inline bool hasOneWord(const uint64_t* x) {
    return ((x[0] | x[1] | x[2] | x[3] | x[4]) | (x[5] & 0xFFFFFFFF)) == 0;
}

// Normalizes and rounds the product or quotient x, whose exponent is biased. Returns false when x is zero.
inline bool finish(uint64_t* x, int64_t& exponent) {
    // Normalized operands need a shift by one bit at most; without a branch, which nobody can predict.
    const int one = static_cast<int>(~x[COUNT - 1] >> 63);
    for (int i = COUNT - 1; i > 0; --i) x[i] = limb::joinUp(x[i], x[i - 1], one);
    x[0] <<= one;
    exponent -= one;
    if (!(x[COUNT - 1] & limb::TOP_BIT)) {
        const int n = limb::leadingZeros(x);
        if (n == 64 * COUNT) return false;
        limb::shiftUp(x, n);
        exponent -= n;
    }
    exponent += limb::roundHalfUp(x);
    return true;
}

} // namespace

void qmul(const qfloat a, const qfloat b, qfloat c) {
    if (a[1] == 0 || b[1] == 0) {
        qclear(c);
        return;
    }
    uint64_t x[COUNT], y[COUNT], z[COUNT];
    limb::load(a, x);
    limb::load(b, y);
    if (hasOneWord(x)) {
        limb::multiplyLimb(y, x[5], z);
    } else if (hasOneWord(y)) {
        limb::multiplyLimb(x, y[5], z);
    } else {
        limb::multiplyExactly(x, y, z);
    }
    int64_t exponent = int64_t{a[1]} + b[1] - EXPONENT_BIAS;
    const uint32_t sign = productSign(a, b);
    if (finish(z, exponent)) {
        storeResult(sign, exponent, 1, z, c);
    } else {
        qclear(c);
    }
}

void qmuli(const qfloat a, const qfloat b, qfloat c) {
    if (a[1] == 0 || b[1] == 0) {
        qclear(c);
        return;
    }
    uint64_t x[COUNT];
    limb::load(b, x);
    limb::multiplyLimb(x, uint64_t{a[3]} << 32, x);
    int64_t exponent = int64_t{a[1]} + b[1] - EXPONENT_BIAS;
    const uint32_t sign = productSign(a, b);
    if (finish(x, exponent)) {
        storeResult(sign, exponent, 0, x, c); // an exponent of 0 is stored as it is
    } else {
        qclear(c);
    }
}

void qdiv(const qfloat a, const qfloat b, qfloat c) {
    if (b[1] == 0) {
        qclear(c);
        return;
    }
    uint64_t x[COUNT], y[COUNT];
    loadValue(a, x);
    if (limb::isZero(x)) {
        qinfin(c); // c's sign word stays
        merror = 2;
        return;
    }
    limb::load(b, y);
    int64_t exponent = int64_t{b[1]} - a[1] + EXPONENT_BIAS;
    exponent += normalize(x); // 0 for a normalized divisor
    if (limb::compare(y, x) >= 0) {
        limb::shiftDown(y, 1); // below the divisor; the bit goes into the guard
        ++exponent;
    }
    limb::divideExactly(y, x, y);
    const uint32_t sign = productSign(a, b);
    if (finish(y, exponent)) {
        storeResult(sign, exponent, 1, y, c);
    } else {
        qclear(c);
    }
}
