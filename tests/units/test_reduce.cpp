// SPDX-License-Identifier: MIT
//
// Unit expressions: what they reduce to and what each wrong one is told.
#include "../cases.h"
#include "../seed.h"
#include "fixture.h"
#include "model.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

TEST_F(UnitsTest, ReducesToAFactorAndPrimitiveUnits) {
    EXPECT_EQ(reduced("newton"), "1000.0 gram meter / second second");
    EXPECT_EQ(reduced("hertz"), "1.0 / second");
    EXPECT_EQ(reduced("meter"), "1.0 meter");
    EXPECT_EQ(reduced("1.0E-3meter^3"), "0.001 meter meter meter");
    EXPECT_EQ(reduced("km/hr"), "0.277778 meter / second");
    EXPECT_EQ(reduced("2000000 meter"), "2e+06 meter");
    EXPECT_EQ(reduced(""), "1.0");
    EXPECT_EQ(reduced("7"), "7.0");
    EXPECT_EQ(reduced(" \t 2.5 \t"), "2.5");
    EXPECT_EQ(reduced("-3meter"), "-3.0 meter");
    EXPECT_EQ(reduced("+.5meter"), "0.5 meter");
}

TEST_F(UnitsTest, EverySeparatorMultiplies) {
    for (const char* text : {"meter second", "meter\tsecond", "meter*second", "meter-second",
                             " meter * - second ", "second meter", "-meter-second", "*second meter*"}) {
        EXPECT_EQ(reduced(text), "1.0 meter second") << text;
    }
}

TEST_F(UnitsTest, TheDividerMovesAllFactorsBehindItIntoTheDivisor) {
    EXPECT_EQ(reduced("meter/second kelvin"), "1.0 meter / kelvin second");
    EXPECT_EQ(reduced("meter / second"), "1.0 meter / second");
    EXPECT_EQ(reduced("/second"), "1.0 / second");
    EXPECT_EQ(reduced("meter/"), "1.0 meter");
    EXPECT_EQ(reduced("/"), "1.0");
    EXPECT_EQ(reduced("meter/hertz"), "1.0 meter second");
    EXPECT_EQ(reduced("/km"), "0.001 / meter");
}

TEST_F(UnitsTest, AnExponentRepeatsPrefixUnitAndNames) {
    EXPECT_EQ(reduced("km^2"), "1e+06 meter meter");
    EXPECT_EQ(reduced("/km^2"), "1e-06 / meter meter");
    EXPECT_EQ(reduced("newton^2"), "1e+06 gram gram meter meter / second second second second");
    EXPECT_EQ(reduced("meter^0002"), "1.0 meter meter");
    EXPECT_EQ(reduced("foot^2/foot"), "0.3048 meter");
}

TEST_F(UnitsTest, CommonNamesCancelOneByOne) {
    EXPECT_EQ(reduced("meter^3/meter^2"), "1.0 meter");
    EXPECT_EQ(reduced("meter^2/meter^3"), "1.0 / meter");
    EXPECT_EQ(reduced("second meter kelvin/kelvin ampere meter"), "1.0 second / ampere");
    EXPECT_EQ(reduced("meter/meter"), "1.0");
}

TEST_F(UnitsTest, PluralsAreTolerated) {
    EXPECT_EQ(reduced("meters"), "1.0 meter");
    EXPECT_EQ(reduced("kilometers"), "1000.0 meter");
    EXPECT_EQ(reduced("inches"), "0.0254 meter");
    EXPECT_EQ(reduced("kiloinches"), "25.4 meter");
    EXPECT_EQ(reduced("luxes"), reduced("lux"));
}

// A final s is a plural only if nothing else is found: "s" is the second.
TEST_F(UnitsTest, APrefixBeforeSIsASecondAndNoPlural) {
    EXPECT_EQ(reduced("kilos"), "1000.0 second");
    EXPECT_EQ(reduced("ms"), "0.001 second");
    EXPECT_EQ(reduced("ds"), "0.1 second");
    EXPECT_EQ(reduced("das"), "10.0 second");
    EXPECT_EQ(reduced("mins"), "60.0 second");
}

TEST_F(UnitsTest, NamesDifferInUpperAndLowerCase) {
    EXPECT_EQ(messageOf("Meter"), "invalid unit name 'Meter' in 'Meter'");
    EXPECT_EQ(reduced("mm"), "0.001 meter");
    EXPECT_EQ(reduced("Mm"), "1e+06 meter");
}

// ---------------------------------------------------------------------------------------------------------
// Numbers

TEST_F(UnitsTest, WordsThatStrtodKnowsAreNames) {
    EXPECT_EQ(reduced("nanometer"), "1e-09 meter");
    EXPECT_EQ(reduced("inch"), "0.0254 meter");
    EXPECT_EQ(messageOf("inf"), "invalid unit name 'inf' in 'inf'");
    EXPECT_EQ(messageOf("meter/nan"), "invalid unit name 'nan' in 'meter/nan'");
}

TEST_F(UnitsTest, TheDivisorAcceptsABareNumber) {
    EXPECT_EQ(reduced("meter/60 second"), "0.0166667 meter / second");
    EXPECT_EQ(reduced("meter/second 4"), "0.25 meter / second");
    EXPECT_EQ(reduced("meter/2*4*second"), "0.125 meter / second");
    EXPECT_EQ(reduced("/.5"), "2.0");
}

TEST_F(UnitsTest, TheNumeratorAcceptsOnlyTheLeadingNumber) {
    EXPECT_EQ(messageOf("meter 2"), "invalid non-alphabetic unit name in 'meter 2'");
    EXPECT_EQ(messageOf("2 3"), "invalid non-alphabetic unit name in ' 3'");
    EXPECT_EQ(messageOf("meter 2second"), "invalid non-alphabetic unit name in 'meter 2second'");
    EXPECT_EQ(messageOf("2 3/second"), "invalid non-alphabetic unit name in ' 3/second'");
}

// What stands there would otherwise be left out without a word.
TEST_F(UnitsTest, NothingMayStandDirectlyBehindADivisorsNumber) {
    EXPECT_EQ(messageOf("meter/60second"), "invalid non-alphabetic unit name in 'meter/60second'");
    EXPECT_EQ(messageOf("5meter/60second"), "invalid non-alphabetic unit name in 'meter/60second'");
    EXPECT_EQ(messageOf("meter/second 60second"),
              "invalid non-alphabetic unit name in 'meter/second 60second'");
    EXPECT_EQ(messageOf("meter/2^2"), "invalid non-alphabetic unit name in 'meter/2^2'");
    EXPECT_EQ(messageOf("meter/2^second"), "invalid integer exponent in 'meter/2^second'");
    EXPECT_EQ(messageOf("meter/0second"), "illegal zero factor in 'meter/0second'");
    EXPECT_EQ(reduced("meter/60 second"), "0.0166667 meter / second");
    EXPECT_EQ(reduced("meter/60*second"), "0.0166667 meter / second");
}

// '-' is a separator before it is a sign.
TEST_F(UnitsTest, AMinusInADivisorsNumberSeparates) {
    EXPECT_EQ(reduced("meter/2-4"), "0.125 meter");
    EXPECT_EQ(messageOf("meter/2E-4"), "invalid non-alphabetic unit name in 'meter/2E-4'");
    EXPECT_EQ(reduced("meter/+2"), "0.5 meter");
}

TEST_F(UnitsTest, ZeroIsNoFactor) {
    EXPECT_EQ(messageOf("meter 0"), "illegal zero factor in 'meter 0'");
    EXPECT_EQ(messageOf("meter/0"), "illegal zero factor in 'meter/0'");
    EXPECT_EQ(messageOf("5meter/0.0E7 second"), "illegal zero factor in 'meter/0.0E7 second'");
    EXPECT_EQ(messageOf("meter/1E/2"), "invalid unit string 'meter/1E/2':  only one '/' allowed");
}

TEST_F(UnitsTest, ALeadingZeroMakesTheSourceZero) {
    EXPECT_EQ(convert("0meter", "foot"), 0.0);
    EXPECT_EQ(takeMessage(), "");
}

// ---------------------------------------------------------------------------------------------------------
// Messages

TEST_F(UnitsTest, OnlyOneDividerIsAllowed) {
    EXPECT_EQ(messageOf("meter/second/second"),
              "invalid unit string 'meter/second/second':  only one '/' allowed");
    EXPECT_EQ(messageOf("//$"), "invalid unit string '//$':  only one '/' allowed");
}

TEST_F(UnitsTest, CharactersOfNoUnitAreRefused) {
    EXPECT_EQ(messageOf("meter$"), "invalid characters in unit string 'meter$'");
    EXPECT_EQ(messageOf("5 foo#"), "invalid characters in unit string '5 foo#'");
}

TEST_F(UnitsTest, ExponentsAreWholeAndAtLeastOne) {
    for (const char* text : {"meter^0", "meter^1.5", "meter^", "meter^-1", "meter^+1", "meter^x", "meter^2^2",
                             "meter^2x", "meter^1e2", "^0", "foo^0", "meter^0x2", "meter^000"}) {
        EXPECT_EQ(messageOf(text), std::string("invalid integer exponent in '") + text + "'");
    }
}

TEST_F(UnitsTest, NamesAreLettersOnly) {
    for (const char* text : {"meter2", "^2", "met.er", "m+s", "+", ".", "a1^2"}) {
        EXPECT_EQ(messageOf(text), std::string("invalid non-alphabetic unit name in '") + text + "'");
    }
}

TEST_F(UnitsTest, AnUnknownNameIsQuoted) {
    EXPECT_EQ(messageOf("foo"), "invalid unit name 'foo' in 'foo'");
    EXPECT_EQ(messageOf("meter/foo^2"), "invalid unit name 'foo' in 'meter/foo^2'");
    EXPECT_EQ(messageOf("kilo"), "invalid unit name 'kilo' in 'kilo'");
    EXPECT_EQ(messageOf("kilokilometer"), "invalid unit name 'kilokilometer' in 'kilokilometer'");
    EXPECT_EQ(messageOf("meteres foots footss"), "invalid unit name 'footss' in 'meteres foots footss'");
}

TEST_F(UnitsTest, MessagesQuoteWhatFollowsTheLeadingNumber) {
    EXPECT_EQ(messageOf("5 foo"), "invalid unit name 'foo' in ' foo'");
    EXPECT_EQ(messageOf("  5foo"), "invalid unit name 'foo' in 'foo'");
    EXPECT_EQ(messageOf("  foo"), "invalid unit name 'foo' in 'foo'");
    EXPECT_EQ(messageOf("1e3meter^0"), "invalid integer exponent in 'meter^0'");
    EXPECT_EQ(messageOf("5 meter$"), "invalid characters in unit string '5 meter$'");
}

TEST_F(UnitsTest, TheFirstWrongFactorIsReported) {
    EXPECT_EQ(messageOf("foo meter^0"), "invalid unit name 'foo' in 'foo meter^0'");
    EXPECT_EQ(messageOf("meter^0 foo"), "invalid integer exponent in 'meter^0 foo'");
    EXPECT_EQ(messageOf("meter 0^x"), "illegal zero factor in 'meter 0^x'");
    EXPECT_EQ(messageOf("meter 2^x"), "invalid integer exponent in 'meter 2^x'");
    EXPECT_EQ(messageOf("$/foo"), "invalid characters in unit string '$/foo'");
}

// ---------------------------------------------------------------------------------------------------------
// Internal routines

TEST_F(UnitsTest, ThePrimitiveDefinitionIsANumberElsewhere) {
    EXPECT_EQ(reduced("-primitive"), "1.0");
    EXPECT_EQ(messageOf(" -primitive"), "invalid unit name 'primitive' in '-primitive'");
}

TEST_F(UnitsTest, NamesAreSortedByByteOrderWhateverTheirOrderInTheText) {
    for (const char* name : {"b", "Za", "ab", "aba"}) EXPECT_EQ(define(name, "-primitive"), "");
    EXPECT_EQ(reduced("b-aba-meter-Za-ab-b/ab^2 second Za^2"), "1.0 aba b b meter / Za ab second");
}

TEST_F(UnitsTest, TheReducedTextIsReusedByTheNextCall) {
    const std::string first = units_reduce("newton");
    const std::string second = units_reduce(units_reduce("7"));
    EXPECT_EQ(first, "1000.0 gram meter / second second");
    EXPECT_EQ(second, "7.0");
    EXPECT_EQ(units_reduce("foo"), nullptr);
}

// ---------------------------------------------------------------------------------------------------------
// Against the model

class Expressions {
public:
    std::string Next() {
        std::string text = Below(3) == 0 ? Number() : "";
        for (unsigned n = Below(5); n > 0; --n) {
            text += Factor();
            static const char* const between[] = {" ", "*", "-", "/", "\t", " / ", "", "  "};
            text += between[Below(8)];
        }
        if (Below(20) == 0) text.insert(Below(static_cast<unsigned>(text.size()) + 1), 1, OddCharacter());
        return text;
    }

private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random() % limit); }
    char OddCharacter() { return "$#^/-+.0e_E()\x80\xff\n"[Below(16)]; }
    std::string Number() {
        static const char* const numbers[] = {"0",  "5",    "1.5E3", "-2",    "+.25",
                                              "1e", "0x1F", "7E-2",  "1e400", "."};
        return numbers[Below(10)];
    }
    std::string Factor() {
        static const char* const prefixes[] = {"", "", "k", "da", "d", "m", "kilo", "exa", "E", "milli"};
        static const char* const units[] = {"meter", "m",      "s",      "inch", "N",   "acre",
                                            "h",     "ampere", "newton", "lux",  "min", "radian",
                                            "gray",  "ax",     "x",      "foo",  "T",   "mol"};
        static const char* const endings[] = {"", "", "", "s", "es", "^2", "^1", "^10", "^0", "s^3"};
        if (Below(12) == 0) return Number();
        return std::string(prefixes[Below(10)]) + units[Below(18)] + endings[Below(10)];
    }
    std::mt19937 random = seededRandom();
};

TEST_F(UnitsTest, RandomExpressionsReduceAsInTheModel) {
    SCOPED_TRACE(seedText());
    Expressions expressions;
    UnitModel model;
    for (const auto& [name, definition] : {std::pair{"ax", "2.5 meter"}, {"x", "3 kelvin"}}) {
        EXPECT_EQ(define(name, definition), "");
        model.Define(name, definition);
    }
    int successes = 0;
    for (int i = 0; i < cases(100000); ++i) {
        const std::string text = expressions.Next();
        model.message.clear();
        const std::optional<Reduced> expected = model.Reduce(text);
        const std::optional<ReducedUnit> actual = reduceUnit(text.c_str());
        ASSERT_EQ(takeMessage(), model.message) << text;
        ASSERT_EQ(actual.has_value(), expected.has_value()) << text;
        if (!actual) continue;
        ++successes;
        ASSERT_TRUE(actual->factor == expected->factor ||
                    (std::isnan(actual->factor) && std::isnan(expected->factor)))
            << text;
        ASSERT_EQ(namesOf(*actual, 1), expected->numerator) << text;
        ASSERT_EQ(namesOf(*actual, -1), expected->denominator) << text;
    }
    EXPECT_GT(successes, cases(20000));
}

} // namespace
