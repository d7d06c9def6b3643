// SPDX-License-Identifier: MIT
//
// qadd and qsub: bit for bit against the rule over GMP integers, and against the exact sum.
#include "../cases.h"
#include "model.h"
#include "oracle.h"

#include "qfloat.h"

namespace oracle::test_add {

constexpr int CASES = cases(100000);

using Routine = void (*)(const qfloat, const qfloat, qfloat);

struct Outcome {
    Number result;
    int code;
};

Outcome run(Routine routine, const uint32_t* a, const uint32_t* b, uint32_t* c) {
    merror = 0;
    routine(a, b, c);
    Outcome o{{}, merror};
    std::copy(c, c + 14, o.result.begin());
    return o;
}

// Exponent 0 is zero whatever the other words hold.
bool same(const Outcome& got, const model::Sum& expected) {
    if (got.code != expected.code) return false;
    if (expected.result[1] == 0) return got.result[1] == 0;
    return got.result == expected.result;
}

std::string describe(const Number& a, const Number& b, const Outcome& got, const model::Sum& expected) {
    return "\n a        " + show(a) + "\n b        " + show(b) + "\n got      " + show(got.result) +
           " code " + std::to_string(got.code) + "\n expected " + show(expected.result) + " code " +
           std::to_string(expected.code);
}

// The result lies within one unit of the last place of the exact sum, unless a rule says otherwise.
bool nearExact(const Number& a, const Number& b, bool subtract, const model::Sum& expected) {
    if (expected.flushed || expected.ranged || expected.code != 0) return true;
    Real sum(900);
    if (subtract) {
        mpfr_sub(sum, Real(b), Real(a), MPFR_RNDN);
    } else {
        mpfr_add(sum, Real(b), Real(a), MPFR_RNDN);
    }
    if (expected.result[1] == 0) {
        // A sum of exponent 0 lies just below the range.
        return mpfr_zero_p(sum) || mpfr_get_exp(sum) + BIAS < 1;
    }
    return errorInUlps(expected.result, sum) <= 1;
}

class Addition : public Seeded {
protected:
    // All ways to place the output for one pair of operands.
    void CheckPair(Routine routine, bool subtract, const Number& a, const Number& b) {
        const uint32_t oldSign = random.Chance(50) ? NEGATIVE_SIGN : 0;
        Number c = overflowValue(oldSign);
        Check(routine, subtract, a, b, a.data(), b.data(), c);
        EXPECT_TRUE(nearExact(a, b, subtract, model::add(a, b, subtract, oldSign))) << show(a) << show(b);
        Number first = a;
        Check(routine, subtract, a, b, first.data(), b.data(), first);
        Number second = b;
        Check(routine, subtract, a, b, a.data(), second.data(), second);
        Number both = a;
        c = overflowValue(oldSign);
        Check(routine, subtract, a, a, both.data(), both.data(), c);
        Check(routine, subtract, a, a, both.data(), both.data(), both);
    }

    void CheckMany(Routine routine, bool subtract) {
        for (int i = 0; i < CASES && !HasFailure(); ++i) {
            const Number a = randomOperand(random);
            const Number b = randomPartner(random, a);
            CheckPair(routine, subtract, a, b);
        }
    }

private:
    // c may be the array that a or b points to.
    static void Check(Routine routine, bool subtract, const Number& a, const Number& b, const uint32_t* pa,
                      const uint32_t* pb, Number& c) {
        const model::Sum expected = model::add(a, b, subtract, c[0]);
        const Outcome got = run(routine, pa, pb, c.data());
        EXPECT_TRUE(same(got, expected)) << describe(a, b, got, expected);
    }
};

TEST_F(Addition, SumsMatchTheRuleBitForBit) {
    CheckMany(qadd, false);
}
TEST_F(Addition, DifferencesMatchTheRuleBitForBit) {
    CheckMany(qsub, true);
}

TEST_F(Addition, OfNumbersThatOneLimbHoldsMatchesTheRule) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const auto operand = [&] {
            Number a{};
            a[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
            a[1] = static_cast<uint32_t>(random.Chance(10) ? random.Between(0xFFF0, 0x10000)
                                                           : random.Between(0x8000, 0x8042));
            a[3] = static_cast<uint32_t>(random.Between(0x80000000, 0xFFFFFFFF));
            if (random.Chance(70)) a[3] &= 0xFFFFFFFFU << random.Between(0, 31);
            if (random.Chance(30)) a[4] = static_cast<uint32_t>(random.Between(0, 0xFFFFFFFF));
            return a;
        };
        const Number a = operand(), b = operand();
        CheckPair(qadd, false, a, b);
        CheckPair(qsub, true, a, b);
    }
}

TEST_F(Addition, DifferencesNearTheCancellationThresholdMatchTheRule) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number a = randomMantissa(random);
        a[1] = static_cast<uint32_t>(randomExponent(random));
        mpz_class mantissa = wordsToInteger(a.data(), 3, 13) - static_cast<long>(random.Between(4080, 4110));
        if (mantissa < power2(MANTISSA_BITS - 1)) continue;
        CheckPair(qsub, true, a, store({false, a[1], mantissa}));
    }
}

Number sum(const Number& a, const Number& b) {
    Number c{};
    qadd(a.data(), b.data(), c.data());
    return c;
}

// b - a
Number difference(const Number& a, const Number& b) {
    Number c{};
    qsub(a.data(), b.data(), c.data());
    return c;
}

Number integer(long n) {
    Real v;
    mpfr_set_si(v, n, MPFR_RNDN);
    return exactly(v);
}

// 1 + units * 2^-351
Number onePlusUnits(unsigned long units) {
    return store({false, 0x8001, power2(351) + units});
}

TEST(Add, OneAndMinusOneIsZero) {
    EXPECT_EQ(sum(integer(1), integer(-1)), Number{});
    EXPECT_EQ(sum(integer(-1), integer(1)), Number{});
}

TEST(Subtract, TakesTheSubtrahendFirst) {
    EXPECT_EQ(difference(integer(2), integer(5)), integer(3));
    EXPECT_EQ(difference(integer(5), integer(2)), integer(-3));
    EXPECT_EQ(difference(integer(0), integer(2)), integer(2));
    EXPECT_EQ(difference(integer(2), integer(0)), integer(-2));
    EXPECT_EQ(difference(integer(0), integer(0)), Number{});
}

TEST(Subtract, OfANumberFromItselfIsZero) {
    const Number x = decimal("123.456e-700");
    EXPECT_EQ(difference(x, x), Number{});
    EXPECT_EQ(difference(overflowValue(0), overflowValue(0)), Number{});
}

TEST(Add, OfANumberToItselfRaisesTheExponentByOne) {
    Number x = decimal("-1.7e99");
    const Number twice = sum(x, x);
    ++x[1];
    EXPECT_EQ(twice, x);
}

TEST(Add, OfTheLargestExponentToItselfKeepsItsMantissa) {
    merror = 0;
    const Number x = store({true, 0xFFFF, mpz_class(5) << 349});
    Number expected = x;
    expected[1] = 0x10000;
    EXPECT_EQ(sum(x, x), expected);
    EXPECT_EQ(merror, 0);
}

TEST(Add, OfTheOverflowValueToItselfOverflowsWithItsSign) {
    for (const uint32_t sign : {uint32_t{0}, NEGATIVE_SIGN}) {
        merror = 0;
        Number c{};
        c[0] = ~sign;
        const Number x = overflowValue(sign);
        qadd(x.data(), x.data(), c.data());
        EXPECT_EQ(c, overflowValue(sign));
        EXPECT_EQ(merror, 3);
    }
    merror = 0;
}

TEST(Add, OverflowDoesNotWriteTheSignWordOfTheOutput) {
    const Number a = store({false, 0x10000, power2(351) + 1});
    const Number b = store({false, 0x10000, power2(351) + 2});
    for (const uint32_t sign : {uint32_t{0}, NEGATIVE_SIGN, uint32_t{7}}) {
        merror = 0;
        Number c{};
        c[0] = sign;
        qadd(a.data(), b.data(), c.data());
        EXPECT_EQ(c, overflowValue(sign));
        EXPECT_EQ(merror, 3);
    }
    merror = 0;
}

TEST(Add, ASumThatReachesExponent10000IsKept) {
    merror = 0;
    const Number a = store({false, 0xFFFF, power2(351) + 1});
    const Number b = store({false, 0xFFFF, power2(351) + 3});
    EXPECT_EQ(sum(a, b), store({false, 0x10000, power2(351) + 2}));
    EXPECT_EQ(merror, 0);
}

TEST(Add, RoundingUpCanOverflow) {
    // (2 - 2^-351) + half a unit at exponent 0x10000: the carry of the rounding leaves the range.
    Number big = overflowValue(0);
    const Number half = store({false, 0x10000 - 352, power2(351)});
    merror = 0;
    EXPECT_EQ(sum(big, half), overflowValue(0));
    EXPECT_EQ(merror, 3);
    merror = 0;
}

TEST(CancellationFlush, ADifferenceBelow4095UnitsIsZero) {
    EXPECT_EQ(difference(onePlusUnits(0), onePlusUnits(1)), Number{});
    EXPECT_EQ(difference(onePlusUnits(1000), onePlusUnits(5094)), Number{}) << "4094 units";
    EXPECT_EQ(difference(onePlusUnits(5094), onePlusUnits(1000)), Number{}) << "-4094 units";
}

TEST(CancellationFlush, ADifferenceOfExactly4095UnitsIsKept) {
    EXPECT_EQ(difference(onePlusUnits(1000), onePlusUnits(5095)), scaled("FFF", -351));
    EXPECT_EQ(difference(onePlusUnits(5095), onePlusUnits(1000)), scaled("-FFF", -351));
    EXPECT_EQ(difference(onePlusUnits(0), onePlusUnits(4096)), scaled("1000", -351));
}

TEST(CancellationFlush, HoldsAcrossNeighboringExponents) {
    // 1 - (1 - n * 2^-352): the raw difference is n / 2 units, the half being in the guard word.
    const auto justBelowOne = [](unsigned long n) { return store({false, 0x8000, power2(352) - n}); };
    EXPECT_EQ(difference(justBelowOne(8188), integer(1)), Number{}) << "4094 units";
    EXPECT_EQ(difference(justBelowOne(8189), integer(1)), Number{}) << "4094.5 units";
    EXPECT_EQ(difference(justBelowOne(8190), integer(1)), scaled("1FFE", -352)) << "4095 units";
}

TEST(Rounding, AnAdditionOfMagnitudesRoundsHalfUp) {
    // Exponent difference 352: the smaller operand's top bit is the guard word's top bit.
    const Number half = store({false, 0x8001 - 352, power2(351)});
    EXPECT_EQ(sum(half, integer(1)), onePlusUnits(1)) << "a tie goes up";
    const Number odd = onePlusUnits(1);
    EXPECT_EQ(sum(half, odd), onePlusUnits(2));
    const Number belowHalf = store({false, 0x8001 - 353, power2(352) - 1});
    EXPECT_EQ(sum(belowHalf, integer(1)), onePlusUnits(0));
    Number minusHalf = half;
    minusHalf[0] = NEGATIVE_SIGN;
    Number expected = onePlusUnits(1);
    expected[0] = NEGATIVE_SIGN;
    EXPECT_EQ(sum(minusHalf, integer(-1)), expected) << "away from zero";
}

TEST(Rounding, ASubtractionOfMagnitudesIsCut) {
    // (1 + 3 units) - 1/4 unit = 1 + 2.75 units, cut to 2.
    const Number quarter = store({false, 0x8001 - 353, power2(351)});
    EXPECT_EQ(difference(quarter, onePlusUnits(3)), onePlusUnits(2));
    Number minus = quarter;
    minus[0] = NEGATIVE_SIGN;
    EXPECT_EQ(sum(minus, onePlusUnits(3)), onePlusUnits(2));
}

TEST(ExponentDistance, Beyond353TheLargerOperandIsTheSumUnchanged) {
    const Number tiny = store({false, 0x8001 - 354, power2(352) - 1});
    EXPECT_EQ(sum(tiny, integer(1)), integer(1));
    EXPECT_EQ(difference(tiny, integer(1)), integer(1));
    EXPECT_EQ(difference(integer(1), tiny), integer(-1));
    EXPECT_EQ(sum(tiny, integer(-1)), integer(-1));
    merror = 0;
    EXPECT_EQ(sum(integer(1), overflowValue(NEGATIVE_SIGN)), overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 0);
}

TEST(ExponentDistance, At353ADifferenceIsStillCutBelowTheLargerOperand) {
    const Number tiny = store({false, 0x8001 - 353, power2(351)});
    EXPECT_EQ(difference(tiny, onePlusUnits(1)), onePlusUnits(0));
    EXPECT_EQ(sum(tiny, onePlusUnits(1)), onePlusUnits(1));
}

TEST(Underflow, ADifferenceBelowTheRangeIsZeroWithoutACode) {
    const Number a = store({false, 1, power2(351)});
    const Number b = store({false, 1, power2(351) + power2(350)});
    merror = 0;
    EXPECT_EQ(difference(a, b)[1], 0U) << "a quarter of the smallest exponent";
    const Number c = store({false, 1, power2(351) + power2(300)});
    EXPECT_EQ(difference(a, c), Number{});
    EXPECT_EQ(merror, 0);
}

} // namespace oracle::test_add
