// SPDX-License-Identifier: MIT
//
// The circular, inverse and hyperbolic functions against MPFR where methods
// change; test_exact.cpp has random and hard arguments.
#include "../cases.h"
#include "trig_arguments.h"

namespace oracle::test_trig_accuracy {

using namespace trigtest;

void exactValue(const Function& f, const Number& x, Real& y) {
    f.exact(y, Real(x), MPFR_RNDN);
}

void expectNearest(const Function& f, const Number& x) {
    Real exact(700);
    f.exact(exact, Real(x), MPFR_RNDZ);
    const Number expected = store(roundHalfUp(exact));
    const Number y = valueOf(f, x);
    EXPECT_TRUE(merror == 0 && y == expected) << f.name << " of " << show(x) << "\n is " << show(y)
                                              << ", not " << show(expected) << ", code " << merror;
}

void expectAllNearest(const Function& f, const std::vector<Number>& list) {
    for (const Number& x : list) expectNearest(f, x);
}

class TrigAccuracy : public Seeded, public ::testing::WithParamInterface<Function> {};

TEST_P(TrigAccuracy, IsTheNearestNumberWhereMethodsChangeAndAtTheEndsOfTheRange) {
    const auto list = branchArguments(GetParam());
    ASSERT_GT(list.size(), 1000U);
    expectAllNearest(GetParam(), list);
}

// A larger argument never has a result on the wrong side of its neighbor's.
TEST_P(TrigAccuracy, KeepsTheOrderOfNeighbors) {
    const Function& f = GetParam();
    for (int i = 0; i < cases(5000); ++i) {
        const Number x = randomArgument(random, f);
        Real next(x);
        mpfr_nextabove(next);
        mpfr_prec_round(next, MANTISSA_BITS, MPFR_RNDU);
        const Number above = store(roundHalfUp(next));
        if (above[1] != x[1]) continue;
        Real low(1200), high(1200);
        exactValue(f, x, low);
        exactValue(f, above, high);
        const int order = mpfr_cmp(low, high);
        const int got = mpfr_cmp(Real(valueOf(f, x)), Real(valueOf(f, above)));
        EXPECT_TRUE(got == 0 || got == order) << f.name << " of " << show(x) << " and its neighbor above";
    }
}

TEST_P(TrigAccuracy, MayWriteOverItsArgument) {
    const Function& f = GetParam();
    for (int i = 0; i < cases(5000); ++i) {
        const Number x = randomArgument(random, f);
        Number inPlace = x;
        f.ours(inPlace.data(), inPlace.data());
        EXPECT_EQ(inPlace, valueOf(f, x)) << f.name << " of " << show(x);
    }
}

INSTANTIATE_TEST_SUITE_P(Functions, TrigAccuracy, ::testing::ValuesIn(FUNCTIONS),
                         [](const auto& test) { return std::string(test.param.name); });

class TrigSymmetry : public Seeded {};

TEST_F(TrigSymmetry, OddAndEvenFunctionsAreSoToTheLastBit) {
    for (const Function& f : FUNCTIONS) {
        for (int i = 0; i < cases(5000) && f.symmetry != Symmetry::None; ++i) {
            const Number x = randomArgument(random, f);
            Number opposite = x;
            opposite[0] = ~x[0];
            Number expected = valueOf(f, x);
            if (f.symmetry == Symmetry::Odd) expected[0] = ~expected[0];
            EXPECT_EQ(valueOf(f, opposite), expected) << f.name << " of " << show(x);
        }
    }
}

class TrigReduction : public Seeded {};

TEST_F(TrigReduction, KeepsAllDigitsNearMultiplesOfHalfPi) {
    for (const char* name : {"sin", "cos", "tan"}) {
        const auto list = nearMultiples(random, find(name), 1000, 332);
        ASSERT_GT(list.size(), 10000U);
        expectAllNearest(find(name), list);
    }
}

TEST_F(TrigReduction, KeepsAllDigitsOfHugeTangents) {
    expectAllNearest(find("tan"), nearMultiples(random, find("tan"), 100, 32767));
}

// Up to 352 bits cancel here.
TEST_F(TrigReduction, KeepsAllDigitsOfTheNumbersClosestToMultiplesOfHalfPi) {
    for (const char* name : {"sin", "cos", "tan"}) {
        const auto list = closestToMultiples(find(name), -352, 332 - MANTISSA_BITS, 1);
        ASSERT_GT(list.size(), 300U);
        expectAllNearest(find(name), list);
    }
    const auto huge = closestToMultiples(find("tan"), 0, 32767 - MANTISSA_BITS, 331);
    ASSERT_GT(huge.size(), 90U);
    expectAllNearest(find("tan"), huge);
}

} // namespace oracle::test_trig_accuracy
