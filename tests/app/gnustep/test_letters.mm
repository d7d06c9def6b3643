// SPDX-License-Identifier: MIT
//
// Text on a screen of this program's GSScaleFactor: it is run with several.
#import "../console_fixture.h"

#import "Platform.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <vector>

namespace {

class Letters : public ConsoleTest {};

// Where letters of one stroke each begin, in pixels.
std::vector<int> strokes(NSBitmapImageRep* bits, int row) {
    std::vector<int> found;
    bool wasInk = false;
    for (int x = 0; x < [bits pixelsWide]; ++x) {
        const bool isInk = [[bits colorAtX:x y:row] redComponent] < 0.6;
        if (isInk && !wasInk) found.push_back(x);
        wasInk = isInk;
    }
    return found;
}

// GNUstep draws sixteen letters at a time, each time from the place that it has counted.
TEST_F(Letters, AreAsFarFromEachOtherThroughoutALine) {
    const int count = 60;
    NSString* const line = [@"" stringByPaddingToLength:count withString:@"l" startingAtIndex:0];
    NSView* const view = [window contentView];
    const NSRect place = NSMakeRect(0, 0, NSWidth([view bounds]), 40);
    [view lockFocus];
    [[NSColor whiteColor] set];
    NSRectFill(place);
    [line drawAtPoint:NSMakePoint(4, 10)
        withAttributes:@{
            NSFontAttributeName : [NSFont systemFontOfSize:12],
            NSForegroundColorAttributeName : [NSColor blackColor],
            NSLigatureAttributeName : @0
        }];
    NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:place] autorelease];
    [view unlockFocus];
    const std::vector<int> begins = strokes(bits, static_cast<int>((40 - 17) * platformScale()));
    ASSERT_EQ(begins.size(), static_cast<size_t>(count));
    int least = begins[1] - begins[0], most = least;
    for (size_t i = 1; i < begins.size(); ++i) {
        least = std::min(least, begins[i] - begins[i - 1]);
        most = std::max(most, begins[i] - begins[i - 1]);
    }
    EXPECT_LE(most - least, 1) << "of " << most;
}

} // namespace
