// SPDX-License-Identifier: MIT
//
// The tables of the elementary functions, each limb recomputed with MPFR and GMP.
#include "oracle.h"
#include "qtrigcore.h"

namespace oracle::test_trig_tables {

std::string fromLimbs(const uint64_t* limbs) {
    mpz_class z;
    mpz_import(z.get_mpz_t(), limb::COUNT, -1, sizeof *limbs, 0, 0, limbs);
    return z.get_str(16);
}

// The nearest integer to 2^384 / d.
std::string inverse(const mpz_class& d) {
    return mpz_class((power2(385) / d + 1) / 2).get_str(16);
}

void expectPi(const limb::Extended& x, int64_t exponent) {
    Real pi(384);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpz_class mantissa;
    mpfr_get_z_2exp(mantissa.get_mpz_t(), pi);
    EXPECT_EQ(fromLimbs(x.limb), mantissa.get_str(16));
    EXPECT_EQ(x.exponent, exponent);
}

TEST(TrigTables, PiAndItsHalvesAreCutTrueValues) {
    expectPi(limb::WHOLE_PI, 2);
    expectPi(limb::HALF_PI, 1);
    expectPi(limb::quarterPi, 0);
}

TEST(TrigTables, RadiansPerDegreeIsACutTrueValue) {
    Real degree(384);
    Real pi(1000);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_div_ui(degree, pi, 180, MPFR_RNDN);
    mpz_class mantissa;
    mpfr_get_z_2exp(mantissa.get_mpz_t(), degree);
    EXPECT_EQ(fromLimbs(limb::RADIANS_PER_DEGREE.limb), mantissa.get_str(16));
    EXPECT_EQ(limb::RADIANS_PER_DEGREE.exponent, mpfr_get_exp(mpfr_srcptr(degree)));
}

TEST(TrigTables, TheInverseFactorialsAreCutTrueValues) {
    mpz_class factorial = 1;
    for (unsigned n = 2; n < limb::INVERSE_FACTORIAL_COUNT; ++n) {
        factorial *= n;
        EXPECT_EQ(fromLimbs(limb::INVERSE_FACTORIAL[n]), inverse(factorial)) << n;
        EXPECT_EQ(limb::INVERSE_FACTORIAL_ZEROS[n], limb::leadingZeros(limb::INVERSE_FACTORIAL[n])) << n;
    }
}

TEST(TrigTables, TheStepsOfTheExponentialAreTheNearestValues) {
    for (int level = 0; level < limb::EXP_LEVELS; ++level) {
        for (unsigned n = 0; n < (level == 0 ? 12 : 16); ++n) {
            Real value(1000);
            mpfr_set_ui_2exp(value, n, -4 * (level + 1), MPFR_RNDN);
            mpfr_expm1(value, value, MPFR_RNDN);
            mpfr_mul_2ui(value, value, 384, MPFR_RNDN);
            mpz_class nearest;
            mpfr_get_z(nearest.get_mpz_t(), value, MPFR_RNDN);
            EXPECT_EQ(fromLimbs(limb::EXP_STEPS[level][n]), nearest.get_str(16)) << level << ", " << n;
        }
    }
}

TEST(TrigTables, TheInverseOddNumbersAreCutTrueValues) {
    for (unsigned k = 1; k < limb::INVERSE_ODD_COUNT; ++k) {
        EXPECT_EQ(fromLimbs(limb::INVERSE_ODD[k]), inverse(2 * k + 1)) << k;
    }
}

TEST(TrigTables, TwoOverPiIsCutTrueValue) {
    Real value(64 * limb::TWO_OVER_PI_LIMBS + 200);
    mpfr_const_pi(value, MPFR_RNDN);
    mpfr_ui_div(value, 2, value, MPFR_RNDN);
    for (int i = 0; i < limb::TWO_OVER_PI_LIMBS; ++i) {
        mpfr_mul_2ui(value, value, 64, MPFR_RNDN);
        const unsigned long whole = mpfr_get_ui(value, MPFR_RNDD);
        mpfr_sub_ui(value, value, whole, MPFR_RNDN);
        ASSERT_EQ(limb::TWO_OVER_PI[i], whole) << i;
    }
}

} // namespace oracle::test_trig_tables
