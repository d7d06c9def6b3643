// SPDX-License-Identifier: MIT
//
// qmul, qmuli, qdiv and qdecexp: the numbers nearest to the exact products and quotients.
#include "../cases.h"
#include "hard.h"
#include "oracle.h"

#include "qexact.h"
#include "qfloat.h"

namespace oracle::test_multiply_divide {

constexpr int CASES = cases(20000);

using Routine = void (*)(const qfloat, const qfloat, qfloat);

// `a` with the first mantissa word only.
Number firstWordOf(Number a) {
    std::fill(a.begin() + 4, a.end(), 0);
    return a;
}

struct Expectation {
    Number result{};
    int code = 0;
    bool keepSign = false; // the output's sign word is not written
};

void expectProduct(const Number& a, const Number& b, Expectation& e) {
    if (a[1] == 0 || b[1] == 0) return;
    Real exact;
    mpfr_mul(exact, Real(a), Real(b), MPFR_RNDN);
    e.result = withinRange(roundHalfUp(exact), e.code);
}

void expectShortProduct(const Number& a, const Number& b, Expectation& e) {
    expectProduct(firstWordOf(a), b, e);
}

void expectQuotient(const Number& a, const Number& b, Expectation& e) {
    if (b[1] == 0) return;
    if (a[1] == 0) {
        e.result = overflowValue(0);
        e.code = 2;
        e.keepSign = true;
        return;
    }
    Real exact;
    mpfr_div(exact, Real(b), Real(a), MPFR_RNDN);
    e.result = withinRange(roundHalfUp(exact), e.code);
}

class Product : public Seeded {
protected:
    using Oracle = void (*)(const Number&, const Number&, Expectation&);

    // a op b in one of the ways to pass the arrays: the output apart, in the place of a, in the place of b
    // (the first three), a for both, all in one.
    void CheckPair(Routine routine, Oracle oracle, const Number& a, const Number& b, int ways = 5) {
        const auto way = random.Between(0, ways - 1);
        const Number& second = way < 3 ? b : a;
        Number c = way == 1 || way == 4 ? a
                   : way == 2           ? b
                                        : overflowValue(random.Chance(50) ? NEGATIVE_SIGN : 0);
        Expectation e;
        oracle(a, second, e);
        if (e.keepSign) e.result[0] = c[0];
        merror = 0;
        routine(way == 1 || way == 4 ? c.data() : a.data(), way == 2 || way == 4 ? c.data() : second.data(),
                c.data());
        const bool same = e.result[1] == 0 ? c[1] == 0 : c == e.result;
        EXPECT_TRUE(same && merror == e.code)
            << "\n a        " << show(a) << "\n b        " << show(second) << "\n got      " << show(c)
            << " code " << merror << "\n expected " << show(e.result) << " code " << e.code;
    }

    // A number with a mantissa of at most 352 bits, around one.
    Number FromMantissa(const mpz_class& mantissa) {
        Real value;
        mpfr_set_z_2exp(value, mantissa.get_mpz_t(), -MANTISSA_BITS + random.Between(-9, 9), MPFR_RNDN);
        if (random.Chance(50)) mpfr_neg(value, value, MPFR_RNDN);
        return exactly(value);
    }

    // The result of every pair lies within 2^-330 units of a midpoint.
    void CheckHard(Routine routine, Oracle oracle, hard::Pair (*draw)(const hard::Source&)) {
        const uint64_t before = limb::comparisons;
        for (int i = 0; i < CASES && !HasFailure(); ++i) {
            const hard::Pair pair = draw([this] { return random.Next(); });
            CheckPair(routine, oracle, FromMantissa(pair.a), FromMantissa(pair.b), 3);
        }
        EXPECT_GT(limb::comparisons - before, CASES * 3 / 4) << "the pairs are not hard";
    }

    // Half of the pairs have a result inside the range or at its ends.
    void CheckMany(Routine routine, Oracle oracle, bool divide) {
        for (int i = 0; i < CASES && !HasFailure(); ++i) {
            const Number a = randomOperand(random);
            Number b = randomPartner(random, a);
            if (a[1] != 0 && b[1] != 0 && random.Chance(60)) {
                const int64_t e = random.Chance(50)   ? random.Between(1, 0xFFFF)
                                  : random.Chance(50) ? random.Between(-3, 4)
                                                      : random.Between(0xFFFC, 0x10002);
                const int64_t own = divide ? e - BIAS + a[1] : e + BIAS - a[1];
                b[1] = static_cast<uint32_t>(own < 1 ? 1 : own > 0xFFFF ? 0xFFFF : own);
            }
            CheckPair(routine, oracle, a, b);
        }
        merror = 0;
    }
};

TEST_F(Product, QmulIsTheNearestNumber) {
    CheckMany(qmul, expectProduct, false);
}
TEST_F(Product, QmulIsTheNearestNumberNextToMidpoints) {
    CheckHard(qmul, expectProduct, hard::product);
}
TEST_F(Product, QmuliUsesTheFirstWordAndIsTheNearestNumber) {
    CheckMany(qmuli, expectShortProduct, false);
}
TEST_F(Product, QdivIsTheNearestNumber) {
    CheckMany(qdiv, expectQuotient, true);
}
TEST_F(Product, QdivIsTheNearestNumberNextToMidpoints) {
    CheckHard(qdiv, expectQuotient, hard::quotient);
}

// Divisors and dividends whose leading limbs agree strain the digit estimates of a long division.
TEST_F(Product, QdivOfNearlyEqualLeadingBits) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number a = randomMantissa(random);
        Number b = a;
        a[1] = b[1] = 0x8001;
        for (auto k = static_cast<size_t>(random.Between(4, 13)); k < 14; ++k) {
            b[k] = random.Chance(40) ? 0 : random.Chance(50) ? 0xFFFFFFFF : random.Word();
            if (random.Chance(30)) a[k] = random.Chance(50) ? 0 : 0xFFFFFFFF;
        }
        CheckPair(qdiv, expectQuotient, a, b);
    }
}

TEST_F(Product, QuotientsThatAreExactComeOutExact) {
    for (int i = 0; i < CASES / 4 && !HasFailure(); ++i) {
        // b = a * q with two mantissas of at most 176 bits.
        Number a = randomMantissa(random);
        Number q = randomMantissa(random);
        for (size_t k = 8; k < 14; ++k) a[k] = q[k] = 0;
        a[8] = q[8] = random.Word() & 0xFFFF0000;
        a[1] = q[1] = 0x8003;
        Real product;
        mpfr_mul(product, Real(a), Real(q), MPFR_RNDN);
        const Number b = exactly(product);
        Number c{};
        qdiv(a.data(), b.data(), c.data());
        EXPECT_EQ(c, q) << show(a) << show(b);
        qmul(a.data(), q.data(), c.data());
        EXPECT_EQ(c, b) << show(a) << show(q);
    }
}

Number product(const Number& a, const Number& b) {
    Number c{};
    merror = 0;
    qmul(a.data(), b.data(), c.data());
    return c;
}

// b / a
Number quotient(const Number& a, const Number& b) {
    Number c{};
    merror = 0;
    qdiv(a.data(), b.data(), c.data());
    return c;
}

Number one() {
    return scaled("1", 0);
}
// 2^(n - 0x8000) * mantissa / 2^352: a number of exponent n
Number withExponent(int64_t n, bool negative = false) {
    return store({negative, n, mpz_class(5) << 349});
}

TEST(Qmul, SignsAndSmallNumbers) {
    EXPECT_EQ(product(decimal("3"), decimal("-7")), decimal("-21"));
    EXPECT_EQ(product(decimal("-3"), decimal("-7")), decimal("21"));
    EXPECT_EQ(product(decimal("-3"), Number{}), Number{});
    EXPECT_EQ(product(Number{}, decimal("-3")), Number{});
    EXPECT_EQ(product(overflowValue(0), Number{}), Number{});
}

TEST(Qmul, ATieOfTheShortPathRoundsAwayFromZero) {
    // 3 * (2^351 + 1) = 3 * 2^351 + 3 needs 353 bits; half of it is 3 * 2^350 + 1.5.
    const Number x = store({true, 0x8001, power2(351) + 1});
    const Number expected = store({true, 0x8002, 3 * power2(350) + 2});
    EXPECT_EQ(product(decimal("3"), x), expected);
    EXPECT_EQ(product(x, decimal("3")), expected);
}

TEST(Qmul, AResultOfExponent10000IsKept) {
    const Number x = withExponent(0xFFFF, true);
    EXPECT_EQ(product(decimal("2"), x), withExponent(0x10000, true));
    EXPECT_EQ(merror, 0);
    EXPECT_EQ(product(one(), overflowValue(NEGATIVE_SIGN)), overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 0);
}

TEST(Qmul, AboveExponent10000IsTheOverflowValueWithTheProductsSign) {
    EXPECT_EQ(product(decimal("-4"), withExponent(0xFFFF)), overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 3);
    EXPECT_EQ(product(decimal("-2"), overflowValue(NEGATIVE_SIGN)), overflowValue(0));
    EXPECT_EQ(merror, 3);
    EXPECT_EQ(product(overflowValue(0), overflowValue(NEGATIVE_SIGN)), overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 3);
    merror = 0;
}

TEST(Qmul, BelowTheRangeIsZeroWithoutACode) {
    EXPECT_EQ(product(decimal("0.5"), withExponent(2)), withExponent(1));
    EXPECT_EQ(product(decimal("-0.5"), withExponent(1)), Number{});
    EXPECT_EQ(product(withExponent(1), withExponent(1)), Number{});
    EXPECT_EQ(merror, 0);
}

TEST(Qmuli, EndsOfTheExponentRange) {
    Number c{};
    merror = 0;
    qmuli(decimal("-0.5").data(), withExponent(1).data(), c.data());
    EXPECT_EQ(c[1], 0U) << "exponent 0 is zero";
    qmuli(decimal("0.25").data(), withExponent(1).data(), c.data());
    EXPECT_EQ(c, Number{});
    EXPECT_EQ(merror, 0);
    qmuli(decimal("-10").data(), withExponent(0xFFFF).data(), c.data());
    EXPECT_EQ(c, overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 3);
    merror = 0;
}

TEST(Qdiv, TakesTheDivisorFirst) {
    EXPECT_EQ(quotient(decimal("4"), decimal("-10")), decimal("-2.5"));
    EXPECT_EQ(quotient(decimal("-10"), decimal("-10")), one());
    EXPECT_EQ(quotient(decimal("3"), one()),
              decimal("0.33333333333333333333333333333333333333333333333333333333333"
                      "33333333333333333333333333333333333333333333333333333333"));
}

TEST(Qdiv, ByZeroIsASingularityAndDoesNotWriteTheSignWord) {
    for (const uint32_t sign : {uint32_t{0}, NEGATIVE_SIGN, uint32_t{7}}) {
        Number c{};
        c[0] = sign;
        merror = 0;
        qdiv(Number{}.data(), decimal("-3").data(), c.data());
        EXPECT_EQ(c, overflowValue(sign));
        EXPECT_EQ(merror, 2);
    }
    Number x = decimal("-3");
    merror = 0;
    qdiv(Number{}.data(), x.data(), x.data());
    EXPECT_EQ(x, overflowValue(NEGATIVE_SIGN)) << "the output is the dividend and keeps its sign";
    EXPECT_EQ(merror, 2);
    merror = 0;
}

TEST(Qdiv, ZeroByAnythingIsZeroAlsoZeroByZero) {
    EXPECT_EQ(quotient(decimal("-3"), Number{}), Number{});
    EXPECT_EQ(merror, 0);
    EXPECT_EQ(quotient(Number{}, Number{}), Number{});
    EXPECT_EQ(merror, 0);
}

TEST(Qdiv, EndsOfTheExponentRange) {
    EXPECT_EQ(quotient(decimal("0.5"), withExponent(0xFFFF)), withExponent(0x10000));
    EXPECT_EQ(merror, 0);
    EXPECT_EQ(quotient(decimal("-0.25"), withExponent(0xFFFF)), overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 3);
    EXPECT_EQ(quotient(decimal("2"), withExponent(2)), withExponent(1));
    EXPECT_EQ(quotient(decimal("2"), withExponent(1)), Number{});
    EXPECT_EQ(merror, 0);
}

// ---------------------------------------------------------------------------------------------------------

class DecimalScale : public Product {
protected:
    static void Check(Number q, long n) {
        const Number before = q;
        Real exact(1500);
        mpfr_ui_pow_ui(exact, 10, static_cast<unsigned long>(n < 0 ? -n : n), MPFR_RNDN);
        if (n < 0) {
            mpfr_div(exact, Real(q), exact, MPFR_RNDN);
        } else {
            mpfr_mul(exact, Real(q), exact, MPFR_RNDN);
        }
        int code = 0;
        Rounded rounded = roundHalfUp(exact);
        if (rounded.exponent == OVERFLOW_EXPONENT) ++rounded.exponent; // the range ends with 0xFFFF
        const Number expected = withinRange(rounded, code);
        merror = 0;
        qdecexp(q.data(), n);
        EXPECT_TRUE(q == expected && merror == code)
            << show(before) << " * 10^" << n << " gave " << show(q) << " code " << merror;
        merror = 0;
    }
};

TEST_F(DecimalScale, IsTheNearestNumber) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number q = randomMantissa(random);
        q[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        q[1] = static_cast<uint32_t>(random.Between(1, 0xFFFF));
        Check(q, random.Chance(50) ? random.Between(-120, 120) : random.Between(-19800, 19800));
    }
}

TEST_F(DecimalScale, IsTheNearestNumberNextToMidpoints) {
    const uint64_t before = limb::comparisons;
    for (int i = 0; i < CASES / 2 && !HasFailure(); ++i) {
        const long n = random.Between(160, random.Chance(50) ? 400 : 9800) * (random.Chance(50) ? -1 : 1);
        const hard::Decimal x =
            hard::decimal([this] { return random.Next(); }, n,
                          static_cast<unsigned long>(random.Between(40, 350)), power2(352), power2(353));
        Check(FromMantissa(x.d), n);
        const long small = random.Between(12, 147) * (random.Chance(50) ? -1 : 1);
        Check(FromMantissa(hard::decimalNear([this] { return random.Next(); }, small)), small);
    }
    EXPECT_GT(limb::comparisons - before, CASES * 3 / 4) << "the numbers are not hard";
}

// Up to 10^16383 it is one step.
TEST_F(DecimalScale, IsTheNearestNumberWhereASecondStepBegins) {
    for (long n = 16381; n <= 16386; ++n) {
        Number q = randomMantissa(random);
        q[0] = 0;
        q[1] = 1000;
        Check(q, n);
        q[1] = 0xFFFF - 1000;
        Check(q, -n);
    }
}

TEST_F(DecimalScale, OfAProductHalfWayBetweenTwoNumbersIsTheLargerOne) {
    for (unsigned long n = 1; n < 150; ++n) {
        Check(FromMantissa(hard::decimalTie([this] { return random.Next(); }, n)), static_cast<long>(n));
    }
}

TEST(Qdecexp, EndsOfTheRange) {
    Number q = decimal("-2");
    merror = 0;
    qdecexp(q.data(), 20000);
    EXPECT_EQ(q, overflowValue(NEGATIVE_SIGN));
    EXPECT_EQ(merror, 3);
    merror = 0;
    q = decimal("-2");
    qdecexp(q.data(), -20000);
    EXPECT_EQ(q, Number{});
    EXPECT_EQ(merror, 0);
    qdecexp(q.data(), 20000);
    EXPECT_EQ(q, Number{}) << "zero stays zero";
    q = decimal("-2");
    qdecexp(q.data(), 0);
    EXPECT_EQ(q, decimal("-2"));
    qdecexp(q.data(), 3);
    EXPECT_EQ(q, decimal("-2000"));
}

} // namespace oracle::test_multiply_divide
