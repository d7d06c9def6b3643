// SPDX-License-Identifier: MIT
//
// The window with its menus, for a person who has the keyboard alone.
#pragma once

#import "shell_fixture.h"

#import "Interface.h"

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
