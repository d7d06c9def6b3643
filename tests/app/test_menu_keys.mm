// SPDX-License-Identifier: MIT
//
// The menus by the keyboard alone, and their keys while something else has the focus.
#import "keyboard_fixture.h"

namespace {

class MenusByKeyboard : public KeyboardReach {};

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
