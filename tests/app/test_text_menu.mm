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
    NSEvent* rightClick(NSEventType type = NSRightMouseDown) {
        return [NSEvent mouseEventWithType:type
                                  location:[console convertPoint:NSMakePoint(30, 10) toView:nil]
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[window windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:1];
    }

    NSMenuItem* item(const char* title) {
        NSMenu* const menu = [console menuForEvent:rightClick()];
        return
            [[menu itemArray] objectAtIndex:static_cast<NSUInteger>([menu
                                                indexOfItemWithTitle:[NSString stringWithUTF8String:title]])];
    }

    void choose(const char* title) {
        NSMenuItem* const chosen = item(title);
        ASSERT_NE(chosen, nil) << title;
        [NSApp sendAction:[chosen action] to:[chosen target] from:chosen];
    }

    // Opens the menu with a click, as the mouse does, and has this done while it is open. Clicks that come
    // seconds later close it in any case. Returns whether it closed before them.
    bool openMenuAnd(std::function<void()> act) {
        bool isForced = false;
        int calls = 0;
        MenuDriver* const driver = [[[MenuDriver alloc] init] autorelease];
        duringMenu = [&] {
            if (calls++ == 0) return act();
            isForced = true;
            [NSApp postEvent:rightClick(NSRightMouseUp) atStart:NO];
            [NSApp postEvent:rightClick(NSLeftMouseDown) atStart:NO];
            [NSApp postEvent:rightClick(NSLeftMouseUp) atStart:NO];
        };
        NSArray* const modes = [NSArray arrayWithObject:NSEventTrackingRunLoopMode];
        for (const double delay : {0.3, 5.0, 6.0, 7.0}) {
            [driver performSelector:@selector(act) withObject:nil afterDelay:delay inModes:modes];
        }
        [NSApp postEvent:rightClick(NSRightMouseUp) atStart:NO];
        [console rightMouseDown:rightClick()];
        [NSObject cancelPreviousPerformRequestsWithTarget:driver];
        return !isForced;
    }

    // What waits in the queue reaches the window.
    void deliverEvents() {
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

TEST_F(TextMenu, hasCutCopyCopyAnswerPasteAndSelectAll) {
    NSMenu* const menu = [console menuForEvent:rightClick()];
    std::vector<std::string> titles;
    for (NSMenuItem* const one in [menu itemArray]) titles.push_back([[one title] UTF8String]);
    EXPECT_EQ(titles, (std::vector<std::string>{"Cut", "Copy", "Copy Answer", "Paste", "Select All"}));
}

TEST_F(TextMenu, theItemsDoWhatTheySay) {
    EXPECT_FALSE([console validateMenuItem:item("Copy Answer")]) << "there is no answer yet";
    enter("6*7");
    EXPECT_TRUE([console validateMenuItem:item("Copy Answer")]);
    select(2, 3);
    choose("Copy");
    EXPECT_EQ(pasteboard(), "6*7");
    choose("Copy Answer"); // whatever is selected
    EXPECT_EQ(pasteboard(), "42");
    choose("Paste");
    EXPECT_EQ(entry(), "42");
    choose("Select All");
    EXPECT_EQ(selected(), text());
}

TEST_F(TextMenu, typingClosesItAndGoesToTheEntry) {
    type("1+");
    EXPECT_TRUE(openMenuAnd([this] {
        post(@"2");
        post(@"3");
    }));
    deliverEvents();
    EXPECT_EQ(entry(), "1+23");
    EXPECT_EQ(status(), "ans = 24");
}

TEST_F(TextMenu, escapeClosesItAndNothingElse) {
    type("1+2");
    EXPECT_TRUE(openMenuAnd([this] { post(@"\033"); }));
    deliverEvents();
    EXPECT_EQ(entry(), "1+2");
    EXPECT_EQ(hideRequests(), 0);
}

} // namespace
