// SPDX-License-Identifier: MIT
//
// etoq and qtoe: machine doubles.
#include "../cases.h"
#include "model.h"
#include "oracle.h"

#include <cfloat>
#include <cmath>
#include <cstring>

#include "qfloat.h"

namespace oracle::test_doubles {

constexpr int CASES = cases(100000);

double doubleOf(uint64_t bits) {
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

uint64_t bitsOf(double d) {
    uint64_t bits;
    std::memcpy(&bits, &d, sizeof bits);
    return bits;
}

Number fromDouble(double d) {
    Number q;
    q.fill(0xA5A5A5A5);
    etoq(&d, q.data());
    return q;
}

uint64_t toBits(const Number& q) {
    double d = -1;
    qtoe(q.data(), &d);
    return bitsOf(d);
}

// 53 significant bits above the given bits of the rest: a double's mantissa with its tail.
Number withTail(uint64_t mantissa53, int64_t exponent, const mpz_class& tail299, bool negative = false) {
    mpz_class m = static_cast<unsigned long>(mantissa53);
    m = (m << 299) + tail299;
    return store({negative, exponent, m});
}

class Doubles : public Seeded {
protected:
    // Any bit pattern with an exponent field below 2047; often subnormal or at the ends of the range.
    uint64_t FiniteBits() {
        uint64_t bits = random.Next();
        uint64_t field = static_cast<uint64_t>(random.Between(0, 2046));
        if (random.Chance(15)) field = 0;
        if (random.Chance(10)) field = static_cast<uint64_t>(random.Chance(50) ? 1 : 2046);
        if (random.Chance(15)) bits &= ~uint64_t{0} << random.Between(0, 52);
        if (random.Chance(15)) bits &= ~uint64_t{0} >> random.Between(12, 63);
        return (bits & 0x800FFFFFFFFFFFFF) | (field << 52);
    }

    // A number whose 54th bit decides: tails at, just below and just above a half.
    Number NearADouble() {
        uint64_t mantissa = (random.Next() >> 11) | (uint64_t{1} << 52);
        if (random.Chance(15)) mantissa = (uint64_t{1} << 53) - 1;
        if (random.Chance(10)) mantissa = uint64_t{1} << 52;
        mpz_class tail;
        switch (random.Between(0, 4)) {
        case 0: break;
        case 1: tail = power2(298); break;
        case 2: tail = power2(298) + power2(static_cast<unsigned long>(random.Between(0, 290))); break;
        case 3: tail = power2(298) - 1; break;
        default: tail = wordsToInteger(randomMantissa(random).data(), 3, 13) % power2(299); break;
        }
        int64_t exponent = random.Between(31747, 31746 + 2046);
        if (random.Chance(35)) exponent = random.Between(31746 - 60, 31748); // subnormal and around
        if (random.Chance(10)) exponent = random.Between(31746 + 2040, 31746 + 2050);
        return withTail(mantissa, exponent, tail, random.Chance(50));
    }
};

TEST_F(Doubles, EtoqIsExactForEveryFiniteDouble) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const double d = doubleOf(FiniteBits());
        Real exact(64);
        mpfr_set_d(exact, d, MPFR_RNDN);
        const Number q = fromDouble(d);
        EXPECT_EQ(q, exactly(exact)) << std::hexfloat << d;
        if (d != 0) {
            EXPECT_EQ(toBits(q), bitsOf(d)) << "and back";
        }
    }
}

TEST_F(Doubles, EtoqOfFourWordsIsTheSame) {
    for (int i = 0; i < cases(10000) && !HasFailure(); ++i) {
        const uint64_t bits = random.Next();
        uint16_t words[4];
        for (int k = 0; k < 4; ++k) words[k] = static_cast<uint16_t>(bits >> (16 * k));
        Number q;
        q.fill(0xA5A5A5A5);
        etoq(words, q.data());
        EXPECT_EQ(q, fromDouble(doubleOf(bits))) << std::hex << bits;
    }
}

TEST_F(Doubles, EtoqOfInfinitiesAndNansIsALargeFiniteNumber) {
    for (int i = 0; i < 1000; ++i) {
        uint64_t bits = random.Next() | 0x7FF0000000000000;
        if (i < 2) bits = i == 0 ? 0x7FF0000000000000 : 0xFFF0000000000000;
        uint64_t mantissa = (bits & 0xFFFFFFFFFFFFF) | (uint64_t{1} << 52);
        uint16_t words[4];
        for (int k = 0; k < 4; ++k) words[k] = static_cast<uint16_t>(bits >> (16 * k));
        Number q;
        etoq(words, q.data());
        EXPECT_EQ(q, withTail(mantissa, 2047 + 31746, 0, (bits >> 63) != 0)) << std::hex << bits;
    }
}

TEST(Etoq, TakesDoublesAsTheyAre) {
    EXPECT_EQ(fromDouble(1), (Number{0, 0x8001, 0, 0x80000000}));
    EXPECT_EQ(fromDouble(-2.5), (Number{NEGATIVE_SIGN, 0x8002, 0, 0xA0000000}));
    EXPECT_EQ(fromDouble(0), Number{});
    EXPECT_EQ(fromDouble(-0.0), Number{});
    EXPECT_EQ(fromDouble(DBL_MIN), scaled("1", -1022));
    EXPECT_EQ(fromDouble(doubleOf(1)), scaled("1", -1074)) << "the smallest subnormal";
    EXPECT_EQ(fromDouble(-doubleOf(1)), scaled("-1", -1074));
    EXPECT_EQ(fromDouble(doubleOf(0x000FFFFFFFFFFFFF)), scaled("FFFFFFFFFFFFF", -1074));
}

TEST_F(Doubles, QtoeFollowsItsRuleBitForBit) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number q = random.Chance(70) ? NearADouble() : randomOperand(random);
        int code = 0;
        const uint64_t expected = model::toDouble(q, code);
        merror = 0;
        EXPECT_EQ(toBits(q), expected) << show(q);
        EXPECT_EQ(merror, code) << show(q);
        uint16_t words[4] = {1, 2, 3, 4};
        qtoe(q.data(), words);
        for (int k = 0; k < 4; ++k) EXPECT_EQ(words[k], static_cast<uint16_t>(expected >> (16 * k)));
    }
    merror = 0;
}

// Away from halves the rule is plain rounding to the nearest.
TEST_F(Doubles, QtoeIsTheNearestDoubleWhereNoTieIsNear) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number q = randomMantissa(random);
        q[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        q[1] = static_cast<uint32_t>(random.Between(31747, 31746 + 2045));
        if ((q[4] & 0x7FF) == 0x400) continue;
        EXPECT_EQ(toBits(q), bitsOf(mpfr_get_d(Real(q), MPFR_RNDN))) << show(q);
    }
}

TEST(Qtoe, TakesAMantissaThatBeginsWithZerosForWhatItIs) {
    EXPECT_EQ(toBits(Number{0, 0x8001, 0, 0x40000000}), bitsOf(0.5));
    EXPECT_EQ(toBits(Number{NEGATIVE_SIGN, 0x8005, 0, 0x0C000000}), bitsOf(-1.5));
}

TEST(QtoeTieRule, AnExactTieIsCutAfterAnEvenAndAfterAnOddLastBit) {
    const uint64_t even = (uint64_t{1} << 52) + 2;
    EXPECT_EQ(toBits(withTail(even, 0x8001, power2(298))), bitsOf(1) + 2);
    EXPECT_EQ(toBits(withTail(even + 1, 0x8001, power2(298))), bitsOf(1) + 3);
    EXPECT_EQ(toBits(withTail(even + 1, 0x8001, power2(298), true)), bitsOf(-1) + 3);
}

TEST(QtoeTieRule, JustAboveATieIsRoundedUpOnlyAfterAnOddLastBit) {
    const uint64_t even = (uint64_t{1} << 52) + 2;
    for (const unsigned long below : {0UL, 100UL, 287UL}) { // the excess lies below mantissa word 4
        const mpz_class tail = power2(298) + power2(below);
        EXPECT_EQ(toBits(withTail(even, 0x8001, tail)), bitsOf(1) + 2) << below;
        EXPECT_EQ(toBits(withTail(even + 1, 0x8001, tail)), bitsOf(1) + 4) << below;
    }
    const mpz_class tail = power2(298) + power2(288); // the lowest bit of word 4
    EXPECT_EQ(toBits(withTail(even, 0x8001, tail)), bitsOf(1) + 3);
    EXPECT_EQ(toBits(withTail(even + 1, 0x8001, tail)), bitsOf(1) + 4);
}

TEST(Qtoe, RoundingUpCarriesIntoTheExponent) {
    const uint64_t ones = (uint64_t{1} << 53) - 1;
    EXPECT_EQ(toBits(withTail(ones, 0x8000, power2(299) - 1)), bitsOf(1));
    EXPECT_EQ(toBits(withTail(ones, 31747 - 1, power2(299) - 1)), bitsOf(DBL_MIN)) << "into the normal range";
}

TEST(Qtoe, ZeroAndBelowTheSubnormalRangeAreSignedZeros) {
    merror = 0;
    EXPECT_EQ(toBits(Number{}), bitsOf(0));
    Number negativeZero{};
    negativeZero[0] = NEGATIVE_SIGN;
    EXPECT_EQ(toBits(negativeZero), bitsOf(-0.0));
    EXPECT_EQ(toBits(scaled("1", -1076)), bitsOf(0));
    EXPECT_EQ(toBits(scaled("-1", -1076)), bitsOf(-0.0));
    EXPECT_EQ(toBits(decimal("1e-400")), bitsOf(0));
    EXPECT_EQ(toBits(decimal("-1e-9000")), bitsOf(-0.0));
    EXPECT_EQ(merror, 0);
}

TEST(Qtoe, SubnormalDoublesAreRounded) {
    EXPECT_EQ(toBits(scaled("1", -1074)), 1U);
    EXPECT_EQ(toBits(scaled("-3", -1074)), 0x8000000000000003);
    EXPECT_EQ(toBits(scaled("1", -1075)), 0U) << "an exact tie is cut";
    EXPECT_EQ(toBits(scaled("18", -1079)), 1U) << "three quarters";
    EXPECT_EQ(toBits(scaled("FFFFFFFFFFFFF", -1074)), 0x000FFFFFFFFFFFFFU);
}

TEST(Qtoe, OverflowGivesTheLargestFiniteDoubleAndCode3) {
    for (const char* text : {"1e400", "1.8e308", "1e9800"}) {
        merror = 0;
        EXPECT_EQ(toBits(decimal(text)), bitsOf(DBL_MAX)) << text;
        EXPECT_EQ(merror, 3);
        merror = 0;
        EXPECT_EQ(toBits(decimal(std::string("-") + text)), bitsOf(-DBL_MAX)) << text;
        EXPECT_EQ(merror, 3);
    }
    merror = 0;
    EXPECT_EQ(toBits(overflowValue(NEGATIVE_SIGN)), bitsOf(-DBL_MAX));
    EXPECT_EQ(merror, 3);
    merror = 0;
    EXPECT_EQ(toBits(fromDouble(DBL_MAX)), bitsOf(DBL_MAX));
    EXPECT_EQ(merror, 0);
}

TEST(Qtoe, AnExponentFieldOf2047CountsAsOverflow) {
    merror = 0;
    EXPECT_EQ(toBits(scaled("1", 1024)), bitsOf(DBL_MAX));
    EXPECT_EQ(merror, 3);
    merror = 0;
    const uint64_t ones = (uint64_t{1} << 53) - 1;
    EXPECT_EQ(toBits(withTail(ones, 2046 + 31746, power2(299) - 1)), bitsOf(DBL_MAX)) << "by its rounding";
    EXPECT_EQ(merror, 3);
    merror = 0;
}

} // namespace oracle::test_doubles
