// SPDX-License-Identifier: MIT
#include "DefinitionsMerge.h"

#include "../engine/held_bytes.h"
#include "../seed.h"
#include "temporary_folder.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

std::string file(const std::string& functions, const std::string& variables, const std::string& units,
                 const std::string& history) {
    return "### FUNCTIONS ###\n" + functions + "### VARIABLES ###\n" + variables + "### CUSTOM UNITS ###\n" +
           units + "### HISTORY ###\n" + history;
}

const std::string START = file("f(x)=x\n", "ans=1\npi=3.14\n", "unit u=2 m\n", "1\n");

// The file holds `theirs`, `ours` is written into it: what is in it then.
std::string written(DefinitionsMerge& merge, const std::string& ours, const std::string& theirs) {
    const TemporaryFolder folder;
    putContent(folder.File("file"), theirs);
    std::error_code reason;
    EXPECT_TRUE(merge.Write(folder.File("file"), ours, reason));
    return contentOf(folder.File("file"));
}

} // namespace

TEST(DefinitionsMerge, LeavesOursAloneWhenNobodyElseWrote) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string ours = file("f(x)=x\ng(x)=2\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n2\n");
    EXPECT_EQ(merge.Merge(ours, START), ours);
    EXPECT_EQ(merge.Merge(ours, ""), ours);
}

TEST(DefinitionsMerge, KeepsWhatTheOtherProgramDefined) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\nmine=1\n", "unit u=2 m\n", "mine=1\n");
    const std::string theirs =
        file("f(x)=x\nh(a,b)=a\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\nunit w=3 m\n", "yours=2\n");
    EXPECT_EQ(merge.Merge(ours, theirs), file("f(x)=x\nh(a,b)=a\n", "ans=2\npi=3.14\nmine=1\nyours=2\n",
                                              "unit u=2 m\nunit w=3 m\n", "mine=1\n"));
}

TEST(DefinitionsMerge, LeavesOutWhatIsKeptElsewhereUntilItChanges) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string after =
        file("f(x)=x\nlib(x)=1\n", "ans=1\npi=3\nrate=7\n", "unit u=2 m\nunit psi=4 m\n", "1\n");
    merge.LeaveOut(START, after);
    EXPECT_EQ(merge.Merge(after, START), file("f(x)=x\n", "ans=1\npi=3\n", "unit u=2 m\n", "1\n"))
        << "pi was in the file and has another value now";
    const std::string changed =
        file("f(x)=x\nlib(x)=1\n", "ans=1\npi=3\nrate=8\n", "unit u=2 m\nunit psi=4 m\n", "rate=7\n");
    EXPECT_EQ(merge.Merge(changed, START),
              file("f(x)=x\n", "ans=1\npi=3\nrate=8\n", "unit u=2 m\n", "rate=7\n"));
}

TEST(DefinitionsMerge, WhatAnotherProgramKeepsUnderANameThatIsLeftOutStays) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string after = file("f(x)=x\n", "ans=1\npi=3.14\nrate=7\n", "unit u=2 m\n", "");
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3.14\nrate=9\n", "unit u=2 m\n", "");
    merge.LeaveOut(START, after);
    EXPECT_EQ(merge.Merge(after, theirs), theirs);
}

TEST(DefinitionsMerge, LeavesOutWhatWasThereWhenTheFileWasRead) {
    DefinitionsMerge merge;
    const std::string after = file("f(x)=x\n", "ans=1\npi=3.14\nrate=7\n", "unit u=2 m\n", "");
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3.14\nrate=9\n", "unit u=2 m\n", "");
    merge.Know(START, after);
    merge.LeaveOut(file("", "pi=3.14\n", "", ""), after);
    EXPECT_EQ(merge.Merge(after, START), file("f(x)=x\n", "ans=1\npi=3.14\n", "unit u=2 m\n", ""));
    EXPECT_EQ(merge.Merge(after, theirs), theirs) << "it was not deleted here";
}

TEST(DefinitionsMerge, KeepsItEveryTime) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string theirs = file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", "");
    const std::string once = written(merge, START, theirs);
    EXPECT_EQ(once, file("f(x)=x\n", "ans=1\npi=3.14\nyours=2\n", "unit u=2 m\n", "1\n"));
    EXPECT_EQ(written(merge, START, once), once);
}

TEST(DefinitionsMerge, WhatWasDeletedHereStaysDeleted) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string ours = file("", "ans=1\npi=3.14\n", "", "");
    EXPECT_EQ(merge.Merge(ours, START), ours);
}

TEST(DefinitionsMerge, WhatWasDefinedAndDeletedHereStaysDeleted) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string defined = file("f(x)=x\n", "ans=1\npi=3.14\na=5\n", "unit u=2 m\n", "");
    EXPECT_EQ(written(merge, defined, START), defined);
    EXPECT_EQ(written(merge, START, defined), START);
}

TEST(DefinitionsMerge, WhatTheOtherProgramDeletesAgainGoes) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3.14\nyours=2\n", "unit u=2 m\n", "1\n");
    EXPECT_EQ(written(merge, START, theirs), theirs);
    EXPECT_EQ(written(merge, START, START), START);
}

TEST(DefinitionsMerge, OurLineStaysOfANameInBoth) {
    DefinitionsMerge merge;
    const std::string ours = file("f(y)=y+1\n", "a=1\n", "unit u=5 m\n", "");
    EXPECT_EQ(merge.Merge(ours, file("F(x)=x\n", "a=2\n", "unit u=2 m\n", "")), ours);
}

TEST(DefinitionsMerge, FunctionsOfOneNameDifferByTheirNumberOfParameters) {
    DefinitionsMerge merge;
    const std::string ours = file("f(x)=x\n", "", "", "");
    EXPECT_EQ(merge.Merge(ours, file("f(x,y)=x\n", "", "", "")), file("f(x)=x\nf(x,y)=x\n", "", "", ""));
}

TEST(DefinitionsMerge, AFunctionWithoutParametersIsAnotherOne) {
    DefinitionsMerge merge;
    merge.Know(file("f()=1\n", "", "", ""), file("f()=1\n", "", "", ""));
    const std::string ours = file("f()=2\n", "", "", "");
    EXPECT_EQ(merge.Merge(ours, file("f()=1\nf(x)=x\n", "", "", "")), file("f()=2\nf(x)=x\n", "", "", ""));
}

TEST(DefinitionsMerge, TakesTheLineEndsOfAnEditor) {
    DefinitionsMerge merge;
    const std::string theirs = "### FUNCTIONS ###\r\nf(x)=x\r\n### VARIABLES ###\r\na=1\r\n";
    EXPECT_EQ(merge.Merge(file("", "", "", ""), theirs), file("f(x)=x\n", "a=1\n", "", ""));
}

TEST(DefinitionsMerge, VariablesDifferByCase) {
    DefinitionsMerge merge;
    EXPECT_EQ(merge.Merge(file("", "a=1\n", "", ""), file("", "A=2\n", "", "")),
              file("", "a=1\nA=2\n", "", ""));
}

TEST(DefinitionsMerge, TakesNothingFromATextThatIsNoFunctionsFile) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    EXPECT_EQ(merge.Merge(START, "x=1\nfoo(x)=3\n"), START);
    EXPECT_EQ(merge.Merge(START, std::string("\0\1=\n", 4)), START);
}

TEST(DefinitionsMerge, TheHistoryIsOursWhateverItHolds) {
    DefinitionsMerge merge;
    const std::string ours = file("", "", "", "### VARIABLES ###\nq=1\n");
    EXPECT_EQ(merge.Merge(ours, file("", "", "", "### VARIABLES ###\nr=1\n")), ours);
}

TEST(DefinitionsMerge, AFailedWriteSaysWhyAndIsRepeatedLater) {
    const TemporaryFolder folder;
    const std::string path = folder.File("later/file");
    DefinitionsMerge merge;
    std::error_code reason;
    EXPECT_FALSE(merge.Write(path, START, reason));
    EXPECT_EQ(reason, std::errc::no_such_file_or_directory);
    ASSERT_TRUE(std::filesystem::create_directory(folder.File("later")));
    EXPECT_TRUE(merge.Write(path, START, reason));
    EXPECT_EQ(contentOf(path), START);
}

namespace {

// A program that waits until `gate` is closed, then writes one variable of its own and ends with 0.
pid_t startSaving(const std::string& path, const char* variable, const int gate[2]) {
    const pid_t child = fork();
    if (child != 0) return child;
    close(gate[1]);
    char byte = 0;
    while (read(gate[0], &byte, 1) > 0) {
    }
    DefinitionsMerge merge;
    std::error_code reason;
    _exit(merge.Write(path, file("", variable, "", ""), reason) ? 0 : 1);
}

} // namespace

TEST(DefinitionsMerge, ProgramsThatSaveAtTheSameMomentLoseNoDefinition) {
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    for (int round = 0; round < 100; round++) {
        unlink(path.c_str());
        int gate[2];
        ASSERT_EQ(pipe(gate), 0);
        const pid_t first = startSaving(path, "a=1\n", gate);
        const pid_t second = startSaving(path, "b=2\n", gate);
        close(gate[0]);
        close(gate[1]);
        int ends[] = {-1, -1};
        waitpid(first, &ends[0], 0);
        waitpid(second, &ends[1], 0);
        ASSERT_EQ(ends[0], 0);
        ASSERT_EQ(ends[1], 0);
        const std::string text = contentOf(path);
        ASSERT_TRUE(text == file("", "a=1\nb=2\n", "", "") || text == file("", "b=2\na=1\n", "", "")) << text;
    }
}

TEST(DefinitionsMerge, LeavesTheHistoryOfTheFileWhenToldTo) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    merge.leavesHistory = true;
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "mine\n");
    const std::string theirs = file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", "1\ntheirs\n");
    EXPECT_EQ(merge.Merge(ours, theirs),
              file("f(x)=x\n", "ans=2\npi=3.14\nyours=2\n", "unit u=2 m\n", "1\ntheirs\n"));
    EXPECT_EQ(merge.Merge(ours, START), file("f(x)=x\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n"));
    // There is no file yet.
    EXPECT_EQ(merge.Merge(ours, ""), file("f(x)=x\n", "ans=2\npi=3.14\n", "unit u=2 m\n", ""));
}

// --- Three ways ---

TEST(DefinitionsMerge, WhatAnotherProgramChangedOrDeletedCountsWhereOursIsUnchanged) {
    DefinitionsMerge merge;
    const std::string start =
        file("fa(x)=x\nfb(x)=x\n", "ans=1\nv=2\nw=5\n", "unit u=2 m\nunit uu=4 m\n", "");
    merge.Know(start, start);
    const std::string theirs = file("fb(x)=x*2\n", "ans=1\nv=33\n", "unit u=3 m\n", "");
    EXPECT_EQ(written(merge, start, theirs), theirs);
    EXPECT_EQ(written(merge, start, theirs), theirs) << "what is written is not ours";
}

TEST(DefinitionsMerge, OursCountsWhereItChangedAndOfBothThatChangedIt) {
    DefinitionsMerge merge;
    const std::string start = file("f(x)=x\n", "ans=1\na=1\nb=1\nc=1\nd=1\n", "unit u=2 m\n", "");
    merge.Know(start, start);
    const std::string ours = file("f(x)=x+1\n", "ans=1\na=2\nc=2\nd=1\n", "unit u=5 m\n", "");
    const std::string theirs = file("f(x)=x+2\n", "ans=1\na=1\nb=3\nd=3\n", "unit u=6 m\n", "");
    EXPECT_EQ(written(merge, ours, theirs), file("f(x)=x+1\n", "ans=1\na=2\nc=2\nd=3\n", "unit u=5 m\n", ""));
}

TEST(DefinitionsMerge, EachProgramHasItsOwnAnswer) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string theirs = file("f(x)=x\n", "ans=7\npi=3.14\n", "unit u=2 m\n", "1\n");
    EXPECT_TRUE(merge.TakeForeign(START, theirs).keys.empty());
    EXPECT_EQ(written(merge, START, theirs), START);
}

TEST(DefinitionsMerge, AFileThatIsMissingOrCutOffDeletesAndChangesNothing) {
    const std::string start = file("f(x)=x\n", "ans=1\nv=12\n", "unit u=2 m\n", "");
    for (const std::string& theirs :
         {std::string(), std::string("### FUNCTIONS ###\n"), std::string("### FUNCTIONS ###\nf(x)=x*"),
          std::string("### FUNCTIONS ###\n### VARIABLES ###\nans=1\nv=1"), std::string("v=3\n"),
          file("", "", "", ""), file("f(x)=x\n", "v=12\n", "", "")}) {
        DefinitionsMerge merge;
        merge.Know(start, start);
        EXPECT_TRUE(merge.TakeForeign(start, theirs).keys.empty()) << theirs;
        EXPECT_EQ(written(merge, start, theirs), start) << theirs;
    }
}

// A file by hand, or of a version that wrote less: what is there from the start was never in it.
TEST(DefinitionsMerge, WhatTheFileNeverHadIsNotDeletedInIt) {
    DefinitionsMerge merge;
    const std::string theirs = file("", "ans=0\nv=1\n", "", "");
    const std::string ours = file("mod(x,d)=x%d\n", "ans=0\npi=3.14\nv=1\n", "", "");
    merge.Know(theirs, ours);
    EXPECT_TRUE(merge.TakeForeign(ours, file("", "ans=0\nv=1\n", "", "9\n")).keys.empty());
    EXPECT_EQ(written(merge, ours, theirs), ours);
}

TEST(DefinitionsMerge, ALineByHandStaysAsItIsUntilItIsChangedHere) {
    DefinitionsMerge merge;
    const std::string theirs = file("", "v = 2 # two\nw=1\n", "", "");
    merge.Know(theirs, file("", "v=2\nw=1\n", "", ""));
    EXPECT_EQ(written(merge, file("", "v=2\nw=4\n", "", ""), theirs), file("", "v = 2 # two\nw=4\n", "", ""));
    EXPECT_EQ(written(merge, file("", "v=3\nw=4\n", "", ""), theirs), file("", "v=3\nw=1\n", "", ""));
}

TEST(DefinitionsMerge, WhatWasRefusedIsNotWrittenAgain) {
    DefinitionsMerge merge;
    const std::string theirs = file("f(x)=(((\n", "a=1\na=1/0\n", "", "");
    merge.Know(theirs, file("", "a=1\n", "", ""), {recordOf("f(x)=(((").Key(), recordOf("a=1").Key()});
    EXPECT_EQ(written(merge, file("", "a=1\n", "", ""), theirs), file("", "a=1\n", "", ""));
}

TEST(DefinitionsMerge, AChangeThatCouldNotBeWrittenIsStillAChange) {
    const TemporaryFolder folder;
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string ours = file("f(x)=x\n", "ans=1\npi=3\n", "unit u=2 m\n", "1\n");
    std::error_code reason;
    EXPECT_FALSE(merge.Write(folder.File("later/file"), ours, reason));
    EXPECT_EQ(written(merge, ours, START), ours);
}

TEST(DefinitionsMerge, TellsWhatAnotherProgramChangedOnce) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    // Deleted here, changed there.
    const std::string ours = file("mine(x)=1\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n");
    const std::string theirs = file("f(x)=9\ng(x)=2\n", "ans=3\ny=2\n", "unit u=3 m\nunit w=3 m\n", "7\n");
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(ours, theirs);
    EXPECT_EQ(foreign.keys.size(), 5U);
    EXPECT_EQ(foreign.deleted, "unit u=2 m\npi=3.14\n");
    for (const char* line : {"g(x)=2\n", "y=2\n", "unit u=3 m\n", "unit w=3 m\n"})
        EXPECT_NE(foreign.defined.find(line), std::string::npos) << line;
    EXPECT_EQ(foreign.defined.size(), strlen("g(x)=2\ny=2\nunit u=3 m\nunit w=3 m\n"));
    const std::string now = file("mine(x)=1\ng(x)=2\n", "ans=2\ny=2\n", "unit u=3 m\nunit w=3 m\n", "1\n");
    merge.Took(foreign, now);
    EXPECT_TRUE(merge.TakeForeign(now, theirs).keys.empty());
    EXPECT_EQ(written(merge, now, theirs), now);
    // What was taken is not ours: deleted here, it is deleted there.
    EXPECT_EQ(written(merge, ours, now), file("mine(x)=1\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n"));
}

TEST(DefinitionsMerge, WhatIsWrittenForAnotherProgramIsToldOfAllTheSame) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3\nyours=2\n", "", "1\n");
    EXPECT_EQ(written(merge, START, theirs), theirs);
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(START, theirs);
    EXPECT_EQ(foreign.deleted, "unit u=2 m\n");
    EXPECT_EQ(foreign.defined, "pi=3\nyours=2\n");
}

TEST(DefinitionsMerge, AFileThatIsAsItWasReadOrWrittenHereIsSettled) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    EXPECT_TRUE(merge.IsSettled(START));
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\nmine=1\n", "unit u=2 m\n", "1\n");
    EXPECT_EQ(written(merge, ours, START), ours);
    EXPECT_TRUE(merge.IsSettled(ours));
    EXPECT_FALSE(merge.IsSettled(START));
    const std::string theirs = file("f(x)=x\n", "ans=2\npi=3\nmine=1\n", "unit u=2 m\n", "1\n");
    EXPECT_EQ(written(merge, ours, theirs), theirs);
    EXPECT_FALSE(merge.IsSettled(theirs)) << "pi=3 is still to be told";
    merge.Took(merge.TakeForeign(ours, theirs), theirs);
    EXPECT_TRUE(merge.IsSettled(theirs));
    const std::string another = file("f(x)=x\n", "ans=9\npi=3\nmine=1\n", "unit u=2 m\n", "1\n");
    EXPECT_TRUE(merge.TakeForeign(theirs, another).keys.empty());
    EXPECT_FALSE(merge.IsSettled(another)) << "the answer of another program never counts";
}

// A line that is known by its name takes ten times its length.
TEST(DefinitionsMerge, WhatNobodyElseWritesIsKeptAsOneText) {
    std::string variables = "ans=1\n";
    for (int i = 0; i < 5000; i++)
        variables += "variable" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    const std::string first = file("", variables, "", ""), second = file("f(x)=x\n", variables, "", "");
    for (const std::string leftOut : {"", "rate=7\n"}) {
        SCOPED_TRACE(leftOut);
        const TemporaryFolder folder;
        putContent(folder.File("file"), first);
        const size_t before = heldBytes();
        DefinitionsMerge merge;
        merge.Know(first, file("", variables + leftOut, "", ""));
        merge.LeaveOut(file("", "ans=1\n", "", ""), file("", variables + leftOut, "", ""));
        EXPECT_LT(heldBytes() - before, 3 * first.size());
        std::error_code reason;
        EXPECT_TRUE(merge.Write(folder.File("file"), file("f(x)=x\n", variables + leftOut, "", ""), reason));
        EXPECT_LT(heldBytes() - before, 3 * first.size());
        EXPECT_EQ(contentOf(folder.File("file")), second);
    }
}

TEST(DefinitionsMerge, WhatCouldNotBeTakenInStaysInTheFile) {
    DefinitionsMerge merge;
    merge.Know(START, START);
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3.14\nlong=f(f(1))\n", "unit u=2 m\n", "1\n");
    merge.Took(merge.TakeForeign(START, theirs), START);
    EXPECT_EQ(written(merge, START, theirs), theirs);
    const std::string more = file("f(x)=x\n", "ans=1\npi=3.14\nlong=f(f(1))\nz=1\n", "unit u=2 m\n", "1\n");
    EXPECT_EQ(merge.TakeForeign(START, more).defined, "z=1\n") << "it was told before";
}

// --- Two programs at random ---

namespace {

using Values = std::map<std::string, std::string>; // lines by what stands in front of their '='

std::string textOfValues(const Values& values) {
    Sections sections;
    sections[VARIABLES] = "ans=0\n";
    for (const auto& [left, right] : values) {
        const Section section = left.find('(') != std::string::npos ? FUNCTIONS
                                : left.compare(0, 5, "unit ") == 0  ? UNITS
                                                                    : VARIABLES;
        sections[section].append(left).append("=").append(right).append("\n");
    }
    return textOf(sections);
}

Values valuesIn(const std::string& lines) {
    Values values;
    for (const DefinitionRecord& record : DefinitionsText("\n" + lines).records) {
        const std::string line(record.line);
        const size_t equals = line.find('=');
        if (record.name != "ans") values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

// A program as a person sees it: its values, and what they were when it and the file last agreed.
struct Person {
    Values values, before;
    DefinitionsMerge merge;

    // The file's values for all names that were not changed here.
    Values MergedWith(const Values& file, const std::vector<std::string>& names) const {
        Values all = file;
        for (const std::string& name : names) {
            const auto here = values.find(name), then = before.find(name);
            const bool isThere = here != values.end();
            if (isThere == (then != before.end()) && (!isThere || here->second == then->second)) continue;
            all.erase(name);
            if (isThere) all[name] = here->second;
        }
        return all;
    }

    // What was not changed here, or is the same now, is agreed on.
    void Agree(const Values& file, const std::vector<std::string>& names) {
        const Values merged = MergedWith(file, names);
        for (const std::string& name : names) {
            if (merged.count(name) != file.count(name)) continue;
            if (merged.count(name) && merged.at(name) != file.at(name)) continue;
            before.erase(name);
            if (file.count(name)) before[name] = file.at(name);
        }
    }

    void TakeIn(const std::string& text) {
        const DefinitionsMerge::Foreign foreign = merge.TakeForeign(textOfValues(values), text);
        for (const auto& [name, value] : valuesIn(foreign.deleted)) values.erase(name);
        for (const auto& [name, value] : valuesIn(foreign.defined)) values[name] = value;
        merge.Took(foreign, textOfValues(values));
    }
};

} // namespace

TEST(DefinitionsMerge, TwoProgramsAtRandomDoWhatAPlainModelDoes) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    const auto pick = [&random](unsigned count) { return static_cast<unsigned>(random() % count); };
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    const std::vector<std::string> names = {"v", "w", "f(x)", "f(x,y)", "g()", "unit u", "unit uu"};
    Values file = {{"v", "1"}, {"f(x)", "1"}, {"unit u", "1"}};
    putContent(path, textOfValues(file));
    Person persons[2];
    for (Person& person : persons) {
        person.values = person.before = file;
        person.merge.Know(textOfValues(file), textOfValues(file));
    }
    for (int step = 0; step < 3000; step++) {
        SCOPED_TRACE(step);
        Person& person = persons[pick(2)];
        const std::string& name = names[pick(static_cast<unsigned>(names.size()))];
        switch (pick(4)) {
        case 0: person.values[name] = std::to_string(pick(3) + 1); break;
        case 1: person.values.erase(name); break;
        case 2: {
            const Values expected = person.MergedWith(file, names);
            person.TakeIn(contentOf(path));
            ASSERT_EQ(person.values, expected);
            person.Agree(file, names);
            break;
        }
        default: {
            file = person.MergedWith(file, names);
            std::error_code reason;
            ASSERT_TRUE(person.merge.Write(path, textOfValues(person.values), reason));
            person.before = person.values;
            ASSERT_EQ(valuesIn(contentOf(path)), file);
        }
        }
    }
}
