// SPDX-License-Identifier: MIT
//
// What README.md and docs/guide.md show is what the program does.
#include "program.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const char* path) {
    std::ifstream file(path);
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    EXPECT_FALSE(lines.empty()) << path;
    return lines;
}

// Evaluates the rows of tables that begin with an entry and its answer, both between backquotes. Returns how many
// there are.
int evaluateRows(const char* path) {
    static const std::regex row("\\| `([^`]+)` \\| `([^`]+)` \\|.*");
    int rows = 0;
    for (const std::string& line : linesOf(path)) {
        std::smatch cells;
        if (!std::regex_match(line, cells, row)) continue;
        // A '|' inside a table is written with a backslash.
        const std::string entry = std::regex_replace(cells[1].str(), std::regex("\\\\\\|"), "|");
        EXPECT_EQ(evaluate({"--no-files", "--", entry}).out, cells[2].str() + "\n") << entry;
        ++rows;
    }
    return rows;
}

// Evaluates the transcript that begins at the line and reaches to the end of the block: entries behind "> ", and
// what they show.
void evaluateTranscript(const Lines& lines, std::size_t start) {
    std::string entries;
    std::string shown;
    for (std::size_t i = start; i < lines.size() && lines[i] != "```"; ++i) {
        if (lines[i].rfind('>', 0) == 0) {
            entries += lines[i].size() > 2 ? lines[i].substr(2) : "";
            entries += '\n';
        } else {
            shown += lines[i] + "\n";
        }
    }
    Invocation invocation;
    invocation.arguments = {"--no-files"};
    invocation.input = entries;
    invocation.joinErrors = true;
    EXPECT_EQ(runProgram(invocation).out, shown);
    EXPECT_FALSE(shown.empty());
}

// Evaluates the blocks that begin with a prompt. Returns how many there are.
int evaluateTranscripts(const char* path) {
    const Lines lines = linesOf(path);
    int transcripts = 0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (lines[i - 1] != "```" || lines[i].rfind("> ", 0) != 0) continue;
        evaluateTranscript(lines, i);
        ++transcripts;
    }
    return transcripts;
}

TEST(Readme, ItsTenExamplesAreTrue) {
    EXPECT_EQ(evaluateRows(TALLYQUILL_README), 10);
}

TEST(Readme, ItsTranscriptIsTrue) {
    EXPECT_EQ(evaluateTranscripts(TALLYQUILL_README), 1);
}

TEST(Guide, ItsExamplesAreTrue) {
    EXPECT_GT(evaluateRows(TALLYQUILL_GUIDE), 25);
}

TEST(Guide, ItsTranscriptsAreTrue) {
    EXPECT_EQ(evaluateTranscripts(TALLYQUILL_GUIDE), 3);
}

} // namespace
