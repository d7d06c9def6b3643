// SPDX-License-Identifier: MIT
//
// The guide's table of precedence is that of the operators.
#include "deq.h"

#include "../guide.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

TEST(Guide, HasTheOperatorsFromTheTightestToTheLoosest) {
    constexpr int PARENTHESES = 15;
    std::map<int, std::set<std::string>> byPrecedence;
    for (const OpEntry* op = ops; op->code != 0; ++op) {
        // Of precedence 0 are the comma and the mark of a unit, which are no operators to a person.
        if (op->precedence > 0 && op->precedence < PARENTHESES)
            byPrecedence[op->precedence].insert(op->code == OP_CONVERT ? "->" : op->text);
    }
    std::vector<std::set<std::string>> known;
    for (const auto& row : byPrecedence) known.push_back(row.second);
    std::vector<std::set<std::string>> told;
    for (const GuideCells& cells : guideTable(GUIDE, "| Operators | Meaning |")) {
        const std::vector<std::string> names = guideCode(cells.at(0));
        told.emplace_back(names.begin(), names.end());
    }
    EXPECT_EQ(told, known);
}

} // namespace
