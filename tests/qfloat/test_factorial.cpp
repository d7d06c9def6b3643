// SPDX-License-Identifier: MIT
#include "reference.h"

namespace oracle::test_factorial {

const Number ONE = number(1);
const Number OVERFLOW = overflowValue(0);

Real& factorialOf(unsigned long n, Real& exact) {
    mpfr_fac_ui(exact, n, MPFR_RNDZ);
    return exact;
}

TEST(Factorial, OfZeroAndOneIsOne) {
    EXPECT_EQ(run(qfac, Number{}), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qfac, ONE), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qfac, number(1.99)), (Outcome{ONE, 0}));
}

TEST(Factorial, OfEighteenAndNineteenIsExact) {
    EXPECT_EQ(run(qfac, number(18)), (Outcome{number(6402373705728000.0), 0}));
    EXPECT_EQ(run(qfac, number(19)), (Outcome{decimal("121645100408832000"), 0}));
}

TEST(Factorial, UpTo86IsExact) {
    for (unsigned long n = 0; n <= 86; ++n) {
        Real exact(700);
        EXPECT_EQ(run(qfac, number(static_cast<double>(n))), (Outcome{exactly(factorialOf(n, exact)), 0}))
            << n;
    }
}

TEST(Factorial, OfEveryNumberIsTheNearestNumber) {
    for (unsigned long n = 0; n <= 1754; ++n) {
        const Outcome got = run(qfac, number(static_cast<double>(n)));
        Real exact(700);
        EXPECT_EQ(got.code, 0) << n;
        EXPECT_EQ(got.value, store(roundHalfUp(factorialOf(n, exact)))) << n;
    }
}

TEST(Factorial, IsNoWorseThanThePlainProduct) {
    for (int n = 0; n <= 1754; n += 7) {
        const Number x = number(n);
        const Outcome got = run(qfac, x), plain = run(reference::factorial, x);
        Real exact(700);
        factorialOf(static_cast<unsigned long>(n), exact);
        EXPECT_EQ(got.code, plain.code);
        EXPECT_LE(errorInUlps(got.value, exact), std::max(ALMOST_HALF, errorInUlps(plain.value, exact))) << n;
    }
    for (const double d : {-1.0, -0.0, -1e300, 0.0, 0.5, 1.0, 2.0, 5.7, 1754.0, 1754.5, 1755.0, 1e300}) {
        EXPECT_EQ(run(qfac, number(d)).code, run(reference::factorial, number(d)).code) << d;
    }
}

TEST(Factorial, TakesTheIntegerPart) {
    EXPECT_EQ(run(qfac, number(5.7)), (Outcome{number(120), 0}));
}

// The argument is converted to a double first, which rounds.
TEST(Factorial, OfANumberJustBelowAnIntegerIsThatIntegersFactorial) {
    EXPECT_EQ(run(qfac, neighbor(number(6), -1)), (Outcome{number(720), 0}));
    EXPECT_EQ(run(qfac, neighbor(number(1754), 1)).code, 0);
}

TEST(Factorial, OfANegativeNumberIsTheOverflowValueWithCodeOne) {
    EXPECT_EQ(run(qfac, number(-1)), (Outcome{OVERFLOW, 1}));
    EXPECT_EQ(run(qfac, number(-1e300)), (Outcome{OVERFLOW, 1}));
    EXPECT_EQ(run(qfac, overflowValue(NEGATIVE_SIGN)), (Outcome{OVERFLOW, 1}));
}

TEST(Factorial, Above1754IsTheOverflowValueWithCodeThree) {
    EXPECT_EQ(run(qfac, number(1754)).code, 0);
    for (const Number& x : {number(1754.5), number(1755), number(1e9), decimal("1e400"), OVERFLOW}) {
        EXPECT_EQ(run(qfac, x), (Outcome{OVERFLOW, 3})) << show(x);
    }
}

} // namespace oracle::test_factorial
