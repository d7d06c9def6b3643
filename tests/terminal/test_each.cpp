// SPDX-License-Identifier: MIT
#include "Each.h"

#include "program.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

using Texts = std::vector<std::string>;
using Numbers = std::vector<size_t>;

std::string textOf(const FieldNumber& number) {
    return number.digits.empty() ? "'" + number.fault + "'" : (number.isNegative ? "-" : "") + number.digits;
}

struct FieldCase {
    const char* field;
    const char* number; // or the fault, in quotes
};

TEST(Field, IsANumberAsPeopleHaveItInFiles) {
    const FieldCase cases[] = {
        {"5", "5"},
        {"007", "007"},
        {" 12.50\t", "12.50"},
        {".5", "0.5"},
        {"5.", "5"},
        {"-5", "-5"},
        {"+5", "5"},
        {"\u22125", "-5"},
        {"5-", "-5"},
        {"(12.00)", "-12.00"},
        {"( 12.00 )", "-12.00"},
        {"1,234.50", "1234.50"},
        {"-1,234,567", "-1234567"},
        {"(1,234.50)", "-1234.50"},
        {"\"1,234.50\"", "1234.50"},
        {"1'234'567.5", "1234567.5"},
        {"1 234", "1234"},
        {"1\u00a0234\u00a0567", "1234567"},
        {"1\u202f234", "1234"},
        {"1e3", "1e3"},
        {"-1.5E-3", "-1.5e-3"},
        {"1e+3", "1e3"},
        {"0xFF", "0xFF"},
        {"-0b101", "-0b101"},
    };
    for (const FieldCase& one : cases)
        EXPECT_EQ(textOf(readField(one.field, false)), one.number) << one.field;
}

TEST(Field, WithADecimalCommaHasPointsBetweenGroups) {
    const FieldCase cases[] = {{"1.234,50", "1234.50"},
                               {"1,5", "1.5"},
                               {"-,5", "-0.5"},
                               {"1.234.567", "1234567"},
                               {"1\u00a0234,5", "1234.5"},
                               {"1.23", "'has groups that are not three digits long'"}};
    for (const FieldCase& one : cases) EXPECT_EQ(textOf(readField(one.field, true)), one.number) << one.field;
}

TEST(Field, OfAnythingElseIsNoNumberAndSaysWhy) {
    for (const char* const field : {"$5", "5 \u20ac", "\u00a312.50", "-$3", "\u00a55", "\u20b95"})
        EXPECT_EQ(readField(field, false).fault, "has a currency sign") << field;
    EXPECT_EQ(readField("12%", false).fault, "has a percent sign");
    for (const char* const field : {"1,23", "1234,567", "1,234,56", ",123", "1'23"})
        EXPECT_EQ(readField(field, false).fault,
                  "has groups that are not three digits long; --comma reads decimal commas")
            << field;
    for (const char* const field : {"",   " ",   "-",    "()",  "(",    "abc",     "5k",    "5 km",
                                    "1e", "e5",  "1..2", "--5", "(-5)", "-5-",     "+-5",   "1,234 567",
                                    "0x", "0xG", "0b12", "nan", "inf",  "1.2,345", "5\x01", "\xff"}) {
        const FieldNumber number = readField(field, false);
        EXPECT_EQ(number.digits, "") << field;
        EXPECT_NE(number.fault, "") << field;
    }
}

TEST(Fields, StandBetweenBlanks) {
    EXPECT_EQ(splitFields("a\tb  c ", ""), (Texts{"a", "b", "c"}));
    EXPECT_EQ(splitFields("  5", ""), (Texts{"5"}));
}

TEST(Fields, StandBetweenSeparators) {
    EXPECT_EQ(splitFields("a, b,,c", ","), (Texts{"a", "b", "", "c"}));
    EXPECT_EQ(splitFields("a,", ","), (Texts{"a", ""}));
    EXPECT_EQ(splitFields("a::b:c", "::"), (Texts{"a", "b:c"}));
    EXPECT_EQ(splitFields("\"1,000\", \"say \"\"x\"\"\",3", ","), (Texts{"1,000", "say \"x\"", "3"}));
    EXPECT_EQ(splitFields("\"open,3", ","), (Texts{"open,3"}));
}

TEST(Fields, NamedInAnEntryAreXAndXWithANumber) {
    EXPECT_EQ(fieldsNamedIn("s=s+x"), (Numbers{1}));
    EXPECT_EQ(fieldsNamedIn("x10*x2+x"), (Numbers{1, 2, 10}));
    EXPECT_EQ(fieldsNamedIn("max+x_1+0x1F+x0+xy+ax3+X2+1"), (Numbers{}));
}

TEST(Names, AssignedByAnEntryAreThoseInFrontOfTheEqualsSign) {
    EXPECT_EQ(namesAssignedIn("s=s+x; n = n+1;s/n"), (Texts{"s", "n"}));
    EXPECT_EQ(namesAssignedIn("x==3;f(y)=y;ans=2;x=x+1;1+s=2;# t=3"), (Texts{}));
}

Result evaluateEach(const Texts& arguments, const std::string& input) {
    Invocation invocation;
    invocation.arguments = arguments;
    invocation.input = input;
    return runProgram(invocation);
}

TEST(EachLine, GivesItsNumberToTheEntry) {
    expectRun(evaluateEach({"--each", "x*2"}, "5\r\n\n-3\n \t\n+2.5"), 0, "ans = 10\nans = -6\nans = 5\n",
              "");
}

TEST(EachLine, OfAColumnSumsUp) {
    expectRun(evaluateEach({"-q", "--each", "s=s+x", "--last"}, "1,234.50\n(12.00)\n-3\n"), 0, "1219.5\n",
              "");
    std::string lines;
    for (int i = 1; i <= 20000; ++i) lines += std::to_string(i) + "\n";
    expectRun(evaluateEach({"-q", "--each", "s=s+x", "--last"}, lines), 0, "200010000\n", "");
}

TEST(EachLine, MayHaveSeveralFields) {
    expectRun(evaluateEach({"-q", "--each", "x1*x3"}, "2 apples 3\n4\tpears  5\n"), 0, "6\n20\n", "");
    expectRun(evaluateEach({"-q", "-F,", "--each", "x2-x"}, "1,\"2,000\"\n3, 4 ,5\n"), 0, "1999\n1\n", "");
    expectRun(evaluateEach({"-q", "-F", "\\t", "--each", "x2"}, "a b\t7\n"), 0, "7\n", "");
}

TEST(EachLine, ThatTheEntryDoesNotReadMayHoldAnything) {
    expectRun(evaluateEach({"-q", "--each", "n=n+1", "--last"}, "a\n\xff\nb\n"), 0, "3\n", "");
}

TEST(EachLine, WithoutANumberIsToldAndLeftOut) {
    expectRun(evaluateEach({"-q", "--each", "s=s+x", "--last"}, "amount\n5\n\n$6\n7\n"), 1, "12\n",
              "line 1: ** ERROR: 'amount' is no number **\nline 4: ** ERROR: '$6' has a currency sign **\n");
    expectRun(evaluateEach({"-q", "-F,", "--each", "x2"}, "1\n1,\n1,\x1b\n1,2\n"), 1, "2\n",
              "line 1: ** ERROR: there is no field x2 **\nline 2: ** ERROR: the field x2 is empty **\n"
              "line 3: ** ERROR: '?' is no number **\n");
    expectRun(evaluateEach({"--fail-fast", "--each", "x"}, "1\nb\n3\n"), 1, "ans = 1\n",
              "line 2: ** ERROR: 'b' is no number **\n");
    expectRun(evaluateEach({"-q", "--each", "1/x"}, "0\n2\n"), 1, "0.5\n",
              "line 1: ** ERROR: divide by zero **\n");
}

TEST(EachLine, ThatIsTooLongIsToldAndNotCut) {
    const std::string line = std::string(1 << 20, ' ') + "5\n";
    expectRun(evaluateEach({"--each", "x"}, line + "6\n"), 1, "ans = 6\n",
              "line 1: ** ERROR: 1048576 max characters **\n");
}

TEST(EachLine, ComesAfterEntriesAndFiles) {
    expectRun(evaluateEach({"--each", "s=s*x", "s=10", "-q"}, "2\n3\n"), 0, "10\n20\n60\n", "");
    expectRun(evaluateEach({"--each", "twice(x)", "twice(y)=2*y", "-q"}, "2\n"), 0, "4\n", "");
}

TEST(EachLine, BeginsWithZeroWhateverWasKeptUnderTheName) {
    const TemporaryFolder folder;
    mkdir(folder.File("Tallyquill").c_str(), 0700);
    std::ofstream(folder.File("Tallyquill/pelmo_functions.txt"))
        << "### FUNCTIONS ###\n### VARIABLES ###\ns=1000\n### HISTORY ###\n";
    Invocation invocation;
    invocation.arguments = {"-q", "--each", "s=s+x", "--last"};
    invocation.input = "1\n2\n";
    invocation.environment = {"XDG_DATA_HOME=" + folder.Path()};
    expectRun(runProgram(invocation), 0, "3\n", "");
}

TEST(EachLine, ReadsDecimalCommasWhereEntriesDo) {
    expectRun(evaluateEach({"-q", "--comma", "--each", "x*2"}, "1.234,5\n"), 0, "2469\n", "");
}

TEST(EachLine, MayBeginWithAByteOrderMark) {
    expectRun(evaluateEach({"-q", "--each", "x"}, "\xef\xbb\xbf"
                                                  "5\n"),
              0, "5\n", "");
}

TEST(EachLine, BeyondTheRangeIsAnError) {
    const Result run = evaluateEach({"-q", "--each", "x+1"}, "1e99999\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.rfind("line 1: ** ERROR", 0), 0U) << run.err;
}

// Of more digits than the number library reads it would take those in front, another number.
TEST(Field, OfManyDigitsIsTheNumberOrNone) {
    const std::string digits(104, '7');
    const std::string zeros(150, '0');
    EXPECT_EQ(textOf(readField(digits, false)), digits);
    EXPECT_EQ(textOf(readField("0." + digits, false)), digits + "e-104");
    EXPECT_EQ(textOf(readField("-12" + zeros, false)), "-12e150");
    EXPECT_EQ(textOf(readField("0." + zeros + "12" + zeros, false)), "12e-152");
    EXPECT_EQ(textOf(readField("1" + zeros + ".5e3", false)), "'has more than 104 digits'");
    EXPECT_EQ(textOf(readField("0." + zeros + "5E+140", false)), "5e-11");
    EXPECT_EQ(textOf(readField(zeros + ".0", false)), "0");
    EXPECT_EQ(textOf(readField("5" + zeros + "e99999999999999999999", false)), "5e10000150");
    for (const std::string& field : {digits + "7", "0." + zeros + digits + "7", "0x" + digits + "F"})
        EXPECT_EQ(textOf(readField(field, false)), "'has more than 104 digits'") << field;
}

TEST(EachLine, OfManyDigitsIsReadRightOrTold) {
    const std::string ones(120, '1');
    const std::string zeros(150, '0');
    expectRun(evaluateEach({"-q", "--each", "x/1e150"}, "7" + zeros + "\n-7" + zeros + "\n"), 0, "7\n-7\n",
              "");
    expectRun(evaluateEach({"-q", "--each", "x"}, ones + "\n5\n"), 1, "5\n",
              "line 1: ** ERROR: '" + ones.substr(0, 59) + "\u2026' has more than 104 digits **\n");
}

TEST(EachLine, BeyondTheRangeIsNoErrorOfTheNextLine) {
    expectRun(evaluateEach({"-q", "--each", "x/10"}, "-1e10000\n50\n"), 1, "5\n",
              "line 1: ** ERROR: '-1e10000' is beyond the range **\n");
}

TEST(EachLine, NeedsAnEntry) {
    EXPECT_EQ(evaluate({"--each"}).status, 2);
    EXPECT_EQ(evaluate({"--each="}).status, 2);
    EXPECT_EQ(evaluate({"-F", "", "1"}).status, 2);
}

} // namespace
