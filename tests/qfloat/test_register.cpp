// SPDX-License-Identifier: MIT
//
// The mantissa primitives over working registers, against GMP integers.
#include "../cases.h"
#include "model.h"
#include "oracle.h"

#include "qfloat.h"
#include "qregister.h"

namespace oracle::test_register {

using oracle::Number;
using oracle::power2;
using oracle::Random;
using oracle::Real;
using oracle::Register;
using oracle::show;
using oracle::wordsToInteger;

constexpr int CASES = cases(20000);
constexpr unsigned long REGISTER_BITS = 416; // words 2..14

class Registers : public oracle::Seeded {
protected:
    // Any bits in words 2..14; often long stretches of zeros.
    Register AnyRegister() {
        Register r{};
        for (auto& word : r) word = random.Word();
        if (random.Chance(50)) {
            const auto from = static_cast<size_t>(random.Between(2, 14));
            const auto to = static_cast<size_t>(random.Between(2, 14));
            for (size_t i = from; i <= to; ++i) r[i] = random.Chance(80) ? 0 : 0xFFFFFFFF;
        }
        if (random.Chance(30)) r[2] = 0;
        return r;
    }

    // A normalized mantissa with a zero guard word.
    Register Normalized(int64_t lowExponent, int64_t highExponent) {
        const Number q = oracle::randomMantissa(random);
        Register r{};
        std::copy(q.begin(), q.end(), r.begin());
        r[0] = random.Chance(50) ? oracle::NEGATIVE_SIGN : 0;
        r[1] = static_cast<uint32_t>(random.Between(lowExponent, highExponent));
        return r;
    }
};

mpz_class value(const Register& r) {
    return wordsToInteger(r.data(), 2, 14);
}

mpz_class wrapped(const mpz_class& z) {
    mpz_class r;
    mpz_fdiv_r_2exp(r.get_mpz_t(), z.get_mpz_t(), REGISTER_BITS);
    return r;
}

// Words 2..14 hold the integer; sign and exponent words are those of `before`.
::testing::AssertionResult holds(const Register& got, const mpz_class& expected, const Register& before) {
    if (value(got) == expected && got[0] == before[0] && got[1] == before[1]) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "\n before " << show(before) << "\n got    " << show(got)
                                         << "\n words 2..14 should be " << expected.get_str(16);
}

TEST_F(Registers, ShiftsBy1And8And16) {
    struct {
        void (*shift)(uint32_t*);
        int left;
    } const table[] = {{shdn1, -1}, {shdn8, -8}, {shdn16, -16}, {shup1, 1}, {shup8, 8}, {shup16, 16}};
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (const auto& entry : table) {
            const Register before = AnyRegister();
            Register r = before;
            entry.shift(r.data());
            const mpz_class expected = entry.left < 0
                                           ? mpz_class(value(before) >> static_cast<unsigned>(-entry.left))
                                           : wrapped(value(before) << static_cast<unsigned>(entry.left));
            EXPECT_TRUE(holds(r, expected, before)) << entry.left;
        }
    }
}

TEST_F(Registers, ShiftByACountBothWaysConsumesTheCount) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register before = AnyRegister();
        Register r = before;
        const auto count =
            static_cast<int32_t>(random.Chance(10) ? random.Between(-1000, 1000) : random.Between(-420, 420));
        setshiftcount(count);
        EXPECT_EQ(SC, count);
        shift(r.data());
        const mpz_class expected = count < 0 ? mpz_class(value(before) >> static_cast<unsigned>(-count))
                                             : wrapped(value(before) << static_cast<unsigned>(count));
        EXPECT_TRUE(holds(r, expected, before)) << count;
        EXPECT_EQ(SC, 0);
    }
}

TEST_F(Registers, SumsAndDifferencesCarryThroughAllThirteenWords) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = AnyRegister();
        const Register before = AnyRegister();
        Register y = before;
        addm(x.data(), y.data());
        EXPECT_TRUE(holds(y, wrapped(value(before) + value(x)), before));
        y = before;
        subm(x.data(), y.data());
        EXPECT_TRUE(holds(y, wrapped(value(before) - value(x)), before));
        y = before;
        addm(y.data(), y.data());
        EXPECT_TRUE(holds(y, wrapped(value(before) * 2), before));
        y = before;
        subm(y.data(), y.data());
        EXPECT_TRUE(holds(y, 0, before));
    }
}

TEST(RegistersByHand, CarryRunsFromTheGuardIntoTheHighWord) {
    Register x{};
    x[14] = 1;
    Register y{};
    for (size_t i = 3; i < 15; ++i) y[i] = 0xFFFFFFFF;
    addm(x.data(), y.data());
    Register expected{};
    expected[2] = 1;
    EXPECT_EQ(y, expected);
    subm(x.data(), y.data());
    EXPECT_EQ(y[2], 0U);
    for (size_t i = 3; i < 15; ++i) EXPECT_EQ(y[i], 0xFFFFFFFF);
}

TEST_F(Registers, BitwiseOperationsOnMantissas) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = AnyRegister();
        const Register before = AnyRegister();
        Register y = before;
        andm(x.data(), y.data());
        EXPECT_TRUE(holds(y, value(before) & value(x), before));
        y = before;
        orm(x.data(), y.data());
        EXPECT_TRUE(holds(y, value(before) | value(x), before));
        y = before;
        xorm(x.data(), y.data());
        EXPECT_TRUE(holds(y, value(before) ^ value(x), before));
    }
}

TEST_F(Registers, CompareLooksAtWords2To13Only) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = AnyRegister();
        Register y = x;
        y[0] = ~y[0];
        y[1] = ~y[1];
        y[14] = random.Word();
        EXPECT_EQ(cmpm(x.data(), y.data()), 0) << "sign, exponent and guard word are not compared";
        const auto place = static_cast<size_t>(random.Between(2, 13));
        y[place] ^= 1U << random.Between(0, 31);
        const int expected = x[place] > y[place] ? 1 : -1;
        for (size_t k = place + 1; k < 14; ++k) y[k] = random.Word();
        EXPECT_EQ(cmpm(x.data(), y.data()), expected);
        EXPECT_EQ(cmpm(y.data(), x.data()), -expected);
    }
}

// ---------------------------------------------------------------------------------------------------------
// Normalizing

TEST_F(Registers, NormalizeSetsTheTopBitAndLeavesTheShift) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register before = AnyRegister();
        if (value(before) == 0) continue;
        Register r = before;
        SC = 12345;
        EXPECT_EQ(normlz(r.data()), 0) << show(before);
        model::Work expected = model::load(before);
        EXPECT_EQ(SC, model::normalize(expected)) << show(before);
        EXPECT_TRUE(holds(r, expected.words, before));
    }
}

TEST(Normalize, ANormalizedMantissaStaysWithACountOfZero) {
    Register r{};
    r[3] = 0x80000000;
    r[14] = 5;
    const Register before = r;
    SC = 9;
    EXPECT_EQ(normlz(r.data()), 0);
    EXPECT_EQ(SC, 0);
    EXPECT_EQ(r, before);
}

TEST(Normalize, ShiftsLeftByWholeHalfWordsBytesAndBits) {
    for (int bit = 0; bit < 352; ++bit) {
        Register r{};
        r[static_cast<size_t>(3 + bit / 32)] = 0x80000000U >> (bit % 32);
        EXPECT_EQ(normlz(r.data()), 0);
        EXPECT_EQ(SC, bit);
        Register expected{};
        expected[3] = 0x80000000;
        EXPECT_EQ(r, expected) << bit;
    }
}

TEST(Normalize, ACarryAboveThePointIsShiftedRightIntoTheGuard) {
    for (int bit = 0; bit < 32; ++bit) {
        Register r{};
        r[2] = 1U << bit;
        r[13] = 1;
        EXPECT_EQ(normlz(r.data()), 0);
        EXPECT_EQ(SC, -(bit + 1));
        Register expected{};
        expected[3] = 0x80000000;
        expected[14] = static_cast<uint32_t>((uint64_t{1} << 32) >> (bit + 1));
        EXPECT_EQ(r, expected) << bit;
    }
}

TEST(Normalize, AnAllZeroMantissaAnswersOne) {
    Register r{};
    r[0] = 1;
    r[1] = 0x8000;
    EXPECT_EQ(normlz(r.data()), 1);
    EXPECT_GT(SC, 352);
    EXPECT_TRUE(value(r) == 0);
}

TEST_F(Registers, QnrmlzNormalizesAStoredNumberAndItsExponent) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register r = AnyRegister();
        Number q;
        std::copy(r.begin(), r.begin() + 14, q.begin());
        q[1] = 0x8000;
        model::Work expected = model::load(q);
        if (expected.words == 0) continue;
        const Number before = q;
        qnrmlz(q.data());
        expected.exponent -= model::normalize(expected);
        const Register e = model::toRegister(expected);
        EXPECT_TRUE(std::equal(q.begin(), q.end(), e.begin())) << show(before) << show(q);
    }
}

TEST(Qnrmlz, OfALowBitAndOfACarry) {
    Number q{};
    q[1] = 0x8020;
    q[3] = 1;
    qnrmlz(q.data());
    Number one{};
    one[1] = 0x8001;
    one[3] = 0x80000000;
    EXPECT_EQ(q, one);

    Number carry{};
    carry[0] = oracle::NEGATIVE_SIGN;
    carry[1] = 0x8000;
    carry[2] = 5;
    qnrmlz(carry.data());
    EXPECT_EQ(carry, oracle::decimal("-5"));
}

// ---------------------------------------------------------------------------------------------------------
// mdnorm

Register afterMdnorm(Register r) {
    mdnorm(r.data());
    return r;
}

TEST_F(Registers, MdnormMatchesItsFiveSteps) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Register r = AnyRegister();
        r[2] = static_cast<uint32_t>(random.Chance(50) ? 0 : random.Between(0, 7));
        if (random.Chance(70)) r[3] |= 0x80000000U >> random.Between(0, 4);
        if (random.Chance(20)) std::fill(r.begin() + 3, r.begin() + 14, 0xFFFFFFFF);
        const int64_t exponents[] = {0, 1, 2, 3, 0xFFFD, 0xFFFE, 0xFFFF, 0x10000, 0x8000};
        r[1] = static_cast<uint32_t>(exponents[random.Between(0, 8)]);
        model::Work work = model::load(r);
        int code = 0;
        model::normalizeAndRound(work, code);
        merror = 0;
        const Register got = afterMdnorm(r);
        EXPECT_EQ(got, model::toRegister(work)) << "\n from     " << show(r) << "\n got      " << show(got)
                                                << "\n expected " << show(model::toRegister(work));
        EXPECT_EQ(merror, code) << show(r);
    }
    merror = 0;
}

TEST(Mdnorm, ACarryIsShiftedDownAndRaisesTheExponent) {
    merror = 0;
    Register r{0, 0x8000, 3, 0, 0};
    EXPECT_EQ(afterMdnorm(r), (Register{0, 0x8002, 0, 0xC0000000}));
    r[1] = 0xFFFE;
    EXPECT_EQ(afterMdnorm(r)[1], 0x10000U);
    EXPECT_EQ(merror, 0) << "0xFFFF may be passed by one";
    r[1] = 0xFFFF;
    EXPECT_EQ(afterMdnorm(r)[1], 0x10000U);
    EXPECT_EQ(merror, 3);
    merror = 0;
}

TEST(Mdnorm, LeadingZerosAreShiftedOutAndLowerTheExponent) {
    merror = 0;
    Register r{0, 0x8000, 0, 0x20000000};
    EXPECT_EQ(afterMdnorm(r), (Register{0, 0x7FFE, 0, 0x80000000}));
    r[1] = 1;
    EXPECT_EQ(afterMdnorm(r), (Register{0, 0, 0, 0x40000000})) << "no shift at exponent 0";
    EXPECT_EQ(merror, 4);
    merror = 0;
    EXPECT_EQ(afterMdnorm(Register{0, 0x8000, 0, 0x08000000}), (Register{0, 0x7FFD, 0, 0x40000000}))
        << "at most three shifts";
}

TEST(Mdnorm, RoundsHalfUpOnTheTopBitOfTheGuardAlone) {
    Register r{0, 0x8000, 0, 0x80000000};
    Register expected = r;
    r[14] = 0x7FFFFFFF;
    EXPECT_EQ(afterMdnorm(r), expected);
    r[14] = 0x80000000;
    expected[13] = 1;
    EXPECT_EQ(afterMdnorm(r), expected) << "a tie goes up";
}

TEST(Mdnorm, ACarryOfTheRoundingRaisesTheExponent) {
    merror = 0;
    Register r;
    r.fill(0xFFFFFFFF);
    r[0] = 0;
    r[1] = 0xFFFF;
    r[2] = 0;
    EXPECT_EQ(afterMdnorm(r), (Register{0, 0x10000, 0, 0x80000000}));
    EXPECT_EQ(merror, 0);
    r[1] = 0x10000;
    EXPECT_EQ(afterMdnorm(r), (Register{0, 0x10000, 0, 0x80000000}));
    EXPECT_EQ(merror, 3);
    merror = 0;
}

// ---------------------------------------------------------------------------------------------------------
// mulm, mulin, divm

Number firstWords(const Register& r) {
    Number q;
    std::copy(r.begin(), r.begin() + 14, q.begin());
    return q;
}

// The mantissa 0.m of a register as a real number.
void mantissaOf(const Register& r, Real& m) {
    Number q = firstWords(r);
    q[0] = 0;
    q[1] = oracle::BIAS;
    mpfr_set(m, Real(q), MPFR_RNDN);
}

bool normalizedAndRounded(const Register& got, const Register& before) {
    return got[0] == before[0] && got[2] == 0 && (got[3] & 0x80000000) != 0 && got[14] == 0;
}

TEST_F(Registers, MulmMultipliesMantissasWithinALastPlace) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = Normalized(1, 0xFFFF);
        const Register before = Normalized(10, 0xFFF0);
        Register y = before;
        mulm(x.data(), y.data());
        Real product;
        mantissaOf(x, product);
        Number magnitude = firstWords(before);
        magnitude[0] = 0;
        mpfr_mul(product, product, Real(magnitude), MPFR_RNDN);
        Number got = firstWords(y);
        got[0] = 0;
        EXPECT_LE(oracle::errorInUlps(got, product), 1.0) << show(x) << show(before) << show(y);
        EXPECT_TRUE(normalizedAndRounded(y, before)) << show(y);
    }
}

TEST_F(Registers, MulinMultipliesByWord3AloneExactlyRounded) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = Normalized(1, 0xFFFF);
        const Register before = Normalized(10, 0xFFF0);
        Register y = before;
        mulin(x.data(), y.data());
        Number expected = firstWords(before);
        expected[0] = 0;
        Real product;
        mpfr_mul_ui(product, Real(expected), x[3], MPFR_RNDN);
        mpfr_div_2ui(product, product, 32, MPFR_RNDN);
        expected = store(oracle::roundHalfUp(product));
        expected[0] = before[0];
        EXPECT_EQ(firstWords(y), expected) << show(x) << show(before) << show(y);
        EXPECT_EQ(y[14], 0U);
    }
}

// y / x on the scale where equal mantissas give 1/4.
TEST_F(Registers, DivmDividesMantissasWithinALastPlace) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const Register x = Normalized(1, 0xFFFF);
        const Register before = Normalized(10, 0xFFF0);
        Register y = before;
        divm(x.data(), y.data());
        Real divisor;
        mantissaOf(x, divisor);
        Number magnitude = firstWords(before);
        magnitude[0] = 0;
        Real quotient;
        mpfr_div(quotient, Real(magnitude), divisor, MPFR_RNDN);
        mpfr_div_ui(quotient, quotient, 4, MPFR_RNDN);
        Number got = firstWords(y);
        got[0] = 0;
        EXPECT_LE(oracle::errorInUlps(got, quotient), 1.0) << show(x) << show(before) << show(y);
        EXPECT_TRUE(normalizedAndRounded(y, before)) << show(y);
        if (std::all_of(x.begin() + 4, x.begin() + 14, [](uint32_t w) { return w == 0; })) {
            EXPECT_EQ(got, store(oracle::roundHalfUp(quotient))) << "one-word divisor";
        }
    }
}

TEST(Divm, EqualMantissasGiveAQuarter) {
    Register x{0, 0x8000, 0, 0xC0000000};
    Register y{oracle::NEGATIVE_SIGN, 4, 0, 0xC0000000};
    divm(x.data(), y.data());
    EXPECT_EQ(y, (Register{oracle::NEGATIVE_SIGN, 3, 0, 0x80000000}));
}

} // namespace oracle::test_register
