// SPDX-License-Identifier: MIT
//
// The record of the last answer.
#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class LastAnswer : public testing::Test {
protected:
    LastAnswer() {
        deleteAllFunctions();
        deleteAllUnits();
        calc.InitializeFunctionsAndVars();
    }

    void Enter(const std::string& line) { calc.ProcessEntry(line.c_str(), false); }

    void Expect(const char* entry, const char* name, const char* value) {
        qfloat number;
        ASSERT_EQ(0, asctoq(value, number));
        EXPECT_EQ(entry, calc.answer.entry);
        EXPECT_EQ(name, calc.answer.name);
        EXPECT_EQ(0, qcmp(number, calc.answer.value)) << entry;
    }

    ZqCalculator calc;
};

TEST_F(LastAnswer, thereIsNoneBeforeTheFirst) {
    for (const char* line : {"", "mode deg", "1/0", "echo 5", "f(x)=x", "disp nothing", "list"}) {
        Enter(line);
        EXPECT_EQ("", calc.answer.shown) << line;
        EXPECT_EQ("", calc.AnswerIn(16)) << line;
        EXPECT_EQ("", calc.PlainAnswer()) << line;
    }
    calc.ProcessEntry("7", true);
    EXPECT_EQ("", calc.answer.shown);
}

TEST_F(LastAnswer, isThatOfTheLastStatementThatWasEvaluated) {
    const struct {
        const char* line;
        const char* name;
        const char* value;
    } cases[] = {{"255", "ans", "255"},          {"254; mode deg", "ans", "254"},
                 {"x=5; 1/0", "x", "5"},         {"2;3", "ans", "3"},
                 {"9; display hex", "ans", "9"}, {"6; echo text", "ans", "6"},
                 {"y=0x1F # note", "y", "31"},   {"8; clear", "ans", "8"},
                 {"z=3; disp x", "x", "5"},      {"disp z; mode rad", "z", "3"},
                 {"4; del y", "ans", "4"},       {"ans*2;", "ans", "8"}};
    for (const auto& one : cases) {
        Enter(one.line);
        Expect(one.line, one.name, one.value);
    }
}

TEST_F(LastAnswer, staysThroughErrorsMessagesAndPreviews) {
    Enter("x=40+2");
    for (const char* line :
         {"1/0", "mode deg", "echo 7", "g(x)=x", "del x", "del all", "disp nothing", "clear"}) {
        Enter(line);
        Expect("x=40+2", "x", "42");
    }
    calc.ProcessEntry("99", true);
    Expect("x=40+2", "x", "42");
    EXPECT_EQ("42", calc.PlainAnswer());
}

TEST_F(LastAnswer, ofARepeatedEntryHasItsText) {
    Enter("x=1");
    Enter("x=x*2");
    Enter("");
    Expect("x=x*2", "x", "4");
}

TEST_F(LastAnswer, staysWhenTheNextEntryIsInterrupted) {
    Enter("x=42");
    static int asked = 0; // the second question comes after the first statement
    asked = 0;
    calc.interruptCheck = [] { return ++asked > 1; };
    Enter("y=7; z=8");
    EXPECT_TRUE(calc.interrupted);
    Expect("x=42", "x", "42");
}

TEST_F(LastAnswer, isWrittenInAnotherBaseInTheSettingsOfNow) {
    calc.useSeparator = true;
    Enter("x=1234567.5");
    EXPECT_EQ("1,234,567.5", calc.AnswerIn(10));
    EXPECT_EQ("0x0012D687", calc.AnswerIn(16)); // 0x12d687 = 1234567
    calc.european = true;
    EXPECT_EQ("1.234.567,5", calc.AnswerIn(10));
    EXPECT_EQ(10, calc.displayBase);
}

} // namespace
