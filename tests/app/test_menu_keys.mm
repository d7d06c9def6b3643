// SPDX-License-Identifier: MIT
//
// The menus by the keyboard alone, and their keys while something else has the focus.
#import "keyboard_fixture.h"

namespace {

class MenusByKeyboard : public KeyboardReach {
protected:
    void TearDown() override {
        [NSApp discardEventsMatchingMask:NSAnyEventMask beforeEvent:nil];
        KeyboardReach::TearDown();
    }

    NSMenuView* Bar() const { return MenuIn([[window contentView] superview]); }
    NSMenuView* MenuOf(NSString* title) const {
        NSMenuView* const menu = OpenMenu();
        return [[[menu menu] title] isEqualToString:title] ? menu : nil;
    }

    void PostMouse(NSEventType type, NSWindow* where, NSPoint place) const {
        [NSApp postEvent:[NSEvent mouseEventWithType:type
                                            location:place
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[where windowNumber]
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:0]
                 atStart:NO];
    }

    // On the item of a menu or of the bar.
    void Click(NSMenuView* menu, NSString* title) const {
        const NSInteger item = [[menu menu] indexOfItemWithTitle:title];
        ASSERT_GE(item, 0) << [title UTF8String];
        const NSRect row = [menu convertRect:[menu rectOfItemAtIndex:item] toView:nil];
        const NSPoint middle = NSMakePoint(NSMidX(row), NSMidY(row));
        for (const NSEventType type : {NSLeftMouseDown, NSLeftMouseUp})
            PostMouse(type, [menu window], middle);
    }
};

TEST_F(MenusByKeyboard, F10OpensTheMenusInWhichTheArrowsChoose) {
    Enter("5");
    const NSInteger display = [[NSApp mainMenu] indexOfItemWithTitle:@"Display"];
    for (NSInteger i = 0; i < display; ++i) Wait(NSRightArrowFunctionKey);
    Wait(NSDownArrowFunctionKey); // behind Binary
    Wait(NSDownArrowFunctionKey); // Hexadecimal
    Wait('\r');
    Press(KEY_F10);
    EXPECT_EQ(SettingOf("dispbase"), 16);
    const NSInteger count = [[NSApp mainMenu] numberOfItems];
    for (NSInteger i = count; i > display; --i) Wait(NSLeftArrowFunctionKey); // round the first one
    Wait(NSUpArrowFunctionKey);                                               // Default Size, the last one
    Wait(NSUpArrowFunctionKey);                                               // Smaller
    Wait('\r');
    Press(KEY_F10);
    EXPECT_EQ([[console font] pointSize], 12);
}

TEST_F(MenusByKeyboard, EscapeClosesTheMenus) {
    const NSUInteger windows = VisibleWindows();
    Wait(27);
    Press(KEY_F10);
    EXPECT_EQ(VisibleWindows(), windows);
    Type("3");
    EXPECT_EQ(Entry(), "3");
}

TEST_F(MenusByKeyboard, F10ClosesTheMenusToo) {
    const NSUInteger windows = VisibleWindows();
    Wait(NSF10FunctionKey);
    Press(KEY_F10);
    EXPECT_EQ(VisibleWindows(), windows);
    EXPECT_EQ([NSApp nextEventMatchingMask:NSKeyDownMask
                                 untilDate:[NSDate distantPast]
                                    inMode:NSDefaultRunLoopMode
                                   dequeue:YES],
              nil)
        << "it would open them again";
}

TEST_F(MenusByKeyboard, EnterOfTheKeypadChoosesAsReturnDoes) {
    const NSInteger display = [[NSApp mainMenu] indexOfItemWithTitle:@"Display"];
    for (NSInteger i = 0; i < display; ++i) Wait(NSRightArrowFunctionKey);
    Wait(3);
    Press(KEY_F10);
    EXPECT_EQ(SettingOf("dispbase"), 2);
}

// A person who types on has no use for the menus.
TEST_F(MenusByKeyboard, WhatIsTypedInTheMenusIsForTheEntry) {
    const NSUInteger windows = VisibleWindows();
    Wait(NSDownArrowFunctionKey);
    Wait('4');
    Wait('2');
    Press(KEY_F10);
    EXPECT_EQ(VisibleWindows(), windows);
    for (int i = 0; i < 2; ++i) {
        NSEvent* const next = [NSApp nextEventMatchingMask:NSKeyDownMask
                                                 untilDate:[NSDate distantPast]
                                                    inMode:NSDefaultRunLoopMode
                                                   dequeue:YES];
        ASSERT_NE(next, nil);
        [NSApp sendEvent:next];
    }
    EXPECT_EQ(Entry(), "42");
}

TEST_F(MenusByKeyboard, TheMouseChoosesInAMenuThatTheKeyboardOpened) {
    WhileTracking([this] {
        if (!OpenMenu()) return false;
        Click(Bar(), @"Display");
        return true;
    });
    WhileTracking([this] {
        if (!MenuOf(@"Display")) return false;
        Click(MenuOf(@"Display"), @"Hexadecimal");
        return true;
    });
    const NSUInteger windows = VisibleWindows();
    Press(KEY_F10);
    EXPECT_EQ(SettingOf("dispbase"), 16);
    EXPECT_EQ(VisibleWindows(), windows);
}

TEST_F(MenusByKeyboard, AClickOnWhatCannotBeChosenLeavesTheMenuOpen) {
    WhileTracking([this] {
        if (!OpenMenu()) return false;
        Click(Bar(), @"Edit");
        return true;
    });
    WhileTracking([this] {
        if (!MenuOf(@"Edit")) return false;
        Click(MenuOf(@"Edit"), @"Redo"); // there is nothing to be done again
        Wait(NSRightArrowFunctionKey);
        return true;
    });
    bool isOpen = false;
    WhileTracking([&] {
        isOpen = OpenMenu() && !MenuOf(@"Edit") && !MenuOf([[[NSApp mainMenu] itemAtIndex:0] title]);
        if (isOpen) Wait(27);
        return isOpen;
    });
    Press(KEY_F10);
    EXPECT_TRUE(isOpen) << "the next one";
}

TEST_F(MenusByKeyboard, AClickBesideTheMenusOrOnTheTitleOfTheOpenOneClosesThem) {
    const NSUInteger windows = VisibleWindows();
    Type("1+2");
    for (const bool isOnTitle : {true, false}) {
        WhileTracking([&] {
            NSMenuView* const menu = OpenMenu();
            if (!menu) return false;
            if (isOnTitle)
                Click(Bar(), [[menu menu] title]);
            else
                PostMouse(NSRightMouseDown, window, NSMakePoint(300, 5));
            return true;
        });
        Press(KEY_F10);
        EXPECT_EQ(VisibleWindows(), windows) << isOnTitle;
        EXPECT_EQ(Entry(), "1+2");
    }
}

TEST_F(MenusByKeyboard, TheMenusShowControl) {
    for (NSString* const title in @[ @"New", @"Open Script...", @"Save Script..." ]) {
        NSMenuItem* const item =
            (NSMenuItem*)[[[[NSApp mainMenu] itemWithTitle:@"File"] submenu] itemWithTitle:title];
        EXPECT_EQ([item keyEquivalentModifierMask], NSUInteger(NSControlKeyMask)) << [title UTF8String];
    }
}

// What Control does in the console alone, it does in a field as other programs do, and nothing in the
// console.
TEST_F(MenusByKeyboard, ControlXOfAFieldCutsInTheField) {
    Type("45");
    [console setSelectedRange:NSMakeRange(static_cast<NSUInteger>(g_linestart), 2)];
    NSPanel* const panel = [[[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                       styleMask:NSTitledWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO] autorelease];
    [panel setReleasedWhenClosed:NO];
    NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 150, 24)] autorelease];
    [[panel contentView] addSubview:field];
    [field setStringValue:@"abc"];
    [panel makeKeyAndOrderFront:nil];
    [panel makeFirstResponder:field];
    [field selectText:nil];
    for (const unichar key : {u'z', u'x'})
        [[NSApp mainMenu] performKeyEquivalent:EventIn(panel, key, NSControlKeyMask)];
    EXPECT_STREQ([[field stringValue] UTF8String], "");
    EXPECT_EQ(Pasteboard(), "abc");
    EXPECT_EQ(Entry(), "45");
    [panel close];
}

} // namespace
