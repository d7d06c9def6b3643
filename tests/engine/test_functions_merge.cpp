// SPDX-License-Identifier: MIT
#include "FunctionsMerge.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string file(const std::string& functions, const std::string& variables, const std::string& units,
                 const std::string& history) {
    return "### FUNCTIONS ###\n" + functions + "### VARIABLES ###\n" + variables + "### CUSTOM UNITS ###\n" +
           units + "### HISTORY ###\n" + history;
}

const std::string start = file("f(x)=x\n", "ans=1\npi=3.14\n", "unit u=2 m\n", "1\n");

} // namespace

TEST(FunctionsMerge, LeavesOursAloneWhenNobodyElseWrote) {
    FunctionsMerge merge;
    merge.Know(start);
    const std::string ours = file("f(x)=x\ng(x)=2\n", "ans=2\npi=3.14\n", "unit u=2 m\n", "1\n2\n");
    EXPECT_EQ(merge.Merge(ours, start), ours);
    EXPECT_EQ(merge.Merge(ours, ""), ours);
}

TEST(FunctionsMerge, KeepsWhatTheOtherProgramDefined) {
    FunctionsMerge merge;
    merge.Know(start);
    const std::string ours = file("f(x)=x\n", "ans=2\npi=3.14\nmine=1\n", "unit u=2 m\n", "mine=1\n");
    const std::string theirs =
        file("f(x)=x\nh(a,b)=a\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\nunit w=3 m\n", "yours=2\n");
    EXPECT_EQ(merge.Merge(ours, theirs), file("f(x)=x\nh(a,b)=a\n", "ans=2\npi=3.14\nmine=1\nyours=2\n",
                                              "unit u=2 m\nunit w=3 m\n", "mine=1\n"));
}

TEST(FunctionsMerge, KeepsItEveryTime) {
    FunctionsMerge merge;
    merge.Know(start);
    const std::string theirs = file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", "");
    const std::string once = merge.Merge(start, theirs);
    EXPECT_EQ(merge.Merge(start, once), once);
}

TEST(FunctionsMerge, WhatWasDeletedHereStaysDeleted) {
    FunctionsMerge merge;
    merge.Know(start);
    const std::string ours = file("", "ans=1\npi=3.14\n", "", "");
    EXPECT_EQ(merge.Merge(ours, start), ours);
}

TEST(FunctionsMerge, WhatWasDefinedAndDeletedHereStaysDeleted) {
    FunctionsMerge merge;
    merge.Know(start);
    const std::string defined = file("f(x)=x\n", "ans=1\npi=3.14\na=5\n", "unit u=2 m\n", "");
    merge.Merge(defined, start);
    EXPECT_EQ(merge.Merge(start, defined), start);
}

TEST(FunctionsMerge, WhatTheOtherProgramDeletesAgainGoes) {
    FunctionsMerge merge;
    merge.Know(start);
    merge.Merge(start, file("f(x)=x\n", "ans=3\npi=3.14\nyours=2\n", "unit u=2 m\n", ""));
    EXPECT_EQ(merge.Merge(start, start), start);
}

TEST(FunctionsMerge, OurLineStaysOfANameInBoth) {
    FunctionsMerge merge;
    const std::string ours = file("f(y)=y+1\n", "a=1\n", "unit u=5 m\n", "");
    EXPECT_EQ(merge.Merge(ours, file("F(x)=x\n", "a=2\n", "unit u=2 m\n", "")), ours);
}

TEST(FunctionsMerge, FunctionsOfOneNameDifferByTheirNumberOfParameters) {
    FunctionsMerge merge;
    const std::string ours = file("f(x)=x\n", "", "", "");
    EXPECT_EQ(merge.Merge(ours, file("f(x,y)=x\n", "", "", "")), file("f(x)=x\nf(x,y)=x\n", "", "", ""));
}

TEST(FunctionsMerge, VariablesDifferByCase) {
    FunctionsMerge merge;
    EXPECT_EQ(merge.Merge(file("", "a=1\n", "", ""), file("", "A=2\n", "", "")),
              file("", "a=1\nA=2\n", "", ""));
}

TEST(FunctionsMerge, TakesNothingFromATextThatIsNoFunctionsFile) {
    FunctionsMerge merge;
    merge.Know(start);
    EXPECT_EQ(merge.Merge(start, "x=1\nfoo(x)=3\n"), start);
    EXPECT_EQ(merge.Merge(start, std::string("\0\1=\n", 4)), start);
}

TEST(FunctionsMerge, TheHistoryIsOursWhateverItHolds) {
    FunctionsMerge merge;
    const std::string ours = file("", "", "", "### VARIABLES ###\nq=1\n");
    EXPECT_EQ(merge.Merge(ours, file("", "", "", "### VARIABLES ###\nr=1\n")), ours);
}
