// SPDX-License-Identifier: MIT
//
// What the status line says of an entry that has no result yet.
#include "../../engine/clean_start.h"
#include "StatusHint.h"
#include "Transcript.h"

#include <gtest/gtest.h>

#include <new>

namespace {

class StatusHint : public ::testing::Test {
protected:
    void SetUp() override {
        calc.~ZqCalculator();
        new (&calc) ZqCalculator;
        deleteAllFunctions();
        calc.initialized = true;
        calc.InitializeFunctionsAndVars();
        Enter("width=3");
        Enter("hyp(a,b)=sqrt(a^2+b^2)");
    }

    static void Enter(const char* entry) { calc.ProcessEntry(entry, false); }

    // After a preview of the entry, which has to end with an error.
    static std::string Of(const char* entry) {
        EXPECT_EQ(calc.ProcessEntry(entry, true), STATUS_ERROR) << entry;
        return statusHint(entry, calc);
    }
};

TEST_F(StatusHint, NamesTheMissingBracketOfItsKind) {
    EXPECT_EQ(Of("(2+3"), "missing )");
    EXPECT_EQ(Of("sin(30"), "missing )");
    EXPECT_EQ(Of("2*[3+{4"), "missing }");
    EXPECT_EQ(Of("[2"), "missing ]");
    EXPECT_EQ(Of("2+3)"), "missing (");
    EXPECT_EQ(Of("2]"), "missing [");
    EXPECT_EQ(Of("1; (2"), "missing )");
}

TEST_F(StatusHint, NamesTheMissingOperand) {
    EXPECT_EQ(Of("2+"), "missing number");
    EXPECT_EQ(Of("* 3"), "missing number");
    EXPECT_EQ(Of("sin()"), "missing number");
    EXPECT_EQ(Of("5 km->"), "missing unit");
}

TEST_F(StatusHint, NamesWhatIsNotKnown) {
    EXPECT_EQ(Of("wdith"), "unknown: wdith");
    EXPECT_EQ(Of("3wdith*2"), "unknown: wdith");
    EXPECT_EQ(Of("wd+1"), "unknown: wd");
    EXPECT_EQ(Of("hyq(3,4)"), "unknown: hyq");
    EXPECT_EQ(Of("5 km->mlie"), "unknown: mlie");
    EXPECT_EQ(Of("5 kmx->m"), "unknown: kmx");
}

TEST_F(StatusHint, TellsWhatAKnownNameLacks) {
    EXPECT_EQ(Of("2width"), "missing *");
    EXPECT_EQ(Of("sqrt"), "missing (");
    EXPECT_EQ(Of("HYP+1"), "missing (");
    EXPECT_EQ(Of("5 km"), "missing ->");
}

TEST_F(StatusHint, SaysNothingWhileANameIsTypedThatIsKnown) {
    EXPECT_EQ(Of("wid"), "");
    EXPECT_EQ(Of("2*sq"), "");
    EXPECT_EQ(Of("5 km->kilog"), "");
    EXPECT_EQ(Of("his"), "");
    EXPECT_EQ(Of("sq+1"), "unknown: sq") << "something follows";
}

TEST_F(StatusHint, SaysNothingOfCommandsNorOfOtherErrors) {
    EXPECT_EQ(Of("list"), "");
    EXPECT_EQ(Of("disp wdith"), "");
    EXPECT_EQ(Of("1+1; pause500"), "");
    EXPECT_EQ(Of("1/0"), "");
    EXPECT_EQ(Of("sin(1,2)"), "");
    EXPECT_EQ(Of("5 km->s"), "");
}

} // namespace
