// SPDX-License-Identifier: MIT
//
// Sine, cosine, tangent.
#include "qtrig.h"

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
constexpr uint32_t sineLimit = 33102;

constexpr int64_t largestExponent = int64_t{overflowExponent} - exponentBias;

void refuse(qfloat y) {
    qclear(y);
    mtherr("qsin", 3);
}

// y = sin(a + turns * pi/2), negated on demand.
void storeSine(const Extended& a, unsigned turns, bool negate, qfloat y) {
    const Reduced r = reduceAngle(a);
    const unsigned quadrant = r.quadrant + turns;
    Extended value;
    bool negative = (quadrant & 2) != 0;
    if ((quadrant & 1) == 0) {
        sinCos(r.magnitude, &value, nullptr);
        negative = negative != r.negative;
    } else {
        sinCos(r.magnitude, nullptr, &value);
    }
    store(value, signWord(negative != negate), 0, y);
}

// Whether the cosine of x is refused: it is the sine of pi/2 - x, whose limit applies to the rounded
// difference.
bool cosineRefused(const qfloat x) {
    if (x[1] < sineLimit - 1) return false;
    qfloat quarterTurn, difference;
    storePi(1, 0, quarterTurn);
    qsub(x, quarterTurn, difference);
    return difference[1] >= sineLimit;
}

} // namespace
} // namespace trig

using namespace trig;

void qsin(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    Extended a;
    if (x[1] >= sineLimit) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        storeZero(signWord(negative), y);
    } else {
        storeSine(a, 0, negative, y);
    }
}

void qcos(const qfloat x, qfloat y) {
    Extended a;
    if (cosineRefused(x)) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        qmov(qone, y);
    } else {
        storeSine(a, 1, false, y);
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
    if (a.exponent > largestExponent) a.exponent = largestExponent;
    const Reduced r = reduceAngle(a);
    const bool odd = (r.quadrant & 1) != 0; // tan(r + pi/2) = -1 / tan r
    Extended s, c, t;
    sinCos(r.magnitude, &s, &c);
    if (odd) {
        limb::divide(c, s, t);
    } else {
        limb::divide(s, c, t);
    }
    limb::store(t, signWord(negative != (r.negative != odd)), 0, y);
}
