// SPDX-License-Identifier: MIT
//
// The controls of the preferences: their layout and their keys.
#import "panel_fixture.h"
#import "replacement.h"

#import "Platform.h"

#include <vector>

namespace {

class PreferencesLayout : public PanelTest {
protected:
    NSEvent* KeyPress(NSString* characters, uint32_t code) const {
        return [NSEvent keyEventWithType:NSKeyDown
                                location:NSZeroPoint
                           modifierFlags:0
                               timestamp:0
                            windowNumber:[panel windowNumber]
                                 context:nil
                              characters:characters
             charactersIgnoringModifiers:characters
                               isARepeat:NO
                                 keyCode:static_cast<unsigned short>(code)];
    }

    // The controls that take keys, from top to bottom.
    std::vector<NSView*> InOrder() const {
        return {controls.prefSciMode,     controls.prefSigFigs,
                controls.prefSepChar,     controls.prefSeparator,
                controls.prefEuropean,    controls.prefTwosComp,
                controls.prefHistSize,    controls.prefFont,
                controls.prefFGColor,     controls.prefBGColor,
                controls.prefSlider,      controls.prefResetColors,
                controls.prefTransBGOnly, controls.prefSnapTo,
                controls.prefAlwaysTop,   controls.ofSettings[findSetting("startclear") - SETTINGS],
                controls.prefClose};
    }
};

TEST_F(PreferencesLayout, TheSpaceBarOpensTheColorPanelForTheWellWithTheFocus) {
    Open();
    [panel makeFirstResponder:controls.prefBGColor];
    [panel sendEvent:KeyPress(@" ", KEY_OTHER)];
    EXPECT_TRUE([controls.prefBGColor isActive]);
    EXPECT_FALSE([controls.prefFGColor isActive]);
    EXPECT_TRUE([[NSColorPanel sharedColorPanel] isVisible]);
    Close();
    EXPECT_FALSE([[NSColorPanel sharedColorPanel] isVisible]);
}

TEST_F(PreferencesLayout, TheArrowsMoveTheSlider) {
    Open();
    [panel makeFirstResponder:controls.prefSlider];
    const unichar right = NSRightArrowFunctionKey;
    [panel sendEvent:KeyPress([NSString stringWithCharacters:&right length:1], KEY_RIGHT)];
    EXPECT_GT(SettingOf("trans"), 25);
    EXPECT_EQ(SettingOf("trans"), [controls.prefSlider intValue]);
}

TEST_F(PreferencesLayout, TheSpaceBarTicksABox) {
    Open();
    [panel makeFirstResponder:controls.prefSeparator];
    [panel sendEvent:KeyPress(@" ", KEY_OTHER)];
    EXPECT_EQ(SettingOf("separator"), 1);
    EXPECT_EQ(Shown(controls.prefNumPreview), "12,345.6");
}

TEST_F(PreferencesLayout, TabGoesFromTopToBottom) {
    Open();
    const std::vector<NSView*> order = InOrder();
    EXPECT_EQ([panel initialFirstResponder], order.front());
    for (size_t i = 0; i < order.size(); ++i) {
        EXPECT_TRUE([order[i] acceptsFirstResponder]) << i;
        EXPECT_EQ([order[i] nextValidKeyView], order[(i + 1) % order.size()]) << i;
        EXPECT_EQ([order[(i + 1) % order.size()] previousValidKeyView], order[i]) << i;
        if (i > 0) {
            EXPECT_LT(NSMinY([order[i] frame]), NSMinY([order[i - 1] frame])) << i;
        }
    }
}

// A title bar of 30 points and a panel of the desktop of 24.
TEST_F(PreferencesLayout, FitsOnAScreenOf600Points) {
    EXPECT_LE(NSHeight([[panel contentView] frame]), 600 - 30 - 24);
}

bool isWholeInSight(NSView* view) {
    return NSEqualRects([view visibleRect], [view bounds]);
}

CGFloat scaleOfDenseScreen(id, SEL) {
    return 2;
}

// As on 1280x800 pixels at a scale of 2.
TEST_F(PreferencesLayout, OnALowScreenItIsOnTheScreenAndAllOfItInReach) {
    const Replaced ofScreen {
        [NSScreen class], @selector(userSpaceScaleFactor), scaleOfDenseScreen
    };
    BuildPanel();
    Open();
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    ASSERT_LT(NSHeight(screen), 2 * 540);
    EXPECT_TRUE(NSContainsRect(screen, [panel frame])) << [NSStringFromRect([panel frame]) UTF8String];
    EXPECT_TRUE(isWholeInSight(controls.prefSciMode));
    EXPECT_FALSE(isWholeInSight(controls.prefClose));
    [panel makeFirstResponder:controls.prefSciMode];
    for (NSView* const view : InOrder()) {
        EXPECT_TRUE(isWholeInSight(view)) << [[view description] UTF8String];
        [panel sendEvent:KeyPress(@"\t", KEY_OTHER)];
    }
    EXPECT_TRUE(isWholeInSight(controls.prefSciMode)); // behind the last comes the first
}

TEST_F(PreferencesLayout, TheColorPanelComesBesideIt) {
    Open();
    [panel makeFirstResponder:controls.prefBGColor];
    [panel sendEvent:KeyPress(@" ", KEY_OTHER)];
    EXPECT_FALSE(NSIntersectsRect([[NSColorPanel sharedColorPanel] frame], [panel frame]));
    Close();
}

TEST_F(PreferencesLayout, TheSystemsPanelsAreDrawnWholeAtOnce) {
    Open();
    [panel makeFirstResponder:controls.prefBGColor];
    [panel sendEvent:KeyPress(@" ", KEY_OTHER)];
    EXPECT_FALSE([[NSColorPanel sharedColorPanel] viewsNeedDisplay]);
    [controls.prefFont performClick:nil];
    EXPECT_FALSE([[[NSFontManager sharedFontManager] fontPanel:NO] viewsNeedDisplay]);
    Close();
}

TEST_F(PreferencesLayout, NothingOverlapsNorLeavesThePanel) {
    NSView* const content = [panel contentView];
    NSArray* const views = [content subviews];
    for (NSUInteger i = 0; i < [views count]; ++i) {
        const NSRect frame = [[views objectAtIndex:i] frame];
        if ([[views objectAtIndex:i] isHidden]) continue;
        EXPECT_TRUE(NSContainsRect([content bounds], frame)) << i;
        for (NSUInteger j = i + 1; j < [views count]; ++j) {
            EXPECT_FALSE(NSIntersectsRect(frame, [[views objectAtIndex:j] frame])) << i << " " << j;
        }
    }
}

TEST_F(PreferencesLayout, NoTextIsClipped) {
    NSArray* const views = [[panel contentView] subviews];
    for (NSUInteger i = 0; i < [views count]; ++i) {
        const id view = [views objectAtIndex:i];
        if ([view isHidden] || ![view respondsToSelector:@selector(cell)] || ![view cell] ||
            view == controls.prefSlider)
            continue;
        EXPECT_LE([[view cell] cellSize].width, NSWidth([view frame])) << i;
    }
}

TEST_F(PreferencesLayout, EveryControlSendsPrefCallback) {
    std::vector<NSView*> all = InOrder();
    all.push_back(controls.prefStatusIcon);
    for (NSView* const view : all) {
        NSControl* const control = static_cast<NSControl*>(view);
        EXPECT_EQ([control target], controller);
        EXPECT_TRUE(sel_isEqual([control action], @selector(prefCallback:)));
    }
}

TEST_F(PreferencesLayout, EscapeClosesAlsoFromWithinAField) {
    Open();
    [panel makeFirstResponder:controls.prefHistSize];
    [panel sendEvent:KeyPress(@"\033", KEY_ESCAPE)];
    EXPECT_FALSE([panel isVisible]);
    EXPECT_EQ(prefWinIsOpen, 0);
}

} // namespace
