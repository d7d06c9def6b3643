// SPDX-License-Identifier: MIT
//
// qlogic, bit for bit.
#include "../cases.h"
#include "model.h"
#include "oracle.h"
#include "qregister.h"
#include "reference.h"

namespace oracle::test_logic {

constexpr int CASES = cases(20000);

const Number ZERO{};
const Number OVERFLOW = overflowValue(0);

template <char Op> void logic(const qfloat a, const qfloat b, qfloat c) {
    qlogic(a, b, c, Op);
}

double value(Binary routine, double a, double b) {
    subflg = 0;
    const Outcome o = run(routine, number(a), number(b));
    EXPECT_EQ(o.code, 0);
    double d;
    qtoe(o.value.data(), &d);
    EXPECT_EQ(o.value, number(d));
    return d;
}

TEST(Logic, CombinesTheBitsOfWholeNumbers) {
    EXPECT_EQ(value(logic<'&'>, 12, 10), 8);
    EXPECT_EQ(value(logic<'|'>, 12, 10), 14);
    EXPECT_EQ(value(logic<'^'>, 12, 10), 6);
    EXPECT_EQ(value(logic<'^'>, 5, 3), 6);
    EXPECT_EQ(value(logic<'&'>, 255, 4096 + 15), 15);
}

TEST(Logic, OfEqualNumbersWithExclusiveOrIsZero) {
    EXPECT_EQ(run(logic<'^'>, number(6), number(6)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(logic<'^'>, number(-6), number(6)), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(logic<'&'>, number(8), number(7)), (Outcome{ZERO, 0}));
}

TEST(Logic, TakesFractionBitsToo) {
    EXPECT_EQ(value(logic<'|'>, 1.5, 0.25), 1.75);
    EXPECT_EQ(value(logic<'&'>, 1.75, 0.25), 0.25);
}

TEST(Logic, ZeroHasNoBits) {
    EXPECT_EQ(value(logic<'|'>, 5, 0), 5);
    EXPECT_EQ(value(logic<'|'>, 0, -5), -5);
    EXPECT_EQ(value(logic<'^'>, 0, 5), 5);
    EXPECT_EQ(run(logic<'&'>, number(5), ZERO), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(logic<'|'>, ZERO, ZERO), (Outcome{ZERO, 0}));
    Number odd = number(3);
    odd[1] = 0; // exponent 0 is zero whatever the other words hold
    EXPECT_EQ(run(logic<'|'>, odd, number(4)), (Outcome{number(4), 0}));
}

// Sign and magnitude, no two's complement.
TEST(Logic, KeepsTheSignOfTheLargerExponentAndOfTheSecondOperandBetweenEqualOnes) {
    EXPECT_EQ(value(logic<'|'>, -12, 10), 14);
    EXPECT_EQ(value(logic<'|'>, 12, -10), -14);
    EXPECT_EQ(value(logic<'|'>, -16, 1), -17);
    EXPECT_EQ(value(logic<'|'>, 1, -16), -17);
    EXPECT_EQ(value(logic<'|'>, 16, -1), 17);
    EXPECT_EQ(value(logic<'&'>, -9, 1), -1);
    EXPECT_EQ(value(logic<'^'>, -1, 16), 17);
}

TEST(Logic, WithAnUnknownOperatorGivesTheOperandOfTheLargerExponent) {
    EXPECT_EQ(value(logic<'+'>, 12, 10), 10);
    EXPECT_EQ(value(logic<'+'>, 16, 10), 16);
    EXPECT_EQ(value(logic<'\0'>, 3, -10), -10);
}

// The rounding reads what the last sum or difference left, because nothing here sets it.
TEST(Logic, RoundsOnlyWhenTheLastSumAddedMagnitudes) {
    const Number large = neighbor(scaled("1", 352), 0); // its last place is 2
    const Number low = number(1);
    Number sum{};
    qadd(qone, qtwo, sum.data());
    EXPECT_EQ(run(logic<'|'>, low, large), (Outcome{neighbor(large, 1), 0}));
    qsub(qone, qthree, sum.data());
    EXPECT_EQ(run(logic<'|'>, low, large), (Outcome{large, 0}));
    qadd(number(-1).data(), qthree, sum.data());
    EXPECT_EQ(run(logic<'|'>, low, large), (Outcome{large, 0}));
    qsub(number(-1).data(), qthree, sum.data());
    EXPECT_EQ(run(logic<'|'>, low, large), (Outcome{neighbor(large, 1), 0}));
}

TEST(Logic, OverflowsByRoundingWithCodeThreeAndKeepsTheOutputsSignWord) {
    const Number low = scaled("1", 32768 - 353);
    for (const uint32_t sign : {0U, 0xFFFFFFFFU, 5U}) {
        Number c = number(1);
        c[0] = sign;
        subflg = 0;
        merror = 0;
        qlogic(low.data(), OVERFLOW.data(), c.data(), '|');
        EXPECT_EQ(c, overflowValue(sign));
        EXPECT_EQ(merror, 3);
    }
    merror = 0;
    subflg = 1;
    EXPECT_EQ(run(logic<'|'>, low, OVERFLOW), (Outcome{OVERFLOW, 0})) << "not rounded";
}

// ---------------------------------------------------------------------------------------------------------

// The same steps over GMP integers.  On overflow the output keeps its sign word.
Outcome expected(const Number& a, const Number& b, char op, bool rounds, uint32_t outputSign) {
    model::Work x = model::load(a), y = model::load(b);
    if (x.exponent > y.exponent) std::swap(x, y);
    x.words >>= static_cast<unsigned long>(y.exponent - x.exponent);
    mpz_class& words = y.words;
    if (op == '&') words &= x.words;
    if (op == '|') words |= x.words;
    if (op == '^') words ^= x.words;
    for (int pass = 0; pass < 2; ++pass) {
        if (words == 0) return {ZERO, 0};
        y.exponent -= model::normalize(y);
        if (y.exponent > oracle::OVERFLOW_EXPONENT) return {overflowValue(outputSign), 3};
        if (y.exponent < 0) return {ZERO, 0};
        if (pass == 0 && rounds && mpz_tstbit(words.get_mpz_t(), 31)) words += power2(32);
    }
    const Register r = model::toRegister(y);
    Number q;
    std::copy(r.begin(), r.begin() + 14, q.begin());
    return {q, 0};
}

class RandomLogic : public Seeded {
protected:
    static void Check(const Number& a, const Number& b, char op, bool rounds) {
        Number separate = number(-1), first = a, second = b;
        const auto call = [&](const Number& x, const Number& y, Number& c) {
            const Outcome wanted = expected(a, b, op, rounds, c[0]);
            subflg = rounds ? 0 : 1;
            merror = 0;
            qlogic(x.data(), y.data(), c.data(), op);
            EXPECT_EQ((Outcome{c, merror}), wanted) << show(a) << show(b) << op;
        };
        call(a, b, separate);
        call(first, b, first);
        call(a, second, second);
        merror = 0;
        subflg = 0;
    }
};

TEST_F(RandomLogic, IsExactToTheLastBit) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Number a = randomOperand(random);
        const Number b = randomPartner(random, a);
        for (const char op : {'&', '|', '^', '+'}) {
            Check(a, b, op, true);
            Check(a, b, op, false);
            Check(a, a, op, true);
        }
    }
}

} // namespace oracle::test_logic
