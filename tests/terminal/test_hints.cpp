// SPDX-License-Identifier: MIT
#include "Hints.h"

#include <clocale>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

class HintAfterError : public testing::Test {
protected:
    HintAfterError() { calc->InitializeFunctionsAndVars(); }

    std::string Hint(const std::string& entry) {
        EXPECT_EQ(calc->ProcessEntry(entry.c_str(), false), STATUS_ERROR) << entry;
        return hintAfterError(entry, *calc);
    }

    std::unique_ptr<ZqCalculator> calc = std::make_unique<ZqCalculator>();
};

TEST_F(HintAfterError, ShowsHowASignBehindPlusOrMinusIsWritten) {
    EXPECT_EQ(Hint("2+-3"), "a sign directly behind + or - needs parentheses: write 2+(-3)\n");
    EXPECT_EQ(Hint("10 - -45*2"), "a sign directly behind + or - needs parentheses: write 2-(-45)\n");
    EXPECT_EQ(Hint("2--sin(3)"), "a sign directly behind + or - needs parentheses: write 2-(-3)\n");
}

TEST_F(HintAfterError, SaysWhatThePercentSignIs) {
    EXPECT_EQ(Hint("12%"), "% is the remainder of a division here: 12 percent are 12/100\n");
    EXPECT_EQ(Hint("12% + 1"), "% is the remainder of a division here: 12 percent are 12/100\n");
}

TEST_F(HintAfterError, WritesTheSignOfAMultiplication) {
    EXPECT_EQ(Hint("1+2pi"), "a multiplication needs its sign: write 2*pi\n");
    EXPECT_EQ(Hint("3 x 4"), "a multiplication needs its sign: write 3*4\n");
    EXPECT_EQ(Hint("3(4)"), "a multiplication needs its sign: write 3*(4)\n");
    EXPECT_EQ(Hint("(1+2)(4)"), "a multiplication needs its sign: write (1+2)*(4)\n");
    EXPECT_EQ(Hint("(1+2)4"), "a multiplication needs its sign: write (1+2)*4\n");
    EXPECT_EQ(Hint("(1+2)pi"), "a multiplication needs its sign: write (1+2)*pi\n");
    EXPECT_EQ(Hint("3 X 4"), "a multiplication needs its sign: write 3*4\n");
    EXPECT_EQ(Hint("pi(3)"), "pi is a variable; a multiplication needs its sign: write pi*(...)\n");
}

TEST_F(HintAfterError, WritesEulersNumber) {
    EXPECT_EQ(Hint("2*e"), "the base of natural logarithms is exp(1)\n");
}

TEST_F(HintAfterError, ShowsHowAPowerIsWritten) {
    EXPECT_EQ(Hint("2**3"), "a power is written with ^: write 2^3\n");
}

TEST_F(HintAfterError, PutsAnArgumentIntoParentheses) {
    EXPECT_EQ(Hint("sin 30"), "a function's argument stands in parentheses: write sin(30)\n");
}

TEST_F(HintAfterError, ConvertsTemperaturesByHand) {
    const std::string start = "F and C are farad and coulomb here; temperatures: write ";
    EXPECT_EQ(Hint("98.6 F->C"), start + "(98.6-32)/1.8\n");
    EXPECT_EQ(Hint("72 F->K"), start + "(72+459.67)/1.8\n");
    EXPECT_EQ(Hint("20 C -> F"), start + "20*1.8+32\n");
    EXPECT_EQ(Hint("-40C->F"), start + "-40*1.8+32\n");
    EXPECT_EQ(Hint("20 C->K"), start + "20+273.15\n");
    EXPECT_EQ(Hint("300 K->degC"), start + "300-273.15\n");
    EXPECT_EQ(Hint("300 K->F"), start + "300*1.8-459.67\n");
    EXPECT_EQ(Hint("72 fahrenheit->celsius"), start + "(72-32)/1.8\n");
    EXPECT_EQ(Hint("x=1.5e2 K->C"), start + "300-273.15\n");
    EXPECT_EQ(Hint("(1+2) F->C"), start + "(72-32)/1.8\n");
}

TEST_F(HintAfterError, NamesTheNearestUnit) {
    EXPECT_EQ(Hint("5 km->mete"), "the nearest unit is meter\n");
    EXPECT_EQ(Hint("5 galons->m^3"), "the nearest unit is gallon\n");
    EXPECT_EQ(Hint("5 feet->meters"), "the nearest unit is foot\n");
    EXPECT_EQ(Hint("5 metr->foot"), "the nearest unit is meter\n");
    EXPECT_EQ(Hint("1 l->m^3"), "the nearest unit is L\n");
    EXPECT_EQ(Hint("1 L->ml"), "the nearest unit is mL\n");
    EXPECT_EQ(Hint("90 kph->m/s"), "the nearest unit is km/hr\n");
    EXPECT_EQ(Hint("5 foot->celsius"),
              "F and C are farad and coulomb here; temperatures: write (72-32)/1.8\n");
    EXPECT_EQ(Hint("5 kmm->mi"), "the nearest unit is km\n");
    EXPECT_EQ(Hint("5 m->Km"), "the nearest unit is km\n");
    EXPECT_EQ(Hint("5 kpa->Pa"), "the nearest unit is kPa\n");
    EXPECT_EQ(Hint("5 kmh->m/s"), "the nearest unit is km/hr\n");
    EXPECT_EQ(Hint("5 milimeter->m"), "the nearest unit is millimeter\n");
    EXPECT_EQ(Hint("5 kilometre->m"), "the nearest unit is kilometer\n");
    for (const char* name : {"usd", "eur", "ton", "kilo", "qqqqq"})
        EXPECT_EQ(Hint("5 " + std::string(name) + "->m"), ":units lists the units\n") << name;
}

TEST_F(HintAfterError, TellsWhichUnitsASetHas) {
    EXPECT_EQ(Hint("32 psi->bar"), "psi is there after tallyquill --with everyday\n");
    EXPECT_EQ(Hint("1 MJ->kWh"), "kWh is there after tallyquill --with everyday; or write kW*h\n");
    EXPECT_EQ(Hint("1 Wh->J"), "Wh is there after tallyquill --with everyday; or write W*h\n");
    EXPECT_EQ(Hint("1 KiB->m"), "KiB is there after tallyquill --with everyday\n");
    EXPECT_EQ(Hint("90 mph->m/s"), "the nearest unit is mile/hr\n");
}

TEST_F(HintAfterError, TellsThatAStatementHasOneConversionAndAUnitOneDivision) {
    EXPECT_EQ(Hint("(5 ft->cm)+(3 in->cm)"),
              "a statement has one conversion: write a=5 ft->cm; a+(3 in->cm)\n");
    EXPECT_EQ(Hint("9.81 m/s/s->ft/s^2"), "a unit has one /, and all behind it divides: write m/s^2\n");
    EXPECT_EQ(Hint("3+>5"), "");
}

TEST_F(HintAfterError, WritesOperatorsThatAreWordsElsewhere) {
    EXPECT_EQ(Hint("5 km to mi"), "a conversion is written with ->: write 5 km->mi\n");
    EXPECT_EQ(Hint("5 km in mi"), "a conversion is written with ->: write 5 km->mi\n");
    EXPECT_EQ(Hint("0xFF xor 3"), "an exclusive or is written with @: write 0xFF @ 3\n");
    EXPECT_EQ(Hint("10 MOD 3"), "a remainder is written with %: write 10 % 3\n");
    EXPECT_EQ(Hint("12 and 10"), "an and of bits is written with &: write 12 & 10\n");
    EXPECT_EQ(Hint("12 or 10"), "an or of bits is written with |: write 12 | 10\n");
    for (const char* const base : {"hex", "BIN", "dec"})
        EXPECT_EQ(Hint(std::string("255 in ") + base),
                  "display hex shows answers so; at the prompt, :base hex the last one\n");
    for (const char* const half : {"xor 3", " xor 3", "3 xor "}) EXPECT_EQ(Hint(half), "") << half;
}

TEST_F(HintAfterError, SaysHowOtherFunctionsAreWritten) {
    EXPECT_EQ(Hint("cbrt(27)"), "roots are powers: write 27^(1/3)\n");
    EXPECT_EQ(Hint("1+Pow(2,3)"), "a power is written with ^: write 2^3\n");
    EXPECT_EQ(Hint("hex(255)"), "display hex shows answers so; at the prompt, :base hex the last one\n");
    EXPECT_EQ(Hint("atan2(1,1)"), "where x is above zero, it is atan(y/x)\n");
    EXPECT_EQ(Hint("max(1,2)"), "there is none at first; define max(a,b)=(a+b+abs(a-b))/2\n");
    EXPECT_EQ(Hint("min(1,2)"), "there is none at first; define min(a,b)=(a+b-abs(a-b))/2\n");
}

TEST_F(HintAfterError, WritesADecimalPoint) {
    EXPECT_EQ(Hint("12,34*2"), "decimals have a point here: write 12.34\n");
    EXPECT_EQ(Hint("1,2,3"), "");
    calc->european = true;
    EXPECT_EQ(Hint("12.34"), "");
}

TEST_F(HintAfterError, NamesTheNearestNameOfAVariableOrFunction) {
    calc->ProcessEntry("width=5", false);
    EXPECT_EQ(Hint("2*wdth"), "the nearest name is width\n");
    EXPECT_EQ(Hint("2*widht"), "the nearest name is width\n");
    EXPECT_EQ(Hint("PI"), "the nearest name is pi\n");
    EXPECT_EQ(Hint("sqr(4)"), "the nearest name is sqrt\n");
    EXPECT_EQ(Hint("unheardof+1"), "");
}

TEST_F(HintAfterError, SaysHowManyArgumentsAFunctionTakes) {
    calc->ProcessEntry("fee(x)=x", false);
    EXPECT_EQ(Hint("sin(1,2)"), "sin takes 1 argument\n");
    EXPECT_EQ(Hint("fee(1,2)"), "fee takes 1 argument\n");
    calc->ProcessEntry("fee(x,y,z)=x", false);
    EXPECT_EQ(Hint("1+Fee(1,2)"), "Fee takes 1 or 3 arguments\n");
    EXPECT_EQ(Hint("mod(3)"), "mod takes 2 arguments\n");
}

TEST_F(HintAfterError, NamesNoFunctionThatComputesNothing) {
    EXPECT_EQ(Hint("sine(30)"), "the nearest name is sin\n");
}

TEST_F(HintAfterError, NamesTheWordsOfThePrompt) {
    for (const char* entry : {"help", "?", "quit", "vars"}) {
        EXPECT_EQ(Hint(entry),
                  ":help explains the calculator, :vars lists the variables, :quit ends the program\n");
    }
}

TEST_F(HintAfterError, IsEmptyWhereNoTrapIsKnown) {
    EXPECT_EQ(Hint("1/0"), "");
    EXPECT_EQ(Hint("2*(3+4"), "");
}

TEST(Notes, TellOnceHowChainsOfPowersAreRead) {
    Notes notes;
    EXPECT_EQ(notes.For("2^3"), "");
    EXPECT_EQ(notes.For("a^2+b^2"), "");
    EXPECT_EQ(notes.For("1 + 2^3 ^2"),
              "powers are taken from left to right: 2^3^2 is (2^3)^2 = 64; 2^(3^2) is 512\n");
    EXPECT_EQ(notes.For("2^3^2"), "");
}

TEST(Notes, TellOnceThatAMinusBehindAProductIsTakenFirst) {
    Notes notes;
    EXPECT_EQ(notes.For("2-3^2"), "");
    EXPECT_EQ(notes.For("2*-3"), "");
    EXPECT_EQ(notes.For("2*-3^2"),
              "a minus behind * or / is taken first: 2*-3^2 is 2*(-3)^2 = 18; 2*(-(3^2)) is -18\n");
    EXPECT_EQ(notes.For("2*-3^2"), "");
}

TEST(NearestName, IsTheOneWithTheFewestWrongLetters) {
    EXPECT_EQ(nearestName("sqtr", {"sin", "sqrt", "sqr"}), "sqrt");
    EXPECT_EQ(nearestName("KM", {"m", "km"}), "km");
    EXPECT_EQ(nearestName("meeterr", {"meter"}), "meter");
    EXPECT_EQ(nearestName("hrts", {"yard", "hertz"}), "hertz");     // two, behind the right first letter
    EXPECT_EQ(nearestName("sine", {"sinh", "sin", "sind"}), "sin"); // it begins so
    EXPECT_EQ(nearestName("x", {"y", "z"}), "");
    EXPECT_EQ(nearestName("kilo", {"pico"}), "");
}

TEST(MarkUnder, PutsCaretsBelowTheTerm) {
    EXPECT_EQ(markUnder("2*wdth+1", {2, 4}, 2, 80), "    ^^^^\n");
    EXPECT_EQ(markUnder("2*wdth+1", TextRange(), 2, 80), "");
}

TEST(MarkUnder, CountsACharacterOfSeveralBytesAsOne) {
    EXPECT_EQ(markUnder("\xC3\xA4*wdth", {3, 4}, 2, 80), "    ^^^^\n");
}

TEST(MarkUnder, StandsBelowTheTermBehindWideCharactersAndTabs) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(markUnder("2*\xE4\xB8\xAD*wdth", {6, 4}, 2, 80), "       ^^^^\n"); // the sign takes two columns
    EXPECT_EQ(markUnder("\xE4\xB8\xAD", {0, 3}, 2, 80), "  ^^\n");
    EXPECT_EQ(markUnder("2*\twdth", {3, 4}, 2, 80), "        ^^^^\n");
    std::setlocale(LC_CTYPE, "C");
}

TEST(MarkUnder, IsThereWhereTheTermIsInTheLastRow) {
    EXPECT_EQ(markUnder("123456789+wdth", {10, 4}, 2, 10), "  ^^^^\n");
    EXPECT_EQ(markUnder("wdth+123456789", {0, 4}, 2, 10), "");
}

} // namespace
