// SPDX-License-Identifier: MIT
//
// The list of functions and completion.
#include "../cases.h"
#include "../seed.h"
#include "Builtins.h"
#include "Helpers_String.h"
#include "functions_fixture.h"

#include <cstring>
#include <random>
#include <string>

namespace {

std::string nextCompletion(const char* prefix) {
    const Function* function = funcs.FindTabComplete(prefix);
    return function ? function->name : "(none)";
}

std::string allNames() {
    std::string names;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext())
        names += std::string(function->name) + " ";
    return names;
}

// The number of those that take one argument and have no body; "mod" is the next.
const int SIMPLE_FUNCTIONS = static_cast<int>(builtinTable().size()) - 1;

// Their names, each with a blank.
std::string simpleNames() {
    std::string names;
    for (int i = 0; i < SIMPLE_FUNCTIONS; i++) {
        names += std::string(builtinTable()[static_cast<size_t>(i)].name) + " ";
    }
    return names;
}

// --- The list ---

TEST_F(Functions, AreRegisteredInTheirOrder) {
    EXPECT_EQ(simpleNames() + "mod ", allNames());
    for (int i = 0; i < SIMPLE_FUNCTIONS; i++) {
        const Function* function = funcs.Get(i);
        EXPECT_EQ(1, function->argCount);
        EXPECT_STREQ("x", function->args.first->text);
        EXPECT_EQ(nullptr, function->body);
    }
    const Function* mod = funcs.Get(SIMPLE_FUNCTIONS);
    EXPECT_EQ(2, mod->argCount);
    ASSERT_NE(nullptr, mod->body);
    EXPECT_EQ("mod(x,d)=x%d", mod->ToString());
}

TEST_F(Functions, MayBeInitializedAgainForAnotherCalculator) {
    Enter("mod(x,d)=x-d");
    Enter("f(x)=x");
    ZqCalculator another;
    another.european = true;
    another.tenKey = true;
    another.InitializeFunctionsAndVars();
    EXPECT_EQ(simpleNames() + "f mod ", allNames());
    EXPECT_EQ("mod(x,d)=x%d", funcs.FindByName("mod", 2)->ToString());
    EXPECT_TRUE(another.european);
    EXPECT_TRUE(another.tenKey);
    EXPECT_STREQ("", another.message);
}

TEST_F(Functions, AreWalkedByPosition) {
    EXPECT_STREQ("sinc", funcs.Get(0)->name);
    EXPECT_STREQ("sinc", funcs.Get(-5)->name);
    EXPECT_STREQ("tanh", funcs.GetNext()->name);
    EXPECT_STREQ("cosh", funcs.Get(2)->name);
    EXPECT_STREQ("mod", funcs.Get(SIMPLE_FUNCTIONS)->name);
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_EQ(nullptr, funcs.Get(SIMPLE_FUNCTIONS + 1));
    EXPECT_EQ(nullptr, funcs.Get(1000));
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_STREQ("sinc", funcs.Get(0)->name);
    CFunctionList empty;
    EXPECT_EQ(nullptr, empty.Get(0));
    EXPECT_EQ(nullptr, empty.GetNext());
    EXPECT_EQ(nullptr, empty.FindTabComplete(""));
    EXPECT_EQ(99, empty.tabIndex);
}

TEST_F(Functions, MayBeDeletedDuringTheWalk) {
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext())
        if (function->name[0] == 's') funcs.DeleteFunction(function);
    EXPECT_EQ("tanh cosh rand floor round ceil abs atan acos asin tan cos exp ln log mod ", allNames());
    Function stranger;
    funcs.DeleteFunction(&stranger);
    funcs.DeleteFunction(nullptr);
    EXPECT_STREQ("tanh", funcs.Get(0)->name);
}

TEST_F(Functions, AreFoundByNameAndNumberOfParameters) {
    Enter("f(x,y)=x");
    Enter("F(x)=x");
    EXPECT_EQ(2, funcs.FunctionExists("F", 2)->argCount);
    EXPECT_EQ(1, funcs.FunctionExists("f", 1)->argCount);
    EXPECT_EQ(2, funcs.FunctionExists("f", -1)->argCount);
    EXPECT_EQ(nullptr, funcs.FunctionExists("f", 3));
    EXPECT_EQ(nullptr, funcs.FunctionExists("f", 0));
    EXPECT_EQ(nullptr, funcs.FunctionExists("", -1));
    EXPECT_EQ(nullptr, funcs.FunctionExists("lo", -1));
}

TEST_F(Functions, WhoseNamesBeginWithLogAreThePredefinedOnes) {
    EXPECT_STREQ("sinc", funcs.FunctionExists("log2", 1)->name);
    EXPECT_STREQ("sinc", funcs.FunctionExists("LOGARITHM", -1)->name);
    EXPECT_EQ(nullptr, funcs.FunctionExists("log2", 2));
    EXPECT_EQ(nullptr, funcs.FindByName("log2", -1));
    EXPECT_STREQ("log", funcs.FindByName("LOG", 1)->name);
}

TEST_F(Functions, AddFunctionReadsParametersUpToAnEmptyPiece) {
    char list[] = "a,b,,c";
    const Function* function = funcs.AddFunction("many", list, nullptr);
    ASSERT_EQ(2, function->argCount);
    EXPECT_STREQ("a", function->args.first->text);
    EXPECT_STREQ("b", function->args.last->text);
    EXPECT_EQ(0, memcmp(list, "a\0b\0,c", 7));
    char none[] = "";
    EXPECT_EQ(0, funcs.AddFunction("none", none, nullptr)->argCount);
}

TEST_F(Functions, ARedefinitionMovesToTheEndAndAPredefinedOneStays) {
    Enter("f(x)=x");
    Enter("g(x)=x");
    Enter("f(x)=x+1");
    EXPECT_EQ(simpleNames() + "mod g f ", allNames());
    char parameter[] = "x";
    Deq body;
    body.Push(strDuplicate("x"))->type = TERM_NAME;
    EXPECT_EQ(nullptr, funcs.AddFunction("Sqrt", parameter, &body));
    EXPECT_EQ(nullptr, funcs.AddFunction("log7", parameter, &body));
    EXPECT_EQ(simpleNames() + "mod g f ", allNames());
}

const Function* walkFor(const std::string& name, int32_t argCount) {
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (strIsEqualI(function->name, name.c_str()) && (argCount == -1 || function->argCount == argCount))
            return function;
    }
    return nullptr;
}

TEST_F(Functions, LookUpsGiveWhatAWalkGives) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    const std::string names[] = {"a", "A", "b", "aB", "Ab", "sqrt", "mod"};
    const char* const parameters[] = {"", "x", "x,y"};
    Undo undo;
    for (int step = 0; step < cases(20000); step++) {
        const std::string name = names[random() % 7];
        switch (random() % 8) {
        case 0:
        case 1:
        case 2: Enter(name + "(" + parameters[random() % 3] + ")=1"); break;
        case 3:
        case 4: funcs.DeleteFunction(funcs.Get(static_cast<int>(random() % 30))); break;
        case 5:
            funcs.RecordIn(&undo);
            undo.Begin();
            break;
        case 6: undo.TakeBack(); break;
        default: undo.End();
        }
        for (const std::string& sought : names) {
            for (int32_t argCount : {-1, 0, 1, 2}) {
                const Function* expected = walkFor(sought, argCount);
                ASSERT_EQ(expected, funcs.FindByName(sought.c_str(), argCount)) << step << sought;
                ASSERT_EQ(expected, funcs.FunctionExists(sought.c_str(), argCount)) << step << sought;
            }
        }
    }
    funcs.RecordIn(nullptr);
}

TEST_F(Functions, VariablesAreCheckedWhenSomeWerePutInAlone) {
    Enter("1+1");
    EXPECT_EQ("x = 1\n", Answer("x=1"));
    EXPECT_EQ("ans = 2\n", Answer("x+1"));
    EXPECT_EQ(0u, calc.work.names);
    Enter("del x");
    calc.vars.Push(strDuplicate("2bad"))->SetValue(qone); // perhaps where x was
    EXPECT_EQ("** ERROR: invalid variable name: 2bad **\n", Answer("1+1"));
    EXPECT_EQ("ans = 2\n", Answer("1+1"));
}

// --- Completion ---

TEST_F(Functions, CompletionGoesFromTheNewestToTheOldestThenStartsOver) {
    for (int round = 0; round < 2; round++) {
        for (const char* name : {"sqrt", "sin", "sinh", "sinc", "(none)"})
            EXPECT_EQ(name, nextCompletion("s"));
    }
    Enter("sum(a,b)=a+b");
    Enter("Scale(x)=2*x");
    for (const char* name : {"Scale", "sum", "sqrt", "sin", "sinh", "sinc", "(none)", "Scale"})
        EXPECT_EQ(name, nextCompletion("S"));
    funcs.TabCompleteReset();
    EXPECT_EQ(99 + SIMPLE_FUNCTIONS + 3, funcs.tabIndex);
    EXPECT_EQ("sinc", nextCompletion("SINC"));
    EXPECT_EQ(0, funcs.tabIndex);
    EXPECT_EQ("(none)", nextCompletion("sinc"));
    EXPECT_EQ(99 + SIMPLE_FUNCTIONS + 3, funcs.tabIndex);
    EXPECT_EQ("(none)", nextCompletion("sincere"));
}

TEST_F(Functions, AnEmptyPrefixCompletesToEveryFunction) {
    std::string names;
    for (std::string name = nextCompletion(""); name != "(none)"; name = nextCompletion(""))
        names = name + " " + names;
    EXPECT_EQ(allNames(), names);
}

TEST_F(Functions, CompletionStartsAtTheNewestHoweverManyThereAre) {
    for (int i = 0; i < 150; i++) Enter("t" + std::to_string(i) + "x(x)=x");
    EXPECT_EQ("t149x", nextCompletion("t"));
    EXPECT_EQ("t148x", nextCompletion("t"));
    Enter("t150x(x)=x");
    EXPECT_EQ("t150x", nextCompletion("t"));
}

} // namespace
