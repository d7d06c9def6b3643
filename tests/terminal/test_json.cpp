// SPDX-License-Identifier: MIT
//
// Objects for programs. python3 reads what the program writes.
#include "Json.h"

#include "program.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(JsonString, IsAsciiInQuotes) {
    EXPECT_EQ(jsonString(""), "\"\"");
    EXPECT_EQ(jsonString("a\"b\\c/d"), "\"a\\\"b\\\\c/d\"");
    EXPECT_EQ(jsonString(std::string("\0\n\t\x1b\x7f", 5)), "\"\\u0000\\u000a\\u0009\\u001b\\u007f\"");
    EXPECT_EQ(jsonString("\u00e9\u20ac\U0001f600"), "\"\\u00e9\\u20ac\\ud83d\\ude00\"");
    EXPECT_EQ(jsonString("\U0010ffff"), "\"\\udbff\\udfff\"");
}

TEST(JsonString, ReplacesEachByteThatIsNoUtf8) {
    EXPECT_EQ(jsonString("\xff"), "\"\\ufffd\"");
    EXPECT_EQ(jsonString("a\xe2\x82"), "\"a\\ufffd\\ufffd\"");
    EXPECT_EQ(jsonString("\xc0\x80\xed\xa0\x80"), "\"\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\"");
}

TEST(JsonLine, HasAllFieldsAndNullWhereThereIsNothing) {
    JsonAnswer answer;
    answer.entry = "1+1";
    answer.line = 7;
    answer.status = "message";
    EXPECT_EQ(jsonLine(answer), "{\"entry\": \"1+1\", \"line\": 7, \"status\": \"message\", \"name\": null, "
                                "\"value\": null, \"text\": null, \"message\": null, \"position\": null}\n");
}

TEST(JsonLine, CountsThePositionInCharacters) {
    JsonAnswer answer;
    answer.entry = "\u00e9+\u20acx";
    answer.position = {3, 4}; // the euro sign has three bytes
    EXPECT_NE(jsonLine(answer).find("\"position\": {\"start\": 2, \"length\": 2}"), std::string::npos);
    answer.position = {99, 1};
    EXPECT_NE(jsonLine(answer).find("\"position\": null"), std::string::npos);
}

// What python3 reads: of each object its line, status, name, value, text, message and position, between bars.
// "MALFORMED" and the line when a line is no object with these fields in this order.
std::string readByPython(const std::string& out) {
    const TemporaryFile file;
    std::ofstream(file.Path()) << out;
    const std::string program =
        "import json, sys\n"
        "for line in open(sys.argv[1], \"rb\").read().decode(\"ascii\").split(\"\\n\")[:-1]:\n"
        "    o = json.loads(line)\n"
        "    if list(o) != \"entry line status name value text message position\".split(): print(\"!\", "
        "line)\n"
        "    p = o[\"position\"]\n"
        "    if p and list(p) != [\"start\", \"length\"]: print(\"MALFORMED\", line)\n"
        "    print(*[o[k] for k in list(o)[1:-1]], p and (p[\"start\"], p[\"length\"]), sep=\"|\")\n";
    // NOLINTNEXTLINE(cert-env33-c): a fixed command
    FILE* const run = popen(("python3 -c '" + program + "' '" + file.Path() + "' 2>&1").c_str(), "r");
    std::string read;
    char block[4096];
    while (run != nullptr && std::fgets(block, sizeof block, run) != nullptr) read += block;
    EXPECT_EQ(pclose(run), 0) << read;
    return read;
}

Result evaluateJson(const std::vector<std::string>& arguments, const std::string& input = "") {
    Invocation invocation;
    invocation.arguments = {"--json"};
    invocation.arguments.insert(invocation.arguments.end(), arguments.begin(), arguments.end());
    invocation.input = input;
    Result result = runProgram(invocation);
    EXPECT_EQ(result.err, "");
    return result;
}

TEST(Json, HasAnObjectForEachStatement) {
    const Result run =
        evaluateJson({"x=0.5; x*2 # twice", "1+zz+2", "f(x)=x", "echo20 hi", "mode rad;;", "1/0;7"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(readByPython(run.out), "1|value|x|0.5|0.5|None|None\n"
                                     "1|value|ans|1|1|None|None\n"
                                     "2|error|None|None|None|** ERROR 7: invalid term = zz **|(2, 2)\n"
                                     "3|message|None|None|None|f(x)=x|None\n"
                                     "4|command|None|None|hi|echo20|None\n"
                                     "5|message|None|None|None|** RADIAN MODE **|None\n"
                                     "6|error|None|None|None|** ERROR: divide by zero **|None\n");
}

TEST(Json, TellsTheStatementAsItWasWritten) {
    EXPECT_EQ(evaluateJson({" 1 + 1 ;2"}).out.rfind("{\"entry\": \"1 + 1\", ", 0), 0U);
}

TEST(Json, HasTheValueWithAHundredFiguresWhateverIsShown) {
    const Result run = evaluateJson({"--base=hex", "--comma", "255,5", "2^0,5"});
    EXPECT_EQ(readByPython(run.out),
              "1|value|ans|255.5|0x00FF|None|None\n"
              "2|value|ans|1.4142135623730950488016887242096980785696718753769480731766797379907324784621070"
              "38850387534327641573|0x0001|None|None\n"); // by bc: scale=110; sqrt(2)
}

TEST(Json, HasNoValueBeyondTheRange) {
    const Result run = evaluateJson({"1e99999"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(readByPython(run.out), "1|value|ans|None|+OVERFLOW|None|None\n");
}

TEST(Json, CountsTheLinesOfTheInput) {
    const Result run = evaluateJson({}, "1\n\n# a comment\r\n\xff\n2");
    EXPECT_EQ(readByPython(run.out), "1|value|ans|1|1|None|None\n"
                                     "4|error|None|None|None|** Invalid character/encoding used. **|None\n"
                                     "5|value|ans|2|2|None|None\n");
}

TEST(Json, TellsWhichLineOfDataIsWrong) {
    const Result run = evaluateJson({"--each", "x"}, "5\nfive\n");
    EXPECT_EQ(readByPython(run.out), "1|value|ans|5|5|None|None\n"
                                     "2|error|None|None|None|** ERROR: 'five' is no number **|None\n");
}

TEST(Json, GoesTogetherWithTheOtherOptions) {
    EXPECT_EQ(readByPython(evaluateJson({"--last", "1", "1/0", "2", "mode rad"}).out),
              "2|error|None|None|None|** ERROR: divide by zero **|None\n3|value|ans|2|2|None|None\n");
    EXPECT_EQ(readByPython(evaluateJson({"-q", "1", "mode rad", "exit", "2"}).out),
              "1|value|ans|1|1|None|None\n");
    EXPECT_EQ(readByPython(evaluateJson({"--fail-fast", "1/0", "2"}).out),
              "1|error|None|None|None|** ERROR: divide by zero **|None\n");
    EXPECT_EQ(readByPython(evaluateJson({"--preview", "pi=3; pi", "f(x)=x"}).out).substr(0, 39),
              "1|value|ans|3|3|None|None\n1|value|ans|3");
}

TEST(Json, IsWellFormedWhateverIsEntered) {
    std::string lines;
    for (int byte = 0; byte < 256; ++byte)
        for (const char* const around : {"", "1", "echo ", "x=\"", "\xe2\x82"})
            lines += std::string(around) + static_cast<char>(byte) + "\n";
    const std::string read =
        readByPython(evaluateJson({"-f", "-"}, lines + std::string(20000, '7') + "\n").out);
    EXPECT_EQ(read.find("MALFORMED"), std::string::npos);
    EXPECT_NE(read.find("|error|None|None|None|** ERROR: 10000 max characters **|None\n"), std::string::npos);
}

TEST(Json, WithoutAPlaceToWriteItIsAnError) {
    Invocation invocation;
    invocation.arguments = {"--json", "1+1"};
    invocation.outputFile = "/dev/full";
    EXPECT_EQ(runProgram(invocation).status, 3);
}

TEST(Json, IsNoPrompt) {
    Terminal terminal({"--json"});
    terminal.Type("1+1\n");
    const std::string shown = terminal.ReadUntil("}\n");
    EXPECT_EQ(shown.rfind("{\"entry\": \"1+1\", \"line\": 1, ", 0), 0U) << shown;
}

} // namespace
