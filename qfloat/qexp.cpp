// SPDX-License-Identifier: MIT
//
// The exponential.
//
// e^x = 2^n e^r with 0 <= r < ln 2. The fraction r = a + b + c + d + f has four parts of four bits each, a =
// i / 2^4, b = j / 2^8, ..., whose exponentials less 1 are in a table, and the rest f < 2^-16. S = e^f - 1
// is summed by Horner's rule; the first term left out, f^21 / 21!, is below 2^-401. Then each part takes S
// to E + S + E S, E = e^part - 1, from the smallest part to the largest.
//
// In units of 2^-384: the series is cut by 6.1, its last product, as the product that comes to it multiplied
// by f^n leaves out only limbs below 2^(16 (n - 1)) units. Each part adds 6.1, its product, and half a unit
// of its table entry, and multiplies what was there by 1 + E: 12.7, 19.3 and 27 units after the first three,
// less than 61 at the end.
//
// The first way's error: 64 units of 2^-384 of S(k) and 8 of the reduction, doubled by S's response, against
// a value of at least 1: below 2^-377, EXP_UNITS. The second way ends: e^x is transcendental for every x but
// 0 (Lindemann), hence no midpoint.
#include "qelem.h"
#include "qfixed.h"
#include "qfloat.h"
#include "qnearest.h"
#include "qregister.h"
#include "qseries.h"
#include "qtables.h"

#include <cstring>

using limb::COUNT;

namespace elem {

namespace {

constexpr int LEVEL_BITS = 16 / limb::EXP_LEVELS;
constexpr int LAST_TERM = 20; // 1 / 20! is the last coefficient

// sum = e^d - 1 for a fraction d < 2^-16, of six limbs or one.
template <typename Factor> void shortSeries(const uint64_t* d, Factor factorOf, uint64_t* sum) {
    constexpr auto EQUAL = limb::Signs::Equal;
    constexpr int STEPS = 4; // that damp an error by a limb
    limb::copy(limb::INVERSE_FACTORIAL[LAST_TERM], sum);
    for (int n = LAST_TERM - 1; n >= 2;) {
        const int low = (n - 1) / STEPS;
        const int next = low > 0 ? low * STEPS : 1;
        limb::hornerSteps<EQUAL>(factorOf(low), limb::INVERSE_FACTORIAL[n] + low, COUNT, n - next, sum + low,
                                 COUNT - low);
        n = next;
    }
    // The last two steps: 0 + d * sum, then d + d * that.
    const uint64_t ends[2][COUNT] = {{d[0], d[1], d[2], d[3], d[4], d[5]}, {}};
    limb::hornerSteps<EQUAL>(factorOf(0), ends[1], COUNT, 2, sum, COUNT);
}

} // namespace

void expFraction(const uint64_t* r, uint64_t* s) {
    uint64_t rest[COUNT], sum[COUNT];
    limb::copy(r, rest);
    const uint64_t top = rest[COUNT - 1];
    rest[COUNT - 1] &= ~uint64_t{0} >> 16;
    if ((r[0] | r[1] | r[2] | r[3] | r[4]) == 0) {
        shortSeries(
            rest, [&rest](int) { return rest[COUNT - 1]; }, sum);
    } else {
        shortSeries(
            rest, [&rest](int low) { return static_cast<const uint64_t*>(rest + low); }, sum);
    }
    uint64_t carry = 0;
    for (int level = limb::EXP_LEVELS - 1; level >= 0; --level) {
        const uint64_t* step = limb::EXP_STEPS[level][top >> (64 - LEVEL_BITS * (level + 1)) & 15];
        uint64_t product[COUNT];
        limb::multiply(step, sum, product);
        carry |= limb::add(step, sum);
        carry |= limb::add(product, sum);
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
    onePlus(y);
    y.exponent += n;
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
