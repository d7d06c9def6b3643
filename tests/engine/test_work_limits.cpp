// SPDX-License-Identifier: MIT
//
// Nothing typed may hang: the limits of previews, of copies and of recursion.
#include "Helpers_String.h"
#include "functions_fixture.h"
#include "questions.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

TEST_F(Functions, APreviewOfTooMuchWorkShowsNothing) {
    DefineChain(25);
    EXPECT_EQ(STATUS_ERROR, Preview("f25(1)"));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_LE(calc.work.reduced, 20001u);
    EXPECT_EQ(STATUS_ERROR, Preview("1;f25(1);2"));
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_EQ(STATUS_RESULT, Preview("f10(1)"));
    EXPECT_STREQ("ans = 1024\n", calc.resultLine);
    EXPECT_EQ("ans = 131072\n", Answer("f17(1)")); // an entry has no such limit
}

TEST_F(Functions, APreviewsStatementsShareItsLimit) {
    DefineChain(11);
    ASSERT_EQ(STATUS_RESULT, Preview("f11(1)"));
    EXPECT_EQ(STATUS_ERROR, Preview(repeated("f11(1);", 900)));
    EXPECT_EQ(STATUS_RESULT, Preview("f11(1)"));
}

TEST_F(Functions, APreviewOfTooManyCopiesShowsNothing) {
    Enter("wide(x)=x" + repeated("+x", 4900));
    Enter("wider(x)=wide(x)" + repeated("+wide(x)", 500));
    EXPECT_EQ(STATUS_ERROR, Preview("wider(1)"));
    EXPECT_LE(3 * calc.work.reduced + calc.work.copied, 60000u + 9801u); // a body is copied whole
    Enter("again(x)=x" + repeated("+x", 4900) + "+again(x)");
    EXPECT_EQ(STATUS_ERROR, Preview("again(1)"));
    EXPECT_LE(calc.work.copied, 60000u + 9807u);
}

// Each of these would format a result: 150 of 60,000.
TEST_F(Functions, APreviewOfTooManyStatementsShowsNothing) {
    EXPECT_EQ(STATUS_RESULT, Preview(repeated("1;", 400)));
    EXPECT_STREQ("ans = 1\n", calc.resultLine);
    EXPECT_EQ(STATUS_ERROR, Preview(repeated("1;", 401)));
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
    EXPECT_EQ(STATUS_RESULT, Enter(repeated("1;", 999)));
}

// 2^32000 has 32,001 bits, 1,000 units beside the 150 of a result, the 3 of the operator and the 24 of the
// power: 60,000 / 1,177 = 50.
TEST_F(Functions, APreviewOfTooManyLongResultsShowsNothing) {
    for (const int base : {10, 16, 2}) {
        calc.displayBase = base;
        EXPECT_EQ(STATUS_RESULT, Preview(repeated("2^32000;", 50)));
        EXPECT_EQ(STATUS_ERROR, Preview(repeated("2^32000;", 51)));
        EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
        EXPECT_EQ(STATUS_RESULT, Preview(repeated("1;", 400)));
    }
}

// Two operators are 6, the sine 24 and each of the two results 150: (60,000 - 300) / 30 = 1990 sines.
TEST_F(Functions, APreviewOfTooManyExpensiveOperationsShowsNothing) {
    const auto line = [](const char* operation, size_t times) {
        return "0" + repeated(operation, times / 2) + ";0" + repeated(operation, times - times / 2);
    };
    for (const char* operation : {"+sin(1)", "+tan(1)", "+exp(1)", "+ln(2)", "+1^1", "+9!", "+abs(1)"}) {
        EXPECT_EQ(STATUS_RESULT, Preview(line(operation, 1990))) << operation;
        EXPECT_EQ(STATUS_ERROR, Preview(line(operation, 1991))) << operation;
        EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
        EXPECT_EQ(STATUS_RESULT, Enter(line(operation, 1991)));
    }
    // A logarithm's base takes a second logarithm: 54.
    for (const char* operation : {"+log(2)", "+log3(2)"}) {
        EXPECT_EQ(STATUS_RESULT, Preview(line(operation, 1105))) << operation;
        EXPECT_EQ(STATUS_ERROR, Preview(line(operation, 1106))) << operation;
    }
}

// 10^18860 has 62,652 bits, which is 244 units beside the 6 of two operators: (60,000 - 150) / 250 = 239.
TEST_F(Functions, APreviewOfTooManyLongRemaindersShowsNothing) {
    EXPECT_EQ(STATUS_RESULT, Preview("0" + repeated("+1e9860%1e-9000", 239)));
    EXPECT_EQ(STATUS_ERROR, Preview("0" + repeated("+1e9860%1e-9000", 240)));
    EXPECT_EQ(STATUS_RESULT, Preview("0" + repeated("+7%3", 2400)));
}

// No operand is copied or looked up again while it grows.
TEST_F(Functions, ALineIsScannedInTheTimeThatItsLengthTakes) {
    Enter("a2e=3");
    for (const char* piece :
         {"1e-", "1e+", ".5e-",  "1E-",     "a2e-",      "b2e-", "b2e-1e-", "1,000", "1e", "abc",
          "12",  "a+",  "0x1e-", "sin(1)*", "log_2(1)-", "!",    "m*",      "->",    "(",  "{1e-1}+"}) {
        for (const char* head : {"", "1", "h(a,b2e)=", "1 "}) {
            const std::string line = head + repeated(piece, 9900 / strlen(piece)) + "1";
            for (const bool tenKey : {false, true}) {
                calc.tenKey = tenKey;
                if (*head == 'h')
                    Enter(line); // a preview reads no definition
                else
                    Preview(line);
                // Adding-machine entry looks names up once more.
                EXPECT_LE(calc.work.looked, (tenKey ? 3 : 2) * line.size()) << head << piece;
                EXPECT_GT(calc.work.looked, 0u) << head << piece;
                calc.tenKey = false;
            }
        }
    }
}

// The variables are found through an index, which has to follow every way in which the list changes.
TEST_F(Functions, VariablesAreFoundAfterEveryChange) {
    const auto firstOfName = [this](const std::string& name) -> node* {
        for (node* variable = calc.vars.first; variable; variable = variable->next) {
            if (name == variable->text) return variable;
        }
        return nullptr;
    };
    uint32_t random = 1;
    for (int step = 0; step < 3000; step++) {
        random = random * 1664525 + 1013904223;
        const std::string name = "v" + std::to_string((random >> 16) % 40);
        switch ((random >> 8) % 8) {
        case 0: Enter("del " + name); break;
        case 1: calc.vars.Push(strDuplicate(name))->SetValue(qone); break;
        case 2: calc.vars.Insert(strDuplicate(name), 1)->SetValue(qone); break;
        case 3:
            if (step % 50 == 0) Enter("del all");
            break;
        case 4: Enter("del " + name + "; " + name + "=1"); break;
        default: Enter(name + "=2"); break;
        }
        if (step % 3 == 0) continue; // several changes at once
        for (int i = 0; i < 40; i++) {
            const std::string other = "v" + std::to_string(i);
            ASSERT_EQ(firstOfName(other), calc.VariableExists(other.c_str())) << step;
        }
        ASSERT_EQ(calc.vars.first, calc.VariableExists("ans"));
    }
}

TEST_F(Functions, AListIsFormattedAsFarAsItFits) {
    const std::string body = "x" + repeated("+1.5e-300", 1105);
    for (int i = 0; i < 120; i++) Enter("f" + std::to_string(i) + "(x)=" + body);
    Enter("list");
    EXPECT_STREQ("mod(x,d)=x%d\n... 120 more\n", calc.message);
    EXPECT_EQ(3u + (1 + 2 * 1105), calc.work.listed); // the first that does not fit is the last
}

const ZqCalculator* watched = nullptr;
uint64_t lastCheck = 0;
uint64_t longestWork = 0; // operators, copied and listed terms between two checks

// A statement begins with a check, and counts from 0.
bool measureQuestions() {
    const uint64_t now = watched->work.reduced + watched->work.copied + watched->work.listed;
    if (questions > 0) longestWork = std::max(longestWork, now < lastCheck ? now : now - lastCheck);
    lastCheck = now;
    return countQuestions();
}

void stopAfter(ZqCalculator& calc, int number) {
    questions = 0;
    stopAt = number;
    longestWork = 0;
    watched = &calc;
    calc.interruptCheck = measureQuestions;
}

TEST_F(Functions, ALongEntryIsAskedOftenAndStops) {
    DefineChain(25);
    stopAfter(calc, 200);
    EXPECT_EQ("** ERROR: interrupted **\n", Answer("y=f25(1)"));
    EXPECT_TRUE(calc.interrupted);
    EXPECT_EQ(nullptr, calc.VariableExists("y"));
    EXPECT_LE(3 * calc.work.reduced + calc.work.copied, 200u * 1010u);
}

TEST_F(Functions, EveryStatementOfAnEntryAsks) {
    for (const char* statement : {"list;", "mod;", "disp pi;", ";", "1;"}) {
        stopAfter(calc, 6);
        EXPECT_EQ("** ERROR: interrupted **\n", Answer(repeated(statement, 999))) << statement;
        EXPECT_TRUE(calc.interrupted);
        EXPECT_EQ(6, questions);
    }
    stopAfter(calc, 1000000);
    EXPECT_EQ(STATUS_MESSAGE, Enter(repeated("list;", 999)));
    EXPECT_EQ(999, questions); // its three terms are too few for another question
}

TEST_F(Functions, ASingleStatementAsksBeforeItRuns) {
    for (const char* statement : {"x=1", "del mod", "f(x)=x", "mode rad", "gospel", "unit fur=220 yard"}) {
        stopAfter(calc, 1);
        EXPECT_EQ("** ERROR: interrupted **\n", Answer(statement));
    }
    calc.interruptCheck = nullptr;
    EXPECT_EQ(nullptr, calc.VariableExists("x"));
    EXPECT_EQ("mod(x,d)=x%d\n", Answer("list"));
    EXPECT_EQ("", Answer("list units"));
    EXPECT_EQ(STATUS_MESSAGE, Enter("gospel"));
}

// One body is copied whole.
TEST_F(Functions, TheWorkBetweenTwoChecksIsShort) {
    Enter("wide(x)=x" + repeated("+x", 4900));
    stopAfter(calc, 1000000);
    Enter("0" + repeated("+sin(1e99)", 990));
    // A sine counts 27 with its parentheses, a '+' 3. A question comes after 1,000 units, or with the sine
    // behind them.
    EXPECT_GE(questions, 1 + 990 * 30 / 1027);
    EXPECT_LE(questions, 1 + 990 * 30 / 1000);
    EXPECT_LE(longestWork, 1003u / 3); // the operators behind the sines
    stopAfter(calc, 1000000);
    Enter("1" + repeated("+wide(1)", 100));
    EXPECT_GT(questions, 1500);
    EXPECT_LE(longestWork, 1000u + 9801u);
    Enter("long(x)=x" + repeated("+1e-9000", 1200));
    stopAfter(calc, 1000000);
    Enter(repeated("long;list;", 20));
    // A statement begins with a check. Listed are "x%d", "wide" and "long", though there is no room for the
    // last.
    const int wideTerms = 1 + 2 * 4900;
    const int longTerms = 1 + 2 * 1200;
    // A listed term counts 40, so that 26 are more than 1,000.
    EXPECT_EQ(20 * (1 + longTerms / 26 + 1 + (3 + wideTerms + longTerms) / 26), questions);
    EXPECT_LE(longestWork, 26u);
}

TEST_F(Functions, AListingCanBeInterruptedInTheMiddle) {
    const std::string definition = "long(x)=x" + repeated("+1e-9000", 900);
    Enter(definition);
    for (const char* statement : {"long", "list"}) {
        stopAfter(calc, 4);
        EXPECT_EQ("** ERROR: interrupted **\n", Answer(statement));
        EXPECT_TRUE(calc.interrupted);
        EXPECT_LE(calc.work.listed, 3u * 26u);
        stopAfter(calc, 1000000);
        EXPECT_NE(std::string::npos, Answer(statement).find("1.0e-9000"));
        EXPECT_FALSE(calc.interrupted);
    }
}

// A definition is shown when it is made, which takes as long.
TEST_F(Functions, ADefinitionCanBeInterruptedWhileItIsShown) {
    Enter("long(x)=x");
    const std::string definition = "long(x)=x" + repeated("+1e-9000", 900);
    stopAfter(calc, 1000000);
    EXPECT_EQ(STATUS_MESSAGE, Enter(definition));
    EXPECT_EQ(1 + 1801 / 26, questions);
    EXPECT_LE(longestWork, 26u);
    EXPECT_EQ(STATUS_MESSAGE, Enter("long(x)=x"));
    stopAfter(calc, 4);
    EXPECT_EQ("** ERROR: interrupted **\n", Answer(definition));
    EXPECT_TRUE(calc.interrupted);
    calc.interruptCheck = nullptr;
    EXPECT_EQ("long(x)=x\n", Answer("long"));
}

TEST_F(Functions, TheStatementsOfAnInterruptedEntryAreTakenBack) {
    DefineChain(25);
    Enter("a=1;b=2;del2=3;sigfigs 7;mode deg;5");
    Enter("keep(x)=x+1");
    Enter("gone(x)=x+2");
    calc.unitDefs.Push(strDuplicate("unit fur=220 yard"));
    const std::string functionsBefore = Answer("list");
    Enter("b=2");
    stopAfter(calc, 18 + 3); // in the last of the 18 statements
    EXPECT_EQ("** ERROR: interrupted **\n",
              Answer("a=10; c=4; del b; sigfigs 50; mode rad; scimode eng; display hex; european on;"
                     "histstack off; keep(x)=x; keep(x)=x*2; del gone; fresh(x)=x; del sqrt; del fur; "
                     "gospel; 7; f25(1)"));
    EXPECT_GT(calc.work.reduced, 10u);
    calc.interruptCheck = nullptr;
    EXPECT_EQ("ans = 1\n", Answer("a"));
    EXPECT_EQ("ans = 2\n", Answer("b"));
    EXPECT_EQ("** ERROR 7: invalid term = c **\n", Answer("c"));
    EXPECT_EQ(functionsBefore, Answer("list"));
    EXPECT_EQ("ans = 3\n", Answer("sqrt(9)"));
    EXPECT_STREQ("sqrt", funcs.Get(18)->name);
    EXPECT_EQ("unit fur=220 yard\n", Answer("list units"));
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(7, calc.sigFigs);
    EXPECT_EQ(SCI_AUTO, calc.sciMode);
    EXPECT_EQ(10, calc.displayBase);
    EXPECT_FALSE(calc.european);
    EXPECT_TRUE(calc.histStack);
    EXPECT_EQ(STATUS_MESSAGE, Enter("gospel"));
    ASSERT_NE(nullptr, calc.vars.first);
    EXPECT_STREQ("ans", calc.vars.first->text);
}

TEST_F(Functions, AnEntryInterruptedAfterDelAllHasItsVariables) {
    DefineChain(25);
    Enter("a=1;b=a/3");
    Enter("42");
    stopAfter(calc, 3 + 1);
    EXPECT_EQ("** ERROR: interrupted **\n", Answer("del all; x=1; f25(1)"));
    EXPECT_GT(calc.work.reduced, 10u);
    calc.interruptCheck = nullptr;
    EXPECT_STREQ("42", calc.lastAnswer);
    EXPECT_STREQ("ans", calc.lastName);
    EXPECT_EQ("ans = 42\n", Answer("ans"));
    EXPECT_EQ("ans = 1\n", Answer("b*3"));
    EXPECT_EQ(4, calc.vars.count);
    EXPECT_EQ("ans = 8\n", Answer("x=8;f1(x)-1"));
}

TEST_F(Functions, AnEntryThatIsNotInterruptedKeepsItsChanges) {
    stopAfter(calc, 1000000);
    EXPECT_EQ("ans = 3\n", Answer("f(x)=x; del mod; f(x)=x+1; f(2)"));
    EXPECT_EQ("f(x)=x+1\n", Answer("list"));
    EXPECT_EQ("** ERROR: divide by zero **\n", Answer("g(x)=x;y=1;1/0"));
    EXPECT_EQ("ans = 1\n", Answer("y"));
    EXPECT_EQ("g(x)=x\n", Answer("g"));
}

TEST_F(Functions, CircularFunctionsEndWithTheirError) {
    const char* const error = "** ERROR 5.1: circular function suspected: f **\n";
    Enter("f(x)=f(x)+1");
    EXPECT_EQ(error, Answer("f(1)"));
    Enter("f(x)=f(x)+f(x)");
    EXPECT_EQ(error, Answer("f(1)"));
    // The list of terms has a limit too, however long the body is.
    Enter("f(x)=x" + repeated("+x", 4900) + "+f(x)");
    EXPECT_EQ(error, Answer("f(1)"));
    EXPECT_LE(calc.work.copied, 250000u);
    Enter("g(x)=x");
    Enter("f(x)=g(x)+1");
    Enter("g(x)=f(x)+1");
    EXPECT_EQ(error, Answer("f(1)"));
    EXPECT_EQ("** ERROR 5.1: circular function suspected: g **\n", Answer("g(1)"));
}

TEST_F(Functions, LongArgumentsAreNotCopiedWithoutEnd) {
    Enter("f(x,y)=x" + repeated("+x", 4000));
    const std::string name(9900, 'a');
    EXPECT_EQ("** ERROR 5.1: circular function suspected: f **\n", Answer("f(" + name + ",1)"));
    Enter("g(x)=" + name);
    Enter("f(x)=g(1)" + repeated("+g(1)", 1900) + "+f(x)");
    EXPECT_EQ("** ERROR 5.1: circular function suspected: g **\n", Answer("f(1)"));
}

TEST_F(Functions, TheDigitsOfALongNumberAreNotCopied) {
    Enter("f(x,y)=x" + repeated("+x", 4000));
    EXPECT_EQ("ans = 4001\n", Answer("f(0x" + std::string(9900, '0') + "1,1)"));
    const std::string definition = "g(x)=0x" + std::string(9900, '0') + "1";
    EXPECT_EQ(definition + "\n", Answer(definition));
    EXPECT_EQ("ans = 1900\n", Answer("g(1)" + repeated("+g(1)", 1899)));
    EXPECT_EQ(definition + "\n", Answer("g"));
}

} // namespace
