// SPDX-License-Identifier: MIT
//
// What README.md shows is what the program does.
#include "program.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::vector<std::string> readmeLines() {
    std::ifstream file(TALLYQUILL_README);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// The texts between backquotes.
std::vector<std::string> quoted(const std::string& line) {
    std::vector<std::string> texts;
    for (std::size_t open = line.find('`'); open != std::string::npos;) {
        const std::size_t close = line.find('`', open + 1);
        if (close == std::string::npos) break;
        texts.push_back(line.substr(open + 1, close - open - 1));
        open = line.find('`', close + 1);
    }
    return texts;
}

TEST(Readme, ItsTenExamplesAreTrue) {
    int examples = 0;
    for (const std::string& line : readmeLines()) {
        const std::vector<std::string> texts = quoted(line);
        if (line.rfind("| `", 0) != 0 || texts.size() != 2) continue;
        const Result run = evaluate({"--no-files", "--", texts[0]});
        EXPECT_EQ(run.out, texts[1] + "\n") << texts[0];
        ++examples;
    }
    EXPECT_EQ(examples, 10);
}

TEST(Readme, ItsTranscriptIsTrue) {
    const std::vector<std::string> lines = readmeLines();
    std::size_t i = 0;
    while (i < lines.size() && lines[i] != "$ make run") ++i;
    ASSERT_LT(i, lines.size());
    std::string entries;
    std::string shown;
    for (++i; i < lines.size() && lines[i] != "```"; ++i) {
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

} // namespace
