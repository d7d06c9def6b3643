// SPDX-License-Identifier: MIT
//
// What the preferences panel shows beside its controls.
#import "NumberField.h"
#import "panel_fixture.h"

#include <string>

namespace {

class PanelLooks : public PanelTest {
protected:
    // The text beside the slider.
    std::string Percentage() const {
        NSArray* const views = [[panel contentView] subviews];
        const NSRect slider = [controls.prefSlider frame];
        for (NSUInteger i = 0; i < [views count]; ++i) {
            NSView* const view = [views objectAtIndex:i];
            const bool isBeside = NSMinX([view frame]) > NSMaxX(slider) &&
                                  NSMinY([view frame]) < NSMidY(slider) &&
                                  NSMaxY([view frame]) > NSMidY(slider);
            if (isBeside) return [[(NSTextField*)view stringValue] UTF8String];
        }
        return "";
    }
};

TEST_F(PanelLooks, TheTransparencyIsShownInPercent) {
    Set("trans", 60);
    Open();
    EXPECT_EQ(Percentage(), "60 %");
}

TEST_F(PanelLooks, ThePercentageFollowsTheSlider) {
    Open();
    [controls.prefSlider setDoubleValue:12.9];
    EXPECT_EQ(Percentage(), "12 %");                // as it is stored
    [[controls.prefSlider cell] setDoubleValue:70]; // as the mouse and the arrows do
    [controls.prefSlider sendAction:[controls.prefSlider action] to:[controls.prefSlider target]];
    EXPECT_EQ(Percentage(), "70 %");
    EXPECT_EQ(SettingOf("trans"), 70);
    [controls.prefResetColors performClick:nil];
    EXPECT_EQ(Percentage(), "25 %");
}

TEST_F(PanelLooks, ALongSampleEndsWithinThePanel) {
    Set("scimode", 5);
    Set("sigfigs", 100);
    Open();
    const std::string seen = [[static_cast<NumberField*>(controls.prefNumPreview) shownText] UTF8String];
    EXPECT_EQ(seen.substr(0, 10), "12345.6000");
    EXPECT_NE(seen.find("\u2026"), std::string::npos);
    EXPECT_LE(NSMaxX([controls.prefNumPreview frame]), NSMaxX([[panel contentView] bounds]));
}

} // namespace
