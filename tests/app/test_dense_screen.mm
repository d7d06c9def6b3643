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

void expectDrawn(NSView* view, CGFloat each) {
    EXPECT_FALSE([view needsDisplay]) << each << " " << [[view description] UTF8String];
    for (NSView* const one in [view subviews]) expectDrawn(one, each);
}

// What is not would be drawn over itself later.
TEST_F(DenseScreen, AllOfAViewIsDrawnAtOnce) {
    for (const CGFloat each : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0}) {
        StartAt(each);
        for (NSView* const one in [[window contentView] subviews]) [one setNeedsDisplay:YES];
        [window displayIfNeeded];
        expectDrawn([window contentView], each);
    }
}

// Its parts leave no seams where they begin between two pixels.
TEST_F(DenseScreen, TheKnobOfTheScrollerIsOnePiece) {
    for (const CGFloat each : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        StartAt(each);
        for (int i = 0; i < 12; ++i) [console insertWithNewPrompt:"line\n"];
        [window display];
        NSScroller* const scroller = [[console enclosingScrollView] verticalScroller];
        const NSRect knob = [scroller rectForPart:NSScrollerKnob];
        ASSERT_GT(NSHeight(knob), 40);
        [scroller lockFocus];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[scroller bounds]] autorelease];
        [scroller unlockFocus];
        const auto x = static_cast<NSInteger>(NSMidX(knob) * each);
        const auto end = static_cast<NSInteger>((NSMaxY(knob) - 2) * each);
        const auto start = static_cast<NSInteger>((NSMinY(knob) + 2) * each) + 1;
        const CGFloat red = [[bits colorAtX:x y:(start + end) / 2] redComponent];
        for (NSInteger y = start; y < end; ++y)
            EXPECT_EQ([[bits colorAtX:x y:y] redComponent], red) << each << " at " << y;
    }
}

TEST_F(DenseScreen, AllOfTheFirstWindowIsOnTheScreen) {
    for (const CGFloat each : {1.0, 1.5, 2.0}) {
        [console setSetting:@"firstrun" to:0];
        StartAt(each);
        EXPECT_TRUE(NSContainsRect([[NSScreen mainScreen] visibleFrame], [window frame]))
            << each << " " << [NSStringFromRect([window frame]) UTF8String];
    }
}

TEST_F(DenseScreen, AWindowWhoseUpperEdgeIsOutsideComesBack) {
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    [window setFrame:NSMakeRect(100, NSMaxY(screen) - 200, 450, 250) display:NO];
    Terminate();
    StartAt(1);
    EXPECT_LE(NSMaxY([window frame]), NSMaxY(screen));
}

} // namespace
