// SPDX-License-Identifier: MIT
#include "PromptCompletion.h"

#include "../engine/clean_start.h"
#include "Builtins.h"
#include "Calculator.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

class CompletionTest : public testing::Test {
protected:
    CompletionTest() {
        deleteAllFunctions();
        calc.InitializeFunctionsAndVars();
        for (const char* const entry : {"price=3", "hypot(a,b)=sqrt(a^2+b^2)", "unit smoot=67 inch"})
            calc.ProcessEntry(entry, false);
    }
    ~CompletionTest() override {
        deleteAllFunctions();
        deleteAllUnits();
    }

    // What fits at the bar.
    Names At(const std::string& marked) const {
        const size_t cursor = marked.find('|');
        return promptCompletionsAt(marked.substr(0, cursor) + marked.substr(cursor + 1), cursor, calc)
            .candidates;
    }
    bool Fits(const std::string& marked, const std::string& name) const {
        const Names names = At(marked);
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    ZqCalculator calc;
};

TEST_F(CompletionTest, FunctionsComeWithTheirParenthesisAndVariablesAlone) {
    EXPECT_EQ(At("2+sq|"), (Names{"sqrt("}));
    EXPECT_EQ(At("2+SQ|"), (Names{"sqrt("}));
    EXPECT_EQ(At("2+hy|"), (Names{"hypot("}));
    EXPECT_EQ(At("2+hy|(3,4)"), (Names{"hypot"})); // it has one
    EXPECT_EQ(At("2*p|"), (Names{"pi", "price"}));
    EXPECT_EQ(At("2*P|"), (Names{}));
    EXPECT_EQ(At("sin(pr|)*2"), (Names{"price"}));
    EXPECT_EQ(At("2+|").size(), builtinTable().size() + 1 + 3); // also hypot, and ans, pi, price
}

TEST_F(CompletionTest, TheStartOfAStatementMayBeACommand) {
    EXPECT_EQ(At("hi|"), (Names{"histstack "}));
    EXPECT_EQ(At("sig|"), (Names{"sigfigs "}));
    EXPECT_EQ(At("1+1; di|"), (Names{"disp ", "display "}));
    EXPECT_EQ(At("cl|"), (Names{"clear", "cls"}));
    for (const char* name : {"ceil(", "clear", "convert ", "cosh("}) EXPECT_TRUE(Fits("c|", name)) << name;
    EXPECT_EQ(At("2+clea|"), (Names{}));
    EXPECT_TRUE(Fits("|", "exit"));
    EXPECT_TRUE(Fits("|", "sin("));
}

TEST_F(CompletionTest, ArgumentsOfCommandsFit) {
    EXPECT_EQ(At("mode |"), (Names{"deg", "rad"}));
    EXPECT_EQ(At("Mode D|"), (Names{"deg"}));
    EXPECT_EQ(At("display |"), (Names{"bin", "dec", "hex"}));
    EXPECT_EQ(At("list |"), (Names{"units"}));
    EXPECT_EQ(At("histstack o|"), (Names{"off", "on"}));
    EXPECT_EQ(At("del sm|"), (Names{"smoot"}));
    EXPECT_EQ(At("del p|"), (Names{"pi", "price"}));
    EXPECT_EQ(At("del a|"), (Names{"abs", "acos", "all", "ans", "asin", "atan"}));
    EXPECT_EQ(At("disp p|"), (Names{"pi", "price"}));
}

TEST_F(CompletionTest, WordsOfThePromptFitBehindAColon) {
    EXPECT_EQ(At(":v|"), (Names{"vars"}));
    EXPECT_EQ(At(":se|"), (Names{"set "}));
    EXPECT_EQ(At(":set auto|"), (Names{"autoeval "}));
    EXPECT_EQ(At(":vars s|"), (Names{}));
    EXPECT_EQ(At(":base |"), (Names{"bin", "dec", "hex"}));
    EXPECT_EQ(At(":set dispbase |"), (Names{"bin", "dec", "hex"}));
    EXPECT_EQ(At(":set autoeval o|"), (Names{"off", "on"}));
    EXPECT_EQ(At(":help comm|"), (Names{"Command "}));
    EXPECT_EQ(At(":help command |"), (Names{"words"}));
    EXPECT_EQ(At(":help sq|"), (Names{"sqrt"}));
    EXPECT_EQ(At(":help sigf|"), (Names{"sigfigs"}));
    EXPECT_EQ(At(":units smo|"), (Names{"smoot"}));
    EXPECT_EQ(At(":units mil|"), At("5 km->mil|"));
}

TEST_F(CompletionTest, UnitsAndPrefixesFitBehindTheArrow) {
    EXPECT_EQ(At("5 km->smo|"), (Names{"smoot"}));
    EXPECT_EQ(At("5 km->mete|"), (Names{"meter"}));
    EXPECT_TRUE(Fits("5 km->kil|", "kilo"));
    EXPECT_TRUE(Fits("5 km->kilome|", "kilometer"));
    EXPECT_TRUE(Fits("5 km/s->mete|", "meter"));
    EXPECT_EQ(At("5 meter/second->kilometer/h|"), At("5 m->h|"));
    EXPECT_EQ(At("(5 km->mi)+sq|"), (Names{"sqrt("})); // the arrow's unit is over
}

TEST_F(CompletionTest, NothingFitsANumberAndAComment) {
    EXPECT_EQ(At("2k|"), (Names{}));
    EXPECT_EQ(At("1 # s|"), (Names{}));
}

TEST_F(CompletionTest, TheWordThatIsReplacedBeginsAtItsFirstLetter) {
    EXPECT_EQ(promptCompletionsAt("2+sq", 4, calc).start, 2U);
    EXPECT_EQ(promptCompletionsAt("5 km->", 6, calc).start, 6U);
}

} // namespace
