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
    void clickBase(NSInteger segment, NSUInteger keys = 0) {
        const Replaced event([NSApplication class], @selector(currentEvent), eventOfTests);
        heldKeys = keys;
        [outlet("ctrlBase") setSelectedSegment:segment];
        [console clickedChangeBase:outlet("ctrlBase")];
    }

    void shiftClickBase(NSInteger segment) { clickBase(segment, NSShiftKeyMask); }

    void chooseBase(NSInteger tag) {
        NSMenuItem* const item = [[[NSMenuItem alloc] init] autorelease];
        [item setTag:tag];
        [console menuChangeBase:item];
    }

    void clickMode(NSInteger segment) {
        [outlet("ctrlDegMode") setSelectedSegment:segment];
        [console clickedChangeMode:outlet("ctrlDegMode")];
    }

    NSInteger baseSegment() const { return [outlet("ctrlBase") selectedSegment]; }
    NSInteger modeSegment() const { return [outlet("ctrlDegMode") selectedSegment]; }

    std::vector<std::string> titles(const char* popUp) const {
        std::vector<std::string> found;
        NSMenu* const menu = [outlet(popUp) menu];
        for (NSInteger i = 0; i < [menu numberOfItems]; i++) {
            NSMenuItem* const item = [menu itemAtIndex:i];
            found.push_back([item isSeparatorItem] ? "---" : [[item title] UTF8String]);
        }
        return found;
    }

    // The titles of the user's definitions and of what stands around them: predefined functions are many.
    std::vector<std::string> functionTitles(size_t count) const {
        std::vector<std::string> all = titles("menuFuncs");
        all.resize(std::min(count, all.size()));
        return all;
    }

    void chooseVariable(const char* title) {
        const Replaced titleOf([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
        chosenTitle = title;
        [console clickedVarsMenu:outlet("menuVars")];
    }

    void chooseFunction(const char* title) {
        const Replaced titleOf([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
        chosenTitle = title;
        [console clickedFuncMenu:outlet("menuFuncs")];
    }
};

// --- The status line ---

TEST_F(Menus, theStatusLineShowsTheText) {
    [console updateStatusbar:"ans = 12"];
    EXPECT_EQ(status(), "ans = 12");
    [console updateStatusbar:""];
    EXPECT_EQ(status(), "");
}

// --- Display base ---

TEST_F(Menus, theBaseItemsChangeTheBase) {
    const int bases[] = {2, 10, 16};
    for (const int i : {0, 2, 1}) {
        chooseBase(i);
        EXPECT_EQ(setting("dispbase"), bases[i]);
        EXPECT_EQ(storedSettings().at("dispbase"), bases[i]);
        EXPECT_EQ(baseSegment(), i);
    }
}

TEST_F(Menus, anUnknownTagChangesNothing) {
    enter("255");
    const std::string shown = text();
    for (const NSInteger tag : {3, -1, 16, 1000}) chooseBase(tag);
    EXPECT_EQ(setting("dispbase"), 10);
    EXPECT_EQ(baseSegment(), 1);
    EXPECT_EQ(text(), shown);
}

TEST_F(Menus, anUnknownSegmentChangesNothing) {
    enter("255");
    const std::string shown = text();
    NSSegmentedControl* const other = [[[NSSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
    [other setSegmentCount:5];
    [other setSelectedSegment:3];
    [console clickedChangeBase:other];
    [console clickedChangeMode:other];
    EXPECT_EQ(setting("dispbase"), 10);
    EXPECT_EQ(setting("degmode"), 1);
    EXPECT_EQ(text(), shown);
}

TEST_F(Menus, hexAfterAnEntryShowsItsAnswerAgainOnce) {
    enter("200+55");
    clickBase(2);
    EXPECT_EQ(text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
    EXPECT_EQ(setting("dispbase"), 16);
    EXPECT_EQ(baseSegment(), 2);
    clickBase(2);
    EXPECT_EQ(text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
}

TEST_F(Menus, aBaseChangeShowsTheResultOfTheEntryAnew) {
    type("255");
    EXPECT_EQ(status(), "ans = 255");
    clickBase(2);
    EXPECT_EQ(status(), "ans = 0x00FF");
    EXPECT_EQ(text(), "> 255") << "there is no last answer";
}

TEST_F(Menus, whatIsBeingTypedStaysBelowTheLine) {
    enter("5");
    type("1+2");
    clickBase(0);
    EXPECT_EQ(text(), "> 5\nans = 5\n5 = 0b 0101\n\n> 1+2");
    EXPECT_EQ(entry(), "1+2");
}

TEST_F(Menus, shiftClickShowsTheAnswerAndChangesNothing) {
    enter("5");
    shiftClickBase(0);
    EXPECT_EQ(text(), "> 5\nans = 5\n5 = 0b 0101\n\n> ");
    EXPECT_EQ(setting("dispbase"), 10);
    EXPECT_EQ(storedSettings().at("dispbase"), 10);
    EXPECT_EQ(baseSegment(), 1);
    enter("6");
    EXPECT_NE(text().find("> 6\nans = 6\n"), std::string::npos);
}

TEST_F(Menus, onlyShiftMeansOnce) {
    enter("5");
    clickBase(2, NSAlternateKeyMask | NSControlKeyMask | NSCommandKeyMask);
    EXPECT_EQ(setting("dispbase"), 16);
}

// Without an entry in between, a base other than that of the call before shows the answer; after an entry,
// one other than the stored base.
TEST_F(Menus, whetherTheAnswerIsShownAgainFollowsTheCallBefore) {
    enter("5");
    const std::string head = "> 5\nans = 5\n";
    std::string shown = head;
    const auto expectShown = [&](const char* line) {
        shown += line;
        EXPECT_EQ(text(), shown + "\n> ");
    };
    shiftClickBase(1); // an entry since, and the stored base
    expectShown("");
    shiftClickBase(1); // the same as before
    expectShown("");
    shiftClickBase(0);
    expectShown("5 = 0b 0101\n");
    shiftClickBase(0);
    expectShown("");
    shiftClickBase(2);
    expectShown("5 = 0x0005\n");
    clickBase(2); // stored now, but the same as before
    expectShown("");
    clickBase(1);
    expectShown("5 = 5\n");
    clickBase(2);
    expectShown("5 = 0x0005\n");
    enter("7");
    const std::string seven = "> 7\nans = 0x0007\n";
    shown += "\n" + seven;
    expectShown("");
    clickBase(2); // an entry since, and the stored base
    expectShown("");
    clickBase(1);
    expectShown("7 = 7\n");
}

TEST_F(Menus, withoutAnAnswerNothingIsShownAgain) {
    enter("sigfigs 5");
    const std::string shown = text();
    clickBase(2);
    EXPECT_EQ(text(), shown);
}

// A statement that was evaluated has answered, whatever its line ended with, and so has disp.
TEST_F(Menus, whatIsShownAgainWasAnswered) {
    const struct {
        const char* entry;
        const char* line;
    } cases[] = {{"255; mode deg", "255; mode deg = 0x00FF\n"},
                 {"x=5; 1/0", "x=5; 1/0 = 0x0005\n"},
                 {"y=6; disp y", "y=6; disp y = 0x0006\n"},
                 {"9; echo text", "9; echo text = 0x0009\n"}};
    for (const auto& one : cases) {
        startAgain();
        enter(one.entry);
        const std::string before = text().substr(0, text().size() - 3); // without "\n> "
        clickBase(2);
        EXPECT_EQ(text(), before + one.line + "\n> ");
        clickBase(1);
    }
}

TEST_F(Menus, whatDispShowedIsShownAgain) {
    enter("disp pi");
    clickBase(2);
    EXPECT_EQ(text(), "> disp pi\npi = 3.141592654\ndisp pi = 0x0003\n\n> ");
}

TEST_F(Menus, anEntryThatOnlyFailsOrConfirmsHasNoAnswerToShow) {
    for (const char* const entry : {"mode deg", "1/0", "disp nothing", "echo 5"}) {
        startAgain();
        enter(entry);
        const std::string before = text();
        clickBase(2);
        EXPECT_EQ(text(), before);
        clickBase(1);
    }
}

TEST_F(Menus, theAnswerOfADeletedVariableIsShownAgain) {
    enter("x=40+2");
    enter("del x");
    clickBase(2);
    EXPECT_NE(text().find("\nx=40+2 = 0x002A\n"), std::string::npos) << text();
}

TEST_F(Menus, onAClearedConsoleNothingIsShownAgain) {
    enter("5");
    enter("clear");
    clickBase(2);
    EXPECT_EQ(text(), "> ");
    EXPECT_EQ(g_linestart, 2);
}

TEST_F(Menus, theLineIsWrittenInTheCurrentNotation) {
    setSetting("european", 1);
    setSetting("separator", 1);
    setSetting("sigfigs", 8);
    setSetting("dispbase", 16);
    enter("12345,5*1");
    clickBase(1);
    EXPECT_NE(text().find("\n12345,5*1 = 12.345,5\n\n> "), std::string::npos) << text();
}

TEST_F(Menus, aPreviewDoesNotChangeWhatIsShownAgain) {
    enter("5");
    type("99");
    clickBase(0);
    EXPECT_NE(text().find("\n5 = 0b 0101\n"), std::string::npos);
}

TEST_F(Menus, theStartSetsTheBaseAndShowsNothing) {
    setSetting("dispbase", 16);
    startAgain();
    EXPECT_EQ(text(), "> ");
    EXPECT_EQ(baseSegment(), 2);
    EXPECT_EQ(setting("dispbase"), 16);
}

// --- Angle mode ---

TEST_F(Menus, theModeControlChangesTheMode) {
    type("sin(90)");
    EXPECT_EQ(status(), "ans = 1");
    clickMode(1);
    EXPECT_EQ(setting("degmode"), 0);
    EXPECT_EQ(storedSettings().at("degmode"), 0);
    EXPECT_EQ(modeSegment(), 1);
    EXPECT_EQ(status().substr(0, 12), "ans = 0.8939"); // sin of 90 radians
    clickMode(0);
    EXPECT_EQ(setting("degmode"), 1);
    EXPECT_EQ(modeSegment(), 0);
    EXPECT_EQ(status(), "ans = 1");
}

TEST_F(Menus, anEntryMovesTheControls) {
    enter("mode rad");
    EXPECT_EQ(modeSegment(), 1);
    enter("mode deg");
    EXPECT_EQ(modeSegment(), 0);
    enter("display hex");
    EXPECT_EQ(baseSegment(), 2);
}

// --- Variables ---

TEST_F(Menus, theVariablesAreListedWithTheirValues) {
    enter("width=7");
    enter("height=1/3");
    const std::vector<std::string> found = titles("menuVars");
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

TEST_F(Menus, theVariablesFollowTheDecimalMark) {
    setSetting("european", 1);
    enter("half=0,5");
    const std::vector<std::string> found = titles("menuVars");
    EXPECT_NE(std::find(found.begin(), found.end(), "half\t0,5"), found.end());
}

TEST_F(Menus, choosingAVariableInsertsItsName) {
    enter("width=7");
    type("2*+1");
    selectEntry(2);
    chooseVariable("width\t7");
    EXPECT_EQ(entry(), "2*width+1");
    EXPECT_EQ(status(), "ans = 15") << "the live answer follows";
    selectEntry(0, 7);
    chooseVariable("width\t7");
    EXPECT_EQ(entry(), "width+1");
}

TEST_F(Menus, inTheTranscriptTheCursorGoesToTheEndFirst) {
    enter("width=7");
    type("3*");
    select(2, 3);
    chooseVariable("width\t7");
    EXPECT_EQ(entry(), "3*width");
    EXPECT_EQ(transcript().find("> width=7\n"), 0u);
    select(0);
    chooseFunction("f(x,y)=x+y");
    EXPECT_EQ(entry(), "3*widthf(x,y)");
}

TEST_F(Menus, whatWasChosenCanBeUndone) {
    enter("width=7");
    chooseVariable("width\t7");
    EXPECT_EQ(entry(), "width");
    type("+");
    [static_cast<id>(console) undo:nil];
    [static_cast<id>(console) undo:nil];
    EXPECT_EQ(entry(), "");
    EXPECT_EQ(transcript().substr(0, 8), "> width=");
}

// --- Functions ---

TEST_F(Menus, theFunctionsAreListedInTheReverseOrder) {
    enter("f(x,y)=x+y");
    enter("g(x)=2*x");
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
    EXPECT_EQ(titles("menuFuncs"), expected);
    const std::vector<std::string> top = functionTitles(3);
    EXPECT_EQ(top, std::vector<std::string>({"Func", "g(x)=2*x", "f(x,y)=x+y"}));
}

TEST_F(Menus, theSeparatorStandsBehindTheDefinedFunctions) {
    const std::vector<std::string> found = titles("menuFuncs");
    EXPECT_EQ(found[0], "Func");
    EXPECT_EQ(std::count(found.begin(), found.end(), "---"), 1);
    const auto separator = std::find(found.begin(), found.end(), "---");
    ASSERT_GT(found.end() - separator, 10);
    EXPECT_NE((separator - 1)->find('='), std::string::npos) << "the first function that has a definition";
    for (auto one = separator + 1; one != found.end(); ++one)
        EXPECT_EQ(one->find('='), std::string::npos) << *one;
}

TEST_F(Menus, definitionsOf33CharactersShowAsTheirHeads) {
    enter("f(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+x"); // 32 characters
    enter("g(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+12");
    const std::vector<std::string> top = functionTitles(3);
    EXPECT_EQ(top, std::vector<std::string>({"Func", "g(x)= ...", "f(x)=x+x+x+x+x+x+x+x+x+x+x+x+x+x"}));
}

TEST_F(Menus, choosingAFunctionSelectsItsFirstParameter) {
    enter("f(x,y)=x+y");
    chooseFunction("f(x,y)=x+y");
    EXPECT_EQ(entry(), "f(x,y)");
    EXPECT_EQ(selected(), "x");
    EXPECT_EQ(cursorInEntry(), 2u);
    type("5");
    EXPECT_EQ(entry(), "f(5,y)");
}

TEST_F(Menus, aSingleParameterIsSelectedToo) {
    chooseFunction("sqrt(value)");
    EXPECT_EQ(entry(), "sqrt(value)");
    EXPECT_EQ(selected(), "value");
    press(KEY_ESCAPE);
    chooseFunction("longer(a)= ...");
    EXPECT_EQ(entry(), "longer(a)");
    EXPECT_EQ(selected(), "a");
}

// A quirk that is kept: right where the call begins the entry, and beside the parameter elsewhere.
TEST_F(Menus, theSelectionIsCountedFromTheStartOfTheEntry) {
    type("12345+");
    chooseFunction("f(x,y)=x+y");
    EXPECT_EQ(entry(), "12345+f(x,y)");
    EXPECT_EQ(cursorInEntry(), 2u);
    EXPECT_EQ(selected(), "3");
}

TEST_F(Menus, choosingReplacesTheSelection) {
    type("12345");
    selectEntry(0, 5);
    chooseFunction("f(x,y)=x+y");
    EXPECT_EQ(entry(), "f(x,y)");
    EXPECT_EQ(selected(), "x");
}

TEST_F(Menus, choosingNothingChangesNothing) {
    type("12");
    chooseVariable(nullptr);
    chooseFunction(nullptr);
    EXPECT_EQ(text(), "> 12");
}

TEST_F(Menus, afterAControlTheKeysGoToTheConsole) {
    for (int i = 0; i < 4; i++) {
        [window makeFirstResponder:nil];
        if (i == 0) clickBase(2);
        if (i == 1) clickMode(1);
        if (i == 2) chooseVariable("width\t7");
        if (i == 3) chooseFunction("f(x)=x");
        EXPECT_EQ([window firstResponder], console) << i;
    }
}

TEST_F(Menus, aClickSelectsTheSegmentUnderTheMouse) {
    NSSegmentedControl* const control = outlet("ctrlBase");
    const auto click = [&](CGFloat x, CGFloat y) {
        const NSPoint place = NSMakePoint(x, y);
        [[control cell] stopTracking:place at:place inView:control mouseIsUp:YES];
        return baseSegment();
    };
    EXPECT_EQ(click(10, 10), 0);
    EXPECT_EQ(click(60, 10), 1);
    EXPECT_EQ(click(100, 10), 2);
    EXPECT_EQ(click(60, 200), 2) << "let go outside";
}

// The lists are those of the engine after every entry.
TEST_F(Menus, anEntryFillsTheListsAnew) {
    enter("width=7");
    enter("f(x)=x");
    enter("del width");
    enter("del f");
    const std::vector<std::string> variables = titles("menuVars");
    EXPECT_EQ(std::find(variables.begin(), variables.end(), "width\t7"), variables.end());
    const std::vector<std::string> functions = titles("menuFuncs");
    EXPECT_EQ(std::find(functions.begin(), functions.end(), "f(x)=x"), functions.end());
}

} // namespace

// A person may have thousands of names, and the lists are refreshed after every entry.
TEST_F(Menus, itemsThatStayTheSameAreLeftAlone) {
    enter("a=1");
    enter("b=2");
    NSMenu* const vars = [outlet("menuVars") menu];
    NSMenuItem* const a = [vars itemAtIndex:3];
    enter("b=3");
    EXPECT_EQ(titles("menuVars"),
              (std::vector<std::string>{"Vars", "ans\t0", "pi\t3.141592654", "a\t1", "b\t3"}));
    EXPECT_EQ([vars itemAtIndex:3], a);
    enter("del a");
    EXPECT_EQ(titles("menuVars"), (std::vector<std::string>{"Vars", "ans\t0", "pi\t3.141592654", "b\t3"}));
}

TEST_F(Menus, withADecimalCommaACallIsPutInAsItHasToBeTyped) {
    enter("g(a,b)=a+b");
    enter("european on");
    chosenTitle = "g(a,b)=a+b";
    const Replaced title([NSPopUpButton class], @selector(titleOfSelectedItem), titleOfTests);
    [console clickedFuncMenu:outlet("menuFuncs")];
    EXPECT_EQ(entry(), "g(a.b)");
    EXPECT_EQ(selected(), "a");
    press(KEY_ESCAPE);
    enter("g(1.2,5)");
    EXPECT_NE(text().find("ans = 3,5\n"), std::string::npos);
}
