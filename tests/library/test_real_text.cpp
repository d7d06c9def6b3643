// SPDX-License-Identifier: MIT
//
// Real numbers as texts. What a stream writes is compared with what the same stream writes for a double,
// whose value both have exactly.
#include "tallyquill/Real.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

using namespace tallyquill;

class RealText : public testing::Test {
protected:
    void SetUp() override { takeError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
};

TEST_F(RealText, ReadsTheNumberNearestToADecimalText) {
    EXPECT_EQ(Real("0.1") * 10, Real(1));
    EXPECT_EQ(Real("0.1"), Real(1) / 10);
    EXPECT_EQ(Real("-2.5e3"), Real(-2500));
    EXPECT_EQ(Real("+2500E-3"), Real(2.5));
    EXPECT_EQ(Real(".5"), Real("5.e-1"));
    EXPECT_EQ(Real("0e5"), Real());
    EXPECT_EQ(Real("000"), Real());
    EXPECT_TRUE(Real("-0").IsNegative());
}

TEST_F(RealText, FiguresBehindThe104thCountForTheScaleAlone) {
    EXPECT_EQ(Real('1' + std::string(200, '0')), Real("1e200"));
    EXPECT_EQ(Real(std::string(150, '9')), Real(std::string(104, '9') + "e46"));
    EXPECT_EQ(Real("0." + std::string(150, '0') + "15"), Real("1.5e-151"));
    EXPECT_EQ(Real(std::string(300, '0') + "7"), Real(7));
}

TEST_F(RealText, ReadsOtherRadicesExactlyUpTo352Bits) {
    EXPECT_EQ(Real("0x1F"), Real(31));
    EXPECT_EQ(Real("0X1f.8"), Real(31.5));
    EXPECT_EQ(Real("-0b101.01"), Real(-5.25));
    EXPECT_EQ(Real("0o17"), Real(15));
    EXPECT_EQ(Real("0b1" + std::string(351, '1')) + 1, ldexp(Real(1), 352));
    EXPECT_EQ(Real("0x" + std::string(88, 'F')) + 1, ldexp(Real(1), 352));
}

TEST_F(RealText, ZerosOfAnyNumberCountForTheScaleAlone) {
    EXPECT_EQ(Real("0x1." + std::string(9000, '0')), Real(1));
    EXPECT_EQ(Real("0x1" + std::string(8000, '0') + "." + std::string(4000, '0')), ldexp(Real(1), 32000));
    EXPECT_EQ(Real("0x0." + std::string(2000, '0') + "1"), ldexp(Real(1), -8004));
    EXPECT_EQ(Real("0x" + std::string(5000, '0') + "F"), Real(15));
    EXPECT_TRUE(Real("0x1" + std::string(9000, '0')).IsOverflow());
    EXPECT_EQ(Real("0." + std::string(200000, '0') + "1e200001"), Real(1));
    EXPECT_EQ(Real("1" + std::string(200000, '0') + "e-200000"), Real(1));
}

TEST_F(RealText, TheRefusalNamesTheText) {
    try {
        Real("1e");
        FAIL() << "it was taken";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "not a number: 1e");
    }
}

TEST_F(RealText, RefusesWhatIsNoNumber) {
    for (const char* const text :
         {"",   "-",  "+-1", "1-",  "--1", ".",   "e5",  "1e",  "1e+", "1e1.5", "1.2.3", "1,5",
          " 1", "1 ", "0x",  "0xg", "0b2", "0o8", "0x.", "abc", "1_0", "inf",   "nan"}) {
        EXPECT_THROW(Real(std::string_view(text)), std::invalid_argument) << text;
    }
}

TEST_F(RealText, BeyondTheRangeHasACode) {
    EXPECT_TRUE(Real("1e999999999999999999999").IsOverflow());
    EXPECT_EQ(takeError(), 3);
    EXPECT_EQ(Real("1e-999999999999999999999"), Real());
    EXPECT_EQ(takeError(), 4);
}

TEST_F(RealText, LiteralsAreNoDoubles) {
    EXPECT_EQ(0.1_real, Real(1) / 10);
    EXPECT_NE(0.1_real, Real(0.1));
    EXPECT_EQ(1'000'000_real, Real(1000000));
    EXPECT_EQ(1.5e-3_real, Real(3) / 2000);
    EXPECT_EQ(0xFF_real, Real(255));
    EXPECT_EQ(-2_real, Real(-2));
}

// Every format with every precision, for numbers around the places where formats change.
TEST_F(RealText, StreamsWriteAsTheyWriteDoubles) {
    const std::vector<double> numbers = {
        0,          1,    -1,       0.5,     2.5,     0.0001, 0.00001, 123456,      999999,      9999995,
        99999.5,    1e10, -1.25e-7, 1.0 / 3, 2.0 / 3, 0.06,   0.05,    0.04,        0.951171875, 9.990234,
        1234567.89, 1e22, 3e-300,   0.25,    0.75,    100,    1e15,    -0.009765625};
    using Format = std::ios_base& (*)(std::ios_base&);
    const Format formats[] = {std::defaultfloat, std::fixed, std::scientific};
    for (const double number : numbers) {
        for (const Format format : formats) {
            for (const int precision : {0, 1, 2, 3, 6, 10, 17, 40}) {
                std::ostringstream real, expected;
                real << format << std::setprecision(precision) << Real(number);
                expected << format << std::setprecision(precision) << number;
                EXPECT_EQ(real.str(), expected.str()) << number << ' ' << precision;
            }
        }
    }
}

TEST_F(RealText, OneFigureIsRoundedAsTheValueIs) {
    const auto fixed = [](const Real& x, int decimals) {
        std::ostringstream out;
        out << std::fixed << std::setprecision(decimals) << x;
        return out.str();
    };
    EXPECT_EQ(fixed(0.35_real, 1), "0.3"); // the number nearest to 0.35 lies below it
    EXPECT_EQ(fixed(0.95_real, 1), "0.9"); // and so does this one
    EXPECT_EQ(fixed(0.75_real, 1), "0.8");
    EXPECT_EQ(fixed(0.5_real, 0), "0");
    EXPECT_EQ(fixed(1.5_real, 0), "2");
    EXPECT_EQ(fixed(Real(0.5) + ldexp(Real(1), -352), 0), "1");
    EXPECT_EQ(fixed(9.5_real, 0), "10");
}

TEST_F(RealText, APrecisionBelowZeroIsSix) {
    for (const int precision : {-1, -5}) {
        std::ostringstream out;
        out << std::setprecision(precision) << Real(1234.5) << ' ' << std::fixed << Real(1234.5) << ' '
            << std::scientific << Real(1234.5);
        EXPECT_EQ(out.str(), "1234.5 1234.500000 1.234500e+03");
    }
}

TEST_F(RealText, StreamsHonorTheOtherFlags) {
    const auto written = [](auto number) {
        std::ostringstream out;
        out << std::showpos << std::setw(12) << number << '|' << std::noshowpos << std::left << std::setw(12)
            << number << '|' << std::internal << std::setfill('0') << std::setw(12) << number << '|'
            << std::showpoint << number << '|' << std::uppercase << std::scientific << number << '|'
            << std::fixed << std::setprecision(0) << number;
        return out.str();
    };
    for (const double number : {2.5, -1.5, 1e20, 0.0}) EXPECT_EQ(written(Real(number)), written(number));
}

TEST_F(RealText, AHundredFiguresAreThere) {
    // pi, known for centuries
    EXPECT_EQ(toString(pi()),
              "3.141592653589793238462643383279502884197169399375105820974944592307816406286208998"
              "628034825342117068");
    EXPECT_EQ(toString(Real(1) / 3), "0." + std::string(100, '3'));
    EXPECT_EQ(toString(Real("1e-20"), 3), "1e-20");
    EXPECT_EQ(toString(Real(1) / 0), "overflow");
    takeError();
}

TEST_F(RealText, StreamsReadWordByWord) {
    std::istringstream in("1.5 -2e3\n0x10;");
    Real a, b, c;
    in >> a >> b >> c;
    EXPECT_TRUE(static_cast<bool>(in));
    EXPECT_EQ(a, Real(1.5));
    EXPECT_EQ(b, Real(-2000));
    EXPECT_EQ(c, Real(16));
    EXPECT_EQ(in.get(), ';');
}

// What is read from a text, what is left in the stream, and whether a number was there.
void expectRead(const std::string& text, const Real& value, const std::string& rest) {
    std::istringstream in(text);
    Real x;
    in >> x;
    EXPECT_FALSE(in.fail()) << text;
    EXPECT_EQ(x, value) << text;
    in.clear();
    std::string left;
    std::getline(in, left);
    EXPECT_EQ(left, rest) << text;
}

TEST_F(RealText, StreamsLeaveWhatBelongsToNoNumber) {
    expectRead("1.5km", Real(1.5), "km");
    expectRead("1.5.2", Real(1.5), ".2");
    expectRead("12-3", Real(12), "-3");
    expectRead("5eV", Real(5), "eV");
    expectRead("5e", Real(5), "e");
    expectRead("2e3e4", Real(2000), "e4");
    expectRead("0x1Fkm", Real(31), "km");
    expectRead("0x.8p", Real(0.5), "p");
    expectRead("-0b102", Real(-2), "2");
    expectRead("0o178", Real(15), "8");
    expectRead("0bar", Real(), "bar");
    expectRead("0x", Real(), "x");
    expectRead("+.5,7", Real(0.5), ",7");
}

TEST_F(RealText, AStreamWithASignOrAPointAloneFails) {
    for (const char* const text : {"-", ".", "+.", "-km", "1e+", "--1"}) {
        std::istringstream in(text);
        Real x = 7;
        in >> x;
        EXPECT_TRUE(in.fail()) << text;
        EXPECT_EQ(x, Real(7)) << text;
    }
}

TEST_F(RealText, HexfloatIsTheDefaultFormat) {
    std::ostringstream out;
    out << std::hexfloat << Real(1.5);
    EXPECT_EQ(out.str(), "1.5");
}

TEST_F(RealText, AStreamWithoutANumberFailsAndKeepsTheValue) {
    std::istringstream in("abc");
    Real a = 7;
    in >> a;
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(a, Real(7));
    std::istringstream nothing("");
    nothing >> a;
    EXPECT_TRUE(nothing.eof());
    EXPECT_EQ(a, Real(7));
}
