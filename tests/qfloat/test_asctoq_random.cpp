// SPDX-License-Identifier: MIT
//
// asctoq of random texts against MPFR's reading of the same number.
#include "../cases.h"
#include "hard.h"
#include "oracle.h"

#include "qexact.h"
#include "qfloat.h"

namespace oracle::test_asctoq_random {

constexpr int CASES = cases(20000);

// A random numeral: what asctoq reads, and the same number for MPFR.
struct Numeral {
    std::string text;      // with blanks and a sign in odd places
    std::string canonical; // sign, digits with a point
    bool negative = false;
};

class Texts : public Seeded {
protected:
    // `count` digits, of which the first is not zero.
    std::string RandomDigits(int64_t count, int radix) {
        static const char lower[] = "0123456789abcdef";
        static const char upper[] = "0123456789ABCDEF";
        std::string s;
        const auto style = random.Between(0, 5);
        for (int64_t i = 0; i < count; ++i) {
            int64_t digit = random.Between(0, radix - 1);
            if (style == 0) digit = random.Chance(90) ? 0 : digit;
            if (style == 1) digit = random.Chance(90) ? radix - 1 : digit;
            if (i == 0 && digit == 0) digit = random.Between(1, radix - 1);
            s += (random.Chance(50) ? lower : upper)[digit];
        }
        return s;
    }

    // Puts a point somewhere (or nowhere).  Zeros behind a leading point count as digits.
    std::string WithPoint(const std::string& digits) {
        if (random.Chance(25)) return digits;
        if (random.Chance(20)) {
            const auto room = 104 - static_cast<int64_t>(digits.size());
            return (random.Chance(50) ? "0." : ".") +
                   std::string(static_cast<size_t>(random.Between(0, room)), '0') + digits;
        }
        std::string s = digits;
        const auto place = static_cast<size_t>(random.Between(0, static_cast<int64_t>(s.size())));
        return s.insert(place, ".");
    }

    // The mantissa text with a sign anywhere and some blanks.
    std::string Disguise(std::string s, bool negative) {
        if (negative || random.Chance(20)) {
            const bool first = random.Chance(70);
            const auto place =
                first ? 0 : static_cast<size_t>(random.Between(0, static_cast<int64_t>(s.size())));
            s.insert(place, negative ? "-" : "+");
        }
        while (random.Chance(15)) {
            s.insert(static_cast<size_t>(random.Between(0, static_cast<int64_t>(s.size()))), " ");
        }
        return s;
    }

    Numeral RandomNumeral(int radix) {
        Numeral n;
        const std::string digits =
            RandomDigits(random.Chance(30) ? random.Between(95, 104) : random.Between(1, 104), radix);
        const std::string mantissa = WithPoint(digits);
        n.negative = random.Chance(50);
        n.text = Disguise(mantissa, n.negative);
        n.canonical = (n.negative ? "-" : "") + mantissa;
        return n;
    }

    static int Parse(const std::string& text, Number& q) {
        q.fill(0xA5A5A5A5);
        merror = 0;
        return asctoq(text.c_str(), q.data());
    }
};

// The range ends with exponent word 0xFFFF.
void expectDecimal(const std::string& text, const std::string& canonical, const Number& q) {
    Real exact(1500);
    mpfr_set_str(exact, canonical.c_str(), 10, MPFR_RNDN);
    const Rounded r = roundHalfUp(exact);
    const uint32_t sign = r.negative ? NEGATIVE_SIGN : 0;
    const std::string got = "\n text " + text + "\n got  " + show(q) + " code " + std::to_string(merror);
    if (r.exponent >= OVERFLOW_EXPONENT) {
        EXPECT_TRUE(q == overflowValue(sign) && merror == 3) << got;
    } else if (r.exponent < 1) {
        EXPECT_TRUE(q == Number{} && merror == 4) << got;
    } else {
        EXPECT_TRUE(merror == 0 && q == store(r)) << got << "\n exp  " << show(store(r));
    }
}

TEST_F(Texts, DecimalTextGivesTheNearestNumberOverTheWholeRange) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        Numeral n = RandomNumeral(10);
        int64_t exponent = 0;
        if (random.Chance(80)) {
            exponent = random.Chance(30)   ? random.Between(-40, 40)
                       : random.Chance(20) ? random.Between(-10000, -9700)
                       : random.Chance(20) ? random.Between(9700, 10000)
                                           : random.Between(-9870, 9870);
            const char* letter = random.Chance(50) ? "e" : "E";
            const char* sign =
                exponent < 0 ? (random.Chance(80) ? "-" : "-+") : (random.Chance(80) ? "" : "+");
            n.text += letter;
            n.text += sign + std::to_string(exponent < 0 ? -exponent : exponent);
            n.canonical += "e" + std::to_string(exponent);
        }
        Number q;
        ASSERT_EQ(Parse(n.text, q), 0) << n.text;
        expectDecimal(n.text, n.canonical, q);
    }
    merror = 0;
}

// Texts up to 10^-104 units beside the middle of two numbers, and in the middle.
TEST_F(Texts, DecimalTextNextToAMidpointGivesTheNearestNumber) {
    const hard::Source source = [this] { return random.Next(); };
    const uint64_t before = limb::comparisons;
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        mpz_class digits;
        long n = random.Between(12, 147);
        if (random.Chance(10)) {
            digits = hard::decimalTie(source, static_cast<unsigned long>(n));
        } else if (random.Chance(50)) {
            n *= random.Chance(50) ? -1 : 1;
            digits = hard::decimalNear(source, n);
        } else {
            n = random.Chance(50) ? random.Between(160, 9750) : random.Between(-9960, -160);
            const auto bits = static_cast<unsigned long>(random.Between(40, 343));
            digits = hard::decimal(source, n, bits, power2(352), power2(353)).d;
        }
        const std::string text = (random.Chance(50) ? "-" : "") + digits.get_str() + "e" + std::to_string(n);
        ASSERT_LE(digits.get_str().size(), 104U);
        Number q;
        ASSERT_EQ(Parse(text, q), 0) << text;
        expectDecimal(text, text, q);
    }
    EXPECT_GT(limb::comparisons - before, CASES * 3 / 4) << "the texts are not hard";
    merror = 0;
}

// Radix text is exact, cut to 352 bits.
void expectRadix(const std::string& text, const Number& q, const Real& exact) {
    Real cut(MANTISSA_BITS);
    mpfr_set(cut, exact, MPFR_RNDZ);
    const Rounded r = roundHalfUp(cut);
    int code = 0;
    const Number expected = withinRange(r, code);
    EXPECT_TRUE(q == expected && merror == code)
        << "\n text " << text << "\n got  " << show(q) << " code " << merror << "\n exp  " << show(expected);
}

TEST_F(Texts, RadixTextIsExactAndCut) {
    struct {
        int radix;
        const char* prefix;
    } const table[] = {{16, "0x"}, {8, "0o"}, {2, "0b"}};
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        const auto& entry = table[random.Between(0, 2)];
        Numeral n = RandomNumeral(entry.radix);
        n.text = entry.prefix + n.text;
        int64_t exponent = 0;
        if (entry.radix != 16 && random.Chance(60)) {
            exponent = random.Chance(50) ? random.Between(-400, 400) : random.Between(-32759, 32759);
            n.text += "e" + std::to_string(exponent);
        }
        Number q;
        ASSERT_EQ(Parse(n.text, q), 0) << n.text;
        Real exact(500);
        mpfr_set_str(exact, n.canonical.c_str(), entry.radix, MPFR_RNDN);
        mpfr_mul_2si(exact, exact, exponent, MPFR_RNDN);
        expectRadix(n.text, q, exact);
    }
    merror = 0;
}

// Any bytes: an error or a number, never more than the 14 words, never a crash.
TEST_F(Texts, AnyBytesGiveANumberOrAnError) {
    static const std::string alphabet = "0123456789..--++eE  xXboaAfFgG:@`[\n\r\t,\x01\xFF\xC3";
    for (int i = 0; i < cases(20000) && !HasFailure(); ++i) {
        std::string text;
        if (random.Chance(30)) text = random.Chance(50) ? "0x" : "0b";
        const auto length = random.Chance(5) ? random.Between(100, 400) : random.Between(0, 12);
        for (int64_t k = 0; k < length; ++k) {
            text +=
                alphabet[static_cast<size_t>(random.Between(0, static_cast<int64_t>(alphabet.size()) - 1))];
        }
        std::array<uint32_t, 16> q;
        q.fill(0xA5A5A5A5);
        ::testing::internal::CaptureStdout();
        const int status = asctoq(text.c_str(), q.data());
        std::fflush(stdout);
        const std::string printed = ::testing::internal::GetCapturedStdout();
        EXPECT_EQ(q[14], 0xA5A5A5A5);
        EXPECT_EQ(q[2], 0U);
        EXPECT_TRUE(q[1] == 0 || (q[1] <= OVERFLOW_EXPONENT && (q[3] & 0x80000000) != 0)) << text;
        EXPECT_EQ(printed, status == 0 ? "" : "asctoq conversion error\n") << text;
        if (status != 0) {
            EXPECT_EQ(status, -1);
            EXPECT_TRUE(std::all_of(q.begin(), q.begin() + 14, [](uint32_t w) { return w == 0; })) << text;
        }
    }
    merror = 0;
}

} // namespace oracle::test_asctoq_random
