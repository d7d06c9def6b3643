// SPDX-License-Identifier: MIT
//
// qsqrt, qexp and qlog: special values and codes, accuracy against MPFR, the plain algorithms beside them.
#include "../cases.h"
#include "hard.h"
#include "qexact.h"
#include "reference.h"

namespace oracle::test_elementary {

constexpr int CASES = cases(8000);
constexpr int REFERENCE_CASES = cases(1500);
constexpr int ROOTS = cases(10000);

const Number ZERO{};
const Number NEGATIVE_ZERO = negated(ZERO);
const Number ONE = number(1);
const Number OVERFLOW = overflowValue(0);
const Number MINUS_OVERFLOW = overflowValue(NEGATIVE_SIGN);

using Truth = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

// A function with what it is measured against.
struct Function {
    Unary routine, plain;
    Truth truth;
};

const Function SQUARE_ROOT{qsqrt, reference::squareRoot, mpfr_sqrt};
const Function EXPONENTIAL{qexp, reference::exponential, mpfr_exp};
const Function LOGARITHM{qlog, reference::logarithm, mpfr_log};

void checkNearest(const Function& f, const Number& x) {
    Real exact;
    f.truth(exact, Real(x), MPFR_RNDZ);
    EXPECT_EQ(run(f.routine, x), (Outcome{store(roundHalfUp(exact)), 0})) << show(x);
}

// The plain algorithm's special results and codes; inside the range no larger error than the plain one.
void checkAgainstPlain(const Function& f, const Number& x) {
    const Outcome got = run(f.routine, x);
    const Outcome plain = run(f.plain, x);
    EXPECT_EQ(got.code, plain.code) << show(x);
    if (got.value == plain.value) return;
    ASSERT_TRUE(got.code == 0 && got.value[1] != 0 && plain.value[1] != 0)
        << show(x) << "\n got   " << got << "\n plain " << plain;
    Real exact;
    f.truth(exact, Real(x), MPFR_RNDN);
    EXPECT_LE(errorInUlps(got.value, exact), std::max(ALMOST_HALF, errorInUlps(plain.value, exact)))
        << show(x);
}

Number call(Unary routine, const Number& x) {
    return run(routine, x).value;
}

int compare(const Number& a, const Number& b) {
    return qcmp(a.data(), b.data());
}

Number difference(const Number& a, const Number& b) {
    Number d{};
    qsub(b.data(), a.data(), d.data());
    return d;
}

class SquareRoot : public Seeded {};
class Exponential : public Seeded {};
class Logarithm : public Seeded {};

// ---------------------------------------------------------------------------------------------------------

TEST_F(SquareRoot, OfFourIsTwoAndOfTwoTheConstant) {
    EXPECT_EQ(run(qsqrt, number(4)), (Outcome{number(2), 0}));
    Number root;
    qmov(qsqrt2, root.data());
    EXPECT_EQ(run(qsqrt, number(2)), (Outcome{root, 0}));
}

TEST_F(SquareRoot, OfZeroIsZeroAndOfNegativeZeroNegativeZero) {
    EXPECT_EQ(run(qsqrt, ZERO), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qsqrt, NEGATIVE_ZERO), (Outcome{NEGATIVE_ZERO, 0}));
}

TEST_F(SquareRoot, OfANegativeNumberIsZeroWithCodeOne) {
    EXPECT_EQ(run(qsqrt, number(-4)), (Outcome{ZERO, 1}));
    EXPECT_EQ(run(qsqrt, MINUS_OVERFLOW), (Outcome{ZERO, 1}));
    EXPECT_EQ(run(qsqrt, negated(scaled("1", -32768))), (Outcome{ZERO, 1}));
}

TEST_F(SquareRoot, AtTheEndsOfTheRange) {
    EXPECT_EQ(run(qsqrt, scaled("1", -32768)), (Outcome{scaled("1", -16384), 0}));
    EXPECT_EQ(run(qsqrt, scaled("1", 32766)), (Outcome{scaled("1", 16383), 0}));
}

TEST_F(SquareRoot, OfAnExactSquareIsExact) {
    for (int i = 0; i < CASES; ++i) {
        Number x = randomWithin(random, -16000, 16000, true);
        std::fill(x.begin() + 8, x.end(), 0); // 160 bits
        Number square{};
        qmul(x.data(), x.data(), square.data());
        ASSERT_EQ(run(qsqrt, square), (Outcome{x, 0}));
    }
}

// No root is half way between two numbers: MPFR's rounding is the only one.
void checkRoot(const Number& x) {
    Real exact(MANTISSA_BITS);
    mpfr_sqrt(exact, Real(x), MPFR_RNDN);
    EXPECT_EQ(run(qsqrt, x), (Outcome{exactly(exact), 0})) << show(x);
}

TEST_F(SquareRoot, IsTheNearestNumber) {
    for (int i = 0; i < ROOTS && !HasFailure(); ++i) {
        checkRoot(randomWithin(random, -32767, 32767, true));
        checkRoot(randomWithin(random, -1, 2, true));
        checkRoot(neighbor(randomWithin(random, -40, 40, true), static_cast<int>(random.Between(-2, 2))));
    }
    checkRoot(OVERFLOW);
}

TEST_F(SquareRoot, NextToAMidpointIsTheNearestNumber) {
    const uint64_t before = limb::comparisons;
    for (int i = 0; i < 2 * ROOTS && !HasFailure(); ++i) {
        const hard::Square square = hard::square([this] { return random.Next(); });
        Real x(MANTISSA_BITS);
        mpfr_set_z_2exp(x, square.m.get_mpz_t(), square.exponent + 2 * random.Between(-8000, 8000),
                        MPFR_RNDN);
        checkRoot(exactly(x));
    }
    EXPECT_GT(limb::comparisons - before, ROOTS * 3 / 2) << "the squares are not hard";
}

// sqrt(1 - 2^-352) = 1 - 2^-353 - 2^-707 - ..., below the middle of 1 - 2^-352 and 1.
TEST_F(SquareRoot, OfTheNumberBelowOneIsThatNumber) {
    const Number below = neighbor(ONE, -1);
    EXPECT_EQ(run(qsqrt, below), (Outcome{below, 0}));
    EXPECT_EQ(run(qsqrt, neighbor(ONE, 1)), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qsqrt, neighbor(number(0.25), -1)), (Outcome{neighbor(number(0.5), -1), 0}));
}

TEST_F(SquareRoot, AgreesWithThePlainAlgorithm) {
    for (const Number& x :
         {ZERO, NEGATIVE_ZERO, ONE, number(-1), OVERFLOW, MINUS_OVERFLOW, number(4), number(2)}) {
        checkAgainstPlain(SQUARE_ROOT, x);
    }
    for (int i = 0; i < REFERENCE_CASES && !HasFailure(); ++i) {
        checkAgainstPlain(SQUARE_ROOT, randomWithin(random, -32767, 32767, false));
    }
}

TEST_F(SquareRoot, SquaresBackToItsArgument) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -30000, 30000, true);
        const Number root = call(qsqrt, x);
        Number square{};
        qmul(root.data(), root.data(), square.data());
        EXPECT_LE(errorInUlps(square, Real(x)), 2.6) << show(x);
        if (x[1] > 0x8000 + 16000 || x[1] < 0x8000 - 16000) continue;
        qmul(x.data(), x.data(), square.data());
        EXPECT_LE(errorInUlps(call(qsqrt, square), Real(x)), 1.0) << show(x);
    }
}

TEST_F(SquareRoot, NeverFallsFromOneNumberToTheNext) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -300, 300, true);
        EXPECT_LE(compare(call(qsqrt, x), call(qsqrt, neighbor(x, 1))), 0) << show(x);
    }
}

// ---------------------------------------------------------------------------------------------------------

TEST_F(Exponential, OfZeroIsExactlyOne) {
    EXPECT_EQ(run(qexp, ZERO), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qexp, NEGATIVE_ZERO), (Outcome{ONE, 0}));
}

TEST_F(Exponential, OfATinyNumberIsOneOrItsNeighbor) {
    EXPECT_EQ(run(qexp, scaled("1", -32768)), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qexp, scaled("-1", -32768)), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qexp, scaled("1", -351)), (Outcome{neighbor(ONE, 1), 0}));
    EXPECT_EQ(run(qexp, scaled("-1", -352)), (Outcome{neighbor(ONE, -1), 0}));
}

// e^x = 1 + x + x^2/2 + ...: half a unit above 1 is passed by 2^-705, half a unit below it missed by 2^-707.
TEST_F(Exponential, BesideOneIsRoundedByWhatLiesSevenHundredBitsDown) {
    EXPECT_EQ(run(qexp, scaled("1", -352)), (Outcome{neighbor(ONE, 1), 0}));
    EXPECT_EQ(run(qexp, scaled("-1", -353)), (Outcome{ONE, 0}));
    EXPECT_EQ(run(qexp, scaled("-1", -352)), (Outcome{neighbor(ONE, -1), 0}));
}

TEST_F(Exponential, From32768UpwardOverflowsWithCodeThree) {
    for (const Number& x : {number(32768), number(40000), number(1e300), OVERFLOW}) {
        EXPECT_EQ(run(qexp, x), (Outcome{OVERFLOW, 3})) << show(x);
    }
}

TEST_F(Exponential, From32768UpwardKeepsTheSignWordOfTheOutput) {
    Number y = number(-7);
    qexp(number(32768).data(), y.data());
    EXPECT_EQ(y, MINUS_OVERFLOW);
    merror = 0;
}

TEST_F(Exponential, FromMinus32768DownwardIsZeroWithoutACode) {
    for (const Number& x : {number(-32768), number(-40000), number(-1e300), MINUS_OVERFLOW}) {
        EXPECT_EQ(run(qexp, x), (Outcome{ZERO, 0})) << show(x);
    }
}

// e^22713 is below 2^32768 = e^22713.04..., e^22714 above; e^-22713.8 is above 2^-32769 = e^-22713.7....
TEST_F(Exponential, BelowThatLimitTheResultsRangeDecides) {
    EXPECT_EQ(run(qexp, number(22714)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qexp, number(32767)), (Outcome{OVERFLOW, 3}));
    EXPECT_EQ(run(qexp, number(-22714)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qexp, number(-32767)), (Outcome{ZERO, 0}));
    checkNearest(EXPONENTIAL, number(22713));
    checkNearest(EXPONENTIAL, number(-22713));
    Number y = number(-7);
    qexp(number(22714).data(), y.data());
    EXPECT_EQ(y, OVERFLOW) << "here the sign is written";
    merror = 0;
}

// An exponent word of 0x10000 is stored with its mantissa, as products store it.
TEST_F(Exponential, StoresTheExponentWordAboveTheLargestFiniteOne) {
    const Outcome got = run(qexp, decimal("22712.8"));
    EXPECT_EQ(got.code, 0);
    EXPECT_EQ(got.value[1], 0x10000U);
    checkNearest(EXPONENTIAL, decimal("22712.8"));
}

TEST_F(Exponential, AgreesWithThePlainAlgorithm) {
    for (const double d : {0.0, -0.0, 1.0, -1.0, 32767.0, 32768.0, -32767.0, -32768.0, 22712.0, 22713.0,
                           22714.0, 1e9, -1e9, 1e-300, -1e-300, -22713.0, -22714.0}) {
        checkAgainstPlain(EXPONENTIAL, number(d));
    }
    checkAgainstPlain(EXPONENTIAL, OVERFLOW);
    checkAgainstPlain(EXPONENTIAL, MINUS_OVERFLOW);
    for (int i = 0; i < REFERENCE_CASES && !HasFailure(); ++i) {
        checkAgainstPlain(EXPONENTIAL, randomWithin(random, -10, 16, false));
        checkAgainstPlain(EXPONENTIAL, randomWithin(random, -400, 20, false));
    }
}

TEST_F(Exponential, IsUndoneByTheLogarithm) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, 1, 14, false); // |x| >= 1
        EXPECT_LE(errorInUlps(call(qlog, call(qexp, x)), Real(x)), 1.6) << show(x);
    }
}

TEST_F(Exponential, NeverFallsFromOneNumberToTheNext) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -20, 14, true);
        EXPECT_LE(compare(call(qexp, x), call(qexp, neighbor(x, 1))), 0) << show(x);
        const Number below = negated(x);
        EXPECT_GE(compare(call(qexp, below), call(qexp, neighbor(below, 1))), 0) << show(below);
    }
}

// ---------------------------------------------------------------------------------------------------------

TEST_F(Logarithm, OfOneIsExactlyZero) {
    EXPECT_EQ(run(qlog, ONE), (Outcome{ZERO, 0}));
}

TEST_F(Logarithm, OfTwoIsTheConstant) {
    Number ln2;
    qmov(qlog2, ln2.data());
    EXPECT_EQ(run(qlog, number(2)), (Outcome{ln2, 0}));
    EXPECT_EQ(run(qlog, number(0.5)), (Outcome{negated(ln2), 0}));
}

TEST_F(Logarithm, OfZeroIsMinusTheOverflowValueWithCodeTwo) {
    EXPECT_EQ(run(qlog, ZERO), (Outcome{MINUS_OVERFLOW, 2}));
}

// A number with an exponent and no bit in its mantissa is 0.
TEST_F(Logarithm, OfAnEmptyMantissaIsThatOfZeroToAnyBase) {
    Number empty = ONE;
    empty[3] = 0;
    EXPECT_EQ(run(qlog, empty), (Outcome{MINUS_OVERFLOW, 2}));
    EXPECT_EQ(run(qlogbase, empty, number(2)), (Outcome{MINUS_OVERFLOW, 2}));
    EXPECT_EQ(run(qlogbase, number(2), empty), (Outcome{MINUS_OVERFLOW, 2}));
}

TEST_F(Logarithm, OfANegativeNumberIsZeroWithCodeOne) {
    for (const Number& x : {number(-1), number(-0.5), MINUS_OVERFLOW, NEGATIVE_ZERO}) {
        EXPECT_EQ(run(qlog, x), (Outcome{ZERO, 1})) << show(x);
    }
}

TEST_F(Logarithm, AtTheEndsOfTheRangeAndOfTheReduction) {
    Number root;
    qmov(qsqrt2, root.data());
    for (int units = -2; units <= 2; ++units) {
        checkNearest(LOGARITHM, neighbor(root, units));
        Number half = neighbor(root, units);
        --half[1];
        checkNearest(LOGARITHM, half);
    }
    checkNearest(LOGARITHM, OVERFLOW);
    checkNearest(LOGARITHM, scaled("1", -32768));
    checkNearest(LOGARITHM, neighbor(ONE, 1));
    checkNearest(LOGARITHM, neighbor(ONE, -1));
}

TEST_F(Logarithm, AgreesWithThePlainAlgorithm) {
    for (const Number& x :
         {ZERO, NEGATIVE_ZERO, ONE, number(-1), number(2), number(0.5), OVERFLOW, MINUS_OVERFLOW}) {
        checkAgainstPlain(LOGARITHM, x);
    }
    for (int i = 0; i < REFERENCE_CASES / 2 && !HasFailure(); ++i) {
        checkAgainstPlain(LOGARITHM, randomWithin(random, -32767, 32767, false));
        const Number x = randomWithin(random, -1, 2, true);
        // The plain algorithm takes the first 4095 numbers beside 1 for 1, by qsub's cancellation rule.
        if (x == ONE || difference(x, ONE)[1] != 0) checkAgainstPlain(LOGARITHM, x);
    }
}

TEST_F(Logarithm, IsUndoneByTheExponential) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -1, 1, true); // |ln x| < 1: no error is magnified
        EXPECT_LE(errorInUlps(call(qexp, call(qlog, x)), Real(x)), 1.6) << show(x);
    }
}

TEST_F(Logarithm, NeverFallsFromOneNumberToTheNext) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -3, 3, true);
        EXPECT_LE(compare(call(qlog, x), call(qlog, neighbor(x, 1))), 0) << show(x);
    }
}

TEST_F(Logarithm, OfAProductIsTheSum) {
    for (int i = 0; i < CASES / 4 && !HasFailure(); ++i) {
        const Number x = randomWithin(random, 2, 8000, true), y = randomWithin(random, 2, 8000, true);
        Number product{};
        qmul(x.data(), y.data(), product.data());
        const Number rest = difference(difference(call(qlog, product), call(qlog, x)), call(qlog, y));
        // Three roundings of numbers below 2^14, and the product's own.
        EXPECT_TRUE(rest[1] == 0 || static_cast<int64_t>(rest[1]) - BIAS < 14 - MANTISSA_BITS + 3)
            << show(rest);
    }
}

} // namespace oracle::test_elementary
