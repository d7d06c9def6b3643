// SPDX-License-Identifier: MIT
//
// qtoasc against MPFR's decimal digits, and its rounding rule by hand.
#include "../cases.h"
#include "hard.h"
#include "oracle.h"

#include <cstring>

#include "qexact.h"
#include "qfloat.h"

namespace oracle::test_qtoasc {

constexpr int CASES = cases(20000);

// Prints into a buffer of exactly the promised size, with guard bytes behind it.
std::string print(const Number& q, int digits) {
    const int fraction = digits < 0 ? 0 : digits > 104 ? 104 : digits;
    const auto promised = static_cast<size_t>(3 + fraction + 8);
    std::array<char, 160> buffer;
    buffer.fill('#');
    const Number before = q;
    merror = 0;
    qtoasc(q.data(), buffer.data(), digits);
    EXPECT_EQ(q, before);
    EXPECT_EQ(merror, 0);
    for (size_t i = promised; i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], '#') << "written behind the buffer";
    return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

std::string print(const char* number, int digits) {
    return print(decimal(number), digits);
}

// `count` significant digits of |value| and the decimal exponent of the first.
std::string decimalDigits(const Real& value, int count, mpfr_rnd_t rounding, long& exponent) {
    Real magnitude(mpfr_get_prec(value));
    mpfr_abs(magnitude, value, MPFR_RNDN);
    mpfr_exp_t e = 0;
    char* text = mpfr_get_str(nullptr, &e, 10, static_cast<size_t>(count), magnitude, rounding);
    std::string digits = text;
    mpfr_free_str(text);
    exponent = e - 1;
    return digits;
}

// The text that q must give: correctly rounded, exact ties to even, without fraction digits ties cut.
std::string expectedText(const Number& q, int digits) {
    const Real value(q);
    const int fraction = digits > 104 ? 104 : digits;
    long exponent = 0;
    std::string text;
    if (mpfr_zero_p(value)) {
        text = std::string(static_cast<size_t>(fraction) + 1, '0');
    } else {
        text = decimalDigits(value, fraction + 1, MPFR_RNDN, exponent);
        long cutExponent = 0;
        const std::string cut = decimalDigits(value, 2, MPFR_RNDZ, cutExponent);
        const bool exact = cut == decimalDigits(value, 2, MPFR_RNDU, cutExponent);
        if (fraction == 0 && exact && cut[1] == '5') {
            text = cut.substr(0, 1);
            exponent = cutExponent;
        }
    }
    return (q[0] != 0 ? "-" : " ") + text.substr(0, 1) + "." + text.substr(1) + "E" +
           std::to_string(exponent);
}

class Printing : public Seeded {
protected:
    int RandomDigits() {
        if (random.Chance(20)) return static_cast<int>(random.Between(0, 3));
        if (random.Chance(20)) return static_cast<int>(random.Between(95, 110));
        return static_cast<int>(random.Between(0, 104));
    }

    void Check(const Number& q, int digits) {
        EXPECT_EQ(print(q, digits), expectedText(q, digits)) << show(q) << " digits " << digits;
    }
};

TEST_F(Printing, RandomNumbersOverTheWholeRangeAreCorrectlyRounded) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Number q = randomOperand(random);
        if (q[1] != 0 && random.Chance(50)) q[1] = static_cast<uint32_t>(random.Between(1, 0xFFFF));
        Check(q, RandomDigits());
    }
}

// Numbers up to 2^-352 units of the last digit beside the middle of two texts.
TEST_F(Printing, NumbersNextToAMidpointAreCorrectlyRounded) {
    const uint64_t before = limb::comparisons;
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const auto digits = static_cast<int>(random.Between(0, 104));
        const long n = random.Between(160, random.Chance(50) ? 400 : 9700) * (random.Chance(50) ? -1 : 1);
        mpz_class low; // an odd number of halves of the last digit
        mpz_ui_pow_ui(low.get_mpz_t(), 10, static_cast<unsigned long>(digits));
        low *= 2;
        const hard::Decimal x =
            hard::decimal([this] { return random.Next(); }, n,
                          static_cast<unsigned long>(random.Between(20, 350)), low, 10 * low);
        Real value(MANTISSA_BITS);
        mpfr_set_z_2exp(value, x.d.get_mpz_t(), -x.e - 1, MPFR_RNDN);
        const Number q = exactly(value);
        Check(q, digits);
        if (digits > 0) Check(q, digits - 1);
    }
    EXPECT_GT(limb::comparisons - before, CASES * 3 / 4) << "the numbers are not hard";
}

// Numbers of few decimal digits, which end in zeros or need a carry.
TEST_F(Printing, ShortDecimalNumbersAreCorrectlyRounded) {
    for (int i = 0; i < CASES / 2 && !HasFailure(); ++i) {
        std::string text = random.Chance(50) ? "-" : "";
        const bool nines = random.Chance(30);
        for (int64_t n = random.Between(1, 100); n > 0; --n) {
            text += nines ? '9' : static_cast<char>('0' + random.Between(0, 9));
        }
        text +=
            "e" + std::to_string(random.Chance(50) ? random.Between(-120, 20) : random.Between(-9700, 9700));
        const Number q = decimal(text);
        if (q[1] == 0) continue;
        Check(q, RandomDigits());
    }
}

// A few digits, then zeros or nines, and a digit behind them, at every distance.
TEST_F(Printing, ADigitBehindALongRunIsSeen) {
    for (int run = 10; run <= 110; ++run) {
        for (const char digit : {'0', '9'}) {
            const Number q = decimal("12.5" + std::string(static_cast<size_t>(run), digit) + "4e-7");
            for (const int digits : {run + 1, run + 2, run + 3, 30, 100, 104}) Check(q, digits);
        }
    }
}

// m / 2^j with odd m has j fraction digits, of which the last is a 5: printed with one digit less it is a
// tie.
TEST_F(Printing, ExactTiesGoToTheEvenDigit) {
    for (int i = 0; i < CASES / 2 && !HasFailure(); ++i) {
        Real value(200);
        mpfr_set_ui(value, (random.Next() >> random.Between(1, 62)) | 1, MPFR_RNDN);
        mpfr_div_2ui(value, value, static_cast<unsigned long>(random.Between(1, 60)), MPFR_RNDN);
        if (random.Chance(50)) mpfr_neg(value, value, MPFR_RNDN);
        const Number q = exactly(value);
        long exponent = 0;
        std::string digits = decimalDigits(value, 105, MPFR_RNDN, exponent);
        const auto significant = static_cast<int>(digits.find_last_not_of('0')) + 1;
        for (int less = 0; less < 4; ++less) {
            if (significant - 1 - less >= 0) Check(q, significant - 1 - less);
        }
    }
}

// Integers beyond 2^64 that end in 5 and zeros are ties as well.
TEST_F(Printing, ExactTiesOfLargeIntegersGoToTheEvenDigit) {
    for (int i = 0; i < CASES / 4 && !HasFailure(); ++i) {
        mpz_class n = static_cast<unsigned long>(random.Next() >> random.Between(0, 60));
        n = n * 10 + 5;
        mpz_class power;
        mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(random.Between(0, 80)));
        n *= power;
        Real value(400);
        mpfr_set_z(value, n.get_mpz_t(), MPFR_RNDN);
        if (mpz_sizeinbase(n.get_mpz_t(), 2) > MANTISSA_BITS) continue;
        const std::string digits = n.get_str();
        const auto significant = static_cast<int>(digits.find_last_not_of('0')) + 1;
        if (significant >= 2) Check(exactly(value), significant - 2);
    }
}

TEST(Qtoasc, WritesSignDigitPointFractionAndExponent) {
    EXPECT_EQ(print("1", 3), " 1.000E0");
    EXPECT_EQ(print("12345", 4), " 1.2345E4");
    EXPECT_EQ(print("1234.5", 4), " 1.2345E3");
    EXPECT_EQ(print("-0.0000005", 0), "-5.E-7");
    EXPECT_EQ(print("10", 2), " 1.00E1");
    EXPECT_EQ(print("9", 2), " 9.00E0");
    EXPECT_EQ(print("0.1", 2), " 1.00E-1");
    EXPECT_EQ(print("0.01", 2), " 1.00E-2");
    EXPECT_EQ(print("0.9", 2), " 9.00E-1");
    EXPECT_EQ(print("1e4000", 5), " 1.00000E4000");
    EXPECT_EQ(print("-1e-9863", 1), "-1.0E-9863");
}

TEST(Qtoasc, WithoutFractionDigitsThePointStays) {
    EXPECT_EQ(print("-2", 0), "-2.E0");
    EXPECT_EQ(print("7e20", 0), " 7.E20");
}

TEST(Qtoasc, ACarryReachesTheLeadingDigitAndTheExponent) {
    EXPECT_EQ(print("9.9996", 3), " 1.000E1");
    EXPECT_EQ(print("1.9996", 3), " 2.000E0");
    EXPECT_EQ(print("0.099996", 3), " 1.000E-1");
    EXPECT_EQ(print("-99999", 2), "-1.00E5");
    EXPECT_EQ(print("9.6", 0), " 1.E1");
    EXPECT_EQ(print("1.1999", 3), " 1.200E0");
}

// For which the exponent may first be taken for one less.
TEST(Qtoasc, NumbersJustAbovePowersOfTenBeginWithOne) {
    for (int exponent = -4900; exponent <= 4900; ++exponent) {
        const std::string number = "1.0000000000000000000000001E" + std::to_string(exponent);
        EXPECT_EQ(print(number.c_str(), 25), " " + number);
    }
}

TEST(Qtoasc, AnExactTieIsRoundedToTheEvenDigit) {
    EXPECT_EQ(print("0.125", 1), " 1.2E-1");
    EXPECT_EQ(print("0.375", 1), " 3.8E-1");
    EXPECT_EQ(print("1.25", 1), " 1.2E0");
    EXPECT_EQ(print("1.75", 1), " 1.8E0");
    EXPECT_EQ(print("-1.25", 1), "-1.2E0");
    EXPECT_EQ(print("25", 0), " 2.E1");
    EXPECT_EQ(print("1.2500000000000000000000000000000000000000000000001", 1), " 1.3E0") << "above the tie";
    EXPECT_EQ(print("1.2499999999999999999999999999999999999999999999999", 1), " 1.2E0") << "below the tie";
}

// With no fraction digits the last character is the point, whose code is even.
TEST(Qtoasc, AnExactTieWithoutFractionDigitsIsNeverRoundedUp) {
    EXPECT_EQ(print("1.5", 0), " 1.E0");
    EXPECT_EQ(print("2.5", 0), " 2.E0");
    EXPECT_EQ(print("3.5", 0), " 3.E0");
    EXPECT_EQ(print("9.5", 0), " 9.E0");
    EXPECT_EQ(print("-0.75", 0), "-7.E-1");
    EXPECT_EQ(print("150", 0), " 1.E2");
    EXPECT_EQ(print("9.5000000000000000000000000000000000001", 0), " 1.E1");
}

TEST(Qtoasc, ZeroHasExponentZero) {
    EXPECT_EQ(print(Number{}, 3), " 0.000E0");
    EXPECT_EQ(print(Number{}, 0), " 0.E0");
}

TEST(Qtoasc, AtMost104FractionDigits) {
    const std::string text = print("0.5", 104);
    EXPECT_EQ(text, " 5." + std::string(104, '0') + "E-1");
    EXPECT_EQ(print("0.5", 105), text);
    EXPECT_EQ(print("0.5", 100000), text);
    EXPECT_EQ(print("0.5", -1), " 5.E-1");
}

TEST(Qtoasc, TheOverflowValueAndTheSmallestNumberPrintAsNumbers) {
    EXPECT_EQ(print(overflowValue(0), 10), expectedText(overflowValue(0), 10));
    EXPECT_EQ(print(overflowValue(NEGATIVE_SIGN), 3), "-1.415E9864");
    const Number smallest = store({true, 1, power2(351)});
    EXPECT_EQ(print(smallest, 3), "-7.065E-9865");
}

// Numbers that lie next to a decimal midpoint which has no exact form here are rounded by their own value.
TEST(Qtoasc, ANumberNextToAMidpointIsRoundedByItsValue) {
    for (const auto& [text, digits] : {std::pair{"8.2455094795015e8417", 12}, std::pair{"4.83005e-3052", 4},
                                       std::pair{"2.0115e-6412", 3}, std::pair{"9.5e9000", 0}}) {
        const Number q = decimal(text);
        EXPECT_EQ(print(q, digits), expectedText(q, digits)) << text;
    }
}

TEST(Qtoasc, AnExactTieAtThe104thFractionDigitGoesToTheEvenDigit) {
    // 95 fraction bits: 95 decimals, and with nine digits before them 104 behind the first.
    const Number q = store({false, 0x8020, mpz_class("EA27137662449BCA0A011F392FBA8416", 16) << 224});
    const std::string all = print(q, 104);
    EXPECT_EQ(all.substr(0, 3), " 3.");
    EXPECT_EQ(all.substr(104), "375E9");
    EXPECT_EQ(print(q, 103).substr(104), "38E9") << "...375 is a tie after an odd digit";
}

// Text to number and back with enough digits is the same number.
TEST_F(Printing, ANumberSurvivesTextOf104FractionDigitsUpToAFewUnits) {
    for (int i = 0; i < CASES / 10 && !HasFailure(); ++i) {
        Number q = randomMantissa(random);
        q[1] = static_cast<uint32_t>(random.Between(2, 0xFFFE));
        const std::string text = print(q, 103);
        Number back{};
        merror = 0;
        EXPECT_EQ(asctoq(text.c_str(), back.data()), 0);
        EXPECT_EQ(merror, 0);
        // Half a unit of the 104th digit is at most 2^352 / (2 * 10^103) < 460 units of the last place.
        EXPECT_LE(errorInUlps(back, Real(q)), 460.0) << text;
    }
}

} // namespace oracle::test_qtoasc
