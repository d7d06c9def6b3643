// SPDX-License-Identifier: MIT
#include "../cases.h"
#include "../seed.h"
#include "Calculator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace {

std::string formatted(const char* number, int sigfigs, int scimode, char separator = '\0') {
    qfloat value;
    EXPECT_EQ(0, asctoq(number, value)) << number;
    char out[FORMAT_SIZE + 1];
    memset(out, '!', sizeof out);
    qtoascii(value, out, sigfigs, scimode, separator);
    EXPECT_EQ('!', out[FORMAT_SIZE]);
    return out;
}

struct FormatCase {
    const char* number;
    int sigfigs;
    int scimode;
    char separator;
    const char* text;
};

const FormatCase FORMAT_CASES[] = {
    // auto: where the exponent starts
    {"12345678", 10, SCI_AUTO, 0, "12345678"},
    {"123456789", 10, SCI_AUTO, 0, "1.23456789e8"},
    {"123456780", 10, SCI_AUTO, 0, "123456780"},
    {"1234567890", 10, SCI_AUTO, 0, "1234567890"},
    {"12345678900", 10, SCI_AUTO, 0, "1.23456789e10"},
    {"100000000", 10, SCI_AUTO, 0, "100000000"},
    {"9999999999", 10, SCI_AUTO, 0, "9.999999999e9"},
    {"99999999999", 10, SCI_AUTO, 0, "1.0e11"},
    {"1e12", 10, SCI_AUTO, 0, "1.0e12"},
    {"-1e12", 10, SCI_AUTO, 0, "-1.0e12"},
    {"1.2e12", 10, SCI_AUTO, 0, "1.2e12"},
    {"0.001", 10, SCI_AUTO, 0, "0.001"},
    {"0.0001", 10, SCI_AUTO, 0, "1.0e-4"},
    {"0.00999", 2, SCI_AUTO, 0, "0.01"},
    {"0", 10, SCI_AUTO, 0, "0"},
    {"-7", 10, SCI_AUTO, 0, "-7"},
    {"1.9999999999999", 10, SCI_AUTO, 0, "2"},
    {"1e12", 1, SCI_AUTO, 0, "1.e12"},
    {"12", 1, SCI_AUTO, 0, "12"},
    {"123", 1, SCI_AUTO, 0, "1.e2"},
    {"100", 1, SCI_AUTO, 0, "100"},
    {"1e-9000", 10, SCI_AUTO, 0, "1.0e-9000"},
    {"1.25", 100, SCI_AUTO, 0, "1.25"},
    // never
    {"1e12", 10, SCI_NEVER, 0, "1000000000000"},
    {"0.00001", 10, SCI_NEVER, 0, "0.00001"},
    {"123456789012345678901234567890", 10, SCI_NEVER, 0, "123456789012345678901234567890"},
    {"-12345.678", 3, SCI_NEVER, 0, "-12300"},
    {"12345.678", 7, SCI_NEVER, 0, "12345.68"},
    // always
    {"5", 4, SCI_ALWAYS, 0, "5.000e0"},
    {"0", 3, SCI_ALWAYS, 0, "0.00e0"},
    {"1500", 2, SCI_ALWAYS, 0, "1.5e3"},
    {"1600", 1, SCI_ALWAYS, 0, "2.e3"},
    {"1500", 1, SCI_ALWAYS, 0, "1.e3"}, // a tie behind the bare point is not rounded up
    {"-0.012", 4, SCI_ALWAYS, 0, "-1.200e-2"},
    // engineering
    {"1500", 4, SCI_ENGINEERING, 0, "1.500e3"},
    {"15000", 4, SCI_ENGINEERING, 0, "15.00e3"},
    {"999", 4, SCI_ENGINEERING, 0, "999"},
    {"999", 2, SCI_ENGINEERING, 0, "1.0e3"},
    {"150", 3, SCI_ENGINEERING, 0, "150.e0"},
    {"0.05", 4, SCI_ENGINEERING, 0, "50.00e-3"},
    {"0.0005", 4, SCI_ENGINEERING, 0, "500.0e-6"},
    {"1e-3", 4, SCI_ENGINEERING, 0, "1.000e-3"},
    // prefix
    {"1500", 4, SCI_PREFIX, 0, "1.500k"},
    {"5", 4, SCI_PREFIX, 0, "5"},
    {"999", 2, SCI_PREFIX, 0, "999"},
    {"1e-20", 4, SCI_PREFIX, 0, "10.00e-21"},
    {"1e-18", 4, SCI_PREFIX, 0, "1.000a"},
    {"1e-15", 4, SCI_PREFIX, 0, "1.000f"},
    {"1e-12", 4, SCI_PREFIX, 0, "1.000p"},
    {"1e-9", 4, SCI_PREFIX, 0, "1.000n"},
    {"1e-6", 4, SCI_PREFIX, 0, "1.000u"},
    {"1e-3", 4, SCI_PREFIX, 0, "1.000m"},
    {"0.99999", 4, SCI_PREFIX, 0, "1.000 "},
    {"1e3", 4, SCI_PREFIX, 0, "1.000k"},
    {"1e6", 4, SCI_PREFIX, 0, "1.000M"},
    {"1e9", 4, SCI_PREFIX, 0, "1.000G"},
    {"1e12", 4, SCI_PREFIX, 0, "1.000T"},
    {"1e15", 4, SCI_PREFIX, 0, "1.000P"},
    {"1e18", 4, SCI_PREFIX, 0, "1.000e18"},
    // fixed
    {"0.006", 2, SCI_FIXED, 0, "0.01"},
    {"0.004", 2, SCI_FIXED, 0, "0.00"},
    {"0.00499", 2, SCI_FIXED, 0, "0.00"},
    {"0.00501", 2, SCI_FIXED, 0, "0.01"},
    {"3", 2, SCI_FIXED, 0, "3.00"},
    {"9.999", 2, SCI_FIXED, 0, "10.00"},
    {"0.096", 2, SCI_FIXED, 0, "0.10"},
    {"0.0996", 2, SCI_FIXED, 0, "0.10"},
    {"-0.996", 2, SCI_FIXED, 0, "-1.00"},
    {"1e-30", 2, SCI_FIXED, 0, "0.00"},
    {"7e-3", 2, SCI_FIXED, 0, "0.01"},
    {"1234567.891", 1, SCI_FIXED, ',', "1,234,567.9"},
    {"2.6", 0, SCI_FIXED, 0, "3"},
    {"0.6", 0, SCI_FIXED, 0, "1"},
    {"0.4", 0, SCI_FIXED, 0, "0"},
    // grouping
    {"1234567.5", 10, SCI_AUTO, ',', "1,234,567.5"},
    {"123", 10, SCI_AUTO, ',', "123"},
    {"-123", 10, SCI_AUTO, ',', "-123"},
    {"-1234", 10, SCI_AUTO, ' ', "-1 234"},
    {"123456", 10, SCI_AUTO, '.', "123.456"},
    {"1e12", 10, SCI_AUTO, ',', "1.0e12"},
    {"150000", 6, SCI_ENGINEERING, ',', "150.000e3"},
    // outside the lists
    {"1e12", 10, 6, 0, "1000000000000"},
    {"1e12", 10, -1, 0, "1000000000000"},
    {"2.5", 0, SCI_NEVER, 0, "2"},
    {"0.25", 1000, SCI_NEVER, 0, "0.25"},
};

TEST(Format, QtoasciiWritesNumbersOfEverySize) {
    for (const FormatCase& test : FORMAT_CASES) {
        EXPECT_EQ(test.text, formatted(test.number, test.sigfigs, test.scimode, test.separator))
            << test.number << " sigfigs " << test.sigfigs << " mode " << test.scimode;
    }
}

// 0.1234 and 100 nines: shown with 100 decimals it is 0.1235, which is a tie for three figures and above it.
TEST(Format, ATieThatRoundingMadeIsNoTie) {
    qfloat value;
    asctoq(("0.1234" + std::string(100, '9')).c_str(), value);
    char text[FORMAT_SIZE];
    qtoascii(value, text, 3, SCI_AUTO, '\0');
    EXPECT_STREQ("0.123", text);
    qtoascii(value, text, 4, SCI_AUTO, '\0');
    EXPECT_STREQ("0.1235", text);
    asctoq("0.125", value); // exactly; a tie goes to the even digit
    qtoascii(value, text, 2, SCI_AUTO, '\0');
    EXPECT_STREQ("0.12", text);
}

TEST(Format, OverflowHasASignAndNoDigits) {
    qfloat value = {};
    qinfin(value);
    char out[FORMAT_SIZE];
    for (int mode = SCI_AUTO; mode <= SCI_FIXED; mode++) {
        qtoascii(value, out, 10, mode, ',');
        EXPECT_STREQ("+OVERFLOW", out);
    }
    qneg(value);
    qtoascii(value, out, 10, SCI_AUTO, ',');
    EXPECT_STREQ("-OVERFLOW", out);
}

TEST(Format, ZeroHasNoSign) {
    qfloat value = {};
    qneg(value);
    char out[FORMAT_SIZE];
    qtoascii(value, out, 10, SCI_AUTO, ',');
    EXPECT_STREQ("0", out);
}

TEST(Format, FixedModeShowsItsDecimalsBeyondTheKnownDigits) {
    EXPECT_EQ("1" + std::string(120, '0') + ".000", formatted("1e120", 3, SCI_FIXED));
    EXPECT_EQ("0." + std::string(99, '0') + "1", formatted("1e-100", 100, SCI_FIXED));
}

TEST(Format, TheLongestTextsFit) {
    const std::string all = formatted("1e9863", 100, SCI_FIXED, ',');
    EXPECT_EQ(9864 + 3287 + 1 + 100, static_cast<int>(all.size()));
    EXPECT_EQ("100,000,", all.substr(0, 8));
    EXPECT_EQ("0." + std::string(9862, '0') + "1", formatted("1e-9863", 100, SCI_NEVER));
}

// Those of a short number are found without the number library.
TEST(Format, AllDigitsAreThoseOfTheNumberLibrary) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    for (int i = 0; i < cases(20000); i++) {
        const auto whole = static_cast<int64_t>(random() >> random() % 32) * (i % 2 == 0 ? 1 : -1);
        qfloat value, fraction;
        ltoq(&whole, value);
        qmov(qone, fraction);
        for (auto bits = random() % 80; bits > 0; bits--) {
            qmul(qhalf, fraction, fraction);
            if (random() % 3 == 0) qadd(fraction, value, value);
        }
        char out[FORMAT_SIZE];
        char expected[200];
        qtoascii(value, out, 100, SCI_ALWAYS, '\0');
        qtoasc(value, expected, 99);
        if (value[1] == 0) continue;
        std::string digits = expected[0] == '-' ? expected : expected + 1;
        digits[digits.find('E')] = 'e';
        ASSERT_EQ(digits, out);
    }
}

// 64 bits: a fraction whose first digit the low half of the product decides, and none at all.
TEST(Format, AllDigitsOfTheLongestShortNumbers) {
    const qfloat tenth = {0, 0x8001, 0, 0x8CCCCCCC, 0xCCCCCCCD};
    char out[FORMAT_SIZE];
    qtoascii(tenth, out, 100, SCI_NEVER, '\0');
    EXPECT_STREQ("1.100000000000000000021684043449710088680149056017398834228515625", out);
    const qfloat whole = {0, 0x8040, 0, 0x80000000, 1}; // 2^63 + 1
    qtoascii(whole, out, 100, SCI_NEVER, '\0');
    EXPECT_STREQ("9223372036854775809", out);
}

TEST(Format, FormatResultWritesNothingInOtherBases) {
    ZqCalculator calc;
    qmov(qten, calc.result);
    char out[FORMAT_SIZE] = "kept";
    EXPECT_EQ(0, calc.FormatResult(8, out, 10, SCI_AUTO, false, '\0'));
    EXPECT_STREQ("kept", out);
    EXPECT_EQ(0, calc.FormatResult(10, out, 10, SCI_AUTO, false, '\0'));
    EXPECT_STREQ("10", out);
}

} // namespace
