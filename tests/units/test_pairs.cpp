// SPDX-License-Identifier: MIT
//
// Every unit of the catalogue against every other, and every prefix before every unit, compared with exact
// rational arithmetic.
#include "fixture.h"
#include "table.h"

#include <set>

namespace {

TEST_F(UnitsTest, EveryPairOfEqualDimensionConvertsAsTheTablesSay) {
    int pairs = 0;
    for (const TableUnit& from : tableUnits()) {
        for (const TableUnit& to : tableUnits()) {
            if (from.dimension != to.dimension) continue;
            ++pairs;
            const double factor = convert(from.name, to.name);
            EXPECT_EQ(takeMessage(), "") << from.name << " to " << to.name;
            EXPECT_TRUE(isWithinFourUlps(factor, from.size / to.size))
                << from.name << " to " << to.name << ": " << factor;
        }
    }
    EXPECT_GT(pairs, 123);
}

TEST_F(UnitsTest, EveryPairOfUnequalDimensionIsIncompatible) {
    int pairs = 0;
    for (const TableUnit& from : tableUnits()) {
        if (from.dimension == Dimension{}) continue;
        for (const TableUnit& to : tableUnits()) {
            if (from.dimension == to.dimension) continue;
            ++pairs;
            EXPECT_EQ(convert(from.name, to.name), 0.0);
            EXPECT_EQ(takeMessage(), "'" + from.name + "' and '" + to.name + "' have incompatible units");
        }
    }
    EXPECT_GT(pairs, 10000);
}

TEST_F(UnitsTest, ADimensionlessUnitConvertsToAnything) {
    for (const TableUnit& from : tableUnits()) {
        if (from.dimension != Dimension{}) continue;
        for (const TableUnit& to : tableUnits()) {
            EXPECT_TRUE(isWithinFourUlps(convert(from.name, to.name), from.size / to.size))
                << from.name << " to " << to.name;
            EXPECT_EQ(takeMessage(), "");
        }
    }
}

TEST_F(UnitsTest, EveryPrefixBeforeEveryUnit) {
    std::set<std::string> exactNames;
    std::multiset<std::string> readings;
    for (const TableUnit& unit : tableUnits()) {
        exactNames.insert(unit.name);
        readings.insert(unit.name);
        for (const TablePrefix& prefix : tablePrefixes()) readings.insert(prefix.name + unit.name);
    }
    std::set<std::string> ambiguous;
    for (const TableUnit& unit : tableUnits()) {
        for (const TablePrefix& prefix : tablePrefixes()) {
            const std::string name = prefix.name + unit.name;
            if (readings.count(name) > 1) {
                ambiguous.insert(name);
                continue;
            }
            EXPECT_TRUE(isWithinFourUlps(convert(name, unit.name), exactDecimal(prefix.factor))) << name;
            EXPECT_TRUE(isWithinFourUlps(convert(unit.name, name), 1 / exactDecimal(prefix.factor))) << name;
            EXPECT_EQ(takeMessage(), "") << name;
        }
    }
    // "min" is the minute and not the milliinch: the exact name comes first.
    EXPECT_EQ(ambiguous, std::set<std::string>{"min"});
    EXPECT_DOUBLE_EQ(convert("min", "second"), 60);
}

} // namespace
