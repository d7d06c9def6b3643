// SPDX-License-Identifier: MIT
//
// Integers and fractions, floor, round, snap, scaling by two.
#include "../cases.h"
#include "model.h"
#include "oracle.h"

#include <limits>

#include "qfloat.h"

namespace oracle::test_convert {

constexpr int CASES = cases(100000);

class Convert : public Seeded {
protected:
    // Integers, halves, integers with a tiny offset, and anything.
    Number NearAnInteger() {
        if (random.Chance(25)) return randomOperand(random);
        Number q = randomMantissa(random);
        q[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        q[1] = static_cast<uint32_t>(BIAS + random.Between(-3, 356));
        if (random.Chance(50)) return q;
        Real value(800);
        mpfr_rint(value, Real(q), MPFR_RNDZ);
        if (random.Chance(40)) mpfr_add_d(value, value, random.Chance(50) ? 0.5 : -0.5, MPFR_RNDN);
        if (random.Chance(40)) {
            Real offset;
            mpfr_set_si_2exp(offset, random.Chance(50) ? 1 : -1, -random.Between(1, 351), MPFR_RNDN);
            mpfr_add(value, value, offset, MPFR_RNDN);
        }
        Real cut(MANTISSA_BITS);
        mpfr_set(cut, value, MPFR_RNDZ);
        return exactly(cut);
    }
};

// A result in a fresh array and one in the input's array.
using Unary = void (*)(const qfloat, qfloat);

void expectUnary(Unary routine, const Number& x, const Number& expected) {
    Number y = overflowValue(NEGATIVE_SIGN);
    merror = 0;
    routine(x.data(), y.data());
    EXPECT_EQ(y, expected) << show(x);
    Number same = x;
    routine(same.data(), same.data());
    EXPECT_EQ(same, expected) << "in place, " << show(x);
    EXPECT_EQ(merror, 0);
}

TEST_F(Convert, FloorIsExact) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = NearAnInteger();
        Real expected;
        mpfr_floor(expected, Real(x));
        expectUnary(qfloor, x, exactly(expected));
    }
}

TEST(Floor, GoesDownForBothSigns) {
    expectUnary(qfloor, Number{}, Number{});
    expectUnary(qfloor, decimal("0.5"), Number{});
    expectUnary(qfloor, decimal("-0.5"), decimal("-1"));
    expectUnary(qfloor, decimal("-1e-9000"), decimal("-1"));
    expectUnary(qfloor, decimal("-3"), decimal("-3"));
    expectUnary(qfloor, decimal("-3.25"), decimal("-4"));
    expectUnary(qfloor, decimal("3.99"), decimal("3"));
    expectUnary(qfloor, decimal("-1.5"), decimal("-2"));
    expectUnary(qfloor, decimal("1e300"), decimal("1e300"));
    expectUnary(qfloor, overflowValue(NEGATIVE_SIGN), overflowValue(NEGATIVE_SIGN));
}

TEST(Floor, WithoutFractionBitsIsTheNumberItself) {
    for (const int64_t integerBits : {351, 352, 353, 384, 32767}) {
        const Number x = store({true, BIAS + integerBits, power2(352) - 1});
        if (integerBits >= 352) expectUnary(qfloor, x, x);
    }
    const Number half = store({true, BIAS + 351, power2(352) - 1});
    expectUnary(qfloor, half, store({true, BIAS + 352, power2(351)}));
}

TEST_F(Convert, RoundIsTheFloorOfXPlusOneHalf) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = NearAnInteger();
        Real floor;
        mpfr_floor(floor, Real(x));
        // Rounding the sum down keeps its floor: every integer below 2^1000 is representable here.
        Real expected(1200);
        mpfr_add_d(expected, Real(x), 0.5, MPFR_RNDD);
        mpfr_floor(expected, expected);
        if (x[1] > BIAS + 352) mpfr_set(expected, Real(x), MPFR_RNDN);
        expectUnary(qround, x, exactly(expected));
    }
}

TEST(Round, FractionsThatASubtractionWouldFlushStillCount) {
    const mpz_class integer = power2(351); // 2^340 with eleven fraction bits
    expectUnary(qround, store({false, BIAS + 341, integer + 2047}),
                store({false, BIAS + 341, integer + 2048}));
    expectUnary(qround, store({false, BIAS + 341, integer + 1024}),
                store({false, BIAS + 341, integer + 2048}));
    expectUnary(qround, store({false, BIAS + 341, integer + 1023}), store({false, BIAS + 341, integer}));
    expectUnary(qround, store({true, BIAS + 341, integer + 1024}), store({true, BIAS + 341, integer}));
    expectUnary(qround, store({true, BIAS + 341, integer + 1025}), store({true, BIAS + 341, integer + 2048}));
}

TEST(Round, HalvesGoUp) {
    expectUnary(qround, decimal("2.5"), decimal("3"));
    expectUnary(qround, decimal("-2.5"), decimal("-2"));
    expectUnary(qround, decimal("0.5"), decimal("1"));
    expectUnary(qround, decimal("-0.5"), Number{});
    expectUnary(qround, decimal("0.49999"), Number{});
    expectUnary(qround, decimal("-0.3"), Number{});
    expectUnary(qround, decimal("-0.75"), decimal("-1"));
    expectUnary(qround, decimal("1e-9000"), Number{});
    expectUnary(qround, decimal("-1e-9000"), Number{});
    expectUnary(qround, decimal("-7"), decimal("-7"));
    expectUnary(qround, overflowValue(0), overflowValue(0));
}

// ---------------------------------------------------------------------------------------------------------

struct Parts {
    int64_t integer;
    Number fraction;
};

Parts split(const Number& x) {
    Parts p{-77, overflowValue(NEGATIVE_SIGN)};
    qifrac(x.data(), &p.integer, p.fraction.data());
    return p;
}

TEST_F(Convert, QifracSplitsExactly) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = NearAnInteger();
        Parts p = split(x);
        const int64_t integerBits = static_cast<int64_t>(x[1]) - BIAS;
        Number same = x;
        int64_t sameInteger = -1;
        qifrac(same.data(), &sameInteger, same.data());
        EXPECT_EQ(same, p.fraction) << "in place";
        EXPECT_EQ(sameInteger, p.integer) << "in place";
        Real whole;
        Real fraction;
        mpfr_trunc(whole, Real(x));
        mpfr_sub(fraction, Real(x), whole, MPFR_RNDN);
        if (integerBits < 1) {
            EXPECT_EQ(p.integer, 0);
            EXPECT_EQ(p.fraction, x);
            continue;
        }
        mpfr_abs(fraction, fraction, MPFR_RNDN);
        EXPECT_EQ(p.fraction, exactly(fraction)) << show(x);
        const int64_t saturated = x[0] != 0 ? -2147483647 : 2147483647;
        EXPECT_EQ(p.integer, integerBits >= 32 ? saturated : mpfr_get_si(whole, MPFR_RNDN)) << show(x);
    }
}

TEST(Qifrac, TheFractionIsPositiveAlsoForNegativeNumbersBeyondOne) {
    EXPECT_EQ(split(decimal("-2.75")).integer, -2);
    EXPECT_EQ(split(decimal("-2.75")).fraction, decimal("0.75"));
    EXPECT_EQ(split(decimal("-1")).integer, -1);
    EXPECT_EQ(split(decimal("-1")).fraction, Number{});
}

TEST(Qifrac, BelowOneTheNumberItselfIsTheFractionWithItsSign) {
    EXPECT_EQ(split(decimal("-0.25")).integer, 0);
    EXPECT_EQ(split(decimal("-0.25")).fraction, decimal("-0.25"));
    EXPECT_EQ(split(Number{}).integer, 0);
    EXPECT_EQ(split(Number{}).fraction, Number{});
}

TEST(Qifrac, With32IntegerBitsTheIntegerSaturatesAndTheFractionIsExact) {
    EXPECT_EQ(split(decimal("5e9")).integer, 2147483647);
    EXPECT_EQ(split(decimal("5e9")).fraction, Number{});
    EXPECT_EQ(split(decimal("-5000000000.125")).integer, -2147483647);
    EXPECT_EQ(split(decimal("-5000000000.125")).fraction, decimal("0.125"));
    EXPECT_EQ(split(decimal("2147483647.5")).integer, 2147483647) << "31 bits: exact";
    EXPECT_EQ(split(decimal("2147483647.5")).fraction, decimal("0.5"));
    EXPECT_EQ(split(decimal("2147483648.5")).integer, 2147483647) << "32 bits";
    EXPECT_EQ(split(decimal("4294967295")).integer, 2147483647);
    EXPECT_EQ(split(decimal("1e9000")).integer, 2147483647);
    EXPECT_EQ(split(decimal("1e9000")).fraction, Number{});
}

// ---------------------------------------------------------------------------------------------------------

// Runs qfixintegers on 14 words with a word behind them, which must stay.
Number snapped(const Number& x) {
    Register r;
    std::copy(x.begin(), x.end(), r.begin());
    r[14] = 0xA5A5A5A5;
    merror = 0;
    qfixintegers(r.data());
    EXPECT_EQ(r[14], 0xA5A5A5A5) << "the word behind the number";
    EXPECT_EQ(merror, 0);
    Number y;
    std::copy(r.begin(), r.begin() + 14, y.begin());
    return y;
}

TEST(Qfixintegers, SnapsToAnIntegerCloserThanTenToMinus80) {
    EXPECT_EQ(snapped(decimal("2." + std::string(90, '9'))), decimal("3"));
    EXPECT_EQ(snapped(decimal("-2." + std::string(90, '9'))), decimal("-3"));
    EXPECT_EQ(snapped(decimal("0." + std::string(90, '9'))), decimal("1"));
    EXPECT_EQ(snapped(decimal("3." + std::string(84, '0') + "1")), decimal("3"));
    EXPECT_EQ(snapped(decimal("42")), decimal("42"));
}

TEST(Qfixintegers, LeavesWhatIsFurtherAway) {
    for (const std::string& text :
         {"2." + std::string(79, '9'), "3." + std::string(78, '0') + "1", std::string("2.5"),
          std::string("-0.75"), std::string("1e300"), std::string("-1e9000")}) {
        EXPECT_EQ(snapped(decimal(text)), decimal(text)) << text;
    }
}

TEST(Qfixintegers, ZeroIsNeverSnappedTo) {
    EXPECT_EQ(snapped(decimal("1e-90")), decimal("1e-90"));
    EXPECT_EQ(snapped(decimal("-1e-90")), decimal("-1e-90"));
    EXPECT_EQ(snapped(decimal("-1e-9000")), decimal("-1e-9000"));
    EXPECT_EQ(snapped(Number{}), Number{});
}

TEST_F(Convert, QfixintegersComparesWithTheConstantExactly) {
    const Number limit = decimal("1e-80");
    for (int i = 0; i < cases(20000) && !HasFailure(); ++i) {
        // An integer of at most 70 bits and an offset around 10^-80.
        Real value;
        mpfr_set_si(value, random.Between(1, 1000000000), MPFR_RNDN);
        mpfr_mul_2si(value, value, random.Between(0, 40), MPFR_RNDN);
        mpfr_floor(value, value);
        const Number integer = exactly(value);
        Real offset;
        mpfr_set_d(offset, static_cast<double>(random.Between(1, 3000)) / 1000, MPFR_RNDN);
        mpfr_mul(offset, offset, Real(limit), MPFR_RNDN);
        if (random.Chance(30)) mpfr_mul_2si(offset, offset, random.Between(-40, 40), MPFR_RNDN);
        if (random.Chance(50)) mpfr_neg(offset, offset, MPFR_RNDN);
        mpfr_add(value, value, offset, MPFR_RNDN);
        Real rounded(MANTISSA_BITS);
        mpfr_set(rounded, value, MPFR_RNDN);
        Number x = exactly(rounded);
        Number expected = integer;
        Real distance;
        mpfr_sub(distance, Real(x), Real(integer), MPFR_RNDN);
        if (mpfr_cmpabs(distance, Real(limit)) >= 0) expected = x;
        if (random.Chance(50)) x[0] = expected[0] = NEGATIVE_SIGN;
        EXPECT_EQ(snapped(x), expected) << show(x);
    }
}

// ---------------------------------------------------------------------------------------------------------

Number fromInteger(int64_t n) {
    Number q;
    q.fill(0xA5A5A5A5);
    merror = 0;
    ltoq(&n, q.data());
    EXPECT_EQ(merror, 0);
    return q;
}

TEST_F(Convert, LtoqTakesTheMagnitudeModulo2To32) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const auto n = static_cast<int64_t>(random.Next()) >> random.Between(0, 63);
        const uint64_t magnitude = n < 0 ? -static_cast<uint64_t>(n) : static_cast<uint64_t>(n);
        Real expected;
        mpfr_set_ui(expected, magnitude & 0xFFFFFFFF, MPFR_RNDN);
        if (n < 0) mpfr_neg(expected, expected, MPFR_RNDN);
        EXPECT_EQ(fromInteger(n), exactly(expected)) << n;
    }
}

TEST(Ltoq, TakesTheSignAndTheLow32Bits) {
    EXPECT_EQ(fromInteger(0), Number{});
    EXPECT_EQ(fromInteger(-5), decimal("-5"));
    EXPECT_EQ(fromInteger(4294967295), decimal("4294967295"));
    EXPECT_EQ(fromInteger(4294967296), Number{}) << "modulo 2^32";
    EXPECT_EQ(fromInteger(-4294967296), Number{});
    EXPECT_EQ(fromInteger(4294967297), decimal("1"));
    EXPECT_EQ(fromInteger(-4294967299), decimal("-3"));
    EXPECT_EQ(fromInteger(std::numeric_limits<int64_t>::max()), decimal("4294967295"));
    EXPECT_EQ(fromInteger(std::numeric_limits<int64_t>::min()), Number{});
}

// ---------------------------------------------------------------------------------------------------------

Number ldexp(const Number& x, int64_t n) {
    Number y = overflowValue(0);
    merror = 0;
    qldexp(x.data(), n, y.data());
    Number same = x;
    qldexp(same.data(), n, same.data());
    EXPECT_EQ(same, y) << "in place";
    EXPECT_EQ(merror, 0) << "qldexp sets no code";
    return y;
}

TEST_F(Convert, QldexpAddsToTheExponent) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomOperand(random);
        if (x[1] == 0) continue;
        const int64_t n = random.Chance(70) ? random.Between(-70000, 70000) : random.Between(-200000, 200000);
        const int64_t e = static_cast<int64_t>(x[1]) + n;
        Number expected = x;
        expected[1] = static_cast<uint32_t>(e);
        if (e > 0x10000 || n > 0x20000) {
            expected = overflowValue(x[0]);
        } else if (e < 1 || n < -0x20000) {
            expected = Number{};
        }
        EXPECT_EQ(ldexp(x, n), expected) << show(x) << n;
    }
}

TEST(Qldexp, EndsOfTheRange) {
    const Number one = decimal("1");
    EXPECT_EQ(ldexp(decimal("-3"), 4), decimal("-48"));
    EXPECT_EQ(ldexp(one, -40000), Number{});
    EXPECT_EQ(ldexp(one, 40000), overflowValue(0));
    EXPECT_EQ(ldexp(decimal("-1"), 40000), overflowValue(NEGATIVE_SIGN)) << "the sign is kept";
    EXPECT_EQ(ldexp(one, 0x7FFF), store({false, 0x10000, power2(351)})) << "exponent 0x10000 stands";
    EXPECT_EQ(ldexp(one, 0x8000), overflowValue(0));
    EXPECT_EQ(ldexp(one, -0x8000), store({false, 1, power2(351)}));
    EXPECT_EQ(ldexp(one, -0x8001), Number{});
}

TEST(Qldexp, CountsBeyond131072AreOutOfRangeWhateverTheNumber) {
    const Number one = decimal("-1");
    for (const int64_t n : {int64_t{131073}, int64_t{1} << 40, std::numeric_limits<int64_t>::max()}) {
        EXPECT_EQ(ldexp(one, n), overflowValue(NEGATIVE_SIGN)) << n;
        EXPECT_EQ(ldexp(one, -n), Number{}) << -n;
    }
    EXPECT_EQ(ldexp(one, std::numeric_limits<int64_t>::min()), Number{});
}

TEST(Qldexp, OfZeroRaisesTheExponentOverAnAllZeroMantissa) {
    Number expected{};
    expected[1] = 7;
    EXPECT_EQ(ldexp(Number{}, 7), expected);
    EXPECT_EQ(ldexp(Number{}, 0), Number{});
    EXPECT_EQ(ldexp(Number{}, -7), Number{});
    expected[1] = 0x10000;
    EXPECT_EQ(ldexp(Number{}, 0x10000), expected);
    EXPECT_EQ(ldexp(Number{}, 0x10001), overflowValue(0));
}

TEST_F(Convert, QfrexpTakesThePowerOfTwoOff) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomOperand(random);
        Number expected = x;
        int64_t e = -77;
        Number y = overflowValue(NEGATIVE_SIGN);
        qfrexp(x.data(), &e, y.data());
        if (x[1] != 0) expected[1] = 0x8000;
        EXPECT_EQ(y, expected);
        EXPECT_EQ(e, x[1] == 0 ? 0 : static_cast<int64_t>(x[1]) - BIAS);
        Number same = x;
        qfrexp(same.data(), &e, same.data());
        EXPECT_EQ(same, expected) << "in place";
    }
}

TEST(Qfrexp, SplitsIntoFractionAndExponent) {
    int64_t e = 0;
    Number y;
    qfrexp(decimal("-12").data(), &e, y.data());
    EXPECT_EQ(e, 4);
    EXPECT_EQ(y, decimal("-0.75"));
    qfrexp(Number{}.data(), &e, y.data());
    EXPECT_EQ(e, 0);
    EXPECT_EQ(y, Number{});
}

} // namespace oracle::test_convert
