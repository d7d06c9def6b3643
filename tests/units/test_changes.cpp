// SPDX-License-Identifier: MIT
//
// Definitions and removals that are taken back.
#include "allocation.h"
#include "fixture.h"

#include <set>

namespace {

class UnitChanges : public UnitsTest {
protected:
    Recording changes;
};

TEST_F(UnitChanges, ARemovedUnitComesBackAsTheSameRecord) {
    define("Q", "2 m");
    define("B", "12 Q");
    EXPECT_FALSE(removeUnit("Q"));
    const Unit* record = unitTable.Find("B");
    changes.begin();
    EXPECT_FALSE(removeUnit("B"));
    EXPECT_EQ(define("Q", "5 m"), "");
    EXPECT_EQ(define("B", "12 Q"), "");
    EXPECT_DOUBLE_EQ(convert("B", "m"), 60.0);
    changes.TakeBack();
    EXPECT_EQ(unitTable.Find("B"), record);
    EXPECT_DOUBLE_EQ(convert("B", "m"), 24.0);
    EXPECT_EQ(unitTable.Find("Q"), nullptr);
    EXPECT_FALSE(removeUnit("B"));
    EXPECT_TRUE(removeUnit("B"));
}

TEST_F(UnitChanges, AUnitDefinedAndRemovedSinceIsGone) {
    units_reduce("m");
    changes.begin();
    define("smoot", "1.7018 m");
    removeUnit("smoot");
    define("smoot", "2 m");
    removeUnit("smoot");
    changes.TakeBack();
    EXPECT_EQ(unitTable.Find("smoot"), nullptr);
    EXPECT_EQ(define("smoot", "3 m"), "");
    EXPECT_DOUBLE_EQ(convert("smoot", "m"), 3.0);
}

TEST_F(UnitChanges, UnitsOfTheCatalogueComeBackInTheirPlace) {
    units_reduce("m");
    changes.begin();
    removeUnit("hour");
    define("hour", "2 s");
    removeUnit("h");
    changes.TakeBack();
    EXPECT_DOUBLE_EQ(convert("hour", "s"), 3600.0);
    EXPECT_EQ(define("Q", "m"), "");
    EXPECT_LT(unitTable.Find("hour")->position, unitTable.Find("h")->position);
    EXPECT_LT(unitTable.Find("h")->position, unitTable.Find("Q")->position);
}

TEST_F(UnitChanges, EachHasAVersionAndNothingElseHas) {
    std::set<uint64_t> versions;
    const auto isNew = [&versions] { return versions.insert(units_version()).second; };
    units_reduce("m");
    EXPECT_TRUE(isNew());
    convert("kilometer", "mile");
    define("Q", "2 nosuch");
    EXPECT_TRUE(removeUnit("nosuch"));
    EXPECT_FALSE(isNew());
    changes.begin();
    define("Q", "2 m");
    EXPECT_TRUE(isNew());
    removeUnit("mile");
    EXPECT_TRUE(isNew());
    changes.TakeBack();
    EXPECT_TRUE(isNew());
    define("R", "2 m");
    EXPECT_TRUE(isNew());
    unitFreeMemory();
    EXPECT_TRUE(isNew());
    units_reduce("m");
    EXPECT_TRUE(isNew());
}

TEST_F(UnitChanges, TheCatalogueBuiltMeanwhileStays) {
    changes.begin();
    define("smoot", "1.7018 m");
    removeUnit("foot");
    changes.TakeBack();
    EXPECT_EQ(unitTable.Find("smoot"), nullptr);
    EXPECT_DOUBLE_EQ(convert("foot", "inch"), 12.0);
}

TEST_F(UnitChanges, ChangesThatAreKeptStay) {
    define("old", "3 m");
    changes.begin();
    define("smoot", "1.7018 m");
    removeUnit("old");
    changes.Keep();
    changes.TakeBack();
    EXPECT_DOUBLE_EQ(convert("smoot", "m"), 1.7018);
    EXPECT_TRUE(removeUnit("old"));
    removeUnit("smoot");
    changes.TakeBack();
    EXPECT_TRUE(removeUnit("smoot"));
}

// The index grows several times, each time without the slots of removed units that cannot come back.
TEST_F(UnitChanges, ManyChangesAreTakenBack) {
    define("smoot", "1.7018 m");
    changes.begin();
    removeUnit("smoot");
    for (int i = 0; i < 2000; ++i) {
        std::string name = "x";
        for (int rest = i; rest != 0; rest /= 26) name += static_cast<char>('a' + rest % 26);
        ASSERT_EQ(define(name, "m"), "") << name;
    }
    changes.TakeBack();
    EXPECT_DOUBLE_EQ(convert("smoot", "m"), 1.7018);
    EXPECT_EQ(unitTable.Find("xb"), nullptr);
    EXPECT_EQ(unitTable.Find("xaab"), nullptr);
}

TEST_F(UnitChanges, ARemovedUnitFreesItsNames) {
    define("many", "m^1000");
    const size_t before = allocation::live();
    for (int i = 0; i < 10; ++i) {
        define("x", "many^50/s^1000");
        removeUnit("x");
        changes.begin();
        define("x", "many^50/s^1000");
        changes.TakeBack();
        define("x", "many^50/s^1000");
        changes.begin();
        removeUnit("x");
        changes.Keep();
    }
    EXPECT_LE(allocation::live() - before, 2U); // the index may have grown
}

TEST_F(UnitChanges, UnitsDefinedFromARemovedOneKeepTheirReduction) {
    define("Q", "2 m^3/s");
    define("B", "12 Q");
    removeUnit("Q");
    EXPECT_EQ(reduced("B"), "24.0 meter meter meter / second");
}

} // namespace
