// SPDX-License-Identifier: MIT
//
// The natural logarithm.
//
// x = 2^e m with sqrt(1/2) <= m < sqrt(2), so that nothing cancels between e ln 2 and ln m.
// Next to 1, ln m = 2 artanh((m - 1) / (m + 1)) directly, where every step keeps its relative accuracy.
// Elsewhere a machine logarithm t is corrected: ln m = t + 2 artanh((m - e^t) / (m + e^t)), whose argument
// is so small that the series has three or four terms.
//
// The first way's error: below 2^-373 of the logarithm (qelem.h), LOG_UNITS, and of the quotient of two, for
// a base, below 4 LOG_UNITS. The second way ends: the logarithm of a number other than 1 is transcendental
// (Lindemann). One to a base is transcendental too (Gelfond and Schneider) or a quotient of two whole
// numbers: t / s where x = c^t and b = c^s, and t and s are below 2^16 in magnitude, so that it is no
// midpoint between two numbers.
#include "qelem.h"
#include "qfixed.h"
#include "qfloat.h"
#include "qnearest.h"
#include "qregister.h"
#include "qseries.h"

#include <cmath>

using limb::COUNT;
using limb::ONE;

namespace elem {

namespace {

// The direct series is used for |m - 1| below this, so that |ln m| is 2^-5 or more where it is not. The
// argument of artanh is then below 2^-5.89, and 32 terms reach 2^-384.
constexpr double DIRECT_BELOW = 0.033;
constexpr int TERMS = 32;

// 1 / (2n + 1) as fractions, cut, n = 1 .. terms.
struct OddReciprocals {
    uint64_t entry[TERMS + 1][COUNT];

    OddReciprocals() : entry{} {
        for (int n = 1; n <= TERMS; ++n) {
            uint64_t rest = 1;
            for (int i = COUNT - 1; i >= 0; --i) {
                entry[n][i] = limb::divideWide(rest, 0, 2 * static_cast<uint64_t>(n) + 1, rest);
            }
        }
    }
};

// y = 2 artanh(z) = 2 z (1 + w/3 + w^2/5 + ...) with w = z^2 < 2^-11, for z < 2^-5.89. Relative error below
// 2^-378: that of the bracket's fixed-point sum, at most 9 units of 2^-384, and three roundings. A product
// that comes to the bracket multiplied by w^n is formed without the limbs below 2^-384 / (2^8 w^n); that is 9
// * 2^-8 of those units.
void doubleArtanh(const Extended& z, Extended& y) {
    static const OddReciprocals reciprocal;
    if (isZero(z)) {
        y = z;
        return;
    }
    Extended square;
    limb::multiply(z, z, square);
    const Fixed w = toFixed(square);
    const int zeros = limb::leadingZeros(w.limb); // w < 2^-zeros
    const int needed = 64 * COUNT / zeros;
    int n = needed < TERMS ? needed : TERMS;
    Fixed bracket = {};
    uint64_t* const sum = bracket.limb;
    limb::copy(reciprocal.entry[n], sum);
    while (--n >= 1) {
        const int low = zeros * n > 8 ? (zeros * n - 8) / 64 : 0;
        limb::hornerSteps<limb::Signs::Equal>(w.limb + low, reciprocal.entry[n] + low, 0, 1, sum + low,
                                              COUNT - low);
    }
    limb::multiply(w.limb, sum, sum);
    bracket.limb[COUNT] = 1;
    limb::multiply(z, toExtended(bracket), y);
    ++y.exponent;
}

// z = |a - b| / (a + b); returns whether a < b.
bool ratio(const Extended& a, const Extended& b, Extended& z) {
    const bool less = limb::compare(a, b) < 0;
    Extended difference, sum;
    limb::subtract(less ? b : a, less ? a : b, difference);
    if (isZero(difference)) {
        z = difference;
        return false;
    }
    limb::add(a, b, sum);
    limb::divide(difference, sum, z);
    return less;
}

// y = |ln m| for a positive double t near |ln m|. The error is that of e^t, 2^-378, and |ln m| > 2^-5.
void correctedLog(const Extended& m, bool below, double t, Extended& y) {
    // Above 1 compare m with e^t; below 1 compare 1 with m e^t.
    Fixed start = {};
    start.limb[COUNT - 1] = static_cast<uint64_t>(t * 9007199254740992.0) << 11; // t 2^53
    Extended power, correction;
    expFraction(start.limb, power.limb);
    onePlus(power);
    bool less;
    if (below) {
        limb::multiply(m, power, power);
        less = ratio(ONE, power, correction);
    } else {
        less = ratio(m, power, correction);
    }
    doubleArtanh(correction, correction);
    Fixed f = toFixed(correction);
    if (less) {
        subtract(f, start);
    } else {
        add(f, start);
    }
    y = toExtended(start);
}

// y = |ln m| for sqrt(1/2) <= m < sqrt(2); returns whether m < 1.
bool logOfMantissa(const Extended& m, Extended& y) {
    const double approximate =
        std::ldexp(static_cast<double>(m.limb[COUNT - 1]), static_cast<int>(m.exponent) - 64);
    if (std::fabs(approximate - 1) < DIRECT_BELOW) {
        Extended z;
        const bool below = ratio(m, ONE, z);
        doubleArtanh(z, y);
        return below;
    }
    const bool below = approximate < 1;
    correctedLog(m, below, std::fabs(std::log(approximate)), y);
    return below;
}

} // namespace

bool log(const Extended& x, Extended& y) {
    constexpr uint64_t SQRT_HALF = 0xB504F333F9DE6484; // the top limb of sqrt(1/2)
    Extended m = x;
    m.exponent = x.limb[COUNT - 1] < SQRT_HALF ? 1 : 0;
    const int64_t e = x.exponent - m.exponent;
    const bool below = logOfMantissa(m, m);
    if (e == 0) {
        y = m;
        return below;
    }
    Fixed sum = timesLn2(static_cast<uint64_t>(e < 0 ? -e : e));
    if (below == (e < 0)) {
        add(toFixed(m), sum);
    } else {
        subtract(toFixed(m), sum);
    }
    y = toExtended(sum);
    return e < 0;
}

} // namespace elem

void qlog(const qfloat x, qfloat y) {
    if (x[0] != 0) {
        qclear(y);
        merror = 1;
        return;
    }
    elem::Extended value;
    limb::load(x, value);
    if (x[1] == 0 || elem::isZero(value)) {
        qinfin(y);
        y[0] = NEGATIVE_SIGN;
        merror = 2;
        return;
    }
    const bool negative = elem::log(value, value);
    if (elem::isZero(value)) {
        qclear(y);
    } else {
        elem::settle(value, elem::LOG_UNITS,
                     [x](size_t width) { return wide::log(wide::Wide::Of(x, width)); });
        elem::store(value, negative ? NEGATIVE_SIGN : 0, y);
    }
}

void qlogbase(const qfloat x, const qfloat b, qfloat y) {
    elem::Extended value, base;
    limb::load(x, value);
    limb::load(b, base);
    const auto isPositive = [](const qfloat q, const elem::Extended& magnitude) {
        return q[0] == 0 && q[1] != 0 && !elem::isZero(magnitude);
    };
    if (!isPositive(x, value) || !isPositive(b, base)) {
        qlog(isPositive(x, value) ? b : x, y);
        return;
    }
    const bool negative = elem::log(value, value) != elem::log(base, base);
    if (elem::isZero(value)) {
        qclear(y);
    } else if (elem::isZero(base)) {
        qlog(x, y);
        qdiv(qzero, y, y);
    } else {
        limb::divide(value, base, value);
        elem::settle(value, 4 * elem::LOG_UNITS, [x, b](size_t width) {
            return wide::log(wide::Wide::Of(x, width)) / wide::log(wide::Wide::Of(b, width));
        });
        elem::store(value, negative ? NEGATIVE_SIGN : 0, y);
    }
}
