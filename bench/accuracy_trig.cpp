// SPDX-License-Identifier: MIT
//
// Accuracy rows of the circular, inverse circular and hyperbolic functions.
#include "accuracy.h"
#include "qtrig.h"

namespace {

using accuracy::drawNumber;
using accuracy::fromMpfr;
using accuracy::Random;

constexpr long MANY = 50000;

using Function = void (*)(const qfloat, qfloat);
using Truth = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Draw = std::function<void(Random&, qfloat)>;

void add(const char* name, Function ours, Truth truth, const char* arguments, const Draw& draw) {
    accuracy::add({name, arguments, MANY, [draw](Random& random, qfloat x, qfloat) { draw(random, x); },
                   [ours](const qfloat x, const qfloat, qfloat z) { ours(x, z); },
                   [truth](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr) { truth(z, x, MPFR_RNDN); }});
}

Draw within(int64_t lowest, int64_t highest) {
    return [=](Random& random, qfloat x) { drawNumber(random, lowest, highest, false, x); };
}

// Up to two units of the last place to either side; a wrap in the last word is as good.
void disturb(Random& random, qfloat x) {
    x[13] += static_cast<uint32_t>(random.Between(0, 4)) - 2;
}

// The number nearest to k pi/2 for a random integer k of up to `bits` bits, and its neighbours.
void drawNearMultiple(Random& random, int64_t bits, qfloat x) {
    mpfr_t m, pi;
    mpfr_init2(m, 1300);
    mpfr_init2(pi, 1300);
    mpfr_set_zero(m, 1);
    for (int64_t left = random.Between(1, bits); left > 0; left -= 32) {
        const auto step = static_cast<unsigned long>(left < 32 ? left : 32);
        mpfr_mul_2ui(m, m, step, MPFR_RNDN);
        mpfr_add_ui(m, m, random.Next() >> (64 - step), MPFR_RNDN);
    }
    mpfr_add_ui(m, m, 1, MPFR_RNDN);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_mul(m, m, pi, MPFR_RNDN);
    mpfr_div_2ui(m, m, 1, MPFR_RNDN);
    fromMpfr(m, x);
    disturb(random, x);
    if (random.Next() % 2 != 0) qneg(x);
    mpfr_clear(m);
    mpfr_clear(pi);
}

// The constant and numbers from 2^-340 to 2^-4 beside it.
void drawBeside(Random& random, const qfloat constant, qfloat x) {
    qfloat offset;
    drawNumber(random, -340, -4, false, offset);
    qadd(constant, offset, x);
    disturb(random, x);
    if (random.Next() % 2 != 0) qneg(x);
}

Draw beside(const uint32_t* constant) {
    return [=](Random& random, qfloat x) { drawBeside(random, constant, x); };
}

// 1 - d for 2^-345 <= d < 2^-2, either sign.
void drawBelowOne(Random& random, qfloat x) {
    qfloat d;
    drawNumber(random, -344, -2, true, d);
    qsub(d, qone, x);
    if (random.Next() % 2 != 0) qneg(x);
}

void addCircular() {
    const struct {
        const char* name;
        Function ours;
        Truth truth;
    } functions[] = {{"qsin", qsin, mpfr_sin}, {"qcos", qcos, mpfr_cos}, {"qtan", qtan, mpfr_tan}};
    for (const auto& f : functions) {
        add(f.name, f.ours, f.truth, "1/16 to 16", within(-3, 4));
        add(f.name, f.ours, f.truth, "2^-400 to 2^-4", within(-399, -4));
        add(f.name, f.ours, f.truth, "16 to 2^332", within(5, 332));
        add(f.name, f.ours, f.truth, "next to multiples of pi/2 up to 2^300",
            [](Random& random, qfloat x) { drawNearMultiple(random, 299, x); });
    }
    add("qtan", qtan, mpfr_tan, "2^333 to 2^32767", within(334, 32767));
}

void addInverse() {
    add("qatn", qatn, mpfr_atan, "1/16 to 16", within(-3, 4));
    add("qatn", qatn, mpfr_atan, "whole range", within(-32767, 32767));
    add("qatn", qatn, mpfr_atan, "2^-400 to 2^400", within(-399, 400));
    add("qatn", qatn, mpfr_atan, "next to 1", beside(qone));
    add("qatn", qatn, mpfr_atan, "next to tan(pi/8)", beside(qtp8));
    add("qatn", qatn, mpfr_atan, "next to tan(3pi/8)", beside(qt3p8));
    const struct {
        const char* name;
        Function ours;
        Truth truth;
    } functions[] = {{"qasin", qasin, mpfr_asin}, {"qacos", qacos, mpfr_acos}};
    for (const auto& f : functions) {
        add(f.name, f.ours, f.truth, "1/16 to 1", within(-3, 0));
        add(f.name, f.ours, f.truth, "2^-400 to 2^-4", within(-399, -4));
        add(f.name, f.ours, f.truth, "1 - 2^-2 to 1 - 2^-345", drawBelowOne);
        add(f.name, f.ours, f.truth, "next to 1/2", beside(qhalf));
    }
}

void addHyperbolic() {
    const struct {
        const char* name;
        Function ours;
        Truth truth;
    } functions[] = {{"qsinh", qsinh, mpfr_sinh}, {"qcosh", qcosh, mpfr_cosh}, {"qtanh", qtanh, mpfr_tanh}};
    for (const auto& f : functions) {
        add(f.name, f.ours, f.truth, "1/32 to 32", within(-4, 5));
        add(f.name, f.ours, f.truth, "2^-400 to 2^-5", within(-399, -5));
        add(f.name, f.ours, f.truth, "32 to the limits", within(6, 15));
        add(f.name, f.ours, f.truth, "next to 1/2", beside(qhalf));
        add(f.name, f.ours, f.truth, "next to 1", beside(qone));
    }
}

const accuracy::Rows ROWS([] {
    addCircular();
    addInverse();
    addHyperbolic();
});

} // namespace
