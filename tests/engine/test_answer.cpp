// SPDX-License-Identifier: MIT
//
// The record of the last answer.
#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

TEST_F(LastAnswer, ThereIsNoneBeforeTheFirst) {
    for (const char* line : {"", "mode deg", "1/0", "echo 5", "f(x)=x", "disp nothing", "list"}) {
        Enter(line);
        EXPECT_EQ("", calc.answer.shown) << line;
        EXPECT_EQ("", calc.AnswerIn(16)) << line;
        EXPECT_EQ("", calc.PlainAnswer()) << line;
    }
    calc.ProcessEntry("7", true);
    EXPECT_EQ("", calc.answer.shown);
}

TEST_F(LastAnswer, IsThatOfTheLastStatementThatWasEvaluated) {
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

TEST_F(LastAnswer, StaysThroughErrorsMessagesAndPreviews) {
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

TEST_F(LastAnswer, OfARepeatedEntryHasItsText) {
    Enter("x=1");
    Enter("x=x*2");
    Enter("");
    Expect("x=x*2", "x", "4");
}

TEST_F(LastAnswer, StaysWhenTheNextEntryIsInterrupted) {
    Enter("x=42");
    static int asked = 0; // the second question comes after the first statement
    asked = 0;
    calc.interruptCheck = [] { return ++asked > 1; };
    Enter("y=7; z=8");
    EXPECT_TRUE(calc.interrupted);
    Expect("x=42", "x", "42");
}

TEST_F(LastAnswer, IsWrittenInAnotherBaseInTheSettingsOfNow) {
    calc.useSeparator = true;
    Enter("x=1234567.5");
    EXPECT_EQ("1,234,567.5", calc.AnswerIn(10));
    EXPECT_EQ("0x0012D687", calc.AnswerIn(16)); // 0x12d687 = 1234567
    calc.european = true;
    EXPECT_EQ("1.234.567,5", calc.AnswerIn(10));
    EXPECT_EQ(10, calc.displayBase);
}

// Of a longer text only the first 104 digits would be read, without the scale of the others.
TEST_F(LastAnswer, IsCopiedWithAnExponentWhereItHasMoreDigitsThanAreRead) {
    const char* const manyAs = "1.18300573615821434008679005188611741518502779075663"
                               "2123535614992541427454682169268931055819264674274e131";
    const char* const manyFs = "1.77450860423732151013018507782917612277754168613494"
                               "8185303422488812141182023253903396583728897011411e131";
    const char* const power = "1.606938044258990275541962092341162602522202993782792835301376e60";
    const struct {
        const char* settings;
        const char* entry;
        const char* copied;
    } cases[] = {{"display bin", "2^200", power},
                 {"display bin", "2^103", "0b 1000"}, // and 100 zeros
                 {"display bin", "2^104", "2.0282409603651670423947251286016e31"},
                 {"display hex", "2^200", "0x0100"},    // and 48 zeros
                 {"display hex", "0-2^412", "-0x1000"}, // and 100 zeros
                 {"display hex", "1e400", "1.0e400"},
                 {"display hex", "0xAAAAAAAAAAAAAAAAAAAAAAAA*2^340", manyAs}, // 24 letters, 85 zeros
                 {"display hex", "0xFFFFFFFFFFFFFFFFFFFFFFFF*2^340", manyFs},
                 {"display hex", "0-1e400", "-1.0e400"},
                 {"display dec; scimode never", "1e100", "10000"}, // and 96 zeros
                 {"scimode never", "1e103", "10000"},
                 {"scimode never", "1e104", "1.0e104"},
                 {"scimode never", "0-1e400", "-1.0e400"},
                 {"scimode never", "2e200/3", "6.666666667e199"},
                 {"scimode never", "1e-200", "1.0e-200"},
                 {"sigfigs 2; scimode fixed", "1e200+1e198", "1.01e200"}};
    for (const auto& one : cases) {
        Enter(one.settings);
        Enter(one.entry);
        const std::string copied = calc.PlainAnswer();
        if (strchr(one.copied, 'e'))
            EXPECT_EQ(one.copied, copied) << one.entry;
        else
            EXPECT_EQ(one.copied, copied.substr(0, strlen(one.copied))) << one.entry;
        qfloat wanted;
        qmov(calc.answer.value, wanted);
        ASSERT_EQ(STATUS_RESULT, calc.ProcessEntry(copied.c_str(), true)) << copied;
        qfloat difference;
        qsub(wanted, calc.result, difference);
        qdiv(wanted, difference, difference);
        double relative = 1;
        qtoe(difference, &relative);
        EXPECT_LE(std::fabs(relative), 1e-9) << copied;
    }
}

// There the sign stands behind its number.
TEST_F(LastAnswer, IsCopiedAsAddingMachineEntryReadsIt) {
    const struct {
        const char* entry;
        const char* copied;
    } cases[] = {{"0-1234.5", "1234.5-"}, {"1234.5", "1234.5"}, {"0-1e-30", "1.0e-30-"}, {"0", "0"}};
    for (const auto& one : cases) {
        calc.tenKey = false;
        Enter(one.entry);
        calc.tenKey = true;
        EXPECT_EQ(one.copied, calc.PlainAnswer());
        ASSERT_EQ(STATUS_RESULT, calc.ProcessEntry(one.copied, true)) << calc.message;
        EXPECT_EQ(0, qcmp(calc.answer.value, calc.result)) << one.copied;
    }
}

TEST_F(LastAnswer, BeyondTheRangeIsNotedByDispToo) {
    Enter("a=1e10000");
    EXPECT_TRUE(calc.overflowed);
    Enter("b=1");
    EXPECT_FALSE(calc.overflowed);
    Enter("disp a");
    EXPECT_TRUE(calc.overflowed);
    Enter("disp b");
    EXPECT_FALSE(calc.overflowed);
}

} // namespace
