// SPDX-License-Identifier: MIT
//
// Texts that nobody means: huge ones, every byte, huge exponents, deep chains of definitions.
#include "allocation.h"
#include "fixture.h"
#include "model.h"

#include <algorithm>
#include <ctime>

namespace {

constexpr size_t huge = 10000;

std::string repeat(const std::string& text, size_t length) {
    std::string result;
    while (result.size() < length) result += text;
    return result;
}

TEST_F(UnitsTest, AHugeName) {
    const std::string name(huge, 'q');
    EXPECT_EQ(messageOf(name), "invalid unit name '%s' in '%s'");
    EXPECT_EQ(define(name, "3 meter"), "");
    EXPECT_EQ(convert("kilo" + name + "s", "meter"), 3000);
    EXPECT_EQ(define(name, "3 meter"), "unit '%s' is already defined");
    EXPECT_EQ(convert(name, "second"), 0);
    EXPECT_EQ(takeMessage(), "'%s' and '%s' have incompatible units");
    EXPECT_FALSE(removeUnit(name.c_str()));
    EXPECT_EQ(define(name + "1", "meter"), "non-alphabetic characters in unit name '%s'");
    EXPECT_EQ(define(std::string(huge, 's'), "meter"), "");
    EXPECT_EQ(messageOf(std::string(huge - 1, 's')), "invalid unit name '%s' in '%s'");
}

TEST_F(UnitsTest, AHugeDefinition) {
    EXPECT_EQ(define("a", std::string(huge, 'q')), "'%s' cannot be reduced to primitive units");
    EXPECT_EQ(define("a", repeat("meter*", huge)), "");
    EXPECT_EQ(findUnitExactly("a")->factor, 1);
    EXPECT_EQ(namesOf(findUnitExactly("a")->numerator).size(), (huge + 5) / 6);
    EXPECT_EQ(define("b", repeat("hm/dm ", huge)), "'%s' cannot be reduced to primitive units");
    EXPECT_EQ(define("b", "/" + repeat("2 ", huge)), "");
    EXPECT_EQ(reduced(std::string(huge, ' ')), "1.0");
    EXPECT_EQ(reduced(std::string(huge, '-')), "1.0");
    EXPECT_EQ(reduced(std::string(huge, '0') + "2"), "2.0");
    EXPECT_EQ(messageOf(std::string(huge, '^')), "invalid integer exponent in '%s'");
    EXPECT_EQ(messageOf(std::string(huge, '/')), "invalid unit string '%s':  only one '%s' allowed");
    EXPECT_EQ(messageOf(std::string(huge, '$')), "invalid characters in unit string '%s'");
}

TEST_F(UnitsTest, EveryByteAsATextAndInsideOne) {
    UnitModel model;
    for (int byte = 1; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        for (const std::string& text :
             {one, "m" + one + "s", "5" + one + "m", "m/" + one + "2", "m^" + one}) {
            model.message.clear();
            const bool isValid = model.reduce(text).has_value();
            EXPECT_EQ(messageOf(text), model.message) << byte;
            EXPECT_EQ(isValid, model.message.empty());
            EXPECT_EQ(define("wrong" + one + "name1", text),
                      "non-alphabetic characters in unit name 'wrong" + one + "name1'");
            EXPECT_TRUE(removeUnit(("m" + one + "1").c_str()));
        }
    }
}

TEST_F(UnitsTest, ExponentsUpToAThousand) {
    EXPECT_EQ(convert("meter^1000", "meter^999-meter"), 1);
    EXPECT_EQ(takeMessage(), "");
    EXPECT_EQ(reduced("m^1000/m^999"), "1.0 meter");
    EXPECT_EQ(reduced("meter^" + std::string(huge, '0') + "2"), "1.0 meter meter");
}

TEST_F(UnitsTest, HugeExponentsAreRefusedAtOnce) {
    for (const char* digits : {"1001", "65537", "2147483647", "2147483648", "4294967295", "4294967296",
                               "4294967297", "9223372036854775808", "18446744073709551617"}) {
        const std::string text = std::string("radian^") + digits;
        allocation::resetPeak();
        EXPECT_EQ(messageOf(text), "invalid integer exponent in '" + text + "'");
        EXPECT_LT(allocation::peak(), 100000U);
    }
    EXPECT_EQ(messageOf("meter^" + std::string(huge, '9')), "invalid integer exponent in '%s'");
}

TEST_F(UnitsTest, AListHoldsAHundredThousandNames) {
    EXPECT_EQ(define("a", "meter^1000"), "");
    EXPECT_EQ(define("b", "a^100"), "");
    EXPECT_EQ(namesOf(findUnitExactly("b")->numerator).size(), 100000U);
    EXPECT_EQ(messageOf("a^101"), "invalid integer exponent in 'a^101'");
    EXPECT_EQ(messageOf("b meter"), "invalid integer exponent in 'b meter'");
    EXPECT_EQ(messageOf("/b meter"), "invalid integer exponent in '/b meter'");
    EXPECT_EQ(define("c", "b^2"), "'b^2' cannot be reduced to primitive units");
    EXPECT_EQ(reduced("b/b"), "1.0");
    const std::string text = reduced("b/second");
    EXPECT_EQ(text.size(), 3 + 100000 * 6 + 2 + 7U);
    EXPECT_EQ(text.substr(text.size() - 21), " meter meter / second");
}

// Their characters are limited as well as their number.
TEST_F(UnitsTest, ListsOfVeryLongNamesAreBounded) {
    const std::string name(9970, 'x');
    allocation::resetPeak();
    EXPECT_EQ(define(name, "-primitive"), "");
    EXPECT_EQ(define("b", name + "^1000"), "'%s' cannot be reduced to primitive units");
    EXPECT_EQ(define("b", name + "^401"), ""); // 3,997,970 characters
    EXPECT_EQ(messageOf("b-" + name), "invalid integer exponent in '%s'");
    EXPECT_EQ(messageOf("b^2"), "invalid integer exponent in 'b^2'");
    EXPECT_EQ(messageOf("/b^20"), "invalid integer exponent in '/b^20'");
    EXPECT_EQ(convert("b/b", "b/b"), 1.0);
    EXPECT_LT(allocation::peak(), 64U << 20);
}

TEST_F(UnitsTest, WorkGrowsWithTheNamesCopied) {
    define("a", "meter^1000");
    define("b", "a^100");
    uint64_t start = units_work();
    convert("km/hr", "mi/sec");
    EXPECT_LT(units_work() - start, 100U);
    for (const char* text : {"b", "b/b", "a^101"}) {
        start = units_work();
        convert(text, "s");
        units_clear_exception();
        EXPECT_GT(units_work() - start, 400000U) << text;
        EXPECT_LT(units_work() - start, 4000000U) << text;
    }
    start = units_work();
    convert(repeat("radian^1000 ", 9600), "m"); // multiplications alone
    EXPECT_GE(units_work() - start, 800000U);
}

TEST_F(UnitsTest, AnUnsortedListOfAHundredThousandNamesIsNoWait) {
    EXPECT_EQ(define("a", "ampere^400-meter^400"), "");
    EXPECT_EQ(define("b", "second^199-a"), "");
    const std::clock_t start = std::clock();
    const UnitPointer result(reduceUnit("b^100"));
    ASSERT_NE(result, nullptr);
    const std::vector<std::string> names = namesOf(result->numerator);
    EXPECT_EQ(names.size(), 99900U);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5.0);
}

TEST_F(UnitsTest, AChainThatDoublesEndsWithOneMessage) {
    ASSERT_EQ(unitInitialize(), 0);
    std::string last = "meter";
    std::string message;
    int depth = 0;
    allocation::resetPeak();
    for (; depth < 64 && message.empty(); ++depth) {
        const std::string name =
            std::string("Q") + static_cast<char>('a' + depth / 26) + static_cast<char>('a' + depth % 26);
        const std::string definition = last + "^2";
        message = define(name, definition);
        if (!message.empty()) {
            EXPECT_EQ(message, "'" + definition + "' cannot be reduced to primitive units");
        }
        last = name;
    }
    EXPECT_EQ(depth, 17); // 2^16 names fit, 2^17 do not
    EXPECT_LT(allocation::peak(), 64U << 20);
}

TEST_F(UnitsTest, ADeepChainOfUnits) {
    std::string last = "meter";
    for (int i = 0; i < 20000; ++i) {
        std::string name = "Qx";
        for (int n = i; n != 0; n /= 26) name += static_cast<char>('a' + n % 26);
        ASSERT_EQ(define(name, "1.0 " + last + "-second/second"), "");
        last = name;
    }
    EXPECT_EQ(convert("kilo" + last, "meter"), 1000);
    EXPECT_EQ(takeMessage(), "");
}

TEST_F(UnitsTest, AFactorBeyondTheRangeOfDoublesIsInfiniteOrZero) {
    EXPECT_EQ(reduced("Ym^20"), "inf.0" + repeat(" meter", 120));
    EXPECT_EQ(convert("ym^20", "m^20"), 0);
    EXPECT_EQ(takeMessage(), "");
}

} // namespace
