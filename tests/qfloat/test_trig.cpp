// SPDX-License-Identifier: MIT
//
// Special results, limits, codes and identities of the circular, inverse and hyperbolic functions.
#include "../cases.h"
#include "trig_arguments.h"

#include "qtrig.h"

namespace oracle::test_trig {

using namespace trigtest;

Number number(const std::string& text) {
    Number x = decimal(text);
    if (text[0] == '-') x[0] = NEGATIVE_SIGN;
    return x;
}

Number power(int64_t exponent) {
    return scaled("1", exponent);
}

Number negative(Number x) {
    x[0] = NEGATIVE_SIGN;
    return x;
}

// pi * 2^-halvings to the last bit.
Number piOver(int halvings) {
    Real pi(MANTISSA_BITS);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_div_2ui(pi, pi, static_cast<unsigned long>(halvings), MPFR_RNDN);
    return exactly(pi);
}

void expectResult(const char* name, const Number& x, const Number& y, int code = 0) {
    EXPECT_EQ(valueOf(find(name), x), y) << name << " of " << show(x);
    EXPECT_EQ(merror, code) << name << " of " << show(x);
}

void expectClose(const char* name, const Number& x, double ulps) {
    Real exact(700);
    find(name).exact(exact, Real(x), MPFR_RNDN);
    const Number y = valueOf(find(name), x);
    EXPECT_LE(errorInUlps(y, exact), ulps) << name << " of " << show(x);
    EXPECT_EQ(merror, 0) << name << " of " << show(x);
}

const Number ZERO{};

TEST(Trig, ZeroKeepsItsSignInOddFunctions) {
    for (const char* name : {"sin", "tan", "atan", "asin", "tanh"}) {
        expectResult(name, ZERO, ZERO);
        expectResult(name, negative(ZERO), negative(ZERO));
    }
    expectResult("sinh", ZERO, ZERO);
    expectResult("sinh", negative(ZERO), ZERO);
    for (const char* name : {"cos", "cosh"}) {
        expectResult(name, ZERO, number("1"));
        expectResult(name, negative(ZERO), number("1"));
    }
    expectResult("acos", ZERO, piOver(1));
    expectResult("acos", negative(ZERO), piOver(1));
}

// An exponent word of zero is the number zero whatever the other words hold; so is an all-zero mantissa.
TEST(Trig, OddlyWrittenZerosCountAsZero) {
    Number noExponent = number("1.25"), noMantissa{};
    noExponent[1] = 0;
    noMantissa[1] = 0x8001;
    for (const char* name : {"sin", "tan", "atan", "asin", "sinh", "tanh"}) {
        expectResult(name, noExponent, ZERO);
        expectResult(name, noMantissa, ZERO);
    }
    for (const char* name : {"cos", "cosh"}) {
        expectResult(name, noExponent, number("1"));
        expectResult(name, noMantissa, number("1"));
    }
    expectResult("acos", noExponent, piOver(1));
}

TEST(Trig, AnyNonZeroSignWordIsNegative) {
    for (const Function& f : FUNCTIONS) {
        Number x = number("0.7"), odd = x;
        x[0] = NEGATIVE_SIGN;
        odd[0] = 1;
        const Number expected = valueOf(f, x);
        Number got = valueOf(f, odd);
        EXPECT_EQ(got[0] != 0, expected[0] != 0) << f.name;
        got[0] = expected[0];
        EXPECT_EQ(got, expected) << f.name;
    }
}

TEST(Trig, SineIsRefusedFromTwoToThe333On) {
    for (const int exponent : {333, 334, 340, 32766}) {
        expectResult("sin", power(exponent), ZERO, 3);
        expectResult("sin", negative(power(exponent)), ZERO, 3);
    }
    expectResult("sin", overflowValue(0), ZERO, 3);
    Number below = power(332);
    for (size_t i = 3; i < 14; ++i) below[i] = 0xFFFFFFFF;
    expectClose("sin", below, 0.500001);
    expectClose("sin", power(300), 0.500001);
    expectClose("sin", negative(power(300)), 0.500001);
}

// The cosine's limit applies to pi/2 - x.
TEST(Trig, CosineIsRefusedHalfPiBehindTheSinesLimit) {
    Real value(1000);
    const auto beside = [&value](double offset) {
        mpfr_set_si_2exp(value, 1, 333, MPFR_RNDN);
        mpfr_add_d(value, value, offset, MPFR_RNDN);
        return exactly(value);
    };
    expectClose("cos", beside(0), 0.500001);
    expectClose("cos", beside(1.5625), 0.500001);
    expectResult("cos", beside(1.578125), ZERO, 3);
    expectClose("cos", negative(beside(-1.578125)), 0.500001);
    expectResult("cos", negative(beside(-1.5625)), ZERO, 3);
    expectResult("cos", negative(beside(0)), ZERO, 3);
    expectResult("cos", power(340), ZERO, 3);
    expectResult("cos", overflowValue(NEGATIVE_SIGN), ZERO, 3);
}

TEST(Trig, TangentHasNoLimit) {
    for (const int exponent : {333, 340, 5000, 32766}) {
        expectClose("tan", power(exponent), 0.500001);
        expectClose("tan", negative(power(exponent)), 0.500001);
    }
    expectClose("tan", overflowValue(0), 0.500001); // a number like any other: 2^32768 (1 - 2^-352)
}

TEST(Trig, ExponentWordsBeyondTheFormatDoNoHarm) {
    Number broken = overflowValue(0);
    broken[1] = 0xFFFFFFFF;
    expectResult("tan", broken, valueOf(find("tan"), overflowValue(0)));
    expectResult("sin", broken, ZERO, 3);
    expectResult("cos", broken, ZERO, 3);
    expectResult("atan", broken, piOver(1));
    expectResult("asin", broken, ZERO, 1);
    expectResult("acos", broken, ZERO, 1);
    expectResult("sinh", broken, overflowValue(0), 3);
    expectResult("cosh", broken, overflowValue(0), 3);
    expectResult("tanh", broken, number("1"));
}

TEST(Trig, TangentOfAPoleIsHuge) {
    const Number y = valueOf(find("tan"), piOver(1));
    EXPECT_EQ(merror, 0);
    EXPECT_GT(mpfr_cmpabs(Real(y), Real(decimal("1e100"))), 0);
    expectClose("tan", piOver(1), 0.500001);
}

TEST(Trig, SinesOfMultiplesOfPiAreWhatThePrecisionOfPiLeaves) {
    expectClose("sin", piOver(0), 0.500001);
    expectClose("cos", piOver(1), 0.500001);
    EXPECT_LT(mpfr_cmpabs(Real(valueOf(find("sin"), piOver(0))), Real(decimal("1e-105"))), 0);
    expectResult("cos", piOver(0), number("-1"));
    expectResult("sin", piOver(1), number("1"));
}

TEST(Trig, ArcTangentOfOneIsAQuarterOfPi) {
    expectResult("atan", number("1"), piOver(2));
    expectResult("atan", number("-1"), negative(piOver(2)));
    expectResult("atan", number("1e9000"), piOver(1));
    expectResult("atan", number("-1e9000"), negative(piOver(1)));
    expectResult("atan", overflowValue(0), piOver(1));
    expectClose("atan", number("1e50"), 0.500001);
    expectClose("atan", number("1e-50"), 0.500001);
    expectResult("atan", power(-32768), power(-32768));
}

TEST(Trig, ArcSineAndArcCosineAtTheEnds) {
    expectResult("asin", number("1"), piOver(1));
    expectResult("asin", number("-1"), negative(piOver(1)));
    expectResult("acos", number("1"), ZERO);
    expectResult("acos", number("-1"), piOver(0));
    expectResult("asin", power(-32768), power(-32768));
    expectResult("acos", power(-32768), piOver(1));
}

TEST(Trig, ArcSineAndArcCosineAboveOneAreDomainErrors) {
    Number barely = number("1");
    barely[13] = 1;
    for (const char* name : {"asin", "acos"}) {
        for (const Number& x :
             {barely, number("1.0000001"), number("2"), number("1e9000"), overflowValue(0)}) {
            expectResult(name, x, ZERO, 1);
            expectResult(name, negative(x), ZERO, 1);
        }
    }
}

TEST(Trig, HyperbolicTangentGoesOverToOneWithoutACode) {
    for (const char* x : {"123", "200", "22713", "22714", "32768", "1e10", "1e9000"}) {
        expectResult("tanh", number(x), number("1"));
        expectResult("tanh", number(std::string("-") + x), number("-1"));
    }
    expectResult("tanh", overflowValue(NEGATIVE_SIGN), number("-1"));
    Number below = number("1");
    --below[1];
    for (size_t i = 3; i < 14; ++i) below[i] = 0xFFFFFFFF;
    expectResult("tanh", number("122.2"), below); // 1 - 2^-352
    for (const char* x : {"0.999", "1", "-1", "0.0625", "1e-9000"}) expectClose("tanh", number(x), 0.500001);
}

// The exponential is in range where it is below 2^32768, for x < 32768 ln 2 = 22713.0468...
TEST(Trig, HyperbolicSineAndCosineOverflowWithTheExponential) {
    Real limit(MANTISSA_BITS);
    mpfr_const_log2(limit, MPFR_RNDD);
    mpfr_mul_2ui(limit, limit, 15, MPFR_RNDN);
    for (const Number& x : {number("22713.0468"), exactly(limit)}) {
        expectClose("sinh", x, 0.500001);
        expectClose("sinh", negative(x), 0.500001);
        expectClose("cosh", x, 0.500001);
        expectClose("cosh", negative(x), 0.500001);
    }
    mpfr_nextabove(limit);
    for (const Number& x : {exactly(limit), number("22713.0469"), number("22714"), number("32767.9"),
                            number("32768"), number("1e10"), number("1e9000")}) {
        expectResult("sinh", x, overflowValue(0), 3);
        expectResult("sinh", negative(x), overflowValue(NEGATIVE_SIGN), 3);
        expectResult("cosh", x, overflowValue(0), 3);
        expectResult("cosh", negative(x), overflowValue(0), 3);
    }
    expectResult("sinh", overflowValue(NEGATIVE_SIGN), overflowValue(NEGATIVE_SIGN), 3);
    expectResult("cosh", overflowValue(NEGATIVE_SIGN), overflowValue(0), 3);
}

TEST(Trig, HyperbolicSineTakesTheSmallestExponentForZero) {
    expectResult("sinh", power(-32768), ZERO);
    expectResult("sinh", negative(power(-32768)), ZERO);
    expectResult("sinh", power(-32767), power(-32767));
    expectClose("sinh", number("0.5"), 0.500001);
    expectClose("sinh", number("-0.4999"), 0.500001);
}

TEST(Trig, PendingCodesAreNotCleared) {
    for (const Function& f : FUNCTIONS) {
        const Number x = number("0.5");
        Number y;
        merror = 6;
        f.ours(x.data(), y.data());
        EXPECT_EQ(merror, 6) << f.name;
    }
}

TEST(Trig, RefusedArgumentsMayBeWrittenOver) {
    Number x = power(340);
    qsin(x.data(), x.data());
    EXPECT_EQ(x, ZERO);
    x = power(340);
    qcos(x.data(), x.data());
    EXPECT_EQ(x, ZERO);
    x = number("-1e10");
    qsinh(x.data(), x.data());
    EXPECT_EQ(x, overflowValue(NEGATIVE_SIGN));
    x = number("-1");
    qacos(x.data(), x.data());
    EXPECT_EQ(x, piOver(0));
}

class TrigPairs : public Seeded {
protected:
    // outer(inner(x)) against x for |x| <= 1.  One rounding is a relative error of at most 2^-352; the inner
    // one counts `condition` times, and 2^-352 is at most one unit of the last place.
    void ExpectInverse(const char* inner, const char* outer, double condition, int64_t lowest) {
        for (int i = 0; i < cases(5000); ++i) {
            Number x = randomMantissa(random);
            x[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
            x[1] = static_cast<uint32_t>(BIAS + random.Between(lowest, 0));
            const Number back = valueOf(find(outer), valueOf(find(inner), x));
            EXPECT_LE(errorInUlps(back, Real(x)), condition + 1.001)
                << outer << "(" << inner << ") of " << show(x);
        }
    }
};

TEST_F(TrigPairs, ArcSineUndoesSine) {
    ExpectInverse("sin", "asin", 1.558, -400); // tan(1)
}
TEST_F(TrigPairs, SineUndoesArcSine) {
    ExpectInverse("asin", "sin", 1, -400);
}
TEST_F(TrigPairs, ArcTangentUndoesTangent) {
    ExpectInverse("tan", "atan", 1, -400);
}
TEST_F(TrigPairs, TangentUndoesArcTangent) {
    ExpectInverse("atan", "tan", 1.571, -400); // 2 arctan 1
}
TEST_F(TrigPairs, CosineUndoesArcCosine) {
    // y tan y for y = arccos x, |x| from 1/2 on: at most 2 pi/3 tan(pi/3)
    ExpectInverse("acos", "cos", 3.63, 0);
}

TEST_F(TrigPairs, ArcCosineOfTheNegativeIsTheSupplement) {
    for (int i = 0; i < cases(5000); ++i) {
        const Number x = randomArgument(random, find("acos"));
        Number opposite = x;
        opposite[0] = ~x[0];
        Real sum(1000), pi(1000);
        mpfr_add(sum, Real(valueOf(find("acos"), x)), Real(valueOf(find("acos"), opposite)), MPFR_RNDN);
        mpfr_const_pi(pi, MPFR_RNDN);
        mpfr_sub(sum, sum, pi, MPFR_RNDN);
        // Half a unit of each summand, of which one is below pi/2 and one below pi: 2^-352 + 2^-351.
        EXPECT_LT(mpfr_get_d(sum, MPFR_RNDA), std::ldexp(3.001, -352)) << show(x);
        EXPECT_GT(mpfr_get_d(sum, MPFR_RNDA), std::ldexp(-3.001, -352)) << show(x);
    }
}

TEST_F(TrigPairs, HyperbolicTangentIsTheQuotient) {
    for (int i = 0; i < cases(5000); ++i) {
        Number x = randomMantissa(random);
        x[1] = static_cast<uint32_t>(BIAS + random.Between(-400, 14));
        Real quotient(1000);
        mpfr_div(quotient, Real(valueOf(find("sinh"), x)), Real(valueOf(find("cosh"), x)), MPFR_RNDN);
        EXPECT_LE(errorInUlps(valueOf(find("tanh"), x), quotient), 3.001) << show(x);
    }
}

} // namespace oracle::test_trig
