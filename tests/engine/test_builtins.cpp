// SPDX-License-Identifier: MIT
//
// The table of the predefined functions.
#include "Builtins.h"
#include "functions_fixture.h"

#include <fstream>
#include <set>
#include <string>

namespace {

std::string head(const Builtin& builtin) {
    return std::string(builtin.name) + "(" + builtin.arguments + ")";
}

// The rows of the guide's table of functions.
std::multiset<std::string> functionsOfGuide() {
    std::ifstream guide(GUIDE);
    std::multiset<std::string> rows;
    bool isInside = false;
    for (std::string line; std::getline(guide, line);) {
        isInside = line == "| Function | Gives |" || (isInside && line[0] == '|');
        if (isInside && line.rfind("| `", 0) == 0) rows.insert(line);
    }
    return rows;
}

TEST(Builtins, AreListedInTheGuide) {
    std::multiset<std::string> rows;
    for (const Builtin& builtin : builtinTable()) {
        if (builtin.help) rows.insert("| `" + head(builtin) + "` | " + builtin.help + " |");
    }
    EXPECT_EQ(rows, functionsOfGuide());
}

TEST_F(Functions, EachRowOfTheTableIsAFunctionInItsOrder) {
    const Function* function = funcs.Get(0);
    for (const Builtin& builtin : builtinTable()) {
        ASSERT_TRUE(function) << builtin.name;
        const std::string body = builtin.definition ? std::string("=") + builtin.definition : "";
        EXPECT_EQ(head(builtin) + body, function->ToString());
        function = funcs.GetNext();
    }
    EXPECT_EQ(nullptr, function);
}

TEST(Builtins, AreFoundByTheirNamesAndLogarithmsByTheirBase) {
    for (const Builtin& builtin : builtinTable()) {
        EXPECT_EQ(builtin.compute ? &builtin : nullptr, findBuiltin(builtin.name)) << builtin.name;
    }
    const Builtin* const log = findBuiltin("log");
    ASSERT_TRUE(log);
    for (const char* name : {"log2", "log1.5", "log.5", "log1e2"}) EXPECT_EQ(log, findBuiltin(name)) << name;
    for (const char* name : {"logx", "log2x", "log.", "sine", ""})
        EXPECT_EQ(nullptr, findBuiltin(name)) << name;
}

// A logarithm or an angle that is a number is that number, not one beside it. Remainders show that:
// differences of a few units count as 0.
TEST_F(Functions, ResultsThatAreNumbersComeOutExactly) {
    Enter("mode deg");
    for (const char* remainder :
         {"log2(128)%7", "log2(2^29)%29", "log3(27)%3", "log3(3^200)%200", "log(1000)%3", "log(1e-9)%9",
          "log1.5(2.25)%2", "log.25(8)%1.5", "asin(.5)%30", "asin(-1)%90", "acos(.5)%60", "acos(-.5)%120",
          "acos(-1)%180", "atan(1)%45", "sin(30)%.5", "cos(-60)%.5", "tan(225)%1"}) {
        EXPECT_EQ("ans = 0\n", Answer(remainder)) << remainder;
    }
}

TEST_F(Functions, APreviewPaysTheCostOfItsRow) {
    for (const Builtin& builtin : builtinTable()) {
        if (!builtin.compute) continue;
        const std::string call = std::string(builtin.name) + "(1)";
        // Each of the sum's calls: its parenthesis, its '+' and its row.
        const uint64_t units = 50 * (2 * Cost::OPERATOR + builtin.cost);
        const std::string line = call + repeated("+" + call, 49);
        uint64_t enough = units;
        EXPECT_NE(STATUS_ERROR, calc.CalculateWithin(line.c_str(), enough)) << call;
        uint64_t tooFew = units - Cost::OPERATOR - 1;
        EXPECT_EQ(STATUS_ERROR, calc.CalculateWithin(line.c_str(), tooFew)) << call;
    }
}

} // namespace
