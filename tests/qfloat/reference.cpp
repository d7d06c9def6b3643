// SPDX-License-Identifier: MIT
#include "reference.h"

#include "reference_trig.h"

namespace reference {

void integer(int64_t n, qfloat q) {
    ltoq(&n, q);
}

namespace {

// Halves or doubles a number that is not zero.
void scaleBinary(qfloat q, int n) {
    if (q[1] != 0) q[1] = static_cast<uint32_t>(static_cast<int64_t>(q[1]) + n);
}

} // namespace

void squareRoot(const qfloat x, qfloat y) {
    if (qisneg(x)) {
        const bool zero = x[1] == 0;
        qclear(y);
        if (zero) {
            qneg(y);
        } else {
            merror = 1;
        }
        return;
    }
    if (x[1] == 0) {
        qclear(y);
        return;
    }
    qfloat m, a = {}, b = {};
    qmov(x, m);
    m[1] = 0x8000;
    qmul(qsq2, m, b);
    qadd(qsq1, b, b);
    qmul(m, b, b);
    qadd(qsq0, b, b);
    const int64_t e = static_cast<int64_t>(x[1]) - 0x8000;
    b[1] = static_cast<uint32_t>(0x8000 + (e >> 1));
    if (e & 1) qmul(qsqrt2, b, b);
    for (int step = 0; step < 8; ++step) {
        qdiv(b, x, a);
        qadd(a, b, b);
        scaleBinary(b, -1);
    }
    qmov(b, y);
}

void exponential(const qfloat x, qfloat y) {
    if (x[1] >= 0x8010) {
        if (qisneg(x)) {
            qclear(y);
        } else {
            qinfin(y);
            merror = 3;
        }
        return;
    }
    if (x[1] == 0) {
        qmov(qone, y);
        return;
    }
    qfloat n = {}, r = {}, t = {}, fraction = {};
    int64_t whole;
    qdiv(qlog2, x, n);
    qadd(qhalf, n, n);
    qfloor(n, n);
    qifrac(n, &whole, fraction);
    qmul(n, C1, t);
    qsub(t, x, r);
    qmul(n, C2, t);
    qsub(t, r, r);
    scaleBinary(r, -1);
    hyperbolicTangent(r, t);
    qadd(qone, t, n);
    qsub(t, qone, r);
    qdiv(r, n, y);
    const int64_t sum = static_cast<int64_t>(y[1]) + whole;
    if (sum > 0x10000) {
        qinfin(y);
        merror = 3;
    } else if (sum < 1) {
        qclear(y);
    } else {
        y[1] = static_cast<uint32_t>(sum);
    }
}

namespace {

// ln m for sqrt(1/2) <= m < sqrt(2).
void logarithmOfMantissa(const qfloat m, qfloat y) {
    qfloat low = {}, high = {}, z = {}, w = {};
    qsub(qone, m, low);
    if (low[1] == 0) {
        qclear(y);
        return;
    }
    qadd(qone, m, high);
    qdiv(high, low, z);
    qmul(z, z, w);
    qfloat term, sum, quotient = {}, k;
    qmov(qone, term);
    qmov(qone, sum);
    for (int64_t odd = 3;; odd += 2) {
        integer(odd, k);
        qmul(w, term, term);
        qdiv(k, term, quotient);
        qadd(quotient, sum, sum);
        if (static_cast<int64_t>(sum[1]) - static_cast<int64_t>(quotient[1]) >= 352) break;
    }
    qmul(z, sum, y);
    scaleBinary(y, 1);
}

} // namespace

void logarithm(const qfloat x, qfloat y) {
    if (qisneg(x)) {
        qclear(y);
        merror = 1;
        return;
    }
    if (x[1] == 0) {
        qinfin(y);
        y[0] = oracle::NEGATIVE_SIGN;
        merror = 2;
        return;
    }
    qfloat m, half;
    qmov(qsqrt2, half);
    scaleBinary(half, -1);
    int64_t e = static_cast<int64_t>(x[1]) - 0x8000;
    qmov(x, m);
    m[1] = 0x8000;
    if (qcmp(m, half) < 0) {
        m[1] = 0x8001;
        --e;
    }
    logarithmOfMantissa(m, y);
    if (e == 0) return;
    qfloat n, t = {};
    integer(e, n);
    qmul(n, C2, t);
    qadd(t, y, y);
    qmul(n, C1, t);
    qadd(t, y, y);
}

namespace {

void throughLogarithm(const qfloat x, const qfloat y, qfloat z) {
    qfloat t = {};
    logarithm(x, t);
    qmul(y, t, t);
    qclear(z);
    exponential(t, z);
}

void square(qfloat base, qfloat z, uint64_t n) {
    for (n >>= 1; n != 0; n >>= 1) {
        qmul(base, base, base);
        if (n & 1) qmul(base, z, z);
    }
}

} // namespace

void integerPower(const qfloat x, const qfloat y, qfloat z) {
    int64_t n;
    qfloat fraction;
    qifrac(y, &n, fraction);
    if (qcmp(x, qtwo) == 0) {
        const int64_t exponent = 0x8002 + n - 1;
        qmov(qone, z);
        if (exponent > 0x10000) {
            qinfin(z);
            merror = 3;
        } else if (exponent <= 0) {
            qclear(z);
        } else {
            z[1] = static_cast<uint32_t>(exponent);
        }
        return;
    }
    const int64_t magnitude = n < 0 ? -n : n;
    if (magnitude == 2147483647) {
        power(x, y, z);
        return;
    }
    if (x[1] == 0) {
        qclear(z);
        if (n == 0) qmov(qone, z);
        if (n < 0) qinfin(z);
        return;
    }
    qfloat base, result;
    qmov(x, base);
    qabs(base);
    qmov(magnitude % 2 != 0 ? base : qone, result);
    square(base, result, static_cast<uint64_t>(magnitude));
    if (magnitude % 2 != 0 && qisneg(x)) qneg(result);
    if (n < 0 && result[1] == 0) {
        qinfin(result);
        merror = 3;
    } else if (n < 0) {
        qdiv(result, qone, result);
    }
    qmov(result, z);
}

void power(const qfloat x, const qfloat y, qfloat z) {
    if (x[1] == 0) {
        const bool toZero = y[1] == 0;
        const bool toNegative = !toZero && qisneg(y);
        qmov(toZero ? qone : qzero, z);
        if (toNegative) {
            qinfin(z);
            merror = 3;
        }
        return;
    }
    qfloat whole, magnitude, limit;
    qfloor(y, whole);
    qmov(y, magnitude);
    qabs(magnitude);
    integer(415032, limit);
    if (qcmp(whole, y) == 0 && qcmp(magnitude, limit) < 0) {
        integerPower(x, y, z);
    } else {
        throughLogarithm(x, y, z);
    }
}

void factorial(const qfloat x, qfloat y) {
    double value = 0;
    if (!qisneg(x)) qtoe(x, &value);
    if (qisneg(x) || value > 1754.0) {
        merror = qisneg(x) ? 1 : 3;
        qclear(y);
        qinfin(y);
        return;
    }
    const auto n = static_cast<int64_t>(value);
    double product = 1, factor = 1;
    while (factor < static_cast<double>(n) && factor < 18) {
        factor += 1;
        product *= factor;
    }
    qfloat q, k;
    etoq(&product, q);
    etoq(&factor, k);
    for (auto left = n - static_cast<int64_t>(factor); left > 0; --left) {
        qadd(qone, k, k);
        qmuli(k, q, q);
    }
    qmov(q, y);
}

} // namespace reference

namespace oracle {

bool operator==(const Outcome& a, const Outcome& b) {
    return a.value == b.value && a.code == b.code;
}

std::ostream& operator<<(std::ostream& out, const Outcome& o) {
    return out << show(o.value) << " code " << o.code;
}

namespace {

template <class Call> Outcome outcome(Number& output, const Call& call) {
    merror = 0;
    call();
    Outcome o{output, merror};
    merror = 0;
    return o;
}

} // namespace

Outcome run(Unary routine, const Number& x) {
    Number y = overflowValue(0);
    const Outcome first = outcome(y, [&] { routine(x.data(), y.data()); });
    Number same = x;
    const Outcome aliased = outcome(same, [&] { routine(same.data(), same.data()); });
    EXPECT_EQ(first, aliased) << "for " << show(x);
    return first;
}

Outcome run(Binary routine, const Number& a, const Number& b) {
    Number c = overflowValue(0);
    const Outcome first = outcome(c, [&] { routine(a.data(), b.data(), c.data()); });
    Number left = a, right = b;
    EXPECT_EQ(first, outcome(left, [&] { routine(left.data(), b.data(), left.data()); }))
        << show(a) << show(b);
    EXPECT_EQ(first, outcome(right, [&] { routine(a.data(), right.data(), right.data()); }))
        << show(a) << show(b);
    if (a == b) {
        Number all = a;
        EXPECT_EQ(first, outcome(all, [&] { routine(all.data(), all.data(), all.data()); })) << show(a);
    }
    return first;
}

Number number(double d) {
    Number q;
    etoq(&d, q.data());
    return q;
}

Number neighbor(const Number& q, int units) {
    Number n = q;
    const mpz_class mantissa = wordsToInteger(q.data(), 3, 13) + units;
    if (mantissa >= power2(MANTISSA_BITS)) {
        integerToWords(mantissa >> 1, n.data(), 3, 13);
        ++n[1];
    } else if (mantissa < power2(MANTISSA_BITS - 1)) { // the places below are half as large
        integerToWords(power2(MANTISSA_BITS) + (mantissa - power2(MANTISSA_BITS - 1)), n.data(), 3, 13);
        --n[1];
    } else {
        integerToWords(mantissa, n.data(), 3, 13);
    }
    return n;
}

Number negated(Number q) {
    q[0] = ~q[0];
    return q;
}

Number randomWithin(Random& random, int64_t low, int64_t high, bool positive) {
    Number q = randomMantissa(random);
    q[0] = positive || random.Chance(50) ? 0 : NEGATIVE_SIGN;
    q[1] = static_cast<uint32_t>(BIAS + random.Between(low, high));
    return q;
}

} // namespace oracle
