// SPDX-License-Identifier: MIT
//
// qmul, qmuli, qdiv and qdecexp against exact products and quotients.
#include "oracle.h"

#include "qfloat.h"

using namespace oracle;

namespace {

constexpr int CASES = 100000;

using Routine = void (*)(const qfloat, const qfloat, qfloat);

bool oneWord(const Number& q) {
    return std::all_of(q.begin() + 4, q.end(), [](uint32_t word) { return word == 0; });
}

// `a` with the first mantissa word only.
Number firstWordOf(Number a) {
    std::fill(a.begin() + 4, a.end(), 0);
    return a;
}

struct Expectation {
    Number result{};
    int code = 0;
    bool free = false;     // within range: any result within almostHalf of `exact` will do
    bool keepSign = false; // the output's sign word is not written
    Real exact;
};

void expectProduct(const Number& a, const Number& b, Expectation& e) {
    if (a[1] == 0 || b[1] == 0) return;
    mpfr_mul(e.exact, Real(a), Real(b), MPFR_RNDN);
    e.result = withinRange(roundHalfUp(e.exact), e.code);
    e.free = e.code == 0 && e.result[1] != 0 && !oneWord(a) && !oneWord(b);
}

void expectShortProduct(const Number& a, const Number& b, Expectation& e) {
    expectProduct(firstWordOf(a), b, e);
    e.free = false;
}

void expectQuotient(const Number& a, const Number& b, Expectation& e) {
    if (b[1] == 0) return;
    if (a[1] == 0) {
        e.result = overflowValue(0);
        e.code = 2;
        e.keepSign = true;
        return;
    }
    mpfr_div(e.exact, Real(b), Real(a), MPFR_RNDN);
    e.result = withinRange(roundHalfUp(e.exact), e.code);
    e.free = e.code == 0 && e.result[1] != 0 && !oneWord(a);
}

class Product : public Seeded {
protected:
    using Oracle = void (*)(const Number&, const Number&, Expectation&);

    static void Check(Routine routine, Oracle oracle, const Number& a, const Number& b, const uint32_t* pa,
                      const uint32_t* pb, Number& c) {
        Expectation e;
        oracle(a, b, e);
        if (e.keepSign) e.result[0] = c[0];
        merror = 0;
        routine(pa, pb, c.data());
        const bool same = e.free             ? c[0] == e.result[0] && errorInUlps(c, e.exact) <= ALMOST_HALF
                          : e.result[1] == 0 ? c[1] == 0
                                             : c == e.result;
        EXPECT_TRUE(same && merror == e.code)
            << "\n a        " << show(a) << "\n b        " << show(b) << "\n got      " << show(c) << " code "
            << merror << "\n expected " << show(e.result) << " code " << e.code;
    }

    void CheckPair(Routine routine, Oracle oracle, const Number& a, const Number& b) {
        Number c = overflowValue(random.Chance(50) ? NEGATIVE_SIGN : 0);
        Check(routine, oracle, a, b, a.data(), b.data(), c);
        Number first = a;
        Check(routine, oracle, a, b, first.data(), b.data(), first);
        Number second = b;
        Check(routine, oracle, a, b, a.data(), second.data(), second);
        Number both = a;
        Check(routine, oracle, a, a, both.data(), both.data(), c);
        Check(routine, oracle, a, a, both.data(), both.data(), both);
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

TEST_F(Product, QmulIsWithinHalfAUnitAndExactlyRoundedForOneWord) {
    CheckMany(qmul, expectProduct, false);
}
TEST_F(Product, QmuliUsesTheFirstWordAndIsExactlyRounded) {
    CheckMany(qmuli, expectShortProduct, false);
}
TEST_F(Product, QdivIsWithinHalfAUnitAndExactlyRoundedForOneWord) {
    CheckMany(qdiv, expectQuotient, true);
}

// Divisors and dividends whose leading limbs agree strain the digit estimates of a long division.
TEST_F(Product, QdivOfNearlyEqualLeadingBits) {
    for (int i = 0; i < CASES / 4 && !HasFailure(); ++i) {
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

TEST_F(Product, QdecexpScalesByPowersOfTen) {
    for (int i = 0; i < CASES / 10 && !HasFailure(); ++i) {
        Number q = randomMantissa(random);
        q[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        q[1] = static_cast<uint32_t>(random.Between(1, 0xFFFF));
        const auto n =
            static_cast<long>(random.Chance(50) ? random.Between(-120, 120) : random.Between(-9800, 9800));
        Real exact;
        mpfr_ui_pow_ui(exact, 10, static_cast<unsigned long>(n < 0 ? -n : n), MPFR_RNDN);
        const Number before = q;
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
        EXPECT_EQ(merror, code) << show(before) << n;
        EXPECT_TRUE(code == 0 && expected[1] != 0 ? errorInUlps(q, exact) <= ALMOST_HALF : q == expected)
            << show(before) << " * 10^" << n << " gave " << show(q);
    }
    merror = 0;
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

} // namespace
