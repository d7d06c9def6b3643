// SPDX-License-Identifier: MIT
//
// Where in the entry the text stands that an error is about.
#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

namespace {

class ErrorRange : public testing::Test {
protected:
    void SetUp() override {
        deleteAllFunctions();
        deleteAllUnits();
        calc->InitializeFunctionsAndVars();
    }

    // The part of the entry that its error is about; "(none)" when it is not known.
    std::string Marked(const std::string& entry, bool quick = false) {
        calc->ProcessEntry(entry.c_str(), quick);
        const TextRange range = calc->errorRange;
        if (range.start < 0) return "(none)";
        return entry.substr(0, static_cast<size_t>(range.start)) + "[" +
               entry.substr(static_cast<size_t>(range.start), static_cast<size_t>(range.length)) + "]" +
               entry.substr(static_cast<size_t>(range.start + range.length));
    }

    std::unique_ptr<ZqCalculator> calc = std::make_unique<ZqCalculator>();
};

TEST_F(ErrorRange, IsAnUnknownName) {
    EXPECT_EQ(Marked("2*wdth+1"), "2*[wdth]+1");
    EXPECT_EQ(Marked("wdth"), "[wdth]");
    EXPECT_EQ(Marked("a=1; a + wd th ; 3"), "a=1; a + [wd th] ; 3");
    EXPECT_EQ(Marked("  area = 3 * wdth # note"), "  area = 3 * [wdth] # note");
}

TEST_F(ErrorRange, IsATextThatIsNoNumber) {
    EXPECT_EQ(Marked("1 + 2pi"), "1 + [2pi]");
    EXPECT_EQ(Marked("0xfg & 1"), "[0xfg] & 1");
}

TEST_F(ErrorRange, IsAnOperatorWithoutOperand) {
    EXPECT_EQ(Marked("2 + * 3"), "2 + [*] 3");
    EXPECT_EQ(Marked("5 *"), "5 [*]");
    EXPECT_EQ(Marked("y = (1 + ) * 2"), "y = (1 [+] ) * 2");
    EXPECT_EQ(Marked("7 << "), "7 [<<] ");
}

TEST_F(ErrorRange, IsTheParenthesisWithoutPartner) {
    EXPECT_EQ(Marked("2*(3+4"), "2*[(]3+4");
    EXPECT_EQ(Marked("((1)+(2)"), "[(](1)+(2)");
    EXPECT_EQ(Marked("1+2)*3"), "1+2[)]*3");
    EXPECT_EQ(Marked("1+{}"), "1+[{]}");
}

TEST_F(ErrorRange, IsTheNameOfAnUnknownFunction) {
    EXPECT_EQ(Marked("1+foo(2)"), "1+[foo](2)");
    EXPECT_EQ(Marked("sin( wdth )"), "sin( [wdth] )");
}

TEST_F(ErrorRange, IsTheWrongUnitOfAConversion) {
    EXPECT_EQ(Marked("5 km->milz"), "5 km->[milz]");
    EXPECT_EQ(Marked("(5 kmm -> mi) + 1"), "(5 [kmm] -> mi) + 1");
    EXPECT_EQ(Marked("9.81 m/s/s->ft/s^2"), "9.81 [m/s/s]->ft/s^2");
    EXPECT_EQ(Marked("9.81 m/s^2->ft/s/s"), "9.81 m/s^2->[ft/s/s]");
    EXPECT_EQ(Marked("1+5 km->s"), "1+5 km->[s]");
    EXPECT_EQ(Marked("(5 km->m)+wdth"), "(5 km->m)+[wdth]");
    EXPECT_EQ(Marked("2*km->"), "2*km[->]");
}

TEST_F(ErrorRange, IsAWrongNameInFrontOfAnAssignment) {
    EXPECT_EQ(Marked("1; 2 x = 3"), "1; [2 x] = 3");
}

TEST_F(ErrorRange, IsInTheDefinitionThatIsMade) {
    EXPECT_EQ(Marked("f(x) = x + * 2"), "f(x) = x + [*] 2");
    EXPECT_EQ(Marked("f(x)=5 km->m+)"), "f(x)=5 km->m+[)]");
    EXPECT_EQ(Marked("2f(x)=x"), "[2f](x)=x");
}

TEST_F(ErrorRange, IsNotKnownInTheBodyOfACalledFunction) {
    calc->ProcessEntry("f(x)=x+unknown", false);
    EXPECT_EQ(Marked("1+f(2)"), "(none)");
}

TEST_F(ErrorRange, IsTheArgumentThatTheBodyOfAFunctionUses) {
    calc->ProcessEntry("f(x)=x+1", false);
    EXPECT_EQ(Marked("1+f(wdth)"), "1+f([wdth])");
}

TEST_F(ErrorRange, IsNotKnownAfterTheSignsWereMoved) {
    calc->tenKey = true;
    EXPECT_EQ(Marked("10+wdth-"), "(none)");
}

TEST_F(ErrorRange, IsThatOfAPreviewToo) {
    EXPECT_EQ(Marked("2*wdth+1", true), "2*[wdth]+1");
}

TEST_F(ErrorRange, EndsWithTheNextEntry) {
    EXPECT_EQ(Marked("2*wdth+1"), "2*[wdth]+1");
    EXPECT_EQ(Marked("2*3"), "(none)");
    EXPECT_EQ(Marked("1/0"), "(none)");
}

} // namespace
