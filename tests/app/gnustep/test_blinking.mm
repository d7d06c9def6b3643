// SPDX-License-Identifier: MIT
//
// The cursor, which rests when nobody types.
#import "../console_fixture.h"
#import "../replacement.h"

#import <objc/runtime.h>

@interface MainConsole (BlinkingForTests)
- (NSTimeInterval)blinkingTime;
@end

namespace {

NSTimeInterval shortTime(id, SEL) {
    return 0.05;
}

bool isDrawn = false;

void noteDrawing(id, SEL, NSRect, NSColor*, BOOL isOn) {
    isDrawn = isOn;
}

class Blinking : public ConsoleTest {
protected:
    bool Blinks() const {
        Ivar const timer = class_getInstanceVariable([NSTextView class], "_insertionPointTimer");
        return object_getIvar(console, timer) != nil;
    }
};

TEST_F(Blinking, RestsAfterAWhileAndTheCursorStays) {
    const Replaced time([MainConsole class], @selector(blinkingTime), shortTime);
    const Replaced drawing([NSTextView class], @selector(drawInsertionPointInRect:color:turnedOn:),
                           noteDrawing);
    [window makeKeyAndOrderFront:nil];
    [window makeFirstResponder:console];
    Type("1");
    ASSERT_TRUE(Blinks());
    for (int i = 0; i < 200 && Blinks(); ++i) Run(0.05);
    EXPECT_FALSE(Blinks());
    isDrawn = false;
    [console setNeedsDisplay:YES];
    [console displayIfNeeded];
    EXPECT_TRUE(isDrawn);
    Type("2");
    EXPECT_TRUE(Blinks());
}

TEST_F(Blinking, GoesOnForSeconds) {
    EXPECT_GE([console blinkingTime], 5);
}

// What is behind the text is drawn anew: to cover the cursor with the background's color would leave a line.
TEST_F(Blinking, LeavesNothingWhereTheCursorWas) {
    isDrawn = true;
    const Replaced drawing([NSTextView class], @selector(drawInsertionPointInRect:color:turnedOn:),
                           noteDrawing);
    [console displayIfNeeded];
    [console drawInsertionPointInRect:NSMakeRect(20, 4, 1, 12) color:[console textColor] turnedOn:NO];
    EXPECT_TRUE(isDrawn) << "GNUstep's own was not asked";
    EXPECT_TRUE([console needsDisplay]);
}

} // namespace
