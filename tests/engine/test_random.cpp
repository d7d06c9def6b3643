// SPDX-License-Identifier: MIT
//
// Random lines: valid ones against machine integers, and any text at all for its manners.
#include "../cases.h"
#include "../seed.h"
#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

// An expression of integers as text, with its value and the precedence of its outermost operator.
struct Expression {
    std::string text;
    long long value;
    int precedence;
};

std::string inParentheses(const Expression& e, bool needed) {
    return needed ? "(" + e.text + ")" : e.text;
}

Expression randomExpression(std::mt19937& random, int depth) {
    if (depth == 0 || random() % 5 == 0) {
        const long long number = static_cast<long long>(random() % 10);
        return {std::to_string(number), number, 0};
    }
    if (random() % 8 == 0) {
        const Expression operand = randomExpression(random, depth - 1);
        return {"(-" + inParentheses(operand, operand.precedence >= 6) + ")", -operand.value, 0};
    }
    static const struct {
        const char* text;
        int precedence;
    } operators[] = {{"*", 5}, {"+", 6}, {"-", 6}, {"<", 8}, {">=", 8}, {"==", 9}, {"&&", 13}, {"||", 14}};
    const auto& op = operators[random() % 8];
    const Expression a = randomExpression(random, depth - 1);
    const Expression b = randomExpression(random, depth - 1);
    Expression e{"", 0, op.precedence};
    // Equal precedence goes from left to right, so only the right side needs parentheses for it. A text that
    // begins with '=' after an operator would be read as part of it; none does.
    e.text = inParentheses(a, a.precedence > op.precedence || random() % 6 == 0) + op.text +
             inParentheses(b, b.precedence >= op.precedence || random() % 6 == 0);
    const std::string name = op.text;
    if (name == "*") e.value = a.value * b.value;
    if (name == "+") e.value = a.value + b.value;
    if (name == "-") e.value = a.value - b.value;
    if (name == "<") e.value = a.value < b.value;
    if (name == ">=") e.value = a.value >= b.value;
    if (name == "==") e.value = a.value == b.value;
    if (name == "&&") e.value = a.value != 0 && b.value != 0;
    if (name == "||") e.value = a.value != 0 || b.value != 0;
    return e;
}

TEST(RandomLines, ValidExpressionsHaveTheirMathematicalValue) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    ZqCalculator calc;
    calc.InitializeFunctionsAndVars();
    calc.sciMode = SCI_NEVER;
    for (int i = 0; i < cases(3000); i++) {
        const Expression e = randomExpression(random, 4);
        ASSERT_EQ(STATUS_RESULT, calc.ProcessEntry(e.text.c_str(), false)) << e.text << "\n" << calc.message;
        ASSERT_EQ("ans = " + std::to_string(e.value) + "\n", calc.resultLine) << e.text;
    }
}

// A line of tokens, now and then of any bytes.
std::string randomLine(std::mt19937& random) {
    static const char* const tokens[] = {
        "1",     "2.5",  "0x1F",  "0b",    "1e5",  "1e",      "x",       "y",    "ans",  "pi",   "km",
        "mi",    "+",    "-",     "*",     "/",    "%",       "^",       "!",    "&&",   "||",   ">>",
        "<<",    ">=",   "<=",    "==",    "!=",   ">",       "<",       "&",    "@",    "|",    "(",
        ")",     "->",   ",",     "=",     ";",    "#",       " ",       "\t",   "[",    "}",    "sin",
        "log2",  "f",    "1,000", "k",     "e",    ".",       "\x10",    "\x11", "\xff", "\n",   "\r",
        "_",     "0o9",  "m^2",   "0",     "99",   "f(x)=",   "g(x,y)=", "f(",   "g(",   "mod(", "sqrt(",
        "log2(", "del ", "disp ", "echo ", "list", "mode deg"};
    std::string line;
    for (auto n = random() % 20; n > 0; n--) {
        if (random() % 30 == 0)
            line += static_cast<char>(1 + random() % 255);
        else
            line += tokens[random() % (sizeof tokens / sizeof tokens[0])];
    }
    return line;
}

TEST(RandomLines, EveryLineGetsOneWellFormedAnswer) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    deleteAllFunctions();
    deleteAllUnits();
    ZqCalculator calc;
    calc.InitializeFunctionsAndVars();
    for (int i = 0; i < cases(30000); i++) {
        const std::string line = randomLine(random);
        calc.european = random() % 8 == 0;
        calc.tenKey = random() % 8 == 0;
        calc.useSeparator = random() % 2 == 0;
        calc.sciMode = static_cast<int32_t>(random() % 6);
        calc.sigFigs = static_cast<int32_t>(random() % 101);
        const int32_t bases[] = {2, 10, 16};
        calc.displayBase = bases[random() % 3];
        const bool quick = random() % 4 == 0;
        const int32_t before = calc.status;
        const int status = calc.ProcessEntry(line.c_str(), quick);
        ASSERT_EQ(quick ? before : status, calc.status) << line;
        ASSERT_TRUE(status >= STATUS_ERROR && status <= STATUS_COMMAND) << line;
        const std::string message = calc.message;
        if (status == STATUS_RESULT) {
            const std::string shown = calc.resultLine;
            ASSERT_NE(std::string::npos, shown.find(" = ")) << line;
            ASSERT_EQ('\n', shown.back()) << line;
        } else if (status == STATUS_ERROR) {
            if (message.rfind("** Unrecognized function: ", 0) != 0) {
                ASSERT_EQ("** ERROR", message.substr(0, 8)) << line;
            }
            ASSERT_TRUE(message.size() > 4 && (message.compare(message.size() - 4, 4, " **\n") == 0 ||
                                               message == "** ERROR 12: missing conversion unit **"))
                << line << message;
        }
        ASSERT_STREQ("ans", calc.vars.first->text) << line;
    }
}

} // namespace
