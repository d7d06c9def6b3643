// SPDX-License-Identifier: MIT
//
// Powers and the factorial.
#include "qelem.h"
#include "qfloat.h"
#include "qregister.h"

using elem::Extended;

namespace {

constexpr int64_t SATURATED = 2147483647;    // |qifrac|'s integer part of anything from 2^31 upward
constexpr int64_t LOGARITHM_FROM = 415032;   // |y| from which x^y goes through the logarithm
constexpr uint32_t HUGE_EXPONENT = 0x8010;   // of 2^15: e^x leaves the range
constexpr int64_t BEYOND = int64_t{1} << 40; // an exponent outside the range in any further step

const Extended ONE = {{0, 0, 0, 0, 0, limb::TOP_BIT}, 1};

// The exponent word that x has after rounding.
int64_t exponentWord(const Extended& x) {
    uint64_t mantissa[limb::COUNT];
    limb::copy(x.limb, mantissa);
    return x.exponent + limb::roundHalfUp(mantissa) + EXPONENT_BIAS;
}

// z = e^x for a signed exponent that still has to pass qexp's limits, x = 0 included.
void expOfProduct(Extended& x, bool negative, qfloat z) {
    const int64_t word = elem::isZero(x) ? 0 : exponentWord(x);
    if (word > OVERFLOW_EXPONENT) merror = 3; // the product's own overflow, also where e^x is then 0
    if (word < 1) {
        qmov(qone, z);
    } else if (word < HUGE_EXPONENT) {
        elem::exp(x, negative, x);
        elem::store(x, 0, z);
    } else if (negative) {
        qclear(z);
    } else {
        z[0] = 0;
        qinfin(z);
        merror = 3;
    }
}

bool isZero(const qfloat x) {
    Extended magnitude;
    limb::load(x, magnitude);
    return x[1] == 0 || elem::isZero(magnitude);
}

// z = 0^y.
void powerOfZero(const qfloat y, qfloat z) {
    const bool isNegative = y[0] != 0 && !isZero(y);
    qmov(isZero(y) ? qone : qzero, z);
    if (!isNegative) return;
    qinfin(z);
    merror = 3;
}

// z = e^(y ln x) with the special values and codes of qlog, qmul and qexp one after the other, but a power of
// 0 as powerOfZero has it.
void powerByLogarithm(const qfloat x, const qfloat y, qfloat z) {
    if (isZero(x)) {
        powerOfZero(y, z);
        return;
    }
    Extended base, product;
    limb::load(x, base);
    if (x[0] != 0) {
        merror = 1;
        base = ONE; // the logarithm fails as 0
    }
    const bool below = elem::log(base, base);
    limb::load(y, product);
    if (!elem::isZero(base)) {
        limb::multiply(base, product, product);
    } else {
        product = base;
    }
    expOfProduct(product, below != (y[0] != 0), z);
}

// z = x^n for n >= 1 by squaring, each product within 2^-379.  The exponent stays below 2^17 n.
void powerBySquaring(Extended x, int64_t n, Extended& z) {
    bool empty = true;
    for (;; n >>= 1) {
        if (n & 1) {
            if (empty) {
                z = x;
            } else {
                limb::multiply(z, x, z);
            }
            empty = false;
        }
        if (n == 1) return;
        limb::multiply(x, x, x);
    }
}

// z = x^n for x > 0, n >= 1.  From `logarithmFrom` upward the errors of the products would add up to whole
// units; the logarithm's do not.
void powerOfMagnitude(const Extended& x, int64_t n, Extended& z) {
    if (n < LOGARITHM_FROM) {
        powerBySquaring(x, n, z);
        return;
    }
    Extended logarithm;
    const bool below = elem::log(x, logarithm);
    if (elem::isZero(logarithm)) {
        z = ONE;
        return;
    }
    const int zeros = limb::leadingZeros(static_cast<uint64_t>(n));
    const Extended factor = {{0, 0, 0, 0, 0, static_cast<uint64_t>(n) << zeros}, 64 - zeros};
    limb::multiply(logarithm, factor, logarithm);
    if (logarithm.exponent > 16) {
        z = ONE;
        z.exponent = below ? -BEYOND : BEYOND;
    } else {
        elem::exp(logarithm, below, z);
    }
}

// z = 2^n by exponent arithmetic.
void powerOfTwo(int64_t n, qfloat z) {
    const int64_t word = 0x8002 + n - 1;
    qclear(z);
    if (word > OVERFLOW_EXPONENT) {
        qinfin(z);
        merror = 3;
    } else if (word > 0) {
        qmov(qone, z);
        z[1] = static_cast<uint32_t>(word);
    }
}

// z = 1 / x as a quotient of the stored x: an overflowed x gives the smallest number, an underflowed one (0)
// the overflow value and code 3.
void storeReciprocal(Extended& x, uint32_t sign, qfloat z) {
    const int64_t word = exponentWord(x);
    qclear(z);
    z[0] = sign;
    if (word > OVERFLOW_EXPONENT) {
        merror = 3;
        qinfin(z);
        qdiv(z, qone, z);
    } else if (word < 1) {
        merror = 3;
        qinfin(z);
    } else {
        limb::divide(ONE, x, x);
        elem::store(x, sign, z);
    }
}

} // namespace

void qpowi(const qfloat x, const qfloat y, qfloat z) {
    int64_t n;
    qfloat fraction;
    qifrac(y, &n, fraction);
    if (qcmp(x, qtwo) == 0) {
        powerOfTwo(n, z);
        return;
    }
    const int64_t magnitude = n < 0 ? -n : n;
    if (magnitude == SATURATED) {
        powerByLogarithm(x, y, z);
        return;
    }
    if (isZero(x)) {
        qclear(z);
        if (n == 0) qmov(qone, z);
        if (n < 0) qinfin(z);
        return;
    }
    if (n == 0) {
        qmov(qone, z);
        return;
    }
    Extended base;
    limb::load(x, base);
    const uint32_t sign = x[0] != 0 && magnitude % 2 != 0 ? NEGATIVE_SIGN : 0;
    powerOfMagnitude(base, magnitude, base);
    if (n < 0) {
        storeReciprocal(base, sign, z);
    } else {
        elem::store(base, sign, z);
        z[0] = sign; // an underflow to zero has the sign too
    }
}

void qpow(const qfloat x, const qfloat y, qfloat z) {
    if (isZero(x)) {
        powerOfZero(y, z);
        return;
    }
    qfloat whole, limit;
    const int64_t from = LOGARITHM_FROM;
    qfloor(y, whole);
    ltoq(&from, limit);
    qfloat magnitude;
    qmov(y, magnitude);
    qabs(magnitude);
    if (qcmp(whole, y) == 0 && qcmp(magnitude, limit) < 0) {
        qpowi(x, y, z);
    } else {
        powerByLogarithm(x, y, z);
    }
}

// ---------------------------------------------------------------------------------------------------------

namespace {

// y = n! for n >= 2, within 2^-374: the factors are gathered into limbs first.
void factorial(int n, Extended& y) {
    y = ONE;
    uint64_t gathered = 1;
    const auto take = [&y, &gathered] {
        const int zeros = limb::leadingZeros(gathered);
        limb::multiplyLimb(y.limb, gathered << zeros, y.limb);
        y.exponent += 64 - zeros;
        const int top = limb::leadingZeros(y.limb); // 0 or 1
        limb::shiftUp(y.limb, top);
        y.exponent -= top;
    };
    for (int k = 2; k <= n; ++k) {
        const auto factor = static_cast<uint64_t>(k);
        if (gathered > UINT64_MAX / factor) {
            take();
            gathered = 1;
        }
        gathered *= factor;
    }
    take();
}

} // namespace

void qfac(const qfloat x, qfloat y) {
    constexpr double LIMIT = 1754.0;
    const bool negative = x[0] != 0;
    double value = 0;
    if (!negative) qtoe(x, &value);
    if (negative || value > LIMIT) {
        y[0] = 0;
        qinfin(y);
        merror = negative ? 1 : 3;
        return;
    }
    const int n = static_cast<int>(value);
    if (n < 2) {
        qmov(qone, y);
        return;
    }
    Extended product;
    factorial(n, product);
    elem::store(product, 0, y);
}
