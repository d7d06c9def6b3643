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
constexpr uint32_t SINE_LIMIT = 33102;

constexpr int64_t LARGEST_EXPONENT = int64_t{OVERFLOW_EXPONENT} - EXPONENT_BIAS;

void refuse(qfloat y) {
    qclear(y);
    mtherr("qsin", 3);
}

// y = sin(r + turns * pi/2), negated on demand. A sine that is exactly zero is a plain zero.
void storeSine(const Reduced& r, unsigned turns, bool negate, qfloat y) {
    const unsigned quadrant = r.quadrant + turns;
    Extended value = limb::ONE;
    bool negative = (quadrant & 2) != 0;
    if (isZero(r.magnitude.limb)) {
        if ((quadrant & 1) == 0) {
            qclear(y);
            return;
        }
    } else if ((quadrant & 1) == 0) {
        sinCos(r.magnitude, &value, nullptr);
        negative = negative != r.negative;
    } else {
        sinCos(r.magnitude, nullptr, &value);
    }
    store(value, signWord(negative != negate), 0, y);
}

// y = tan r, negated on demand. A zero has the sign asked for, a pole is the overflow value.
void storeTangent(const Reduced& r, bool negate, qfloat y) {
    const bool odd = (r.quadrant & 1) != 0; // tan(r + pi/2) = -1 / tan r
    if (isZero(r.magnitude.limb)) {
        storeZero(signWord(negate), y);
        if (odd) qinfin(y);
        return;
    }
    Extended s, c, t;
    sinCos(r.magnitude, &s, &c);
    if (odd) {
        limb::divide(c, s, t);
    } else {
        limb::divide(s, c, t);
    }
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
        storeSine(reduceAngle(a), 0, negative, y);
    }
}

void qcos(const qfloat x, qfloat y) {
    Extended a;
    if (cosineRefused(x)) {
        refuse(y);
    } else if (!loadMagnitude(x, a)) {
        qmov(qone, y);
    } else {
        storeSine(reduceAngle(a), 1, false, y);
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
    storeTangent(reduceAngle(a), negative, y);
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
        storeSine(reduceDegrees(x), 0, negative, y);
    }
}

void qcosdeg(const qfloat x, qfloat y) {
    qfloat radians;
    qdiv(qrad2deg, x, radians);
    if (cosineRefused(radians)) {
        refuse(y);
    } else {
        storeSine(reduceDegrees(x), 1, false, y);
    }
}

void qtandeg(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    storeTangent(reduceDegrees(x), negative, y);
}
