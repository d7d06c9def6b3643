// SPDX-License-Identifier: MIT
//
// What README.md and docs/guide.md show is what the program does.
#include "../guide.h"
#include "program.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
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

// Evaluates the rows of the tables that are headed Entry and Answer: both stand between backquotes. Returns
// how many there are.
int evaluateRows(const char* path) {
    int rows = 0;
    for (const char* const head : {"| Entry | Answer |", "| Entry | Answer | |"}) {
        for (const GuideCells& cells : guideTable(path, head)) {
            const Lines entry = guideCode(cells.at(0));
            const Lines answer = guideCode(cells.at(1));
            EXPECT_EQ(entry.size() + answer.size(), 2U) << cells[0];
            if (entry.empty() || answer.empty()) continue;
            EXPECT_EQ(evaluate({"--", entry[0]}).out, answer[0] + "\n") << entry[0];
            ++rows;
        }
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

// A reader sees an answer before anything else but what the program is for, and then a picture of it.
TEST(Readme, BeginsWithAnAnswerAndAPicture) {
    const Lines lines = linesOf(TALLYQUILL_README);
    const auto first = [&lines](const std::string& start) {
        return std::find_if(lines.begin(), lines.end(),
                            [&start](const std::string& line) { return line.rfind(start, 0) == 0; }) -
               lines.begin();
    };
    EXPECT_LT(first("ans = "), 10);
    EXPECT_LT(first("!["), 15);
    EXPECT_LT(first("!["), first("## "));
}

// --- The figures of README are those of the other documents ---

std::string document(const std::string& name) {
    return TALLYQUILL_SOURCES + ("/docs/" + name);
}

TEST(Readme, HasTheRatiosThatWereMeasured) {
    std::set<std::string> measured;
    const std::regex ratio("([0-9.]+ of [a-z]+)");
    for (const GuideCells& cells :
         guideTable(document("performance.md").c_str(), "| Work | Ratio | Bar | What limits it |"))
        for (auto one = std::sregex_iterator(cells.at(1).begin(), cells.at(1).end(), ratio);
             one != std::sregex_iterator(); ++one)
            measured.insert((*one)[1]);
    int rows = 0;
    for (const GuideCells& cells : guideTable(TALLYQUILL_README, "| Work | Ratio | Peer |")) {
        if (cells.at(2).rfind("MPFR", 0) == 0) continue; // a mean of other rows
        EXPECT_EQ(measured.count(cells.at(1) + " of " + cells.at(2)), 1U) << cells[0];
        ++rows;
    }
    EXPECT_GT(rows, 3);
}

TEST(LibraryDocument, HasTheRatiosThatWereMeasured) {
    const auto measured =
        guideTable(document("performance.md").c_str(), "| Rows | Ratio | What limits them |");
    const auto told = guideTable(document("library.md").c_str(), "| Rows | Ratio |");
    EXPECT_GT(measured.size(), 10U);
    ASSERT_EQ(told.size(), measured.size());
    for (size_t i = 0; i < told.size(); ++i)
        EXPECT_EQ(told[i], GuideCells(measured[i].begin(), measured[i].begin() + 2));
}

TEST(Readme, HasResultsThatWereAllTheNearest) {
    const std::string path = document("accuracy.md");
    int rows = 0;
    for (const char* const head : {"| Function | Random | second way | Hard | second way | Not the nearest |",
                                   "| Function | Operands | Count | Second way | Not the nearest |"}) {
        for (const GuideCells& cells : guideTable(path.c_str(), head)) {
            EXPECT_EQ(cells.back(), "0") << cells[0];
            ++rows;
        }
    }
    EXPECT_EQ(rows, 21 + 13);
    for (const GuideCells& cells : guideTable(
             TALLYQUILL_README, "| What | Random | Beside the middle of two numbers | Not the nearest |"))
        EXPECT_EQ(cells.back(), "0") << cells[0];
}

// "1,000" is 1000.
int countIn(std::string cell) {
    cell.erase(std::remove(cell.begin(), cell.end(), ','), cell.end());
    return std::stoi(cell);
}

TEST(Readme, HasTheKillsThatWereTried) {
    int kills = 0;
    int others = 0;
    for (const GuideCells& cells : guideTable(
             document("reliability.md").c_str(),
             "| What happens | Runs | In a save | Definitions that had to be there | Torn files | Runs "
             "that lost one |")) {
        EXPECT_GT(countIn(cells.at(3)), 0) << cells[0];
        EXPECT_EQ(countIn(cells.at(4)) + countIn(cells.at(5)), 0) << cells[0];
        if (cells[0].rfind("kill -9", 0) == 0)
            kills += countIn(cells.at(1));
        else if (cells[0].rfind("SIG", 0) != 0)
            others += countIn(cells.at(1));
    }
    const auto told = guideTable(TALLYQUILL_README, "| What happens | Runs | Torn files, or definitions lost "
                                                    "that were answered two seconds before | To repeat |");
    ASSERT_GE(told.size(), 2U);
    EXPECT_EQ(countIn(told[0].at(1)), kills);
    EXPECT_EQ(countIn(told[1].at(1)), others);
    for (const GuideCells& cells : told) EXPECT_EQ(cells.at(2), "0") << cells[0];
}

// "seven" is 7, in any case of letters; -1 for what is no such word.
int numberOf(std::string word) {
    static const Lines words = {"no",     "one",      "two",      "three",   "four",   "five",
                                "six",    "seven",    "eight",    "nine",    "ten",    "eleven",
                                "twelve", "thirteen", "fourteen", "fifteen", "sixteen"};
    word[0] = static_cast<char>(tolower(static_cast<unsigned char>(word[0])));
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? -1 : static_cast<int>(found - words.begin());
}

TEST(Readme, HasTheInputsThatWereFuzzed) {
    const auto targets = guideTable(
        document("reliability.md").c_str(),
        "| Target | Executions with sanitizers | Without | Speed with | Without | Lines covered | Of |");
    const auto found = guideTable(document("reliability.md").c_str(), "| Found by | What it was | Test |");
    int with = 0;
    int all = 0;
    for (const GuideCells& cells : targets) {
        with += countIn(cells.at(1));
        all += countIn(cells.at(1)) + countIn(cells.at(2));
    }
    std::string text;
    for (const std::string& line : linesOf(TALLYQUILL_README)) text += line + " ";
    static const std::regex sentence(
        "(\\w+) fuzz targets have run (\\d+) million inputs, (\\d+) million of them "
        "under sanitizers; the (\\w+) errors");
    std::smatch told;
    ASSERT_TRUE(std::regex_search(text, told, sentence));
    EXPECT_EQ(numberOf(told[1]), static_cast<int>(targets.size()));
    EXPECT_EQ(std::stoi(told[2]), all / 1'000'000);
    EXPECT_EQ(std::stoi(told[3]), with / 1'000'000);
    EXPECT_EQ(numberOf(told[4]), static_cast<int>(found.size()));
}

TEST(Guide, ItsExamplesAreTrue) {
    EXPECT_GT(evaluateRows(TALLYQUILL_GUIDE), 60);
}

// How many blocks between fences begin with these signs; all of them without any.
int blocksThatBegin(const char* path, const std::string& signs) {
    int blocks = 0;
    bool isInside = false;
    bool isFirst = false;
    for (const std::string& line : linesOf(path)) {
        blocks += isFirst && line.rfind(signs, 0) == 0 ? 1 : 0;
        isFirst = !isInside && line.rfind("```", 0) == 0;
        isInside = line.rfind("```", 0) == 0 ? !isInside : isInside;
    }
    return blocks;
}

TEST(Guide, ItsTranscriptsAreTrue) {
    EXPECT_EQ(evaluateTranscripts(TALLYQUILL_GUIDE), blocksThatBegin(TALLYQUILL_GUIDE, "> "));
}

// Those for a shell are run by another test.
TEST(Guide, HasNoBlockThatIsNotTried) {
    const int typed = blocksThatBegin(TALLYQUILL_GUIDE, "> ");
    const int run = blocksThatBegin(TALLYQUILL_GUIDE, "$ ");
    EXPECT_GT(typed, 0);
    EXPECT_GT(run, 0);
    EXPECT_EQ(typed + run, blocksThatBegin(TALLYQUILL_GUIDE, ""));
}

// The items of its lists, each on one line.
Lines itemsOfGuide() {
    Lines items;
    bool isInside = false;
    for (const std::string& line : linesOf(TALLYQUILL_GUIDE)) {
        const bool goesOn = isInside && line.rfind("  ", 0) == 0;
        isInside = goesOn || line.rfind("- ", 0) == 0;
        if (goesOn)
            items.back() += line.substr(1);
        else if (isInside)
            items.push_back(line);
    }
    return items;
}

TEST(Guide, ItsErrorsAreThoseOfTheirEntries) {
    static const std::regex item("- `([^`]+)` after `([^`]+)`:.*");
    int errors = 0;
    for (const std::string& line : itemsOfGuide()) {
        std::smatch parts;
        if (!std::regex_match(line, parts, item)) continue;
        const Result run = evaluate({"--", parts[2]});
        EXPECT_EQ(run.err, parts[1].str() + "\n") << parts[2];
        EXPECT_EQ(run.status, 1) << parts[2];
        ++errors;
    }
    EXPECT_GT(errors, 40);
}

TEST(Guide, ItsLinesOfThePromptAreTrue) {
    const auto rows = guideTable(TALLYQUILL_GUIDE, "| After | The line |");
    EXPECT_GT(rows.size(), 20U);
    for (const GuideCells& cells : rows) {
        Terminal terminal({});
        terminal.ReadUntil("> ");
        terminal.Type(guideCode(cells.at(0)).at(0) + "\n");
        const std::string shown = "\n" + terminal.ReadUntil("> ");
        const std::string line = "\n" + guideCode(cells.at(1)).at(0) + "\n> ";
        EXPECT_EQ(shown.substr(shown.size() - std::min(line.size(), shown.size())), line) << cells[0];
    }
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

// --- Links ---

// "How answers look" is "how-answers-look", as a link names it.
std::string anchorOf(const std::string& heading) {
    std::string anchor;
    for (const char c : heading.substr(heading.find(' ') + 1)) {
        if (isalnum(static_cast<unsigned char>(c)) || c == '-') anchor += static_cast<char>(tolower(c));
        if (c == ' ') anchor += '-';
    }
    return anchor;
}

bool hasHeading(const std::string& path, const std::string& anchor) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind('#', 0) == 0 && anchorOf(line) == anchor) return true;
    }
    return false;
}

void expectLinksThatLeadSomewhere(const std::filesystem::path& path) {
    static const std::regex link("\\]\\(([^)# ]*)#?([^) ]*)\\)");
    for (std::string line : linesOf(path.c_str())) {
        line = std::regex_replace(line, std::regex("`[^`]*`"), "");
        for (auto one = std::sregex_iterator(line.begin(), line.end(), link); one != std::sregex_iterator();
             ++one) {
            const std::string target = (*one)[1];
            if (target.find("://") != std::string::npos) continue;
            const std::filesystem::path file = target.empty() ? path : path.parent_path() / target;
            EXPECT_TRUE(std::filesystem::exists(file)) << path << ": " << target;
            const std::string anchor = (*one)[2];
            EXPECT_TRUE(anchor.empty() || hasHeading(file, anchor))
                << path << ": " << target << "#" << anchor;
        }
    }
}

TEST(Documents, HaveLinksThatLeadSomewhere) {
    expectLinksThatLeadSomewhere(TALLYQUILL_README);
    expectLinksThatLeadSomewhere(TALLYQUILL_SOURCES "/CONTRIBUTING.md");
    int documents = 0;
    for (const auto& file : std::filesystem::directory_iterator(TALLYQUILL_SOURCES "/docs")) {
        if (file.path().extension() != ".md") continue;
        expectLinksThatLeadSomewhere(file.path());
        ++documents;
    }
    EXPECT_GT(documents, 4);
}

} // namespace
