// SPDX-License-Identifier: MIT
//
// Conversions of units with very many names count as the work they are; an interrupted entry leaves the units
// as they were.
#include "functions_fixture.h"

#include <string>

namespace {

int checks = 0;
int checksUntilStop = 0;

bool countChecks() {
    return ++checks >= checksUntilStop;
}

class UnitWork : public Functions {
protected:
    // Of an entry of so many statements, stops the last.
    std::string Interrupted(const std::string& entry, int statements) {
        checks = 0;
        checksUntilStop = statements + 1;
        calc.interruptCheck = countChecks;
        std::string answer = Answer(entry);
        calc.interruptCheck = nullptr;
        EXPECT_TRUE(calc.interrupted);
        return answer;
    }

    void DefineDearest() {
        ASSERT_EQ(STATUS_MESSAGE, Enter("unit k=m^1000"));
        ASSERT_EQ(STATUS_MESSAGE, Enter("unit big=k^100"));
    }
};

const char* const interrupted = "** ERROR: interrupted **\n";

TEST_F(UnitWork, aDearConversionEndsAPreview) {
    DefineDearest();
    ASSERT_EQ("ans = 1\n", Answer("1 big/big->radian"));
    EXPECT_EQ(STATUS_ERROR, Preview("1 big/big->radian"));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
    Enter("f(x)=x*(1 big/big->m)");
    EXPECT_EQ(STATUS_ERROR, Preview("f(1)" + repeated("+f(1)", 100)));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
}

TEST_F(UnitWork, ordinaryConversionsArePreviewed) {
    EXPECT_EQ(STATUS_RESULT, Preview("5 km->mi"));
    Enter("f(x)=x*(1 km->m)");
    EXPECT_EQ(STATUS_RESULT, Preview("f(1)" + repeated("+f(1)", 499)));
    EXPECT_STREQ("ans = 500000\n", calc.resultLine);
}

TEST_F(UnitWork, aFailedConversionCountsToo) {
    DefineDearest();
    EXPECT_EQ(STATUS_ERROR, Preview("1 big->s"));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
    EXPECT_EQ(STATUS_ERROR, Enter("1 big->s"));
    EXPECT_STREQ("** ERROR 13: 'big' and 's' have incompatible units **\n", calc.message);
}

TEST_F(UnitWork, everyDearConversionAsks) {
    DefineDearest();
    Enter("f(x)=x*(1 big->big)");
    checks = 0;
    checksUntilStop = 1000;
    calc.interruptCheck = countChecks;
    EXPECT_EQ("ans = 5\n", Answer("f(1)+f(1)+f(1)+f(1)+f(1)"));
    EXPECT_GE(checks, 1 + 5);
    calc.interruptCheck = nullptr;
}

TEST_F(UnitWork, aUnitDeletedByAnInterruptedEntryIsTheSameAsBefore) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q");
    EXPECT_EQ(interrupted, Interrupted("del B; f25(1)", 2));
    EXPECT_EQ("unit B=12 Q\n", Answer("list units"));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("** deleted unit B **\n", Answer("del B"));
    EXPECT_EQ("** ERROR: variable, unit or function 'B' not found **\n", Answer("del B"));
}

TEST_F(UnitWork, aUnitIsTheSameThoughOneItWasDefinedFromHasChanged) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q; unit Q=5 m");
    EXPECT_EQ(interrupted, Interrupted("del B; f25(1)", 2));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("ans = 5\n", Answer("1 Q->m"));
}

TEST_F(UnitWork, aUnitRedefinedIdenticallyIsTakenBack) {
    DefineChain(25);
    Enter("unit Q=2 m; unit B=12 Q; del Q; unit Q=5 m");
    EXPECT_EQ(interrupted, Interrupted("del B; unit B=12 Q; unit D=m; f25(1)", 4));
    EXPECT_EQ("ans = 24\n", Answer("1 B->m"));
    EXPECT_EQ("unit B=12 Q\nunit Q=5 m\n", Answer("list units"));
    EXPECT_EQ(STATUS_MESSAGE, Enter("unit D=3 m"));
    EXPECT_EQ("ans = 3\n", Answer("1 D->m"));
}

TEST_F(UnitWork, theCatalogueBuiltByAnInterruptedEntryStays) {
    DefineChain(25);
    unitFreeMemory();
    EXPECT_EQ(interrupted, Interrupted("1 km->m; unit smoot=1.7018 m; f25(1)", 3));
    EXPECT_EQ("ans = 5000\n", Answer("5 km->m"));
    EXPECT_EQ(STATUS_ERROR, Enter("1 smoot->m"));
}

} // namespace
