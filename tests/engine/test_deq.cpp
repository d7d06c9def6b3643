// SPDX-License-Identifier: MIT
#include "../cases.h"
#include "../seed.h"
#include "Helpers_String.h"
#include "deq.h"
#include "held_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

node* named(const char* text, int32_t type = TERM_NAME) {
    node* term = new node;
    term->text = strDuplicate(text);
    term->type = type;
    return term;
}

// The texts from first to last; checks the links in both directions and the count.
std::string texts(const Deq& list) {
    std::string out;
    const node* before = nullptr;
    int32_t count = 0;
    for (const node* term = list.first; term; term = term->next) {
        EXPECT_EQ(before, term->prev);
        out += term->text ? term->text : "?";
        before = term;
        count++;
    }
    EXPECT_EQ(before, list.last);
    EXPECT_EQ(count, list.count);
    return out;
}

void fill(Deq& list, const char* letters) {
    for (; *letters; letters++) list.Push(named(std::string(1, *letters).c_str()));
}

TEST(Deq, IsEmptyAtFirst) {
    Deq list;
    EXPECT_EQ("", texts(list));
    EXPECT_EQ(nullptr, list.first);
}

TEST(Deq, PushAppendsAndReturnsTheNode) {
    Deq list;
    node* a = named("a");
    EXPECT_EQ(a, list.Push(a));
    node* b = list.Push(strDuplicate("b"));
    EXPECT_EQ(b, list.last);
    EXPECT_EQ(0, b->level);
    EXPECT_EQ(nullptr, b->value);
    EXPECT_EQ("ab", texts(list));
}

TEST(Deq, InsertGoesBeforeThePosition) {
    Deq list;
    fill(list, "abc");
    list.Insert(named("x"), 0);
    EXPECT_EQ("xabc", texts(list));
    list.Insert(strDuplicate("y"), 2);
    EXPECT_EQ("xaybc", texts(list));
}

TEST(Deq, InsertOutsideTheListGoesBeforeTheLastNode) {
    Deq list;
    fill(list, "abc");
    list.Insert(named("x"), -1);
    EXPECT_EQ("abxc", texts(list));
    list.Insert(named("y"), 4);
    EXPECT_EQ("abxyc", texts(list));
    list.Insert(named("z"), 99);
    EXPECT_EQ("abxyzc", texts(list));
}

TEST(Deq, InsertIntoAnEmptyList) {
    for (int i : {-1, 0, 1}) {
        Deq list;
        list.Insert(named("a"), i);
        EXPECT_EQ("a", texts(list));
    }
}

TEST(Deq, InsertBeforeANode) {
    Deq list;
    fill(list, "abc");
    list.Insert(strDuplicate("x"), list.first);
    list.Insert(strDuplicate("y"), list.last);
    EXPECT_EQ("xabyc", texts(list));
}

TEST(Deq, GetCountsFromZeroAndTakesLowIndexesAsTheFirst) {
    Deq list;
    fill(list, "abc");
    EXPECT_STREQ("a", list.Get(0)->text);
    EXPECT_STREQ("c", list.Get(2)->text);
    EXPECT_STREQ("a", list.Get(-7)->text);
    EXPECT_EQ(nullptr, list.Get(3));
}

TEST(Deq, GetOnAnEmptyListComplainsOnStandardOutput) {
    Deq list;
    testing::internal::CaptureStdout();
    EXPECT_EQ(nullptr, list.Get(0));
    EXPECT_EQ("no parent!!!\n", testing::internal::GetCapturedStdout());
}

TEST(Deq, DelReturnsTheNodeBefore) {
    Deq list;
    fill(list, "abcd");
    EXPECT_EQ(list.first, list.Del(list.first->next));
    EXPECT_EQ("acd", texts(list));
    EXPECT_EQ(nullptr, list.Del(0));
    EXPECT_EQ("cd", texts(list));
    EXPECT_EQ(list.first, list.Del(1));
    EXPECT_EQ(nullptr, list.Del(5));
    EXPECT_EQ("c", texts(list));
    EXPECT_EQ(nullptr, list.Del(list.last));
    EXPECT_EQ("", texts(list));
}

TEST(Deq, ClearDeletesEverything) {
    Deq list;
    fill(list, "abc");
    list.Clear();
    EXPECT_EQ("", texts(list));
    list.Clear();
    fill(list, "d");
    EXPECT_EQ("d", texts(list));
}

TEST(Deq, CopyToCopiesDeeplyButValuesOfNumbersOnly) {
    Deq list, copy;
    fill(copy, "z");
    node* number = list.Push(named("0x2", TERM_NUMBER));
    number->SetValue(qtwo);
    number->level = 3;
    list.Push(named("x"))->SetValue(qone);
    list.Push(new node)->type = OP_ADD;
    list.CopyTo(&copy);
    list.Clear();
    EXPECT_EQ("z0x2x?", texts(copy));
    node* copied = copy.Get(1);
    EXPECT_EQ(TERM_NUMBER, copied->type);
    EXPECT_EQ(3, copied->level);
    ASSERT_NE(nullptr, copied->value);
    EXPECT_EQ(0, qcmp(qtwo, *copied->value));
    EXPECT_EQ(nullptr, copy.Get(2)->value);
    EXPECT_EQ(OP_ADD, copy.last->type);
}

TEST(Deq, CopyToItselfDoublesTheList) {
    Deq list;
    fill(list, "ab");
    list.CopyTo(&list);
    EXPECT_EQ("abab", texts(list));
}

// Terms that the list made have room for one text or value of their own.
TEST(Deq, OperandsOfTheListTakeTextsOfAllLengthsAndAValue) {
    Deq list;
    for (int round = 0; round < 3; round++) { // the memory is used again
        for (size_t length : {0U, 1U, 54U, 55U, 56U, 57U, 1000U}) {
            const std::string text(length, 'n');
            for (const bool isValueFirst : {false, true}) {
                node* const term = list.AddOperand();
                EXPECT_EQ(nullptr, term->text);
                EXPECT_EQ(nullptr, term->value);
                EXPECT_EQ(-1, term->start);
                if (isValueFirst) term->SetValue(qten);
                term->SetText(text);
                if (!isValueFirst) term->SetValue(qten);
                EXPECT_EQ(text, term->text);
                EXPECT_EQ(0, qcmp(qten, *term->value));
                term->DropText();
                EXPECT_EQ(0, qcmp(qten, *term->value));
                term->level = 5;
                term->SetText("again");
            }
            list.Add()->SetValue(qtwo); // an operator that becomes a number
            EXPECT_EQ(0, qcmp(qtwo, *list.last->value));
            if (round == 1) list.Del(list.last->prev);
        }
        list.Clear();
    }
}

TEST(Deq, TakesTheTermsThatAnotherListMade) {
    Deq list;
    Deq other;
    for (int round = 0; round < 3; round++) {
        for (int i = 0; i < 100; i++) {
            list.AddOperand()->SetText("a");
            other.AddOperand()->SetText("b");
        }
        list.TakeAll(other);
        EXPECT_EQ(0, other.count);
        list.AddOperand()->SetText("c");
        other.AddOperand()->SetText("d");
        EXPECT_EQ(std::string(100, 'a') + std::string(100, 'b') + "c", texts(list));
        EXPECT_EQ("d", texts(other));
        other.Clear();
        list.Clear();
    }
}

TEST(Deq, AShortListHoldsLittle) {
    const size_t before = heldBytes();
    Deq list;
    for (int i = 0; i < 20; i++) list.AddOperand()->SetText("a"); // 2 KB
    EXPECT_LT(heldBytes(), before + 10000);
}

TEST(Deq, HoldsLittleOfALongListThatItTookOver) {
    Deq list;
    Deq other;
    const size_t before = heldBytes();
    for (int i = 0; i < 40000; i++) list.AddOperand()->SetText("a");
    for (int i = 0; i < 38000; i++) other.AddOperand()->SetText("b");
    EXPECT_GT(heldBytes(), before + (5U << 20)); // what is to be given back
    list.TakeAll(other);
    list.Clear();
    EXPECT_LT(heldBytes(), before + (2U << 20));
}

TEST(Deq, PrintsTextsAndIsBounded) {
    Deq list;
    fill(list, "ab");
    list.Push(new node)->type = OP_ADD;
    char out[10001];
    memset(out, '!', sizeof out);
    list.SPrint(out);
    EXPECT_STREQ("ab", out);
    list.Push(strDuplicate(std::string(20000, 'c')));
    list.SPrint(out);
    EXPECT_EQ("ab" + std::string(9997, 'c'), std::string(out));
    EXPECT_EQ('!', out[10000]);
}

TEST(Deq, CountsTheOperatorsAmongItsTerms) {
    Deq list;
    for (int32_t type :
         {+TERM_NAME, +TERM_FUNC, +TERM_DONE, +TERM_NUMBER, +OP_ADD, +OP_OPEN, +OP_CLOSE, +OP_COMMA}) {
        list.Push(new node)->type = type;
    }
    EXPECT_EQ(5, list.CountNumberOfOperators());
}

TEST(Deq, BehavesAsAPlainListUnderRandomOperations) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    Deq list;
    std::vector<std::string> model;
    for (int step = 0; step < cases(20000); step++) {
        const int size = static_cast<int>(model.size());
        const std::string text(1, static_cast<char>('a' + random() % 26));
        const int i = static_cast<int>(random() % static_cast<unsigned>(size + 4)) - 2;
        switch (random() % 4) {
        case 0:
            list.Push(named(text.c_str()));
            model.push_back(text);
            break;
        case 1: {
            list.Insert(named(text.c_str()), i);
            const int at = size == 0 ? 0 : (i < 0 || i >= size ? size - 1 : i);
            model.insert(model.begin() + at, text);
            break;
        }
        default:
            if (size == 0) break;
            list.Del(i);
            if (i < size) model.erase(model.begin() + std::max(i, 0));
        }
        std::string expected;
        for (const std::string& item : model) expected += item;
        ASSERT_EQ(expected, texts(list)) << "step " << step;
    }
}

// The table, written out once more: text, code, precedence, needs left, needs right.
const OpEntry EXPECTED_OPS[] = {
    {"&&", 26, 13, 1, 1}, {"||", 27, 14, 1, 1}, {">>", 13, 7, 1, 1},   {"<<", 14, 7, 1, 1},
    {">=", 22, 8, 1, 1},  {"<=", 23, 8, 1, 1},  {"==", 24, 9, 1, 1},   {"!=", 25, 9, 1, 1},
    {"!", 15, 3, 1, 0},   {"^", 12, 4, 1, 1},   {"*", 5, 5, 1, 1},     {"/", 6, 5, 1, 1},
    {"%", 7, 5, 1, 1},    {"+", 3, 6, 0, 1},    {"-", 4, 6, 0, 1},     {">", 20, 8, 1, 1},
    {"<", 21, 8, 1, 1},   {"&", 11, 10, 1, 1},  {"@", 9, 11, 1, 1},    {"|", 8, 12, 1, 1},
    {"(", 18, 15, 0, 0},  {")", 19, 15, 0, 0},  {"\x11", 17, 7, 1, 1}, {"\x10", 16, 0, 0, 0},
    {",", 2, 0, 0, 0},
};

TEST(Operators, TableHoldsEveryOperatorInOrder) {
    size_t i = 0;
    for (const OpEntry& expected : EXPECTED_OPS) {
        SCOPED_TRACE(expected.text);
        EXPECT_STREQ(expected.text, ops[i].text);
        EXPECT_EQ(expected.code, ops[i].code);
        EXPECT_EQ(expected.precedence, ops[i].precedence);
        EXPECT_EQ(expected.needsLeft, ops[i].needsLeft);
        EXPECT_EQ(expected.needsRight, ops[i].needsRight);
        i++;
    }
    EXPECT_EQ(0, ops[i].code);
}

TEST(Operators, GetOpFindsTheEntryOfACode) {
    for (const OpEntry& expected : EXPECTED_OPS) EXPECT_STREQ(expected.text, getOp(expected.code).text);
    for (int32_t code : {-1, 0, 1, 10, 28, 128, 129, 130, 131, 1 << 30})
        EXPECT_EQ(0, getOp(code).code) << code;
}

TEST(Operators, IsOpTakesTheFirstEntryThatBeginsTheText) {
    EXPECT_EQ(OP_LOGICAL_AND, isOp("&&3"));
    EXPECT_EQ(OP_AND, isOp("&3"));
    EXPECT_EQ(OP_NOT_EQUAL, isOp("!=3"));
    EXPECT_EQ(OP_FACTORIAL, isOp("!"));
    EXPECT_EQ(OP_SHIFT_RIGHT, isOp(">>="));
    EXPECT_EQ(OP_GREATER_EQUAL, isOp(">="));
    EXPECT_EQ(OP_CONVERT, isOp("\x11mi"));
    EXPECT_EQ(OP_UNIT_MARK, isOp("\x10"));
    for (const char* text : {"", "=", "3+", "a", " +", "\xff"}) EXPECT_EQ(0, isOp(text)) << text;
    for (const OpEntry& expected : EXPECTED_OPS) EXPECT_EQ(expected.code, isOp(expected.text));
}

TEST(Operators, IsOpOfATermType) {
    for (const OpEntry& expected : EXPECTED_OPS) EXPECT_TRUE(isOp(int32_t{expected.code}));
    EXPECT_TRUE(isOp(TERM_DONE));
    for (int32_t type : {+TERM_NAME, +TERM_FUNC, +TERM_NUMBER, 0, 1, 10, 28, -1})
        EXPECT_FALSE(isOp(type)) << type;
}

} // namespace
