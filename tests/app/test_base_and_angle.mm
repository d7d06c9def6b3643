// SPDX-License-Identifier: MIT
//
// The controls for the display base and the angle mode, and the status line.
#import "shell_fixture.h"

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

class BaseAndAngle : public ShellTest {
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
};

// --- The status line ---

TEST_F(BaseAndAngle, TheStatusLineShowsTheText) {
    [console updateStatusbar:"ans = 12"];
    EXPECT_EQ(StatusLine(), "ans = 12");
    [console updateStatusbar:""];
    EXPECT_EQ(StatusLine(), "");
}

// --- Display base ---

TEST_F(BaseAndAngle, TheBaseItemsChangeTheBase) {
    const int bases[] = {2, 10, 16};
    for (const int i : {0, 2, 1}) {
        ChooseBase(i);
        EXPECT_EQ(SettingOf("dispbase"), bases[i]);
        EXPECT_EQ(StoredSettings().at("dispbase"), bases[i]);
        EXPECT_EQ(BaseSegment(), i);
    }
}

TEST_F(BaseAndAngle, AnUnknownTagChangesNothing) {
    Enter("255");
    const std::string shown = Text();
    for (const NSInteger tag : {3, -1, 16, 1000}) ChooseBase(tag);
    EXPECT_EQ(SettingOf("dispbase"), 10);
    EXPECT_EQ(BaseSegment(), 1);
    EXPECT_EQ(Text(), shown);
}

TEST_F(BaseAndAngle, AnUnknownSegmentChangesNothing) {
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

TEST_F(BaseAndAngle, HexAfterAnEntryShowsItsAnswerAgainOnce) {
    Enter("200+55");
    ClickBase(2);
    EXPECT_EQ(Text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
    EXPECT_EQ(SettingOf("dispbase"), 16);
    EXPECT_EQ(BaseSegment(), 2);
    ClickBase(2);
    EXPECT_EQ(Text(), "> 200+55\nans = 255\n200+55 = 0x00FF\n\n> ");
}

TEST_F(BaseAndAngle, ABaseChangeShowsTheResultOfTheEntryAnew) {
    Type("255");
    EXPECT_EQ(StatusLine(), "ans = 255");
    ClickBase(2);
    EXPECT_EQ(StatusLine(), "ans = 0x00FF");
    EXPECT_EQ(Text(), "> 255") << "there is no last answer";
}

TEST_F(BaseAndAngle, WhatIsBeingTypedStaysBelowTheLine) {
    Enter("5");
    Type("1+2");
    ClickBase(0);
    EXPECT_EQ(Text(), "> 5\nans = 5\n5 = 0b 0101\n\n> 1+2");
    EXPECT_EQ(Entry(), "1+2");
}

TEST_F(BaseAndAngle, ShiftClickShowsTheAnswerAndChangesNothing) {
    Enter("5");
    ShiftClickBase(0);
    EXPECT_EQ(Text(), "> 5\nans = 5\n5 = 0b 0101\n\n> ");
    EXPECT_EQ(SettingOf("dispbase"), 10);
    EXPECT_EQ(StoredSettings().at("dispbase"), 10);
    EXPECT_EQ(BaseSegment(), 1);
    Enter("6");
    EXPECT_NE(Text().find("> 6\nans = 6\n"), std::string::npos);
}

TEST_F(BaseAndAngle, OnlyShiftMeansOnce) {
    Enter("5");
    ClickBase(2, NSAlternateKeyMask | NSControlKeyMask | NSCommandKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 16);
}

// Without an entry in between, a base other than that of the call before shows the answer; after an entry,
// one other than the stored base.
TEST_F(BaseAndAngle, WhetherTheAnswerIsShownAgainFollowsTheCallBefore) {
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

TEST_F(BaseAndAngle, WithoutAnAnswerNothingIsShownAgain) {
    Enter("sigfigs 5");
    const std::string shown = Text();
    ClickBase(2);
    EXPECT_EQ(Text(), shown);
}

// A statement that was evaluated has answered, whatever its line ended with, and so has disp.
TEST_F(BaseAndAngle, WhatIsShownAgainWasAnswered) {
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

TEST_F(BaseAndAngle, WhatDispShowedIsShownAgain) {
    Enter("disp pi");
    ClickBase(2);
    EXPECT_EQ(Text(), "> disp pi\npi = 3.141592654\ndisp pi = 0x0003\n\n> ");
}

TEST_F(BaseAndAngle, AnEntryThatOnlyFailsOrConfirmsHasNoAnswerToShow) {
    for (const char* const entry : {"mode deg", "1/0", "disp nothing", "echo 5"}) {
        StartAgain();
        Enter(entry);
        const std::string before = Text();
        ClickBase(2);
        EXPECT_EQ(Text(), before);
        ClickBase(1);
    }
}

TEST_F(BaseAndAngle, TheAnswerOfADeletedVariableIsShownAgain) {
    Enter("x=40+2");
    Enter("del x");
    ClickBase(2);
    EXPECT_NE(Text().find("\nx=40+2 = 0x002A\n"), std::string::npos) << Text();
}

TEST_F(BaseAndAngle, OnAClearedConsoleNothingIsShownAgain) {
    Enter("5");
    Enter("clear");
    ClickBase(2);
    EXPECT_EQ(Text(), "> ");
    EXPECT_EQ(g_linestart, 2);
}

TEST_F(BaseAndAngle, TheLineIsWrittenInTheCurrentNotation) {
    SetSetting("european", 1);
    SetSetting("separator", 1);
    SetSetting("sigfigs", 8);
    SetSetting("dispbase", 16);
    Enter("12345,5*1");
    ClickBase(1);
    EXPECT_NE(Text().find("\n12345,5*1 = 12.345,5\n\n> "), std::string::npos) << Text();
}

TEST_F(BaseAndAngle, APreviewDoesNotChangeWhatIsShownAgain) {
    Enter("5");
    Type("99");
    ClickBase(0);
    EXPECT_NE(Text().find("\n5 = 0b 0101\n"), std::string::npos);
}

TEST_F(BaseAndAngle, TheStartSetsTheBaseAndShowsNothing) {
    SetSetting("dispbase", 16);
    StartAgain();
    EXPECT_EQ(Text(), "> ");
    EXPECT_EQ(BaseSegment(), 2);
    EXPECT_EQ(SettingOf("dispbase"), 16);
}

// --- Angle mode ---

TEST_F(BaseAndAngle, TheModeControlChangesTheMode) {
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

TEST_F(BaseAndAngle, AnEntryMovesTheControls) {
    Enter("mode rad");
    EXPECT_EQ(ModeSegment(), 1);
    Enter("mode deg");
    EXPECT_EQ(ModeSegment(), 0);
    Enter("display hex");
    EXPECT_EQ(BaseSegment(), 2);
}

// --- Both ---

TEST_F(BaseAndAngle, AfterAClickTheKeysGoToTheConsole) {
    [window makeFirstResponder:nil];
    ClickBase(2);
    EXPECT_EQ([window firstResponder], console);
    [window makeFirstResponder:nil];
    ClickMode(1);
    EXPECT_EQ([window firstResponder], console);
}

TEST_F(BaseAndAngle, AClickSelectsTheSegmentUnderTheMouse) {
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
    EXPECT_EQ(click(NSWidth([control bounds]) - 0.5, 10), 2) << "behind the last one";
    [[control cell] stopTracking:NSMakePoint(10, 10) at:NSMakePoint(10, 10) inView:control mouseIsUp:NO];
    EXPECT_EQ(BaseSegment(), 2) << "it is not let go";
}

} // namespace
