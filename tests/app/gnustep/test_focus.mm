// SPDX-License-Identifier: MIT
//
// What has the keyboard's focus in the preferences is seen, in both looks.
#import "../leaks.h"
#import "../panel_fixture.h"

#import "Platform.h"

#include "Shades.h"

#import <GNUstepGUI/GSTheme.h>

#include <string>
#include <vector>

namespace {

// Of the guidelines for accessibility: what a sign differs by from its absence.
constexpr double SEEN = 3;

class Focus : public PanelTest {
protected:
    void SetUp() override {
        {
            const LeaksOfLibraries here; // a theme of GNUstep's does not release all that it makes
            useFlatTheme();
        }
        PanelTest::SetUp();
    }
    void TearDown() override {
        platformUseLook(false);
        PanelTest::TearDown();
        [GSTheme setTheme:nil];
    }

    // The colors of the control and of what is around it.
    std::vector<Shade> Picture(NSView* control) const {
        [panel displayIfNeeded];
        NSView* const content = [panel contentView];
        const NSRect part = NSInsetRect([control frame], -3, -3);
        [content lockFocus];
        NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:part] autorelease];
        [content unlockFocus];
        std::vector<Shade> colors;
        for (NSInteger y = 0; y < [bits pixelsHigh]; ++y) {
            const unsigned char* pixel = [bits bitmapData] + y * [bits bytesPerRow];
            for (NSInteger x = 0; x < [bits pixelsWide]; ++x, pixel += [bits samplesPerPixel])
                colors.push_back({pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0});
        }
        return colors;
    }

    static int Difference(const std::vector<Shade>& one, const std::vector<Shade>& other) {
        int count = 0;
        for (size_t i = 0; i < one.size(); ++i) count += contrast(one[i], other[i]) >= SEEN;
        return count;
    }

    // The control shows that it has the focus, and no longer when the other one has it.
    void ExpectSeen(NSView* control, NSView* other) const {
        [panel makeFirstResponder:other];
        const std::vector<Shade> without = Picture(control);
        [panel makeFirstResponder:control];
        // What is selected in a field is not its focus: only its cursor is left.
        if ([control isKindOfClass:[NSTextField class]])
            [[(NSTextField*)control currentEditor] setSelectedRange:NSMakeRange(0, 0)];
        const std::vector<Shade> with = Picture(control);
        // A line around the smallest of them, the knob of the slider.
        EXPECT_GE(Difference(with, without), 40);
        [panel makeFirstResponder:other];
        EXPECT_EQ(Difference(Picture(control), without), 0) << "it stays";
    }
};

TEST_F(Focus, IsSeenOnEveryKindOfControlInBothLooks) {
    Open();
    const struct {
        const char* kind;
        NSView* control;
    } kinds[] = {{"check box", controls.prefSeparator}, {"pop-up", controls.prefSciMode},
                 {"slider", controls.prefSlider},       {"color well", controls.prefFGColor},
                 {"text field", controls.prefSigFigs},  {"centered text field", controls.prefSepChar},
                 {"button", controls.prefResetColors},  {"button for the font", controls.prefFont}};
    for (const bool isLight : {false, true}) {
        platformUseLook(isLight);
        for (const auto& one : kinds) {
            SCOPED_TRACE(std::string(one.kind) + (isLight ? ", light" : ", dark"));
            ExpectSeen(one.control, controls.prefClose);
        }
    }
}

} // namespace
