// SPDX-License-Identifier: MIT
#include "Completion.h"

#include "Calculator.h"
#include "units.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

class CompletionTest : public testing::Test {
protected:
    CompletionTest() {
        calc.InitializeFunctionsAndVars();
        for (const char* const entry : {"price=3", "hypot(a,b)=sqrt(a^2+b^2)", "unit smoot=67 inch"})
            calc.ProcessEntry(entry, false);
    }
    ~CompletionTest() override {
        while (const Function* function = funcs.Get(0)) funcs.DeleteFunction(function);
        unitFreeMemory();
    }

    // What fits at the bar.
    Names at(const std::string& marked) const {
        const std::size_t cursor = marked.find('|');
        return completionsAt(marked.substr(0, cursor) + marked.substr(cursor + 1), cursor, calc).candidates;
    }
    bool fits(const std::string& marked, const std::string& name) const {
        const Names names = at(marked);
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    ZqCalculator calc;
};

TEST_F(CompletionTest, FunctionsComeWithTheirParenthesisAndVariablesAlone) {
    EXPECT_EQ(at("2+sq|"), (Names{"sqrt("}));
    EXPECT_EQ(at("2+SQ|"), (Names{"sqrt("}));
    EXPECT_EQ(at("2+hy|"), (Names{"hypot("}));
    EXPECT_EQ(at("2+hy|(3,4)"), (Names{"hypot"})); // it has one
    EXPECT_EQ(at("2*p|"), (Names{"pi", "price"}));
    EXPECT_EQ(at("2*P|"), (Names{}));
    EXPECT_EQ(at("sin(pr|)*2"), (Names{"price"}));
    EXPECT_EQ(at("2+|").size(), 20U + 1 + 3); // functions of all kinds, and ans, pi, price
}

TEST_F(CompletionTest, TheStartOfAStatementMayBeACommand) {
    EXPECT_EQ(at("hi|"), (Names{"histstack "}));
    EXPECT_EQ(at("sig|"), (Names{"sigfigs "}));
    EXPECT_EQ(at("1+1; di|"), (Names{"disp ", "display "}));
    EXPECT_EQ(at("c|"), (Names{"ceil(", "clear", "cls", "convert ", "cos(", "cosh("}));
    EXPECT_EQ(at("2+clea|"), (Names{}));
    EXPECT_TRUE(fits("|", "exit"));
    EXPECT_TRUE(fits("|", "sin("));
}

TEST_F(CompletionTest, ArgumentsOfCommandsFit) {
    EXPECT_EQ(at("mode |"), (Names{"deg", "rad"}));
    EXPECT_EQ(at("Mode D|"), (Names{"deg"}));
    EXPECT_EQ(at("display |"), (Names{"bin", "dec", "hex"}));
    EXPECT_EQ(at("list |"), (Names{"units"}));
    EXPECT_EQ(at("histstack o|"), (Names{"off", "on"}));
    EXPECT_EQ(at("del sm|"), (Names{"smoot"}));
    EXPECT_EQ(at("del p|"), (Names{"pi", "price"}));
    EXPECT_EQ(at("del a|"), (Names{"abs", "acos", "all", "ans", "asin", "atan"}));
    EXPECT_EQ(at("disp p|"), (Names{"pi", "price"}));
}

TEST_F(CompletionTest, UnitsAndPrefixesFitBehindTheArrow) {
    EXPECT_EQ(at("5 km->smo|"), (Names{"smoot"}));
    EXPECT_EQ(at("5 km->mete|"), (Names{"meter"}));
    EXPECT_TRUE(fits("5 km->kil|", "kilo"));
    EXPECT_TRUE(fits("5 km->kilome|", "kilometer"));
    EXPECT_TRUE(fits("5 km/s->mete|", "meter"));
    EXPECT_EQ(at("5 meter/second->kilometer/h|"), at("5 m->h|"));
    EXPECT_EQ(at("(5 km->mi)+sq|"), (Names{"sqrt("})); // the arrow's unit is over
}

TEST_F(CompletionTest, NothingFitsANumberAndAComment) {
    EXPECT_EQ(at("2k|"), (Names{}));
    EXPECT_EQ(at("1 # s|"), (Names{}));
}

TEST_F(CompletionTest, TheWordThatIsReplacedBeginsAtItsFirstLetter) {
    EXPECT_EQ(completionsAt("2+sq", 4, calc).start, 2U);
    EXPECT_EQ(completionsAt("5 km->", 6, calc).start, 6U);
}

} // namespace
