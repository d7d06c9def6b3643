// SPDX-License-Identifier: MIT
//
// Command words with a memory or a limit.
#include "Helpers_String.h"
#include "functions_fixture.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

TEST_F(Functions, unitsAreFoundByTheirDefinitionsHead) {
    calc.unitDefs.Push(StrDuplicate("unit furlong=220 yard"));
    calc.unitDefs.Push(StrDuplicate("unit fur=1 furlong"));
    EXPECT_STREQ("unit furlong=220 yard", calc.UnitExists("furlong")->text);
    EXPECT_STREQ("unit fur=1 furlong", calc.UnitExists("fur")->text);
    EXPECT_EQ(nullptr, calc.UnitExists("Furlong"));
    EXPECT_EQ(nullptr, calc.UnitExists("furl"));
    EXPECT_EQ(nullptr, calc.UnitExists(""));
    EXPECT_EQ("unit furlong=220 yard\nunit fur=1 furlong\n", Answer("list units"));
    EXPECT_EQ("** deleted unit furlong **\n", Answer("del furlong"));
    EXPECT_EQ("unit fur=1 furlong\n", Answer("list units"));
}

TEST_F(Functions, deletingAVariableForgetsItsName) {
    Enter("x=1");
    EXPECT_STREQ("x", calc.lastName);
    Enter("del x");
    EXPECT_EQ(nullptr, calc.lastName);
    EXPECT_EQ(nullptr, calc.lastValue);
    EXPECT_EQ("ans = 2\n", Answer("2"));
    Enter("del all");
    EXPECT_EQ(nullptr, calc.lastName);
}

TEST_F(Functions, gospelAlternates) {
    const std::string first = Answer("gospel");
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
    EXPECT_GT(std::count(first.begin(), first.end(), '.'), 3);
    EXPECT_EQ("    << type 'gospel' for more >>\n", first.substr(first.rfind("    <<")));
    EXPECT_EQ("gospel", Answer("GOSPEL"));
    EXPECT_EQ(STATUS_COMMAND, calc.status);
    EXPECT_EQ(first, Answer("gospel"));
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
}

TEST_F(Functions, whatIsEchoedBeyondTheTextsSizeIsRefused) {
    const std::string thousand(1000, 'x');
    EXPECT_EQ("** ERROR: 10000 max characters to show **\n", Answer(repeated("echo " + thousand + ";", 12)));
    EXPECT_EQ(9u * 1001u, strlen(calc.echoText));
    EXPECT_EQ(STATUS_MESSAGE, Enter("echo " + std::string(9990, 'y')));
    EXPECT_EQ(9991u, strlen(calc.echoText));
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + std::string(5000, 'a')));
    EXPECT_EQ("convert+" + std::string(1000, 'a'), calc.echoText);
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + repeated("a ", 1000)));
    EXPECT_EQ("convert+" + repeated("a+", 500), calc.echoText);
}

} // namespace
