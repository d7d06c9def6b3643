// SPDX-License-Identifier: MIT
#include "Guide.h"
#include "ScreenText.h"

#include <gtest/gtest.h>
#include <sstream>

#include <algorithm>

namespace {

TEST(Guide, HasTheTopicsOfTheDocument) {
    const std::vector<std::string> topics = guideTopics();
    for (const char* topic : {"Entries", "Functions", "Units", "Command words", "Good to know"}) {
        EXPECT_EQ(std::count(topics.begin(), topics.end(), topic), 1) << topic;
    }
}

TEST(Guide, FindsASectionByAPartOfItsTitleInAnyCase) {
    const std::string section = guideSection("command", 80);
    EXPECT_EQ(section.substr(0, 15), "Command words\n\n");
    EXPECT_NE(section.find("scimode auto"), std::string::npos);
    EXPECT_EQ(section.find("The window"), std::string::npos); // the next section
    EXPECT_EQ(guideSection("no such topic", 80), "");
}

TEST(PlainText, LeavesOutTheSignsForCodeBoldAndLinks) {
    EXPECT_EQ(plainText("A `1+1`, a **bold** word and a [link](#there) (aside).\n", 80),
              "A 1+1, a bold word and a link (aside).\n");
    EXPECT_EQ(plainText("Not `2**3` nor `[1](2)` of **`**`** here\n", 80),
              "Not 2**3 nor [1](2) of ** here\n");
    EXPECT_EQ(plainText("an open ` sign\n", 80), "an open sign\n");
    EXPECT_EQ(plainText("![a picture](a.png)\n", 80), "");
}

TEST(PlainText, FillsTheLinesOfAParagraphToTheWidth) {
    EXPECT_EQ(plainText("one two three\nfour five\n\nsix\nseven\n", 14),
              "one two three\nfour five\n\nsix seven\n");
    EXPECT_EQ(plainText("one two\nthree `four` five\n", 14), "one two three\nfour five\n");
    EXPECT_EQ(plainText("- one two three\n  four\n- five\n", 10), "- one two\n  three\n  four\n- five\n");
    EXPECT_EQ(plainText("unbreakablyLong x\n", 6), "unbreakablyLong\nx\n");
    EXPECT_EQ(plainText("\xC3\xA4\xC3\xA4\xC3\xA4 b\n", 5), "\xC3\xA4\xC3\xA4\xC3\xA4 b\n");
    EXPECT_EQ(plainText("## Title\ntext\n", 80), "## Title\ntext\n");
}

TEST(PlainText, FillsTheLastColumnOfATable) {
    EXPECT_EQ(plainText("| ab | one two three |\n", 14), "  ab  one two\n      three\n");
}

TEST(Guide, HasNoLineThatATerminalWouldBreak) {
    for (const std::string& topic : guideTopics()) {
        std::istringstream lines(guideSection(topic, 80));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(placeBehind(line, {}, 1000).column, 80) << topic << ": " << line;
    }
}

TEST(Guide, HasTheRowsOfATableAsPlainText) {
    const auto rows = guideRows("Exit status", "Status");
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"0", "everything was answered"}));
    EXPECT_TRUE(guideRows("Exit status", "Key").empty());
    EXPECT_EQ(guideRows("Starting the window", "Option")[0][0], "--new-window"); // the first of two tables
    EXPECT_EQ(guideRows("Starting the window", "Status")[0][0], "0");
}

TEST(PlainText, KeepsWhatStandsBetweenFencesAndSetsItIn) {
    EXPECT_EQ(plainText("```\n> 2**3 `x`\n```\nend\n", 80), "  > 2**3 `x`\nend\n");
}

TEST(PlainText, PutsATablesColumnsSideBySide) {
    EXPECT_EQ(plainText("| Entry | Answer |\n|---|---|\n| `1+1` | `2` |\n| `sin(30)` | half |\nend\n", 80),
              "  Entry    Answer\n  1+1      2\n  sin(30)  half\nend\n");
    EXPECT_EQ(plainText("| a | b |", 80), "  a  b\n");
    EXPECT_EQ(plainText("| `bin\\|dec` | b |", 80), "  bin|dec  b\n");
    EXPECT_EQ(plainText("| `\\t` | a\\|\\|b |", 80), "  \\t  a||b\n");
}

} // namespace
