// SPDX-License-Identifier: MIT
//
// The catalogue: what is in it, in which order, and the consequences that are kept.
#include "catalogue.h"
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
    const unitPrefix* prefix = proot;
    for (const TablePrefix& expected : tablePrefixes()) {
        ASSERT_NE(prefix, nullptr);
        EXPECT_STREQ(prefix->name, expected.name.c_str());
        EXPECT_EQ(prefix->factor, std::stod(expected.factor)) << expected.name;
        prefix = prefix->next;
    }
    EXPECT_EQ(prefix, nullptr);
    EXPECT_EQ(tablePrefixes().size(), 41U);
}

TEST_F(Catalogue, HoldsTheUnitsInTheirOrderWithTheirPrimitives) {
    const unit* record = uroot;
    for (const TableUnit& expected : tableUnits()) {
        ASSERT_NE(record, nullptr);
        ASSERT_STREQ(record->name, expected.name.c_str());
        EXPECT_TRUE(isWithinFourUlps(record->factor, expected.size)) << expected.name;
        const bool isPrimitive = expected.definition == "-primitive";
        EXPECT_EQ(record->primitive, isPrimitive ? 1 : 0) << expected.name;
        const Dimension listed = isPrimitive ? Dimension{} : expected.dimension;
        EXPECT_EQ(namesOf(record->numerator), namesOfDimension(listed, 1)) << expected.name;
        EXPECT_EQ(namesOf(record->denominator), namesOfDimension(listed, -1)) << expected.name;
        record = record->next;
    }
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(tableUnits().size(), 123U);
}

TEST_F(Catalogue, TakesTheFactorsFromTheTextsShown) {
    const auto factorOf = [](const char* name) { return findUnitExactly(name)->factor; };
    EXPECT_EQ(factorOf("parsec"), 3.085E16);
    EXPECT_EQ(factorOf("degree"), 1.745329E-2);
    EXPECT_EQ(factorOf("acre"), 4.04685642E3);
    EXPECT_EQ(factorOf("faraday"), 9.648531);
    EXPECT_EQ(factorOf("ounce"), 28.3495231);
}

TEST_F(Catalogue, NoUnitIsListedTwice) {
    std::set<std::string> names;
    for (const unit* u = uroot; u != nullptr; u = u->next) {
        EXPECT_TRUE(names.insert(u->name).second) << u->name;
    }
}

TEST_F(Catalogue, AnAbbreviationIsAUnitOfItsOwn) {
    EXPECT_EQ(findUnitExactly("m")->primitive, 0);
    EXPECT_EQ(namesOf(findUnitExactly("m")->numerator), std::vector<std::string>{"meter"});
    EXPECT_FALSE(removeUnit("meter"));
    EXPECT_DOUBLE_EQ(convert("km", "m"), 1000);
    EXPECT_EQ(takeMessage(), "");
}

TEST_F(Catalogue, IsBuiltOnceOnly) {
    EXPECT_EQ(unitInitialize(), 0);
    EXPECT_EQ(namesOf(uroot).size(), tableUnits().size());
}

TEST_F(UnitsTest, EveryPublicOperationBuildsTheCatalogue) {
    EXPECT_EQ(convert("m", "meter"), 1);
    EXPECT_NE(uroot, nullptr);
    unitFreeMemory();
    EXPECT_EQ(uroot, nullptr);
    EXPECT_EQ(proot, nullptr);
    EXPECT_EQ(reduced("m"), "1.0 meter");
    unitFreeMemory();
    EXPECT_EQ(define("foot", "meter"), "unit 'foot' is already defined");
    unitFreeMemory();
    EXPECT_FALSE(removeUnit("foot"));
    EXPECT_NE(uroot, nullptr);
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

TEST_F(Catalogue, AcreInHectares) {
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

TEST_F(Catalogue, SynonymsAgree) {
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

TEST_F(Catalogue, KilogramInPounds) {
    EXPECT_DOUBLE_EQ(convert("kg", "lb"), 1 / 0.4535924);
}

TEST_F(Catalogue, DegreeInRadians) {
    EXPECT_DOUBLE_EQ(convert("degree", "radian"), 1.745329E-2);
}

// ---------------------------------------------------------------------------------------------------------
// Tables that cannot be built

class BrokenCatalogue : public UnitsTest {
protected:
    // What building the catalogue with one table replaced gives; empty for success.
    static std::string build(const TextPair* CatalogueTables::*table, const TextPair* entries) {
        CatalogueTables tables = catalogueTables;
        tables.*table = entries;
        const int status = buildCatalogue(tables);
        const std::string message = takeMessage();
        EXPECT_EQ(status, message.empty() ? 0 : 1);
        return message;
    }
};

const TextPair wrongUnit[] = {
    {"good", "meter"}, {"bad", "2 foo"}, {"unreached", "meter"}, {nullptr, nullptr}};

TEST_F(BrokenCatalogue, ADerivedUnit) {
    EXPECT_EQ(build(&CatalogueTables::derivedUnits, wrongUnit),
              "units failure initializing derived unit 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, ANonSIUnit) {
    EXPECT_EQ(build(&CatalogueTables::nonSIUnits, wrongUnit),
              "units failure initializing non-SI unit 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, AnAbbreviation) {
    EXPECT_EQ(build(&CatalogueTables::abbreviations, wrongUnit),
              "units failure initializing abbreviation 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, ANonSIAbbreviation) {
    EXPECT_EQ(build(&CatalogueTables::nonSIabbreviations, wrongUnit),
              "units failure initializing non-SI abbreviation 'bad' (2 foo)");
}

TEST_F(BrokenCatalogue, TheEntriesBeforeTheFailureStay) {
    build(&CatalogueTables::derivedUnits, wrongUnit);
    EXPECT_EQ(namesOf(uroot), (std::vector<std::string>{"meter", "gram", "second", "ampere", "kelvin", "mole",
                                                        "candela", "good"}));
    EXPECT_EQ(convert("kilogood", "meter"), 1000);
}

TEST_F(BrokenCatalogue, ADefinitionMayOnlyUseEarlierUnits) {
    const TextPair late[] = {{"newtonmeter", "newton-meter"}, {"newton", "meter"}, {nullptr, nullptr}};
    EXPECT_EQ(build(&CatalogueTables::derivedUnits, late),
              "units failure initializing derived unit 'newtonmeter' (newton-meter)");
}

} // namespace
