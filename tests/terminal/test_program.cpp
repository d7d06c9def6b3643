// SPDX-License-Identifier: MIT
//
// The built program, driven through pipes.
#include "program.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using std::string_literals::operator""s;

const std::string TOO_LONG = "** ERROR: 10000 max characters **\n";
const std::string NOT_TEXT = "** Invalid character/encoding used. **\n";

// A sum of ones that is `length` characters long (an odd number), and so (length + 1) / 2.
std::string sumOfOnes(size_t length) {
    std::string sum = "1";
    while (sum.size() < length) sum += "+1";
    return sum;
}

TEST(Arguments, AnEntryIsAnsweredOnStandardOutput) {
    expectRun(evaluate({"2+3*4"}), 0, "ans = 14\n", "");
}

TEST(Arguments, SeveralArgumentsAreSeveralEntriesOfOneSession) {
    expectRun(evaluate({"x=5; y=x*2", "y+1", "ans*2"}), 0, "y = 10\nans = 11\nans = 22\n", "");
}

TEST(Arguments, StandardInputIsLeftAloneWhenThereAreEntries) {
    Invocation invocation;
    invocation.arguments = {"1+1"};
    invocation.input = "2+2\n";
    expectRun(runProgram(invocation), 0, "ans = 2\n", "");
}

TEST(Arguments, AFailedEntryGoesToStandardErrorAndTheNextOneIsAnswered) {
    expectRun(evaluate({"((1+2", "1+2"}), 1, "ans = 3\n", "** ERROR: missing parenthesis **\n");
    expectRun(evaluate({"1+2", "2+-3"}), 1, "ans = 3\n", "** ERROR 8: invalid term = - **\n");
}

TEST(Arguments, BehindTwoDashesAnEntryMayBeginWithAMinus) {
    expectRun(evaluate({"--", "-2^2", "--help"}), 1, "ans = -4\n", "** ERROR 8: invalid term = - **\n");
}

TEST(Arguments, ABlankEntryIsAnsweredWithNothingAndRepeatsNothing) {
    expectRun(evaluate({""}), 0, "", "");
    expectRun(evaluate({"x=1", "x=x+1", "", " ", "\t", "x"}), 0, "x = 1\nx = 2\nans = 2\n", "");
}

TEST(Arguments, AnEntryThatIsTooLongOrNoTextIsRefused) {
    expectRun(evaluate({std::string(10000, '1'), "\xB5", "1\n+2", "3"}), 1, "ans = 3\n",
              TOO_LONG + NOT_TEXT + NOT_TEXT);
}

TEST(Usage, HelpGoesToStandardOutput) {
    const Result run = evaluate({"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out.rfind("Usage: tallyquill ", 0), 0U);
    for (const char* const option : {"--help", "--version", "--trace", "--"}) {
        EXPECT_NE(run.out.find(option), std::string::npos) << option;
    }
}

TEST(Usage, VersionGoesToStandardOutput) {
    expectRun(evaluate({"--version"}), 0, "tallyquill " TALLYQUILL_VERSION "\n", "");
}

TEST(Usage, AnUnknownOptionIsBadUsageWithAHint) {
    const Result run = evaluate({"-5+3"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("unknown option '-5+3'"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("tallyquill -- '-5+3'"), std::string::npos) << run.err;
}

TEST(Usage, AnOptionIsQuotedWithoutControlCharacters) {
    const Result run = evaluate({"-\x1B]0;x\x07"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.rfind("tallyquill: unknown option '-?]0;x?'\n", 0), 0U) << run.err;
    EXPECT_EQ(run.err.find_first_of("\x1B\x07"), std::string::npos) << run.err;
}

TEST(Usage, BadUsageEvaluatesNothing) {
    const Result run = evaluate({"1+1", "--wrong"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
}

TEST(Usage, TheTraceNeverMixesWithTheAnswers) {
    expectRun(evaluate({"(1+2)*3"}), 0, "ans = 9\n", "");
    expectRun(pipeThrough("(1+2)*3\n"), 0, "ans = 9\n", "");
}

TEST(Usage, TraceGoesToStandardErrorWhenAskedFor) {
    const Result run = evaluate({"--trace", "(1+2)*3", "((1)"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "ans = 9\n");
    const size_t trace = run.err.find("Attempting ProcParenth...");
    const size_t error = run.err.find("** ERROR: missing parenthesis **\n");
    EXPECT_NE(trace, std::string::npos) << run.err;
    EXPECT_NE(error, std::string::npos) << run.err;
    EXPECT_LT(trace, error); // each entry's trace comes before the next entry
}

TEST(StandardInput, EachLineIsAnEntryAndNoPromptIsShown) {
    expectRun(pipeThrough("2+3*4\nx=7\nx*2\n"), 0, "ans = 14\nx = 7\nans = 14\n", "");
}

TEST(StandardInput, NothingIsAnsweredWithNothing) {
    expectRun(pipeThrough(""), 0, "", "");
}

TEST(StandardInput, ABlankLineRepeatsNothing) {
    for (const char* const blank :
         {"\n", "\n\n\n", "\r\n", "  \n", "\t\n", "# note\n", "  # note\n", "\n  \n\n"}) {
        expectRun(pipeThrough(std::string("x=1\nx=x+1\n") + blank + "x\n"), 0, "x = 1\nx = 2\nans = 2\n", "");
    }
}

TEST(StandardInput, ABlankLastLineRepeatsNothing) {
    expectRun(pipeThrough("x=1\nx=x+1\n  "), 0, "x = 1\nx = 2\n", "");
    expectRun(pipeThrough("x=1\nx=x+1\n\n"), 0, "x = 1\nx = 2\n", "");
}

TEST(StandardInput, TheLastLineNeedsNoLineFeed) {
    expectRun(pipeThrough("1+1\n2+2"), 0, "ans = 2\nans = 4\n", "");
}

TEST(StandardInput, LinesMayEndInCarriageReturnAndLineFeed) {
    expectRun(pipeThrough("1+1\r\n2+2\r\n"), 0, "ans = 2\nans = 4\n", "");
}

TEST(StandardInput, ACarriageReturnInsideALineJoinsNoNumbers) {
    expectRun(pipeThrough("1+1\r2+2\n3\n"), 1, "ans = 3\n", NOT_TEXT);
}

TEST(StandardInput, AFailedLineGoesToStandardErrorAndTheNextOneIsAnswered) {
    expectRun(pipeThrough("1/0\n1+1\n"), 1, "ans = 2\n", "** ERROR: divide by zero **\n");
}

TEST(StandardInput, ALineOf9999CharactersIsAnswered) {
    expectRun(pipeThrough(sumOfOnes(9999) + "\n1\n"), 0, "ans = 5000\nans = 1\n", "");
    expectRun(pipeThrough(sumOfOnes(9999) + "\r\n1\n"), 0, "ans = 5000\nans = 1\n", "");
}

TEST(StandardInput, ALongerLineIsRefusedAndTheNextOneIsAnswered) {
    for (const size_t length : {10000U, 10001U, 10002U, 10003U, 65536U, 300000U}) {
        expectRun(pipeThrough(std::string(length, '1') + "\n1+1\n"), 1, "ans = 2\n", TOO_LONG);
        expectRun(pipeThrough(std::string(length, '1') + "\r\n1+1\n"), 1, "ans = 2\n", TOO_LONG);
        expectRun(pipeThrough(std::string(length, '1')), 1, "", TOO_LONG);
    }
}

TEST(StandardInput, AHugeLineNeedsNoMoreMemoryThanAShortOne) {
    Invocation invocation;
    invocation.input = "1+1\n";
    const long small = runProgram(invocation).peakMemory;
    invocation.input = std::string(1 << 20, '1');
    invocation.inputTimes = 100;
    const Result run = runProgram(invocation);
    expectRun(run, 1, "", TOO_LONG);
    EXPECT_LT(run.peakMemory - small, 20L * 1024); // of 100 MiB
}

TEST(StandardInput, ALineThatIsNoTextIsRefusedAndTheNextOneIsAnswered) {
    for (const std::string& line : {"1+1\0+1"s, "\0"s, "3\xB5"s,
                                    "gr\xF6\xDF"
                                    "e"s,
                                    "\xC3"s, "\xED\xA0\x80"s, "1\x1B[2J"s, "5 \x10km\x11mi"s}) {
        expectRun(pipeThrough(line + "\n1+1\n"), 1, "ans = 2\n", NOT_TEXT);
    }
}

TEST(StandardInput, CharactersBeyondAsciiAreAnErrorInAnEntryButNotInAComment) {
    const Result run = pipeThrough("2\xC3\x97"
                                   "3\n1+1 # gr\xC3\xB6\xC3\x9F"
                                   "er\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "ans = 2\n");
    EXPECT_EQ(run.err, "** ERROR 7: invalid term = 2\xC3\x97"
                       "3 **\n");
}

// A terminal takes U+009B for the beginning of an escape sequence.
TEST(StandardInput, AnswersAndErrorsAreShownWithoutControlCharacters) {
    expectRun(pipeThrough("echo a\xC2\x9B"
                          "2Jb\necho50 c\xC2\x9B"
                          "2Jd\nx\xC2\x9B"
                          "2J\n"),
              1, "a?2Jb\nc?2Jd\n", "** ERROR 7: invalid term = x?2J **\n");
}

TEST(StandardInput, EveryByteIsSurvived) {
    std::string input;
    for (int first = 0; first < 256; ++first) {
        for (const char* const rest : {"", "1", "+1", "1+"}) {
            input += static_cast<char>(first);
            input += rest;
            input += '\n';
        }
    }
    const Result run = pipeThrough(input + "6*7\n");
    EXPECT_EQ(run.status, 1);
    ASSERT_GE(run.out.size(), 9U);
    EXPECT_EQ(run.out.substr(run.out.size() - 9), "ans = 42\n");
}

TEST(StandardInput, ManyLinesAreAnsweredInOrder) {
    std::string input;
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        input += std::to_string(i) + "\n";
        expected += "ans = " + std::to_string(i) + "\n";
    }
    expectRun(pipeThrough(input), 0, expected, "");
}

TEST(StandardInput, WhenItIsClosedTheRunFails) {
    Invocation invocation;
    invocation.closeInput = true;
    const Result run = runProgram(invocation);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("tallyquill: standard input: "), std::string::npos) << run.err;
}

TEST(StandardOutput, WhenItIsClosedTheRunFails) {
    for (const bool withArguments : {true, false}) {
        Invocation invocation;
        if (withArguments) invocation.arguments = {"1+1"};
        invocation.input = "1+1\n";
        invocation.closeOutput = true;
        const Result run = runProgram(invocation);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("tallyquill: standard output: "), std::string::npos) << run.err;
    }
}

TEST(StandardOutput, WhenInputAndOutputAreClosedTheRunFails) {
    Invocation invocation;
    invocation.arguments = {"1+1"};
    invocation.closeInput = true;
    invocation.closeOutput = true;
    EXPECT_EQ(runProgram(invocation).status, 3);
}

#ifdef __linux__
TEST(StandardOutput, WhenItIsFullTheRunFails) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"1+1"}, std::vector<std::string>{"--help"},
          std::vector<std::string>{"--version"}}) {
        Invocation invocation;
        invocation.arguments = arguments;
        invocation.outputFile = "/dev/full";
        const Result run = runProgram(invocation);
        EXPECT_EQ(run.status, 3) << arguments.front();
        EXPECT_EQ(run.err, "tallyquill: standard output: No space left on device\n");
    }
}
#endif

TEST(StandardOutput, WhenNobodyReadsItTheRunEndsQuietlyWithAFailure) {
    Invocation invocation;
    invocation.input = "1+1\n";
    invocation.inputTimes = 100000;
    invocation.abandonOutput = true;
    const Result run = runProgram(invocation);
    EXPECT_EQ(run.status, 3); // and not -1: no signal
    EXPECT_EQ(run.err, "");
}

TEST(StandardOutput, CollectsTheAnswersInAFile) {
    const TemporaryFile file;
    Invocation invocation;
    invocation.input = "1+1\n1/0\n2+2\n";
    invocation.outputFile = file.Path();
    EXPECT_EQ(runProgram(invocation).status, 1);
    EXPECT_EQ(file.Content(), "ans = 2\nans = 4\n");
}

TEST(StandardError, WhenItIsClosedTheAnswersStillCome) {
    using Arguments = std::vector<std::string>;
    for (const Arguments& arguments : {Arguments{"1/0", "(1+1)"}, Arguments{"--trace", "1/0", "(1+1)"}}) {
        Invocation invocation;
        invocation.arguments = arguments;
        invocation.closeErrors = true;
        const Result run = runProgram(invocation);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "ans = 2\n") << arguments.front();
    }
}

} // namespace
