// SPDX-License-Identifier: MIT
#include "../cases.h"
#include "../seed.h"
#include "Calculator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace {

class Scanner : public testing::Test {
protected:
    Scanner() { calc.InitializeFunctionsAndVars(); }

    ZqCalculator calc;

    // The terms, blank-separated: operators by their text, names in <>, functions in {}, numbers as n, or as
    // their text where they keep one.
    std::string Terms(const std::string& statement) {
        EXPECT_EQ(0, calc.ProcessStr(statement.c_str())) << statement << "\n" << calc.message;
        std::string out;
        for (const node* term = calc.terms.first; term; term = term->next) {
            if (!out.empty()) out += ' ';
            switch (term->type) {
            case TERM_NAME: out += std::string("<") + term->text + ">"; break;
            case TERM_FUNC: out += std::string("{") + term->text + "}"; break;
            case TERM_NUMBER: out += term->text ? term->text : "n"; break;
            case OP_UNIT_MARK: out += "MARK"; break;
            case OP_CONVERT: out += "->"; break;
            default: out += getOp(term->type).text;
            }
        }
        return out;
    }

    // The number that a text stands for, as decimal text; "none" when it is no number.
    std::string Number(const char* text) {
        qfloat value = {};
        if (calc.Str2Num(text, value) != 0) return "none";
        char out[FORMAT_SIZE];
        qtoascii(value, out, 20, SCI_AUTO, '\0');
        return out;
    }
};

TEST_F(Scanner, MakesTermsOfNumbersNamesAndOperators) {
    EXPECT_EQ("n + n * n", Terms("2+3*4"));
    EXPECT_EQ("( n - <ans> ) >> <x>", Terms(" ( 2 - ans ) >> x "));
    EXPECT_EQ("", Terms(""));
    EXPECT_EQ("", Terms(" \t\r\n"));
    EXPECT_EQ("n != n", Terms("5!=5"));
    EXPECT_EQ("n ! == n", Terms("5!==5"));
    EXPECT_EQ("n", Terms("1;2"));
}

TEST_F(Scanner, HexadecimalNumbersKeepTheirText) {
    EXPECT_EQ("0x1F + n + n", Terms("0x1F+0b101+0o17"));
    EXPECT_EQ("0x1e - n", Terms("0x1e-3"));
    EXPECT_EQ("n - n", Terms("0b1e-3"));
}

TEST_F(Scanner, TheSignOfAnExponentBelongsToTheNumber) {
    EXPECT_EQ("n", Terms("1e-3"));
    EXPECT_EQ("n", Terms("1.E+3"));
    EXPECT_EQ("n", Terms("0.5e-3"));
    EXPECT_EQ("n + n", Terms("2+05E-1"));
    EXPECT_EQ("<e> - n", Terms("e-3"));
    EXPECT_EQ("( n ) <e> - n", Terms("(1)e-3"));
}

TEST_F(Scanner, FunctionsAreDefinedNamesBeforeAParenthesis) {
    EXPECT_EQ("{sin} ( n )", Terms("sin(30)"));
    EXPECT_EQ("{SIN} ( n )", Terms("SIN(30)"));
    EXPECT_EQ("<sin> + n", Terms("sin+1"));
    EXPECT_EQ("<foo> ( n )", Terms("foo(30)"));
    EXPECT_EQ("{log2} ( n )", Terms("log2(8)"));
}

TEST_F(Scanner, ACommaSeparatesArgumentsOnlyInsideACall) {
    EXPECT_EQ("{sin} ( n , n )", Terms("sin(1,2)"));
    EXPECT_EQ("{sin} ( n , n , n )", Terms("sin(1,000,2)"));
    EXPECT_EQ("n + n", Terms("1,000+1"));
    EXPECT_EQ("( n )", Terms("(1,000)"));
    EXPECT_EQ("{sin} ( ( n ) , n )", Terms("sin((1,000),2)"));
    EXPECT_EQ("{sin} ( {cos} ( n , n ) , n )", Terms("sin(cos(1,2),3)"));
    EXPECT_EQ("<foo> ( <1,2> )", Terms("foo(1,2)"));
    EXPECT_EQ("{sin} ( n ) + n", Terms("sin(1)+1,000"));
}

TEST_F(Scanner, MarksTheUnitInFrontOfTheArrow) {
    EXPECT_EQ("n MARK <km> -> <mi>", Terms("5 km->mi"));
    EXPECT_EQ("n MARK <km> -> <mi>", Terms("5km->mi"));
    EXPECT_EQ("n MARK <km> -> <mi>", Terms("5 km \t ->mi"));
    EXPECT_EQ("n MARK <km> -> <mi>", Terms("5\tkm->mi"));
    EXPECT_EQ("MARK <km> -> <mi>", Terms("km->mi"));
    EXPECT_EQ("( n MARK <km/h> -> <m/s> ) * n", Terms("(5 km/h->m/s)*2"));
    EXPECT_EQ("n MARK <m^2> -> <ft^2>", Terms("5 m^2->ft^2"));
    EXPECT_EQ("n MARK <m^12> -> <ft^2>", Terms("5 m^12->ft^2"));
    EXPECT_EQ("n MARK <m^2/s> -> <ft^2/s>", Terms("5 m^2/s->ft^2/s"));
    EXPECT_EQ("n - MARK <km> -> <mi>", Terms("5-km->mi"));
    EXPECT_EQ("n + - MARK <km> -> <mi>", Terms("5+-km->mi"));
    EXPECT_EQ("n - ( MARK <km> -> <mi> )", Terms("5-(km->mi)"));
    EXPECT_EQ("( n ) MARK <km> -> <mi>", Terms("(5)km->mi"));
    EXPECT_EQ("MARK <km> -> <mi>", Terms("x=km->mi"));
    EXPECT_EQ("{sin} ( n , MARK <km> -> <m> )", Terms("sin(1, km->m)"));
}

TEST_F(Scanner, OnlyTheFirstArrowIsRewritten) {
    EXPECT_EQ("n MARK <km> -> <mi->ft>", Terms("5 km->mi->ft"));
}

TEST_F(Scanner, ShortTextsHaveNoArrow) {
    EXPECT_EQ("<m> - > <m>", Terms("m->m"));
}

TEST_F(Scanner, DefinitionsAreRecognized) {
    for (const char* text : {"f(x)=x", "f(x) = x", "f()=1", "(1)=2", "y=(1)+(2=3)"}) {
        calc.fullEntry = false;
        EXPECT_EQ(STATUS_MESSAGE, calc.ProcessStr(text)) << text;
    }
    calc.fullEntry = true;
    for (const char* text : {"(1)==2", "(1)!=2", "(1)<=2", "(1)>=2", "(1)", "x=(1)", "1)=("}) {
        EXPECT_NE(STATUS_MESSAGE, calc.ProcessStr(text)) << text;
    }
}

TEST_F(Scanner, AssignmentSetsTheTarget) {
    EXPECT_EQ("n", Terms("ans=1"));
    EXPECT_EQ(calc.vars.first, calc.target);
    EXPECT_EQ("n == n", Terms("pi=1==2"));
    EXPECT_EQ(calc.vars.last, calc.target);
    EXPECT_EQ("n", Terms("5"));
    EXPECT_EQ(calc.vars.first, calc.target);
}

TEST_F(Scanner, RefusesStatementsOfTenThousandCharacters) {
    EXPECT_EQ(0, calc.ProcessStr(std::string(9999, '1').c_str()));
    EXPECT_EQ(-1, calc.ProcessStr(std::string(10000, '1').c_str()));
    EXPECT_STREQ("** ERROR: 10000 max characters **\n", calc.message);
    EXPECT_EQ(-1, calc.ProcessStr(std::string(200000, ' ').c_str()));
    EXPECT_EQ(nullptr, calc.terms.first);
}

TEST_F(Scanner, ReadsNumbersInEveryWritingAndBase) {
    const struct {
        const char* text;
        const char* number;
    } cases[] = {
        {"5", "5"},
        {"", "0"},
        {"1.5", "1.5"},
        {".5", "0.5"},
        {"5.", "5"},
        {"1e3", "1000"},
        {"1E3", "1000"},
        {"1e+3", "1000"},
        {"1e-3", "0.001"},
        {"5e", "5"},
        {"0x10", "16"},
        {"0b11", "3"},
        {"0o17", "15"},
        {"0x1e", "30"},
        {"1,000", "1000"},
        {"12,345,678", "12345678"},
        {"1,000.5", "1000.5"},
        {"1234,567", "1234567"},
        {"1,000.5e2", "100050"},
        {"2.5k", "2500"},
        {"3m", "0.003"},
        {"5c", "0.05"},
        {"2u", "2.0e-6"},
        {"2n", "2.0e-9"},
        {"2p", "2.0e-12"},
        {"2f", "2.0e-15"},
        {"2a", "2.0e-18"},
        {"2M", "2000000"},
        {"2G", "2000000000"},
        {"2T", "2.0e12"},
        {"2P", "2.0e15"},
        {"2e3k", "2000000"},
    };
    for (const auto& test : cases) EXPECT_EQ(test.number, Number(test.text)) << test.text;
}

TEST_F(Scanner, ReadsNoNumberInWhatIsAlmostOne) {
    for (const char* text :
         {"0xg",     "0b2",    "0o8",      "1,00", "1,0000", "1,",  "1.5,000", "1,000,", "1,abc", ",000",
          "1e5,000", "1,000k", "1,000.5k", "2K",   "2km",    "2b",  "k",       "1.2.3",  "1e2.5", "1e2e3",
          "e",       "e5",     "E",        "em",   "abc",    "sin", "\xe9",    "5\xe9",  "=5",    "5 "})
        EXPECT_EQ("none", Number(text)) << text;
}

TEST_F(Scanner, ReadsShortNumbersAsTheNumberLibraryDoes) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    for (int i = 0; i < cases(20000); i++) {
        std::string text;
        for (auto digits = 1 + random() % 11; digits > 0; digits--)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 4 > 0) text.insert(random() % (text.size() + 1), 1, '.');
        qfloat value = {};
        qfloat expected = {};
        ASSERT_EQ(0, asctoq(text.c_str(), expected));
        ASSERT_EQ(0, calc.Str2Num(text.c_str(), value));
        ASSERT_EQ(0, memcmp(expected, value, sizeof value)) << text;
    }
}

TEST_F(Scanner, TakesAVariablesNameForANumberWithoutItsValue) {
    qfloat value = {};
    EXPECT_EQ(0, calc.Str2Num("pi", value));
    EXPECT_EQ(0, qcmp(qzero, value));
}

TEST_F(Scanner, NoTextIsNoNumber) {
    qfloat value = {};
    EXPECT_EQ(-1, calc.Str2Num(nullptr, value));
    EXPECT_STREQ("** crazy error **", calc.message);
}

TEST_F(Scanner, FindDecStringReportsWhereANumberStops) {
    const struct {
        const char* text;
        int kind;
        const char* rest;
    } cases[] = {{"", 1, ""},        {"12", 1, ""},      {"1.5e-7", 1, ""}, {".", 1, ""},
                 {"1e", 1, ""},      {"1e+", 1, ""},     {"x1", 0, ""},     {"e1", 0, ""},
                 {"-1", 0, ""},      {",1", 0, ""},      {"1x", 2, "x"},    {"1.2.3", 2, ".3"},
                 {"1e2.5", 2, ".5"}, {"1e2e3", 2, "e3"}, {"1,0", 2, ",0"},  {"1e+-2", 2, "-2"},
                 {".e5", 1, ""}};
    for (const auto& test : cases) {
        std::string_view rest;
        EXPECT_EQ(test.kind, findDecString(test.text, rest)) << test.text;
        EXPECT_EQ(test.rest, rest) << test.text;
    }
}

TEST_F(Scanner, NamesFollowTheNameRule) {
    for (const char* text : {"a", "Z", "x1", "a_b", "a_", "abc123"})
        EXPECT_TRUE(calc.IsValidVariable(text)) << text;
    for (const char* text : {"", "1", "_a", "a-b", "a b", "a.b", "\xe9", "a\xe9", "a\x11"}) {
        EXPECT_FALSE(calc.IsValidVariable(text)) << text;
    }
}

TEST_F(Scanner, VariablesAreFoundByTheirExactName) {
    EXPECT_EQ(calc.vars.last, calc.VariableExists("pi"));
    EXPECT_EQ(nullptr, calc.VariableExists("PI"));
    EXPECT_EQ(nullptr, calc.VariableExists("p"));
}

TEST_F(Scanner, SwapsPointAndCommaInEuropeanMode) {
    char text[] = "1.234,5";
    calc.ProcessStringEuropean(text);
    EXPECT_STREQ("1.234,5", text);
    calc.european = true;
    calc.ProcessStringEuropean(text);
    EXPECT_STREQ("1,234.5", text);
}

} // namespace
