// SPDX-License-Identifier: MIT
//
// The menu of a right click into the text.
#import "console_fixture.h"

#include <functional>

static std::function<void()> duringMenu;

@interface MenuDriver : NSObject
@end

@implementation MenuDriver
- (void)act {
    duringMenu();
}
@end

namespace {

class TextMenu : public ConsoleTest {
protected:
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

    // Opens the menu with a click, as the mouse does, and has this done while it is open. Clicks that come
    // seconds later close it in any case. Returns whether it closed before them.
    bool OpenMenuAnd(std::function<void()> act) {
        bool isForced = false;
        int calls = 0;
        MenuDriver* const driver = [[[MenuDriver alloc] init] autorelease];
        duringMenu = [&] {
            if (calls++ == 0) return act();
            isForced = true;
            [NSApp postEvent:RightClick(NSRightMouseUp) atStart:NO];
            [NSApp postEvent:RightClick(NSLeftMouseDown) atStart:NO];
            [NSApp postEvent:RightClick(NSLeftMouseUp) atStart:NO];
        };
        NSArray* const modes = [NSArray arrayWithObject:NSEventTrackingRunLoopMode];
        for (const double delay : {0.3, 5.0, 6.0, 7.0}) {
            [driver performSelector:@selector(act) withObject:nil afterDelay:delay inModes:modes];
        }
        [NSApp postEvent:RightClick(NSRightMouseUp) atStart:NO];
        [console rightMouseDown:RightClick()];
        [NSObject cancelPreviousPerformRequestsWithTarget:driver];
        return !isForced;
    }

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

} // namespace
