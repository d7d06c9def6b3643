// SPDX-License-Identifier: MIT
//
// Every constant, word by word, against MPFR.
#include "oracle.h"

#include "qfloat.h"
#include "qlimb.h"

namespace oracle::test_constants {

using Words = std::array<uint32_t, 16>;

// The 16 words in storage of a value rounded to the nearest.
Words storage(const Real& value) {
    const Number q = mpfr_zero_p(value) ? Number{} : store(roundToEven(value));
    Words words{};
    std::copy(q.begin(), q.end(), words.begin());
    return words;
}

Words wordsOf(qconstant& constant) {
    Words words;
    std::copy(constant, constant + 16, words.begin());
    return words;
}

void expectValue(qconstant& constant, const Real& value, const char* name) {
    EXPECT_EQ(wordsOf(constant), storage(value)) << name;
}

void expectInteger(qconstant& constant, unsigned long value, const char* name) {
    Real v;
    mpfr_set_ui(v, value, MPFR_RNDN);
    expectValue(constant, v, name);
}

void expectDouble(qconstant& constant, double value, const char* name) {
    Real v;
    mpfr_set_d(v, value, MPFR_RNDN);
    expectValue(constant, v, name);
}

// 10^n for any n, to `precision` bits.
void powerOfTen(Real& value, long n) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(n < 0 ? -n : n));
    Real exact(static_cast<mpfr_prec_t>(mpz_sizeinbase(power.get_mpz_t(), 2)));
    mpfr_set_z(exact, power.get_mpz_t(), MPFR_RNDN);
    if (n < 0) {
        mpfr_ui_div(value, 1, exact, MPFR_RNDN);
    } else {
        mpfr_set(value, exact, MPFR_RNDN);
    }
}

TEST(Constants, WholeNumbersAndOneHalf) {
    expectInteger(qzero, 0, "qzero");
    expectDouble(qhalf, 0.5, "qhalf");
    expectInteger(qone, 1, "qone");
    expectInteger(qtwo, 2, "qtwo");
    expectInteger(qthree, 3, "qthree");
    expectInteger(qnine, 9, "qnine");
    expectInteger(qten, 10, "qten");
    expectInteger(q32, 32, "q32");
    expectInteger(q32bitmax, 4294967296, "q32bitmax");
    expectInteger(q31bitmax, 2147483648, "q31bitmax");
}

TEST(Constants, LayoutOfOneHalfOneAndTwo) {
    const Words one = {0, 0x8001, 0, 0x80000000};
    EXPECT_EQ(wordsOf(qone), one);
    const Words half = {0, 0x8000, 0, 0x80000000};
    EXPECT_EQ(wordsOf(qhalf), half);
    const Words two = {0, 0x8002, 0, 0x80000000};
    EXPECT_EQ(wordsOf(qtwo), two);
}

TEST(Constants, TheLogarithmsAreTheTrueValues) {
    Real value;
    mpfr_const_log2(value, MPFR_RNDN);
    expectValue(qlog2, value, "qlog2");

    Real first(32);
    mpfr_const_log2(first, MPFR_RNDZ);
    expectValue(C1, first, "C1");
    EXPECT_EQ(C1[3], 0xB17217F7U);

    mpfr_sub(value, value, first, MPFR_RNDN);
    expectValue(C2, value, "C2");
    EXPECT_EQ(C2[1], 0x7FE0U);
}

TEST(Constants, PiAndItsFractionsAreTheTrueValues) {
    Real pi;
    mpfr_const_pi(pi, MPFR_RNDN);
    expectValue(qpi, pi, "qpi");

    Real value;
    mpfr_sqrt(value, pi, MPFR_RNDN);
    mpfr_ui_div(value, 2, value, MPFR_RNDN);
    expectValue(oneopi, value, "oneopi is 2 / sqrt(pi) in spite of its name");

    mpfr_ui_div(value, 180, pi, MPFR_RNDN);
    expectValue(qrad2deg, value, "qrad2deg");
}

TEST(Constants, RootsOfTwoAndTangents) {
    Real value;
    mpfr_sqrt_ui(value, 2, MPFR_RNDN);
    expectValue(qsqrt2, value, "qsqrt2");

    Real tangent;
    mpfr_sub_ui(tangent, value, 1, MPFR_RNDN);
    expectValue(qtp8, tangent, "qtp8");
    mpfr_add_ui(tangent, value, 1, MPFR_RNDN);
    expectValue(qt3p8, tangent, "qt3p8");

    mpfr_const_pi(value, MPFR_RNDN);
    mpfr_div_ui(value, value, 8, MPFR_RNDN);
    mpfr_tan(tangent, value, MPFR_RNDN);
    expectValue(qtp8, tangent, "qtp8 is tan(pi/8)");
    mpfr_mul_ui(value, value, 3, MPFR_RNDN);
    mpfr_tan(tangent, value, MPFR_RNDN);
    expectValue(qt3p8, tangent, "qt3p8 is tan(3 pi/8)");
}

TEST(Constants, EulersConstantIsTheTrueValue) {
    Real value;
    mpfr_const_euler(value, MPFR_RNDN);
    expectValue(qeul, value, "qeul");
}

TEST(Constants, SquareRootGuessIsHeldInDoubles) {
    expectDouble(qsq0, 0.313567057, "qsq0");
    expectDouble(qsq1, 0.890194099, "qsq1");
    expectDouble(qsq2, -0.204405847, "qsq2");
}

TEST(Constants, SmallIsTenToMinus80) {
    Real value;
    powerOfTen(value, -80);
    expectValue(qsmall, value, "qsmall");
}

TEST(Constants, PowersOfTenAndTheirReciprocals) {
    static_assert(sizeof qtens == sizeof(uint32_t) * 14 * 16);
    static_assert(sizeof qmtens == sizeof(uint32_t) * 14 * 16);
    for (int i = 0; i < 14; ++i) {
        Real value;
        powerOfTen(value, 1L << (13 - i));
        expectValue(qtens[i], value, ("qtens " + std::to_string(i)).c_str());
        powerOfTen(value, -(1L << (13 - i)));
        expectValue(qmtens[i], value, ("qmtens " + std::to_string(i)).c_str());
    }
}

TEST(Constants, ExtendedPowersOfTenHaveEveryBit) {
    constexpr int BITS = 64 * limb::COUNT;
    for (unsigned k = 0; k < 14; ++k) {
        mpfr_t power;
        mpfr_init2(power, BITS);
        mpfr_ui_pow_ui(power, 10, 1UL << k, MPFR_RNDN);
        mpz_t mantissa;
        mpz_init(mantissa);
        const mpfr_exp_t exponent = mpfr_get_z_2exp(mantissa, power) + BITS;
        uint64_t limbs[limb::COUNT] = {};
        mpz_export(limbs, nullptr, -1, sizeof limbs[0], 0, 0, mantissa);
        EXPECT_EQ(exponent, limb::TENS[k].exponent) << k;
        for (int i = 0; i < limb::COUNT; ++i) EXPECT_EQ(limbs[i], limb::TENS[k].limb[i]) << k << " " << i;
        mpz_clear(mantissa);
        mpfr_clear(power);
    }
}

TEST(Constants, RoundBitIsOneUnitOfWord13) {
    Words expected{};
    expected[13] = 1;
    EXPECT_EQ(wordsOf(rndbit), expected);
}

TEST(Constants, MasksClearTheLowestBits) {
    static_assert(sizeof bmask == sizeof(uint32_t) * 32);
    for (int k = 0; k < 32; ++k) {
        EXPECT_EQ(bmask[k], static_cast<uint32_t>((uint64_t{0xFFFFFFFF} << k) & 0xFFFFFFFF)) << k;
    }
}

TEST(ErrorCodes, MtherrStoresTheCode) {
    for (int code = 0; code <= 6; ++code) {
        merror = -1;
        mtherr("anything", code);
        EXPECT_EQ(merror, code);
    }
    merror = 0;
}

TEST(ErrorCodes, NoRoutineClearsTheCode) {
    merror = 6;
    Number q{};
    int64_t i = 3;
    double d = 0.5;
    char text[32];
    qadd(qone, qtwo, q.data());
    qsub(qone, qtwo, q.data());
    qmul(qthree, qtwo, q.data());
    qmuli(qthree, qtwo, q.data());
    qdiv(qthree, qtwo, q.data());
    qcmp(qthree, qtwo);
    ltoq(&i, q.data());
    etoq(&d, q.data());
    qtoe(q.data(), &d);
    asctoq("1.5", q.data());
    qtoasc(q.data(), text, 3);
    qdecexp(q.data(), 2);
    qifrac(q.data(), &i, q.data());
    qfloor(qthree, q.data());
    qround(qthree, q.data());
    qfixintegers(q.data());
    qldexp(qthree, 2, q.data());
    qfrexp(qthree, &i, q.data());
    EXPECT_EQ(merror, 6);
    merror = 0;
}

TEST(ErrorCodes, TextsStandInTheOrderOfTheCodes) {
    EXPECT_STREQ(MATH_ERROR_TEXTS[0], "unknown");
    EXPECT_STREQ(MATH_ERROR_TEXTS[1], "result is imaginary");
    EXPECT_STREQ(MATH_ERROR_TEXTS[2], "singularity");
    EXPECT_STREQ(MATH_ERROR_TEXTS[3], "overflow");
    EXPECT_STREQ(MATH_ERROR_TEXTS[4], "underflow");
    EXPECT_STREQ(MATH_ERROR_TEXTS[5], "total loss of precision");
    EXPECT_STREQ(MATH_ERROR_TEXTS[6], "partial loss of precision");
}

} // namespace oracle::test_constants
