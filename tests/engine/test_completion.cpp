// SPDX-License-Identifier: MIT
//
// The names that can stand at a place of an entry, and all names with a line each.
#include "Builtins.h"
#include "Completion.h"
#include "NameRows.h"
#include "functions_fixture.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

bool holds(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

Names unitsFrom(const std::string& entry) {
    Names found;
    addUnits(entryPlace(entry, entry.size()), found);
    return found;
}

TEST_F(Functions, BehindAnArrowUnitsAndPrefixesGoOnFromTheWord) {
    const Names all = unitsFrom("5 km->");
    for (const char* name : {"meter", "kilo"}) EXPECT_TRUE(holds(all, name)) << name;
    EXPECT_FALSE(holds(all, "kilometer")); // prefixes before all units would be thousands
    const Names kil = unitsFrom("5 km->kil");
    EXPECT_TRUE(holds(kil, "kilo"));
    EXPECT_FALSE(holds(kil, "kilometer"));
    EXPECT_FALSE(holds(unitsFrom("5 km->kilo"), "kilometer"));
    EXPECT_EQ(Names{"kilometer"}, unitsFrom("5 km->kilomete"));
}

TEST_F(Functions, AtTheStartAreFunctionsVariablesAndCommands) {
    Enter("fog(x)=x");
    Enter("fox=1");
    const auto at = [this](const std::string& entry) {
        return completionsAt(entry, entry.size(), calc).candidates;
    };
    EXPECT_EQ((Names{"fog(", "fox"}), at("fo"));
    EXPECT_EQ((Names{"fog(", "fox"}), at("2+fo"));
    EXPECT_EQ(Names{"sqrt("}, at("sq"));
    EXPECT_EQ(Names(), at("2fo"));
    EXPECT_EQ(Names(), at("1 # fo"));
    EXPECT_EQ((Names{"fog", "fox"}), at("del fo"));
    EXPECT_EQ(Names{"fox"}, at("disp fo"));
    EXPECT_EQ(Names{"fog"}, completionsAt("fog(2)", 3, calc).candidates); // the parenthesis is there
    EXPECT_EQ(Names{"fog("}, at("5 km->(fog"));                           // no unit begins with a parenthesis
    EXPECT_EQ(Names{"sigfigs "}, at("sigf")); // a setting of numbers has no words to choose from
}

// --- All names ---

const NameRow* rowOf(const std::vector<NameRow>& rows, const std::string& name) {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const NameRow& row) { return row.name == name; });
    return found != rows.end() ? &*found : nullptr;
}

TEST_F(Functions, APersonsFunctionsAreListedBeforeThePredefinedOnes) {
    Enter("twice(x)=2*x");
    const std::vector<NameRow> rows = functionRows();
    EXPECT_EQ("twice(", rows.front().name);
    EXPECT_EQ("twice(x)=2*x", rows.front().shown);
    EXPECT_EQ("", rows.front().text);
    ASSERT_NE(nullptr, rowOf(rows, "sin("));
    EXPECT_EQ("sin(x)", rowOf(rows, "sin(")->shown);
    EXPECT_NE("", rowOf(rows, "sin(")->text);
    ASSERT_NE(nullptr, rowOf(rows, "mod("));
    EXPECT_NE("", rowOf(rows, "mod(")->text); // predefined, as a person would do it
}

TEST_F(Functions, APersonsOwnUnderAPredefinedNameIsListedAsTheirs) {
    Enter("del mod");
    EXPECT_EQ(nullptr, rowOf(functionRows(), "mod("));
    Enter("mod(a,b)=a+b");
    const std::vector<NameRow> rows = functionRows();
    EXPECT_EQ("mod(", rows.front().name);
    EXPECT_EQ("mod(a,b)=a+b", rows.front().shown);
    EXPECT_EQ(1,
              std::count_if(rows.begin(), rows.end(), [](const NameRow& row) { return row.name == "mod("; }));
}

TEST_F(Functions, EveryUnitIsListedWithItsFactor) {
    Enter("unit ell=1.125 m");
    const std::vector<NameRow> rows = unitRows();
    ASSERT_NE(nullptr, rowOf(rows, "ell"));
    EXPECT_EQ("1.125 meter", rowOf(rows, "ell")->text);
    ASSERT_NE(nullptr, rowOf(rows, "meter"));
    EXPECT_EQ("1 meter", rowOf(rows, "meter")->text);
}

} // namespace
