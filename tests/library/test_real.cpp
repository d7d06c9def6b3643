// SPDX-License-Identifier: MIT
//
// Real as a number: operators, conversions, comparisons, limits, hashes, functions. The routines behind it
// have tests of their own.
#include "tallyquill/Real.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_set>
#include <vector>

using namespace tallyquill;

using Limits = std::numeric_limits<Real>;

class RealNumbers : public testing::Test {
protected:
    void SetUp() override { takeError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
};

TEST_F(RealNumbers, IsTheNumberOfTheRoutinesAndNothingElse) {
    EXPECT_EQ(sizeof(Real), sizeof(qfloat));
    EXPECT_TRUE(std::is_trivially_copyable_v<Real>);
    EXPECT_EQ(Real(), Real(qzero));
    EXPECT_EQ(Real(1), Real(qone));
}

TEST_F(RealNumbers, OperatorsHaveTheirOperandsInOrder) {
    const Real a = 7, b = 2;
    EXPECT_EQ(a + b, Real(9));
    EXPECT_EQ(a - b, Real(5));
    EXPECT_EQ(a * b, Real(14));
    EXPECT_EQ(a / b, Real(3.5));
    EXPECT_EQ(a % b, Real(1));
    EXPECT_EQ(-a, Real(-7));
    EXPECT_EQ(+a, a);
}

TEST_F(RealNumbers, MixesWithNumbersOfTheLanguage) {
    const Real a = 7;
    EXPECT_EQ(a + 1, Real(8));
    EXPECT_EQ(1 - a, Real(-6));
    EXPECT_EQ(a * 0.5, Real(3.5));
    EXPECT_TRUE(a > 6.5);
    EXPECT_TRUE(-7 == -a);
}

TEST_F(RealNumbers, AssigningOperatorsChangeTheLeftOperand) {
    Real a = 7;
    a += 1;
    EXPECT_EQ(a, Real(8));
    a -= 2;
    EXPECT_EQ(a, Real(6));
    a *= a;
    EXPECT_EQ(a, Real(36));
    a %= 20;
    EXPECT_EQ(a, Real(16));
    a = 36;
    a /= 8;
    EXPECT_EQ(a, Real(4.5));
    EXPECT_EQ(a++, Real(4.5));
    EXPECT_EQ(++a, Real(6.5));
    EXPECT_EQ(a--, Real(6.5));
    EXPECT_EQ(--a, Real(4.5));
}

TEST_F(RealNumbers, IntegersOf64BitsAreExactBothWays) {
    const std::vector<int64_t> numbers = {0,
                                          1,
                                          -1,
                                          4294967295,
                                          4294967296,
                                          -4294967297,
                                          1234567890123456789,
                                          std::numeric_limits<int64_t>::max(),
                                          std::numeric_limits<int64_t>::min()};
    for (const int64_t number : numbers) EXPECT_EQ(static_cast<int64_t>(Real(number)), number);
    EXPECT_EQ(Real(std::numeric_limits<uint64_t>::max()) + 1, ldexp(Real(1), 64));
    EXPECT_EQ(Real(std::numeric_limits<int64_t>::min()), -ldexp(Real(1), 63));
    EXPECT_EQ(Real(static_cast<unsigned char>(200)), Real(200));
}

TEST_F(RealNumbers, IntegersAreCutTowardZeroAndStopAtTheirRange) {
    EXPECT_EQ(static_cast<int64_t>(Real(2.75)), 2);
    EXPECT_EQ(static_cast<int64_t>(Real(-2.75)), -2);
    EXPECT_EQ(static_cast<int64_t>(Real(0.75)), 0);
    EXPECT_EQ(static_cast<int64_t>(ldexp(Real(1), 63)), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(static_cast<int64_t>(ldexp(Real(-1), 300)), std::numeric_limits<int64_t>::min());
}

TEST_F(RealNumbers, EachIntegerTypeHasItsRange) {
    EXPECT_EQ(static_cast<int>(Real(-7.9)), -7);
    EXPECT_EQ(static_cast<int>(Real(3e9)), std::numeric_limits<int>::max());
    EXPECT_EQ(static_cast<int>(Real(-3e9)), std::numeric_limits<int>::min());
    EXPECT_EQ(static_cast<signed char>(Real(-128)), -128);
    EXPECT_EQ(static_cast<unsigned>(Real(-1)), 0U);
    EXPECT_EQ(static_cast<unsigned long long>(ldexp(Real(1), 64) - 1), std::numeric_limits<uint64_t>::max());
    EXPECT_EQ(static_cast<unsigned long long>(ldexp(Real(1), 64)), std::numeric_limits<uint64_t>::max());
    EXPECT_EQ(static_cast<long>(Real(123)), 123L);
    EXPECT_EQ(static_cast<float>(Real(0.25)), 0.25F);
    EXPECT_EQ(static_cast<long double>(Real(0.25)), 0.25L);
}

TEST_F(RealNumbers, ANumberIsTrueWhenItIsNotZero) {
    EXPECT_TRUE(Real(0.5) ? true : false);
    EXPECT_FALSE(Real() ? true : false);
    EXPECT_TRUE(!-Real());
}

TEST_F(RealNumbers, WhatWouldLoseDigitsOrBitsIsNotTaken) {
    EXPECT_FALSE((std::is_constructible_v<Real, long double>));
    EXPECT_FALSE((std::is_constructible_v<Real, std::nullptr_t>));
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = __int128;
    EXPECT_FALSE((IS_INTEGER<Wide>));
#endif
}

TEST_F(RealNumbers, DoublesAreExactBothWays) {
    for (const double number : {0.1, -1e300, 5e-324, 1.0 / 3, 123456.789})
        EXPECT_EQ(static_cast<double>(Real(number)), number);
    EXPECT_NE(Real(0.1), Real(1) / 10);
    EXPECT_EQ(Real(1.5F), Real(3) / 2);
}

TEST_F(RealNumbers, ComparisonsHaveAnOrder) {
    const Real numbers[] = {Limits::lowest(), -1, 0, Limits::min(), 1, Real(1) + Limits::epsilon(),
                            Limits::max()};
    for (size_t i = 0; i < std::size(numbers); ++i) {
        for (size_t k = 0; k < std::size(numbers); ++k) {
            EXPECT_EQ(numbers[i] < numbers[k], i < k);
            EXPECT_EQ(numbers[i] <= numbers[k], i <= k);
            EXPECT_EQ(numbers[i] > numbers[k], i > k);
            EXPECT_EQ(numbers[i] >= numbers[k], i >= k);
            EXPECT_EQ(numbers[i] == numbers[k], i == k);
            EXPECT_EQ(numbers[i] != numbers[k], i != k);
        }
    }
}

TEST_F(RealNumbers, EqualNumbersHaveEqualHashes) {
    const std::hash<Real> hash;
    EXPECT_EQ(hash(Real(2) * 3), hash(Real(6)));
    EXPECT_EQ(Real(), -Real());
    EXPECT_EQ(hash(Real()), hash(-Real()));
    const Real tiny = Limits::min();
    EXPECT_EQ(tiny, tiny + Limits::min() * Limits::epsilon()); // which is nothing
    EXPECT_EQ(hash(tiny * 3), hash(tiny * 2 + tiny));
    std::unordered_set<Real> different;
    for (int i = -500; i < 500; ++i) different.insert(Real(i) / 7);
    EXPECT_EQ(different.size(), 1000U);
    EXPECT_EQ(different.count(Real(3) / 7), 1U);
}

TEST_F(RealNumbers, HashesOfDifferentNumbersDiffer) {
    std::unordered_set<size_t> hashes;
    for (int i = -500; i < 500; ++i) hashes.insert(std::hash<Real>()(Real(i) / 7));
    EXPECT_EQ(hashes.size(), 1000U);
}

TEST_F(RealNumbers, LimitsAreThoseOfTheFormat) {
    EXPECT_NE(Real(1) + Limits::epsilon(), Real(1));
    EXPECT_EQ(Real(1) + Limits::epsilon() / 4, Real(1));
    EXPECT_EQ(Limits::epsilon(), ldexp(Real(1), -351));
    // 2^max_exponent is beyond the range, and half of it is not; the least number's half is nothing.
    EXPECT_LT(ldexp(Real(1), Limits::max_exponent - 1), Limits::max());
    EXPECT_TRUE((Limits::max() * 4).IsOverflow());
    EXPECT_EQ(takeError(), 3);
    EXPECT_EQ(Limits::min(), ldexp(Real(1), Limits::min_exponent - 1));
    EXPECT_GT(Limits::min(), Real());
    EXPECT_EQ(Limits::min() / 2, Real());
    EXPECT_EQ(Limits::lowest(), -Limits::max());
    // 10^max_exponent10 and 10^min_exponent10 are in the range, those beyond them are not.
    EXPECT_LT(Real("1e9863"), Limits::max());
    EXPECT_TRUE(Real("1e9864").IsOverflow());
    EXPECT_EQ(takeError(), 3);
    EXPECT_EQ(toString(Real("1e-9864"), 5), "1e-9864"); // and qcmp shows no difference to the least number
    EXPECT_EQ(Real("1e-9865"), Real());
    EXPECT_EQ(takeError(), 4);
    EXPECT_EQ(Limits::max_exponent10, 9863);
    EXPECT_EQ(Limits::min_exponent10, -9864);
}

TEST_F(RealNumbers, AFailureGivesAValueAndACodeThatIsTakenOnce) {
    EXPECT_TRUE((Real(1) / 0).IsOverflow());
    EXPECT_EQ(takeError(), 2);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(sqrt(Real(-1)), Real());
    EXPECT_EQ(takeError(), 1);
}

TEST_F(RealNumbers, AnOverflowHasTheSignOfTheResult) {
    const Real huge = Limits::max();
    EXPECT_FALSE((huge + huge).IsNegative());
    EXPECT_TRUE((-huge - huge).IsNegative());
    EXPECT_TRUE((huge * -2).IsNegative());
    EXPECT_TRUE((-huge / Limits::min()).IsNegative());
    EXPECT_TRUE((Real(-1) / 0).IsNegative());
    EXPECT_FALSE((Real(-1) / -Real()).IsNegative());
    EXPECT_FALSE(exp(huge).IsNegative());
    takeError();
}

TEST_F(RealNumbers, PartsOfANumber) {
    const auto expectParts = [](double x, double down, double up, double cut, double nearest) {
        EXPECT_EQ(floor(Real(x)), Real(down)) << x;
        EXPECT_EQ(ceil(Real(x)), Real(up)) << x;
        EXPECT_EQ(trunc(Real(x)), Real(cut)) << x;
        EXPECT_EQ(round(Real(x)), Real(nearest)) << x;
    };
    expectParts(2.5, 2, 3, 2, 3);
    expectParts(-2.5, -3, -2, -2, -3);
    expectParts(0.25, 0, 1, 0, 0);
    expectParts(-7, -7, -7, -7, -7);
    EXPECT_EQ(abs(Real(-2)), Real(2));
    EXPECT_EQ(fmod(Real(-7), Real(3)), Real(std::fmod(-7, 3)));
    EXPECT_EQ(fmod(Real(7.5), Real(-2)), Real(std::fmod(7.5, -2)));
    EXPECT_EQ(ldexp(Real(3), 4), Real(48));
    EXPECT_EQ(ldexp(Real(), 4), Real());
    int64_t exponent = 0;
    EXPECT_EQ(frexp(Real(48), &exponent), Real(0.75));
    EXPECT_EQ(exponent, 6);
    EXPECT_TRUE(signbit(Real(-1)));
    EXPECT_FALSE(signbit(Real(1)));
}

// Against the doubles of the standard library, near enough to tell one function from another.
TEST_F(RealNumbers, EachFunctionIsTheOneOfItsName) {
    const double x = 0.375;
    const auto expectNear = [](const Real& value, double expected) {
        EXPECT_NEAR(static_cast<double>(value), expected, 1e-14);
    };
    expectNear(sqrt(Real(x)), std::sqrt(x));
    expectNear(exp(Real(x)), std::exp(x));
    expectNear(log(Real(x)), std::log(x));
    expectNear(log(Real(8), Real(2)), 3);
    expectNear(log2(Real(x)), std::log2(x));
    expectNear(log10(Real(x)), std::log10(x));
    expectNear(pow(Real(x), Real(2.5)), std::pow(x, 2.5));
    expectNear(sin(Real(x)), std::sin(x));
    expectNear(cos(Real(x)), std::cos(x));
    expectNear(tan(Real(x)), std::tan(x));
    expectNear(asin(Real(x)), std::asin(x));
    expectNear(acos(Real(x)), std::acos(x));
    expectNear(atan(Real(x)), std::atan(x));
    expectNear(sinh(Real(x)), std::sinh(x));
    expectNear(cosh(Real(x)), std::cosh(x));
    expectNear(tanh(Real(x)), std::tanh(x));
    expectNear(pi(), std::acos(-1.0));
    expectNear(ln2(), std::log(2.0));
}

TEST_F(RealNumbers, DegreesAreExactWhereTheValueIs) {
    EXPECT_EQ(sinDegrees(Real(30)), Real(0.5));
    EXPECT_EQ(cosDegrees(Real(120)), Real(-0.5));
    EXPECT_EQ(tanDegrees(Real(45)), Real(1));
    EXPECT_EQ(asinDegrees(Real(0.5)), Real(30));
    EXPECT_EQ(acosDegrees(Real(-0.5)), Real(120));
    EXPECT_EQ(atanDegrees(Real(1)), Real(45));
    EXPECT_EQ(factorial(Real(5)), Real(120));
}

// As templates that know no type call them.
template <typename Number> Number hypotenuse(Number a, Number b) {
    using std::sqrt;
    return sqrt(a * a + b * b);
}

TEST_F(RealNumbers, GenericCodeFindsTheFunctions) {
    EXPECT_EQ(hypotenuse(Real(3), Real(4)), Real(5));
    EXPECT_EQ(std::max(Real(3), Real(4)), Real(4));
}
