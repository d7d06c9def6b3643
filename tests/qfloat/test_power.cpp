// SPDX-License-Identifier: MIT
//
// qpow and qpowi: special values and codes, accuracy against MPFR, the plain algorithms beside them.
#include "../cases.h"
#include "reference.h"

namespace oracle::test_power {

constexpr int CASES = cases(5000);
constexpr int REFERENCE_CASES = cases(1000);

const Number ZERO{};
const Number NEGATIVE_ZERO = negated(ZERO);
const Number ONE = number(1);
const Number TWO = number(2);
const Number HALF = number(0.5);
const Number OVERFLOW = overflowValue(0);
const Number MINUS_OVERFLOW = overflowValue(NEGATIVE_SIGN);

Number third() {
    Number q{};
    qdiv(qthree, qone, q.data());
    return q;
}

// ---------------------------------------------------------------------------------------------------------

// 2 has its own way: exponent arithmetic for any n.
TEST(IntegerPowerOfTwo, IsExactUpToTheLimits) {
    EXPECT_EQ(run(qpowi, TWO, number(10)), (Outcome{number(1024), 0}));
    EXPECT_EQ(run(qpowi, TWO, ZERO), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qpowi, TWO, number(-3)), (Outcome{number(0.125), 0}));
    for (int n = -32768; n < 32767; n += 97) {
        EXPECT_EQ(run(qpowi, TWO, number(n)), (Outcome{scaled("1", n), 0})) << n;
    }
}

TEST(IntegerPowerOfTwo, AtTheEndsOfTheExponentWord) {
    Number largest = ONE;
    largest[1] = 0x10000; // stored with its mantissa, as products store it
    EXPECT_EQ(run(qpowi, TWO, number(32767)), (Outcome{largest, 0}));
    EXPECT_EQ(run(qpowi, TWO, number(32768)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, TWO, number(-32768)), (Outcome{scaled("1", -32768), 0}));
    EXPECT_EQ(run(qpowi, TWO, number(-32769)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, TWO, number(1e30)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, TWO, number(-1e30)), (Outcome{ZERO, 0}));
}

TEST(IntegerPower, UsesTheIntegerPartOfTheExponent) {
    EXPECT_EQ(run(qpowi, number(3), number(2.9)), (Outcome{number(9), 0}));
    EXPECT_EQ(run(qpowi, number(4), number(-2.9)), (Outcome{number(0.0625), 0}));
    EXPECT_EQ(run(qpowi, number(3), number(0.9)), (Outcome{ONE, 0}));
}

TEST(IntegerPower, OfZeroIsZeroOrTheOverflowValue) {
    EXPECT_EQ(run(qpowi, ZERO, ZERO), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qpowi, ZERO, number(5)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, ZERO, number(-1)), (Outcome{OVERFLOW, 0})) << "without a code";
    EXPECT_EQ(run(qpowi, NEGATIVE_ZERO, number(3)), (Outcome{ZERO, 0}));
}

TEST(IntegerPower, WithExponentZeroIsOne) {
    for (const Number& x : {ONE, number(-7.5), OVERFLOW, MINUS_OVERFLOW, scaled("1", -32768)}) {
        EXPECT_EQ(run(qpowi, x, ZERO), (Outcome{ONE, 0})) << show(x);
    }
}

TEST(IntegerPower, OfANegativeBaseHasTheSignOfOddExponents) {
    EXPECT_EQ(run(qpowi, number(-2), number(3)), (Outcome{number(-8), 0}));
    EXPECT_EQ(run(qpowi, number(-2), number(4)), (Outcome{number(16), 0}));
    EXPECT_EQ(run(qpowi, number(-2), number(-3)), (Outcome{number(-0.125), 0}));
    EXPECT_EQ(run(qpowi, number(-1), number(2147483645)), (Outcome{number(-1), 0}));
    EXPECT_EQ(run(qpowi, number(-1), number(2147483646)), (Outcome{ONE, 0}));
}

TEST(IntegerPower, OverflowHasCodeThree) {
    EXPECT_EQ(run(qpowi, number(10), number(9865)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, number(-10), number(9865)), (Outcome{MINUS_OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, number(-10), number(9866)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, number(10), number(2000000000)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, OVERFLOW, TWO), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, OVERFLOW, ONE), (Outcome{OVERFLOW, 0})) << "nothing is multiplied";
}

TEST(IntegerPower, UnderflowIsZeroWithTheSignOfAnOddPowerAndNoCode) {
    EXPECT_EQ(run(qpowi, number(0.1), number(9866)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, number(-0.5), number(99999)), (Outcome{NEGATIVE_ZERO, 0}));
    EXPECT_EQ(run(qpowi, number(-0.5), number(99998)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, HALF, number(2000000000)), (Outcome{ZERO, 0}));
}

// x^|n| comes first: what underflows there has no reciprocal.
TEST(IntegerPower, OfANegativeExponentWhosePowerUnderflowsOverflows) {
    EXPECT_EQ(run(qpowi, HALF, number(-40000)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, number(-0.5), number(-40001)), (Outcome{MINUS_OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, HALF, number(-32769)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, HALF, number(-32768)), (Outcome{OVERFLOW, 3}))
        << "0.5^32768 is stored, 2^32768 is not";
}

// What overflows there sets code 3.  The overflow value is 2^32768 (1 - 2^-352), its reciprocal 2^-32768 and
// a little more than half a unit of the last place.
TEST(IntegerPower, OfANegativeExponentWhosePowerOverflowsIsAlmostTheSmallestNumberWithCodeThree) {
    const Number tiny = neighbor(scaled("1", -32768), 1);
    EXPECT_EQ(run(qpowi, number(10), number(-10000)), (Outcome{tiny, 3}));
    EXPECT_EQ(run(qpowi, number(-10), number(-10001)), (Outcome{negated(tiny), 3}));
    EXPECT_EQ(run(qpowi, scaled("1", 64), number(-512)), (Outcome{tiny, 3}))
        << "2^-32768 is stored, 2^32768 is not";
}

TEST(IntegerPower, OfExactPowersIsExact) {
    const Number three = number(3);
    for (int n = 1; n <= 222; ++n) { // 3^222 has 352 bits
        mpz_class z;
        mpz_ui_pow_ui(z.get_mpz_t(), 3, static_cast<unsigned long>(n));
        Real exact(400);
        mpfr_set_z(exact, z.get_mpz_t(), MPFR_RNDN);
        EXPECT_EQ(run(qpowi, three, number(n)), (Outcome{exactly(exact), 0})) << n;
    }
    EXPECT_EQ(run(qpowi, number(10), number(100)), (Outcome{decimal("1e100"), 0}));
    EXPECT_EQ(run(qpowi, number(4), number(-16000)), (Outcome{scaled("1", -32000), 0}));
}

// From |n| = 2147483647 upward the integer part says nothing: e^(y ln x) takes over.
TEST(IntegerPower, WithASaturatedExponentGoesThroughTheLogarithm) {
    EXPECT_EQ(run(qpowi, number(-1), number(2147483647)), (Outcome{ONE, 1})) << "the logarithm fails as 0";
    EXPECT_EQ(run(qpowi, ONE, number(1e30)), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qpowi, number(3), number(1e30)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpowi, number(3), number(-1e30)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, ZERO, number(1e30)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpowi, ZERO, number(-1e30)), (Outcome{OVERFLOW, 3}));
}

// ---------------------------------------------------------------------------------------------------------

TEST(Power, OfANegativeBaseAndAFractionFailsWithCodeOne) {
    EXPECT_EQ(run(qpow, number(-8), third()).code, 1);
    EXPECT_EQ(run(qpow, number(-8), third()).value, ONE) << "e^(y * 0)";
    EXPECT_EQ(run(qpow, number(-2), HALF).code, 1);
    EXPECT_EQ(run(qpow, MINUS_OVERFLOW, HALF).code, 1);
}

TEST(Power, OfAWholeExponentTakesTheIntegerPath) {
    EXPECT_EQ(run(qpow, number(-2), number(3)), (Outcome{number(-8), 0}));
    EXPECT_EQ(run(qpow, number(-1), number(415031)), (Outcome{number(-1), 0}));
    EXPECT_EQ(run(qpow, number(-7), NEGATIVE_ZERO), (Outcome{ONE, 0}));
}

TEST(Power, OfAWholeExponentFrom415032TakesTheLogarithm) {
    EXPECT_EQ(run(qpow, number(-1), number(415032)).code, 1);
    EXPECT_EQ(run(qpow, number(-1), number(-415032)).code, 1);
    EXPECT_EQ(run(qpow, number(-1), number(-415031)), (Outcome{number(-1), 0}));
}

TEST(Power, OfZeroIsZeroOneOrAnOverflowByTheExponentsSign) {
    for (const Number& nothing : {ZERO, NEGATIVE_ZERO}) {
        for (const Number& y : {HALF, ONE, number(5), number(415032), number(1000000.5), number(1e30),
                                OVERFLOW, scaled("1", -32760)}) {
            EXPECT_EQ(run(qpow, nothing, y), (Outcome{ZERO, 0})) << show(y);
            EXPECT_EQ(run(qpow, nothing, negated(y)), (Outcome{OVERFLOW, 3})) << show(y);
        }
        EXPECT_EQ(run(qpow, nothing, ZERO), (Outcome{ONE, 0}));
        EXPECT_EQ(run(qpow, nothing, NEGATIVE_ZERO), (Outcome{ONE, 0}));
    }
}

TEST(Power, OverflowIsPositiveWithCodeThreeAndUnderflowZeroWithoutACode) {
    EXPECT_EQ(run(qpow, number(10), number(9864.5)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpow, number(10), number(-9864.5)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qpow, number(10), number(1e9)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpow, number(0.1), number(1e9)), (Outcome{ZERO, 0}));
    Number z = number(-7);
    qpow(number(10).data(), number(9864.5).data(), z.data());
    EXPECT_EQ(z, OVERFLOW);
    merror = 0;
}

// The product y ln x sets its own code, though e^-(huge) would not.
TEST(Power, WithAnOverflowingProductHasCodeThreeAlsoWhereTheResultIsZero) {
    EXPECT_EQ(run(qpow, number(10), OVERFLOW), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpow, number(10), MINUS_OVERFLOW), (Outcome{ZERO, 3}));
    EXPECT_EQ(run(qpow, number(0.1), OVERFLOW), (Outcome{ZERO, 3}));
    EXPECT_EQ(run(qpow, HALF, MINUS_OVERFLOW), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qpow, number(0.75), OVERFLOW), (Outcome{ZERO, 0})) << "|ln 0.75| < 1/2: no overflow";
}

TEST(Power, OfOneIsOne) {
    for (const Number& y : {HALF, number(-0.3), number(1e9), OVERFLOW, MINUS_OVERFLOW}) {
        EXPECT_EQ(run(qpow, ONE, y), (Outcome{ONE, 0})) << show(y);
    }
}

// e^(y ln x) for |y ln x| from 2^-32770 to 2^-32764: about the smallest exponent that a number has, and
// below.
TEST(Power, WithAProductNextToZeroOrBelowTheRangeIsOne) {
    for (int exponent = -32768; exponent <= -32762; ++exponent) {
        for (const Number& x : {number(1.25), number(0.75)}) { // |ln x| is 0.22 and 0.29
            EXPECT_EQ(run(qpow, x, scaled("1", exponent)), (Outcome{ONE, 0})) << exponent;
            EXPECT_EQ(run(qpow, x, scaled("-1", exponent)), (Outcome{ONE, 0})) << exponent;
        }
    }
}

TEST(Power, OfExactRootsIsExact) {
    EXPECT_EQ(run(qpow, number(4), HALF), (Outcome{TWO, 0}));
    EXPECT_EQ(run(qpow, number(625), number(0.25)), (Outcome{number(5), 0}));
    EXPECT_EQ(run(qpow, number(0.0625), number(-1.5)), (Outcome{number(64), 0}));
    EXPECT_EQ(run(qpow, TWO, number(0.5)), (Outcome{run(qsqrt, TWO).value, 0}));
}

// ---------------------------------------------------------------------------------------------------------

class RandomPower : public Seeded {
protected:
    // The number nearest to the true value within the range; the plain algorithm's value and code elsewhere.
    static void Check(Binary routine, Binary plain, const Number& x, const Number& y) {
        Real exact, exponent(y);
        if (routine == qpowi && y[1] < 0x8000 + 31) mpfr_trunc(exponent, exponent);
        mpfr_pow(exact, Real(x), exponent, MPFR_RNDZ);
        const Outcome got = run(routine, x, y);
        if (plain != nullptr) {
            const Outcome other = run(plain, x, y);
            EXPECT_EQ(got.code, other.code) << show(x) << show(y);
            if (got.value == other.value) return;
        }
        ASSERT_TRUE(got.code == 0 && mpfr_number_p(exact) != 0) << show(x) << show(y) << got;
        const int64_t size = mpfr_get_exp(exact);
        ASSERT_TRUE(size > -BIAS && size <= BIAS && got.value[1] != 0) << show(x) << show(y) << got;
        EXPECT_EQ(got.value, store(roundHalfUp(exact))) << show(x) << show(y);
    }

    // y, and x such that x^y is about 2^bits.
    void DrawNear(double bits, const Number& y, Number& x) {
        x = number(bits);
        qmul(x.data(), qlog2, x.data());
        qdiv(y.data(), x.data(), x.data());
        qexp(x.data(), x.data());
    }
};

TEST_F(RandomPower, UpToTheLimitsIsTheNearestNumber) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number y = randomWithin(random, -15, 280, false);
        Number x;
        DrawNear(static_cast<double>(random.Between(-32700, 32700)), y, x);
        if (x[1] == 0 || x[1] > 0xFFFF) continue;
        Real exact;
        mpfr_pow(exact, Real(x), Real(y), MPFR_RNDN);
        if (mpfr_get_exp(exact) < 1 - BIAS || mpfr_get_exp(exact) > BIAS) continue;
        Check(qpow, nullptr, x, y);
    }
}

TEST_F(RandomPower, OfWholeExponentsIsTheNearestNumber) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Check(qpowi, nullptr, randomWithin(random, -20, 20, false),
              number(static_cast<double>(random.Between(-1000, 1000))));
        const int64_t n = random.Between(1, 2147483646);
        const Number y = number(static_cast<double>(random.Chance(50) ? n : -(n >> 11) - 1));
        Number x;
        DrawNear(static_cast<double>(random.Between(-32000, 32000)), y, x);
        Check(qpowi, nullptr, x, y);
    }
}

// An odd A whose n-th power has 353 bits: that is a tie, which goes away from 0.  It is reached from A, from
// A^2 and from A^4.
TEST_F(RandomPower, ExactTiesGoAwayFromZero) {
    gmp_randclass integers(gmp_randinit_default);
    integers.seed(random.Next() >> 1);
    const auto check = [&](Binary routine, unsigned long root, unsigned long n) {
        mpz_class low = power2(352), high = power2(353), base, value;
        mpz_root(low.get_mpz_t(), low.get_mpz_t(), n);
        mpz_root(high.get_mpz_t(), high.get_mpz_t(), n);
        const mpz_class a = (low + 1 + integers.get_z_range(high - low - 2)) | 1;
        mpz_pow_ui(base.get_mpz_t(), a.get_mpz_t(), root);
        mpz_pow_ui(value.get_mpz_t(), a.get_mpz_t(), n);
        ASSERT_EQ(mpz_sizeinbase(value.get_mpz_t(), 2), 353U);
        Real x(MANTISSA_BITS), exact(1000);
        ASSERT_EQ(mpfr_set_z(x, base.get_mpz_t(), MPFR_RNDN), 0);
        mpfr_set_z(exact, value.get_mpz_t(), MPFR_RNDN);
        const Number y = number(static_cast<double>(n) / static_cast<double>(root));
        EXPECT_EQ(run(routine, exactly(x), y), (Outcome{store(roundHalfUp(exact)), 0}))
            << a.get_str() << " " << n;
    };
    for (int i = 0; i < 100 && !HasFailure(); ++i) {
        for (const unsigned long n : {2UL, 3UL, 5UL, 7UL}) {
            check(qpow, 1, n);
            check(qpowi, 1, n);
        }
        check(qpow, 2, 3);
        check(qpow, 2, 5);
        check(qpow, 4, 5);
    }
}

TEST_F(RandomPower, AgreesWithThePlainAlgorithms) {
    const Number specials[] = {ZERO,
                               ONE,
                               TWO,
                               HALF,
                               third(),
                               number(-1),
                               number(-2),
                               number(-0.5),
                               number(3),
                               number(10),
                               number(1e9),
                               number(-1e9),
                               number(415032),
                               number(-415031),
                               number(-9.5),
                               OVERFLOW,
                               MINUS_OVERFLOW,
                               scaled("1", -32768),
                               number(40001),
                               number(-40001),
                               number(2147483647),
                               number(-2147483648.0),
                               number(1e30),
                               NEGATIVE_ZERO};
    for (const Number& x : specials) {
        for (const Number& y : specials) {
            Check(qpow, reference::power, x, y);
            Check(qpowi, reference::integerPower, x, y);
        }
    }
    for (int i = 0; i < REFERENCE_CASES && !HasFailure(); ++i) {
        Check(qpow, reference::power, randomWithin(random, -20, 20, false),
              randomWithin(random, -20, 10, false));
        Check(qpow, reference::power, randomWithin(random, -2000, 2000, false),
              randomWithin(random, -20, 40, false));
        Check(qpowi, reference::integerPower, randomWithin(random, -300, 300, false),
              randomWithin(random, 0, 20, false));
    }
}

TEST_F(RandomPower, IsUndoneByTheReciprocalExponent) {
    for (int i = 0; i < CASES / 4 && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -300, 300, true);
        const Number n = number(static_cast<double>(random.Between(2, 60)));
        Number inverse{};
        qdiv(n.data(), qone, inverse.data());
        const Number root = run(qpow, x, inverse).value;
        // Half a unit of 1/n in |ln x| <= 208, and half a unit of the root n times.
        EXPECT_LE(errorInUlps(run(qpowi, root, n).value, Real(x)), 300.0) << show(x);
    }
}

TEST_F(RandomPower, NeverFallsFromOneNumberToTheNext) {
    const auto notAbove = [](const Number& a, const Number& b) { return qcmp(a.data(), b.data()) <= 0; };
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number x = randomWithin(random, 1, 40, true); // at least 1
        const Number y = randomWithin(random, -20, 8, true);
        EXPECT_TRUE(notAbove(run(qpow, x, y).value, run(qpow, neighbor(x, 1), y).value))
            << show(x) << show(y);
        EXPECT_TRUE(notAbove(run(qpow, x, y).value, run(qpow, x, neighbor(y, 1)).value))
            << show(x) << show(y);
        const Number n = number(static_cast<double>(random.Between(1, 500)));
        EXPECT_TRUE(notAbove(run(qpowi, x, n).value, run(qpowi, neighbor(x, 1), n).value))
            << show(x) << show(n);
    }
}

} // namespace oracle::test_power
