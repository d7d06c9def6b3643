// SPDX-License-Identifier: MIT
//
// The definitions file line by line, without a calculator.
#include "DefinitionRecords.h"

#include "../engine/clean_start.h"

#include <gtest/gtest.h>

using Kind = DefinitionRecord::Kind;

namespace {

TEST(DefinitionRecords, ALineIsWhatItSays) {
    const struct {
        const char* line;
        Kind kind;
        const char* name;
        const char* parameters;
        const char* body;
    } lines[] = {{"f(x,y)=x*y", Kind::Function, "f", "x,y", "x*y"},
                 {" f ( x ) = x # times", Kind::Function, "f", "x", " x "},
                 {"unit(x)=x", Kind::Function, "unit", "x", "x"},
                 {"a=f(1)", Kind::Variable, "a", "", "f(1)"},
                 {" del = 5", Kind::Variable, "del", "", " 5"},
                 {"unit smoot=67 inch", Kind::Unit, "smoot", "", "67 inch"},
                 {"a b=5", Kind::Nothing, "a b", "", "5"},
                 {"a==5", Kind::Nothing, "a", "", "=5"},
                 {"f(x)==5", Kind::Nothing, "f(x)", "", "=5"},
                 {"a=1;mode deg", Kind::Nothing, "a", "", "1;mode deg"},
                 {"a=1\x02", Kind::Nothing, "a", "", "1\x02"},
                 {"mode deg", Kind::Nothing, "", "", ""}};
    for (const auto& expected : lines) {
        const DefinitionRecord record = recordOf(expected.line);
        EXPECT_EQ(expected.kind, record.kind) << expected.line;
        EXPECT_EQ(expected.name, record.name) << expected.line;
        EXPECT_EQ(expected.parameters, record.parameters) << expected.line;
        EXPECT_EQ(expected.body, record.body) << expected.line;
    }
}

TEST(DefinitionRecords, KeysAreEqualForWhatReplacesEachOther) {
    const auto isSame = [](const char* a, const char* b) { return recordOf(a).Key() == recordOf(b).Key(); };
    EXPECT_TRUE(isSame("f(x)=x", "F ( y ) = 2"));
    EXPECT_TRUE(isSame("fg(x,y)=x", "F g( a , b )=2"));
    EXPECT_FALSE(isSame("f(x)=x", "f(x,y)=x"));
    EXPECT_FALSE(isSame("f(x)=x", "f()=x"));
    EXPECT_FALSE(isSame("f(x)=x", "f=x"));
    EXPECT_TRUE(isSame("a=1", " a = 2 # two"));
    EXPECT_FALSE(isSame("a=1", "A=1"));
    EXPECT_FALSE(isSame("a=1", "unit a=1"));
    EXPECT_TRUE(isSame("a b=1", "a b=2"));
    EXPECT_EQ("", recordOf("mode deg").Key());
}

TEST(DefinitionRecords, SectionsBeginWithTheirHeadersAndTheHistoryHasNoRecords) {
    const DefinitionsText text("### FUNCTIONS ###\r\nf(x)=x\r\n\n### CUSTOM UNITS\n# a comment\nunit u=2 m\n"
                               "### HISTORY ###\na=1\n### VARIABLES ###\nb=1");
    EXPECT_EQ((std::vector<std::string_view>{"a=1", "### VARIABLES ###", "b=1"}), text.history);
    EXPECT_EQ("a=1\n### VARIABLES ###\nb=1\n", text.History());
    EXPECT_FALSE(text.isFramed) << "its last line has no end";
    ASSERT_EQ(2U, text.records.size());
    EXPECT_EQ(FUNCTIONS, text.records[0].section);
    EXPECT_EQ("f(x)=x", text.records[0].line);
    EXPECT_EQ(UNITS, text.records[1].section);
    EXPECT_EQ("unit u=2 m", text.records[1].line);
}

TEST(DefinitionRecords, AFileHasItsFirstHeaderThatOfTheHistoryAndEndsItsLastLine) {
    EXPECT_TRUE(DefinitionsText(textOf({"f(x)=x\n", "", "", "1\n"})).isFramed);
    EXPECT_TRUE(DefinitionsText(textOf({})).isFramed);
    EXPECT_FALSE(DefinitionsText("").isFramed);
    EXPECT_FALSE(DefinitionsText("f(x)=x\n### HISTORY ###\n").isFramed);
    EXPECT_FALSE(DefinitionsText("### FUNCTIONS ###\nf(x)=x\n").isFramed);
}

// The names of what is read, in the order of reading.
std::string orderOf(const std::string& lines) {
    deleteAllUnits();
    const DefinitionsText text("\n" + lines);
    std::string order;
    for (const size_t position : orderOfReading(text.records))
        order.append(text.records[position].name) += " ";
    return order;
}

TEST(DefinitionRecords, WhatIsUsedIsReadFirst) {
    EXPECT_EQ("u f b a ", orderOf("a=b+1\nb=2\nf(x)=x\nunit u=2 m\nmode deg\n"));
    EXPECT_EQ("g f ", orderOf("g(x)=f(x)\nf(x)=x\n")); // functions need not
    EXPECT_EQ("f g rate a ", orderOf("f(x)=g(x)\na=f [1]\ng(x)=x*rate\nrate=2\n"));
    EXPECT_EQ("e qqa ", orderOf("unit qqa=1.5e-3 e\nunit e=2 m\n"));
    EXPECT_EQ("e qqa ", orderOf("unit qqa=1.5 e\nunit e=2 m\n"));
    EXPECT_EQ("qqc qqb qqa ", orderOf("unit qqa=2 qqbs/s\nunit qqb=5kiloqqc^2\nunit qqc=3 m\n"));
}

TEST(DefinitionRecords, WhatOnlyLooksLikeAUseIsNone) {
    EXPECT_EQ("f a x ", orderOf("a=f(1)\nx=a+1\nf(x)=x*2\n")); // x is a parameter in f
    EXPECT_EQ("a k ", orderOf("a=5k\nk=2*a\n"));               // 5000
    EXPECT_EQ("a e ", orderOf("a=1e5\ne=2*a\n"));
    EXPECT_EQ("qqa e qqb qqc ", orderOf("unit qqa=1.5e-3 m\nunit e=2 m\nunit qqb=1e5\nunit qqc=-.5E+2 m\n"));
    EXPECT_EQ("f a b ", orderOf("a=f(1)\nb=a\nf(x)=b(x)\n")); // b() is a function
    EXPECT_EQ("r er ", orderOf("unit er=2 r\nunit r=5 meter\n"));
    EXPECT_EQ("r er ", orderOf("unit r=5 meter\nunit er=2 r\n")); // no "met" in front of er
}

TEST(DefinitionRecords, WhatOnlyAFunctionUsesStaysInItsPlace) {
    EXPECT_EQ("f a rate ", orderOf("f(x)=x*rate\na=1\nrate=2\n"));
    EXPECT_EQ("qqa qqb f ", orderOf("f(x)=x*1[qqb->m]\nunit qqa=2 m\nunit qqb=3 m\n"));
}

TEST(DefinitionRecords, CirclesStayAsTheyAre) {
    EXPECT_EQ("b a ", orderOf("a=b\nb=a\n"));
    EXPECT_EQ("a ", orderOf("a=a+1\n"));
}

} // namespace
