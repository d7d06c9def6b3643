// SPDX-License-Identifier: MIT
//
// Powers and the factorial.
//
// The first way's errors, in units of the last of 384 bits: each product of a power by squaring adds 40 at
// most. The logarithm is within 2^-377 of the larger of it and 1, and of itself where it is below 2^-5. With
// the product's 2^-378, y ln x is within 2^-376 of the larger of |y| and |y ln x|, or of the latter; that and
// the exponential's 2^-377 is the power's relative error.
// The second way ends: x^y is algebraic for our x and y, which are binary fractions. exactPower finds those
// powers that have few enough bits to be a midpoint; the others are none.
#include "qelem.h"
#include "qfloat.h"
#include "qnearest.h"
#include "qregister.h"

using elem::Extended;
using limb::ONE;

namespace {

constexpr int64_t SATURATED = 2147483647;    // |qifrac|'s integer part of anything from 2^31 upward
constexpr int64_t LOGARITHM_FROM = 415032;   // |y| from which x^y goes through the logarithm
constexpr uint32_t HUGE_EXPONENT = 0x8010;   // of 2^15: e^x leaves the range
constexpr int64_t BEYOND = int64_t{1} << 40; // an exponent outside the range in any further step

constexpr uint32_t UNITS_OF_PRODUCT = 40; // what a product or quotient adds to an error

// The exponent word that x has after rounding.
int64_t exponentWord(const Extended& x) {
    uint64_t mantissa[limb::COUNT];
    limb::copy(x.limb, mantissa);
    return x.exponent + limb::roundHalfUp(mantissa) + EXPONENT_BIAS;
}

using wide::Wide;

// The count of bits from the first to the last one that is set.
int64_t bitLength(const Wide& x) {
    size_t zeros = 0;
    while (x.limb[zeros] == 0) ++zeros;
    uint64_t lowest = x.limb[zeros];
    int64_t length = 64 * static_cast<int64_t>(x.Width() - zeros);
    for (; (lowest & 1) == 0; lowest >>= 1) --length;
    return length;
}

// z = |x|^y, cut, where that is a binary fraction of up to 704 bits; x is not 0 and no power of two. Returns
// false for all that is no midpoint between two numbers.
//
// y = n / 2^k for an odd n, or k = 0. With x = X 2^e for an odd X > 1, a binary fraction x^y is A^n 2^f for
// an odd A with A^(2^k) = X (2^k and n have no common factor): k exact square roots give it, and n is
// positive. A^n has more than n (b - 1) bits for an A of b bits, a midpoint 353.
bool exactPower(const qfloat x, const qfloat y, Extended& z) {
    constexpr size_t WIDTH = wide::FIRST_WIDTH;
    qfloat root;
    qmov(x, root);
    root[0] = 0;
    Wide base = Wide::Of(root, WIDTH), n = Wide::Of(y, WIDTH);
    for (; n.exponent < bitLength(n); ++n.exponent) {
        qsqrt(root, root);
        const Wide square = base;
        base = Wide::Of(root, WIDTH);
        if (wide::compareMagnitudes(base * base, square) != 0) return false;
    }
    if (n.negative || n.exponent > 9) return false;
    const auto count = static_cast<int64_t>(n.limb.back() >> (64 - n.exponent));
    if (count * (bitLength(base) - 1) > MANTISSA_BITS) return false;
    Wide power = base;
    for (int64_t i = 1; i < count; ++i) power = power * base;
    z = wide::leading(power);
    return true;
}

// Makes z, |x|^y within `units`, safe to round.
void settlePower(Extended& z, uint32_t units, const qfloat x, const qfloat y) {
    if (!elem::isUndecided(z, units) || exactPower(x, y, z)) return;
    z = wide::decided(
        [x, y](size_t width) { return wide::power(Wide::OfMagnitude(x, width), Wide::Of(y, width)); });
}

// The error of e^product for product = y * logarithm, in units; at most 2^28 within the range of e^x.
uint32_t unitsOfPower(const Extended& logarithm, int64_t exponentOfY, const Extended& product) {
    const bool isNextToOne = logarithm.exponent < -4;
    const int64_t size = isNextToOne || exponentOfY < product.exponent ? product.exponent : exponentOfY;
    const int64_t bits = size + 8;
    return elem::EXP_UNITS + (bits > 28 ? 1U << 28 : bits > 0 ? 1U << bits : 1U);
}

// z = x^y = e^product for a signed product that still has to pass qexp's limits, product = 0 included.
void expOfProduct(Extended& product, bool negative, uint32_t units, const qfloat x, const qfloat y,
                  qfloat z) {
    const int64_t word = elem::isZero(product) ? 0 : exponentWord(product);
    if (word > OVERFLOW_EXPONENT) merror = 3; // the product's own overflow, also where e^x is then 0
    if (word < HUGE_EXPONENT) {
        elem::exp(product, negative, product);
        settlePower(product, units, x, y);
        elem::store(product, 0, z);
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
    const uint32_t units = unitsOfPower(base, int64_t{y[1]} - EXPONENT_BIAS, product);
    expOfProduct(product, below != (y[0] != 0), units, x, y, z);
}

// z = x^n for n >= 1 by squaring, each product within 2^-379. The exponent stays below 2^17 n.
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

// z = x^n for x > 0, n >= 1. From `logarithmFrom` upward the errors of the products would add up to whole
// units; the logarithm's do not. Returns the units that z may be off.
uint32_t powerOfMagnitude(const Extended& x, int64_t n, Extended& z) {
    if (n < LOGARITHM_FROM) {
        powerBySquaring(x, n, z);
        return UNITS_OF_PRODUCT * static_cast<uint32_t>(n);
    }
    Extended logarithm;
    const bool below = elem::log(x, logarithm);
    if (elem::isZero(logarithm)) {
        z = ONE;
        return 0;
    }
    const int zeros = limb::leadingZeros(static_cast<uint64_t>(n));
    const Extended factor = {{0, 0, 0, 0, 0, static_cast<uint64_t>(n) << zeros}, 64 - zeros};
    Extended product;
    limb::multiply(logarithm, factor, product);
    if (product.exponent > 16) {
        z = ONE;
        z.exponent = below ? -BEYOND : BEYOND;
        return 0;
    }
    elem::exp(product, below, z);
    return unitsOfPower(logarithm, factor.exponent, product);
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

// z = x^n for n < 0 as the quotient 1 / power of the stored power |x|^|n|, which is settled: an overflowed
// one gives the smallest number, an underflowed one (0) the overflow value and code 3.
void storeReciprocal(Extended& power, uint32_t units, const qfloat x, const qfloat n, uint32_t sign,
                     qfloat z) {
    const int64_t word = exponentWord(power);
    if (word < 1 || word > OVERFLOW_EXPONENT) {
        merror = 3;
        qclear(z);
        z[0] = sign;
        qinfin(z);
        if (word > 1) qdiv(z, qone, z);
    } else {
        limb::divide(ONE, power, power);
        settlePower(power, units + UNITS_OF_PRODUCT, x, n);
        elem::store(power, sign, z);
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
    const uint32_t units = powerOfMagnitude(base, magnitude, base);
    qfloat whole;
    ltoq(&magnitude, whole);
    settlePower(base, units, x, whole);
    if (n < 0) {
        qneg(whole);
        storeReciprocal(base, units, x, whole, sign, z);
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

// The first way's error: each of the 275 products at most is cut by less than a unit of the last of 384 bits.
// Relative to the products, which are known, that adds up to less than 558 units for every n. The second way
// ends: no factorial is a midpoint, as the odd part of 86! has 352 bits, that of 87! 358.
constexpr uint32_t FACTORIAL_UNITS = 1 << 10;

// y = n! for n >= 2: the factors are gathered into limbs first.
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
    elem::settle(product, FACTORIAL_UNITS, [n](size_t width) {
        Wide exact(1, width);
        for (int k = 2; k <= n; ++k) exact = exact * Wide(k, width);
        return exact;
    });
    elem::store(product, 0, y);
}
