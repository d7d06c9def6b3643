// SPDX-License-Identifier: MIT
//
// Sine, cosine, tangent.
//
// The first way: the reduced angle, its sine and cosine are within 2^-379 each. The tangent magnifies the
// angle's error by 1.6 at most and takes the cosine from the sine s: it is within 1.8 * 2^-379 and the error
// of s, which s^2 / (1 - s^2) <= 1 does not magnify. The quotient adds 2^-378. In all that is below 2^-376,
// CIRCULAR_UNITS.
// The second way ends: of an angle in radians other than 0 the results are transcendental (Lindemann). Of a
// binary fraction of degrees they are algebraic, and rational only where they are 0, 1/2, 1 or a pole
// (Niven); those are numbers, so that no result is a midpoint.
#include "qtrig.h"

#include "qnearest.h"
#include "qtrigcore.h"

namespace trig {

using namespace limb;

bool loadMagnitude(const uint32_t* q, Extended& x) {
    if (q[1] == 0) return false;
    load(q, x);
    return !isZero(x.limb);
}

void storeZero(uint32_t sign, uint32_t* y) {
    qclear(y);
    y[0] = sign;
}

void storePi(int halvings, uint32_t sign, uint32_t* y) {
    qmov(qpi, y);
    y[0] = sign;
    y[1] -= static_cast<uint32_t>(halvings);
}

namespace {

// The exponent word from which on sine and cosine are refused: 2^333.
constexpr uint32_t SINE_LIMIT = 33102;

constexpr int64_t LARGEST_EXPONENT = int64_t{OVERFLOW_EXPONENT} - EXPONENT_BIAS;

void refuse(qfloat y) {
    qclear(y);
    mtherr("qsin", 3);
}

constexpr uint32_t CIRCULAR_UNITS = 1 << 8;

// Sine and cosine of |x| for the second way.
using Wider = wide::SineCosine (*)(const uint32_t* x, size_t width);

wide::SineCosine ofRadians(const uint32_t* x, size_t width) {
    return wide::circular(wide::Wide::OfMagnitude(x, width));
}

wide::SineCosine ofDegrees(const uint32_t* x, size_t width) {
    qfloat rest;
    remainderOfTurn(x, rest);
    return wide::circularOfDegrees(wide::Wide::Of(rest, width));
}

// y = sin(|x| + turns * pi/2), negated on demand; r is |x|, reduced. A sine that is exactly zero is a plain
// zero.
void storeSine(const qfloat x, const Reduced& r, Wider wider, unsigned turns, bool negate, qfloat y) {
    const unsigned quadrant = r.quadrant + turns;
    Extended value = limb::ONE;
    bool negative = (quadrant & 2) != 0;
    if (isZero(r.magnitude.limb)) {
        if ((quadrant & 1) == 0) {
            qclear(y);
            return;
        }
    } else if ((quadrant & 1) == 0) {
        sine(r.magnitude, value);
        negative = negative != r.negative;
    } else {
        cosine(r.magnitude, value);
    }
    elem::settle(value, CIRCULAR_UNITS, [=](size_t width) {
        const wide::SineCosine both = wider(x, width);
        return turns == 0 ? both.sine : both.cosine;
    });
    store(value, signWord(negative != negate), 0, y);
}

// y = tan |x|, negated on demand; r is |x|, reduced. A zero has the sign asked for, a pole is the overflow
// value.
void storeTangent(const qfloat x, const Reduced& r, Wider wider, bool negate, qfloat y) {
    const bool odd = (r.quadrant & 1) != 0; // tan(r + pi/2) = -1 / tan r
    if (isZero(r.magnitude.limb)) {
        storeZero(signWord(negate), y);
        if (odd) qinfin(y);
        return;
    }
    Extended s, c, t;
    sine(r.magnitude, s);
    cosineOfArcsine(s, c);
    if (odd) {
        limb::divide(c, s, t);
    } else {
        limb::divide(s, c, t);
    }
    elem::settle(t, CIRCULAR_UNITS, [=](size_t width) {
        const wide::SineCosine both = wider(x, width);
        return both.sine / both.cosine;
    });
    limb::store(t, signWord(negate != (r.negative != odd)), 0, y);
}

// Whether the cosine of x is refused: it is the sine of pi/2 - x, whose limit applies to the rounded
// difference.
bool cosineRefused(const qfloat x) {
    if (x[1] < SINE_LIMIT - 1) return false;
    qfloat quarterTurn, difference;
    storePi(1, 0, quarterTurn);
    qsub(x, quarterTurn, difference);
    return difference[1] >= SINE_LIMIT;
}

} // namespace
} // namespace trig

using namespace trig;

void qsin(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (x[1] >= SINE_LIMIT) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        storeZero(signWord(negative), y);
    } else {
        storeSine(x, reduceAngle(a), ofRadians, 0, negative, y);
    }
}

void qcos(const qfloat x, qfloat y) {
    Extended a;
    if (cosineRefused(x)) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        qmov(qone, y);
    } else {
        storeSine(x, reduceAngle(a), ofRadians, 1, false, y);
    }
}

void qtan(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (!loadMagnitude(x, a)) {
        storeZero(signWord(negative), y);
        return;
    }
    // No number has a larger exponent; broken words must not reach beyond the table.
    if (a.exponent > LARGEST_EXPONENT) a.exponent = LARGEST_EXPONENT;
    storeTangent(x, reduceAngle(a), ofRadians, negative, y);
}

void qsindeg(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    qfloat radians;
    qdiv(qrad2deg, x, radians);
    Extended a;
    if (radians[1] >= SINE_LIMIT) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        storeZero(signWord(negative), y);
    } else {
        storeSine(x, reduceDegrees(x), ofDegrees, 0, negative, y);
    }
}

void qcosdeg(const qfloat x, qfloat y) {
    qfloat radians;
    qdiv(qrad2deg, x, radians);
    if (cosineRefused(radians)) {
        refuse(y);
    } else {
        storeSine(x, reduceDegrees(x), ofDegrees, 1, false, y);
    }
}

void qtandeg(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    storeTangent(x, reduceDegrees(x), ofDegrees, negative, y);
}
