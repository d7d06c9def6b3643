// SPDX-License-Identifier: MIT
//
// The parts of the engine by themselves: each works with what it is given, without the calculator.
#include "Definitions.h"
#include "Evaluator.h"
#include "Functions.h"
#include "Scanner.h"
#include "Syntax.h"
#include "clean_start.h"
#include "questions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

class Parts : public testing::Test {
protected:
    Parts() {
        deleteAllFunctions();
        merror = 0;
        questions = 0;
        stopAt = 1;
        variables.Reset();
    }
    ~Parts() override { deleteAllFunctions(); }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    EntrySettings settings;
    Statement statement;
    Outcome outcome;
    WorkCounters work;
    Deq list;
    Undo undo;
    Spending::InterruptCheck interruptCheck = nullptr;
    Variables variables{list, statement, outcome, undo, work};
    Spending spending{statement, outcome, interruptCheck, work};
    EntryContext context{statement, outcome, settings, variables, spending, work};
    Scanner scanner{context};
    Evaluator evaluator{context};
    Definitions definitions{context, scanner};

    // The terms as they are scanned and checked.
    int Read(const char* text) {
        statement.terms.Clear();
        return scanner.Scan(text) != 0 ? STATUS_ERROR
                                       : checkSyntax(statement.terms, outcome, work, statement.opCount);
    }

    // The positions of the operators in their order.
    std::vector<int32_t> Order() const {
        std::vector<node*> order;
        orderOperators(statement.terms, order);
        std::vector<int32_t> positions;
        for (const node* op : order) {
            int32_t position = 0;
            for (const node* term = op; term->prev; term = term->prev) position++;
            positions.push_back(position);
        }
        return positions;
    }

    std::vector<int32_t> Levels() const {
        std::vector<int32_t> levels;
        for (const node* term = statement.terms.first; term; term = term->next) levels.push_back(term->level);
        return levels;
    }
};

using Numbers = std::vector<int32_t>;

TEST_F(Parts, ACopyOfAnOutcomeHasAllThatIsInIt) {
    char name[] = "x";
    qfloat value = {};
    outcome.status = STATUS_MESSAGE;
    outcome.Tell(std::string(TEXT_SIZE, 'm')); // cut: it fills its buffer
    copyText(outcome.echoText, "echo");
    qmov(qten, outcome.result);
    copyText(outcome.resultLine, "x = 10\n");
    outcome.lastValue = &value;
    outcome.lastName = name;
    copyText(outcome.lastAnswer, "10");
    outcome.errorRange = {3, 4};
    outcome.interrupted = outcome.overflowed = true;

    const Outcome copied(outcome);
    Outcome copy(copied);
    const Outcome& itself = copy;
    copy = itself; // which changes nothing

    EXPECT_EQ(copy.status, STATUS_MESSAGE);
    EXPECT_EQ(copy.message, std::string(TEXT_SIZE - 1, 'm'));
    EXPECT_STREQ(copy.echoText, "echo");
    EXPECT_EQ(qcmp(copy.result, qten), 0);
    EXPECT_STREQ(copy.resultLine, "x = 10\n");
    EXPECT_EQ(copy.lastValue, &value);
    EXPECT_EQ(copy.lastName, name);
    EXPECT_STREQ(copy.lastAnswer, "10");
    EXPECT_EQ(copy.errorRange.start, 3);
    EXPECT_EQ(copy.errorRange.length, 4);
    EXPECT_TRUE(copy.interrupted && copy.overflowed);
}

TEST_F(Parts, AnErrorTakesAsManyTextsAsItHas) {
    EXPECT_EQ(outcome.Fail("'%s' takes %i", {"f", "2"}), STATUS_ERROR);
    EXPECT_STREQ(outcome.message, "'f' takes 2");
    outcome.Fail("%s and %s", {"one"});
    EXPECT_STREQ(outcome.message, "one and %s");
    outcome.Fail("%s is 100 %", {"all"});
    EXPECT_STREQ(outcome.message, "all is 100 %");
    outcome.Fail("100 %", {"unused"});
    EXPECT_STREQ(outcome.message, "100 %");
}

TEST_F(Parts, TextsTooLongForAnErrorShareTheRoomThatItsFormatLeaves) {
    const std::string_view one = "** ERROR: %s **\n";
    outcome.Fail(one, {std::string(TEXT_SIZE, 'x')});
    EXPECT_EQ(outcome.message, "** ERROR: " + std::string(TEXT_SIZE - 1 - one.size(), 'x') + " **\n");
    const std::string_view two = "** %s: %s **\n"; // 13 characters
    outcome.Fail(two, {std::string(TEXT_SIZE, 'x'), std::string(TEXT_SIZE, 'y')});
    EXPECT_EQ(outcome.message, "** " + std::string((TEXT_SIZE - 14) / 2, 'x') + ": " +
                                   std::string((TEXT_SIZE - 14) / 2, 'y') + " **\n");
}

TEST_F(Parts, AnErrorEndsWithItsFormatWhateverStandsBehindThatInMemory) {
    outcome.Fail(std::string_view("too long a word").substr(0, 8));
    EXPECT_STREQ(outcome.message, "too long");
}

TEST_F(Parts, LevelsAreDepthsAndARaisedMinusStandsOneHigher) {
    ASSERT_EQ(0, Read("(1+2)*3"));
    EXPECT_EQ((Numbers{1, 1, 1, 1, 1, 0, 0}), Levels());
    ASSERT_EQ(0, Read("2*-(1+2)^3")); // the '-' and its group, not what follows them
    EXPECT_EQ((Numbers{0, 0, 1, 2, 2, 2, 2, 2, 0, 0}), Levels());
    ASSERT_EQ(0, Read("2*-(3^-(4))-5"));
    EXPECT_EQ((Numbers{0, 0, 1, 2, 2, 2, 3, 4, 4, 4, 2, 0, 0}), Levels());
    ASSERT_EQ(0, Read("2--3")); // '-' binds no tighter than '-'
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Levels());
}

TEST_F(Parts, OperatorsAreOrderedByLevelThenPrecedenceThenPlace) {
    ASSERT_EQ(0, Read("1+2*3-4"));
    EXPECT_EQ((Numbers{3, 1, 5}), Order());
    ASSERT_EQ(0, Read("1*(2+3)^4"));
    EXPECT_EQ((Numbers{4, 2, 7, 1}), Order()); // the '(' last of its level
    ASSERT_EQ(0, Read("2^3^4"));
    EXPECT_EQ((Numbers{1, 3}), Order());
    statement.terms.Clear();
    EXPECT_EQ((Numbers{}), Order());
}

TEST_F(Parts, AStatementIsScannedCheckedOrderedAndEvaluated) {
    ASSERT_EQ(0, Read("2+3*4"));
    std::vector<node*> order;
    for (int32_t position : Order()) order.push_back(statement.terms.Get(position));
    order.push_back(nullptr);
    statement.opOrder = order.data();
    ASSERT_EQ(STATUS_RESULT, evaluator.ProcTermsLoop());
    statement.opOrder = nullptr;
    qfloat fourteen;
    asctoq("14", fourteen);
    EXPECT_EQ(0, qcmp(fourteen, outcome.result));
    EXPECT_EQ(2u, work.reduced);
}

TEST_F(Parts, ADefinitionKnowsItsParametersAndTheOrderOfItsOperators) {
    ASSERT_EQ(STATUS_MESSAGE, definitions.Define("f(x, y) = 1+y*(x-y)", false));
    EXPECT_STREQ("f(x,y)=1+y*(x-y)\n", outcome.message);
    const Function* function = funcs.FindByName("f", 2);
    ASSERT_TRUE(function);
    EXPECT_EQ((Numbers{-1, -1, 1, -1, -1, 0, -1, 1, -1}), function->parameters);
    EXPECT_EQ((Numbers{6, 4, 3, 1}), function->order);
}

TEST_F(Parts, ATermListThatIsAddedAsAFunctionIsOrderedToo) {
    ASSERT_EQ(0, Read("x+2*x"));
    char parameter[] = "x";
    const Function* function = funcs.AddFunction("g", parameter, &statement.terms);
    ASSERT_TRUE(function);
    EXPECT_EQ((Numbers{0, -1, -1, -1, 0}), function->parameters);
    EXPECT_EQ((Numbers{3, 1}), function->order);
}

TEST_F(Parts, SpendingGivesUpAPreviewAndAsksAnEntry) {
    interruptCheck = countQuestions;
    statement.fullEntry = false;
    spending.budget.Begin(10000);
    EXPECT_EQ(0, spending.Spend(10000));
    EXPECT_EQ(STATUS_ERROR, spending.Spend(1));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", outcome.message);
    EXPECT_EQ(0, questions);
    statement.fullEntry = true;
    spending.budget.Begin();
    EXPECT_EQ(0, spending.Spend(WorkLimit::BETWEEN_QUESTIONS));
    EXPECT_FALSE(outcome.interrupted);
    EXPECT_EQ(STATUS_ERROR, spending.Spend(1));
    EXPECT_TRUE(outcome.interrupted);
    EXPECT_EQ(1, questions);
    EXPECT_STREQ("** ERROR: interrupted **\n", outcome.message);
}

TEST_F(Parts, OperatorsNoteAnOverflowOfTheirOperandsOnly) {
    qfloat overflow = {};
    qfloat value = {};
    qinfin(overflow);
    ASSERT_EQ(0, applyOperator(OP_LESS, qone, qone, value, outcome));
    EXPECT_EQ(0, merror);
    ASSERT_EQ(0, applyOperator(OP_LESS, qone, overflow, value, outcome));
    EXPECT_EQ(MATH_OVERFLOW, merror);
    merror = 0;
    overflow[0] = 0xFFFFFFFF; // negative
    ASSERT_EQ(0, applyOperator(OP_LESS, overflow, qone, value, outcome));
    EXPECT_EQ(MATH_OVERFLOW, merror);
    merror = 0;
}

TEST_F(Parts, ExpensiveOperatorsSayWhatTheyTake) {
    qfloat large = {};
    asctoq("1e100", large);
    EXPECT_EQ(0u, extraWork(OP_ADD, large, qone));
    EXPECT_EQ(Cost::EXPENSIVE, extraWork(OP_POWER, qone, qone));
    EXPECT_EQ(Cost::EXPENSIVE, extraWork(OP_FACTORIAL, qone, qone));
    EXPECT_EQ(0u, extraWork(OP_REMAINDER, qone, large));
    EXPECT_EQ((large[1] - qone[1]) / Cost::REMAINDER_BITS, extraWork(OP_REMAINDER, large, qone));
}

} // namespace
