// SPDX-License-Identifier: MIT
#include "Calculator.h"
#include "Helpers_String.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

std::string repeated(const std::string& text, size_t times) {
    std::string out;
    for (size_t i = 0; i < times; i++) out += text;
    return out;
}

class Engine : public testing::Test {
protected:
    Engine() {
        deleteAllFunctions();
        deleteAllUnits();
        calc.InitializeFunctionsAndVars();
    }

    ZqCalculator calc;

    int Enter(const std::string& line) { return calc.ProcessEntry(line.c_str(), false); }
    int Preview(const std::string& line) { return calc.ProcessEntry(line.c_str(), true); }

    // The line's answer, whatever its status.
    std::string Answer(const std::string& line) {
        return Enter(line) == STATUS_RESULT ? calc.resultLine : calc.message;
    }
};

TEST(NewEngine, HasTheDocumentedDefaults) {
    ZqCalculator calc;
    EXPECT_TRUE(calc.fullEntry);
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_FALSE(calc.european);
    EXPECT_TRUE(calc.histStack);
    EXPECT_FALSE(calc.tenKey);
    EXPECT_EQ(10, calc.displayBase);
    for (const Deq* list : {&calc.unitDefs, &calc.vars, &calc.terms}) EXPECT_EQ(0, list->count);
    for (const char* text : {calc.message, calc.echoText, calc.resultLine, calc.lastAnswer})
        EXPECT_STREQ("", text);
    EXPECT_EQ(0, qcmp(qzero, calc.result));
    EXPECT_EQ(nullptr, calc.lastValue);
    EXPECT_EQ(nullptr, calc.lastName);
    EXPECT_EQ(0, calc.entryCount);
    EXPECT_EQ(0, calc.history.count);
    EXPECT_FALSE(calc.initialized);
    EXPECT_FALSE(calc.interrupted);
}

TEST(NewEngine, WorksWithoutInitialization) {
    ZqCalculator calc;
    EXPECT_EQ(STATUS_RESULT, calc.ProcessEntry("2+2", false));
    EXPECT_STREQ("ans = 4\n", calc.resultLine);
    EXPECT_EQ(STATUS_MESSAGE, calc.ProcessEntry(nullptr, false));
}

TEST_F(Engine, AnEmptyLineRepeatsTheVeryFirstEntry) {
    EXPECT_EQ("ans = 7\n", Answer("ans+7"));
    EXPECT_EQ("ans = 14\n", Answer(""));
}

TEST_F(Engine, StartsWithAnsAndPi) {
    EXPECT_TRUE(calc.initialized);
    ASSERT_EQ(2, calc.vars.count);
    EXPECT_STREQ("ans", calc.vars.first->text);
    EXPECT_EQ(0, qcmp(qzero, *calc.vars.first->value));
    EXPECT_STREQ("pi", calc.vars.last->text);
    EXPECT_EQ(0, qcmp(qpi, *calc.vars.last->value));
}

TEST_F(Engine, KeepsTheLastAnswerAndItsName) {
    EXPECT_EQ(STATUS_RESULT, Enter("x=3/2"));
    EXPECT_STREQ("x", calc.lastName);
    EXPECT_EQ(nullptr, calc.lastValue);
    EXPECT_STREQ("1.5", calc.lastAnswer);
    EXPECT_STREQ("x = 1.5\n", calc.resultLine);
    EXPECT_EQ(STATUS_ERROR, Enter("1/0"));
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_STREQ("1.5", calc.lastAnswer);
    EXPECT_EQ(2, calc.entryCount);
    EXPECT_EQ(2, calc.history.count);
}

TEST_F(Engine, APreviewStoresNothing) {
    Enter("x=7");
    EXPECT_EQ(STATUS_RESULT, Preview("y=x*2"));
    EXPECT_STREQ("ans = 14\n", calc.resultLine);
    EXPECT_STREQ("7", calc.lastAnswer);
    ASSERT_NE(nullptr, calc.lastValue);
    EXPECT_EQ(calc.vars.first->value, calc.lastValue);
    EXPECT_STREQ("ans", calc.lastName);
    EXPECT_EQ(3, calc.vars.count);
    EXPECT_EQ(0, qcmp(qzero, *calc.vars.first->value));
    EXPECT_EQ(1, calc.entryCount);
    EXPECT_EQ(1, calc.history.count);
}

// The field tells it, not the text, which is digits in other bases.
TEST_F(Engine, AnAnswerBeyondTheRangeIsToldInEveryBase) {
    for (const int base : {10, 16, 2}) {
        calc.displayBase = base;
        EXPECT_EQ(STATUS_RESULT, Enter("1e10000"));
        EXPECT_TRUE(calc.overflowed);
        EXPECT_EQ(STATUS_RESULT, Enter("1"));
        EXPECT_FALSE(calc.overflowed);
    }
    Enter("1e10000");
    EXPECT_EQ(STATUS_MESSAGE, Enter("mode deg"));
    EXPECT_FALSE(calc.overflowed);
}

TEST_F(Engine, AFullEntryEmptiesTheTexts) {
    Enter("1/0");
    snprintf(calc.echoText, sizeof calc.echoText, "old");
    Enter("2");
    EXPECT_STREQ("", calc.message);
    EXPECT_STREQ("", calc.echoText);
    Enter("1/0");
    snprintf(calc.echoText, sizeof calc.echoText, "old");
    Preview("2");
    EXPECT_STREQ("** ERROR: divide by zero **\n", calc.message);
    EXPECT_STREQ("old", calc.echoText);
}

TEST_F(Engine, ANewEntryEndsTheBrowsingOfTheHistory) {
    Enter("1");
    calc.history.HistLocUp();
    Preview("2");
    EXPECT_EQ(1, calc.history.location);
    Enter("2");
    EXPECT_EQ(0, calc.history.location);
}

TEST_F(Engine, TheLineThatTurnsTheHistoryOffIsNotRecorded) {
    Enter("1");
    Enter("histstack off");
    Enter("HistStack OFF again");
    EXPECT_STREQ("1", calc.history.GetHistoryStr(1));
    calc.histStack = false;
    Enter("2");
    EXPECT_STREQ("1", calc.history.GetHistoryStr(1));
}

TEST_F(Engine, DoubleSemicolonsSplitTheHistory) {
    Enter("1;;2");
    EXPECT_STREQ("2", calc.history.GetHistoryStr(1));
    EXPECT_STREQ("1", calc.history.GetHistoryStr(2));
}

TEST_F(Engine, TakesLinesOfAnyLength) {
    EXPECT_EQ("ans = 5000\n", Answer(repeated(" ", 9000) + "1000;" + repeated(" ", 9000) + "ans*5"));
    EXPECT_EQ("ans = 1\n", Answer("1#" + std::string(1000000, 'x')));
    EXPECT_EQ("** ERROR: 10000 max characters **\n", Answer(std::string(10000, '1')));
    EXPECT_EQ("** ERROR: 10000 max characters **\n", Answer(std::string(1000000, '(')));
    EXPECT_EQ("ans = 4\n", Answer("2+2"));
}

TEST_F(Engine, ALineEndsAtANul) {
    Enter("x=5");
    for (const bool quick : {false, true}) {
        EXPECT_EQ(STATUS_RESULT, calc.ProcessEntry(std::string_view("x+1\0+1", 6), quick));
        EXPECT_STREQ("ans = 6\n", calc.resultLine);
        EXPECT_EQ(STATUS_RESULT, calc.ProcessEntry(std::string_view("x\0", 2), quick));
        EXPECT_STREQ("ans = 5\n", calc.resultLine);
    }
}

TEST_F(Engine, DefinesAFunctionBehindAnInterruptedEntry) {
    calc.interruptCheck = [] { return true; };
    EXPECT_EQ(STATUS_ERROR, Enter("1+1"));
    calc.interruptCheck = nullptr;
    EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction("behind(x)=x"));
    EXPECT_STREQ("behind(x)=x\n", calc.message);
}

TEST_F(Engine, RunsAtMost999Statements) {
    EXPECT_EQ("ans = 998\n", Answer("ans=0" + repeated(";ans+1", 998) + ";5"));
    Enter("ans=0");
    EXPECT_EQ("ans = 999\n", Answer(repeated("ans+1;", 2000)));
    Enter("ans=0");
    EXPECT_EQ("ans = 999\n", Answer(repeated("ans+1;", 999)));
}

TEST_F(Engine, TheLongestNumbersAreStillReadWhole) {
    const std::string digits(9999, '7');
    calc.sigFigs = 10;
    EXPECT_EQ(STATUS_RESULT, Enter(digits.substr(0, 30) + "+1"));
    calc.sciMode = SCI_NEVER;
    EXPECT_EQ("ans = " + std::string(29, '7') + "8\n", Answer(digits.substr(0, 30) + "+1"));
}

TEST_F(Engine, ANumberThatOutgrowsTheLineIsShownWithAnExponent) {
    calc.sciMode = SCI_NEVER;
    calc.sigFigs = 4;
    EXPECT_EQ("ans = 1" + std::string(9800, '0') + "\n", Answer("1e9800"));
    calc.useSeparator = true;
    EXPECT_EQ("ans = 1.000e9800\n", Answer("1e9800"));
    EXPECT_STREQ("1.000e9800", calc.lastAnswer);
}

TEST_F(Engine, ALongUnknownNameThatFitsTheMessageIsShownWhole) {
    const std::string name(9900, 'x');
    EXPECT_EQ("** ERROR 7: invalid term = " + name + " **\n", Answer(name));
}

TEST_F(Engine, ErrorsKeepTheirFrameHoweverLongTheTermIs) {
    const std::string answer = Answer(std::string(9999, 'x'));
    EXPECT_EQ("** ERROR 7: invalid term = xxx", answer.substr(0, 30));
    EXPECT_EQ("xxx **\n", answer.substr(answer.size() - 7));
    const std::string marks = Answer("a" + repeated("\x11", 9000) + "=1");
    EXPECT_EQ("** ERROR", marks.substr(0, 8));
    EXPECT_EQ(" **\n", marks.substr(marks.size() - 4));
}

TEST_F(Engine, AVariableWithABadNameIsDeletedAndReported) {
    node* variable = calc.vars.Push(strDuplicate("a-b"));
    variable->type = TERM_NAME;
    variable->SetValue(qone);
    EXPECT_EQ("** ERROR: invalid variable name: a-b **\n", Answer("1"));
    EXPECT_EQ(2, calc.vars.count);
    EXPECT_EQ("ans = 1\n", Answer("1"));
}

// A program that embeds the engine owns the list.
TEST_F(Engine, AVariableWithoutANameIsReportedAndDeletedByAnEntry) {
    calc.vars.Push(static_cast<char*>(nullptr))->SetValue(qone);
    EXPECT_EQ(STATUS_ERROR, Preview("1"));
    EXPECT_STREQ("** ERROR: invalid variable name:  **\n", calc.message);
    EXPECT_EQ(3, calc.vars.count) << "a preview deletes nothing";
    EXPECT_EQ("** ERROR: invalid variable name:  **\n", Answer("1"));
    EXPECT_EQ(2, calc.vars.count);
    EXPECT_EQ("ans = 1\n", Answer("1"));
}

TEST_F(Engine, APrintedInfinityIsAnOverflow) {
    EXPECT_EQ(STATUS_ERROR, calc.Calculate("1.#INF"));
    EXPECT_STREQ("** ERROR: + overflow **\n", calc.message);
    EXPECT_EQ(STATUS_ERROR, calc.Calculate("0.#INF"));
    EXPECT_STREQ("** ERROR: - overflow **\n", calc.message);
    EXPECT_EQ(STATUS_ERROR, calc.Calculate("1.#INFX"));
    EXPECT_STREQ("** ERROR 7: invalid term = 1.#INFX **\n", calc.message);
}

TEST_F(Engine, UnknownOperatorCodesAreReported) {
    ASSERT_EQ(0, calc.ProcessStr("1+2"));
    EXPECT_EQ(nullptr, calc.ProcPair(calc.terms.first->next, 'A'));
    EXPECT_STREQ("** ERROR 16Q: invalid op:A (65) **\n", calc.message);
}

TEST_F(Engine, TheResultIsSnappedToANearInteger) {
    EXPECT_EQ("ans = 3\n", Answer("2+1-1e-90"));
    EXPECT_EQ(0, qcmp(qthree, calc.result));
    EXPECT_EQ("ans = 1.0e-90\n", Answer("1e-90"));
}

TEST_F(Engine, ArithmeticErrorsAreReportedByNameAndText) {
    const char* const errors[] = {"unknown",
                                  "result is imaginary",
                                  "singularity",
                                  "overflow",
                                  "underflow",
                                  "total loss of precision",
                                  "partial loss of precision"};
    char out[TEXT_SIZE];
    for (int code = 1; code <= 6; code++) {
        merror = code;
        EXPECT_EQ(code, checkMathError("f", out));
        EXPECT_EQ("** ERROR: 'f' " + std::string(errors[code]) + " **\n", out);
        EXPECT_EQ(0, merror);
        merror = code;
        EXPECT_EQ(code, checkMathError(nullptr, out));
        EXPECT_EQ("** ERROR: " + std::string(errors[code]) + " **\n", out);
        merror = code;
        EXPECT_EQ(code, checkMathError("f", nullptr));
    }
    for (int code : {-1, 7, 1000}) {
        merror = code;
        EXPECT_EQ(code, checkMathError("f", out));
        EXPECT_STREQ("** ERROR: 'f' unknown **\n", out);
    }
    EXPECT_EQ(0, checkMathError("f", out));
}

TEST_F(Engine, TheTraceLineGoesToStandardOutput) {
    testing::internal::CaptureStdout();
    Enter("(1)");
    EXPECT_EQ("Attempting ProcParenth...\n", testing::internal::GetCapturedStdout());
}

// Without the trace line nobody sees parentheses around one value: they become no terms.
TEST_F(Engine, ParenthesesAroundOneValueChangeNoAnswerWhereTheyAreLeftOut) {
    Enter("f(a)=a+1;x=3");
    for (const char* line :
         {"(1)",     "((x))",      "2*-(3)",   "2^-((3))", "(2)(3)",    "x(3)",     "(x)(3)",     "f((2))",
          "(f(2))",  "f((2),(3))", "(q)",      "1+(q)",    "((q)+1)",   "(3)!",     "((2)",       "(2))",
          "()",      "(())",       "((2)+)",   "*(2)",     "(3 km->m)", "2(km)->m", "3+(4)km->m", "[(0x1F)]",
          "(1,000)", "y=(((7)))",  "-(2)^(2)", "(1)/(0)",  "f((x)(x))"}) {
        std::vector<std::string> seen;
        for (const bool traced : {true, false}) {
            for (const bool quick : {true, false}) {
                calc.traced = traced;
                const int status = calc.ProcessEntry(line, quick);
                seen.push_back(std::to_string(status) + " " +
                               (status == STATUS_RESULT ? calc.resultLine : calc.message) +
                               std::to_string(calc.errorRange.start) + " " +
                               std::to_string(calc.errorRange.length) + " " + std::to_string(calc.opCount) +
                               " " + std::to_string(calc.work.reduced));
            }
        }
        EXPECT_EQ(seen[0], seen[2]) << line;
        EXPECT_EQ(seen[1], seen[3]) << line;
    }
    EXPECT_EQ("ans = 7\n", Answer(repeated("(", 4950) + "7" + repeated(")", 4950)));
    EXPECT_EQ(1u, calc.work.checked);
    EXPECT_EQ(4950u, calc.work.reduced);
}

// As little as before suffices for the parentheses of a preview, and no less.
TEST_F(Engine, ParenthesesThatAreLeftOutTakeTheirShareOfAPreview) {
    const std::string line = "1" + repeated("+(((((((((1)))))))))", 450); // 450 sums, 4,050 pairs
    for (const bool traced : {true, false}) {
        calc.traced = traced;
        for (uint64_t units : {13499u, 13500u}) { // 3 each
            const bool isEnough = units == 13500u;
            EXPECT_EQ(isEnough ? STATUS_RESULT : STATUS_ERROR, calc.CalculateWithin(line.c_str(), units));
            EXPECT_EQ(0u, units);
        }
    }
}

bool stopAlways() {
    return true;
}
bool stopNever() {
    return false;
}

TEST_F(Engine, AnInterruptedEntryAnswersSoAndChangesNothing) {
    const std::string line = "x=1" + repeated("+1", 1000);
    calc.interruptCheck = stopAlways;
    EXPECT_EQ("** ERROR: interrupted **\n", Answer(line));
    EXPECT_TRUE(calc.interrupted);
    EXPECT_EQ(2, calc.vars.count);
    calc.interruptCheck = stopNever;
    EXPECT_EQ("x = 1001\n", Answer(line));
    EXPECT_FALSE(calc.interrupted);
    calc.interruptCheck = stopAlways;
    EXPECT_EQ(STATUS_RESULT, Preview(line));
    EXPECT_EQ("** ERROR: interrupted **\n", Answer("1+1"));
    calc.interruptCheck = stopNever;
    EXPECT_EQ("ans = 2\n", Answer("1+1"));
}

// --- The work grows with the number of terms ---

TEST_F(Engine, OrderingVisitsEachTermOnce) {
    EXPECT_EQ("ans = 7\n", Answer(repeated("(", 4950) + "7" + repeated(")", 4950)));
    EXPECT_EQ(9901u, calc.work.ordered);
    EXPECT_EQ(9901u, calc.work.checked);
    EXPECT_EQ(4950u, calc.work.reduced);
}

TEST_F(Engine, LongSumsTakeOneReductionPerOperator) {
    EXPECT_EQ("ans = 5000\n", Answer("1" + repeated("+1", 4999)));
    EXPECT_EQ(9999u, calc.work.ordered);
    EXPECT_EQ(4999u, calc.work.reduced);
    // 1 - 2 * 1 + 2 * 1 ...: two precedences, one pass.
    EXPECT_EQ("ans = 1\n", Answer("1" + repeated("-2*1+2*1", 1249)));
    EXPECT_EQ(1u + 8u * 1249u, calc.work.ordered);
    EXPECT_EQ(4u * 1249u, calc.work.reduced);
}

TEST_F(Engine, NestedRaisedGroupsAreOnePass) {
    // 2*-(2*-( ... 1)) with an even number of minuses is 2^2480; divided by itself it is 1.
    const std::string group = repeated("2*-(", 1240) + "1" + repeated(")", 1240);
    EXPECT_EQ("ans = 1\n", Answer("x=" + group + ";ans=x/(1<<1240)"));
    EXPECT_EQ(STATUS_RESULT, Enter(group));
    EXPECT_EQ(5u * 1240u + 1u, calc.work.ordered);
    EXPECT_EQ(5u * 1240u + 1u, calc.work.checked);
}

// The order of a line as the rule words it: level by level, precedence by precedence, from left to right.
std::vector<const node*> orderByRule(const Deq& terms) {
    std::vector<const node*> order;
    int32_t highest = 0;
    for (const node* term = terms.first; term; term = term->next) highest = std::max(highest, term->level);
    for (int32_t level = highest; level >= 0; level--) {
        for (int precedence = 1; precedence <= 15; precedence++) {
            for (const node* term = terms.first; term; term = term->next) {
                if (!isOp(term->type) || term->type == OP_CLOSE || term->level != level) continue;
                if (getOp(term->type).precedence == precedence) order.push_back(term);
            }
        }
    }
    return order;
}

TEST_F(Engine, TheOrderIsThatOfTheRule) {
    for (const char* line :
         {"1", "1+2*3-4/5", "(1+2)*((3-4)*5)-6", "2*-(3+4*-(5))", "1<2==3&&4||5&6@7|8", "2^-3^4!",
          "sin(1,2*3)+cos((4))", "5 km->mi", "((1))*((2)+(3))>>4<<5>=6<=7!=8>9%10"}) {
        ASSERT_EQ(0, calc.ProcessStr(line)) << line;
        ASSERT_EQ(0, calc.VerifyTermsSyntax()) << line << calc.message;
        std::vector<node*> order(static_cast<size_t>(calc.opCount) + 1);
        calc.opOrder = order.data();
        calc.OrderOperatorStack();
        calc.opOrder = nullptr;
        size_t number = 0;
        while (order[number]) number++;
        const std::vector<const node*> expected = orderByRule(calc.terms);
        ASSERT_EQ(expected.size(), number) << line;
        for (size_t i = 0; i < number; i++) EXPECT_EQ(expected[i], order[i]) << line << " at " << i;
    }
}

TEST_F(Engine, LevelsAreTheDepthsOfTheParentheses) {
    ASSERT_EQ(0, calc.ProcessStr("1+(2*(3))"));
    ASSERT_EQ(0, calc.VerifyTermsSyntax());
    const int32_t expected[] = {0, 0, 1, 1, 1, 2, 2, 2, 1};
    const node* term = calc.terms.first;
    for (int32_t level : expected) {
        EXPECT_EQ(level, term->level);
        term = term->next;
    }
    EXPECT_EQ(6, calc.opCount);
}

TEST_F(Engine, ARaisedMinusRaisesItsGroup) {
    ASSERT_EQ(0, calc.ProcessStr("2*-(1+2)*3"));
    ASSERT_EQ(0, calc.VerifyTermsSyntax());
    const int32_t expected[] = {0, 0, 1, 2, 2, 2, 2, 2, 0, 0};
    const node* term = calc.terms.first;
    for (int32_t level : expected) {
        EXPECT_EQ(level, term->level);
        term = term->next;
    }
}

TEST_F(Engine, CommasRaiseNoMinus) {
    ASSERT_EQ(0, calc.ProcessStr("sin(2,-3)"));
    ASSERT_EQ(0, calc.VerifyTermsSyntax());
    EXPECT_EQ(OP_SUBTRACT, calc.terms.Get(4)->type);
    EXPECT_EQ(1, calc.terms.Get(4)->level);
}

TEST_F(Engine, ARaisedMinusRaisesACallLikeAGroup) {
    ASSERT_EQ(0, calc.ProcessStr("2*-sin(30)"));
    ASSERT_EQ(0, calc.VerifyTermsSyntax());
    EXPECT_EQ(OP_OPEN, calc.terms.Get(4)->type);
    EXPECT_EQ(2, calc.terms.Get(4)->level);
    EXPECT_EQ(2, calc.terms.Get(6)->level);
}

} // namespace
