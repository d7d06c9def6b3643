// SPDX-License-Identifier: MIT
//
// The account of work: its two answers.
#include "WorkBudget.h"

#include <gtest/gtest.h>

namespace {

using Next = WorkBudget::Next;

TEST(Budget, AsksAfterEveryThousandUnits) {
    WorkBudget budget;
    budget.Begin();
    EXPECT_EQ(Next::GoOn, budget.Spend(1000));
    EXPECT_EQ(Next::Ask, budget.Spend(1));
    EXPECT_EQ(Next::Ask, budget.Spend(1)); // nobody has asked yet
    budget.Asked();
    EXPECT_EQ(Next::GoOn, budget.Spend(999));
    budget.Asked(); // as in front of a statement
    EXPECT_EQ(Next::GoOn, budget.Spend(1000));
    EXPECT_EQ(Next::Ask, budget.Spend(5000000));
}

TEST(Budget, AllowsItsLimitAndNoMore) {
    WorkBudget budget;
    budget.Begin(WorkLimit::PREVIEW);
    for (int i = 0; i < 60; i++) {
        EXPECT_NE(Next::GiveUp, budget.Spend(1000));
        budget.Asked();
    }
    EXPECT_EQ(0u, budget.Left());
    EXPECT_EQ(Next::GiveUp, budget.Spend(1));
    budget.Asked();
    EXPECT_EQ(Next::GiveUp, budget.Spend(0));
    budget.Begin(10);
    EXPECT_EQ(Next::GoOn, budget.Spend(4));
    EXPECT_EQ(6u, budget.Left());
    EXPECT_EQ(Next::GiveUp, budget.Spend(7));
    EXPECT_EQ(0u, budget.Left());
}

} // namespace
