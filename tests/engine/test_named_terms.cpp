// SPDX-License-Identifier: MIT
//
// Terms found by name, and changes that are taken back: each costs what it touches.
#include "Helpers_String.h"
#include "NamedTerms.h"
#include "functions_fixture.h"
#include "held_bytes.h"

#include <random>
#include <string>
#include <vector>

namespace {

node* makeTerm(const std::string& name, double value) {
    node* term = new node;
    term->text = strDuplicate(name);
    qfloat number;
    etoq(&value, number);
    term->SetValue(number);
    return term;
}

// Addresses, names and values in the order of the list.
std::vector<std::string> contentsOf(const Deq& list) {
    std::vector<std::string> contents;
    for (const node* term = list.first; term; term = term->next) {
        contents.push_back(std::to_string(reinterpret_cast<uintptr_t>(term)) + term->text);
        if (term->value) contents.back().append(reinterpret_cast<const char*>(term->value), sizeof(qfloat));
    }
    return contents;
}

class NamedTermsTest : public testing::Test {
protected:
    Deq list;
    uint64_t work = 0;
    Undo undo;
    NamedTerms terms{list, [](std::string_view text) { return text; }, undo, work};

    node* FirstOf(const std::string& name) const {
        node* term = list.first;
        while (term && name != term->text) term = term->next;
        return term;
    }
};

TEST_F(NamedTermsTest, ABondAsksForNoNameWhileAllNamesStandForTheSame) {
    node* const a = terms.Append(makeTerm("a", 1));
    node* const b = terms.Append(makeTerm("b", 2));
    NamedTerms::Bond bond;
    EXPECT_EQ(a, terms.Find("a", bond));
    EXPECT_EQ(a, terms.Find("b", bond)); // the name is not looked at
    terms.SetValue(b, qone);
    EXPECT_EQ(a, terms.Find("b", bond));
    terms.Append(makeTerm("c", 3));
    EXPECT_EQ(b, terms.Find("b", bond));
}

TEST_F(NamedTermsTest, ABondFollowsEachChangeAndThoseThatAreTakenBack) {
    NamedTerms::Bond bond;
    const auto found = [&] {
        EXPECT_EQ(terms.Find("a"), terms.Find("a", bond));
        return terms.Find("a", bond);
    };
    EXPECT_EQ(nullptr, found());
    undo.Begin();
    node* const first = terms.Append(makeTerm("a", 1));
    EXPECT_EQ(first, found());
    undo.TakeBack();
    EXPECT_EQ(nullptr, found());
    node* const second = terms.Append(makeTerm("a", 2));
    EXPECT_EQ(second, found());
    undo.Begin();
    terms.Delete(second);
    EXPECT_EQ(nullptr, found());
    undo.TakeBack();
    EXPECT_EQ(second, found());
    undo.Begin();
    terms.DeleteAll();
    EXPECT_EQ(nullptr, found());
    undo.TakeBack();
    EXPECT_EQ(second, found());
    node* const namesake = makeTerm("a", 3); // its owner puts it in front
    list.Insert(namesake, list.first);
    EXPECT_EQ(namesake, found());
}

TEST_F(NamedTermsTest, ABondOfOneListHoldsInNoOther) {
    terms.Append(makeTerm("a", 1));
    Deq another;
    NamedTerms others{another, [](std::string_view text) { return text; }, undo, work};
    node* const other = others.Append(makeTerm("a", 2));
    NamedTerms::Bond bond;
    EXPECT_EQ(list.first, terms.Find("a", bond));
    EXPECT_EQ(other, others.Find("a", bond));
    EXPECT_EQ(list.first, terms.Find("a", bond));
}

TEST_F(NamedTermsTest, AChangeCostsItselfHoweverLongTheListIs) {
    for (int i = 0; i < 5000; i++) terms.Append(makeTerm("v" + std::to_string(i), i));
    EXPECT_EQ(list.last, terms.Find("v4999"));
    EXPECT_LE(work, 5000u);
    work = 0;
    for (int i = 0; i < 5000; i += 10) {
        terms.Delete(terms.Find("v" + std::to_string(i)));
        EXPECT_EQ(nullptr, terms.Find("v" + std::to_string(i)));
        terms.Append(makeTerm("v" + std::to_string(i), -i));
        EXPECT_EQ(list.last, terms.Find("v" + std::to_string(i)));
    }
    EXPECT_EQ(2u * 500u, work);
}

TEST_F(NamedTermsTest, TakingBackCostsTheChanges) {
    for (int i = 0; i < 5000; i++) terms.Append(makeTerm("v" + std::to_string(i), i));
    terms.Find("v0");
    work = 0;
    const auto before = contentsOf(list);
    undo.Begin();
    terms.Delete(terms.Find("v17"));
    terms.SetValue(terms.Find("v18"), qpi);
    terms.Append(makeTerm("new", 1));
    undo.TakeBack();
    EXPECT_EQ(before, contentsOf(list));
    EXPECT_NE(nullptr, terms.Find("v17"));
    EXPECT_EQ(nullptr, terms.Find("new"));
    EXPECT_EQ(4u, work); // two changes of the names, there and back
}

TEST_F(NamedTermsTest, DeletingAllIsOneStep) {
    for (int i = 0; i < 5000; i++) terms.Append(makeTerm("v" + std::to_string(i), i));
    terms.Find("v0");
    const auto before = contentsOf(list);
    undo.Begin();
    work = 0;
    terms.DeleteAll();
    EXPECT_EQ(0, list.count);
    EXPECT_EQ(nullptr, terms.Find("v0"));
    terms.Append(makeTerm("v1", 1));
    EXPECT_LE(work, 1u); // the one that was put in
    undo.TakeBack();
    EXPECT_EQ(before, contentsOf(list));
    EXPECT_EQ(FirstOf("v4999"), terms.Find("v4999"));
}

// Freeing all at once would take longer than an entry may go without a question.
TEST_F(NamedTermsTest, DeletedTermsAreFreedAFewWithEachLookUp) {
    for (int i = 0; i < 5000; i++) terms.Append(makeTerm("v" + std::to_string(i), i));
    const size_t before = heldBytes();
    terms.DeleteAll();
    constexpr size_t BYTES_OF_TERM = 300; // the node, its text, its value and the entry of the index
    EXPECT_LT(before, heldBytes() + 2 * BYTES_OF_TERM);
    for (int i = 1; i <= 200; i++) {
        terms.Find("v0");
        EXPECT_LT(before, heldBytes() + static_cast<size_t>(i) * 40 * BYTES_OF_TERM);
    }
    EXPECT_GT(before, heldBytes() + 5000 * 100);
}

TEST_F(NamedTermsTest, DeletedTermsComeBackWithTheirIndex) {
    for (int i = 0; i < 5000; i++) terms.Append(makeTerm("v" + std::to_string(i), i));
    const auto before = contentsOf(list);
    undo.Begin();
    for (int round = 0; round < 3; round++) {
        terms.DeleteAll();
        for (int i = 0; i < 100; i++) EXPECT_EQ(nullptr, terms.Find("v4999"));
        terms.Append(makeTerm("v1", round));
    }
    work = 0;
    undo.TakeBack();
    EXPECT_EQ(before, contentsOf(list));
    EXPECT_EQ(FirstOf("v4999"), terms.Find("v4999"));
    EXPECT_EQ(3u, work); // the appended ones
}

TEST_F(NamedTermsTest, RandomChangesAreTakenBackToTheSameTermsInTheirPlaces) {
    constexpr unsigned SEED = 20261122;
    std::mt19937 random(SEED);
    for (int round = 0; round < 300; round++) {
        const auto before = contentsOf(list);
        undo.Begin();
        for (auto n = static_cast<unsigned>(random() % 12); n > 0; n--) {
            const std::string name = "v" + std::to_string(random() % 30);
            node* const term = terms.Find(name);
            ASSERT_EQ(FirstOf(name), term) << "seed " << SEED;
            const auto kind = random() % 8;
            if (kind == 0 && n % 4 == 0)
                terms.DeleteAll();
            else if (!term || kind == 1) // sometimes of one name with another
                terms.Append(makeTerm(name, n));
            else if (kind < 4)
                terms.Delete(term);
            else
                terms.SetValue(term, kind < 6 ? qpi : qone);
        }
        if (random() % 3 == 0) {
            undo.End();
        } else {
            undo.TakeBack();
            ASSERT_EQ(before, contentsOf(list)) << "seed " << SEED;
        }
        for (int i = 0; i < 30; i++) {
            const std::string name = "v" + std::to_string(i);
            ASSERT_EQ(FirstOf(name), terms.Find(name)) << "seed " << SEED;
        }
    }
}

// --- The same seen from the engine ---

class CostOfChanges : public Functions {
protected:
    CostOfChanges() {
        for (int i = 0; i < 2000; i++) Enter("v" + std::to_string(i) + "=1");
        for (int i = 0; i < 500; i++) Enter("unit " + UnitName(i) + "=2 m");
    }

    static std::string UnitName(int i) {
        std::string name = "Qq";
        for (; i != 0; i /= 26) name += static_cast<char>('a' + i % 26);
        return name;
    }
};

size_t bytesBefore = 0;
size_t mostBytes = 0;
int asked = 0;

bool weigh() {
    asked++;
    mostBytes = std::max(mostBytes, heldBytes());
    return false;
}

// What an entry of several statements keeps, in case that it is interrupted.
TEST_F(CostOfChanges, AnEntryOfTwoStatementsCopiesNoVariables) {
    calc.interruptCheck = weigh;
    Enter("v1=2;v2=3");
    bytesBefore = mostBytes = heldBytes();
    asked = 0;
    Enter("v1=2;v2=3");
    EXPECT_EQ(2, asked);
    EXPECT_LT(mostBytes - bytesBefore, 60000u); // 2,000 variables of 56 bytes each
    calc.interruptCheck = nullptr;
}

TEST_F(CostOfChanges, DeletingBuildsNoIndex) {
    for (const char* entry : {"del v7", "v7=1", "v8=2", "del v1999", "unit Qqzzz=3 m", "del Qqzzz"}) {
        EXPECT_NE(STATUS_ERROR, Enter(entry)) << entry << calc.message;
        EXPECT_LE(calc.work.indexed, 1u) << entry;
        EXPECT_NE(nullptr, calc.VariableExists("v1000"));
        EXPECT_NE(nullptr, calc.UnitExists(UnitName(300).c_str()));
        EXPECT_LE(calc.work.indexed, 1u) << entry;
    }
}

TEST_F(CostOfChanges, AnInterruptedEntryPutsBackTheSameTerms) {
    DefineChain(25);
    const auto variables = contentsOf(calc.vars);
    const auto units = contentsOf(calc.unitDefs);
    const uint64_t insertions = calc.vars.insertions;
    const char* const lastName = calc.lastName;
    static int left = 0;
    calc.interruptCheck = [] { return --left <= 0; };
    left = 9;
    EXPECT_EQ("** ERROR: interrupted **\n",
              Answer("v5=7; del v6; new=8; del Qqb; unit Qqzzz=m; v5=9; del v5; f25(1)"));
    calc.interruptCheck = nullptr;
    EXPECT_EQ(variables, contentsOf(calc.vars));
    EXPECT_EQ(units, contentsOf(calc.unitDefs));
    EXPECT_EQ(insertions + 3, calc.vars.insertions); // the new one, and two that came back
    EXPECT_EQ(lastName, calc.lastName);
    EXPECT_EQ("ans = 1\n", Answer("v6"));
}

// The names of logarithms ask whether a predefined function answers: not every function.
TEST_F(Functions, NamesOfLogarithmsAreLookedUpWithoutAWalk) {
    for (int i = 0; i < 1000; i++) {
        Enter("log_" + std::to_string(i) + "(x,y)=x");
    }
    funcs.visited = 0;
    for (int i = 0; i < 1000; i++) {
        const std::string name = "log_" + std::to_string(i);
        EXPECT_EQ(name, funcs.FunctionExists(name.c_str(), 2)->name);
        EXPECT_EQ(nullptr, funcs.FunctionExists(name.c_str(), 3));
        EXPECT_EQ(nullptr, funcs.FunctionExists(name.c_str(), 1)->body);
    }
    EXPECT_LE(funcs.visited, 1000u * 80u); // the predefined ones, up to three times
    EXPECT_EQ("ans = 4\n", Answer("log_7(4,5)"));
}

TEST_F(Functions, ALogarithmsNameIsAnsweredByTheFirstThatFits) {
    Enter("log_a(x,y)=x");
    EXPECT_STREQ("log_a", funcs.FunctionExists("log_a", 2)->name);
    const Function* const first = funcs.Get(0);
    EXPECT_EQ(first, funcs.FunctionExists("log_a", -1));
    while (const Function* function = funcs.FunctionExists("log_a", 1)) {
        ASSERT_EQ(nullptr, function->body);
        funcs.DeleteFunction(function);
    }
    EXPECT_STREQ("log_a", funcs.FunctionExists("LOG_A", -1)->name);
    char parameters[] = "x,y";
    funcs.AddFunction("late", parameters, nullptr);
    EXPECT_STREQ("log_a", funcs.FunctionExists("log_a", 2)->name); // it is the earlier one
    EXPECT_STREQ("late", funcs.FunctionExists("log_b", -1)->name);
}

} // namespace
