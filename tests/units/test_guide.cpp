// SPDX-License-Identifier: MIT
//
// The guide's tables of units are the catalogue.
#include "../guide.h"
#include "fixture.h"
#include "table.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

namespace {

class GuideUnits : public UnitsTest {};

// Each unit of the guide's tables with what the row has behind its names.
struct GuideUnit {
    std::vector<std::string> names; // the long one first
    std::string definition;         // empty for a base unit
    std::string note;
};

std::vector<GuideUnit> unitsOfGuide() {
    std::vector<GuideUnit> units;
    for (const char* const head :
         {"| Unit | Short |", "| Unit | Short | Is |", "| Unit | Short | Is | Note |"}) {
        for (GuideCells& cells : guideTable(TALLYQUILL_GUIDE, head)) {
            cells.resize(4);
            GuideUnit unit = {guideCode(cells[0] + cells[1]), "", cells[3]};
            if (!cells[2].empty()) unit.definition = guideCode(cells[2]).at(0);
            units.push_back(unit);
        }
    }
    return units;
}

// How many of the second are in the first.
double factor(const std::string& from, const std::string& to) {
    units_clear_exception();
    const double result = units_convert(from.c_str(), to.c_str());
    EXPECT_EQ(units_check_exception(), nullptr) << from << " " << to << " " << units_check_exception();
    return result;
}

// The digits of "4046.85642 meter^2" as they stand, and half a unit of the last one.
mpq_class numberOf(const std::string& definition) {
    return exactDecimal(definition.substr(0, definition.find(' ')));
}

mpq_class halfOfTheLastDigit(const std::string& definition) {
    std::string number = definition.substr(0, definition.find(' '));
    const size_t exponent = std::min(number.find('e'), number.size());
    for (size_t i = 0; i < exponent; ++i) {
        if (number[i] != '.') number[i] = i + 1 == exponent ? '5' : '0';
    }
    return exactDecimal(number) / 10;
}

TEST_F(GuideUnits, AreThoseOfTheCatalogue) {
    std::multiset<std::string> names;
    for (const GuideUnit& unit : unitsOfGuide()) names.insert(unit.names.begin(), unit.names.end());
    const std::vector<std::string> known = units_names();
    EXPECT_EQ(names, std::multiset<std::string>(known.begin(), known.end()));
}

TEST_F(GuideUnits, HaveTheFactorsThatConversionsUse) {
    for (const GuideUnit& unit : unitsOfGuide()) {
        for (const std::string& name : unit.names)
            EXPECT_EQ(factor(name, unit.names[0]), 1.0) << name << " is " << unit.names[0];
        if (unit.definition.empty()) continue;
        EXPECT_NEAR(factor(unit.names[0], unit.definition), 1.0, 1e-15) << unit.names[0];
    }
}

TEST_F(GuideUnits, SayWhatTheyAreRoundedFrom) {
    int rounded = 0;
    for (const GuideUnit& unit : unitsOfGuide()) {
        const size_t colon = unit.note.find(": ");
        if (unit.note.rfind("rounded: ", 0) != 0 || colon == std::string::npos) continue;
        const mpq_class exact = exactDecimal(unit.note.substr(unit.note.rfind(' ') + 1));
        const mpq_class used = numberOf(unit.definition);
        EXPECT_NE(exact, used) << unit.names[0];
        EXPECT_LE(abs(exact - used), halfOfTheLastDigit(unit.definition)) << unit.names[0];
        ++rounded;
    }
    EXPECT_EQ(rounded, 12);
}

TEST_F(GuideUnits, HaveThePrefixesOfTheCatalogue) {
    std::multiset<std::string> names;
    for (const GuideCells& cells : guideTable(TALLYQUILL_GUIDE, "| Prefix | Short | Times |")) {
        for (const std::string& name : guideCode(cells.at(0) + cells.at(1))) {
            names.insert(name);
            EXPECT_NEAR(factor(name + "meter", guideCode(cells.at(2)).at(0) + " meter"), 1.0, 1e-15) << name;
        }
    }
    const std::vector<std::string> known = units_prefix_names();
    EXPECT_EQ(names, std::multiset<std::string>(known.begin(), known.end()));
}

} // namespace
