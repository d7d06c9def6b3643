// SPDX-License-Identifier: MIT
//
// The exponential.
//
// e^x = 2^n e^r with 0 <= r < ln 2.  For the fraction r let r' = r / 2^k.  The scaled values
//   S(j) = 2^(k-j) (e^(2^j r') - 1)
// obey S(j+1) = S(j) + S(j)^2 / 2^(k-j+1) and all lie below 1; S(k) = e^r - 1 is what is wanted.  Unlike the
// plain squaring of e^r' this passes errors on undoubled: each step adds two units of 2^-384 at most, and the
// whole grows by no more than the factor 2 by which the S(j) respond to a change of S(0).
// S(0) = r (1 + r'/2! + r'^2/3! + ...) is summed by Horner's rule; with k = 16 and r' < 2^-16.5 the first
// term left out, r'^20 / 21!, is below 2^-395.
//
// The first way's error: 64 units of 2^-384 of S(k) and 8 of the reduction, doubled by S's response, against
// a value of at least 1: below 2^-377, EXP_UNITS. The second way ends: e^x is transcendental for every x but
// 0 (Lindemann), hence no midpoint.
#include "qelem.h"
#include "qfixed.h"
#include "qfloat.h"
#include "qnearest.h"
#include "qregister.h"

#include <cstring>

using limb::COUNT;

namespace elem {

namespace {

constexpr int HALVINGS = 16;
constexpr int LAST_TERM = 20; // 1 / 20! is the last coefficient

// 1 / n! as fractions, cut, n = 2 .. lastTerm.
struct InverseFactorials {
    uint64_t entry[LAST_TERM + 1][COUNT];

    InverseFactorials() : entry{} {
        uint64_t x[COUNT] = {0, 0, 0, 0, 0, limb::TOP_BIT};
        for (int n = 2; n <= LAST_TERM; ++n) {
            limb::copy(x, entry[n]);
            uint64_t rest = 0;
            for (int i = COUNT - 1; i >= 0; --i) {
                x[i] = limb::divideWide(rest, x[i], static_cast<uint64_t>(n) + 1, rest);
            }
        }
    }
};

} // namespace

void expFraction(const uint64_t* r, uint64_t* s) {
    static const InverseFactorials inverse;
    uint64_t small[COUNT], sum[COUNT];
    limb::copy(r, small);
    limb::shiftDown(small, HALVINGS);
    limb::copy(inverse.entry[LAST_TERM], sum);
    for (int n = LAST_TERM - 1; n >= 2; --n) {
        limb::multiply(small, sum, sum);
        limb::add(inverse.entry[n], sum);
    }
    limb::multiply(small, sum, sum);
    limb::multiply(r, sum, sum);
    uint64_t carry = limb::add(r, sum);
    for (int j = 0; j < HALVINGS; ++j) {
        uint64_t step[COUNT];
        limb::square(sum, step);
        limb::shiftDown(step, HALVINGS - j + 1);
        carry |= limb::add(step, sum);
    }
    // e^r - 1 < 1: only errors can carry, for an r next to ln 2.
    if (carry != 0) std::memset(sum, 0xFF, sizeof sum);
    limb::copy(sum, s);
}

namespace {

// Splits x = n ln 2 + r, 0 <= r < ln 2, leaving r in x.
uint64_t reduceByLn2(Fixed& x) {
    constexpr double LOG2_OF_E = 1.4426950408889634;
    const Fixed ln2 = timesLn2(1);
    const double estimate = static_cast<double>(x.limb[COUNT]) +
                            static_cast<double>(x.limb[COUNT - 1] >> 11) * (1.0 / (uint64_t{1} << 53));
    auto n = static_cast<uint64_t>(estimate * LOG2_OF_E);
    subtract(timesLn2(n), x);
    while (x.IsNegative()) { // the estimate is off by one at most
        add(ln2, x);
        --n;
    }
    for (;;) {
        Fixed less = x;
        subtract(ln2, less);
        if (less.IsNegative()) return n;
        x = less;
        ++n;
    }
}

} // namespace

void exp(const Extended& x, bool negative, Extended& y) {
    Fixed r = toFixed(x);
    auto n = static_cast<int64_t>(reduceByLn2(r));
    if (negative) {
        n = -n;
        if (!limb::isZero(r.limb)) { // e^-r = e^(ln 2 - r) / 2
            Fixed rest = timesLn2(1);
            subtract(r, rest);
            r = rest;
            --n;
        }
    }
    expFraction(r.limb, y.limb);
    limb::shiftDown(y.limb, 1); // (1 + s) / 2
    y.limb[COUNT - 1] |= limb::TOP_BIT;
    y.exponent = n + 1;
}

void store(const Extended& x, uint32_t sign, uint32_t* q) {
    uint64_t mantissa[COUNT];
    limb::copy(x.limb, mantissa);
    const int64_t exponent = x.exponent + limb::roundHalfUp(mantissa) + EXPONENT_BIAS;
    qclear(q);
    if (exponent > OVERFLOW_EXPONENT) {
        q[0] = sign;
        qinfin(q);
        merror = 3;
    } else if (exponent >= 1) {
        q[0] = sign;
        q[1] = static_cast<uint32_t>(exponent);
        limb::store(mantissa, q);
    }
}

} // namespace elem

void qexp(const qfloat x, qfloat y) {
    elem::Extended magnitude;
    limb::load(x, magnitude);
    if (x[1] == 0 || elem::isZero(magnitude)) {
        qmov(qone, y);
        return;
    }
    const bool negative = x[0] != 0;
    if (x[1] >= 0x8010) { // |x| >= 32768
        if (negative) {
            qclear(y);
        } else {
            qinfin(y); // y's sign word stays
            merror = 3;
        }
        return;
    }
    elem::exp(magnitude, negative, magnitude);
    elem::settle(magnitude, elem::EXP_UNITS,
                 [x](size_t width) { return wide::exp(wide::Wide::Of(x, width)); });
    elem::store(magnitude, 0, y);
}
