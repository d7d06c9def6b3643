// SPDX-License-Identifier: MIT
//
// A call runs the program of its function. The same calls without programs, whose bodies are put into the
// statement and evaluated there, have to give the same in every respect.
#include "../seed.h"
#include "functions_fixture.h"
#include "questions.h"
#include "unitlist.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

class Programs : public Functions {
protected:
    Programs() {
        stopAt = 0;
        calc.interruptCheck = countQuestions;
    }

    // What an entry answers, and all that it took.
    std::string Seen(const std::string& line, bool quick) {
        questions = 0;
        stopAt = 0;
        const int status = calc.ProcessEntry(line.c_str(), quick);
        const WorkCounters& work = calc.work;
        std::string seen = std::to_string(status) + " " + (status == STATUS_RESULT ? "" : calc.message);
        for (const uint32_t word : calc.result)
            seen += std::to_string(status == STATUS_RESULT ? word : 0) + " ";
        for (const uint64_t count : {work.reduced, work.copied, work.checked, work.ordered})
            seen += std::to_string(count) + " ";
        return seen + std::to_string(questions) + " " + std::to_string(calc.errorRange.start) + " " +
               std::to_string(calc.errorRange.length);
    }

    // Until the next function is defined.
    static void DropPrograms() {
        for (Function* function = funcs.Get(0); function; function = funcs.GetNext())
            function->program = Program();
    }

    static bool HasProgram(const char* name) { return funcs.FindByName(name, -1)->program.Exists(); }

    void ExpectTheSameWithoutPrograms(const std::vector<std::string>& definitions,
                                      const std::vector<std::string>& lines) {
        std::vector<std::string> seen;
        for (const bool withPrograms : {true, false}) {
            deleteAllFunctions();
            deleteAllUnits();
            calc.InitializeFunctionsAndVars();
            for (const char* line : {"v=3", "x=2"}) Enter(line);
            for (const std::string& definition : definitions) Enter(definition);
            if (!withPrograms) DropPrograms();
            size_t next = 0;
            for (const std::string& line : lines) {
                for (const bool quick : {true, false}) {
                    const std::string now = Seen(line, quick);
                    if (withPrograms)
                        seen.push_back(now);
                    else
                        EXPECT_EQ(now, seen[next++]) << line << (quick ? " as a preview" : "");
                }
            }
        }
    }
};

TEST_F(Programs, ArithmeticCallsAndParenthesesHaveOne) {
    for (const char* body : {"x", "(x)", "-x", "2*-(x+1)", "sin(x)", "sin((x))", "mod(x,mod(3,x))", "x!^2",
                             "unknown", "f(x)+mod(1,x)", "v+pi", "0x10+x", "x km->mi", "5 km->mi", "km->mi",
                             "2*(x+1)lb->kg/x", "sin(x rad->deg)^2", "5 x->mi", "5 km->x"}) {
        Enter(std::string("f(x)=") + body);
        EXPECT_TRUE(HasProgram("f")) << body;
    }
    for (const char* body : {"2(x)", "(x)(x)", "x(2)", "2+km->m", "mod(x,(1)(2))"}) {
        Enter(std::string("f(x)=") + body);
        EXPECT_FALSE(HasProgram("f")) << body;
    }
    EXPECT_FALSE(HasProgram("sin"));
}

TEST_F(Programs, EndAsExpandedBodiesDo) {
    const std::vector<std::string> definitions = {"ident(x)=x",
                                                  "paren(x)=(x)",
                                                  "inc(x)=x+1",
                                                  "two(x,y)=x*y+inc(x)",
                                                  "swap(x,y)=two(y,x)",
                                                  "power(x)=x^.5",
                                                  "neg(x)=-x",
                                                  "fact(x)=x!",
                                                  "hex(x)=0x1F&x",
                                                  "wide(x)=x" + repeated("+x", 600),
                                                  "usewide(x)=wide(x)+wide(x)",
                                                  "many(x)=wide(x)" + repeated("+wide(x)", 90),
                                                  "vars(x)=v*x+pi"},
                                   entries = {"ident(3)",
                                              "ident(v)",
                                              "paren(v)",
                                              "inc(4)*2",
                                              "two(2,3)",
                                              "two(v,x)",
                                              "swap(inc(1),2)",
                                              "power(-1)",
                                              "power(2)",
                                              "neg(3)^2",
                                              "fact(5)",
                                              "fact(9999)",
                                              "hex(9)",
                                              "hex(0x13)",
                                              "wide(1)",
                                              "usewide(2)",
                                              "many(1)",
                                              "vars(2)",
                                              "ident(v)(2)",
                                              "(v)ident(2)",
                                              "2*-ident(3)",
                                              "mod(ident(7),inc(2))",
                                              "INC(2)",
                                              "ident(1,2)",
                                              "inc(1e10000)",
                                              "1e10000+inc(1)",
                                              "ident(" + std::string(70, 'a') + ")",
                                              repeated("inc(", 99) + "1" + repeated(")", 99),
                                              repeated("inc(", 101) + "1" + repeated(")", 101),
                                              repeated("two(inc(1),", 50) + "1" + repeated(")", 50),
                                              "two(" + repeated("inc(", 98) + "1" + repeated(")", 98) +
                                                  ",1)"};
    ExpectTheSameWithoutPrograms(definitions, entries);
}

TEST_F(Programs, ThatConvertEndAsExpandedBodiesDo) {
    const std::vector<std::string> definitions = {"inc(x)=x+1",
                                                  "km(x)=km",
                                                  "junk(x)=2(x)",
                                                  "conv(x)=5 km->mi",
                                                  "inconv(x)=inc(x)*conv(x)",
                                                  "miles(x)=x km->mi",
                                                  "sumconv(x)=(x+1)km->mi",
                                                  "conversions(x)=miles(x)+km->m*x(5)+conv(x)",
                                                  "junkconv(x)=conv(x)+junk(x)",
                                                  "wrongunit(x)=x km->nosuch",
                                                  "wrongkind(x)=x kg->mi",
                                                  "tiny(x)=x km->Ym",
                                                  "to(x)=5 km->x",
                                                  "from(x)=5 x->m",
                                                  "useto(x)=to(x)+miles(2)",
                                                  "between(x,u,w)=x u->w+x w->u",
                                                  "there(u,w)=between(2,u,(w))*miles(3)",
                                                  "manyconv(x)=0" + repeated("+x km->mi", 300)},
                                   entries = {"3*km(1)",
                                              "km(1)",
                                              "conv(1)",
                                              "inconv(2)*2",
                                              "miles(2)",
                                              "miles(v)^2",
                                              "miles(nosuch)",
                                              "sumconv(2)*sumconv(v)",
                                              "conversions(1)",
                                              "junkconv(1)",
                                              "wrongunit(1)",
                                              "1+wrongkind(1)",
                                              "tiny(1)",
                                              "to(mi)",
                                              "to(1)",
                                              "from(mi)",
                                              "useto(mi)",
                                              "between(2,km,mi)",
                                              "between(v,x,v)",
                                              "between(2,0x10,mi)",
                                              "between(2,km,1+1)",
                                              "between(2,km,kg)",
                                              "between(2,nosuch,km)",
                                              "there(mi,km)+there(ft,inch)",
                                              "1+there(mi,nosuch)",
                                              "there(1,km)",
                                              "manyconv(2)",
                                              "3 km->mi+miles(miles(1))",
                                              "miles(3)km->mi",
                                              "inc(x)->m",
                                              "5 km->m+inc(2)"};
    ExpectTheSameWithoutPrograms(definitions, entries);
}

TEST_F(Programs, LookAUnitUpOnceUntilAnotherIsDefined) {
    for (const char* line : {"unit qa=5 meter", "unit qb=10 meter", "f(x)=x qa->qb", "f(1)"}) Enter(line);
    const uint64_t lookedUp = unitTable.compared;
    EXPECT_EQ("ans = 1\n", Answer("f(2)"));
    EXPECT_EQ("ans = 6\n", Answer("f(4)*f(6)"));
    EXPECT_EQ(lookedUp, unitTable.compared);
    Enter("unit qc=1 meter");
    EXPECT_EQ("ans = 2\n", Answer("f(4)"));
    EXPECT_LT(lookedUp, unitTable.compared);
}

TEST_F(Programs, ConvertByWhatAUnitIsNow) {
    for (const char* line : {"unit qa=5 meter", "f(x)=x qa->m", "g(x)=f(x)+f(1)"}) Enter(line);
    EXPECT_EQ("ans = 15\n", Answer("g(2)"));
    EXPECT_EQ("** ERROR 13: invalid unit name 'qa' in 'qa' **\n", Answer("del qa;g(2)"));
    EXPECT_EQ("ans = 21\n", Answer("unit qa=7 meter;g(2)"));
    for (const char* line : {"del qa;1", "del qa;unit qa=9 meter;g(2);1"}) {
        questions = 0;
        stopAt = static_cast<int>(std::count(line, line + strlen(line), ';')) + 1; // at the last statement
        EXPECT_EQ("** ERROR: interrupted **\n", Answer(line));
        stopAt = 0;
        EXPECT_EQ("ans = 21\n", Answer("g(2)")) << line;
    }
}

TEST_F(Programs, ThatFailEndAsExpandedBodiesDo) {
    const std::vector<std::string> definitions = {"ident(x)=x",
                                                  "inc(x)=x+1",
                                                  "two(x,y)=x*y+inc(x)",
                                                  "swap(x,y)=two(y,x)",
                                                  "unused(x)=5",
                                                  "unusedtwo(x,y)=x",
                                                  "name(x)=nosuch",
                                                  "zero(x)=1/(x-x)",
                                                  "root(x)=sqrt(x)",
                                                  "lg(x)=log2(x)",
                                                  "circle(x)=circle(x)+1",
                                                  "twice(x)=twice(x)+twice(x)",
                                                  "missing(x)=ident(x)+gone(x)",
                                                  "gone(x)=x",
                                                  "del gone",
                                                  "junk(x)=2(x)",
                                                  "injunk(x)=inc(x)+junk(x)",
                                                  "deepjunk(x)=two(injunk(x),inc(x))",
                                                  "big(x)=x*1e9999",
                                                  "call(x)=ident(nosuch)",
                                                  "callunused(x)=unused(nosuch)",
                                                  "calltwo(x)=unusedtwo(nosuch,1)",
                                                  "sine(x)=sin(nosuch)",
                                                  "sum(x)=x" + repeated("+x", 4900) + "+sum(x)",
                                                  "tan(x,y)=x",
                                                  "pole(x)=tan(x)"},
                                   entries = {"ident(nosuch)",
                                              "1+ident(nosuch)",
                                              "swap(nosuch,2)",
                                              "unused(nosuch)",
                                              "unusedtwo(7,a)",
                                              "unusedtwo(a,7)+1",
                                              "name(1)",
                                              "1-name(2)",
                                              "zero(5)",
                                              "root(-4)",
                                              "lg(0)",
                                              "lg(8)",
                                              "circle(1)",
                                              "twice(1)",
                                              "missing(2)",
                                              "junk(3)",
                                              "1+junk(3)",
                                              "injunk(2)",
                                              "deepjunk(2)",
                                              "sin(deepjunk(2))+1",
                                              "big(1)",
                                              "big(0)+1",
                                              "call(1)",
                                              "callunused(1)",
                                              "calltwo(1)",
                                              "sine(1)",
                                              "sum(1)",
                                              "nosuch(2)",
                                              "mode deg; pole(90)"};
    ExpectTheSameWithoutPrograms(definitions, entries);
}

std::string randomBody(std::mt19937& random, const std::vector<std::string>& names, int depth) {
    static const char* const operators[] = {"+", "-", "*", "^", "*-", "/", "-", "<", "&&", "==", "%", ""};
    const auto inner = [&] { return randomBody(random, names, depth - 1); };
    switch (depth == 0 ? random() % 3 : random() % 10) {
    case 0: return std::to_string(random() % 4);
    case 1:
    case 2: return names[random() % names.size()];
    case 3: return "(" + inner() + ")";
    case 4: return "f" + std::to_string(random() % 4) + "(" + inner() + ")";
    case 5: return "g" + std::to_string(random() % 3) + "(" + inner() + "," + inner() + ")";
    case 6: return "sqrt(" + inner() + ")";
    case 7: return "(" + inner() + ")!";
    default: return inner() + operators[random() % 12] + inner();
    }
}

TEST_F(Programs, OfRandomFunctionsEndAsExpandedBodiesDo) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    for (int round = 0; round < 60; round++) {
        std::vector<std::string> definitions;
        for (int i = 0; i < 4; i++) {
            const std::string number = std::to_string(i);
            definitions.push_back("f" + number + "(x)=" + randomBody(random, {"x", "v", "q"}, 2));
            definitions.push_back("g" + number + "(x,y)=" + randomBody(random, {"x", "y", "y"}, 2));
        }
        std::vector<std::string> lines;
        for (int i = 0; i < 25; i++) lines.push_back(randomBody(random, {"v", "x", "q", "1"}, 3));
        ExpectTheSameWithoutPrograms(definitions, lines);
        if (HasFailure()) break;
    }
}

TEST_F(Programs, AreMissingOnlyWhereEachCallEndsWithAnError) {
    for (const char* body : {"2(x)", "(x)(x)", "x(2)", "later(x)", "x(x)", "v(x)", "mod(x,(1)(2))", "2+km->m",
                             "5->mi", "x(km->mi)", "sin(x)(x)"}) {
        Enter("del later");
        Enter("del v");
        Enter(std::string("f(x)=") + body);
        EXPECT_FALSE(HasProgram("f")) << body;
        EXPECT_EQ(STATUS_ERROR, Enter("f(3)")) << body;
        for (const char* line : {"later(x)=x", "v(x)=x", "v=2", "x=3", "unit later=2 meter"}) Enter(line);
        for (const char* line : {"f(3)", "f(v)", "2*f(3)+1", "f(3)km->mi", "mod(f(3),2)", "f(f(3))"})
            EXPECT_EQ(STATUS_ERROR, Enter(line)) << body << ": " << line;
    }
}

TEST_F(Programs, AreMissingInRandomBodiesOnlyWhereEachCallEndsWithAnError) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    int missing = 0;
    for (int round = 0; round < 2000; round++) {
        const std::string body = randomBody(random, {"x", "v", "x km->mi"}, 3);
        for (const char* line :
             {"f0(x)=x", "f1(x)=x+1", "f2(x)=2*x", "f3(x)=x", "g0(x,y)=x", "g1(x,y)=x-y", "g2(x,y)=y", "v=2"})
            Enter(line);
        if (Enter("f(x)=" + body) == STATUS_ERROR || HasProgram("f")) continue;
        missing++;
        EXPECT_EQ(STATUS_ERROR, Enter("f(3)")) << body;
    }
    EXPECT_LT(10, missing);
}

TEST_F(Programs, CallWhatANameStandsForNow) {
    Enter("inner(x)=x+1");
    Enter("outer(x)=inner(x)*2");
    EXPECT_EQ("ans = 6\n", Answer("outer(2)"));
    Enter("inner(x)=x+10");
    EXPECT_EQ("ans = 24\n", Answer("outer(2)"));
    EXPECT_EQ("ans = 24\n", Answer("inner(x,y)=x;outer(2)"));
    Enter("del inner");
    EXPECT_EQ("** Unrecognized function: inner **\n", Answer("outer(2)"));
    Enter("inner(x)=2(x)"); // the call leaves ( ( 2 2 ) 2 )
    EXPECT_EQ("** ERROR: could not compute (7) **\n", Answer("outer(2)"));
    Enter("inner(x)=v");
    EXPECT_EQ("** ERROR 7: invalid term = v **\n", Answer("outer(2)"));
    EXPECT_EQ("ans = 10\n", Answer("v=5;outer(2)"));
    Enter("root(x)=sqrt(x)");
    Enter("del sqrt");
    EXPECT_EQ("ans = 3\n", Answer("root(9)"));
    Enter("sqrt(x)=x*x");
    EXPECT_EQ("ans = 81\n", Answer("root(9)"));
}

TEST_F(Programs, ComputeWithWhatAVariableIsNow) {
    const char* const unknown = "** ERROR 7: invalid term = v **\n";
    Enter("times(x)=v*x");
    Enter("twice(x)=times(x)+times(v)");
    EXPECT_EQ(unknown, Answer("times(2)"));
    EXPECT_EQ("v = 5\n", Answer("v=5"));
    EXPECT_EQ("ans = 10\n", Answer("times(2)"));
    EXPECT_EQ("ans = 35\n", Answer("twice(2)"));
    EXPECT_EQ("ans = 14\n", Answer("v=7;times(2)"));
    EXPECT_EQ("v = 14\n", Answer("v=times(2)")); // the name that is being assigned
    EXPECT_EQ("ans = 42\n", Answer("w=1;del w;times(3)"));
    EXPECT_EQ(unknown, Answer("del v;times(2)"));
    EXPECT_EQ("ans = 6\n", Answer("v=3;times(2)"));
    EXPECT_EQ(unknown, Answer("del all;times(2)"));
    EXPECT_EQ("ans = 8\n", Answer("v=4;times(2)"));
}

TEST_F(Programs, ComputeWithTheVariablesAsBeforeAnInterruptedEntry) {
    Enter("times(x)=v*x");
    for (const char* line :
         {"v=5;times(2);1", "v=5;v=6;times(2);1", "v=5;del v;1", "del all;v=2;times(2);1"}) {
        for (const bool isThere : {false, true}) {
            SCOPED_TRACE(line);
            Enter(isThere ? "v=3" : "del all");
            const std::string before = Answer("times(2)");
            EXPECT_EQ(isThere ? "ans = 6\n" : "** ERROR 7: invalid term = v **\n", before);
            questions = 0;
            stopAt =
                static_cast<int>(std::count(line, line + strlen(line), ';')) + 1; // at the last statement
            EXPECT_EQ("** ERROR: interrupted **\n", Answer(line));
            stopAt = 0;
            EXPECT_EQ(before, Answer("times(2)"));
        }
    }
}

TEST_F(Programs, TakeAParameterForItselfWhateverAVariableOfItsNameIs) {
    Enter("v=3");
    Enter("square(v)=v*v");
    Enter("around(x)=square(x)+v");
    EXPECT_EQ("ans = 16\n", Answer("square(4)"));
    EXPECT_EQ("ans = 19\n", Answer("around(4)"));
    EXPECT_EQ("ans = 21\n", Answer("v=5;around(4)"));
    EXPECT_EQ("ans = 16\n", Answer("del v;square(4)"));
}

TEST_F(Programs, ComputeWithTheVariablesOfTheCalculatorThatCalls) {
    ZqCalculator other;
    other.InitializeFunctionsAndVars();
    Enter("times(x)=v*x");
    Enter("v=3");
    other.ProcessEntry("v=100", false);
    EXPECT_EQ("ans = 6\n", Answer("times(2)"));
    EXPECT_EQ(STATUS_RESULT, other.ProcessEntry("times(2)", false));
    EXPECT_STREQ("ans = 200\n", other.resultLine);
    EXPECT_EQ("ans = 6\n", Answer("times(2)"));
}

} // namespace
