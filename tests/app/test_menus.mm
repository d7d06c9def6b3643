// SPDX-License-Identifier: MIT
//
// The lists of variables and functions.
#import "shell_fixture.h"

#include <algorithm>

namespace {

const char* chosenTitle = nullptr;

NSString* titleOfTests(id, SEL) {
    return chosenTitle ? [NSString stringWithUTF8String:chosenTitle] : nil;
}

class Menus : public ShellTest {
protected:
    std::vector<std::string> Titles(const char* popUp) const {
        std::vector<std::string> found;
        NSMenu* const menu = [Outlet(popUp) menu];
        for (NSInteger i = 0; i < [menu numberOfItems]; ++i) {
            NSMenuItem* const item = [menu itemAtIndex:i];
            found.push_back([item isSeparatorItem] ? "---" : [[item title] UTF8String]);
        }
        return found;
    }

    // The titles of the user's definitions and of what stands around them: predefined functions are many.
    std::vector<std::string> FunctionTitles(size_t count) const {
        std::vector<std::string> all = Titles("menuFuncs");
        all.resize(std::min(count, all.size()));
        return all;
    }

    void ChooseVariable(const char* title) {
        const Replaced titleOf([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
        chosenTitle = title;
        [console clickedVarsMenu:Outlet("menuVars")];
    }

    void ChooseFunction(const char* title) {
        const Replaced titleOf([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
        chosenTitle = title;
        [console clickedFuncMenu:Outlet("menuFuncs")];
    }
};

// --- Variables ---

TEST_F(Menus, TheVariablesAreListedWithTheirValues) {
    Enter("width=7");
    Enter("height=1/3");
    const std::vector<std::string> found = Titles("menuVars");
    ASSERT_GE(found.size(), 3u);
    EXPECT_EQ(found[0], "Vars");
    std::vector<std::string> expected = {"Vars"};
    static char value[FORMAT_SIZE];
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        qtoascii(*variable->value, value, 10, calc.sciMode, '\0');
        expected.push_back(std::string(variable->text) + "\t" + value);
    }
    EXPECT_EQ(found, expected);
    EXPECT_NE(std::find(found.begin(), found.end(), "width\t7"), found.end());
    EXPECT_NE(std::find(found.begin(), found.end(), "height\t0.3333333333"), found.end());
}

TEST_F(Menus, TheVariablesFollowTheDecimalMark) {
    SetSetting("european", 1);
    Enter("half=0,5");
    const std::vector<std::string> found = Titles("menuVars");
    EXPECT_NE(std::find(found.begin(), found.end(), "half\t0,5"), found.end());
}

TEST_F(Menus, ChoosingAVariableInsertsItsName) {
    Enter("width=7");
    Type("2*+1");
    SelectEntry(2);
    ChooseVariable("width\t7");
    EXPECT_EQ(Entry(), "2*width+1");
    EXPECT_EQ(StatusLine(), "ans = 15") << "the live answer follows";
    SelectEntry(0, 7);
    ChooseVariable("width\t7");
    EXPECT_EQ(Entry(), "width+1");
}

TEST_F(Menus, InTheTranscriptTheCursorGoesToTheEndFirst) {
    Enter("width=7");
    Type("3*");
    Select(2, 3);
    ChooseVariable("width\t7");
    EXPECT_EQ(Entry(), "3*width");
    EXPECT_EQ(Transcript().find("> width=7\n"), 0u);
    Select(0);
    ChooseFunction("f(x,y)=x+y");
    EXPECT_EQ(Entry(), "3*widthf(x,y)");
}

TEST_F(Menus, WhatWasChosenCanBeUndone) {
    Enter("width=7");
    ChooseVariable("width\t7");
    EXPECT_EQ(Entry(), "width");
    Type("+");
    [static_cast<id>(console) undo:nil];
    [static_cast<id>(console) undo:nil];
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(Transcript().substr(0, 8), "> width=");
}

// --- Functions ---

TEST_F(Menus, TheFunctionsAreListedInTheReverseOrder) {
    Enter("f(x,y)=x+y");
    Enter("g(x)=2*x");
    std::vector<std::string> expected;
    bool isSeparated = false;
    static char line[TEXT_SIZE];
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        function->FuncToStr(line);
        const bool isDefined = strchr(line, '=') != nullptr;
        if (isDefined && !isSeparated) expected.insert(expected.begin(), "---");
        isSeparated |= isDefined;
        expected.insert(expected.begin(), line);
    }
    expected.insert(expected.begin(), "Func");
    EXPECT_EQ(Titles("menuFuncs"), expected);
    const std::vector<std::string> top = FunctionTitles(3);
    EXPECT_EQ(top, std::vector<std::string>({"Func", "g(x)=2*x", "f(x,y)=x+y"}));
}

TEST_F(Menus, TheSeparatorStandsBehindTheDefinedFunctions) {
    const std::vector<std::string> found = Titles("menuFuncs");
    EXPECT_EQ(found[0], "Func");
    EXPECT_EQ(std::count(found.begin(), found.end(), "---"), 1);
    const auto separator = std::find(found.begin(), found.end(), "---");
    ASSERT_GT(found.end() - separator, 10);
    EXPECT_NE((separator - 1)->find('='), std::string::npos) << "the first function that has a definition";
    for (auto one = separator + 1; one != found.end(); ++one)
        EXPECT_EQ(one->find('='), std::string::npos) << *one;
}

TEST_F(Menus, DefinitionsOf33CharactersShowAsTheirHeads) {
    Enter("f(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+x"); // 32 characters
    Enter("g(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+12");
    const std::vector<std::string> top = FunctionTitles(3);
    EXPECT_EQ(top, std::vector<std::string>({"Func", "g(x)= ...", "f(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+x"}));
}

TEST_F(Menus, ChoosingAFunctionSelectsItsFirstParameter) {
    Enter("f(x,y)=x+y");
    ChooseFunction("f(x,y)=x+y");
    EXPECT_EQ(Entry(), "f(x,y)");
    EXPECT_EQ(Selected(), "x");
    EXPECT_EQ(CursorInEntry(), 2u);
    Type("5");
    EXPECT_EQ(Entry(), "f(5,y)");
}

TEST_F(Menus, ASingleParameterIsSelectedToo) {
    ChooseFunction("sqrt(value)");
    EXPECT_EQ(Entry(), "sqrt(value)");
    EXPECT_EQ(Selected(), "value");
    Press(KEY_ESCAPE);
    ChooseFunction("longer(a)= ...");
    EXPECT_EQ(Entry(), "longer(a)");
    EXPECT_EQ(Selected(), "a");
}

// A quirk that is kept: right where the call begins the entry, and beside the parameter elsewhere.
TEST_F(Menus, TheSelectionIsCountedFromTheStartOfTheEntry) {
    Type("12345+");
    ChooseFunction("f(x,y)=x+y");
    EXPECT_EQ(Entry(), "12345+f(x,y)");
    EXPECT_EQ(CursorInEntry(), 2u);
    EXPECT_EQ(Selected(), "3");
}

TEST_F(Menus, ChoosingReplacesTheSelection) {
    Type("12345");
    SelectEntry(0, 5);
    ChooseFunction("f(x,y)=x+y");
    EXPECT_EQ(Entry(), "f(x,y)");
    EXPECT_EQ(Selected(), "x");
}

TEST_F(Menus, UndoBringsBackTheDraftThatAChoiceReplaced) {
    Enter("width=7");
    Type("12345");
    Run(0.01); // what a choice changes is undone by itself, as the user chooses in an event of its own
    SelectEntry(0, 5);
    ChooseVariable("width\t7");
    ASSERT_EQ(Entry(), "width");
    [static_cast<id>(console) undo:nil];
    EXPECT_EQ(Entry(), "12345");
}

TEST_F(Menus, ChoosingNothingChangesNothing) {
    Type("12");
    ChooseVariable(nullptr);
    ChooseFunction(nullptr);
    EXPECT_EQ(Text(), "> 12");
}

TEST_F(Menus, AfterAChoiceTheKeysGoToTheConsole) {
    [window makeFirstResponder:nil];
    ChooseVariable("width\t7");
    EXPECT_EQ([window firstResponder], console);
    [window makeFirstResponder:nil];
    ChooseFunction("f(x)=x");
    EXPECT_EQ([window firstResponder], console);
}

// The lists are those of the engine after every entry.
TEST_F(Menus, AnEntryFillsTheListsAnew) {
    Enter("width=7");
    Enter("f(x)=x");
    Enter("del width");
    Enter("del f");
    const std::vector<std::string> variables = Titles("menuVars");
    EXPECT_EQ(std::find(variables.begin(), variables.end(), "width\t7"), variables.end());
    const std::vector<std::string> functions = Titles("menuFuncs");
    EXPECT_EQ(std::find(functions.begin(), functions.end(), "f(x)=x"), functions.end());
}

// A person may have thousands of names, and the lists are refreshed after every entry.
TEST_F(Menus, ItemsThatStayTheSameAreLeftAlone) {
    Enter("a=1");
    Enter("b=2");
    NSMenu* const vars = [Outlet("menuVars") menu];
    NSMenuItem* const a = [vars itemAtIndex:3];
    Enter("b=3");
    EXPECT_EQ(Titles("menuVars"),
              (std::vector<std::string>{"Vars", "ans\t0", "pi\t3.141592654", "a\t1", "b\t3"}));
    EXPECT_EQ([vars itemAtIndex:3], a);
    Enter("del a");
    EXPECT_EQ(Titles("menuVars"), (std::vector<std::string>{"Vars", "ans\t0", "pi\t3.141592654", "b\t3"}));
}

TEST_F(Menus, WithADecimalCommaACallIsPutInAsItHasToBeTyped) {
    Enter("g(a,b)=a+b");
    Enter("european on");
    chosenTitle = "g(a,b)=a+b";
    const Replaced title([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
    [console clickedFuncMenu:Outlet("menuFuncs")];
    EXPECT_EQ(Entry(), "g(a.b)");
    EXPECT_EQ(Selected(), "a");
    Press(KEY_ESCAPE);
    Enter("g(1.2,5)");
    EXPECT_NE(Text().find("ans = 3,5\n"), std::string::npos);
}

} // namespace
