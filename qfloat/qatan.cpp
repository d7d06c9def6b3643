// SPDX-License-Identifier: MIT
//
// Arc tangent, arc sine, arc cosine.
//
// arctan v for v <= 1 starts from y0, a double's arc tangent cut to 32 binary places. With s = sin y0 and
// c = cos y0, arctan v = y0 + arctan t for t = (v c - s) / (c + v s), which is below 2^-32: six terms finish
// it. The arc sine and cosine are arc tangents of quotients of x and the root of (1 - x)(1 + x), whose
// factors are exact next to 1, so that nothing cancels at either end of the range.
//
// The first way's error: 2^-376 of the arc tangent, 2^-378 of the root, which the arc tangent does not
// magnify, and 2^-378 of a conversion to degrees: below 2^-375, ARC_UNITS. The second way ends: the angles in
// radians of numbers other than 0 (1 for the arc cosine) are transcendental (Lindemann). An angle that is a
// binary fraction of degrees has a rational sine or cosine only where that is 0, 1/2 or 1, a rational tangent
// only where that is 0 or 1 (Niven): the angles are then whole numbers, no midpoints.
#include "qelem.h"
#include "qnearest.h"
#include "qseries.h"
#include "qtrig.h"
#include "qtrigcore.h"

#include <algorithm>
#include <cmath>

namespace trig {

using namespace limb;

namespace {

// y = arctan t for 0 <= t < 2^-31: t (1 - w/3 + w^2/5 - ...), w = t^2.
void shortSeries(const Extended& t, Extended& y) {
    uint64_t w[COUNT], sum[COUNT];
    y = t;
    if (t.exponent < -32 * COUNT || isZero(t.limb)) return;
    square(t.limb, w);
    shiftDown(w, static_cast<int>(-2 * t.exponent));
    copy(INVERSE_ODD[INVERSE_ODD_COUNT - 1], sum);
    // A product that comes to the sum multiplied by w^k is formed without the limbs below 2^-384 / (2^8 w^k).
    const auto damping = static_cast<int>(-2 * t.exponent);
    for (int k = INVERSE_ODD_COUNT - 2; k > 0; --k) {
        const int low = std::min((damping * k - 8) / 64, COUNT - 1);
        hornerSteps<Signs::Alternating>(w + low, INVERSE_ODD[k] + low, 0, 1, sum + low, COUNT - low);
    }
    multiply(sum, w, sum);
    if (isZero(sum)) return;
    const int zeros = leadingZeros(sum);
    shiftUp(sum, zeros);
    Extended part, small;
    copy(sum, part.limb);
    part.exponent = -zeros;
    multiply(t, part, small);
    subtract(t, small, y);
}

// The double nearest to x, or nearly so; x is in a double's range.
double toDouble(const Extended& x) {
    return std::ldexp(static_cast<double>(x.limb[COUNT - 1]), static_cast<int>(x.exponent) - 64);
}

// y = arctan v for 0 < v <= 1.
void principal(const Extended& v, Extended& y) {
    if (v.exponent <= -31) {
        shortSeries(v, y);
        return;
    }
    const auto n = static_cast<uint64_t>(std::ldexp(std::atan(toDouble(v)), 32) + 0.5);
    const int zeros = leadingZeros(n);
    const Extended y0 = {{0, 0, 0, 0, 0, n << zeros}, 32 - zeros};
    Extended s, c, vc, vs, t;
    sinCosShort(n, s, c);
    multiply(v, c, vc);
    multiply(v, s, vs);
    add(c, vs, vs);
    const bool below = compare(vc, s) < 0;
    if (below) {
        subtract(s, vc, t);
    } else {
        subtract(vc, s, t);
    }
    if (isZero(t.limb)) {
        y = y0;
        return;
    }
    divide(t, vs, t);
    shortSeries(t, t);
    if (below) {
        subtract(y0, t, y);
    } else {
        add(y0, t, y);
    }
}

} // namespace

// The difference is cut by 2 units of 2^-383, which for a <= 0.71 is 2^-380 of it, the sum by 2^-382, the
// product by 0.9 * 2^-379 of itself: 1.5 * 2^-379; the root halves that and adds 2^-379.
void cosineOfArcsine(const Extended& a, Extended& y) {
    Extended less, more;
    subtract(ONE, a, less);
    add(ONE, a, more);
    multiply(less, more, y);
    elem::sqrt(y, y);
}

void arctangent(const Extended& n, const Extended& d, Extended& y) {
    Extended v;
    if (compare(n, d) <= 0) {
        divide(n, d, v);
        principal(v, y);
    } else {
        divide(d, n, v);
        principal(v, v);
        subtract(HALF_PI, v, y);
    }
}

namespace {

constexpr uint32_t ARC_UNITS = 1 << 9;

enum class Unit { Radians, Degrees };

// y = quarters * pi/2 or as many times 90 degrees.
void storeQuarters(unsigned quarters, uint32_t sign, Unit unit, uint32_t* y) {
    if (unit == Unit::Radians) {
        storePi(quarters == 1 ? 1 : 0, sign, y);
        return;
    }
    const int64_t degrees = 90 * static_cast<int64_t>(quarters);
    ltoq(&degrees, y);
    y[0] = sign;
}

// y = the angle in radians a > 0, which wider(width) gives too, in the unit asked for.
template <typename Wider>
void storeAngle(Extended a, uint32_t sign, Unit unit, const Wider& wider, uint32_t* y) {
    if (unit == Unit::Degrees) divide(a, RADIANS_PER_DEGREE, a);
    elem::settle(a, ARC_UNITS, [&](size_t width) {
        return unit == Unit::Radians ? wider(width) : wider(width) * wide::Wide(180, width) / wide::pi(width);
    });
    store(a, sign, 0, y);
}

void inverseTangent(const uint32_t* x, Unit unit, uint32_t* y) {
    const uint32_t sign = signWord(qisneg(x) != 0);
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(unit == Unit::Radians ? sign : 0, y);
        return;
    }
    arctangent(a, ONE, a);
    const auto wider = [x](size_t width) {
        return wide::arctangent(wide::Wide::OfMagnitude(x, width), wide::Wide(1, width));
    };
    storeAngle(a, sign, unit, wider, y);
}

void inverseSine(const uint32_t* x, Unit unit, uint32_t* y) {
    const uint32_t sign = x[0];
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(unit == Unit::Radians ? sign : 0, y);
        return;
    }
    const int order = compare(a, ONE);
    if (order > 0) {
        qclear(y);
        mtherr("qasin", 1);
    } else if (order == 0) {
        storeQuarters(1, sign, unit, y);
    } else {
        Extended c;
        cosineOfArcsine(a, c);
        arctangent(a, c, a);
        const auto wider = [x](size_t width) {
            const auto sine = wide::Wide::OfMagnitude(x, width);
            return wide::arctangent(sine, wide::cosineOfArcsine(sine));
        };
        storeAngle(a, sign, unit, wider, y);
    }
}

void inverseCosine(const uint32_t* x, Unit unit, uint32_t* y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeQuarters(1, 0, unit, y);
        return;
    }
    const int order = compare(a, ONE);
    if (order > 0) {
        qclear(y);
        mtherr("qacos", 1);
    } else if (order == 0 && negative) {
        storeQuarters(2, 0, unit, y);
    } else if (order == 0) {
        qclear(y);
    } else {
        Extended c;
        cosineOfArcsine(a, c);
        arctangent(c, a, a);
        if (negative) subtract(WHOLE_PI, a, a);
        const auto wider = [x, negative](size_t width) {
            const auto cosine = wide::Wide::OfMagnitude(x, width);
            const auto angle = wide::arctangent(wide::cosineOfArcsine(cosine), cosine);
            return negative ? wide::pi(width) - angle : angle;
        };
        storeAngle(a, 0, unit, wider, y);
    }
}

} // namespace
} // namespace trig

using namespace trig;

void qatn(const qfloat x, qfloat y) {
    inverseTangent(x, Unit::Radians, y);
}
void qasin(const qfloat x, qfloat y) {
    inverseSine(x, Unit::Radians, y);
}
void qacos(const qfloat x, qfloat y) {
    inverseCosine(x, Unit::Radians, y);
}
void qatndeg(const qfloat x, qfloat y) {
    inverseTangent(x, Unit::Degrees, y);
}
void qasindeg(const qfloat x, qfloat y) {
    inverseSine(x, Unit::Degrees, y);
}
void qacosdeg(const qfloat x, qfloat y) {
    inverseCosine(x, Unit::Degrees, y);
}
