// SPDX-License-Identifier: MIT
//
// Conversions count as the work they are, before it is done; an interrupted entry leaves the units as they
// were.
#include "functions_fixture.h"
#include "questions.h"

#include <string>

namespace {

class UnitWork : public Functions {
protected:
    // Of an entry of so many statements, stops the last.
    std::string Interrupted(const std::string& entry, int statements) {
        questions = 0;
        stopAt = statements + 1;
        calc.interruptCheck = countQuestions;
        std::string answer = Answer(entry);
        calc.interruptCheck = nullptr;
        EXPECT_TRUE(calc.interrupted);
        return answer;
    }
};

const char* const INTERRUPTED = "** ERROR: interrupted **\n";

const char* const TOO_MUCH = "** ERROR: too much work for a preview **\n";

// 832 times a power of 1,000: 1,664,000 multiplications, which count as 208,000 of a preview's 60,000.
const std::string EXPENSIVE = repeated("k^1000*", 832) + "k^1000";

TEST_F(UnitWork, AnExpensiveConversionEndsAPreviewBeforeItIsDone) {
    Enter("unit k=1.0000001 radian");
    EXPECT_EQ(STATUS_ERROR, Preview("1 " + EXPENSIVE + "->radian"));
    EXPECT_STREQ(TOO_MUCH, calc.message);
    EXPECT_LE(calc.work.units, 60000u + 500u);
    EXPECT_EQ(STATUS_RESULT, Enter("1 " + EXPENSIVE + "->radian"));
}

// A hundred thousand meters are counted, not listed.
TEST_F(UnitWork, AUnitOfManyNamesIsPreviewed) {
    Enter("unit k=m^1000");
    Enter("unit big=k^100");
    EXPECT_EQ(STATUS_RESULT, Preview("3 s^1000*s^1->s^1000*s^1"));
    EXPECT_EQ(STATUS_RESULT, Preview("1 big/big->radian"));
    EXPECT_STREQ("ans = 1\n", calc.resultLine);
    EXPECT_LE(calc.work.units, 40u);
}

// Each of 1,500 names of each side counts 4: a preview has room for five of such conversions.
TEST_F(UnitWork, TheNamesOfAUnitAreWork) {
    std::string names;
    for (int part = 0; part < 10; part++) {
        const std::string letter(1, static_cast<char>('a' + part));
        std::string definition;
        for (int i = 0; i < 150; i++) {
            const std::string name =
                "Qx" + letter + static_cast<char>('a' + i / 26) + static_cast<char>('a' + i % 26);
            ASSERT_NE(STATUS_ERROR, Enter("unit " + name + "=-primitive"));
            definition += name + " ";
        }
        ASSERT_NE(STATUS_ERROR, Enter("unit part" + letter + "=" + definition));
        names += "part" + letter + " ";
    }
    ASSERT_NE(STATUS_ERROR, Enter("unit u=" + names));
    Enter("g(x)=x u^66->u^66");
    EXPECT_EQ(STATUS_RESULT, Preview("g(1)+g(1)+g(1)+g(1)"));
    EXPECT_GE(calc.work.units, 4 * 2 * 1500 * 4u);
    EXPECT_EQ(STATUS_ERROR, Preview("g(1)" + repeated("+g(1)", 1900)));
    EXPECT_STREQ(TOO_MUCH, calc.message);
    questions = 0;
    stopAt = 1000000;
    calc.interruptCheck = countQuestions;
    EXPECT_EQ(STATUS_RESULT, Enter("g(1)"));
    EXPECT_GE(questions, 2 * 1500 * 4 / 1004);
}

TEST_F(UnitWork, ExponentsBeyondEveryLimitAreRefusedInAPreviewToo) {
    for (const char* exponent :
         {"1001", "18446744073709551616", "18446744073709551615", "36893488147419103233"}) {
        const std::string unit = std::string("s^") + exponent;
        EXPECT_EQ(STATUS_ERROR, Preview("1 " + unit + "*" + unit + "->s"));
        EXPECT_EQ("** ERROR 13: invalid integer exponent in '" + unit + "*" + unit + "' **\n", calc.message);
    }
}

TEST_F(UnitWork, AChainOfSquaresEndsWithAMessageAndTakesNoWork) {
    const auto name = [](int i) {
        return std::string("u") + static_cast<char>('a' + i / 26) + static_cast<char>('a' + i % 26);
    };
    Enter("unit " + name(0) + "=m");
    int i = 1;
    for (; i < 60; i++) {
        const std::string definition = name(i - 1) + " " + name(i - 1);
        if (Enter("unit " + name(i) + "=" + definition) != STATUS_ERROR) continue;
        EXPECT_EQ("** ERROR: '" + definition + "' cannot be reduced to primitive units **\n", calc.message);
        break;
    }
    EXPECT_EQ(17, i); // 2^16 meters fit into 100,000, 2^17 do not
    EXPECT_EQ(STATUS_RESULT, Preview("1 " + name(16) + "->" + name(15) + "^2"));
    EXPECT_LE(calc.work.units, 40u);
}

// The text is work too, whatever stands in it.
TEST_F(UnitWork, LongTextsAreWork) {
    Enter("f(x)=x*(1 m" + repeated("*", 9900) + "->m)");
    EXPECT_EQ(STATUS_RESULT, Preview("f(1)"));
    EXPECT_EQ(STATUS_ERROR, Preview("f(1)" + repeated("+f(1)", 500)));
    EXPECT_STREQ(TOO_MUCH, calc.message);
}

TEST_F(UnitWork, OrdinaryConversionsArePreviewed) {
    EXPECT_EQ(STATUS_RESULT, Preview("5 km->mi"));
    Enter("f(x)=x*(1 km->m)");
    EXPECT_EQ(STATUS_RESULT, Preview("f(1)" + repeated("+f(1)", 499)));
    EXPECT_STREQ("ans = 500000\n", calc.resultLine);
}

TEST_F(UnitWork, AFailedConversionCountsToo) {
    Enter("unit k=1.0000001 radian");
    EXPECT_EQ(STATUS_ERROR, Preview("1 " + EXPENSIVE + "->s*"));
    EXPECT_STREQ(TOO_MUCH, calc.message);
    EXPECT_EQ(STATUS_ERROR, Enter("1 " + EXPENSIVE + "*s->m"));
    EXPECT_GT(calc.work.units, 200000u);
}

// Within one conversion and within one definition.
TEST_F(UnitWork, LongUnitsAskOften) {
    Enter("unit k=1.0000001 radian");
    for (const std::string& entry : {"1 " + EXPENSIVE + "->radian", "unit q=" + EXPENSIVE}) {
        questions = 0;
        stopAt = 1000000;
        calc.interruptCheck = countQuestions;
        EXPECT_NE(STATUS_ERROR, Enter(entry));
        EXPECT_GE(questions, 200);
        questions = 0;
        stopAt = 100;
        Enter("del q");
        EXPECT_EQ(INTERRUPTED, Answer(entry));
        EXPECT_EQ(100, questions);
        calc.interruptCheck = nullptr;
    }
    EXPECT_EQ("unit k=1.0000001 radian\n", Answer("list units"));
    EXPECT_EQ(STATUS_ERROR, Enter("1 q->radian"));
}

TEST_F(UnitWork, AUnitDeletedByAnInterruptedEntryIsTheSameAsBefore) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q");
    EXPECT_EQ(INTERRUPTED, Interrupted("del B; f25(1)", 2));
    EXPECT_EQ("unit B=12 Q\n", Answer("list units"));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("** deleted unit B **\n", Answer("del B"));
    EXPECT_EQ("** ERROR: variable, unit or function 'B' not found **\n", Answer("del B"));
}

TEST_F(UnitWork, AUnitIsTheSameThoughOneItWasDefinedFromHasChanged) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q; unit Q=5 m");
    EXPECT_EQ(INTERRUPTED, Interrupted("del B; f25(1)", 2));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("ans = 5\n", Answer("1 Q->m"));
}

TEST_F(UnitWork, AUnitRedefinedIdenticallyIsTakenBack) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q; unit Q=5 m");
    EXPECT_EQ(INTERRUPTED, Interrupted("del B; unit B=12 Q; unit D=m; f25(1)", 4));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("unit B=12 Q\nunit Q=5 m\n", Answer("list units"));
    EXPECT_EQ(STATUS_MESSAGE, Enter("unit D=3 m"));
    EXPECT_EQ("ans = 3\n", Answer("1 D->m"));
}

TEST_F(UnitWork, TheCatalogueBuiltByAnInterruptedEntryStays) {
    DefineChain(25);
    unitFreeMemory();
    EXPECT_EQ(INTERRUPTED, Interrupted("1 km->m; unit smoot=1.7018 m; f25(1)", 3));
    EXPECT_EQ("ans = 5000\n", Answer("5 km->m"));
    EXPECT_EQ(STATUS_ERROR, Enter("1 smoot->m"));
}

} // namespace
