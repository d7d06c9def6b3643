// SPDX-License-Identifier: MIT
//
// qcmp, and the routines that copy a number or touch its sign.
#include "../cases.h"
#include "model.h"
#include "oracle.h"

#include "qfloat.h"

namespace oracle::test_compare {

constexpr int CASES = cases(100000);

// Numbers of exponents up to 352 are compared by their difference, which may be flushed to zero.
int expectedOrder(const Number& a, const Number& b) {
    if (a[1] <= 352 && b[1] <= 352) {
        const Number difference = model::add(b, a, true, 0).result;
        return difference[1] == 0 ? 0 : difference[0] != 0 ? -1 : 1;
    }
    const int order = mpfr_cmp(Real(a), Real(b));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

class Compare : public Seeded {
protected:
    static void Check(const Number& a, const Number& b) {
        const Number copyOfA = a;
        EXPECT_EQ(qcmp(a.data(), b.data()), expectedOrder(a, b)) << show(a) << show(b);
        EXPECT_EQ(qcmp(b.data(), a.data()), expectedOrder(b, a)) << show(a) << show(b);
        EXPECT_EQ(qcmp(a.data(), a.data()), 0) << show(a);
        EXPECT_EQ(a, copyOfA) << "the operands stay as they are";
    }
};

TEST_F(Compare, OrdersRandomNumbers) {
    merror = 0;
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number a = randomOperand(random);
        Check(a, randomPartner(random, a));
    }
    EXPECT_EQ(merror, 0);
}

TEST_F(Compare, TinyNumbersFollowTheirFlushedDifference) {
    merror = 0;
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number a = randomOperand(random);
        if (a[1] != 0) a[1] = static_cast<uint32_t>(random.Between(1, 354));
        Number b = randomPartner(random, a);
        if (b[1] > 400) b[1] = static_cast<uint32_t>(random.Between(1, 354));
        Check(a, b);
    }
    EXPECT_EQ(merror, 0);
}

TEST(CompareByHand, SignsZerosAndTheOverflowValue) {
    const auto order = [](const Number& a, const Number& b) { return qcmp(a.data(), b.data()); };
    EXPECT_EQ(order(decimal("-1"), decimal("1")), -1);
    EXPECT_EQ(order(decimal("1"), decimal("-1")), 1);
    EXPECT_EQ(order(decimal("2"), decimal("1")), 1);
    EXPECT_EQ(order(decimal("-2"), decimal("-1")), -1);
    EXPECT_EQ(order(Number{}, Number{}), 0);
    EXPECT_EQ(order(Number{}, decimal("-1e-9000")), 1);
    EXPECT_EQ(order(Number{}, decimal("1e-9864")), -1);
    EXPECT_EQ(order(overflowValue(0), decimal("1e9863")), 1);
    EXPECT_EQ(order(overflowValue(NEGATIVE_SIGN), decimal("-1e9863")), -1);
    EXPECT_EQ(order(overflowValue(0), overflowValue(0)), 0);
    EXPECT_EQ(order(overflowValue(0), overflowValue(NEGATIVE_SIGN)), 1);
}

TEST(CompareByHand, ZeroWithTheNegativeSignEqualsZero) {
    Number zero{};
    zero[0] = NEGATIVE_SIGN;
    EXPECT_EQ(qcmp(zero.data(), Number{}.data()), 0);
    EXPECT_EQ(qcmp(Number{}.data(), zero.data()), 0);
}

TEST(CompareByHand, ExactlyOneUnitApartAboveTheTinyRangeDiffers) {
    const Number a = store({false, 353, power2(351)});
    const Number b = store({false, 353, power2(351) + 1});
    EXPECT_EQ(qcmp(a.data(), b.data()), -1);
    EXPECT_EQ(qcmp(b.data(), a.data()), 1);
}

TEST(CompareByHand, TinyNumbersWithAFlushedDifferenceAreEqual) {
    const Number a = store({false, 352, power2(351)});
    const Number b = store({false, 352, power2(351) + 4094});
    const Number c = store({false, 352, power2(351) + 4095});
    EXPECT_EQ(qcmp(a.data(), b.data()), 0);
    EXPECT_EQ(qcmp(a.data(), c.data()), -1);
    EXPECT_EQ(qcmp(c.data(), a.data()), 1);
    const Number above = store({false, 353, power2(351)});
    const Number below = store({false, 352, power2(352) - 1});
    EXPECT_EQ(qcmp(above.data(), below.data()), 1) << "one exponent above 352 is enough for the direct way";
}

TEST(CompareByHand, SetsNoErrorCodeAndLeavesTheCodeAlone) {
    merror = 5;
    const Number a = store({false, 1, power2(351)});
    const Number b = store({true, 1, power2(351) + 1});
    EXPECT_EQ(qcmp(a.data(), b.data()), 1);
    EXPECT_EQ(merror, 5);
    merror = 0;
}

// ---------------------------------------------------------------------------------------------------------

TEST(Copy, QmovCopiesFourteenWordsAndNoMore) {
    const Number a = decimal("-1.25e300");
    Register b;
    b.fill(0xA5A5A5A5);
    qmov(a.data(), b.data());
    EXPECT_TRUE(std::equal(a.begin(), a.end(), b.begin()));
    EXPECT_EQ(b[14], 0xA5A5A5A5);
    qmov(b.data(), b.data());
    EXPECT_TRUE(std::equal(a.begin(), a.end(), b.begin())) << "onto itself";
}

TEST(Copy, QmovzAlsoClearsTheGuardWordOfTheRegister) {
    const Number a = decimal("-1.25e300");
    Register b;
    b.fill(0xA5A5A5A5);
    qmovz(a.data(), b.data());
    EXPECT_TRUE(std::equal(a.begin(), a.end(), b.begin()));
    EXPECT_EQ(b[14], 0U);
}

TEST(Copy, QclearZeroesFourteenWordsAndNoMore) {
    Register b;
    b.fill(0xA5A5A5A5);
    qclear(b.data());
    for (size_t i = 0; i < 14; ++i) EXPECT_EQ(b[i], 0U);
    EXPECT_EQ(b[14], 0xA5A5A5A5);
}

TEST(Sign, QnegComplementsTheSignWord) {
    Number a = decimal("3");
    qneg(a.data());
    EXPECT_EQ(a, decimal("-3"));
    qneg(a.data());
    EXPECT_EQ(a, decimal("3"));
}

TEST(Sign, QnegOfAnyNegativeSignWordGivesAPositiveNumber) {
    Number a = decimal("3");
    a[0] = 1;
    qneg(a.data());
    EXPECT_EQ(a[0], 0U);
    qneg(a.data());
    EXPECT_EQ(a[0], NEGATIVE_SIGN);
}

TEST(Sign, AnyNonZeroSignWordCountsAsNegative) {
    Number a = decimal("3");
    EXPECT_EQ(qisneg(a.data()), 0);
    for (const uint32_t sign : {uint32_t{1}, uint32_t{0x80000000}, NEGATIVE_SIGN}) {
        a[0] = sign;
        EXPECT_EQ(qisneg(a.data()), 1);
    }
}

TEST(Sign, QabsClearsTheSignWord) {
    Number a = decimal("-3");
    qabs(a.data());
    EXPECT_EQ(a, decimal("3"));
    qabs(a.data());
    EXPECT_EQ(a, decimal("3"));
    a[0] = 1;
    qabs(a.data());
    EXPECT_EQ(a, decimal("3"));
}

TEST(OverflowValue, QinfinLeavesTheSignWord) {
    for (const uint32_t sign : {uint32_t{0}, uint32_t{1}, NEGATIVE_SIGN}) {
        Number a = decimal("3");
        a[0] = sign;
        merror = 0;
        qinfin(a.data());
        EXPECT_EQ(a, overflowValue(sign));
        EXPECT_EQ(merror, 0);
    }
}

} // namespace oracle::test_compare
