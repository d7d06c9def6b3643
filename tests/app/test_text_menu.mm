// SPDX-License-Identifier: MIT
//
// The menu of a right click into the text.
#import "console_fixture.h"
#import "replacement.h"

#include <functional>

namespace {

NSPoint pointer; // on the screen

NSPoint placeOnScreen(id, SEL) {
    return pointer;
}

NSPoint placeInWindow(NSWindow* window, SEL) {
    return [window convertScreenToBase:pointer];
}

class TextMenu : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        pointer = [window convertBaseToScreen:[RightClick() locationInWindow]];
    }

    NSEvent* RightClick(NSEventType type = NSRightMouseDown) {
        return Mouse(type, [console convertPoint:NSMakePoint(30, 10) toView:nil]);
    }

    NSMenuItem* Item(const char* title) {
        NSMenu* const menu = [console menuForEvent:RightClick()];
        return
            [[menu itemArray] objectAtIndex:static_cast<NSUInteger>([menu
                                                indexOfItemWithTitle:[NSString stringWithUTF8String:title]])];
    }

    void Choose(const char* title) {
        NSMenuItem* const chosen = Item(title);
        ASSERT_NE(chosen, nil) << title;
        [NSApp sendAction:[chosen action] to:[chosen target] from:chosen];
    }

    // That of the click that opens the menu.
    static bool IsReleaseWaiting() {
        return [NSApp nextEventMatchingMask:NSRightMouseUpMask
                                  untilDate:[NSDate distantPast]
                                     inMode:NSEventTrackingRunLoopMode
                                    dequeue:NO] != nil;
    }

    // Opens the menu with a click, as the mouse does, and has this done while it is open. Clicks that come
    // seconds later close it in any case. Returns whether it closed before them.
    bool OpenMenuAnd(const std::function<void()>& act) {
        NSTimer* const first = WhileTracking([&] {
            if (!OpenMenu() || IsReleaseWaiting()) return false;
            act();
            return true;
        });
        NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:5];
        bool isForced = false;
        NSTimer* const second = WhileTracking([&] {
            if ([end timeIntervalSinceNow] > 0) return false;
            isForced = true;
            [NSApp postEvent:RightClick(NSLeftMouseDown) atStart:NO];
            [NSApp postEvent:RightClick(NSLeftMouseUp) atStart:NO];
            return false;
        });
        [NSApp postEvent:RightClick(NSRightMouseUp) atStart:NO];
        [console rightMouseDown:RightClick()];
        [first invalidate];
        [second invalidate];
        return !isForced;
    }

    // With the menu open.
    void PointAt(NSInteger item) {
        NSMenuView* const menu = OpenMenu();
        ASSERT_NE(menu, nil);
        const NSRect row = [menu convertRect:[menu rectOfItemAtIndex:item] toView:nil];
        pointer = [[menu window] convertBaseToScreen:NSMakePoint(NSMidX(row), NSMidY(row))];
        [NSApp postEvent:RightClick(NSRightMouseDragged) atStart:NO]; // which has the place looked at
    }

    static constexpr NSInteger COPY_ANSWER = 2;

    const Replaced onScreen { metaclassOf([NSEvent class]), @selector(mouseLocation), placeOnScreen };
    const Replaced inWindow { [NSWindow class], @selector(mouseLocationOutsideOfEventStream), placeInWindow };

    // What waits in the queue reaches the window.
    void DeliverEvents() {
        while (NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                         untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                                            inMode:NSDefaultRunLoopMode
                                                           dequeue:YES]) {
            if ([event type] == NSKeyDown)
                [console keyDown:event];
            else
                [NSApp sendEvent:event];
        }
    }
};

TEST_F(TextMenu, HasCutCopyCopyAnswerPasteAndSelectAll) {
    NSMenu* const menu = [console menuForEvent:RightClick()];
    std::vector<std::string> titles;
    for (NSMenuItem* const one in [menu itemArray]) titles.push_back([[one title] UTF8String]);
    EXPECT_EQ(titles, (std::vector<std::string>{"Cut", "Copy", "Copy Answer", "Paste", "Select All"}));
}

TEST_F(TextMenu, TheItemsDoWhatTheySay) {
    EXPECT_FALSE([console validateMenuItem:Item("Copy Answer")]) << "there is no answer yet";
    Enter("6*7");
    EXPECT_TRUE([console validateMenuItem:Item("Copy Answer")]);
    Select(2, 3);
    Choose("Copy");
    EXPECT_EQ(Pasteboard(), "6*7");
    Choose("Copy Answer"); // whatever is selected
    EXPECT_EQ(Pasteboard(), "42");
    Choose("Paste");
    EXPECT_EQ(Entry(), "42");
    Choose("Select All");
    EXPECT_EQ(Selected(), Text());
}

TEST_F(TextMenu, TypingClosesItAndGoesToTheEntry) {
    Type("1+");
    EXPECT_TRUE(OpenMenuAnd([this] {
        Post(@"2");
        Post(@"3");
    }));
    DeliverEvents();
    EXPECT_EQ(Entry(), "1+23");
    EXPECT_EQ(StatusLine(), "ans = 24");
}

TEST_F(TextMenu, EscapeClosesItAndNothingElse) {
    Type("1+2");
    EXPECT_TRUE(OpenMenuAnd([this] { Post(@"\033"); }));
    DeliverEvents();
    EXPECT_EQ(Entry(), "1+2");
    EXPECT_EQ(HideRequests(), 0);
}

// --- The mouse in it ---

TEST_F(TextMenu, AnItemIsChosenByLettingGoOnIt) {
    Enter("6*7");
    EXPECT_TRUE(OpenMenuAnd([this] {
        PointAt(COPY_ANSWER);
        [NSApp postEvent:RightClick(NSRightMouseUp) atStart:NO];
    }));
    EXPECT_EQ(Pasteboard(), "42");
}

TEST_F(TextMenu, AClickLeavesItOpenForASecondOne) {
    Enter("6*8");
    EXPECT_TRUE(OpenMenuAnd([this] {
        PointAt(COPY_ANSWER);
        [NSApp postEvent:RightClick(NSLeftMouseDown) atStart:NO];
        [NSApp postEvent:RightClick(NSLeftMouseUp) atStart:NO];
    }));
    EXPECT_EQ(Pasteboard(), "48");
}

TEST_F(TextMenu, NothingIsChosenBesideIt) {
    Enter("6*9");
    SetPasteboard("before");
    for (const bool isDrag : {true, false}) {
        EXPECT_TRUE(OpenMenuAnd([this, isDrag] {
            PointAt(COPY_ANSWER);
            pointer.x -= 1000;
            [NSApp postEvent:RightClick(isDrag ? NSRightMouseUp : NSLeftMouseDown) atStart:NO];
        })) << isDrag;
        EXPECT_EQ(Pasteboard(), "before");
    }
}

BOOL isNever(id, SEL, NSMenuItem*) {
    return NO;
}

TEST_F(TextMenu, WhatIsGrayIsNoChoice) {
    Enter("6*7");
    SetPasteboard("before");
    const Replaced items([MainConsole class], @selector(validateMenuItem:), isNever);
    EXPECT_TRUE(OpenMenuAnd([this] {
        PointAt(COPY_ANSWER);
        [NSApp postEvent:RightClick(NSRightMouseUp) atStart:NO];
    }));
    EXPECT_EQ(Pasteboard(), "before");
}

} // namespace
