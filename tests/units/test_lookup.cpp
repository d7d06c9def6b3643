// SPDX-License-Identifier: MIT
//
// What a name is taken for, and that many units do not make the look-up slow.
#include "../cases.h"
#include "../seed.h"
#include "fixture.h"
#include "model.h"
#include "table.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

TEST_F(UnitsTest, TheExactNameComesFirst) {
    EXPECT_EQ(define("kmeter", "7 meter"), "");
    EXPECT_EQ(reduced("kmeter"), "7.0 meter");
    EXPECT_EQ(define("meters", "8 meter"), "");
    EXPECT_EQ(reduced("meters"), "8.0 meter");
}

TEST_F(UnitsTest, TheReadingsOfANameAreItselfAndWhatStandsBehindAPrefixAndBeforeAnEnding) {
    using Names = std::vector<std::string>;
    EXPECT_EQ((Names{"qqx"}), units_readings("qqx"));
    EXPECT_EQ((Names{"kiloqx", "qx", "iloqx"}), units_readings("kiloqx"));
    EXPECT_EQ((Names{"qxes", "qxe", "qx"}), units_readings("qxes"));
    EXPECT_EQ((Names{"kqs", "qs", "kq", "q"}), units_readings("kqs"));
    EXPECT_EQ((Names{"s"}), units_readings("s")); // no empty name
    EXPECT_EQ((Names{"qes", "qe", "q"}), units_readings("qes"));
    EXPECT_EQ((Names{"kilo", "ilo"}), units_readings("kilo")); // nothing stands behind it
    EXPECT_EQ(Names(), units_readings(""));
}

TEST_F(UnitsTest, AllNamesAreListedInByteOrderWithAPersonsOwn) {
    EXPECT_EQ(define("smoot", "1.7018 meter"), "");
    const std::vector<std::string> names = units_names();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (const char* name : {"A", "meter", "teaspoon", "smoot"}) {
        EXPECT_TRUE(std::binary_search(names.begin(), names.end(), name)) << name;
    }
    EXPECT_FALSE(removeUnit("smoot"));
    EXPECT_EQ(names.size() - 1, units_names().size());
    const std::vector<std::string> prefixes = units_prefix_names();
    EXPECT_EQ("yotta", prefixes.front());
    EXPECT_EQ("y", prefixes.back());
}

// The names, each prefix in brackets.
std::vector<std::string> spelled(const std::string& start) {
    std::vector<std::string> names;
    for (const UnitSpelling& spelling : units_spellings(start)) {
        const std::string& name = spelling.name;
        const size_t length = spelling.prefixLength;
        EXPECT_EQ(length == name.size(), spelling.IsPrefix()) << name;
        names.push_back("[" + name.substr(0, length) + "]" + name.substr(length));
    }
    return names;
}

TEST_F(UnitsTest, TheSpellingsThatGoOnFromAStartAreUnitsAndPrefixesAloneAndTogether) {
    using Names = std::vector<std::string>;
    EXPECT_EQ((Names{"[milli]micron"}), spelled("millimic"));
    EXPECT_EQ(define("vvalpha", "2 meter"), "");
    EXPECT_EQ((Names{"[]vvalpha"}), spelled("vv"));
    EXPECT_EQ((Names{"[kilo]vvalpha"}), spelled("kilovv"));
    EXPECT_EQ(Names(), spelled("Kilom")); // upper and lower case are different
    const Names beside = spelled("yott"); // the one prefix, alone and before every unit
    EXPECT_EQ("[yotta]", beside.front());
    EXPECT_EQ(units_names().size() + 1, beside.size());
    const size_t units = units_names().size(), prefixes = units_prefix_names().size();
    EXPECT_EQ(units + prefixes * (units + 1), spelled("").size());
}

TEST_F(UnitsTest, ANameOfOneLetterHasItsPlurals) {
    EXPECT_EQ(define("q", "2 meter"), "");
    EXPECT_EQ(reduced("q"), "2.0 meter");
    EXPECT_EQ(reduced("qs"), "2.0 meter");
    EXPECT_EQ(reduced("qes"), "2.0 meter");
    EXPECT_EQ(reduced("kqs"), "2000.0 meter");
}

TEST_F(UnitsTest, OfTwoReadingsWithAPrefixTheEarlierUnitWins) {
    EXPECT_EQ(define("ax", "2 meter"), "");
    EXPECT_EQ(define("x", "3 meter"), "");
    EXPECT_EQ(reduced("dax"), "0.2 meter"); // d and ax, not da and x
    EXPECT_EQ(define("q", "3 meter"), "");
    EXPECT_EQ(define("aq", "2 meter"), "");
    EXPECT_EQ(reduced("daq"), "30.0 meter"); // da and q, not d and aq
}

TEST_F(UnitsTest, ACatalogueUnitWinsOverAUsersUnit) {
    EXPECT_EQ(define("am", "2 second"), "");
    EXPECT_EQ(reduced("dam"), "10.0 meter");
}

TEST_F(UnitsTest, APrefixReadingComesBeforeAPlural) {
    EXPECT_EQ(define("kf", "2 meter"), "");
    EXPECT_EQ(reduced("kfs"), "2.0 meter");
    EXPECT_EQ(define("fs", "3 meter"), "");
    EXPECT_EQ(reduced("kfs"), "3000.0 meter");
}

TEST_F(UnitsTest, APluralInSComesBeforeOneInEs) {
    EXPECT_EQ(define("box", "2 meter"), "");
    EXPECT_EQ(reduced("boxes"), "2.0 meter");
    EXPECT_EQ(define("boxe", "3 meter"), "");
    EXPECT_EQ(reduced("boxes"), "3.0 meter");
}

// A name is made of a prefix, one or two of the known names, an ending, or of random letters.
std::string randomName(std::mt19937& random, const std::vector<std::string>& names) {
    static const char* const endings[] = {"", "", "s", "es", "ss"};
    std::string name;
    if (random() % 3 != 0) name += tablePrefixes()[random() % tablePrefixes().size()].name;
    if (random() % 8 == 0) name += static_cast<char>('a' + random() % 26);
    if (random() % 8 != 0) name += names[random() % names.size()];
    return name + endings[random() % 5];
}

TEST_F(UnitsTest, RandomNamesAreTakenAsInTheModel) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    UnitModel model;
    std::vector<std::string> names;
    for (const TableUnit& unit : tableUnits()) names.push_back(unit.name);
    int found = 0;
    for (int i = 0; i < cases(40000); ++i) {
        const std::string name = randomName(random, names);
        if (i % 100 == 0 && !name.empty()) { // now and then a user's unit comes or a unit goes
            const std::string definition = std::to_string(i + 2) + "meter";
            model.message.clear();
            model.Define(name, definition);
            ASSERT_EQ(define(name, definition), model.message);
            names.push_back(name);
            const std::string& gone = names[random() % names.size()];
            if (random() % 4 == 0) {
                ASSERT_EQ(removeUnit(gone.c_str()), model.Remove(gone)) << gone;
            }
        }
        const UnitModel::Meaning expected = model.LookUp(name);
        const UnitReading actual = unitTable.FindFactor(name);
        ASSERT_EQ(actual.found != nullptr, expected.unit >= 0) << name;
        if (actual.found == nullptr) continue;
        ++found;
        ASSERT_EQ(actual.prefix != nullptr, expected.prefix >= 0) << name;
        ASSERT_EQ(actual.found->reduced.factor, model.Unit(expected.unit).factor) << name;
        const Reduced& unit = model.Unit(expected.unit);
        const std::vector<std::string> itself = {std::string(actual.name)};
        ASSERT_EQ(namesOf(actual.found->reduced, 1), unit.isPrimitive ? itself : unit.numerator) << name;
        if (actual.prefix != nullptr) {
            ASSERT_EQ(actual.prefix->factor, model.Prefix(expected.prefix)) << name;
        }
    }
    EXPECT_GT(found, cases(10000));
}

std::string numberedName(size_t i) {
    std::string name = "Qx";
    for (; i != 0; i /= 26) name += static_cast<char>('a' + i % 26);
    return name;
}

// Names compared in defining this many units and looking each up, with a prefix and as a plural.
uint64_t comparedFor(size_t count) {
    unitFreeMemory();
    EXPECT_EQ(unitInitialize(), 0);
    unitTable.compared = 0;
    for (size_t i = 0; i < count; ++i) units_new(numberedName(i).c_str(), "meter");
    for (size_t i = 0; i < count; ++i) EXPECT_EQ(convert("kilo" + numberedName(i) + "s", "meter"), 1000);
    EXPECT_EQ(takeMessage(), "");
    return unitTable.compared;
}

TEST_F(UnitsTest, ALookUpOfAnExactNameComparesNoOther) {
    ASSERT_EQ(unitInitialize(), 0);
    unitTable.compared = 0;
    EXPECT_EQ(reduced("hour"), "3600.0 second");
    EXPECT_EQ(unitTable.compared, 1U);
}

// At most 41 prefixes, each with a name behind it, for the name as it stands and without its ending.
TEST_F(UnitsTest, ALookUpComparesNoMoreNamesInALongList) {
    EXPECT_LE(comparedFor(4000), 4000U * 200);
    EXPECT_LE(comparedFor(32000), 32000U * 200);
}

} // namespace
