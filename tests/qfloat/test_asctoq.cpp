// SPDX-License-Identifier: MIT
//
// asctoq by hand-written cases: what is a number, what stops it, what it may contain.
#include "oracle.h"

#include "qfloat.h"

namespace oracle::test_asctoq {

struct Parsed {
    Number q;
    int status;
    int code;
    std::string printed;
};

Parsed parse(const std::string& text) {
    Parsed p;
    p.q.fill(0xA5A5A5A5);
    merror = 0;
    ::testing::internal::CaptureStdout();
    p.status = asctoq(text.c_str(), p.q.data());
    std::fflush(stdout);
    p.printed = ::testing::internal::GetCapturedStdout();
    p.code = merror;
    merror = 0;
    return p;
}

// The same, but for the word on standard output.
void expectThatQparseGives(const Parsed& p, const std::string& text) {
    Number q;
    q.fill(0xA5A5A5A5);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(qparse(text.c_str(), q.data()), p.status) << text;
    std::fflush(stdout);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "") << text;
    EXPECT_EQ(q, p.q) << text;
    EXPECT_EQ(merror, p.code) << text;
    merror = 0;
}

// The text is read as the number, without a code and without a word on standard output.
void expectNumber(const std::string& text, const Number& expected, int code = 0) {
    const Parsed p = parse(text);
    EXPECT_EQ(p.status, 0) << text;
    EXPECT_EQ(p.q, expected) << text << " gave " << show(p.q);
    EXPECT_EQ(p.code, code) << text;
    EXPECT_EQ(p.printed, "") << text;
    expectThatQparseGives(p, text);
}

void expectNumber(const std::string& text, const char* expected) {
    expectNumber(text, decimal(expected));
}

void expectZero(const std::string& text, int code) {
    expectNumber(text, Number{}, code);
}

void expectSyntaxError(const std::string& text) {
    const Parsed p = parse(text);
    EXPECT_EQ(p.status, -1) << text;
    EXPECT_EQ(p.q, Number{}) << text;
    EXPECT_EQ(p.code, 0) << text;
    EXPECT_EQ(p.printed, "asctoq conversion error\n") << text;
    expectThatQparseGives(p, text);
}

std::string digits(char digit, size_t count) {
    return std::string(count, digit);
}

TEST(Asctoq, ReadsPlainDecimalNumbers) {
    expectNumber("0", "0");
    expectNumber("7", "7");
    expectNumber("007", "7");
    expectNumber("1.5", "1.5");
    expectNumber(".5", "0.5");
    expectNumber("5.", "5");
    expectNumber("-0.25", "-0.25");
    expectNumber("+12", "12");
    expectNumber("1.5e-3", "0.0015");
    expectNumber("0.1", "0.1");
    expectNumber("3.14159", "3.14159");
}

TEST(Asctoq, TextsWithoutADigitAreZeroWithoutACode) {
    for (const char* text : {"", "-", "+", ".", "-.", " ", "\n"}) expectZero(text, 0);
}

TEST(Asctoq, ZeroIsPlainZeroWhateverItsSign) {
    expectZero("0", 0);
    expectZero("-0", 0);
    expectZero("0.000", 0);
    expectZero("-0.", 0);
}

TEST(Asctoq, ASignMayStandAnywhereAmongTheMantissaCharacters) {
    expectNumber("12-3", "-123");
    expectNumber("123-", "-123");
    expectNumber("1.-5", "-1.5");
    expectNumber("12+3", "123");
    expectNumber("1-e2", "-100");
    expectNumber("0x1-F", "-31");
    expectNumber("0x-1F", "-31");
}

TEST(Asctoq, ASecondSignIsAnError) {
    for (const char* text : {"--1", "+-1", "-+1", "1-2-3", "+1+", "0x--1"}) expectSyntaxError(text);
}

TEST(Asctoq, ASecondPointIsAnError) {
    for (const char* text : {"1..2", "1.2.3", "..", "0x1.8.", ".0."}) expectSyntaxError(text);
}

TEST(Asctoq, BlanksAreIgnoredWhereverTheyStand) {
    expectNumber("1 000", "1000");
    expectNumber("   1 . 5  ", "1.5");
    expectNumber("- 5", "-5");
    expectNumber("0x 1 F", "31");
    expectNumber("1 e3", "1000");
}

TEST(Asctoq, AnythingElseIsAnError) {
    for (const char* text :
         {"x",     "1x",   "12a",   "1,5",   "1\t5", "abc",  "1_0", "$1",  "1:",   "@",   "1/2", "\xE9",
          "1\x01", "0X1F", "-0x1F", "1 0x1", "0b2",  "0b1:", "0o8", "0xG", "0x1@", "0x:", "0x`", "0x["}) {
        expectSyntaxError(text);
    }
}

TEST(Asctoq, ALineEndStopsReading) {
    expectNumber("12\n34", "12");
    expectNumber("12\r\n", "12");
    expectNumber("12\rxyz", "12");
    expectNumber("1.5\ne3", "1.5");
    expectNumber("0x1F\nG", "31");
    expectZero("\n5", 0);
}

TEST(Asctoq, ASyntaxErrorBehindTheExponentLetterIsNone) {
    expectNumber("1e5x", "1e5");
    expectNumber("1e", "1");
    expectNumber("1e ", "1");
    expectNumber("2ex", "2");
    expectNumber("2e.5", "2");
    expectNumber("1e 5", "1");
    expectNumber("1e2e3", "100");
    expectNumber("1e2.5", "100");
}

TEST(Asctoq, ExponentFormsTakeAMinusThenAPlus) {
    expectNumber("1e5", "1e5");
    expectNumber("1E5", "1e5");
    expectNumber("1e+5", "1e5");
    expectNumber("1e-5", "1e-5");
    expectNumber("1e-+5", "1e-5");
    expectNumber("1e+-5", "1"); // the minus behind the plus is no exponent digit
    expectNumber("1e--5", "1");
    expectNumber("1e0000000000000000000005", "1e5");
    expectNumber("1e-000", "1");
}

TEST(Asctoq, AZeroMantissaWithAnExponentSetsTheUnderflowCode) {
    for (const char* text : {"0e5", "0e0", "0.00e-3", "-0e5", "e5", ".e1", "0e99999", "0b0.0e1", "0o.0e3"}) {
        expectZero(text, 4);
    }
}

// ---------------------------------------------------------------------------------------------------------
// Radix prefixes

TEST(AsctoqRadix, PrefixesChooseTheRadix) {
    expectNumber("0x1F", "31");
    expectNumber("0xff", "255");
    expectNumber("0xaBcDeF", "11259375");
    expectNumber("0b101", "5");
    expectNumber("0o17", "15");
    expectNumber("0x.8", "0.5");
    expectNumber("0x0.8", "0.5");
    expectNumber("0x1.8", "1.5");
    expectNumber("0b0.01", "0.25");
    expectNumber("0o1.4", "1.5");
    expectNumber("0b-11", "-3");
}

TEST(AsctoqRadix, AfterAPrefixZerosAreSkippedAndNothingIsZero) {
    for (const char* text : {"0x", "0b", "0o", "0x0", "0x000", "0b00", "0o0000"}) expectZero(text, 0);
    expectZero("0x0.", 0);
    expectZero("0x-0", 0);
    expectNumber("0x000F", "15");
}

TEST(AsctoqRadix, TheExponentIsAPowerOfTwo) {
    expectNumber("0b101e3", "40");
    expectNumber("0b101E-1", "2.5");
    expectNumber("0o17e2", "60");
    expectNumber("0o17e-+2", "3.75");
    expectNumber("0b1e10", "1024");
}

TEST(AsctoqRadix, InHexadecimalTheLetterEIsADigit) {
    expectNumber("0x1e3", "483");
    expectNumber("0xE", "14");
    expectSyntaxError("0x1p3");
}

TEST(AsctoqRadix, HexadecimalDigits97To104KeepTheScale) {
    // 96 digits fill the register; the digits behind them lie below the precision but count in the scale.
    for (size_t count = 86; count <= 104; ++count) {
        const std::string ones = "1" + digits('0', count - 1);
        expectNumber("0x" + ones, scaled("1", 4 * static_cast<int64_t>(count - 1)));
        expectNumber("0x0." + digits('0', count - 1) + "1", scaled("1", -4 * static_cast<int64_t>(count)));
        // Bits below the 352nd are cut: all digits F give all ones.
        const auto scale = 4 * (static_cast<int64_t>(count) - 88);
        if (count >= 88) expectNumber("0x-" + digits('F', count), scaled("-" + digits('F', 88), scale));
    }
}

TEST(AsctoqRadix, HexadecimalDigitsBeyondThe104thAreDropped) {
    expectNumber("0x1" + digits('0', 120), scaled("1", 4 * 103));
    expectNumber("0x" + digits('F', 130), scaled(digits('F', 88), 4 * 16));
    expectNumber("0x0." + digits('0', 103) + "18", scaled("1", -4 * 104));
    expectZero("0x0." + digits('0', 104) + "1", 0);
}

TEST(AsctoqRadix, OctalAndBinaryTake104DigitsExactly) {
    expectNumber("0o" + digits('7', 104), scaled("F" + digits('F', 77), 0));
    expectNumber("0o" + digits('7', 105), scaled("F" + digits('F', 77), 0));
    expectNumber("0b" + digits('1', 104), scaled(digits('F', 26), 0));
    expectNumber("0b" + digits('1', 200), scaled(digits('F', 26), 0));
}

TEST(AsctoqRadix, EndsOfTheExponentRange) {
    expectNumber("0b1e32759", scaled("1", 32759));
    expectNumber("0b1111e32759", scaled("F", 32759));
    expectNumber("0b111111111e32759", scaled("1FF", 32759)); // exponent word 0x10000
    expectNumber("0b1111111111e32759", overflowValue(0), 3);
    expectNumber("0b-1111111111e32759", overflowValue(NEGATIVE_SIGN), 3);
    expectNumber("0b0.00000001e-32759", scaled("1", -32767));
}

TEST(AsctoqRadix, AnExponentBelowTheRangeGivesZeroWithoutACode) {
    expectNumber("0b0.000000001e-32759", scaled("1", -32768)); // exponent word 1
    expectZero("0b0.0000000001e-32759", 0);
    expectZero("0b-" + std::string("0.") + digits('0', 100) + "1e-32759", 0);
}

// ---------------------------------------------------------------------------------------------------------
// Limits

TEST(AsctoqDigits, IntegerDigitsBeyondThe104thAreDroppedWithoutAChangeOfScale) {
    const std::string first = "1" + digits('2', 102) + "3";
    expectNumber(first, first.c_str());
    expectNumber(first + "999", first.c_str());
    expectNumber(first + "999.25", first.c_str());
    expectNumber(first + "999e2", (first + "e2").c_str());
    expectNumber("000" + first + "4", first.c_str());
}

TEST(AsctoqDigits, FractionDigitsBeyondThe104thAreDropped) {
    const std::string first = "1." + digits('2', 102) + "3";
    expectNumber(first + "999", first.c_str());
    expectNumber(first + "999e-5", (first + "e-5").c_str());
}

TEST(AsctoqDigits, ZerosBehindThePointCountTowardThe104) {
    expectNumber("0." + digits('0', 103) + "1", "1e-104");
    expectNumber("0." + digits('0', 103) + "19", "1e-104");
    expectNumber("." + digits('0', 100) + "123456789", "1234e-104");
    expectZero("0." + digits('0', 104) + "1", 0);
    expectZero("0." + digits('0', 104) + "1e50", 4);
}

TEST(AsctoqDigits, AnIntegerOf104DigitsIsExact) {
    Real value;
    mpfr_set_str(value, digits('9', 104).c_str(), 10, MPFR_RNDN);
    expectNumber(digits('9', 104), exactly(value));
}

TEST(AsctoqRange, AnExponentDigitBehind3276OrMoreOverflowsOrUnderflows) {
    expectNumber("1e32767", overflowValue(0), 3);
    expectNumber("-1e32760", overflowValue(NEGATIVE_SIGN), 3);
    expectNumber("1e3276000000000000000000000", overflowValue(0), 3);
    expectNumber("0b1e32760", overflowValue(0), 3);
    expectNumber("0b-1e99999", overflowValue(NEGATIVE_SIGN), 3);
    expectZero("1e-32767", 4);
    expectZero("-1e-99999999999999999999", 4);
    expectZero("0b1e-32760", 4);
    expectNumber("1e3276", "1e3276");
    expectNumber("1e-3276", "1e-3276");
    expectNumber("0b1e3276", scaled("1", 3276));
    expectNumber("0b1e-32759", scaled("1", -32759));
}

TEST(AsctoqRange, LargeAndSmallPowersOfTen) {
    expectNumber("1e4000", "1e4000");
    expectNumber("1e-4000", "1e-4000");
    expectNumber("1e9863", "1e9863");
    expectNumber("-1e-9863", "-1e-9863");
    expectNumber("1e-9864", "1e-9864");
}

TEST(AsctoqRange, AboveTheRangeIsTheOverflowValueWithCode3) {
    for (const char* text : {"1e9865", "1e10000", "1e16383", "1e16384", "1e32759", "1.5e9900"}) {
        expectNumber(text, overflowValue(0), 3);
        expectNumber(std::string("-") + text, overflowValue(NEGATIVE_SIGN), 3);
    }
    expectNumber(digits('9', 104) + "e9761", overflowValue(0), 3);
}

TEST(AsctoqRange, BelowTheRangeIsZeroWithCode4) {
    for (const char* text : {"1e-9865", "1e-10000", "1e-16383", "1e-16384", "1e-32759", "-1.5e-9900"}) {
        expectZero(text, 4);
    }
    expectZero("0." + digits('0', 50) + "1e-9814", 4);
}

// The value is inside the range although 10^9900 alone is not.
TEST(AsctoqRange, ManyFractionDigitsWithASmallExponentAreRight) {
    const std::string text = "1." + digits('7', 100) + "e-9800";
    expectNumber(text, text.c_str());
    const std::string integer = digits('8', 104) + "e-9960";
    expectNumber(integer, integer.c_str());
    const std::string small = "-." + digits('0', 60) + digits('3', 44) + "e9900";
    expectNumber(small, small.c_str());
}

} // namespace oracle::test_asctoq
