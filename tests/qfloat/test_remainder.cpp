// SPDX-License-Identifier: MIT
//
// qremain (divisor first) against MPFR's exact remainder.
#include "../cases.h"
#include "reference.h"

namespace oracle::test_remainder {

constexpr int CASES = cases(20000);

const Number ZERO{};
const Number OVERFLOW = overflowValue(0);

Number remainder(double divisor, double dividend) {
    const Outcome o = run(qremain, number(divisor), number(dividend));
    EXPECT_EQ(o.code, 0);
    return o.value;
}

TEST(Remainder, HasTheSignOfTheDividend) {
    EXPECT_EQ(remainder(3, 7), number(1));
    EXPECT_EQ(remainder(3, -7), number(-1));
    EXPECT_EQ(remainder(-3, 7), number(1));
    EXPECT_EQ(remainder(-3, -7), number(-1));
    EXPECT_EQ(remainder(0.75, 2.5), number(0.25));
}

TEST(Remainder, OfASmallerDividendIsTheDividend) {
    EXPECT_EQ(remainder(3, 2), number(2));
    EXPECT_EQ(remainder(3, -2), number(-2));
    EXPECT_EQ(remainder(1e300, 1e-300), number(1e-300));
    EXPECT_EQ(run(qremain, OVERFLOW, number(-7)), (Outcome{number(-7), 0}));
}

TEST(Remainder, OfZeroIsAPlainZero) {
    EXPECT_EQ(run(qremain, number(3), ZERO), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qremain, number(3), negated(ZERO)), (Outcome{ZERO, 0}));
}

TEST(Remainder, ThatIsZeroIsAPlainZero) {
    EXPECT_EQ(run(qremain, number(3), number(-9)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qremain, number(-7), number(-7)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qremain, number(0.5), OVERFLOW), (Outcome{ZERO, 0}));
}

TEST(Remainder, ByZeroIsZeroWithCodeTwo) {
    EXPECT_EQ(run(qremain, ZERO, number(7)), (Outcome{ZERO, 2}));
    EXPECT_EQ(run(qremain, negated(ZERO), number(-7)), (Outcome{ZERO, 2}));
    EXPECT_EQ(run(qremain, ZERO, ZERO), (Outcome{ZERO, 2}));
    EXPECT_EQ(run(qremain, ZERO, OVERFLOW), (Outcome{ZERO, 2}));
}

TEST(Remainder, OfHugePowersIsExact) {
    Number tenTo9000 = number(1);
    qdecexp(tenTo9000.data(), 9000);
    Real exact;
    mpfr_fmod_ui(exact, Real(tenTo9000), 7, MPFR_RNDN);
    EXPECT_EQ(run(qremain, number(7), tenTo9000), (Outcome{exactly(exact), 0}));
    // 2 = -1 modulo 3, and 30000 is even.
    EXPECT_EQ(run(qremain, number(3), scaled("1", 30000)), (Outcome{number(1), 0}));
    EXPECT_EQ(run(qremain, number(3), scaled("1", 30001)), (Outcome{number(2), 0}));
    mpz_class power;
    mpz_powm_ui(power.get_mpz_t(), mpz_class(2).get_mpz_t(), 30000, mpz_class(1000003).get_mpz_t());
    EXPECT_EQ(run(qremain, number(1000003), scaled("1", 30000)), (Outcome{number(power.get_d()), 0}));
}

TEST(Remainder, OverTheWholeRangeOfExponents) {
    const Number smallest = neighbor(scaled("1", -32768), 12345);
    const Outcome got = run(qremain, smallest, OVERFLOW);
    Real exact;
    mpfr_fmod(exact, Real(OVERFLOW), Real(smallest), MPFR_RNDN);
    // Below 2^-32768 there is no number but zero.
    const bool stored = mpfr_zero_p(exact) == 0 && mpfr_get_exp(exact) > -BIAS;
    EXPECT_EQ(got, (Outcome{stored ? exactly(exact) : ZERO, 0}));
}

class RandomRemainder : public Seeded {
protected:
    static void Check(const Number& a, const Number& b) {
        const Outcome got = run(qremain, a, b);
        if (a[1] == 0) {
            EXPECT_EQ(got, (Outcome{ZERO, 2}));
            return;
        }
        Real exact;
        mpfr_fmod(exact, Real(b), Real(a), MPFR_RNDN);
        const bool stored = mpfr_zero_p(exact) == 0 && mpfr_get_exp(exact) > -BIAS;
        EXPECT_EQ(got, (Outcome{stored ? exactly(exact) : ZERO, 0})) << show(a) << show(b);
    }
};

TEST_F(RandomRemainder, IsExactOverTheWholeRange) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number a = randomOperand(random);
        Check(a, randomPartner(random, a));
    }
}

TEST_F(RandomRemainder, IsExactForQuotientsOfAFewWords) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number a = randomWithin(random, -300, 300, false);
        Number b = randomMantissa(random);
        b[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        b[1] = static_cast<uint32_t>(static_cast<int64_t>(a[1]) + random.Between(-1, 260));
        Check(a, b);
    }
}

// Divisors whose leading limb is all ones or a single one strain the estimate of the quotient's digits.
TEST_F(RandomRemainder, IsExactForAwkwardDivisors) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number a = randomMantissa(random);
        const uint32_t fill = random.Chance(50) ? 0xFFFFFFFF : 0;
        for (auto k = static_cast<size_t>(3); k < static_cast<size_t>(random.Between(4, 14)); ++k)
            a[k] = fill;
        a[3] |= 0x80000000;
        Number b = random.Chance(50) ? a : randomMantissa(random);
        b[13] += static_cast<uint32_t>(random.Between(0, 2)) - 1;
        a[1] = 0x8001;
        b[1] = 0x8001 + static_cast<uint32_t>(random.Between(0, 700));
        Check(a, b);
    }
}

} // namespace oracle::test_remainder
