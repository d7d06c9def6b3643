// SPDX-License-Identifier: MIT
//
// Accuracy rows of the elementary functions.
#include "accuracy.h"

namespace {

using accuracy::drawNumber;
using accuracy::Random;

constexpr long MANY = 50000;

using Unary = void (*)(const qfloat, qfloat);
using Binary = void (*)(const qfloat, const qfloat, qfloat);
using UnaryTruth = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Draw = std::function<void(Random&, qfloat, qfloat)>;

void addUnary(const char* name, Unary ours, UnaryTruth truth, const char* arguments, const Draw& draw) {
    accuracy::add({name, arguments, MANY, draw,
                   [ours](const qfloat x, const qfloat, qfloat z) { ours(x, z); },
                   [truth](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr) { truth(z, x, MPFR_RNDN); }});
}

void addPower(const char* name, Binary ours, const char* arguments, const Draw& draw) {
    accuracy::add({name, arguments, MANY, draw,
                   [ours](const qfloat x, const qfloat y, qfloat z) { ours(x, y, z); },
                   [](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y) { mpfr_pow(z, x, y, MPFR_RNDN); }});
}

Draw within(int64_t lowest, int64_t highest, bool positive) {
    return [=](Random& random, qfloat x, qfloat) { drawNumber(random, lowest, highest, positive, x); };
}

// 1 + d or 1 - d with 2^lowest <= |d| < 2^highest.
void drawNearOne(Random& random, int64_t lowest, int64_t highest, qfloat x) {
    qfloat d;
    drawNumber(random, lowest, highest, false, d);
    qadd(d, qone, x);
}

// The nearest numbers to k times a constant, and up to two units beside them.
void drawNearMultiple(Random& random, const qfloat constant, int64_t largest, qfloat x) {
    const int64_t k = random.Between(1, largest) * (random.Next() % 2 != 0 ? 1 : -1);
    ltoq(&k, x);
    qmul(constant, x, x);
    x[13] += static_cast<uint32_t>(random.Between(0, 4)) - 2; // a wrap in the last word is as good
}

void drawInteger(Random& random, int64_t low, int64_t high, qfloat x) {
    const int64_t n = random.Between(low, high);
    ltoq(&n, x);
}

// x = the number whose y-th power is 2^e for a random e near `bits`, rounded: the result is next to a limit.
void drawBase(int64_t bits, const qfloat y, qfloat x) {
    ltoq(&bits, x);
    qmul(qlog2, x, x);
    qdiv(y, x, x);
    qexp(x, x);
}

void addRoots() {
    addUnary("qsqrt", qsqrt, mpfr_sqrt, "whole range", within(-32767, 32767, true));
    addUnary("qsqrt", qsqrt, mpfr_sqrt, "1/4 to 4", within(-1, 2, true));
    addUnary("qsqrt", qsqrt, mpfr_sqrt, "next to squares", [](Random& random, qfloat x, qfloat) {
        drawNumber(random, -40, 40, true, x);
        for (int i = 8; i < 14; ++i) x[i] = 0;
        qmul(x, x, x);
        x[13] += static_cast<uint32_t>(random.Between(0, 2)) - 1;
    });
}

void addExponentials() {
    addUnary("qexp", qexp, mpfr_exp, "2^-360 to 2^-1", within(-359, -1, false));
    addUnary("qexp", qexp, mpfr_exp, "1/2 to 32", within(0, 5, false));
    addUnary("qexp", qexp, mpfr_exp, "up to the limits", within(6, 15, false));
    addUnary("qexp", qexp, mpfr_exp, "next to multiples of (ln 2)/2", [](Random& random, qfloat x, qfloat) {
        qfloat half;
        qmul(qlog2, qhalf, half);
        drawNearMultiple(random, half, 65000, x);
    });
}

void addLogarithms() {
    addUnary("qlog", qlog, mpfr_log, "whole range", within(-32767, 32767, true));
    addUnary("qlog", qlog, mpfr_log, "1/4 to 4", within(-1, 2, true));
    addUnary("qlog", qlog, mpfr_log, "1 +- 2^-350 to 2^-1",
             [](Random& random, qfloat x, qfloat) { drawNearOne(random, -350, -1, x); });
    addUnary("qlog", qlog, mpfr_log, "1 +- 2^-8 to 2^-3",
             [](Random& random, qfloat x, qfloat) { drawNearOne(random, -8, -3, x); });
    addUnary("qlog", qlog, mpfr_log, "next to sqrt(2) 2^n", [](Random& random, qfloat x, qfloat) {
        qmov(qsqrt2, x);
        x[1] += static_cast<uint32_t>(random.Between(0, 3)) - 2;
        x[static_cast<size_t>(random.Between(4, 13))] += static_cast<uint32_t>(random.Next());
    });
}

void addPowers() {
    addPower("qpow", qpow, "x 2^-20 to 2^20, y up to 2^10", [](Random& random, qfloat x, qfloat y) {
        drawNumber(random, -20, 20, true, x);
        drawNumber(random, -20, 10, false, y);
    });
    addPower("qpow", qpow, "results next to the limits, any y", [](Random& random, qfloat x, qfloat y) {
        drawNumber(random, -20, 300, false, y);
        drawBase(random.Between(30000, 32700) * (random.Next() % 2 != 0 ? 1 : -1), y, x);
    });
    addPower("qpow", qpow, "x next to 1, y large", [](Random& random, qfloat x, qfloat y) {
        drawNearOne(random, -300, -3, x);
        drawNumber(random, 1, 314, false, y);
    });
    addPower("qpow", qpow, "whole y up to 415031", [](Random& random, qfloat x, qfloat y) {
        drawInteger(random, -415031, 415031, y);
        if (y[1] == 0) qmov(qone, y);
        drawBase(random.Between(-32000, 32000), y, x);
    });
    addPower("qpowi", qpowi, "n up to 2^10", [](Random& random, qfloat x, qfloat y) {
        drawNumber(random, -20, 20, false, x);
        drawInteger(random, -1024, 1024, y);
    });
    addPower("qpowi", qpowi, "n up to 2^31", [](Random& random, qfloat x, qfloat y) {
        drawInteger(random, -2147483646, 2147483646, y);
        if (y[1] == 0) qmov(qone, y);
        drawBase(random.Between(-32000, 32000), y, x);
    });
}

void addFactorial() {
    accuracy::add({"qfac", "0 to 1754, each", 1755,
                   [](Random&, qfloat x, qfloat) {
                       static int64_t n = 0;
                       ltoq(&n, x);
                       ++n;
                   },
                   [](const qfloat x, const qfloat, qfloat z) { qfac(x, z); },
                   [](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr) {
                       mpfr_fac_ui(z, mpfr_get_ui(x, MPFR_RNDN), MPFR_RNDN);
                   }});
}

void addDecimalScaling() {
    accuracy::add({"qdecexp", "x 2^-100 to 2^100, n up to 9800", MANY,
                   [](Random& random, qfloat x, qfloat y) {
                       drawNumber(random, -100, 100, false, x);
                       drawInteger(random, -9800, 9800, y);
                   },
                   [](const qfloat x, const qfloat y, qfloat z) {
                       int64_t n;
                       qfloat fraction;
                       qifrac(y, &n, fraction);
                       qmov(x, z);
                       qdecexp(z, n);
                   },
                   [](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y) {
                       // The power is exact where it is whole: 10^9800 has 32,556 bits.
                       mpfr_t power;
                       mpfr_init2(power, 33000);
                       mpfr_ui_pow_ui(power, 10, static_cast<unsigned long>(labs(mpfr_get_si(y, MPFR_RNDN))),
                                      MPFR_RNDN);
                       if (mpfr_sgn(y) < 0) {
                           mpfr_div(z, x, power, MPFR_RNDN);
                       } else {
                           mpfr_mul(z, x, power, MPFR_RNDN);
                       }
                       mpfr_clear(power);
                   }});
}

void addRemainder() {
    const auto add = [](const char* arguments, int64_t reach) {
        accuracy::add({"qremain", arguments, MANY,
                       [reach](Random& random, qfloat x, qfloat y) {
                           drawNumber(random, -reach, reach, false, x);
                           drawNumber(random, -reach, reach, false, y);
                       },
                       [](const qfloat x, const qfloat y, qfloat z) { qremain(x, y, z); },
                       [](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y) { mpfr_fmod(z, y, x, MPFR_RNDN); }});
    };
    add("2^-60 to 2^60", 60);
    add("2^-16000 to 2^16000", 16000);
}

const accuracy::Rows ROWS([] {
    addRoots();
    addExponentials();
    addLogarithms();
    addPowers();
    addFactorial();
    addRemainder();
    addDecimalScaling();
});

} // namespace
