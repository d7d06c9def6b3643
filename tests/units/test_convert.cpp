// SPDX-License-Identifier: MIT
//
// Conversion, definition and removal.
#include "fixture.h"

#include <cmath>

namespace {

TEST_F(UnitsTest, ConvertsBetweenCompatibleUnits) {
    EXPECT_DOUBLE_EQ(convert("km", "mi"), 1000 / 1609.344);
    EXPECT_NEAR(convert("km", "mi"), 0.621371, 5e-7);
    EXPECT_DOUBLE_EQ(convert("inches", "foot"), 1.0 / 12);
    EXPECT_DOUBLE_EQ(convert("mi/hr", "m/s"), 0.44704);
    EXPECT_DOUBLE_EQ(convert("kg-m^2/s^2", "J"), 1);
    EXPECT_DOUBLE_EQ(convert("J", "kg-m^2/s^2"), 1);
    EXPECT_DOUBLE_EQ(convert("acre", "ft^2"), 4046.85642 / (0.3048 * 0.3048));
    EXPECT_DOUBLE_EQ(convert("3 ft", "2 in"), 18);
    EXPECT_DOUBLE_EQ(convert("watt hour", "calorie"), 3600 / 4.1868);
    EXPECT_EQ(takeMessage(), "");
}

// A source without dimension is not compared with the target.
TEST_F(UnitsTest, ADimensionlessSourceConvertsToAnything) {
    EXPECT_EQ(convert("radian", "meter"), 1);
    EXPECT_EQ(convert("", "meter"), 1);
    EXPECT_EQ(convert("12", "kilometer"), 0.012);
    EXPECT_EQ(convert("-primitive", "second"), 1);
    EXPECT_EQ(takeMessage(), "");
    EXPECT_EQ(convert("meter", "radian"), 0);
    EXPECT_EQ(takeMessage(), "'meter' and 'radian' have incompatible units");
}

TEST_F(UnitsTest, UnitsOfDifferentKindsAreIncompatible) {
    EXPECT_EQ(convert("meter", "second"), 0);
    EXPECT_EQ(takeMessage(), "'meter' and 'second' have incompatible units");
    for (const auto& [from, to] : {std::pair{"meter^2", "meter"},
                                   {"meter", "meter^2"},
                                   {"meter/second", "meter"},
                                   {"meter", "meter/second"},
                                   {" 5 m/s", "m/s^2"},
                                   {"/s", "s"},
                                   {"m s", "m kg"}}) {
        EXPECT_EQ(convert(from, to), 0);
        EXPECT_EQ(takeMessage(), std::string("'") + from + "' and '" + to + "' have incompatible units");
    }
}

TEST_F(UnitsTest, TheReductionsMessageStands) {
    EXPECT_EQ(convert("foo", "meter"), 0);
    EXPECT_EQ(takeMessage(), "invalid unit name 'foo' in 'foo'");
    EXPECT_EQ(convert("meter", "bar^0"), 0);
    EXPECT_EQ(takeMessage(), "invalid integer exponent in 'bar^0'");
}

TEST_F(UnitsTest, OfTwoWrongSidesTheSecondIsReported) {
    EXPECT_EQ(convert("foo", "baz"), 0);
    EXPECT_EQ(takeMessage(), "invalid unit name 'baz' in 'baz'");
}

TEST_F(UnitsTest, AZeroTargetIsAnErrorBehindIncompatibility) {
    EXPECT_EQ(convert("meter", "0foot"), 0);
    EXPECT_EQ(takeMessage(), "illegal zero factor in '0foot'");
    EXPECT_EQ(convert("radian", "0.0 foot"), 0);
    EXPECT_EQ(takeMessage(), "illegal zero factor in '0.0 foot'");
    EXPECT_EQ(convert("meter", "0second"), 0);
    EXPECT_EQ(takeMessage(), "'meter' and '0second' have incompatible units");
    EXPECT_EQ(convert("m^20", "ym^20"), 0); // 10^-480 is no double
    EXPECT_EQ(takeMessage(), "illegal zero factor in 'ym^20'");
}

// ---------------------------------------------------------------------------------------------------------
// Definitions

TEST_F(UnitsTest, AUsersUnitIsReducedAndAppended) {
    EXPECT_EQ(define("smoot", "67inch"), "");
    EXPECT_DOUBLE_EQ(convert("smoot", "meter"), 1.7018);
    EXPECT_DOUBLE_EQ(convert("kilosmoots", "smoot"), 1000);
    EXPECT_EQ(define("Smoot", "2 smoot^2/hour"), "");
    EXPECT_EQ(reduced("Smoot"), reduced("8978 inch^2/hour"));
}

TEST_F(UnitsTest, ANewPrimitiveUnit) {
    EXPECT_EQ(define("apple", "-primitive"), "");
    EXPECT_EQ(reduced("3 apples/second"), "3.0 apple / second");
    EXPECT_EQ(reduced("kiloapple^2"), "1e+06 apple apple");
    EXPECT_EQ(define("dozen", "12 apple"), "");
    EXPECT_DOUBLE_EQ(convert("dozen", "apple"), 12);
    EXPECT_EQ(convert("apple", "meter"), 0);
    EXPECT_EQ(takeMessage(), "'apple' and 'meter' have incompatible units");
}

TEST_F(UnitsTest, ANameIsDefinedOnce) {
    EXPECT_EQ(define("foot", "1meter"), "unit 'foot' is already defined");
    EXPECT_EQ(define("smoot", "67inch"), "");
    EXPECT_EQ(define("smoot", "$"), "unit 'smoot' is already defined");
    EXPECT_EQ(define("km", "2 meter"), ""); // only the exact name counts
    EXPECT_EQ(reduced("km"), "2.0 meter");
}

TEST_F(UnitsTest, ANewNameIsLettersOnly) {
    for (const char* name : {"", "a b", "a1", "meter^2", "#", "ab_", " a", "a\xc3\xa4"}) {
        EXPECT_EQ(define(name, "meter"),
                  std::string("non-alphabetic characters in unit name '") + name + "'");
    }
    EXPECT_EQ(define("a1", "$"), "non-alphabetic characters in unit name 'a1'");
}

TEST_F(UnitsTest, AWrongDefinitionHasItsOwnMessageAndLeavesNothing) {
    for (const char* definition : {"foo", "meter$", "meter^0", "meter/0", "2 3", "a/b/c", "smoot"}) {
        EXPECT_EQ(define("smoot", definition),
                  std::string("'") + definition + "' cannot be reduced to primitive units");
    }
    EXPECT_EQ(messageOf("smoot"), "invalid unit name 'smoot' in 'smoot'");
}

TEST_F(UnitsTest, ADefinitionIsGivenThatMakesTheUnitAgain) {
    define("apple", "-primitive");
    define("many", "0.1 apple^1000 second");
    for (const auto& [definition, expected] : {std::pair{"67 inch", "1.7018 meter"},
                                               {"m^3/s", "1 meter^3 / second"},
                                               {"/s^2", "1 / second^2"},
                                               {"2 radian", "2"},
                                               {"0meter", ""},
                                               {"Ym^20", ""}}) {
        ASSERT_EQ(define("Q", definition), "");
        EXPECT_EQ(units_definition("Q"), expected);
        removeUnit("Q");
    }
    EXPECT_EQ(units_definition("Q"), "");
    for (const char* definition :
         {"3 m/7 s", "many", "1e-4many^99/apple^999", "apple^1000-apple^1000/many"}) {
        ASSERT_EQ(define("Q", definition), "");
        const std::string again = units_definition("Q");
        ASSERT_EQ(define("R", again), "") << again;
        EXPECT_EQ(convert("Q", "R"), 1.0) << again;
        EXPECT_EQ(reduced("Q").substr(20), reduced("R").substr(20));
        removeUnit("Q");
        removeUnit("R");
    }
}

// ---------------------------------------------------------------------------------------------------------
// Removal

TEST_F(UnitsTest, ARemovedUnitIsUnknown) {
    EXPECT_EQ(define("smoot", "67inch"), "");
    EXPECT_FALSE(removeUnit("smoot"));
    EXPECT_EQ(convert("smoot", "meter"), 0);
    EXPECT_EQ(takeMessage(), "invalid unit name 'smoot' in 'smoot'");
    EXPECT_EQ(messageOf("kilosmoots"), "invalid unit name 'kilosmoots' in 'kilosmoots'");
    EXPECT_TRUE(removeUnit("smoot"));
    EXPECT_EQ(takeMessage(), "");
}

TEST_F(UnitsTest, WhatWasDefinedFromARemovedUnitStays) {
    EXPECT_EQ(define("apple", "-primitive"), "");
    EXPECT_EQ(define("dozen", "12 apple"), "");
    EXPECT_FALSE(removeUnit("apple"));
    EXPECT_EQ(reduced("dozen"), "12.0 apple");
    EXPECT_FALSE(removeUnit("meter"));
    EXPECT_DOUBLE_EQ(convert("mile", "km"), 1.609344);
}

TEST_F(UnitsTest, ARemovedUnitCanBeDefinedAgain) {
    EXPECT_EQ(define("smoot", "67inch"), "");
    EXPECT_FALSE(removeUnit("smoot"));
    EXPECT_EQ(define("smoot", "2 second"), "");
    EXPECT_EQ(reduced("smoots"), "2.0 second");
    EXPECT_FALSE(removeUnit("smoot"));
    EXPECT_EQ(messageOf("smoot"), "invalid unit name 'smoot' in 'smoot'");
}

TEST_F(UnitsTest, OnlyExactNamesOfLettersAreRemoved) {
    for (const char* name : {"", "kilometer", "meters", "METER", "#", "#oot", "foot ", "no$"}) {
        EXPECT_TRUE(removeUnit(name)) << name;
    }
    EXPECT_FALSE(removeUnit("foot"));
    EXPECT_TRUE(removeUnit("#oot")); // the mark of the removed foot
    EXPECT_EQ(define("#oot", "meter"), "non-alphabetic characters in unit name '#oot'");
    EXPECT_FALSE(removeUnit("m")); // its name is the mark alone
    EXPECT_TRUE(removeUnit(""));
    EXPECT_TRUE(removeUnit("#"));
}

TEST_F(UnitsTest, DefiningAndRemovingOftenKeepsEverythingFindable) {
    for (int i = 1; i <= 5000; ++i) {
        ASSERT_EQ(define("smoot", std::to_string(i) + "meter"), "");
        ASSERT_EQ(convert("smoot", "meter"), i);
        ASSERT_FALSE(removeUnit("smoot"));
    }
    EXPECT_DOUBLE_EQ(convert("tsp", "Tbsp"), 0.0208333333333333 / 0.0625);
}

TEST_F(UnitsTest, FreeingMemoryForgetsTheUsersUnits) {
    EXPECT_EQ(define("smoot", "67inch"), "");
    EXPECT_FALSE(removeUnit("foot"));
    unitFreeMemory();
    unitFreeMemory();
    EXPECT_EQ(messageOf("smoot"), "invalid unit name 'smoot' in 'smoot'");
    EXPECT_EQ(reduced("foot"), "0.3048 meter");
}

} // namespace
