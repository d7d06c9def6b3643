// SPDX-License-Identifier: MIT
//
// The controls: display base, angle mode, the lists of variables and functions, the status line.
#import "shell_fixture.h"

#include <algorithm>

namespace {

NSUInteger heldKeys = 0;

NSEvent* eventOfTests(id, SEL) {
    return [NSEvent mouseEventWithType:NSLeftMouseUp
                              location:NSZeroPoint
                         modifierFlags:heldKeys
                             timestamp:0
                          windowNumber:0
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:0];
}

const char* chosenTitle = nullptr;

NSString* titleOfTests(id, SEL) {
    return chosenTitle ? [NSString stringWithUTF8String:chosenTitle] : nil;
}

class Menus : public ShellTest {
protected:
    void ClickBase(NSInteger segment, NSUInteger keys = 0) {
        const Replaced event([NSApplication class], @selector(currentEvent), eventOfTests);
        heldKeys = keys;
        [Outlet("ctrlBase") setSelectedSegment:segment];
        [console clickedChangeBase:Outlet("ctrlBase")];
    }

    void ShiftClickBase(NSInteger segment) { ClickBase(segment, NSShiftKeyMask); }

    void ChooseBase(NSInteger tag) {
        NSMenuItem* const item = [[[NSMenuItem alloc] init] autorelease];
        [item setTag:tag];
        [console menuChangeBase:item];
    }

    void ClickMode(NSInteger segment) {
        [Outlet("ctrlDegMode") setSelectedSegment:segment];
        [console clickedChangeMode:Outlet("ctrlDegMode")];
    }

    NSInteger BaseSegment() const { return [Outlet("ctrlBase") selectedSegment]; }
    NSInteger ModeSegment() const { return [Outlet("ctrlDegMode") selectedSegment]; }

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

// --- The status line ---

TEST_F(Menus, TheStatusLineShowsTheText) {
    [console updateStatusbar:"ans = 12"];
    EXPECT_EQ(StatusLine(), "ans = 12");
    [console updateStatusbar:""];
    EXPECT_EQ(StatusLine(), "");
}

// --- Display base ---

TEST_F(Menus, TheBaseItemsChangeTheBase) {
    const int bases[] = {2, 10, 16};
    for (const int i : {0, 2, 1}) {
        ChooseBase(i);
        EXPECT_EQ(SettingOf("dispbase"), bases[i]);
        EXPECT_EQ(StoredSettings().at("dispbase"), bases[i]);
        EXPECT_EQ(BaseSegment(), i);
    }
}

TEST_F(Menus, AnUnknownTagChangesNothing) {
    Enter("255");
    const std::string shown = Text();
    for (const NSInteger tag : {3, -1, 16, 1000}) ChooseBase(tag);
    EXPECT_EQ(SettingOf("dispbase"), 10);
    EXPECT_EQ(BaseSegment(), 1);
    EXPECT_EQ(Text(), shown);
}

TEST_F(Menus, AnUnknownSegmentChangesNothing) {
    Enter("255");
    const std::string shown = Text();
    NSSegmentedControl* const other = [[[NSSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
    [other setSegmentCount:5];
    [other setSelectedSegment:3];
    [console clickedChangeBase:other];
    [console clickedChangeMode:other];
    EXPECT_EQ(SettingOf("dispbase"), 10);
    EXPECT_EQ(SettingOf("degmode"), 1);
    EXPECT_EQ(Text(), shown);
}

TEST_F(Menus, HexAfterAnEntryShowsItsAnswerAgainOnce) {
    Enter("200+55");
    ClickBase(2);
    EXPECT_EQ(Text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
    EXPECT_EQ(SettingOf("dispbase"), 16);
    EXPECT_EQ(BaseSegment(), 2);
    ClickBase(2);
    EXPECT_EQ(Text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
}

TEST_F(Menus, ABaseChangeShowsTheResultOfTheEntryAnew) {
    Type("255");
    EXPECT_EQ(StatusLine(), "ans = 255");
    ClickBase(2);
    EXPECT_EQ(StatusLine(), "ans = 0x00FF");
    EXPECT_EQ(Text(), "> 255") << "there is no last answer";
}

TEST_F(Menus, WhatIsBeingTypedStaysBelowTheLine) {
    Enter("5");
    Type("1+2");
    ClickBase(0);
    EXPECT_EQ(Text(), "> 5\nans = 5\n5 = 0b 0101\n\n> 1+2");
    EXPECT_EQ(Entry(), "1+2");
}

TEST_F(Menus, ShiftClickShowsTheAnswerAndChangesNothing) {
    Enter("5");
    ShiftClickBase(0);
    EXPECT_EQ(Text(), "> 5\nans = 5\n5 = 0b 0101\n\n> ");
    EXPECT_EQ(SettingOf("dispbase"), 10);
    EXPECT_EQ(StoredSettings().at("dispbase"), 10);
    EXPECT_EQ(BaseSegment(), 1);
    Enter("6");
    EXPECT_NE(Text().find("> 6\nans = 6\n"), std::string::npos);
}

TEST_F(Menus, OnlyShiftMeansOnce) {
    Enter("5");
    ClickBase(2, NSAlternateKeyMask | NSControlKeyMask | NSCommandKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 16);
}

// Without an entry in between, a base other than that of the call before shows the answer; after an entry,
// one other than the stored base.
TEST_F(Menus, WhetherTheAnswerIsShownAgainFollowsTheCallBefore) {
    Enter("5");
    const std::string head = "> 5\nans = 5\n";
    std::string shown = head;
    const auto expectShown = [&](const char* line) {
        shown += line;
        EXPECT_EQ(Text(), shown + "\n> ");
    };
    ShiftClickBase(1); // an entry since, and the stored base
    expectShown("");
    ShiftClickBase(1); // the same as before
    expectShown("");
    ShiftClickBase(0);
    expectShown("5 = 0b 0101\n");
    ShiftClickBase(0);
    expectShown("");
    ShiftClickBase(2);
    expectShown("5 = 0x0005\n");
    ClickBase(2); // stored now, but the same as before
    expectShown("");
    ClickBase(1);
    expectShown("5 = 5\n");
    ClickBase(2);
    expectShown("5 = 0x0005\n");
    Enter("7");
    const std::string seven = "> 7\nans = 0x0007\n";
    shown += "\n" + seven;
    expectShown("");
    ClickBase(2); // an entry since, and the stored base
    expectShown("");
    ClickBase(1);
    expectShown("7 = 7\n");
}

TEST_F(Menus, WithoutAnAnswerNothingIsShownAgain) {
    Enter("sigfigs 5");
    const std::string shown = Text();
    ClickBase(2);
    EXPECT_EQ(Text(), shown);
}

// A statement that was evaluated has answered, whatever its line ended with, and so has disp.
TEST_F(Menus, WhatIsShownAgainWasAnswered) {
    const struct {
        const char* entry;
        const char* line;
    } cases[] = {{"255; mode deg", "255; mode deg = 0x00FF\n"},
                 {"x=5; 1/0", "x=5; 1/0 = 0x0005\n"},
                 {"y=6; disp y", "y=6; disp y = 0x0006\n"},
                 {"9; echo text", "9; echo text = 0x0009\n"}};
    for (const auto& one : cases) {
        StartAgain();
        Enter(one.entry);
        const std::string before = Text().substr(0, Text().size() - 3); // without "\n> "
        ClickBase(2);
        EXPECT_EQ(Text(), before + one.line + "\n> ");
        ClickBase(1);
    }
}

TEST_F(Menus, WhatDispShowedIsShownAgain) {
    Enter("disp pi");
    ClickBase(2);
    EXPECT_EQ(Text(), "> disp pi\npi = 3.141592654\ndisp pi = 0x0003\n\n> ");
}

TEST_F(Menus, AnEntryThatOnlyFailsOrConfirmsHasNoAnswerToShow) {
    for (const char* const entry : {"mode deg", "1/0", "disp nothing", "echo 5"}) {
        StartAgain();
        Enter(entry);
        const std::string before = Text();
        ClickBase(2);
        EXPECT_EQ(Text(), before);
        ClickBase(1);
    }
}

TEST_F(Menus, TheAnswerOfADeletedVariableIsShownAgain) {
    Enter("x=40+2");
    Enter("del x");
    ClickBase(2);
    EXPECT_NE(Text().find("\nx=40+2 = 0x002A\n"), std::string::npos) << Text();
}

TEST_F(Menus, OnAClearedConsoleNothingIsShownAgain) {
    Enter("5");
    Enter("clear");
    ClickBase(2);
    EXPECT_EQ(Text(), "> ");
    EXPECT_EQ(g_linestart, 2);
}

TEST_F(Menus, TheLineIsWrittenInTheCurrentNotation) {
    SetSetting("european", 1);
    SetSetting("separator", 1);
    SetSetting("sigfigs", 8);
    SetSetting("dispbase", 16);
    Enter("12345,5*1");
    ClickBase(1);
    EXPECT_NE(Text().find("\n12345,5*1 = 12.345,5\n\n> "), std::string::npos) << Text();
}

TEST_F(Menus, APreviewDoesNotChangeWhatIsShownAgain) {
    Enter("5");
    Type("99");
    ClickBase(0);
    EXPECT_NE(Text().find("\n5 = 0b 0101\n"), std::string::npos);
}

TEST_F(Menus, TheStartSetsTheBaseAndShowsNothing) {
    SetSetting("dispbase", 16);
    StartAgain();
    EXPECT_EQ(Text(), "> ");
    EXPECT_EQ(BaseSegment(), 2);
    EXPECT_EQ(SettingOf("dispbase"), 16);
}

// --- Angle mode ---

TEST_F(Menus, TheModeControlChangesTheMode) {
    Type("sin(90)");
    EXPECT_EQ(StatusLine(), "ans = 1");
    ClickMode(1);
    EXPECT_EQ(SettingOf("degmode"), 0);
    EXPECT_EQ(StoredSettings().at("degmode"), 0);
    EXPECT_EQ(ModeSegment(), 1);
    EXPECT_EQ(StatusLine().substr(0, 12), "ans = 0.8939"); // sin of 90 radians
    ClickMode(0);
    EXPECT_EQ(SettingOf("degmode"), 1);
    EXPECT_EQ(ModeSegment(), 0);
    EXPECT_EQ(StatusLine(), "ans = 1");
}

TEST_F(Menus, AnEntryMovesTheControls) {
    Enter("mode rad");
    EXPECT_EQ(ModeSegment(), 1);
    Enter("mode deg");
    EXPECT_EQ(ModeSegment(), 0);
    Enter("display hex");
    EXPECT_EQ(BaseSegment(), 2);
}

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

TEST_F(Menus, ChoosingNothingChangesNothing) {
    Type("12");
    ChooseVariable(nullptr);
    ChooseFunction(nullptr);
    EXPECT_EQ(Text(), "> 12");
}

TEST_F(Menus, AfterAControlTheKeysGoToTheConsole) {
    for (int i = 0; i < 4; ++i) {
        [window makeFirstResponder:nil];
        if (i == 0) ClickBase(2);
        if (i == 1) ClickMode(1);
        if (i == 2) ChooseVariable("width\t7");
        if (i == 3) ChooseFunction("f(x)=x");
        EXPECT_EQ([window firstResponder], console) << i;
    }
}

TEST_F(Menus, AClickSelectsTheSegmentUnderTheMouse) {
    NSSegmentedControl* const control = Outlet("ctrlBase");
    const auto click = [&](CGFloat x, CGFloat y) {
        const NSPoint place = NSMakePoint(x, y);
        [[control cell] stopTracking:place at:place inView:control mouseIsUp:YES];
        return BaseSegment();
    };
    EXPECT_EQ(click(10, 10), 0);
    EXPECT_EQ(click(60, 10), 1);
    EXPECT_EQ(click(100, 10), 2);
    EXPECT_EQ(click(60, 200), 2) << "let go outside";
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

} // namespace

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
