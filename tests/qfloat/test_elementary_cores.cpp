// SPDX-License-Identifier: MIT
//
// The extended-precision cores keep the errors that their header states: powers and the hyperbolic functions
// rest on them.
#include "../cases.h"
#include "qelem.h"
#include "reference.h"

#include <algorithm>
#include <cmath>

namespace oracle::test_elementary_cores {

using limb::Extended;

constexpr int CASES = cases(4000);

Extended randomExtended(Random& random, int64_t low, int64_t high) {
    Extended x;
    for (auto& limb : x.limb) limb = random.Next();
    x.limb[limb::COUNT - 1] |= limb::TOP_BIT;
    x.exponent = random.Between(low, high);
    return x;
}

void toReal(const Extended& x, Real& r) {
    mpz_class z;
    mpz_import(z.get_mpz_t(), limb::COUNT, -1, sizeof(uint64_t), 0, 0, x.limb);
    mpfr_set_z_2exp(r, z.get_mpz_t(), x.exponent - 64 * limb::COUNT, MPFR_RNDN);
}

// The binary logarithm of |got / exact - 1|.
double relativeError(const Extended& got, const Real& exact) {
    Real value, difference;
    toReal(got, value);
    mpfr_sub(difference, value, exact, MPFR_RNDN);
    if (mpfr_zero_p(difference)) return -1000;
    mpfr_div(difference, difference, exact, MPFR_RNDN);
    mpfr_abs(difference, difference, MPFR_RNDN);
    mpfr_log2(difference, difference, MPFR_RNDN);
    return mpfr_get_d(difference, MPFR_RNDN);
}

// Of ln x: 2^-373, and 2^-377 of the larger of it and 1 where it is 2^-5 or more, 2^-377 of it below.
double logarithmBound(const Real& exact) {
    const double size = std::log2(mpfr_get_d(exact, MPFR_RNDN));
    return size < -5 || size > 0 ? -377 : std::min(-373.0, -377 - size);
}

class ElementaryCores : public Seeded {};

TEST_F(ElementaryCores, ExponentialIsWithin2ToMinus377) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Extended x = randomExtended(random, random.Chance(50) ? -380 : -3, random.Chance(50) ? 0 : 20);
        for (const bool negative : {false, true}) {
            Extended y;
            elem::exp(x, negative, y);
            Real exact;
            toReal(x, exact);
            if (negative) mpfr_neg(exact, exact, MPFR_RNDN);
            mpfr_exp(exact, exact, MPFR_RNDN);
            EXPECT_LE(relativeError(y, exact), -377) << x.exponent;
        }
    }
}

TEST_F(ElementaryCores, LogarithmKeepsItsBound) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Extended x = randomExtended(random, random.Chance(50) ? -32768 : -1, random.Chance(50) ? 1 : 32768);
        x.limb[0] &= ~uint64_t{0xFFFFFFFF}; // 352 bits
        Extended y;
        const bool negative = elem::log(x, y);
        Real exact;
        toReal(x, exact);
        mpfr_log(exact, exact, MPFR_RNDN);
        EXPECT_EQ(negative, mpfr_sgn(exact) < 0);
        mpfr_abs(exact, exact, MPFR_RNDN);
        EXPECT_LE(relativeError(y, exact), logarithmBound(exact)) << x.exponent;
    }
}

TEST_F(ElementaryCores, LogarithmKeepsItsBoundNextToOne) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number d = randomWithin(random, random.Chance(50) ? -340 : -8, -2, false), q{};
        qadd(d.data(), qone, q.data());
        if (q == number(1)) continue;
        Extended x, y;
        limb::load(q.data(), x);
        const bool negative = elem::log(x, y);
        Real exact;
        mpfr_log(exact, Real(q), MPFR_RNDN);
        EXPECT_EQ(negative, mpfr_sgn(exact) < 0);
        mpfr_abs(exact, exact, MPFR_RNDN);
        EXPECT_LE(relativeError(y, exact), logarithmBound(exact)) << show(q);
    }
}

TEST_F(ElementaryCores, SquareRootIsWithin2ToMinus379) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Extended x = randomExtended(random, -40000, 40000);
        if (random.Chance(10)) { // next to a power of two
            for (auto& limb : x.limb) limb = random.Chance(50) ? ~uint64_t{0} : 0;
            x.limb[limb::COUNT - 1] |= limb::TOP_BIT;
        }
        Extended y;
        elem::sqrt(x, y);
        Real exact;
        toReal(x, exact);
        mpfr_sqrt(exact, exact, MPFR_RNDN);
        EXPECT_LE(relativeError(y, exact), -379) << x.exponent;
        EXPECT_NE(y.limb[limb::COUNT - 1] & limb::TOP_BIT, 0U);
    }
}

// All fractions in [0, ln 2), their ends included: e^r - 1 must not wrap at 1.
TEST_F(ElementaryCores, ExpFractionIsWithin64Units) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Extended r = randomExtended(random, -1, 0);
        Real value, ln2;
        toReal(r, value);
        mpfr_const_log2(ln2, MPFR_RNDN);
        if (random.Chance(10)) limb::load(qlog2, r); // the constant is rounded down
        toReal(r, value);
        if (mpfr_cmp(value, ln2) >= 0) continue;
        uint64_t fraction[limb::COUNT], s[limb::COUNT];
        limb::copy(r.limb, fraction);
        limb::shiftDown(fraction, static_cast<int>(-r.exponent));
        elem::expFraction(fraction, s);
        const Extended got{{s[0], s[1], s[2], s[3], s[4], s[5]}, 0};
        Real units;
        toReal(got, units);
        mpfr_expm1(value, value, MPFR_RNDN);
        mpfr_sub(units, units, value, MPFR_RNDN);
        mpfr_mul_2si(units, units, 384, MPFR_RNDN);
        EXPECT_LE(std::fabs(mpfr_get_d(units, MPFR_RNDN)), 64.0);
    }
}

} // namespace oracle::test_elementary_cores
