// SPDX-License-Identifier: MIT
//
// Arc tangent, arc sine, arc cosine.
//
// arctan v for v <= 1 starts from y0, a double's arc tangent cut to 32 binary places.  With s = sin y0 and
// c = cos y0, arctan v = y0 + arctan t for t = (v c - s) / (c + v s), which is below 2^-32: six terms finish
// it. The arc sine and cosine are arc tangents of quotients of x and the root of (1 - x)(1 + x), whose
// factors are exact next to 1, so that nothing cancels at either end of the range.
#include "qelem.h"
#include "qtrig.h"
#include "qtrigcore.h"

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
    for (int k = INVERSE_ODD_COUNT - 2; k > 0; --k) {
        multiply(sum, w, sum);
        uint64_t borrow = 0;
        for (int i = 0; i < COUNT; ++i) sum[i] = subtractBorrow(INVERSE_ODD[k][i], sum[i], borrow);
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

void refuse(const char* name, qfloat y) {
    qclear(y);
    mtherr(name, 1);
}

// y = the square root of (1 - a)(1 + a), 0 < a < 1.
void cosineOf(const Extended& a, Extended& y) {
    Extended less, more;
    subtract(ONE, a, less);
    add(ONE, a, more);
    multiply(less, more, y);
    elem::sqrt(y, y);
}

} // namespace

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

} // namespace trig

using namespace trig;

void qatn(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(signWord(negative), y);
        return;
    }
    arctangent(a, limb::ONE, a);
    limb::store(a, signWord(negative), 0, y);
}

void qasin(const qfloat x, qfloat y) {
    const uint32_t sign = x[0];
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(sign, y);
        return;
    }
    const int order = limb::compare(a, limb::ONE);
    if (order > 0) {
        refuse("qasin", y);
    } else if (order == 0) {
        storePi(1, sign, y);
    } else {
        Extended c;
        cosineOf(a, c);
        arctangent(a, c, a);
        limb::store(a, sign, 0, y);
    }
}

void qacos(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (!loadMagnitude(x, a)) {
        storePi(1, 0, y);
        return;
    }
    const int order = limb::compare(a, limb::ONE);
    if (order > 0) {
        refuse("qacos", y);
    } else if (order == 0 && negative) {
        storePi(0, 0, y);
    } else if (order == 0) {
        qclear(y);
    } else {
        Extended c;
        cosineOf(a, c);
        arctangent(c, a, a);
        if (negative) limb::subtract(limb::WHOLE_PI, a, a);
        limb::store(a, 0, 0, y);
    }
}
