// SPDX-License-Identifier: MIT
//
// What the routines do at the edges of the format: the flag that sums leave behind, exponent word 0,
// mantissas that are not normalized, exponents that leave the range.
#include "oracle.h"

#include "qfloat.h"
#include "qregister.h"

namespace oracle::test_edges {

// mantissa words 3 and 4, the others zero
Number raw(uint32_t exponent, uint32_t word3, uint32_t word4 = 0) {
    Number q{};
    q[1] = exponent;
    q[3] = word3;
    q[4] = word4;
    return q;
}

int flagAfter(void (*routine)(const qfloat, const qfloat, qfloat), const char* a, const char* b) {
    const Number x = decimal(a), y = decimal(b);
    Number z{};
    subflg = 7;
    routine(x.data(), y.data(), z.data());
    return subflg;
}

TEST(SubtractFlag, TellsSumsOfMagnitudesFromDifferences) {
    EXPECT_EQ(flagAfter(qadd, "1", "3"), 0);
    EXPECT_EQ(flagAfter(qadd, "1", "-3"), 1);
    EXPECT_EQ(flagAfter(qsub, "1", "3"), 1);
    EXPECT_EQ(flagAfter(qsub, "-1", "3"), 0);
}

TEST(SubtractFlag, IsWhatTheCallSetWhereNothingIsAddedUp) {
    EXPECT_EQ(flagAfter(qadd, "1", "1e200"), 0) << "too far apart";
    EXPECT_EQ(flagAfter(qsub, "-1", "1e200"), 1) << "too far apart";
    EXPECT_EQ(flagAfter(qadd, "3", "-3"), 0) << "equal";
    EXPECT_EQ(flagAfter(qsub, "-3", "3"), 1) << "equal";
}

// The exponent alone decides which operand is taken from which: of a mantissa that is not normalized the sign
// shows that it was the other way round.
TEST(Subtraction, OfASmallerMantissaWithALargerExponentHasTheOtherSign) {
    const Number one = decimal("1");
    Number small = raw(0x8002, 1); // 2^-30
    Number result{};
    qsub(one.data(), small.data(), result.data());
    EXPECT_NE(result[0], 0U);
    EXPECT_EQ(result[1], 0x8000U);
    EXPECT_EQ(result[3] >> 4, 0xFFFFFFFU);
    small[0] = 0xFFFFFFFF;
    qadd(one.data(), small.data(), result.data());
    EXPECT_EQ(result[0], 0U);
    EXPECT_EQ(result[1], 0x8000U);
}

TEST(SubtractFlag, IsSetByRoundingToAnInteger) {
    Number x = decimal("7"), y{};
    subflg = 0;
    qround(x.data(), y.data());
    EXPECT_EQ(subflg, 1);
    subflg = 0;
    qfixintegers(x.data());
    EXPECT_EQ(subflg, 1);
}

TEST(SubtractFlag, DecidesWhetherABitwiseResultIsRounded) {
    // 1 | 2^-352: the lower operand's bit falls into the top of the guard word.
    const Number one = decimal("1");
    Number tiny = one;
    tiny[1] -= 352;
    Number scratch{}, result{};
    const Number three = decimal("3");
    qsub(one.data(), three.data(), scratch.data());
    qlogic(one.data(), tiny.data(), result.data(), '|');
    EXPECT_EQ(result[13], 0U);
    qadd(one.data(), three.data(), scratch.data());
    qlogic(one.data(), tiny.data(), result.data(), '|');
    EXPECT_EQ(result[13], 1U);
}

TEST(ExponentZero, IsStoredByOneWordProductsAsItIs) {
    const Number half = raw(0x8000, 0x80000000), smallest = raw(1, 0xC0000000);
    Number z{};
    qmuli(half.data(), smallest.data(), z.data());
    EXPECT_EQ(z, raw(0, 0xC0000000));
    qmul(half.data(), smallest.data(), z.data());
    EXPECT_EQ(z, Number{}) << "a full product flushes it";
}

TEST(ExponentZero, IsStoredByDifferencesAsItIs) {
    const Number a = raw(1, 0xA0000000), b = raw(1, 0x80000000), c = raw(1, 0xC0000000);
    Number z{};
    qsub(b.data(), c.data(), z.data()); // 1/4 below the point: one shift
    EXPECT_EQ(z, raw(0, 0x80000000));
    EXPECT_EQ(qcmp(z.data(), qzero), 0) << "and counts as zero";
    qsub(b.data(), a.data(), z.data()); // 1/8: two shifts
    EXPECT_EQ(z, Number{}) << "below exponent 0";
}

TEST(ScaledZero, DividesAsASingularity) {
    Number zero{}, five = decimal("5"), z{};
    qldexp(zero.data(), 40, zero.data());
    EXPECT_EQ(zero[1], 40U);
    merror = 0;
    qdiv(zero.data(), five.data(), z.data());
    EXPECT_EQ(merror, 2);
    EXPECT_EQ(z, overflowValue(0));
    merror = 0;
}

TEST(Unnormalized, DivisorGivesTheQuotientOfItsValue) {
    const Number quarter = raw(0x8001, 0x20000000), three = decimal("3");
    Number z{};
    qdiv(quarter.data(), three.data(), z.data());
    EXPECT_EQ(z, decimal("12"));
}

TEST(Unnormalized, NumberPrintsItsValue) {
    char text[40];
    qtoasc(raw(0x8020, 1).data(), text, 3);
    EXPECT_STREQ(text, " 1.000E0");
}

TEST(Unnormalized, PrimitiveDivisorDoesNotTrap) {
    Register x{}, y{};
    y[1] = 4;
    y[3] = 0x80000000;
    divm(x.data(), y.data());
    EXPECT_EQ(y[3], 0x80000000U) << "a zero divisor leaves the dividend";
    x[3] = 0x40000000;
    x[4] = 1;
    divm(x.data(), y.data());
    EXPECT_NE(y[3] & 0x80000000, 0U);
}

TEST(Normalizing, OutOfTheRangeGivesZeroOrOverflow) {
    Number q = raw(5, 0, 0x80000000);
    qnrmlz(q.data());
    EXPECT_EQ(q, Number{});
    q = raw(0xFFFF, 0);
    q[2] = 0x80000000;
    merror = 0;
    qnrmlz(q.data());
    EXPECT_EQ(q, overflowValue(0));
    EXPECT_EQ(merror, 3);
    merror = 0;
}

TEST(ScalingByTen, ReachesFromOneEndOfTheRangeToTheOther) {
    Number q = decimal("1e-9800");
    qdecexp(q.data(), 19600);
    EXPECT_EQ(q, decimal("1e9800"));
    qdecexp(q.data(), -19600);
    EXPECT_EQ(q, decimal("1e-9800"));
}

} // namespace oracle::test_edges
