// SPDX-License-Identifier: MIT
#include "reference_trig.h"

#include "reference.h"

namespace reference {

namespace {

constexpr uint32_t ALL_ONES = 0xFFFFFFFF;

void halve(qfloat q) {
    if (q[1] != 0) --q[1];
}

void twice(qfloat q) {
    if (q[1] != 0) ++q[1];
}

void piOver(uint32_t halvings, qfloat q) {
    qmov(qpi, q);
    q[1] -= halvings;
}

void magnitude(const qfloat x, qfloat a) {
    qmov(x, a);
    a[0] = 0;
}

// sum = 1 + z/(2*3) + z^2/(2*3*4*5) + ...
void oddSeries(const qfloat z, qfloat sum) {
    qfloat term, factor;
    qmov(qone, term);
    qmov(qone, sum);
    int64_t n = 1;
    do {
        for (int i = 0; i < 2; ++i) {
            integer(++n, factor);
            qdiv(factor, term, term);
        }
        qmul(term, z, term);
        qadd(term, sum, sum);
    } while (int64_t{sum[1]} - int64_t{term[1]} < 352);
}

// d = 1 + z/(3 + z/(5 + ... + z/last))
void oddFraction(const qfloat z, int64_t last, qfloat d) {
    qfloat quotient, number;
    integer(last, d);
    for (int64_t n = last - 2; n >= 1; n -= 2) {
        qdiv(d, z, quotient);
        integer(n, number);
        qadd(number, quotient, d);
    }
}

// The integer t modulo 8.
int64_t moduloEight(const qfloat t) {
    qfloat eighths, fraction;
    int64_t k = 0;
    if (t[1] == 0) return 0;
    qmov(t, eighths);
    if (eighths[1] > 3) {
        eighths[1] -= 3;
    } else {
        qclear(eighths);
    }
    qfloor(eighths, eighths);
    if (eighths[1] != 0) eighths[1] += 3;
    qsub(eighths, t, eighths);
    qifrac(eighths, &k, fraction);
    return k;
}

} // namespace

void sine(const qfloat x, qfloat y) {
    if (x[1] >= 33102) {
        qclear(y);
        mtherr("qsin", 3);
        return;
    }
    const bool negative = qisneg(x) != 0;
    qfloat a, p, q, t, r, z, sum;
    magnitude(x, a);
    piOver(1, p);
    qdiv(p, a, q);
    qfloor(q, t);
    const int64_t k = moduloEight(t) & 3;
    qsub(t, q, r);
    qmul(r, p, r);
    if ((k & 1) != 0) qsub(r, p, r);
    qmul(r, r, z);
    qneg(z);
    oddSeries(z, sum);
    qmul(r, sum, y);
    if (negative != (k >= 2)) y[0] = ALL_ONES;
}

void cosine(const qfloat x, qfloat y) {
    qfloat p, d;
    piOver(1, p);
    qsub(x, p, d);
    sine(d, y);
}

void tangent(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    qfloat a, p, t, r, z, d;
    magnitude(x, a);
    piOver(1, p);
    qadd(a, p, t);
    qdiv(qpi, t, t);
    qfloor(t, t);
    qmul(qpi, t, t);
    qsub(t, a, r);
    qmul(r, r, z);
    qneg(z);
    oddFraction(z, 89, d);
    qdiv(d, r, y);
    if (negative) qneg(y);
}

void arcTangent(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    qfloat a, base, u, above, below, z, d, number;
    magnitude(x, a);
    if (qcmp(a, qt3p8) > 0) {
        piOver(1, base);
        qdiv(a, qone, u);
        qneg(u);
    } else if (qcmp(a, qtp8) > 0) {
        piOver(2, base);
        qsub(qone, a, above);
        qadd(qone, a, below);
        qdiv(below, above, u);
    } else {
        qclear(base);
        qmov(a, u);
    }
    qmul(u, u, z);
    if (z[1] == 0) {
        qmov(u, y);
    } else {
        int64_t n = 157;
        integer(n, d);
        for (int64_t k = 78; k >= 1; --k, n -= 2) {
            integer(k * k, number);
            qmul(number, z, number);
            qdiv(d, number, number);
            integer(n - 2, d);
            qadd(number, d, d);
        }
        qdiv(d, u, y);
    }
    qadd(base, y, y);
    if (negative) qneg(y);
}

void arcSine(const qfloat x, qfloat y) {
    qfloat a, t, u, root;
    const uint32_t sign = x[0];
    magnitude(x, a);
    if (qcmp(a, qone) > 0) {
        mtherr("qasin", 1);
        qclear(y);
        return;
    }
    if (qcmp(a, qhalf) <= 0) {
        qmul(a, a, t);
        qsub(t, qone, t);
        squareRoot(t, root);
        qdiv(root, a, u);
        arcTangent(u, y);
    } else {
        qsub(a, qone, t);
        halve(t);
        squareRoot(t, u);
        qsub(t, qone, t);
        squareRoot(t, root);
        qdiv(root, u, u);
        arcTangent(u, t);
        twice(t);
        piOver(1, u);
        qsub(t, u, y);
    }
    y[0] = sign;
}

void arcCosine(const qfloat x, qfloat y) {
    qfloat a, p;
    magnitude(x, a);
    if (qcmp(a, qone) > 0) {
        mtherr("qacos", 1);
        qclear(y);
        return;
    }
    arcSine(x, a);
    piOver(1, p);
    qsub(a, p, y);
}

void hyperbolicSine(const qfloat x, qfloat y) {
    qfloat e, reciprocal;
    if (x[1] < 2) {
        qclear(y);
    } else if (x[1] > 32767) {
        exponential(x, e);
        qdiv(e, qone, reciprocal);
        qsub(reciprocal, e, y);
        halve(y);
    } else {
        qmul(x, x, e);
        oddSeries(e, reciprocal);
        qmul(x, reciprocal, y);
    }
}

void hyperbolicCosine(const qfloat x, qfloat y) {
    qfloat e, reciprocal;
    exponential(x, e);
    qdiv(e, qone, reciprocal);
    qadd(reciprocal, e, y);
    halve(y);
}

void hyperbolicTangent(const qfloat x, qfloat y) {
    const bool negative = qisneg(x) != 0;
    qfloat a, z, d, e, upper, lower;
    magnitude(x, a);
    if (qcmp(a, qone) < 0) {
        qmul(a, a, z);
        oddFraction(z, 81, d);
        qdiv(d, a, y);
    } else if (a[1] >= 0x800F) { // from 2^14 on; the exponential leaves its range on the way to 2^15
        qmov(qone, y);
    } else {
        exponential(a, e);
        qdiv(e, qone, z);
        qsub(z, e, upper);
        qadd(z, e, lower);
        qdiv(lower, upper, y);
    }
    if (negative) y[0] = ALL_ONES;
}

} // namespace reference
