// SPDX-License-Identifier: MIT
#include "DefinitionsMerge.h"

#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string file(const std::string& functions, const std::string& variables, const std::string& units,
                 const std::string& history) {
    return "### FUNCTIONS ###\n" + functions + "### VARIABLES ###\n" + variables + "### CUSTOM UNITS ###\n" +
           units + "### HISTORY ###\n" + history;
}

const std::string START = file("f(x)=x\n", "ans=1\npi=3.14\n", "unit u=2 m\n", "1\n");

} // namespace

TEST(DefinitionsMerge, LeavesOursAloneWhenNobodyElseWrote) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string ours = file("f(x)=x\ng(x)=2\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n2\n");
    EXPECT_EQ(merge.Merge(ours, START), ours);
    EXPECT_EQ(merge.Merge(ours, ""), ours);
}

TEST(DefinitionsMerge, KeepsWhatTheOtherProgramDefined) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\nmine=1\n", "unit u=2 m\n", "mine=1\n");
    const std::string theirs =
        file("f(x)=x\nh(a,b)=a\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\nunit w=3 m\n", "yours=2\n");
    EXPECT_EQ(merge.Merge(ours, theirs), file("f(x)=x\nh(a,b)=a\n", "ans=2\npi=3.14\nmine=1\nyours=2\n",
                                              "unit u=2 m\nunit w=3 m\n", "mine=1\n"));
}

TEST(DefinitionsMerge, LeavesOutWhatIsKeptElsewhereUntilItChanges) {
    DefinitionsMerge merge;
    merge.Know(START);
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
    merge.Know(START);
    const std::string after = file("f(x)=x\n", "ans=1\npi=3.14\nrate=7\n", "unit u=2 m\n", "");
    const std::string theirs = file("f(x)=x\n", "ans=1\npi=3.14\nrate=9\n", "unit u=2 m\n", "");
    merge.LeaveOut(START, after);
    EXPECT_EQ(merge.Merge(after, theirs), theirs);
}

TEST(DefinitionsMerge, KeepsItEveryTime) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string theirs = file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", "");
    const std::string once = merge.Merge(START, theirs);
    EXPECT_EQ(merge.Merge(START, once), once);
}

TEST(DefinitionsMerge, WhatWasDeletedHereStaysDeleted) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string ours = file("", "ans=1\npi=3.14\n", "", "");
    EXPECT_EQ(merge.Merge(ours, START), ours);
}

TEST(DefinitionsMerge, WhatWasDefinedAndDeletedHereStaysDeleted) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string defined = file("f(x)=x\n", "ans=1\npi=3.14\na=5\n", "unit u=2 m\n", "");
    merge.Merge(defined, START);
    EXPECT_EQ(merge.Merge(START, defined), START);
}

TEST(DefinitionsMerge, WhatTheOtherProgramDeletesAgainGoes) {
    DefinitionsMerge merge;
    merge.Know(START);
    merge.Merge(START, file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", ""));
    EXPECT_EQ(merge.Merge(START, START), START);
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
    merge.Know(file("f()=1\n", "", "", ""));
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
    merge.Know(START);
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
    merge.Know(START);
    merge.leavesHistory = true;
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "mine\n");
    const std::string theirs = file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "", "1\ntheirs\n");
    EXPECT_EQ(merge.Merge(ours, theirs),
              file("f(x)=x\n", "ans=2\npi=3.14\nyours=2\n", "unit u=2 m\n", "1\ntheirs\n"));
    // There is no file yet.
    EXPECT_EQ(merge.Merge(ours, ""), file("f(x)=x\n", "ans=2\npi=3.14\n", "unit u=2 m\n", ""));
}

TEST(DefinitionsMerge, TellsWhatAnotherProgramDefinedAndThatIsDeletedHereForGood) {
    DefinitionsMerge merge;
    merge.Know(START);
    const std::string ours = file("f(x)=x\nmine(x)=1\n", "ans=2\npi=3.14\n", "", "1\n");
    const std::string theirs =
        file("f(x)=9\ng(x)=2\n", "ans=3\npi=3.14\ny=2\n", "unit u=2 m\nunit w=3 m\n", "7\n");
    EXPECT_EQ(merge.TakeForeign(ours, theirs),
              "### FUNCTIONS ###\ng(x)=2\n### VARIABLES ###\ny=2\n### CUSTOM UNITS ###\nunit w=3 m\n"
              "### HISTORY ###\n");
    EXPECT_EQ(merge.TakeForeign(ours, theirs), "");
    EXPECT_EQ(merge.Merge(ours, theirs), ours); // what was taken is not ours: it has been deleted here
}
