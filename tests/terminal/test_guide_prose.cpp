// SPDX-License-Identifier: MIT
//
// What the guide says of entries in its running text is true, and each entry there is tried: tables, blocks
// and messages have tests of their own (test_documents.cpp).
#include "Guide.h"

#include "program.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

// A sentence, or a part of one, and what shows that it is true: the arguments of the program, and what it
// prints then; an error where that is null.
struct Claim {
    const char* sentence;
    Texts arguments;
    const char* answers;
    const char* input = "";
};

const std::vector<Claim> CLAIMS = {
    {"`2 3` is 23", {"-q", "2 3"}, "23\n"},
    {"(`sigfigs 50` shows more)",
     {"-q", "sigfigs 50; 1/3"},
     "0.33333333333333333333333333333333333333333333333333\n"},
    {"`2^3^2` is (2^3)^2, which is 64", {"-q", "2^3^2", "(2^3)^2"}, "64\n64\n"},
    {"Many other calculators say 512; for that, write `2^(3^2)`", {"-q", "2^(3^2)"}, "512\n"},
    {"`2+-3` has no answer; write `2+(-3)` or `2-3`", {"2+-3"}, nullptr},
    {"write `2+(-3)` or `2-3`", {"-q", "2+(-3)", "2-3"}, "-1\n-1\n"},
    {"Write `2+(-3)`", {"-q", "2+(-3)"}, "-1\n"},
    {"`2*-3` and `2^-1` work", {"-q", "2*-3", "2^-1"}, "-6\n0.5\n"},
    {"type `x=1`, `x=x*2`", {"-q", "x=1", "x=x*2", "x"}, "1\n2\n2\n"},
    {"with `f(m)=5 km->m` the call fails", {"-q", "f(m)=5 km->m; f(1)"}, nullptr},
    {"`g()=5`, can be defined and listed", {"g()=5", "list"}, "g()=5\nmod(x,d)=x%d\ng()=5\n"},
    {"but not called", {"g()=5; g()"}, nullptr},
    {"write `(10 km/hr->m/s)-3`", {"-q", "(10 km/hr->m/s)-3"}, "-0.2222222222\n"},
    {"`(5 km->mi)+(3 m->ft)` is an error", {"(5 km->mi)+(3 m->ft)"}, nullptr},
    {"`kg/m*s^2` is kg/(m s^2)", {"-q", "1 kg/m*s^2->Pa"}, "1\n"},
    {"(`20 kilometers->miles`)", {"-q", "20 kilometers->miles"}, "12.42742384\n"},
    {"written as `0xFF` (hexadecimal), `0b1010` (binary) or `0o17` (octal)",
     {"-q", "0xFF", "0b1010", "0o17"},
     "255\n10\n15\n"},
    {"`scimode auto; sigfigs 10` is how it was before",
     {"-q", "scimode auto; sigfigs 10; 2^0.5"},
     "1.414213562\n"},
    {"1 h 45 min is `1+45/60`", {"-q", "1+45/60"}, "1.75\n"},
    {"a power is `2^3`", {"-q", "2^3"}, "8\n"},
    {"12 percent are `12/100`", {"-q", "12/100"}, "0.12\n"},
    {"Write `3*(4)`", {"-q", "3*(4)"}, "12\n"},
    {"Write `2*pi` for `2pi`", {"-q", "2*pi"}, "6.283185307\n"},
    {"for `2pi`", {"2pi"}, nullptr},
    {"and `1000` or `1,000`", {"-q", "1000", "1,000"}, "1000\n1000\n"},
    {"for `1.000,0`", {"1.000,0"}, nullptr},
    {"hexadecimal digits are `0` to `9`", {"-q", "0x1239"}, "4665\n"},
    {"binary digits are `0` and `1`", {"-q", "0b10"}, "2\n"},
    {"octal digits are `0` to `7`", {"-q", "0o70"}, "56\n"},
    {"for a product write `x*(2)`", {"-q", "x=3", "x*(2)"}, "3\n6\n"},
    {"To compare, write `f(1)==2`", {"-q", "f(x)=x+1", "f(1)==2"}, "1\n"},
    {"write `unit smoot = 1.7018 meter`", {"-q", "unit smoot = 1.7018 meter", "1 smoot->m"}, "1.7018\n"},
    {"write `km/s^2`", {"-q", "5 km/s^2->m/s^2"}, "5000\n"},
    {"Write `(5 km->m)+3`", {"-q", "(5 km->m)+3"}, "5003\n"},
    {"they are `x1`, `x2` and so on", {"-q", "--each", "x1-x2"}, "4\n", "7 3\n"},
    {"`1,234.50`, `1'234.50`, `1.5e3`, and negative as `-12`, `12-` or `(12.00)`",
     {"-q", "--each", "x"},
     "1234.5\n1234.5\n1500\n-12\n-12\n-12\n",
     "1,234.50\n1'234.50\n1.5e3\n-12\n12-\n(12.00)\n"},
    {"with `--comma`, `1.234,50`", {"-q", "--comma", "--each", "x"}, "1234,5\n", "1.234,50\n"},
    {"A sign directly behind `+` or `-` is an error", {"2--3"}, nullptr},
    {"`scimode finance` is `scimode fixed`",
     {"-q", "scimode finance; 12.3", "scimode fixed; 12.3"},
     "12.3000000000\n12.3000000000\n"},
    {"After `del sinc` you can define it",
     {"-q", "del sinc; sinc(x)=sin(x)/x", "sinc(90)"},
     "0.01111111111\n"},
    {"`mW` is a thousandth of a watt, `MW` a million", {"-q", "1 mW->W", "1 MW->W"}, "0.001\n1000000\n"},
    {"a new base unit is `unit bit = -primitive`", {"-q", "unit bit = -primitive", "8 kbit->bit"}, "8000\n"},
    {"`C` and `F` are coulomb and farad", {"-q", "1 C->coulomb", "1 F->farad"}, "1\n1\n"},
    {"`rem` is another word for `del`", {"x=1; rem x"}, "** deleted x **\n"},
    {"Capitals do not count in the names of functions", {"-q", "SQRT(16)"}, "4\n"},
    {"The largest factorial is `1754!`, about 2e4930", {"-q", "1754!"}, "1.97926189e4930\n"},
    {"larger ones are an error too", {"1755!"}, nullptr},
    {"`2.5!` is 2", {"-q", "2.5!"}, "2\n"},
    {"`6^3` is 216; for the exclusive or write `6@3`, which is 5", {"-q", "6^3", "6@3"}, "216\n5\n"},
    {"`3 m*2` is 0.006", {"-q", "3 m*2"}, "0.006\n"},
    {"`-1 & 0xFF` is 1, and `1.5|0.25` is 1.75", {"-q", "--", "-1 & 0xFF", "1.5|0.25"}, "1\n1.75\n"},
    {"The answer has the sign of the operand with more bits, or of the right one when both have as many",
     {"-q", "--", "-256|3", "3|-256", "-1@255", "-255|128", "128|-255"},
     "-259\n-259\n254\n255\n-255\n"},
    {"and changes nothing of how they are computed",
     {"-q", "--twos-complement", "--base=hex", "--", "-1", "-1 & 0xFF"},
     "0xFFFFFFFF\n0x0001\n"},
    {"numbers below 0.001 have an exponent, those from 10^8 on",
     {"-q", "0.001", "0.00099", "99999999", "123456789"},
     "0.001\n9.9e-4\n99999999\n1.23456789e8\n"},
    {"with fewer figures those from 10^(figures+1) on", {"-q", "--figures=2", "999", "1001"}, "999\n1.0e3\n"},
    {"but not a whole number below 10^10 that ends with 0", {"-q", "1234567890"}, "1234567890\n"},
    {"`255` stays 255, `255.5` is 260, and `1234` is 1.2e3",
     {"-q", "--figures=2", "255", "255.5", "1234"},
     "255\n260\n1.2e3\n"},
    {"that nearest to 12.345 is a little below it, so that 12.34 is shown",
     {"-q", "--exponents=fixed", "--figures=2", "12.345"},
     "12.34\n"},
    {"0.005 is 0.01", {"-q", "--exponents=fixed", "--figures=2", "0.005"}, "0.01\n"},
    {"in arguments and files they are errors", {"2×3"}, nullptr},
    {"so is the difference of two numbers that agree to 103 digits", {"-q", "(1+1e-104)-1"}, "0\n"},
};

// What is code with a digit in the running text and no entry: files, messages and other programs.
bool isNoEntry(const std::string& code) {
    static const Texts others = {".unreadable.1",
                                 "'500' is no value of option '--figures': 1 to 100",
                                 "An entry that begins with '-' goes behind '--': tallyquill -- '-2^2'",
                                 "5 is a digit.",
                                 "Show 45-second quick tutorial?",
                                 "tallyquill: option '--figures' needs a value: N",
                                 "convert 5 miles to km",
                                 "tallyquill years=30 -f loan.tq",
                                 "tallyquill years=20 -f ./loan",
                                 "tallyquill -f lib.tq 'f(2)'",
                                 "ERROR 13"};
    return code.rfind("** ", 0) == 0 || std::find(others.begin(), others.end(), code) != others.end();
}

// The guide's paragraphs and items, each on one line, without tables and blocks.
Texts paragraphs() {
    Texts all(1);
    bool isBlock = false;
    for (const std::string& title : guideTopics()) {
        std::istringstream lines{std::string(guideMarkdown(title))};
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("```", 0) == 0) isBlock = !isBlock;
            if (line.empty() || line.rfind("- ", 0) == 0) all.emplace_back();
            if (isBlock || line.rfind("```", 0) == 0 || line.rfind('|', 0) == 0) continue;
            const size_t start = std::min(line.find_first_not_of(' '), line.size());
            all.back() += (all.back().empty() ? "" : " ") + line.substr(start);
        }
    }
    return all;
}

TEST(GuideProse, SaysOfEntriesWhatIsTrue) {
    const Texts all = paragraphs();
    for (const Claim& claim : CLAIMS) {
        SCOPED_TRACE(claim.sentence);
        EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&claim](const std::string& one) {
            return one.find(claim.sentence) != std::string::npos;
        }));
        Invocation invocation;
        invocation.arguments = claim.arguments;
        invocation.input = claim.input;
        const Result run = runProgram(invocation);
        EXPECT_EQ(run.status, claim.answers ? 0 : 1) << run.err;
        EXPECT_EQ(run.out, claim.answers ? claim.answers : "");
    }
}

// The entry of "MESSAGE after ENTRY" is tried by another test.
TEST(GuideProse, HasNoEntryThatIsNotTried) {
    int tried = 0;
    for (const std::string& text : paragraphs()) {
        for (size_t open = text.find('`'); open != std::string::npos;) {
            const size_t close = text.find('`', open + 1);
            ASSERT_NE(close, std::string::npos) << text;
            const std::string code = text.substr(open + 1, close - open - 1);
            const bool isAfterMessage = open > 7 && text.compare(open - 7, 7, " after ") == 0;
            const bool hasDigit =
                std::any_of(code.begin(), code.end(), [](unsigned char c) { return isdigit(c) != 0; });
            const auto isIn = [&](const Claim& claim) {
                const size_t at = text.find(claim.sentence);
                return at <= open && close < at + std::string(claim.sentence).size();
            };
            if (hasDigit && !isAfterMessage && !isNoEntry(code)) {
                EXPECT_TRUE(std::any_of(CLAIMS.begin(), CLAIMS.end(), isIn)) << code << " in: " << text;
                ++tried;
            }
            open = text.find('`', close + 1);
        }
    }
    EXPECT_GT(tried, 40);
}

} // namespace
