// SPDX-License-Identifier: MIT
//
// Hyperbolic sine, cosine, tangent.
//
// Below 1/16 sinh and cosh are summed by their series; from there on E = e^|x| and 1/E are combined, where
// sinh and tanh lose at most four of the 32 bits that the work carries beyond a stored mantissa: the
// exponential's 2^-377 becomes 2^-372 at most, HYPERBOLIC_UNITS.
// The second way ends: of a number other than 0 the results are transcendental (Lindemann), no midpoints.
#include "qelem.h"
#include "qnearest.h"
#include "qtrig.h"
#include "qtrigcore.h"

namespace trig {

using namespace limb;

namespace {

// 1/16 <= x has at least this exponent.
constexpr int64_t EXPONENTIAL_FROM = -3;

// e^x for x of this exponent, 2^15 or more, is far above the range.
constexpr int64_t HOPELESS = 16;

void overflow(uint32_t sign, uint32_t* y) {
    qclear(y);
    y[0] = sign;
    qinfin(y);
    merror = 3;
}

constexpr uint32_t HYPERBOLIC_UNITS = 1 << 12;

wide::SineCosine wider(const uint32_t* x, size_t width) {
    return wide::hyperbolic(wide::Wide::OfMagnitude(x, width));
}

// The sine or the cosine.
void hyperbolic(const Extended& x, bool isSine, Extended& y) {
    Extended s, c;
    if (x.exponent < EXPONENTIAL_FROM) {
        sinhCoshSeries(x, s, c);
        y = isSine ? s : c;
        return;
    }
    elem::exp(x, false, s);
    divide(ONE, s, c);
    isSine ? subtract(s, c, y) : add(s, c, y);
    --y.exponent;
}

} // namespace
} // namespace trig

using namespace trig;

void qsinh(const qfloat x, qfloat y) {
    const uint32_t sign = signWord(qisneg(x) != 0);
    Extended a;
    if (x[1] < 2 || !loadMagnitude(x, a)) {
        qclear(y);
    } else if (a.exponent >= HOPELESS) {
        overflow(sign, y);
    } else {
        Extended s;
        hyperbolic(a, true, s);
        elem::settle(s, HYPERBOLIC_UNITS, [x](size_t width) { return wider(x, width).sine; });
        limb::store(s, sign, 0, y);
    }
}

void qcosh(const qfloat x, qfloat y) {
    Extended a;
    if (!loadMagnitude(x, a)) {
        qmov(qone, y);
    } else if (a.exponent >= HOPELESS) {
        overflow(0, y);
    } else {
        Extended c;
        hyperbolic(a, false, c);
        elem::settle(c, HYPERBOLIC_UNITS, [x](size_t width) { return wider(x, width).cosine; });
        limb::store(c, 0, 0, y);
    }
}

void qtanh(const qfloat x, qfloat y) {
    const uint32_t sign = signWord(qisneg(x) != 0);
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(sign, y);
        return;
    }
    Extended s, c;
    if (a.exponent < EXPONENTIAL_FROM) {
        sinhCoshSeries(a, s, c);
        limb::divide(s, c, a);
    } else if (a.exponent > 8) { // from 256 on 1 - tanh x lies below 2^-700
        a = limb::ONE;
    } else {
        // (e^2x - 1) / (e^2x + 1)
        ++a.exponent;
        elem::exp(a, false, a);
        limb::subtract(a, limb::ONE, s);
        limb::add(a, limb::ONE, c);
        limb::divide(s, c, a);
    }
    elem::settle(a, HYPERBOLIC_UNITS, [x](size_t width) {
        const wide::SineCosine both = wider(x, width);
        return both.sine / both.cosine;
    });
    limb::store(a, sign, 0, y);
}
