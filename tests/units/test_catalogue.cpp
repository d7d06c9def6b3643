// SPDX-License-Identifier: MIT
//
// The catalogue: what is in it, in which order, and the consequences that are kept.
#include "fixture.h"
#include "table.h"

#include <algorithm>
#include <set>

namespace {

class Catalogue : public UnitsTest {
protected:
    Catalogue() { EXPECT_EQ(unitInitialize(), 0); }
};

std::vector<std::string> namesOfDimension(const Dimension& dimension, int sign) {
    static const char* const primitives[] = {"meter",  "gram", "second", "ampere",
                                             "kelvin", "mole", "candela"};
    std::vector<std::string> names;
    for (size_t i = 0; i < dimension.size(); ++i) {
        for (int k = 0; k < sign * dimension[i]; ++k) names.emplace_back(primitives[i]);
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(Catalogue, HoldsThePrefixesInTheirOrder) {
    const std::vector<UnitPrefix>& prefixes = unitTable.prefixes;
    ASSERT_EQ(prefixes.size(), 41U);
    ASSERT_EQ(tablePrefixes().size(), 41U);
    for (size_t i = 0; i < prefixes.size(); ++i) {
        const TablePrefix& expected = tablePrefixes()[i];
        EXPECT_EQ(prefixes[i].name, expected.name);
        EXPECT_EQ(prefixes[i].factor, std::stod(expected.factor)) << expected.name;
    }
}

TEST_F(Catalogue, TellsItsNames) {
    std::vector<std::string> names = units_names();
    EXPECT_EQ(names.size(), tableUnits().size());
    EXPECT_EQ(std::count(names.begin(), names.end(), "meter"), 1);
    names = units_prefix_names();
    EXPECT_EQ(names.size(), 41U);
    EXPECT_EQ(std::count(names.begin(), names.end(), "kilo"), 1);
}

TEST_F(Catalogue, HoldsTheUnitsInTheirOrderWithTheirPrimitives) {
    size_t position = 0;
    for (const TableUnit& expected : tableUnits()) {
        const Unit* const record = unitTable.Find(expected.name);
        ASSERT_NE(record, nullptr) << expected.name;
        EXPECT_EQ(record->position, position++) << expected.name;
        EXPECT_TRUE(isWithinFourUlps(record->reduced.factor, expected.size)) << expected.name;
        EXPECT_EQ(namesOf(record->reduced, 1), namesOfDimension(expected.dimension, 1)) << expected.name;
        EXPECT_EQ(namesOf(record->reduced, -1), namesOfDimension(expected.dimension, -1)) << expected.name;
    }
    EXPECT_EQ(position, units_names().size());
}

TEST_F(Catalogue, TakesTheFactorsFromTheTextsShown) {
    const auto factorOf = [](const char* name) { return known(name).factor; };
    EXPECT_EQ(factorOf("parsec"), 3.085E16);
    EXPECT_EQ(factorOf("degree"), 1.745329E-2);
    EXPECT_EQ(factorOf("acre"), 4.04685642E3);
    EXPECT_EQ(factorOf("faraday"), 9.648531);
    EXPECT_EQ(factorOf("ounce"), 28.3495231);
}

TEST_F(Catalogue, AnAbbreviationIsAUnitOfItsOwn) {
    EXPECT_EQ(namesOf(known("m"), 1), std::vector<std::string>{"meter"});
    EXPECT_FALSE(removeUnit("meter"));
    EXPECT_DOUBLE_EQ(convert("km", "m"), 1000);
    EXPECT_EQ(takeMessage(), "");
}

TEST_F(Catalogue, IsBuiltOnceOnly) {
    EXPECT_EQ(unitInitialize(), 0);
    EXPECT_EQ(unitTable.prefixes.size(), tablePrefixes().size());
}

TEST_F(UnitsTest, EveryPublicOperationBuildsTheCatalogue) {
    EXPECT_EQ(convert("m", "meter"), 1);
    EXPECT_FALSE(unitTable.IsEmpty());
    unitFreeMemory();
    EXPECT_TRUE(unitTable.IsEmpty());
    EXPECT_TRUE(unitTable.prefixes.empty());
    EXPECT_EQ(reduced("m"), "1.0 meter");
    unitFreeMemory();
    EXPECT_EQ(define("foot", "meter"), "unit 'foot' is already defined");
    unitFreeMemory();
    EXPECT_FALSE(removeUnit("foot"));
    EXPECT_FALSE(unitTable.IsEmpty());
}

// ---------------------------------------------------------------------------------------------------------
// Consequences of the tables that are kept

TEST_F(Catalogue, GallonIsSixteenCups) {
    EXPECT_DOUBLE_EQ(convert("gallon", "liter"), 3.785411776);
    EXPECT_DOUBLE_EQ(convert("gallon", "cup"), 16);
    EXPECT_DOUBLE_EQ(convert("quart", "cup"), 4);
    EXPECT_DOUBLE_EQ(convert("pint", "cup"), 2);
    EXPECT_DOUBLE_EQ(convert("cup", "tablespoon"), 16);
    EXPECT_DOUBLE_EQ(convert("teaspoon", "cup"), 0.0208333333333333);
    EXPECT_DOUBLE_EQ(convert("cup", "liter"), 0.236588236);
}

TEST_F(Catalogue, AnAcreIsItsHectares) {
    EXPECT_DOUBLE_EQ(convert("acre", "hectare"), 0.404685642);
}

TEST_F(Catalogue, RevolutionsPerMinuteAreRadiansPerSecondAndSoHertz) {
    EXPECT_DOUBLE_EQ(convert("rpm", "hertz"), 1.047198E-1);
}

TEST_F(Catalogue, HIsAnHourAndHmAHectometer) {
    EXPECT_DOUBLE_EQ(convert("h", "second"), 3600);
    EXPECT_DOUBLE_EQ(convert("hm", "meter"), 100);
    EXPECT_DOUBLE_EQ(convert("hr", "h"), 1);
}

TEST_F(Catalogue, TIsTeslaAloneAndTeraAsAPrefix) {
    EXPECT_DOUBLE_EQ(convert("T", "tesla"), 1);
    EXPECT_DOUBLE_EQ(convert("Tm", "meter"), 1e12);
    EXPECT_DOUBLE_EQ(convert("TT", "tesla"), 1e12);
}

TEST_F(Catalogue, MIsMeterAloneAndMilliAsAPrefix) {
    EXPECT_DOUBLE_EQ(convert("m", "meter"), 1);
    EXPECT_DOUBLE_EQ(convert("mm", "meter"), 1e-3);
    EXPECT_DOUBLE_EQ(convert("dm", "meter"), 0.1);
    EXPECT_DOUBLE_EQ(convert("cm", "meter"), 0.01);
    EXPECT_DOUBLE_EQ(convert("am", "meter"), 1e-18);
    EXPECT_DOUBLE_EQ(convert("dam", "meter"), 10);
    for (const char* prefix : {"d", "c", "a", "k", "da", "kilo"}) {
        EXPECT_EQ(messageOf(prefix), std::string("invalid unit name '") + prefix + "' in '" + prefix + "'");
    }
}

TEST_F(Catalogue, SynonymsHaveTheSameFactor) {
    for (const auto& [a, b] : {std::pair{"gal", "Gal"},
                               {"qt", "Qt"},
                               {"tbsp", "Tbsp"},
                               {"sec", "s"},
                               {"hertz", "becquerel"},
                               {"gray", "sievert"},
                               {"dekagram", "decagram"}}) {
        EXPECT_EQ(convert(a, b), 1) << a;
        EXPECT_EQ(takeMessage(), "") << a;
    }
    EXPECT_EQ(reduced("Gal"), reduced("gallon"));
    EXPECT_EQ(reduced("Qt"), reduced("quart"));
    EXPECT_EQ(reduced("Tbsp"), reduced("tablespoon"));
    EXPECT_EQ(reduced("becquerel"), "1.0 / second");
    EXPECT_EQ(reduced("sievert"), "1.0 meter meter / second second");
}

TEST_F(Catalogue, RadianAndSteradianHaveNoDimension) {
    EXPECT_EQ(reduced("radian"), "1.0");
    EXPECT_EQ(reduced("steradian"), "1.0");
    EXPECT_EQ(reduced("lumen"), "1.0 candela");
}

TEST_F(Catalogue, AKilogramIsItsPounds) {
    EXPECT_DOUBLE_EQ(convert("kg", "lb"), 1 / 0.4535924);
}

TEST_F(Catalogue, ADegreeIsItsRadians) {
    EXPECT_DOUBLE_EQ(convert("degree", "radian"), 1.745329E-2);
}

// ---------------------------------------------------------------------------------------------------------
// Tables that cannot be built

class BrokenCatalogue : public UnitsTest {
protected:
    // What building the catalogue with one table replaced gives; empty for success.
    static std::string Build(CatalogueTable table, const TextPair* entries) {
        CatalogueTables tables = CATALOGUE_TABLES;
        tables[table] = entries;
        const int status = buildCatalogue(tables);
        const std::string message = takeMessage();
        EXPECT_EQ(status, message.empty() ? 0 : 1);
        return message;
    }
};

const TextPair WRONG_UNIT[] = {
    {"good", "meter"}, {"bad", "2 foo"}, {"unreached", "meter"}, {nullptr, nullptr}};

TEST_F(BrokenCatalogue, AWrongDerivedUnitIsNamed) {
    EXPECT_EQ(Build(DERIVED_UNITS, WRONG_UNIT), "units failure initializing derived unit 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, ANonSIUnit) {
    EXPECT_EQ(Build(NON_SI_UNITS, WRONG_UNIT), "units failure initializing non-SI unit 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, AWrongAbbreviationIsNamed) {
    EXPECT_EQ(Build(ABBREVIATIONS, WRONG_UNIT), "units failure initializing abbreviation 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, ANonSIAbbreviation) {
    EXPECT_EQ(Build(NON_SI_ABBREVIATIONS, WRONG_UNIT),
              "units failure initializing non-SI abbreviation 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, TheEntriesBeforeTheFailureStay) {
    Build(DERIVED_UNITS, WRONG_UNIT);
    EXPECT_NE(unitTable.Find("candela"), nullptr);
    EXPECT_EQ(unitTable.Find("bad"), nullptr);
    EXPECT_EQ(unitTable.Find("unreached"), nullptr);
    EXPECT_EQ(convert("kilogood", "meter"), 1000);
}

TEST_F(BrokenCatalogue, ADefinitionMayOnlyUseEarlierUnits) {
    const TextPair late[] = {{"newtonmeter", "newton-meter"}, {"newton", "meter"}, {nullptr, nullptr}};
    EXPECT_EQ(Build(DERIVED_UNITS, late),
              "units failure initializing derived unit 'newtonmeter' (newton-meter)");
}

} // namespace
