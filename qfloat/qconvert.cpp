// SPDX-License-Identifier: MIT
//
// Machine doubles and integers, integer and fraction, rounding, scaling by two, error codes.
#include "qfloat.h"
#include "qlimb.h"
#include "qregister.h"

#include <algorithm>
#include <cstring>

using limb::COUNT;

int merror;

const char* const MATH_ERROR_TEXTS[7] = {"unknown",
                                         "result is imaginary",
                                         "singularity",
                                         "overflow",
                                         "underflow",
                                         "total loss of precision",
                                         "partial loss of precision"};

void mtherr(const char* /*name*/, int code) {
    merror = code;
}

void ltoq(const int64_t* n, qfloat q) {
    const uint64_t magnitude = *n < 0 ? -static_cast<uint64_t>(*n) : static_cast<uint64_t>(*n);
    const auto low = static_cast<uint32_t>(magnitude);
    const uint32_t sign = *n < 0 ? NEGATIVE_SIGN : 0;
    qclear(q);
    if (low == 0) return;
    const int zeros = limb::leadingZeros(uint64_t{low}) - 32;
    q[0] = sign;
    q[1] = EXPONENT_BIAS + 32 - static_cast<uint32_t>(zeros);
    q[3] = low << zeros;
}

// ---------------------------------------------------------------------------------------------------------
// Doubles. A double's significand lies in [1, 2), a mantissa in [0.5, 1): the exponent fields differ by
// 0x8000 - 1023 + 1.

namespace {

constexpr int64_t DOUBLE_BIAS = 31746;

void fromDoubleBits(uint64_t bits, qfloat q) {
    const uint64_t fraction = bits & ((uint64_t{1} << 52) - 1);
    const auto field = static_cast<uint32_t>(bits >> 52 & 0x7FF);
    const uint64_t mantissa = (fraction | (uint64_t{field != 0} << 52)) << 11;
    qclear(q);
    if (mantissa == 0) return;
    const int shift = field != 0 ? 0 : limb::leadingZeros(mantissa);
    const int64_t exponent = DOUBLE_BIAS + (field != 0 ? field : 1) - shift;
    q[0] = bits >> 63 != 0 ? NEGATIVE_SIGN : 0;
    q[1] = static_cast<uint32_t>(exponent);
    q[3] = static_cast<uint32_t>(mantissa << shift >> 32);
    q[4] = static_cast<uint32_t>(mantissa << shift);
}

// Whether the mantissa x is rounded up to its top 53 bits. A tie stands; what exceeds a tie only below
// mantissa word 4 counts only after an odd last bit.
bool roundsUpToDouble(const uint64_t* x) {
    const uint64_t cut = x[5] & 0x7FF;
    if (cut != 0x400) return cut > 0x400;
    const bool odd = (x[5] & 0x800) != 0;
    return odd && (x[4] | x[3] | x[2] | x[1] | x[0]) != 0;
}

uint64_t toDoubleBits(const qfloat q) {
    const uint64_t sign = uint64_t{q[0] != 0} << 63;
    int64_t field = int64_t{q[1]} - DOUBLE_BIAS;
    const uint64_t top = limb::loadPair(q + 3), cut = top & 0x7FF;
    if ((top & limb::TOP_BIT) != 0 && field > 0 && field < 2046 && cut != 0x400) { // no zeros, limits or ties
        // A carry out of the significand, which has its top bit, raises the exponent.
        return sign | ((static_cast<uint64_t>(field - 1) << 52) + (top >> 11) + (cut > 0x400 ? 1 : 0));
    }
    uint64_t x[COUNT];
    limb::load(q, x);
    const int zeros = limb::leadingZeros(x);
    if (q[1] == 0 || zeros == 64 * COUNT) return sign;
    limb::shiftUp(x, zeros);
    field -= zeros;
    if (field < -52) return sign;
    if (field < 1) {
        limb::shiftDown(x, static_cast<int>(1 - field));
        field = 0;
    }
    uint64_t significand = x[5] >> 11;
    if (roundsUpToDouble(x)) ++significand;
    if (significand >> 53 != 0) {
        significand >>= 1;
        ++field;
    }
    if (field == 0 && significand >> 52 != 0) field = 1; // a subnormal that rounded up to a normal number
    if (field >= 2047) {
        merror = 3;
        return sign | 0x7FEFFFFFFFFFFFFF;
    }
    return sign | static_cast<uint64_t>(field) << 52 | (significand & ((uint64_t{1} << 52) - 1));
}

} // namespace

void etoq(const double* d, qfloat q) {
    uint64_t bits;
    std::memcpy(&bits, d, sizeof bits);
    fromDoubleBits(bits, q);
}

void etoq(const uint16_t e[4], qfloat q) {
    uint64_t bits = 0;
    for (int i = 3; i >= 0; --i) bits = bits << 16 | e[i];
    fromDoubleBits(bits, q);
}

void qtoe(const qfloat q, double* d) {
    const uint64_t bits = toDoubleBits(q);
    std::memcpy(d, &bits, sizeof bits);
}

void qtoe(const qfloat q, uint16_t e[4]) {
    uint64_t bits = toDoubleBits(q);
    for (int i = 0; i < 4; ++i, bits >>= 16) e[i] = static_cast<uint16_t>(bits);
}

// ---------------------------------------------------------------------------------------------------------
// Integer, fraction, rounding

void qifrac(const qfloat x, int64_t* i, qfloat f) {
    const int64_t bits = int64_t{x[1]} - EXPONENT_BIAS; // of the integer part
    if (bits < 1) {
        *i = 0;
        qmov(x, f);
        return;
    }
    uint64_t m[COUNT];
    limb::load(x, m);
    const int64_t magnitude = bits < 32 ? static_cast<int64_t>(m[5] >> (64 - bits)) : 2147483647;
    *i = x[0] != 0 ? -magnitude : magnitude;
    limb::shiftUp(m, bits > 64 * COUNT ? 64 * COUNT : static_cast<int>(bits));
    qclear(f);
    const int zeros = limb::leadingZeros(m);
    if (zeros == 64 * COUNT) return;
    limb::shiftUp(m, zeros);
    f[1] = EXPONENT_BIAS - static_cast<uint32_t>(zeros);
    limb::store(m, f);
}

void qfloor(const qfloat x, qfloat y) {
    if (x[1] == 0) {
        qclear(y);
        return;
    }
    const int64_t bits = int64_t{x[1]} - EXPONENT_BIAS;
    const bool negative = x[0] != 0;
    if (bits <= 0) {
        qmov(negative ? qone : qzero, y);
        if (negative) qneg(y);
        return;
    }
    qmov(x, y);
    uint32_t cut = 0;
    int word = 13;
    int64_t k = MANTISSA_BITS - bits;
    for (; k >= 32; k -= 32, --word) {
        cut |= y[word];
        y[word] = 0;
    }
    if (k > 0) {
        cut |= y[word] & ~bmask[k];
        y[word] &= bmask[k];
    }
    if (negative && cut != 0) qsub(qone, y, y);
}

namespace {

// The distance of |x| from the integer below it, exactly: qsub would take the last 4095 units for zero.
void fractionOf(const qfloat x, qfloat f) {
    int64_t integer;
    qifrac(x, &integer, f);
    qabs(f);
}

} // namespace

void qround(const qfloat x, qfloat y) {
    qfloat floor, fraction;
    fractionOf(x, fraction);
    qfloor(x, floor);
    // Below zero the floor lies 1 - fraction under x.
    const int half = qcmp(fraction, qhalf);
    subflg = 1; // as the subtraction of the floor leaves it
    const bool up = x[0] != 0 ? fraction[1] != 0 && half <= 0 : half >= 0;
    if (up) qadd(qone, floor, floor);
    qmov(floor, y);
}

namespace {

// Whether a number from 1 to 2^300 is far from every whole one: the 32 bits behind its point are neither all
// zeros nor all ones.
bool isFarFromWhole(const qfloat x) {
    const int64_t wholeBits = int64_t{x[1]} - EXPONENT_BIAS;
    if (wholeBits < 1 || wholeBits > 300) return false;
    uint64_t bits[COUNT];
    limb::load(x, bits);
    limb::shiftUp(bits, static_cast<int>(wholeBits));
    const uint64_t first = bits[COUNT - 1] >> 32;
    return first != 0 && first != 0xFFFFFFFF;
}

// A multiple of 2^-63 from 1 on: whole, or far from it.
bool isMultiple(const qfloat x) {
    const uint32_t bits = x[1] - EXPONENT_BIAS;
    return bits >= 1 && bits <= 64 && std::all_of(x + 5, x + 14, [](uint32_t word) { return word == 0; });
}

} // namespace

void qfixintegers(qfloat x) {
    if (isMultiple(x) || isFarFromWhole(x)) {
        subflg = 1; // as the comparison below leaves it
        return;
    }
    qfloat rounded, distance;
    qround(x, rounded);
    if (rounded[1] == 0) return;
    fractionOf(x, distance);
    if (qcmp(distance, qhalf) >= 0) qsub(distance, qone, distance);
    subflg = 1;
    if (qcmp(distance, qsmall) < 0) qmov(rounded, x);
}

void qldexp(const qfloat x, int64_t n, qfloat y) {
    constexpr int64_t LIMIT = 0x20000;
    if (n < -LIMIT) {
        qclear(y);
        return;
    }
    const int64_t exponent = n > LIMIT ? int64_t{OVERFLOW_EXPONENT} + 1 : int64_t{x[1]} + n;
    qmov(x, y);
    if (exponent > OVERFLOW_EXPONENT) {
        qinfin(y);
    } else if (exponent < 1) {
        qclear(y);
    } else {
        y[1] = static_cast<uint32_t>(exponent); // a zero's too
    }
}

void qfrexp(const qfloat x, int64_t* e, qfloat y) {
    if (x[1] == 0) {
        *e = 0;
        qclear(y);
        return;
    }
    *e = int64_t{x[1]} - EXPONENT_BIAS;
    qmov(x, y);
    y[1] = EXPONENT_BIAS;
}
