// SPDX-License-Identifier: MIT
//
// The calls of functions.
#include "../seed.h"
#include "functions_fixture.h"

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

TEST_F(Functions, RandGivesAnotherNumberEachTimeUpToItsArgument) {
    double last = -1;
    int changes = 0;
    for (int i = 0; i < 200; i++) {
        ASSERT_EQ(STATUS_RESULT, Enter("rand(10)"));
        double value = 0;
        qtoe(calc.result, &value);
        EXPECT_GE(value, 0);
        EXPECT_LE(value, 10);
        changes += value != last;
        last = value;
    }
    EXPECT_GE(changes, 199);
}

TEST(Factorial, IsThePlainProduct) {
    for (int n : {-5, 0, 1}) EXPECT_EQ(1.0, factorial(n));
    EXPECT_EQ(120.0, factorial(5));
    EXPECT_EQ(2432902008176640000.0, factorial(20));
    EXPECT_TRUE(std::isinf(factorial(171)));
}

// The evaluation as the rule words it: after each call the operators of the whole list are ordered anew.
int evaluateByRule(ZqCalculator& calc, const std::string& line) {
    if (calc.ProcessStr(line.c_str()) != 0 || calc.VerifyTermsSyntax() != 0) return STATUS_ERROR;
    merror = 0;
    std::vector<node*> order;
    size_t next = 0;
    const auto orderAll = [&] {
        order.assign(static_cast<size_t>(calc.terms.count) + 1, nullptr);
        calc.opOrder = order.data();
        calc.OrderOperatorStack();
        calc.opOrder = nullptr;
        next = 0;
    };
    for (orderAll(); order[next];) {
        node* op = order[next++];
        if (op->type != OP_OPEN) {
            if (!calc.ProcPair(op, op->type)) return STATUS_ERROR;
            continue;
        }
        calc.reorder = 0;
        if (calc.ProcParenth(op) < 0) return STATUS_ERROR;
        if (calc.reorder) orderAll();
    }
    if (calc.terms.count != 1) return STATUS_ERROR;
    return calc.Node2Num(calc.terms.first, calc.result);
}

TEST_F(Functions, ProcParenthRemovesNoPairAroundSeveralTerms) {
    ASSERT_EQ(0, calc.ProcessStr("(2+3)"));
    ASSERT_EQ(0, calc.VerifyTermsSyntax());
    EXPECT_EQ(0, calc.ProcParenth(calc.terms.first));
    EXPECT_EQ(5, calc.terms.count);
    ASSERT_TRUE(calc.ProcPair(calc.terms.first->next->next, OP_ADD));
    EXPECT_EQ(1, calc.ProcParenth(calc.terms.first));
    EXPECT_EQ(1, calc.terms.count);
}

std::string randomTerm(std::mt19937& random, const std::vector<std::string>& names, int depth) {
    static const char* const operators[] = {"+", "-", "*", "^", "*-", "^-", "-", "<", "&&", "=="};
    switch (depth == 0 ? random() % 2 : random() % 9) {
    case 0: return std::to_string(random() % 4);
    case 1: return names[random() % names.size()];
    case 2: return "(" + randomTerm(random, names, depth - 1) + ")";
    case 3: return "one(" + randomTerm(random, names, depth - 1) + ")";
    case 4:
        return "two(" + randomTerm(random, names, depth - 1) + "," + randomTerm(random, names, depth - 1) +
               ")";
    case 5: return "sqrt(" + randomTerm(random, names, depth - 1) + ")";
    case 6: return "ident(" + randomTerm(random, names, depth - 1) + ")!";
    default:
        return randomTerm(random, names, depth - 1) + operators[random() % 10] +
               randomTerm(random, names, depth - 1);
    }
}

TEST_F(Functions, CallsGiveWhatOrderingEverythingAnewGives) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    ZqCalculator rule;
    int results = 0;
    for (int i = 0; i < 4000; i++) {
        if (i % 20 == 0) {
            deleteAllFunctions();
            deleteAllUnits();
            calc.InitializeFunctionsAndVars();
            rule.InitializeVarsList();
            Enter("ident(x)=x");
            // Now and then a function that calls itself: both ways end with the same error.
            Enter("one(x)=" + randomTerm(random, {"x", "pi", "v"}, random() % 10 == 0 ? 2 : 0) + "+x");
            Enter("two(x,y)=" + randomTerm(random, {"x", "y"}, 1));
            for (const char* line : {"v=3", "x=2", "y=5"}) Enter(line), rule.ProcessEntry(line, false);
        }
        const std::string line = randomTerm(random, {"v", "x", "y"}, 4);
        if (line.size() > 300) continue;
        const int status = Enter(line);
        const std::string message = calc.message;
        const int expected = evaluateByRule(rule, line);
        ASSERT_EQ(expected, status) << line << "\n" << message << rule.message;
        if (expected == STATUS_ERROR) {
            ASSERT_EQ(rule.message, message) << line;
            continue;
        }
        qfixintegers(rule.result);
        ASSERT_EQ(0, memcmp(rule.result, calc.result, sizeof(qfloat))) << line;
        results++;
    }
    EXPECT_GT(results, 500);
}

TEST_F(Functions, AThousandCallsVisitEachTermOnce) {
    Enter("f(x)=x*2+1");
    // 4 terms a call and a '+' between two of them; the body has 5.
    const std::string line = "f(1)" + repeated("+f(1)", 999);
    const uint64_t typed = 4 * 1000 + 999;
    EXPECT_EQ("ans = 3000\n", Answer(line));
    EXPECT_EQ(5000u, calc.work.copied);
    EXPECT_EQ(typed, calc.work.ordered);
    EXPECT_EQ(typed, calc.work.checked);
    // Each call: its parenthesis twice and two operators; then the sums.
    EXPECT_EQ(4u * 1000u + 999u, calc.work.reduced);
}

TEST_F(Functions, ABodyIsCheckedAndOrderedWhenItIsDefinedAndByNoCall) {
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(x)=1" + repeated("+x", 1000)));
    EXPECT_EQ(2001u, calc.work.checked);
    EXPECT_EQ(2001u, calc.work.ordered);
    EXPECT_EQ("ans = 1001\n", Answer("f(1)"));
    EXPECT_EQ(2001u, calc.work.copied);
    EXPECT_EQ(4u, calc.work.checked);
    EXPECT_EQ(4u, calc.work.ordered);
}

TEST_F(Functions, NestedCallsVisitEachTermOnce) {
    Enter("f(x)=x+1");
    const std::string line = repeated("f(", 90) + "0" + repeated(")", 90);
    EXPECT_EQ("ans = 90\n", Answer(line));
    EXPECT_EQ(270u, calc.work.copied);
    EXPECT_EQ(3u * 90u + 1u, calc.work.ordered);
}

TEST_F(Functions, CallsNestedDeeperThanAHundredAreSuspected) {
    Enter("f(x)=x+1");
    EXPECT_EQ("ans = 100\n", Answer(repeated("f(", 100) + "0" + repeated(")", 100)));
    EXPECT_EQ("** ERROR 5.1: circular function suspected: f **\n",
              Answer(repeated("f(", 101) + "0" + repeated(")", 101)));
    EXPECT_EQ("ans = 0\n", Answer(repeated("sin(", 200) + "0" + repeated(")", 200)));
}

TEST_F(Functions, ManyParametersCostTheirTermsOnly) {
    std::string parameters = "a0";
    std::string sum = "a0";
    std::string arguments = "1";
    for (int i = 1; i < 1200; i++) {
        parameters += ",a" + std::to_string(i);
        arguments += ",1";
        if (i < 800) sum += "+a" + std::to_string(i);
    }
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(" + parameters + ")=" + sum)) << calc.message;
    EXPECT_EQ("ans = 800\n", Answer("f(" + arguments + ")"));
    EXPECT_EQ(1599u, calc.work.copied);
}

TEST_F(Functions, ABodyThatIsCopiedTakesTheMemoryOfTheStatement) {
    Enter("f(x)=2(x+nosuch)");
    EXPECT_EQ(STATUS_ERROR, Enter("f(3)"));
    ASSERT_GT(calc.terms.count, 4); // f is gone, and the body stands behind the parenthesis
    for (const node* term = calc.terms.first; term; term = term->next)
        EXPECT_TRUE(term->memory == node::Memory::List || term->memory == node::Memory::ListWithRoom);
}

TEST_F(Functions, AnArgumentWithoutTextOrValueIsReported) {
    ASSERT_EQ(0, calc.ProcessStr("sqrt(1)"));
    node* argument = calc.terms.Get(2);
    argument->type = TERM_NAME;
    ASSERT_EQ(nullptr, argument->text);
    EXPECT_EQ(nullptr, calc.ProcFunction(calc.terms.first));
    EXPECT_STREQ("** ERROR 5: invalid argument in function sqrt **\n", calc.message);
}

TEST_F(Functions, ACallThatIsNoFlatListIsLeftAsItIs) {
    for (const char* text :
         {"sqrt(1+2)", "sqrt(-1)", "sqrt((1))", "SQRT(,)", "mod(1,)", "mod(1", "mod(1,2"}) {
        ASSERT_EQ(0, calc.ProcessStr(text));
        const int32_t count = calc.terms.count;
        const std::string name = calc.terms.first->text;
        EXPECT_EQ(calc.terms.Get(1), calc.ProcFunction(calc.terms.first)) << text;
        EXPECT_EQ(count, calc.terms.count);
        EXPECT_EQ(name, calc.terms.first->text);
    }
}

} // namespace
