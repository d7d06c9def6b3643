// SPDX-License-Identifier: MIT
//
// Files of entries, and the options for scripts.
#include "program.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

Result evaluateLines(const std::vector<std::string>& arguments, const std::string& input) {
    Invocation invocation;
    invocation.arguments = arguments;
    invocation.input = input;
    return runProgram(invocation);
}

// A file of lines.
class Script {
public:
    explicit Script(const std::string& text) { std::ofstream(file.Path()) << text; }
    const std::string& Path() const { return file.Path(); }

private:
    const TemporaryFile file;
};

TEST(File, EveryLineIsAnEntry) {
    const Script script("x=5\r\n\n  \nx*2 # twice\n3+4");
    expectRun(evaluate({"-f", script.Path()}), 0, "x = 5\nans = 10\nans = 7\n", "");
}

TEST(File, FilesAndEntriesAreEvaluatedInTheirOrder) {
    const Script doubled("x=x*2\n");
    const Script added("x=x+1\n");
    expectRun(evaluate({"x=5", "-f", doubled.Path(), "--file=" + added.Path(), "x*100"}), 0,
              "x = 5\nx = 10\nx = 11\nans = 1100\n", "");
}

TEST(File, OfMinusIsStandardInput) {
    expectRun(evaluateLines({"y=1", "-f", "-", "y+x"}, "x=2\n"), 0, "y = 1\nx = 2\nans = 3\n", "");
    expectRun(evaluateLines({"-f-"}, "1/0\n"), 1, "", "** ERROR: divide by zero **\n");
}

TEST(File, AnErrorIsToldWithItsPlace) {
    const Script script("1\n1/0\n2\n()\n");
    expectRun(evaluate({"-f", script.Path(), "1/0"}), 1, "ans = 1\nans = 2\n",
              script.Path() + ":2: ** ERROR: divide by zero **\n" + script.Path() +
                  ":4: ** ERROR: empty parenthesis **\n** ERROR: divide by zero **\n");
}

TEST(File, ThatCannotBeReadEndsTheRun) {
    expectRun(evaluate({"1", "-f", "/no/such/file", "2"}), 3, "ans = 1\n",
              "tallyquill: /no/such/file: No such file or directory\n");
    expectRun(evaluate({"-f", "/"}), 3, "", "tallyquill: /: Is a directory\n");
}

TEST(File, AFirstLineThatNamesItsProgramIsNoEntry) {
    const Script script("#!/usr/bin/tallyquill -f; 1/0\n#!2;3\n");
    expectRun(evaluate({"-f", script.Path()}), 0, "ans = 3\n", "");
}

TEST(File, MayBeAProgramOfItsOwn) {
    const Script script("#!/usr/bin/env -S \"" + std::string(TALLYQUILL_PROGRAM) +
                        "\" -f\nhyp(a,b)=sqrt(a^2+b^2)\n");
    ASSERT_EQ(chmod(script.Path().c_str(), 0700), 0);
    FILE* const run = popen(("'" + script.Path() + "' -q 'hyp(3,4)'").c_str(), "r"); // NOLINT(cert-env33-c)
    ASSERT_NE(run, nullptr);
    char out[100] = {};
    EXPECT_NE(fgets(out, sizeof out, run), nullptr);
    EXPECT_STREQ(out, "5\n");
    EXPECT_EQ(pclose(run), 0);
}

TEST(Quiet, PrintsValuesAlone) {
    const std::string lines = "f(x)=x*2\nmode rad\necho text\nx=f(4)\nx;x+1\nlist\n";
    expectRun(evaluateLines({"-q"}, lines), 0, "8\n9\n", "");
    expectRun(evaluateLines({"--quiet", "--base=hex", "255"}, ""), 0, "0x00FF\n", "");
}

TEST(Quiet, LeavesErrorsWhereTheyAre) {
    expectRun(evaluate({"-q", "1/0", "2"}), 1, "2\n", "** ERROR: divide by zero **\n");
}

TEST(Last, PrintsTheLastValueAtTheEnd) {
    expectRun(evaluate({"--last", "1", "x=2", "mode rad", "f(x)=x"}), 0, "x = 2\n", "");
    expectRun(evaluate({"--last", "-q", "1", "x=2", "1/0"}), 1, "2\n", "** ERROR: divide by zero **\n");
    expectRun(evaluate({"--last", "mode rad"}), 0, "", "");
    expectRun(evaluate({"--last", "1", "exit", "2"}), 0, "ans = 1\n", "");
}

TEST(FailFast, StopsAtTheFirstError) {
    expectRun(evaluate({"--fail-fast", "1", "1/0", "2"}), 1, "ans = 1\n", "** ERROR: divide by zero **\n");
    expectRun(evaluateLines({"--fail-fast", "--last"}, "1\n1/0\n2\n"), 1, "ans = 1\n",
              "** ERROR: divide by zero **\n");
    const Script script("1/0\n2\n");
    expectRun(evaluate({"--fail-fast", "-f", script.Path(), "3"}), 1, "",
              script.Path() + ":1: ** ERROR: divide by zero **\n");
}

TEST(Preview, EvaluatesAndStoresNothing) {
    expectRun(evaluate({"--preview", "pi=3", "pi", "f(x)=x", "f(2)"}), 1, "ans = 3\nans = 3.141592654\n",
              "** ERROR: unrecognized function 'f' **\n");
}

TEST(Preview, GivesUpWhatTakesLong) {
    const Result run = evaluate({"--preview", "-q", "1+1", "sin(rand(1)" + std::string(9000, '!') + ")"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "2\n");
    EXPECT_NE(run.err, "");
}

// What an option sets for the whole run.
struct SettingCase {
    std::vector<std::string> options;
    std::string entry;
    std::string answer;
};

TEST(SettingOptions, HoldForTheRun) {
    const SettingCase cases[] = {
        {{}, "sin(30)", "0.5"},
        {{"--rad"}, "cos(pi)", "-1"},
        {{"--rad", "--deg"}, "sin(30)", "0.5"},
        {{"--figures=20"}, "2^0.5", "1.4142135623730950488"},
        {{"--base=hex"}, "255", "0x00FF"},
        {{"--base", "bin"}, "10", "0b 1010"},
        {{"--exponents=never"}, "2^70", "1180591620717411303424"},
        {{"--exponents", "fixed", "--figures", "2"}, "2/3", "0.67"},
        {{"--base=hex", "--twos-complement"}, "0-1", "0xFFFFFFFF"},
        {{"--group"}, "1234567.5", "1,234,567.5"},
        {{"--group", "--mark='"}, "1234567.5", "1'234'567.5"},
        {{"--comma"}, "1.000,5*2", "2001"},
        {{"--comma", "--group"}, "1234,5", "1.234,5"},
        {{"--ten-key"}, "5+3-", "2"},
    };
    for (const SettingCase& one : cases) {
        std::vector<std::string> arguments = one.options;
        arguments.insert(arguments.end(), {"-q", one.entry});
        expectRun(evaluate(arguments), 0, one.answer + "\n", "");
    }
}

// --- Streams ---

using Arguments = std::vector<std::string>;

const Arguments EVERY_OUTPUT[] = {
    {"-q", "1"}, {"--last", "1"}, {"--json", "1"},           {"--preview", "1"},
    {"-f", "-"}, {"--each", "x"}, {"--each", "x", "--last"}, {"--each", "x", "--json"}};

Invocation invocationOf(const Arguments& arguments) {
    Invocation invocation;
    invocation.arguments = arguments;
    invocation.input = "1\n";
    return invocation;
}

TEST(Streams, AnOutputThatIsFullOrClosedIsAnErrorWithEveryOption) {
    for (const Arguments& arguments : EVERY_OUTPUT) {
        Invocation invocation = invocationOf(arguments);
        invocation.closeOutput = true;
        Result run = runProgram(invocation);
        EXPECT_EQ(run.status, 3) << arguments[0];
        EXPECT_EQ(run.err, "tallyquill: standard output: Bad file descriptor\n");
#ifdef __linux__
        invocation = invocationOf(arguments);
        invocation.outputFile = "/dev/full";
        run = runProgram(invocation);
        EXPECT_EQ(run.status, 3) << arguments[0];
        EXPECT_EQ(run.err, "tallyquill: standard output: No space left on device\n");
#endif
    }
}

TEST(Streams, AnInputThatIsClosedIsAnErrorWhereItIsRead) {
    for (const Arguments& arguments : {Arguments{"-f", "-"}, Arguments{"--each", "x"}, Arguments{"--json"}}) {
        Invocation invocation = invocationOf(arguments);
        invocation.closeInput = true;
        expectRun(runProgram(invocation), 3, "", "tallyquill: standard input: Bad file descriptor\n");
    }
    Invocation invocation = invocationOf({"1+1"});
    invocation.closeInput = true;
    expectRun(runProgram(invocation), 0, "ans = 2\n", "");
}

TEST(Streams, ErrorsThatNobodyCanReadAreSeenByTheStatus) {
    Invocation invocation = invocationOf({"--each", "x", "-q"});
    invocation.input = "1\nb\n";
    invocation.closeErrors = true;
    expectRun(runProgram(invocation), 1, "1\n", "");
}

TEST(Streams, WhatIsNoTextIsRefusedInFilesToo) {
    const Script script(std::string("1\n2\0003\n\xe2\x82\n# \xe2\x82\xac\n4\r\n\r\n5", 21));
    const std::string place = script.Path() + ":";
    const std::string refusal = ": ** Invalid character/encoding used. **\n";
    expectRun(evaluate({"-q", "-f", script.Path()}), 1, "1\n4\n5\n",
              place + "2" + refusal + place + "3" + refusal);
}

TEST(Streams, TheLocaleChangesNothing) {
    for (const char* const locale : {"C", "C.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8", "nonsense"}) {
        Invocation invocation = invocationOf({"-q", "--with", "everyday", "1.5*2", "1.5 kWh->J", "-f", "-"});
        invocation.input = "SIN(30) # \u00e9\n";
        invocation.environment = {std::string("LC_ALL=") + locale};
        expectRun(runProgram(invocation), 0, "3\n5400000\n0.5\n", "");
    }
}

// What stands in a terminal behind the run; its last line is of an entry without a hint.
std::string shownInTerminal(std::vector<std::string> arguments) {
    const std::string last = "** ERROR: divide by zero **\n";
    arguments.insert(arguments.begin(), "--color=never");
    arguments.emplace_back("1/0");
    Terminal terminal(arguments);
    const std::string shown = terminal.ReadUntil(last);
    EXPECT_EQ(terminal.Wait(), 1);
    return shown.substr(0, shown.size() - std::min(last.size(), shown.size()));
}

TEST(Hints, FollowTheErrorOfAnArgumentInATerminal) {
    EXPECT_EQ(shownInTerminal({"2**3"}), "** ERROR 2: operator '*' missing argument **\n"
                                         "a power is written with ^: write 2^3\n");
    EXPECT_EQ(shownInTerminal({"1 zork->m"}), "** ERROR 13: invalid unit name 'zork' in 'zork' **\n"
                                              "at the prompt, :units lists the units\n");
}

TEST(Hints, SayHowAFileIsEvaluated) {
    const TemporaryFile file;
    const std::string& name = file.Path();
    const std::string shown = shownInTerminal({name});
    const std::string end = "\n" + name + " is a file: tallyquill -f " + name + " evaluates its lines\n";
    EXPECT_EQ(shown.substr(shown.size() - std::min(end.size(), shown.size())), end);
}

TEST(Hints, DoNotFollowErrorsOfFiles) {
    const Script file("2**3\n");
    EXPECT_EQ(shownInTerminal({"-f", file.Path()}),
              file.Path() + ":1: ** ERROR 2: operator '*' missing argument **\n");
}

TEST(Hints, AreNotForOtherPrograms) {
    expectRun(evaluate({"2**3"}), 1, "", "** ERROR 2: operator '*' missing argument **\n");
}

TEST(Streams, ControlCIsTheStatus130ForAShell) {
    for (const char* const run :
         {"\"$0\" 7 pause5000", "printf '7\\npause5000\\n' | \"$0\"", "echo 1 | \"$0\" 7 --each pause5000"}) {
        TerminalSetup setup;
        setup.shellScript = std::string("trap : INT; ") + run + "; echo status $?";
        Terminal terminal({}, setup);
        terminal.ReadUntil("ans = 7\n"); // before that the key may reach the shell alone
        const std::string shown = terminal.InterruptUntil("status 130\n");
        EXPECT_NE(shown.find("status 130\n"), std::string::npos) << run << ": " << shown;
    }
}

TEST(Usage, ABadValueOfAnOptionIsBadUsage) {
    expectRun(evaluate({"--base=8", "1"}), 2, "",
              "tallyquill: '8' is no value of option '--base': bin|dec|hex\nTry 'tallyquill --help'.\n");
}

} // namespace
