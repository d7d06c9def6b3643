// SPDX-License-Identifier: MIT
//
// A screen on which a point is more than a pixel: the windows grow with what is in them.
#import "console_fixture.h"
#import "replacement.h"

#import "Interface.h"

#import <AppKit/AppKit.h>

#include <cmath>

namespace {

CGFloat scale = 1;

CGFloat scaleOfScreen(id, SEL) {
    return scale;
}

class DenseScreen : public ConsoleTest {
protected:
    void TearDown() override {
        scale = 1;
        ConsoleTest::TearDown();
    }

    // The next start with that scale.
    void StartAt(CGFloat factor) {
        scale = factor;
        Restart();
    }

    int Stored(NSString* key) { return [console setting:key]; }

    const Replaced ofScreen { [NSScreen class], @selector(userSpaceScaleFactor), scaleOfScreen };
};

TEST_F(DenseScreen, TheFirstFrameAndTheSmallestSizeGrow) {
    for (const CGFloat each : {1.0, 1.5, 2.0}) {
        StartAt(each);
        EXPECT_TRUE(NSEqualSizes([window frame].size, NSMakeSize(450 * each, 250 * each))) << each;
        EXPECT_TRUE(NSEqualSizes([window minSize], NSMakeSize(400 * each, 150 * each))) << each;
    }
}

TEST_F(DenseScreen, TheControlsLieInTheWindow) {
    for (const CGFloat each : {1.0, 1.5, 2.0}) {
        StartAt(each);
        NSView* const content = [window contentView];
        for (NSView* const view in [content subviews]) {
            EXPECT_TRUE(NSContainsRect([content bounds], [view frame]))
                << each << " " << [[view description] UTF8String];
        }
        EXPECT_EQ([[content subviews] count], 6u); // the console, the status line and four controls
    }
}

TEST_F(DenseScreen, TheFrameIsTheSameAtEveryStart) {
    for (const CGFloat each : {1.0, 1.1, 1.25, 1.5, 2.0}) {
        StartAt(each);
        [window setFrame:NSMakeRect(-101, 77, 901, 603) display:NO];
        Terminate();
        StartAt(each);
        // A place is stored in whole points: it may lie a point beside, once.
        const NSRect first = [window frame];
        EXPECT_NEAR(NSWidth(first), 901, each);
        EXPECT_NEAR(NSHeight(first), 603, each);
        for (int run = 0; run < 5; ++run) {
            Terminate();
            StartAt(each);
            EXPECT_TRUE(NSEqualRects([window frame], first)) << each << " " << run;
        }
    }
}

TEST_F(DenseScreen, AWindowGrowsWithTheScaleFromOneStartToTheNext) {
    [window setFrame:NSMakeRect(100, 100, 500, 300) display:NO];
    Terminate();
    StartAt(2);
    EXPECT_TRUE(NSEqualSizes([window frame].size, NSMakeSize(1000, 600)));
    EXPECT_EQ(Stored(@"cx"), 500);
}

} // namespace
