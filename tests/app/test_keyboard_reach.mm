// SPDX-License-Identifier: MIT
//
// The controls of the window and its menus by the keyboard alone.
#import "shell_fixture.h"

#import "Interface.h"

namespace {

class KeyboardReach : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        buildMenus(reinterpret_cast<PelmoAppDelegate*>(delegate));
        [window makeKeyAndOrderFront:nil];
        [window makeFirstResponder:console];
    }
    void TearDown() override {
        [NSApp discardEventsMatchingMask:NSKeyDownMask beforeEvent:nil];
        [NSApp setMainMenu:[[[NSMenu alloc] initWithTitle:@""] autorelease]];
        [NSApp setWindowsMenu:nil];
        ShellTest::TearDown();
    }

    NSEvent* Event(unichar character, NSUInteger flags = 0) const {
        return EventIn(window, character, flags);
    }

    static NSEvent* EventIn(NSWindow* where, unichar character, NSUInteger flags) {
        NSString* const text = [NSString stringWithCharacters:&character length:1];
        return [NSEvent keyEventWithType:NSKeyDown
                                location:NSZeroPoint
                           modifierFlags:flags
                               timestamp:0
                            windowNumber:[where windowNumber]
                                 context:nil
                              characters:text
             charactersIgnoringModifiers:text
                               isARepeat:NO
                                 keyCode:0];
    }

    // To whatever has the keyboard's focus.
    void Send(unichar character, NSUInteger flags = 0) const { [NSApp sendEvent:Event(character, flags)]; }

    // Waits in the queue for what looks there.
    void Wait(unichar character) const { [NSApp postEvent:Event(character) atStart:NO]; }

    static NSUInteger VisibleWindows() {
        NSUInteger count = 0;
        for (NSWindow* const one in [NSApp windows]) count += [one isVisible];
        return count;
    }

    bool HasFocus(const char* outlet) const { return [window firstResponder] == Outlet(outlet); }
    bool ConsoleHasFocus() const { return [window firstResponder] == console; }

    // Whether it looks another way with the focus than without.
    bool ShowsFocus(NSView* view) const {
        const auto picture = [&] {
            [window display];
            [view lockFocus];
            NSBitmapImageRep* const bits =
                [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
            [view unlockFocus];
            return [bits TIFFRepresentation];
        };
        [window makeFirstResponder:view];
        NSData* const with = picture();
        [window makeFirstResponder:console];
        return with && ![with isEqualToData:picture()];
    }
};

TEST_F(KeyboardReach, F6AndTabGoThroughTheControlsAndEscapeBack) {
    const char* const outlets[] = {"ctrlBase", "ctrlDegMode", "menuVars", "menuFuncs"};
    Press(KEY_F6);
    for (const char* const outlet : outlets) {
        EXPECT_TRUE(HasFocus(outlet)) << outlet;
        Send('\t');
    }
    EXPECT_TRUE(HasFocus("ctrlBase")) << "behind the last one comes the first";
    Send(25, NSShiftKeyMask);
    EXPECT_TRUE(HasFocus("menuFuncs"));
    Send(27);
    EXPECT_TRUE(ConsoleHasFocus());
    Press(KEY_F6);
    Send(NSF6FunctionKey, NSFunctionKeyMask);
    EXPECT_TRUE(ConsoleHasFocus());
    EXPECT_EQ(Text(), "> ");
}

TEST_F(KeyboardReach, TheFocusIsSeen) {
    for (const char* const outlet : {"ctrlBase", "ctrlDegMode", "menuVars", "menuFuncs"})
        EXPECT_TRUE(ShowsFocus(Outlet(outlet))) << outlet;
}

TEST_F(KeyboardReach, LeftAndRightChooseASegment) {
    Press(KEY_F6);
    Send(NSLeftArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 2);
    Send(NSLeftArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 2) << "there is none to its left";
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 16);
    Send('\t');
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("degmode"), 0);
}

TEST_F(KeyboardReach, SpaceOpensAListOfWhichOneIsTyped) {
    Enter("width=7");
    Press(KEY_F6);
    Send('\t');
    Send('\t');
    Wait('w');
    Wait('\r');
    Send(' ');
    EXPECT_EQ(Entry(), "width");
    EXPECT_TRUE(ConsoleHasFocus());
}

TEST_F(KeyboardReach, WhatIsTypedAtAControlIsForTheEntry) {
    Press(KEY_F6);
    Send('7');
    EXPECT_TRUE(ConsoleHasFocus());
    EXPECT_EQ(Entry(), "7");
}

// --- The menus ---

TEST_F(KeyboardReach, F10OpensTheMenusInWhichTheArrowsChoose) {
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

TEST_F(KeyboardReach, EscapeClosesTheMenus) {
    const NSUInteger windows = VisibleWindows();
    Wait(27);
    Press(KEY_F10);
    EXPECT_EQ(VisibleWindows(), windows);
    Type("3");
    EXPECT_EQ(Entry(), "3");
}

TEST_F(KeyboardReach, F10ClosesTheMenusToo) {
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

// A person who types on has no use for the menus.
TEST_F(KeyboardReach, WhatIsTypedInTheMenusIsForTheEntry) {
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

// What Control does in the console alone, it does in a field as other programs do, and nothing in the
// console.
TEST_F(KeyboardReach, ControlXOfAFieldCutsInTheField) {
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

TEST_F(KeyboardReach, TheMenusShowControl) {
    for (NSString* const title in @[ @"New", @"Open Script...", @"Save Script..." ]) {
        NSMenuItem* const item =
            (NSMenuItem*)[[[[NSApp mainMenu] itemWithTitle:@"File"] submenu] itemWithTitle:title];
        EXPECT_EQ([item keyEquivalentModifierMask], NSUInteger(NSControlKeyMask)) << [title UTF8String];
    }
}

} // namespace
