// SPDX-License-Identifier: MIT
#include "Guide.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(Guide, HasTheTopicsOfTheDocument) {
    const std::vector<std::string> topics = guideTopics();
    for (const char* topic : {"Entries", "Functions", "Units", "Command words", "Good to know"}) {
        EXPECT_EQ(std::count(topics.begin(), topics.end(), topic), 1) << topic;
    }
}

TEST(Guide, FindsASectionByAPartOfItsTitleInAnyCase) {
    const std::string section = guideSection("command");
    EXPECT_EQ(section.substr(0, 15), "Command words\n\n");
    EXPECT_NE(section.find("scimode auto"), std::string::npos);
    EXPECT_EQ(section.find("The window"), std::string::npos); // the next section
    EXPECT_EQ(guideSection("no such topic"), "");
}

TEST(PlainText, LeavesOutTheSignsForCodeBoldAndLinks) {
    EXPECT_EQ(plainText("A `1+1`, a **bold** word and a [link](#there) (aside).\n"),
              "A 1+1, a bold word and a link (aside).\n");
}

TEST(PlainText, KeepsWhatStandsBetweenFencesAndSetsItIn) {
    EXPECT_EQ(plainText("```\n> 2**3 `x`\n```\nend\n"), "  > 2**3 `x`\nend\n");
}

TEST(PlainText, PutsATablesColumnsSideBySide) {
    EXPECT_EQ(plainText("| Entry | Answer |\n|---|---|\n| `1+1` | `2` |\n| `sin(30)` | half |\nend\n"),
              "  Entry    Answer\n  1+1      2\n  sin(30)  half\nend\n");
    EXPECT_EQ(plainText("| a | b |"), "  a  b\n");
    EXPECT_EQ(plainText("| `bin\\|dec` | b |"), "  bin|dec  b\n");
}

} // namespace
