// SPDX-License-Identifier: MIT
//
// asctoq of random texts against MPFR's reading of the same number.
#include "oracle.h"

#include "qfloat.h"

using namespace oracle;

namespace {

constexpr int cases = 100000;

// A random numeral: what asctoq reads, and the same number for MPFR.
struct Numeral {
    std::string text;      // with blanks and a sign in odd places
    std::string canonical; // sign, digits with a point
    bool negative = false;
    bool scaledByTen = false; // a fraction digit or a non-zero exponent
};

class Texts : public Seeded {
protected:
    // `count` digits, of which the first is not zero.
    std::string randomDigits(int64_t count, int radix) {
        static const char lower[] = "0123456789abcdef";
        static const char upper[] = "0123456789ABCDEF";
        std::string s;
        const auto style = random.between(0, 5);
        for (int64_t i = 0; i < count; ++i) {
            int64_t digit = random.between(0, radix - 1);
            if (style == 0) digit = random.chance(90) ? 0 : digit;
            if (style == 1) digit = random.chance(90) ? radix - 1 : digit;
            if (i == 0 && digit == 0) digit = random.between(1, radix - 1);
            s += (random.chance(50) ? lower : upper)[digit];
        }
        return s;
    }

    // Puts a point somewhere (or nowhere).  Zeros behind a leading point count as digits.
    std::string withPoint(const std::string& digits, bool& fraction) {
        fraction = false;
        if (random.chance(25)) return digits;
        if (random.chance(20)) {
            const auto room = 104 - static_cast<int64_t>(digits.size());
            fraction = true;
            return (random.chance(50) ? "0." : ".") +
                   std::string(static_cast<size_t>(random.between(0, room)), '0') + digits;
        }
        std::string s = digits;
        const auto place = static_cast<size_t>(random.between(0, static_cast<int64_t>(s.size())));
        fraction = place < s.size();
        return s.insert(place, ".");
    }

    // The mantissa text with a sign anywhere and some blanks.
    std::string disguise(std::string s, bool negative) {
        if (negative || random.chance(20)) {
            const bool first = random.chance(70);
            const auto place =
                first ? 0 : static_cast<size_t>(random.between(0, static_cast<int64_t>(s.size())));
            s.insert(place, negative ? "-" : "+");
        }
        while (random.chance(15)) {
            s.insert(static_cast<size_t>(random.between(0, static_cast<int64_t>(s.size()))), " ");
        }
        return s;
    }

    Numeral randomNumeral(int radix) {
        Numeral n;
        const std::string digits =
            randomDigits(random.chance(30) ? random.between(95, 104) : random.between(1, 104), radix);
        const std::string mantissa = withPoint(digits, n.scaledByTen);
        n.negative = random.chance(50);
        n.text = disguise(mantissa, n.negative);
        n.canonical = (n.negative ? "-" : "") + mantissa;
        return n;
    }

    static int parse(const std::string& text, Number& q) {
        q.fill(0xA5A5A5A5);
        merror = 0;
        return asctoq(text.c_str(), q.data());
    }
};

// The range ends with exponent word 0xFFFF.
void expectDecimal(const std::string& text, const Number& q, const Real& exact, bool scaledByTen) {
    const Rounded r = roundHalfUp(exact);
    const uint32_t sign = r.negative ? negativeSign : 0;
    const std::string got = "\n text " + text + "\n got  " + show(q) + " code " + std::to_string(merror);
    if (r.exponent >= overflowExponent) {
        EXPECT_TRUE(q == overflowValue(sign) && merror == 3) << got;
    } else if (r.exponent < 1) {
        EXPECT_TRUE(q == Number{} && merror == 4) << got;
    } else {
        EXPECT_TRUE(merror == 0 && q[0] == sign && q[2] == 0) << got;
        EXPECT_LE(errorInUlps(q, exact), scaledByTen ? almostHalf : 0.0) << got;
    }
}

TEST_F(Texts, DecimalTextOverTheWholeRangeIsCorrectlyRounded) {
    for (int i = 0; i < cases && !HasFailure(); ++i) {
        Numeral n = randomNumeral(10);
        int64_t exponent = 0;
        if (random.chance(80)) {
            exponent = random.chance(30)   ? random.between(-40, 40)
                       : random.chance(20) ? random.between(-10000, -9700)
                       : random.chance(20) ? random.between(9700, 10000)
                                           : random.between(-9870, 9870);
            const char* letter = random.chance(50) ? "e" : "E";
            const char* sign =
                exponent < 0 ? (random.chance(80) ? "-" : "-+") : (random.chance(80) ? "" : "+");
            n.text += letter;
            n.text += sign + std::to_string(exponent < 0 ? -exponent : exponent);
            n.canonical += "e" + std::to_string(exponent);
        }
        Number q;
        ASSERT_EQ(parse(n.text, q), 0) << n.text;
        Real exact(1500);
        mpfr_set_str(exact, n.canonical.c_str(), 10, MPFR_RNDN);
        expectDecimal(n.text, q, exact, n.scaledByTen || exponent != 0);
    }
    merror = 0;
}

// Radix text is exact, cut to 352 bits.
void expectRadix(const std::string& text, const Number& q, const Real& exact) {
    Real cut(mantissaBits);
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
    for (int i = 0; i < cases && !HasFailure(); ++i) {
        const auto& entry = table[random.between(0, 2)];
        Numeral n = randomNumeral(entry.radix);
        n.text = entry.prefix + n.text;
        int64_t exponent = 0;
        if (entry.radix != 16 && random.chance(60)) {
            exponent = random.chance(50) ? random.between(-400, 400) : random.between(-32759, 32759);
            n.text += "e" + std::to_string(exponent);
        }
        Number q;
        ASSERT_EQ(parse(n.text, q), 0) << n.text;
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
    for (int i = 0; i < 20000 && !HasFailure(); ++i) {
        std::string text;
        if (random.chance(30)) text = random.chance(50) ? "0x" : "0b";
        const auto length = random.chance(5) ? random.between(100, 400) : random.between(0, 12);
        for (int64_t k = 0; k < length; ++k) {
            text +=
                alphabet[static_cast<size_t>(random.between(0, static_cast<int64_t>(alphabet.size()) - 1))];
        }
        std::array<uint32_t, 16> q;
        q.fill(0xA5A5A5A5);
        ::testing::internal::CaptureStdout();
        const int status = asctoq(text.c_str(), q.data());
        std::fflush(stdout);
        const std::string printed = ::testing::internal::GetCapturedStdout();
        EXPECT_EQ(q[14], 0xA5A5A5A5);
        EXPECT_EQ(q[2], 0U);
        EXPECT_TRUE(q[1] == 0 || (q[1] <= overflowExponent && (q[3] & 0x80000000) != 0)) << text;
        EXPECT_EQ(printed, status == 0 ? "" : "asctoq conversion error\n") << text;
        if (status != 0) {
            EXPECT_EQ(status, -1);
            EXPECT_TRUE(std::all_of(q.begin(), q.begin() + 14, [](uint32_t w) { return w == 0; })) << text;
        }
    }
    merror = 0;
}

} // namespace
