// SPDX-License-Identifier: MIT
//
// Definitions as text.
#include "functions_fixture.h"

#include <cstring>
#include <string>

namespace {

TEST_F(Functions, WhatIsPrintedDefinesTheSameFunction) {
    for (const char* line : {"p(x)=x*2",
                             "p()=5",
                             "p(a,b,c)=a+b*c",
                             "p(x)=0x1F+0b11*0o17-x",
                             "p(x)=1.5e-12*x+2.5k-3m",
                             "p(x)=x km->mi",
                             "p(x)=(km->mi)*x",
                             "p(x)=x*(5km/h->m/s)",
                             "p(x)=sin(x)^2+mod(x,3)!",
                             "p(x)=x>=2&&x!=3||x<<2==8",
                             "p(x)=-x--2",
                             "p(x)={[x]}",
                             "p(x)=1,000,000.5*x",
                             "p(x)=p(x)+1",
                             "p(x)=unknown(x)+rate",
                             "p(x)=1e300*x/1e-300",
                             "p(x)=3 m^2->ft^2",
                             "p(x)=x @ 3 | 4 & 5 % 2 > 1",
                             "p(x)=x+1e9999",
                             "p(x)=x-1e9999k",
                             "p(x)=5 km->mi+3 m->ft",
                             "p(x)=(5 km->mi)+(3 m->ft)",
                             "p(x)=[5 km->mi]+3 m->ft",
                             "p(a2e)=a2e-1e-2",
                             "p(x)=x!==6"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc.message;
        const std::string printed = funcs.FindByName("p", -1)->ToString();
        EXPECT_EQ(printed + "\n", calc.message);
        Deq body;
        funcs.FindByName("p", -1)->body->CopyTo(&body);
        Enter("del p");
        ASSERT_EQ(STATUS_MESSAGE, Enter(printed)) << printed << calc.message;
        EXPECT_EQ(printed + "\n", calc.message);
        const Function* again = funcs.FindByName("p", -1);
        ASSERT_EQ(body.count, again->body->count) << printed;
        const node* a = body.first;
        for (const node* b = again->body->first; b; a = a->next, b = b->next) {
            EXPECT_EQ(a->type, b->type) << printed;
            EXPECT_EQ(a->level, b->level) << printed;
            EXPECT_STREQ(a->text ? a->text : "", b->text ? b->text : "") << printed;
            if (a->type != TERM_NUMBER) continue;
            EXPECT_EQ(0, qcmp(*a->value, *b->value)) << printed;
        }
        Enter("del p");
    }
}

TEST_F(Functions, NumbersArePrintedWithoutTheDisplaysSettings) {
    calc.sciMode = SCI_PREFIX;
    calc.sigFigs = 2;
    calc.useSeparator = true;
    calc.displayBase = 16;
    EXPECT_EQ("f(x)=12345.678+x\n", Answer("f(x)=12345.678+x"));
    calc.european = true;
    EXPECT_EQ("f(x)=12345.678+x\n", Answer("f(x)=12345,678+x"));
}

TEST_F(Functions, ANumberAboveTheRangeIsPrintedAsANumberAboveTheRange) {
    EXPECT_EQ("big(x)=x+1e9999\n", Answer("big(x)=x+1e9999"));
    Deq body;
    node* number = body.Push(new node);
    number->type = TERM_NUMBER;
    qfloat value;
    qmov(qone, value);
    qneg(value);
    qinfin(value);
    number->SetValue(value);
    char parameter[] = "x";
    EXPECT_EQ("low(x)=-1e9999", funcs.AddFunction("low", parameter, &body)->ToString());
}

TEST_F(Functions, LongDefinitionsAreCutInTheBufferAlone) {
    const std::string body = "1" + repeated("+1a", 3300); // each of them is shown as 1.0e-18
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(x)=" + body));
    const std::string shown = calc.message;
    EXPECT_EQ(TEXT_SIZE - 1, shown.size());
    EXPECT_EQ('\n', shown.back());
    std::string buffer(TEXT_SIZE + 1, '~');
    const Function* function = funcs.FindByName("f", 1);
    function->FuncToStr(buffer.data());
    EXPECT_EQ(TEXT_SIZE - 1, strlen(buffer.c_str()));
    EXPECT_EQ('~', buffer[TEXT_SIZE]);
    EXPECT_EQ(strlen("f(x)=1") + 3300 * strlen("+1.0e-18"), function->ToString().size());
    const std::string list = Answer("g(x)=x;list");
    EXPECT_EQ("mod(x,d)=x%d\n... 2 more\n", list);
    EXPECT_EQ(STATUS_MESSAGE, Enter("f"));
}

TEST_F(Functions, DefineFunctionAnswersOneOrMinusOne) {
    EXPECT_EQ(1, calc.DefineFunction(" f\t( x )\r\n= x * 2 "));
    EXPECT_STREQ("f(x)=x*2\n", calc.message);
    EXPECT_EQ(-1, calc.DefineFunction(""));
    EXPECT_STREQ("** ERROR: can't define an empty function **\n", calc.message);
    for (const char* text : {"f", "f(", "f()", "f(x", "f(x)", "f(x)=", "(x)=x", "f(x)x=x"})
        EXPECT_EQ(-1, calc.DefineFunction(text)) << text;
    EXPECT_EQ("ans = 4\n", Answer("f(2)"));
}

// --- Definitions that were kept from an earlier run ---

TEST_F(Functions, AKeptDefinitionMayCallWhatIsNotThere) {
    EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction("f(x)=g(x,1)+h(x)", true));
    EXPECT_STREQ("f(x)=g(x,1)+h(x)\n", calc.message);
    EXPECT_EQ("** Unrecognized function: h **\n", Answer("g(x,y)=x-y;f(5)"));
    EXPECT_EQ("ans = 14\n", Answer("h(x)=2*x;f(5)")); // 5-1+10
    EXPECT_EQ(STATUS_ERROR, calc.DefineFunction("f(x)=k(x,1)+", true));
    EXPECT_EQ("ans = 14\n", Answer("f(5)"));
}

// g was unknown there: its comma is part of a name.
TEST_F(Functions, ADefinitionThatWasAcceptedCanBeKept) {
    for (const std::string text : {"f(x)=g(1,<5)", "f(x)=g(x,)", "f(x)=g(1a,/5)", "f(x)=5 .->mm"}) {
        EXPECT_EQ(text + "\n", Answer(text + ";"));
        EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction(text.c_str(), true)) << calc.message;
        EXPECT_EQ(text + "\n", calc.message);
    }
}

TEST_F(Functions, AKeptDefinitionTakesThePlaceOfAPredefinedFunction) {
    EXPECT_EQ(STATUS_ERROR, calc.DefineFunction("sin(x)=x*1000"));
    EXPECT_EQ(STATUS_ERROR, calc.DefineFunction("sin(x)=x+*1000", true));
    EXPECT_EQ("ans = 0\n", Answer("sin(0)"));
    EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction("Sin(x)=x*1000", true));
    EXPECT_EQ("ans = 2000\n", Answer("sin(2)"));
    EXPECT_EQ(STATUS_ERROR, calc.DefineFunction("logistic(x)=1/(1+x)"));
    EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction("logistic(x)=1/(1+x)", true));
    EXPECT_EQ("ans = 0.25\n", Answer("logistic(3)"));
    EXPECT_EQ("ans = 3\n", Answer("log2(8)"));
}

TEST_F(Functions, ADefinitionThatIsLongerThanAnEntryMarksItsConversions) {
    const std::string text = "f(x)=x*(3 km->m)+(2 m->cm)" + repeated("+0", TEXT_SIZE);
    EXPECT_EQ(STATUS_MESSAGE, calc.DefineFunction(text.c_str()));
    EXPECT_EQ("ans = 15200\n", Answer("f(5)"));
}

TEST_F(Functions, ArgumentListsAreCheckedPieceByPiece) {
    EXPECT_TRUE(calc.IsValidArgList("x"));
    EXPECT_TRUE(calc.IsValidArgList("x,y_1,Z"));
    EXPECT_FALSE(calc.IsValidArgList(""));
    EXPECT_STREQ("** ERROR: invalid argument:  **\n", calc.message);
    EXPECT_FALSE(calc.IsValidArgList("x,2y,3z"));
    EXPECT_STREQ("** ERROR: invalid argument: 2y **\n", calc.message);
    EXPECT_FALSE(calc.IsValidArgList("x,"));
    EXPECT_FALSE(calc.IsValidArgList("_x"));
}

} // namespace
