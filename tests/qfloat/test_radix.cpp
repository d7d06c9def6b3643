// SPDX-License-Identifier: MIT
//
// qtohex and qtobin against the digits of GMP integers.
#include "../cases.h"
#include "oracle.h"
#include "reference.h"

#include <vector>

namespace oracle::test_radix {

using Writer = void (*)(const qfloat, char*, bool);

// The text, written into a buffer of the promised size whose end is watched.
std::string text(Writer writer, const Number& x, bool twos) {
    std::vector<char> buffer(RADIX_TEXT_SIZE + 16, '\x7F');
    const Number before = x;
    merror = 0;
    writer(x.data(), buffer.data(), twos);
    EXPECT_EQ(merror, 0);
    EXPECT_EQ(x, before);
    for (size_t i = RADIX_TEXT_SIZE; i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], '\x7F') << "written past the end";
    return buffer.data();
}

std::string hex(double d, bool twos = false) {
    return text(qtohex, number(d), twos);
}
std::string bin(double d, bool twos = false) {
    return text(qtobin, number(d), twos);
}

TEST(Hexadecimal, IsWrittenInGroupsOfEightTheFirstOfFourWhereItFits) {
    EXPECT_EQ(hex(255), "0x00FF");
    EXPECT_EQ(hex(1), "0x0001");
    EXPECT_EQ(hex(65535), "0xFFFF");
    EXPECT_EQ(hex(65536), "0x00010000");
    EXPECT_EQ(hex(4294967295), "0xFFFFFFFF");
    EXPECT_EQ(hex(4294967296), "0x000100000000");
    EXPECT_EQ(hex(281474976710655), "0xFFFFFFFFFFFF");
    EXPECT_EQ(hex(281474976710656), "0x0001000000000000");
    EXPECT_EQ(hex(18446744073709551616.0), "0x00010000000000000000");
}

TEST(Hexadecimal, DropsTheFractionTowardZero) {
    EXPECT_EQ(hex(255.99), "0x00FF");
    EXPECT_EQ(hex(-255.99), "-0x00FF");
    EXPECT_EQ(hex(-2.5, true), "0xFFFFFFFE");
}

TEST(Hexadecimal, OfAnIntegerPartOfZeroHasNoSign) {
    for (const double d : {0.0, -0.0, 0.75, -0.75, 1e-30, -1e-30}) {
        EXPECT_EQ(hex(d, false), "0x0000") << d;
        EXPECT_EQ(hex(d, true), "0x0000") << d;
    }
}

TEST(Hexadecimal, OfANegativeNumberIsTwosComplementedBelow2To31) {
    EXPECT_EQ(hex(-1), "-0x0001");
    EXPECT_EQ(hex(-1, true), "0xFFFFFFFF");
    EXPECT_EQ(hex(-2147483647, true), "0x80000001");
    EXPECT_EQ(hex(-2147483647.5, true), "0x80000001");
    EXPECT_EQ(hex(-2147483648.0, true), "-0x80000000");
    EXPECT_EQ(hex(-4294967296.0, true), "-0x000100000000");
    EXPECT_EQ(hex(1, true), "0x0001") << "positive numbers are as they are";
    EXPECT_EQ(hex(2147483648.0, true), "0x80000000");
}

TEST(Binary, IsWrittenInGroupsOfFourBehindABlank) {
    EXPECT_EQ(bin(5), "0b 0101");
    EXPECT_EQ(bin(255), "0b 1111 1111");
    EXPECT_EQ(bin(256), "0b 0001 0000 0000");
    EXPECT_EQ(bin(4294967296), "0b 0001 0000 0000 0000 0000 0000 0000 0000 0000");
    EXPECT_EQ(bin(-5), "-0b 0101");
    EXPECT_EQ(bin(-5.9), "-0b 0101");
}

TEST(Binary, OfAnIntegerPartOfZeroHasNoSignAndNoBlank) {
    for (const double d : {0.0, -0.0, 0.75, -0.75, 1e-30, -1e-30}) {
        EXPECT_EQ(bin(d, false), "0b0000") << d;
        EXPECT_EQ(bin(d, true), "0b0000") << d;
    }
}

TEST(Binary, OfANegativeNumberIsTwosComplementedBelow2To31) {
    EXPECT_EQ(bin(-1, true), "0b 1111 1111 1111 1111 1111 1111 1111 1111");
    EXPECT_EQ(bin(-2147483647, true), "0b 1000 0000 0000 0000 0000 0000 0000 0001");
    EXPECT_EQ(bin(-2, true), "0b 1111 1111 1111 1111 1111 1111 1111 1110");
}

// Unlike in hexadecimal.
TEST(Binary, LosesTheMinusSignWithTheFlagAlsoWhereNoComplementIsTaken) {
    EXPECT_EQ(bin(-2147483648.0, true), "0b 1000 0000 0000 0000 0000 0000 0000 0000");
    EXPECT_EQ(bin(-2147483648.0, false), "-0b 1000 0000 0000 0000 0000 0000 0000 0000");
    EXPECT_EQ(bin(-4294967296.0, true), bin(4294967296.0));
}

// 32 bits are 40 characters: behind 225 chunks and the prefix the text has 9,002.
TEST(Binary, OfMoreThan9001CharactersIsCutBehindAChunk) {
    const std::string all = text(qtobin, scaled("F", 225 * 32 - 4), false);
    EXPECT_EQ(all.size(), 2U + 225 * 40 + 6);
    EXPECT_EQ(all.substr(all.size() - 6), " . . .");
    const std::string fits = text(qtobin, scaled("F", 224 * 32 - 4), false);
    EXPECT_EQ(fits.size(), 2U + 224 * 40);
    EXPECT_EQ(fits.back(), '0');
}

// The 225 chunks alone have 9,000 characters.
TEST(Binary, CountsThePrefixTowardTheLimit) {
    const auto length = [](int groups, int chunks, bool minus) {
        const Number x = scaled(minus ? "-8" : "8", (chunks - 1) * 32 + (groups - 1) * 4);
        return text(qtobin, x, false).size();
    };
    EXPECT_EQ(length(8, 225, false), 2U + 9000 + 6);
    EXPECT_EQ(length(8, 225, true), 3U + 9000 + 6);
    EXPECT_EQ(length(7, 225, false), 2U + 8995);
    EXPECT_EQ(length(7, 225, true), 3U + 8995);
    EXPECT_EQ(length(7, 226, false), 2U + 8995 + 40 + 6);
}

TEST(Hexadecimal, OfTheLargestNumberIsWhole) {
    const std::string all = text(qtohex, overflowValue(NEGATIVE_SIGN), false);
    EXPECT_EQ(all, "-0x" + std::string(88, 'F') + std::string(8192 - 88, '0'));
}

TEST(Binary, OfTheOverflowValueIsCut) {
    const std::string all = text(qtobin, overflowValue(NEGATIVE_SIGN), true);
    EXPECT_EQ(all.size(), 2U + 225 * 40 + 6);
    EXPECT_EQ(all.substr(0, 7), "0b 1111");
}

// ---------------------------------------------------------------------------------------------------------

// The integer part of |x|.
mpz_class magnitudeOf(const Number& x) {
    Real value(x);
    mpz_class z;
    mpfr_get_z(z.get_mpz_t(), value, MPFR_RNDZ);
    return abs(z);
}

std::string padded(std::string digits, size_t size) {
    return digits.size() < size ? std::string(size - digits.size(), '0') + digits : digits;
}

std::string expectedHex(const Number& x, bool twos) {
    mpz_class z = magnitudeOf(x);
    if (z == 0) return "0x0000";
    bool negative = x[0] != 0;
    if (negative && twos && z < power2(31)) {
        z = power2(32) - z;
        negative = false;
    }
    const std::string digits = z.get_str(-16); // capitals
    const size_t first = digits.size() % 8 == 0 ? 8 : digits.size() % 8;
    return (negative ? "-0x" : "0x") + padded(digits, digits.size() - first + (first <= 4 ? 4 : 8));
}

std::string expectedBinary(const Number& x, bool twos) {
    mpz_class z = magnitudeOf(x);
    if (z == 0) return "0b0000";
    if (x[0] != 0 && twos && z < power2(31)) z = power2(32) - z;
    std::string digits = z.get_str(2);
    digits = padded(digits, (digits.size() + 3) / 4 * 4);
    std::string all = x[0] != 0 && !twos ? "-0b" : "0b";
    for (size_t i = 0; i < digits.size(); i += 4) {
        all += " " + digits.substr(i, 4);
        const bool chunkEnds = (digits.size() - i - 4) % 32 == 0;
        if (chunkEnds && all.size() >= 9001) return all + " . . .";
    }
    return all;
}

class RandomRadix : public Seeded {};

TEST_F(RandomRadix, TextsHaveTheDigitsOfTheInteger) {
    for (int i = 0; i < cases(6000) && !HasFailure(); ++i) {
        const int64_t reach = random.Chance(5) ? 0x7FFF : random.Chance(50) ? 40 : 400;
        const Number x = randomWithin(random, random.Chance(20) ? -40 : 1, reach, false);
        const bool twos = random.Chance(50);
        EXPECT_EQ(text(qtohex, x, twos), expectedHex(x, twos)) << show(x);
        EXPECT_EQ(text(qtobin, x, twos), expectedBinary(x, twos)) << show(x);
    }
}

} // namespace oracle::test_radix
