// SPDX-License-Identifier: MIT
//
// The images of controls, menus and panels are as sharp as the screen.
#include "../console_fixture.h"
#include "../leaks.h"
#import "../replacement.h"

#import "Platform.h"

#include "Shades.h"

#include <algorithm>
#include <cmath>
#include <string>

#import <GNUstepGUI/GSTheme.h>

namespace {

const int SIDE = 24; // points, of the square in which an image is drawn

CGFloat scale = 1;

CGFloat scaleOfScreen(id, SEL) {
    return scale;
}

Shade shadeAt(NSBitmapImageRep* bits, int x, int y) {
    NSColor* const rgb = [[bits colorAtX:x y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return {[rgb redComponent], [rgb greenComponent], [rgb blueComponent]};
}

bool isNear(const Shade& one, const Shade& other) {
    return std::abs(one.red - other.red) + std::abs(one.green - other.green) +
               std::abs(one.blue - other.blue) <
           0.03;
}

class ThemeImages : public ConsoleTest {
protected:
    void SetUp() override {
        {
            const LeaksOfLibraries here; // a theme of GNUstep's does not release all that it makes
            useFlatTheme();
        }
        ConsoleTest::SetUp();
    }
    void TearDown() override {
        scale = 1;
        ConsoleTest::TearDown();
        [GSTheme setTheme:nil];
    }

    // The next start with that scale.
    void StartAt(CGFloat factor) {
        scale = factor;
        Restart();
    }

    // The image at the upper left of a square of the window's background.
    NSBitmapImageRep* Drawn(NSString* name) {
        NSImage* const image = [NSImage imageNamed:name];
        NSView* const view = [window contentView];
        const NSRect square = NSMakeRect(0, 0, SIDE, SIDE);
        const NSSize size = [image size];
        [view lockFocus];
        [[NSColor windowBackgroundColor] set];
        NSRectFill(square);
        [image drawInRect:NSMakeRect(0, SIDE - size.height, size.width, size.height)
                 fromRect:NSZeroRect
                operation:NSCompositeSourceOver
                 fraction:1];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:square] autorelease];
        [view unlockFocus];
        EXPECT_NEAR(static_cast<double>([bits pixelsWide]), SIDE * scale, 1);
        return bits;
    }

    const Replaced ofScreen { [NSScreen class], @selector(userSpaceScaleFactor), scaleOfScreen };
};

// A row of pixels through a check box crosses its two edges. Each of them begins and ends within a pixel, and
// between two of them where these are whole parts of a point.
TEST_F(ThemeImages, AnEdgeIsNoWiderThanItsLine) {
    for (const CGFloat each : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        StartAt(each);
        NSBitmapImageRep* const bits = Drawn(@"common_SwitchOff");
        const int y = static_cast<int>(7 * each), end = static_cast<int>(SIDE * each);
        const Shade back = shadeAt(bits, end - 2, y), inside = shadeAt(bits, static_cast<int>(7 * each), y);
        ASSERT_FALSE(isNear(back, inside)) << each;
        int line = 0;
        for (int x = 0; x < end; ++x)
            line += !isNear(shadeAt(bits, x, y), back) && !isNear(shadeAt(bits, x, y), inside);
        const int most = 2 * static_cast<int>(std::ceil(each) + (each > std::floor(each) ? 1 : 0));
        EXPECT_GE(line, 2) << each;
        EXPECT_LE(line, most) << each;
    }
}

// Were the image one of smaller pixels drawn larger, the blocks of the screen's pixels that stand for one of
// these would have one color each.
TEST_F(ThemeImages, ASlantingLineHasStepsOfTheScreensPixels) {
    for (const int each : {2, 3}) {
        StartAt(each);
        for (NSString* const name in @[
                 @"common_SwitchOn", @"common_Nibble", @"common_3DArrowDown", @"NSMenuCheckmark",
                 @"common_ArrowRight", @"common_ret"
             ]) {
            NSBitmapImageRep* const bits = Drawn(name);
            int mixed = 0;
            for (int y = 0; y + each <= SIDE * each; y += each) {
                for (int x = 0; x + each <= SIDE * each; x += each) {
                    const Shade first = shadeAt(bits, x, y), last = shadeAt(bits, x + each - 1, y + each - 1);
                    const Shade beside = shadeAt(bits, x + each - 1, y);
                    mixed += !isNear(first, last) || !isNear(first, beside);
                }
            }
            EXPECT_GE(mixed, 6) << each << " " << [name UTF8String];
        }
    }
}

// Controls that are shown keep their images.
TEST_F(ThemeImages, FollowTheLook) {
    for (const bool light : {false, true, false}) {
        platformUseLook(light);
        NSBitmapImageRep* const bits = Drawn(@"common_SwitchOff");
        EXPECT_EQ(isLight(shadeAt(bits, 7, 7)), light);
        EXPECT_TRUE(isNear(shadeAt(Drawn(@"common_SwitchOn"), 2, 7), {0.05, 0.44, 0.46})) << light;
    }
}

} // namespace
