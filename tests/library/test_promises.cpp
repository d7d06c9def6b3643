// SPDX-License-Identifier: MIT
//
// What docs/library.md promises, in its order. Names and cost are those of the built library: installed.py.
// tests/qfloat compares each routine with MPFR; here a case of each rule, derived by hand.
#include "tallyquill/Calculator.h"

#include "memory.h"

#include <gtest/gtest.h>

#include <array>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using namespace tallyquill;

namespace {

class Promise : public testing::Test {
protected:
    using Limits = std::numeric_limits<Real>;
    void SetUp() override { takeError(); }
    void TearDown() override { EXPECT_EQ(takeError(), 0); }
};

// --- Range ---

TEST_F(Promise, AMantissaHas352Bits) {
    const Real power = ldexp(Real(1), 352);
    EXPECT_NE(power - 1, power);
    EXPECT_EQ(power - 1 + 1, power);
    EXPECT_EQ(power + Real(0.5), power); // 353 bits are not enough for it
}

TEST_F(Promise, BeyondTheRangeIsTheOverflowValueAndBelowItZero) {
    EXPECT_FALSE(Real("1e9863").IsOverflow());
    EXPECT_TRUE((Real("1e9863") * 100).IsOverflow());
    EXPECT_EQ(takeError(), 3);
    EXPECT_NE(Limits::min(), Real());
    EXPECT_EQ(Limits::min() / 2, Real());
    EXPECT_EQ(exp(Real("-1e30")), Real());
}

TEST_F(Promise, ResultsJustBeyondTheRangeKeepTheirDigitsWithoutACode) {
    const Real beyond = ldexp(Real(1), 32766) * 3; // 1.5 * 2^32767
    EXPECT_TRUE(beyond.IsOverflow());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(beyond / 3, ldexp(Real(1), 32766));
}

TEST_F(Promise, HalfOfTheOverflowValueIsANumberAndTheCodeStays) {
    const Real half = Real(1) / Real() / 2;
    EXPECT_FALSE(half.IsOverflow());
    EXPECT_EQ(takeError(), 2);
}

TEST_F(Promise, ThereIsNoInfinityAndNoNaN) {
    EXPECT_FALSE(Limits::has_infinity || Limits::has_quiet_NaN || Limits::has_signaling_NaN);
    EXPECT_EQ(Real() / Real(), Real());
}

// --- Rounding ---

// Behind 2^352 the numbers are the even ones.
TEST_F(Promise, ASumOfOneSignIsRoundedToTheNearest) {
    const Real power = ldexp(Real(1), 352);
    EXPECT_EQ(power + Real(1.5), power + 2);
    EXPECT_EQ(power + Real(0.5), power);
    EXPECT_EQ(-power - Real(1.5), -power - 2);
}

// The number below 1.5 * 2^352 is less by 2.
TEST_F(Promise, ADifferenceIsCut) {
    const Real power = ldexp(Real(1), 352);
    const Real between = power + power / 2;
    EXPECT_EQ(between - Real(0.5), between - 2);
}

TEST_F(Promise, ADifferenceBelow4095UnitsIsZero) {
    EXPECT_EQ(0.1_real + 0.2_real - 0.3_real, Real());
    EXPECT_EQ((1 + Limits::epsilon()) - 1, Real());
    EXPECT_EQ((1 + Limits::epsilon() * 4094) - 1, Real());
    EXPECT_EQ((1 + Limits::epsilon() * 4095) - 1, Limits::epsilon() * 4095);
}

// (1 + e)^2 is 1 + 2 e + e^2, and its root lies between 1 + e and the number above; 1/3 is 0.0101... in
// binary, of which the 353rd figure decides.
TEST_F(Promise, ProductsQuotientsAndRootsAreTheNearest) {
    const Real above = 1 + Limits::epsilon();
    EXPECT_EQ(above * above, 1 + Limits::epsilon() * 2);
    EXPECT_EQ(sqrt(above * above), above);
    std::string third = "0b0.0";
    for (int i = 0; i < 176; ++i) third += "10";
    EXPECT_EQ(Real(1) / 3, Real(third) + ldexp(Real(1), -353));
}

// --- Order ---

TEST_F(Promise, NeighborsAreToldApartDownTo1eMinus9758) {
    const Real small("1e-9757");
    const Real next = small + ldexp(small, -351);
    EXPECT_LT(small, next);
    EXPECT_NE(Real(1), 1 + Limits::epsilon());
    EXPECT_EQ(Limits::min(), Limits::min() + ldexp(Limits::min(), -351)); // the exception
}

// --- Text ---

TEST_F(Promise, TextsOf104FiguresAreReadAsTheNearestNumberAnd105AreWritten) {
    const std::string figures = "9." + std::string(102, '0') + "1";
    EXPECT_EQ(toString(Real(figures), 104), figures);
    EXPECT_EQ(toString(Real(1) / 3, 105), "0." + std::string(105, '3'));
}

TEST_F(Promise, WordsGiveANumberBitForBit) {
    std::array<uint32_t, 14> stored{};
    const Real x = -exp(Real(1));
    std::copy_n(x.Words(), stored.size(), stored.begin());
    const Real read(stored.data());
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), read.Words()));
    EXPECT_EQ(read, x);
}

// --- Errors ---

TEST_F(Promise, AFailureLeavesItsCode) {
    EXPECT_EQ(sqrt(Real(-1)), Real());
    EXPECT_STREQ(MATH_ERROR_TEXTS[takeError()], "result is imaginary");
    EXPECT_TRUE((Real(1) / 0).IsOverflow());
    EXPECT_STREQ(MATH_ERROR_TEXTS[takeError()], "singularity");
    EXPECT_TRUE(exp(Real("1e9")).IsOverflow());
    EXPECT_STREQ(MATH_ERROR_TEXTS[takeError()], "overflow");
    EXPECT_EQ(Real("1e-9900"), Real());
    EXPECT_STREQ(MATH_ERROR_TEXTS[takeError()], "underflow");
}

TEST_F(Promise, WhatThrowsIsATextThatIsNoNumberAndASecondCalculator) {
    EXPECT_THROW(Real("1..2"), std::invalid_argument);
    const Calculator calculator;
    EXPECT_THROW(Calculator(), std::logic_error);
}

// Most calls take no memory, and some of powers near the limits do. Behind a failure all is as before.
TEST_F(Promise, MemoryThatRunsOutThrowsAndHarmsNothing) {
    int failures = 0;
    for (int i = 1; i <= 1000; ++i) {
        const Real x = Real(i) / 7 + 1000;
        const Real y = 3170.5;
        Real kept;
        runOutOfMemory(true);
        bool hasFailed = false;
        try {
            kept = pow(x, y);
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
        runOutOfMemory(false);
        failures += hasFailed ? 1 : 0;
        const Real value = pow(x, y);
        EXPECT_EQ(hasFailed ? Real() : value, kept);
        if (hasFailed) {
            EXPECT_EQ(toString(exp(log(value) / y), 100), toString(x, 100));
        }
    }
    EXPECT_GT(failures, 0);
    EXPECT_LT(failures, 500);
}

// --- Threads ---

// The sum of the functions of numbers, of which every hundredth fails, and how many failed.
struct Work {
    Real sum;
    int failures = 0;
};

Work workFrom(int first, std::mutex& mutex) {
    Work work;
    for (int i = first; i < first + 500; ++i) {
        const std::lock_guard<std::mutex> lock(mutex);
        const Real x = Real(i) / 7;
        work.sum += i % 100 == 0 ? log(-x) : log(x) * sin(x) + exp(cos(x));
        work.failures += takeError() != 0 ? 1 : 0;
    }
    return work;
}

TEST_F(Promise, AMutexLetsSeveralThreadsCalculate) {
    std::mutex mutex;
    std::array<Work, 4> together;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < together.size(); ++i)
        threads.emplace_back([&, i] { together[i] = workFrom(1 + static_cast<int>(i) * 1000, mutex); });
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < together.size(); ++i) {
        const Work alone = workFrom(1 + static_cast<int>(i) * 1000, mutex);
        EXPECT_EQ(together[i].sum, alone.sum);
        EXPECT_EQ(together[i].failures, 5);
        EXPECT_EQ(alone.failures, 5);
    }
}

TEST_F(Promise, ACalculatorWorksInAThreadThatHasNotMadeIt) {
    Calculator calculator;
    calculator.Evaluate("f(x) = x^2 + 1");
    std::string text;
    std::thread([&] { text = calculator.Evaluate("f(3)").text; }).join();
    EXPECT_EQ(text, "10");
    EXPECT_EQ(calculator.Evaluate("ans*2").text, "20");
}

// --- Cost ---

TEST_F(Promise, ARealHas56BytesAndIsTriviallyCopied) {
    EXPECT_EQ(sizeof(Real), 56U);
    EXPECT_TRUE(std::is_trivially_copyable_v<Real>);
}

TEST_F(Promise, ArithmeticTakesNoMemory) {
    runOutOfMemory(true);
    Real sum;
    for (int i = 1; i < 1000; ++i) sum += Real(i) * Real(7) / Real(i + 1) - floor(Real(i)) % Real(3);
    runOutOfMemory(false);
    EXPECT_GT(sum, Real());
}

} // namespace
