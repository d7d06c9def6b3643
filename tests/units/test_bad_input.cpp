// SPDX-License-Identifier: MIT
//
// Texts that nobody means: huge ones, every byte, huge exponents, deep chains of definitions.
#include "allocation.h"
#include "fixture.h"
#include "model.h"

#include <algorithm>

namespace {

constexpr size_t HUGE = 10000;

std::string repeat(const std::string& text, size_t length) {
    std::string result;
    while (result.size() < length) result += text;
    return result;
}

// Another name of letters for each number.
std::string letterName(int number) {
    std::string name;
    do {
        name += static_cast<char>('a' + number % 26);
    } while ((number /= 26) != 0);
    return name;
}

TEST_F(UnitsTest, AHugeNameIsRefused) {
    const std::string name(HUGE, 'q');
    EXPECT_EQ(messageOf(name), "invalid unit name '%s' in '%s'");
    EXPECT_EQ(define(name, "3 meter"), "");
    EXPECT_EQ(convert("kilo" + name + "s", "meter"), 3000);
    EXPECT_EQ(define(name, "3 meter"), "unit '%s' is already defined");
    EXPECT_EQ(convert(name, "second"), 0);
    EXPECT_EQ(takeMessage(), "'%s' and '%s' have incompatible units");
    EXPECT_FALSE(removeUnit(name.c_str()));
    EXPECT_EQ(define(name + "1", "meter"), "non-alphabetic characters in unit name '%s'");
    EXPECT_EQ(define(std::string(HUGE, 's'), "meter"), "");
    EXPECT_EQ(messageOf(std::string(HUGE - 1, 's')), "invalid unit name '%s' in '%s'");
}

TEST_F(UnitsTest, AHugeDefinitionIsRefused) {
    EXPECT_EQ(define("a", std::string(HUGE, 'q')), "'%s' cannot be reduced to primitive units");
    EXPECT_EQ(define("a", repeat("meter*", HUGE)), "");
    EXPECT_EQ(known("a").factor, 1);
    EXPECT_EQ(namesOf(known("a"), 1).size(), (HUGE + 5) / 6);
    EXPECT_EQ(define("b", repeat("hm/dm ", HUGE)), "'%s' cannot be reduced to primitive units");
    EXPECT_EQ(define("b", "/" + repeat("2 ", HUGE)), "");
    EXPECT_EQ(reduced(std::string(HUGE, ' ')), "1.0");
    EXPECT_EQ(reduced(std::string(HUGE, '-')), "1.0");
    EXPECT_EQ(reduced(std::string(HUGE, '0') + "2"), "2.0");
    EXPECT_EQ(messageOf(std::string(HUGE, '^')), "invalid integer exponent in '%s'");
    EXPECT_EQ(messageOf(std::string(HUGE, '/')), "invalid unit string '%s':  only one '%s' allowed");
    EXPECT_EQ(messageOf(std::string(HUGE, '$')), "invalid characters in unit string '%s'");
}

TEST_F(UnitsTest, EveryByteAsATextAndInsideOne) {
    UnitModel model;
    for (int byte = 1; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        for (const std::string& text :
             {one, "m" + one + "s", "5" + one + "m", "m/" + one + "2", "m^" + one}) {
            model.message.clear();
            const bool isValid = model.Reduce(text).has_value();
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
    EXPECT_EQ(reduced("meter^" + std::string(HUGE, '0') + "2"), "1.0 meter meter");
}

TEST_F(UnitsTest, HugeExponentsAreRefusedAtOnce) {
    for (const char* digits : {"1001", "65537", "2147483647", "2147483648", "4294967295", "4294967296",
                               "4294967297", "9223372036854775808", "18446744073709551617"}) {
        const std::string text = std::string("radian^") + digits;
        allocation::resetPeak();
        EXPECT_EQ(messageOf(text), "invalid integer exponent in '" + text + "'");
        EXPECT_LT(allocation::peak(), 100000U);
    }
    EXPECT_EQ(messageOf("meter^" + std::string(HUGE, '9')), "invalid integer exponent in '%s'");
}

TEST_F(UnitsTest, AListHoldsAHundredThousandNames) {
    EXPECT_EQ(define("a", "meter^1000"), "");
    EXPECT_EQ(define("b", "a^100"), "");
    EXPECT_EQ(namesOf(known("b"), 1).size(), 100000U);
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

// A unit of 100,000 names takes no more memory than one of two.
TEST_F(UnitsTest, AUnitHoldsEachNameOnce) {
    EXPECT_EQ(define("a", "meter^1000"), "");
    allocation::resetPeak();
    for (int i = 0; i < 200; ++i) EXPECT_EQ(define("Bb" + letterName(i), "a^100/second^7"), "");
    EXPECT_EQ(convert("Bb" + letterName(199), "Bba"), 1.0);
    EXPECT_LT(allocation::peak(), 200U * 400U);
}

TEST_F(UnitsTest, AllUnitsTogetherAreBounded) {
    std::string all;
    for (int i = 0; i < 2000; ++i) {
        const std::string name = "Qq" + letterName(i);
        ASSERT_EQ(define(name, "-primitive"), "");
        all += name + ' ';
    }
    ASSERT_EQ(define("all", all), "");
    allocation::resetPeak();
    std::string message;
    int count = 1;
    for (; message.empty() && count < 1000; ++count) message = define("Rr" + letterName(count), "2 all");
    EXPECT_EQ(message, "'2 all' cannot be reduced to primitive units");
    EXPECT_EQ(count, 499); // the 500th does not fit beside the primitive and the catalogue's units
    EXPECT_LT(allocation::peak(), 20U << 20);
    EXPECT_FALSE(removeUnit(("Rr" + letterName(5)).c_str()));
    EXPECT_EQ(define("Tt", "2 all"), "");
    // What is removed while changes are recorded is held until they end.
    Recording changes;
    changes.begin();
    EXPECT_FALSE(removeUnit("Tt"));
    EXPECT_EQ(define("Tt", "3 all"), "'3 all' cannot be reduced to primitive units");
    changes.Keep();
    EXPECT_EQ(define("Tt", "3 all"), "");
}

TEST_F(UnitsTest, WorkGrowsWithTheTextAndNotWithTheNames) {
    define("a", "meter^1000");
    define("b", "a^100");
    const auto workOfConverting = [](const std::string& from, const std::string& to) {
        return workOf([&](const UnitsCharge& charge) { units_convert(from.c_str(), to.c_str(), charge); });
    };
    EXPECT_LT(workOfConverting("km/hr", "mi/sec"), 40U);
    EXPECT_LT(workOfConverting("b", "b"), 40U);
    EXPECT_LT(workOfConverting("b/b", "s"), 40U);
    EXPECT_GT(workOfConverting(repeat("radian^1000 ", 9600), "m"), 800 * 1000U / 8); // multiplications
    EXPECT_GT(workOfConverting(std::string(9600, '*'), "m"), 9600U / 20);
}

// The work for a sum of many different names: so much for each, in whatever order they come.
TEST_F(UnitsTest, ManyDifferentNamesAreNoWait) {
    const auto workOfReversed = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            const std::string name = "Qq" + letterName(i);
            define(name, "-primitive");
            units_clear_exception();
            text.insert(0, name + ' ');
        }
        return workOf([&](const UnitsCharge& charge) { units_convert(text.c_str(), text.c_str(), charge); });
    };
    const uint64_t few = workOfReversed(300);
    EXPECT_LT(workOfReversed(3000), 11 * few);
}

TEST_F(UnitsTest, WorkIsAskedForBeforeItIsDone) {
    define("big", "1.0001 radian");
    const std::string expensive = repeat("big^1000-", 9990);
    uint64_t largest = 0;
    uint64_t asked = 0;
    const UnitsCharge limited = [&](uint64_t work) {
        largest = std::max(largest, work);
        return (asked += work) <= 10000;
    };
    EXPECT_EQ(units_convert(expensive.c_str(), expensive.c_str(), limited), 0.0);
    EXPECT_EQ(takeMessage(), "unit string '%s' takes too long");
    EXPECT_LE(asked, 10000U + largest);
    EXPECT_LE(largest, 500U); // 10,000 characters, or an exponent of 1,000
    asked = 10000;
    units_new("x", "2 m", limited);
    EXPECT_EQ(takeMessage(), "'2 m' cannot be reduced to primitive units");
    units_convert("m", "ft", limited);
    EXPECT_EQ(takeMessage(), "unit string 'm' takes too long");
    EXPECT_EQ(messageOf("x"), "invalid unit name 'x' in 'x'");
}

// Whichever charge is refused, the first, the second and so on, with all that follow. A source without
// dimension converts to anything, so that only what was given up keeps it from a result.
TEST_F(UnitsTest, AnOperationThatIsGivenUpAnywhereHasNoResult) {
    const auto takesAllCharges = [](int accepted, const auto& operation) {
        bool isGivenUp = false;
        operation([&](uint64_t) {
            isGivenUp = isGivenUp || accepted-- == 0;
            return !isGivenUp;
        });
        return !isGivenUp;
    };
    const auto converts = [](const UnitsCharge& charge) {
        const double factor = units_convert("2 radian", "m^2 kg", charge);
        EXPECT_EQ(units_check_exception() == nullptr, factor != 0.0);
    };
    const auto defines = [](const UnitsCharge& charge) { units_new("x", "2 radian m kg", charge); };
    int accepted = 0;
    for (; !takesAllCharges(accepted, converts); ++accepted) {
        EXPECT_EQ(takeMessage().substr(0, 11), "unit string") << accepted;
    }
    EXPECT_GT(accepted, 5); // two texts, three names, what they are made of
    EXPECT_EQ(takeMessage(), "");
    for (accepted = 0; !takesAllCharges(accepted, defines); ++accepted) {
        EXPECT_EQ(takeMessage(), "'2 radian m kg' cannot be reduced to primitive units") << accepted;
        EXPECT_EQ(unitTable.Find("x"), nullptr) << accepted;
    }
    EXPECT_GT(accepted, 5);
    EXPECT_EQ(takeMessage(), "");
    EXPECT_NE(unitTable.Find("x"), nullptr);
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
