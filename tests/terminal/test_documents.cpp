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

// Evaluates the rows of tables that begin with an entry and its answer, both between backquotes. Returns how
// many there are.
int evaluateRows(const char* path) {
    static const std::regex row("\\| `([^`]+)` \\| `([^`]+)` \\|.*");
    int rows = 0;
    for (const std::string& line : linesOf(path)) {
        std::smatch cells;
        if (!std::regex_match(line, cells, row)) continue;
        // A '|' inside a table is written with a backslash.
        const std::string entry = std::regex_replace(cells[1].str(), std::regex("\\\\\\|"), "|");
        EXPECT_EQ(evaluate({"--", entry}).out, cells[2].str() + "\n") << entry;
        ++rows;
    }
    return rows;
}

// How many rows the tables have that are headed Entry and Answer.
int rowsOfEntries(const char* path) {
    int rows = 0;
    bool isInside = false;
    for (const std::string& line : linesOf(path)) {
        const bool isHead = line.rfind("| Entry | Answer |", 0) == 0;
        isInside = isHead || (isInside && line.rfind('|', 0) == 0);
        rows += isInside && !isHead && line.rfind("|-", 0) != 0 ? 1 : 0;
    }
    return rows;
}

// Types the transcript that begins at the line and reaches to the end of the block: entries behind "> ", and
// what they show.
void evaluateTranscript(const Lines& lines, size_t start) {
    Terminal terminal({});
    terminal.ReadUntil("> ");
    size_t i = start;
    while (i < lines.size() && lines[i] != "```") {
        const std::string entry = lines[i].size() > 2 ? lines[i].substr(2) : "";
        std::string shown;
        for (++i; i < lines.size() && lines[i] != "```" && lines[i].rfind('>', 0) != 0; ++i)
            shown += lines[i] + "\n";
        terminal.Type(entry + "\n");
        EXPECT_EQ(terminal.ReadUntil("> "), shown + "> ") << entry;
        EXPECT_FALSE(shown.empty()) << entry;
    }
}

// Evaluates the blocks that begin with a prompt. Returns how many there are.
int evaluateTranscripts(const char* path) {
    const Lines lines = linesOf(path);
    int transcripts = 0;
    for (size_t i = 1; i < lines.size(); ++i) {
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
    EXPECT_GT(rowsOfEntries(TALLYQUILL_GUIDE), 0);
    EXPECT_EQ(evaluateRows(TALLYQUILL_GUIDE), rowsOfEntries(TALLYQUILL_GUIDE));
}

TEST(Guide, ItsTranscriptsAreTrue) {
    EXPECT_EQ(evaluateTranscripts(TALLYQUILL_GUIDE), 4);
}

// The pieces between backquotes in the first cells of the table below a heading.
Lines firstCells(const char* path, const std::string& heading) {
    static const std::regex piece("`([^`]+)`");
    Lines found;
    bool isBelow = false;
    for (const std::string& line : linesOf(path)) {
        if (line.rfind("## ", 0) == 0) isBelow = line == "## " + heading;
        if (!isBelow || line.rfind("| `", 0) != 0) continue;
        const std::string cell = line.substr(0, line.find(" | ", 2));
        for (auto one = std::sregex_iterator(cell.begin(), cell.end(), piece); one != std::sregex_iterator();
             ++one)
            found.push_back((*one)[1]);
    }
    return found;
}

TEST(Guide, ItsCommandWordsAreKnown) {
    const Lines commands = firstCells(TALLYQUILL_GUIDE, "Command words");
    ASSERT_FALSE(commands.empty());
    for (const std::string& command : commands) {
        const auto answer = evaluate({"NAME=1", command});
        EXPECT_EQ(answer.err, "") << command;
        EXPECT_EQ(answer.status, 0) << command;
    }
}

} // namespace
