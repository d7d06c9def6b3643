// SPDX-License-Identifier: MIT
#include "exact.h"

#include <algorithm>
#include <cstdio>

namespace exact {

using namespace oracle;

namespace {

constexpr mpfr_prec_t BITS = MANTISSA_BITS, WORKING_BITS = 1300;

// q = the number nearest to x, ties away from 0; false where there is none with an exponent word in
// 1 .. 0xFFFF.
bool toNumber(const Real& x, Number& q) {
    if (mpfr_regular_p(x) == 0) return false;
    const Rounded nearest = roundHalfUp(x);
    if (nearest.exponent < 1 || nearest.exponent > 0xFFFF) return false;
    q = store(nearest);
    return true;
}

int64_t between(Engine& engine, int64_t low, int64_t high) {
    return low + static_cast<int64_t>(engine() % static_cast<uint64_t>(high - low + 1));
}

bool chance(Engine& engine, int percent) {
    return between(engine, 1, 100) <= percent;
}

// A normalized mantissa: dense, sparse, or short; short ones are often moved by a few units.
void drawMantissa(Engine& engine, Number& q) {
    switch (between(engine, 0, 3)) {
    case 0:
    case 1:
        for (size_t i = 3; i < 14; ++i) q[i] = static_cast<uint32_t>(engine() >> 32);
        break;
    case 2:
        for (int n = 0; n < 5; ++n)
            q[static_cast<size_t>(between(engine, 3, 13))] |= 1U << between(engine, 0, 31);
        break;
    default:
        q[3] = static_cast<uint32_t>(engine() >> 32) << between(engine, 0, 31);
        if (chance(engine, 50)) q[13] = static_cast<uint32_t>(between(engine, 0, 3));
    }
    q[3] |= 0x80000000;
}

Number draw(Engine& engine, const Range& range) {
    Number q{};
    q[0] = range.isPositive || chance(engine, 50) ? 0 : NEGATIVE_SIGN;
    q[1] = static_cast<uint32_t>(BIAS + between(engine, range.lowest, range.highest));
    drawMantissa(engine, q);
    return q;
}

Number drawSecond(const Function& f, Engine& engine) {
    Number q{};
    if (f.second.lowest > f.second.highest) return q;
    q = draw(engine, f.second);
    if (!f.isSecondWhole) return q;
    qfloat whole;
    qround(q.data(), whole);
    std::copy(whole, whole + 14, q.begin());
    return q;
}

bool isWithin(const Number& x, const Range& range) {
    const int64_t exponent = static_cast<int64_t>(x[1]) - BIAS;
    return exponent >= range.lowest && exponent <= range.highest && (x[0] == 0 || !range.isPositive);
}

// Both x and f(x) as they are, scaled to whole units of the last place.
struct Local {
    Real value{WORKING_BITS}, slope{WORKING_BITS}; // of f in its units, over x in its
};

// False where f is not a number there.
bool lookAround(const Function& f, const Arguments& a, bool varySecond, Local& local) {
    Real x(a.x), y(a.y), moved(WORKING_BITS), beside(WORKING_BITS);
    const mpfr_srcptr varied = varySecond ? y : x;
    const int64_t exponent = mpfr_get_exp(varied);
    mpfr_set_ui_2exp(moved, 1, exponent - 300, MPFR_RNDN);
    mpfr_add(moved, moved, varied, MPFR_RNDN);
    f.truth(local.value, x, y, MPFR_RNDN);
    f.truth(beside, varySecond ? x : moved, varySecond ? moved : y, MPFR_RNDN);
    if (mpfr_regular_p(local.value) == 0 || mpfr_regular_p(beside) == 0) return false;
    const int64_t scale = mpfr_get_exp(local.value) - BITS;
    mpfr_sub(local.slope, beside, local.value, MPFR_RNDN);
    mpfr_mul_2si(local.slope, local.slope, 300 - BITS - scale, MPFR_RNDN);
    mpfr_mul_2si(local.value, local.value, -scale, MPFR_RNDN);
    return mpfr_regular_p(local.slope) != 0;
}

// The count of units t, at most about 2^bits, for which value + t slope comes closest to a half modulo 1: the
// way to go is made of multiples of the denominators of the slope's convergents.
void unitsToMidpoint(const Local& local, int64_t bits, mpfr_ptr t) {
    Real left(WORKING_BITS), above(WORKING_BITS), rest(WORKING_BITS), count(WORKING_BITS), step(WORKING_BITS);
    Real lower(WORKING_BITS), denominator(WORKING_BITS);
    mpfr_frac(left, local.value, MPFR_RNDN);
    mpfr_d_sub(left, mpfr_sgn(mpfr_srcptr(left)) < 0 ? -0.5 : 0.5, left, MPFR_RNDN);
    mpfr_floor(rest, local.slope);
    mpfr_sub(rest, local.slope, rest, MPFR_RNDN);
    mpfr_set_ui(above, 1, MPFR_RNDN);
    mpfr_set_ui(lower, 0, MPFR_RNDN);
    mpfr_set_ui(denominator, 1, MPFR_RNDN);
    mpfr_set_ui(t, 0, MPFR_RNDN);
    for (bool isNegative = false; mpfr_regular_p(rest) != 0 && mpfr_get_exp(denominator) <= bits;
         isNegative = !isNegative) {
        mpfr_div(count, left, rest, MPFR_RNDN);
        mpfr_round(count, count);
        mpfr_fms(left, count, rest, left, MPFR_RNDN);
        mpfr_neg(left, left, MPFR_RNDN);
        if (isNegative) mpfr_neg(count, count, MPFR_RNDN);
        mpfr_fma(t, count, denominator, t, MPFR_RNDN);
        mpfr_div(step, above, rest, MPFR_RNDN); // the next convergent
        mpfr_floor(step, step);
        mpfr_fms(above, step, rest, above, MPFR_RNDN);
        mpfr_neg(above, above, MPFR_RNDN);
        mpfr_swap(above, rest);
        mpfr_fma(lower, step, denominator, lower, MPFR_RNDN);
        mpfr_swap(lower, denominator);
    }
}

// Moves an argument so that the value comes next to a midpoint: by the least number of units (0 bits), which
// is the rounded inverse of the midpoint, or by up to 2^bits.
Arguments movedToMidpoint(const Function& f, const Arguments& a, bool varySecond, int64_t bits) {
    Local local;
    if (!lookAround(f, a, varySecond, local)) return a;
    Real t(WORKING_BITS), moved(WORKING_BITS);
    unitsToMidpoint(local, bits, t);
    if (mpfr_zero_p(mpfr_srcptr(t)) == 0 && mpfr_get_exp(t) > 130) return a;
    const Real varied(varySecond ? a.y : a.x);
    mpfr_mul_2si(t, t, mpfr_get_exp(varied) - BITS, MPFR_RNDN);
    mpfr_add(moved, varied, t, MPFR_RNDN);
    Arguments result = a;
    Number& number = varySecond ? result.y : result.x;
    if (!toNumber(moved, number) || !isWithin(result.x, f.whole)) return a;
    return result;
}

// A short number between 2^-356 and 2^-40, or that next to 1.
Number drawSpecial(const Function& f, Engine& engine) {
    const int64_t exponents[] = {-175, -176, -351, -352, between(engine, -356, -40)};
    Number q{};
    q[0] = chance(engine, 50) ? NEGATIVE_SIGN : 0;
    q[1] = static_cast<uint32_t>(BIAS + exponents[between(engine, 0, 4)]);
    q[3] =
        0x80000000U | (chance(engine, 50) ? 0 : static_cast<uint32_t>(engine()) << between(engine, 16, 31));
    if (chance(engine, 20)) drawMantissa(engine, q);
    if (f.isSpecialNextToOne) {
        Number sum{};
        qadd(qone, q.data(), sum.data());
        return sum;
    }
    if (f.whole.isPositive) q[0] = 0;
    return q;
}

// A constant times a small whole number or a power of two, and up to three units beside it.
Number drawBesideBranch(const Function& f, Engine& engine) {
    const uint32_t* const constants[] = {qone, qone, qthree, qlog2, qsqrt2, qpi, qtp8, qt3p8};
    Number q{};
    qfloat factor;
    const int64_t n = chance(engine, 70) ? 1 : between(engine, 1, 200);
    ltoq(&n, factor);
    qmul(factor, constants[between(engine, 0, 7)], q.data());
    const int64_t shift = chance(engine, 70) ? between(engine, -9, 9) : between(engine, -400, 400);
    q[1] = static_cast<uint32_t>(q[1] + shift);
    q[0] = f.whole.isPositive || chance(engine, 50) ? 0 : NEGATIVE_SIGN;
    Real moved(BITS);
    mpfr_set(moved, Real(q), MPFR_RNDN);
    for (int64_t i = between(engine, -3, 3); i != 0; i += i > 0 ? -1 : 1) {
        if (i > 0) mpfr_nextabove(moved);
        if (i < 0) mpfr_nextbelow(moved);
    }
    toNumber(moved, q);
    return q;
}

// The true value rounded to nearest, ties away from 0; false where it is out of the range.
bool expected(const Function& f, const Arguments& a, Number& z) {
    Real value(BITS + 1); // cut behind the first bit that is not stored: enough to round
    f.truth(value, Real(a.x), Real(a.y), MPFR_RNDZ);
    return toNumber(value, z);
}

Number computed(const Function& f, const Arguments& a) {
    Number z{};
    merror = 0;
    f.ours(a.x.data(), a.y.data(), z.data());
    return z;
}

std::string words(const Number& q) {
    std::string text;
    for (const uint32_t word : q) {
        char part[16];
        std::snprintf(part, sizeof part, " %08X", static_cast<unsigned>(word));
        text += part;
    }
    return text;
}

} // namespace

Arguments randomArguments(const Function& f, Engine& engine) {
    return {draw(engine, chance(engine, 50) ? f.usual : f.whole), drawSecond(f, engine)};
}

Arguments hardArguments(const Function& f, Engine& engine) {
    Arguments a = {draw(engine, f.usual), drawSecond(f, engine)};
    const int64_t kind = between(engine, 0, 9);
    if (kind < 2) a.x = drawSpecial(f, engine);
    if (kind == 2) a.x = drawBesideBranch(f, engine);
    if (!isWithin(a.x, f.whole)) a.x = draw(engine, f.usual);
    if (kind < 3) return a;
    const bool hasSecond = f.second.lowest <= f.second.highest;
    const bool varySecond = hasSecond && !f.isSecondWhole && chance(engine, 50);
    return movedToMidpoint(f, a, varySecond, kind == 3 ? 0 : between(engine, 90, 110));
}

Verdict judge(const Function& f, const Arguments& a) {
    Number z{};
    if (!expected(f, a, z)) return Verdict::OutOfRange;
    return computed(f, a) == z && merror == 0 ? Verdict::Right : Verdict::Wrong;
}

std::string describe(const Function& f, const Arguments& a) {
    Number z{};
    expected(f, a, z);
    return f.name + " of" + words(a.x) + "\n and" + words(a.y) + "\n  is" + words(computed(f, a)) + "\n not" +
           words(z);
}

} // namespace exact
