// SPDX-License-Identifier: MIT
//
// Reading and writing scripts.
#include "Script.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> entriesOf(const std::string& bytes) {
    Script script(bytes);
    std::vector<std::string> entries;
    for (std::string entry; script.Next(entry);) entries.push_back(entry);
    return entries;
}

using Entries = std::vector<std::string>;

TEST(Script, HasAnEntryInEachLine) {
    EXPECT_EQ(entriesOf("1+1\nx=2\n"), Entries({"1+1", "x=2"}));
    EXPECT_EQ(entriesOf("1+1\r\nx=2"), Entries({"1+1\r", "x=2"})) << "the engine drops the carriage return";
    EXPECT_EQ(entriesOf(""), Entries());
}

TEST(Script, LeavesOutCommentsAndBlankLines) {
    EXPECT_EQ(entriesOf("# a\n\n \t\r\n1\n#\n 2 # b\n"), Entries({"1", " 2 # b"}));
}

TEST(Script, IsReadAsUtf8AndElseAsLatin1) {
    EXPECT_EQ(entriesOf("\xEF\xBB\xBF"
                        "1\n"),
              Entries({"1"}));
    EXPECT_EQ(entriesOf("disp \xC3\xA4\n"), Entries({"disp \xE4"}));
    EXPECT_EQ(entriesOf("disp \xE4\n"), Entries({"disp \xE4"}));
    EXPECT_EQ(entriesOf("a\xC4\x80z\nb\xE2\x82\xACz\nc\xF0\x9F\x98\x80z\n"), Entries({"a?z", "b?z", "c?z"}));
    EXPECT_EQ(entriesOf(std::string("1\0002\n", 4)), Entries({"1?2"}));
}

TEST(Script, IsSavedFromWhatWasEntered) {
    ZqCalculator engine;
    engine.sigFigs = 7;
    engine.sciMode = 3;
    engine.displayBase = 16;
    engine.degreeMode = false;
    EntryRecord record;
    record.Add("1+1");
    record.Add("");
    record.Add("disp \xC3\xA4");
    const std::string head = "# PELMO SCRIPT: uncomment line below to include calculator settings.\n"
                             "#mode rad;sigfigs 7;scimode eng;display hex;\n";
    EXPECT_EQ(record.Script(engine, ""), head + "1+1\ndisp \xC3\xA4\n");
    EXPECT_EQ(record.Script(engine, "2*"), head + "1+1\ndisp \xC3\xA4\n2*\n");
    record.Clear();
    EXPECT_EQ(record.Script(engine, ""), head);
}

TEST(Script, ThatIsSavedIsReadBack) {
    EntryRecord record;
    record.Add("disp \xC3\xA4");
    record.Add("1;2");
    EXPECT_EQ(entriesOf(record.Script(ZqCalculator(), "3")), Entries({"disp \xE4", "1;2", "3"}));
}

} // namespace
