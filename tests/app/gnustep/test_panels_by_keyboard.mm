// SPDX-License-Identifier: MIT
//
// GNUstep's panels for colors and fonts by the keyboard alone, as they come from the preferences.
#import "../leaks.h"
#import "../panel_fixture.h"
#import "../replacement.h"

#import "Platform.h"

#import <GNUstepGUI/GSTheme.h>

#include <set>
#include <vector>

namespace {

NSWindow* mainWindow = nil;

id windowBehind(id, SEL) {
    return mainWindow;
}

class PanelsByKeyboard : public PanelTest {
protected:
    void SetUp() override {
        {
            const LeaksOfLibraries here; // a theme of GNUstep's does not release all that it makes
            useFlatTheme();
        }
        PanelTest::SetUp();
        mainWindow = window;
        [window makeFirstResponder:console];
        Open();
    }
    void TearDown() override {
        Close();
        PanelTest::TearDown();
        [GSTheme setTheme:nil];
    }

    static void Send(NSWindow* to, unichar character, NSUInteger flags = 0) {
        NSString* const text = [NSString stringWithCharacters:&character length:1];
        [NSApp sendEvent:[NSEvent keyEventWithType:NSKeyDown
                                                location:NSZeroPoint
                                           modifierFlags:flags
                                               timestamp:0
                                            windowNumber:[to windowNumber]
                                                 context:nil
                                              characters:text
                             charactersIgnoringModifiers:text
                                               isARepeat:NO
                                                 keyCode:0]];
    }

    // The system's panel that a key opens for a control of the preferences.
    NSWindow* Opened(NSView* control, NSWindow* expected, unichar key = ' ') const {
        [panel makeFirstResponder:control];
        Send(panel, key);
        EXPECT_TRUE([expected isVisible]);
        EXPECT_TRUE([expected isKeyWindow]);
        return expected;
    }
    NSWindow* Colors() const { return Opened(controls.prefBGColor, [NSColorPanel sharedColorPanel]); }
    NSWindow* Fonts() const {
        return Opened(controls.prefFont, [[NSFontManager sharedFontManager] fontPanel:YES]);
    }

    void ExpectBackAt(NSView* control, NSWindow* closed) const {
        EXPECT_FALSE([closed isVisible]);
        EXPECT_TRUE([panel isKeyWindow]);
        EXPECT_EQ([panel firstResponder], control);
    }

    static bool IsIn(NSView* view, NSWindow* owner, Class kind) {
        return [view isKindOfClass:kind] && [view isDescendantOf:[owner contentView]];
    }

    // Tab, until a control of the kind has the focus.
    static id Reach(NSWindow* within, Class kind) {
        for (int i = 0; i < 30; ++i) {
            Send(within, '\t');
            if (IsIn((NSView*)[within firstResponder], within, kind)) return [within firstResponder];
        }
        ADD_FAILURE() << "no " << class_getName(kind);
        return nil;
    }

    // All that Tab reaches, which is in the window.
    static std::set<NSView*> Reached(NSWindow* within) {
        std::set<NSView*> views;
        for (int i = 0; i < 40; ++i) {
            NSView* const view = (NSView*)[within firstResponder];
            EXPECT_TRUE(IsIn(view, within, [NSView class]));
            views.insert(view);
            Send(within, '\t');
        }
        return views;
    }

    // The sliders that a person sees.
    static void SlidersIn(NSView* view, std::set<NSView*>& found) {
        for (NSView* const one in [view subviews]) {
            if ([one isKindOfClass:[NSSlider class]]) found.insert(one);
            SlidersIn(one, found);
        }
    }
};

TEST_F(PanelsByKeyboard, TheArrowsChangeAColorAndEscapeGoesBack) {
    NSWindow* const colors = Colors();
    Reach(colors, [NSSlider class]); // of brightness
    Send(colors, NSUpArrowFunctionKey, NSFunctionKeyMask);
    ExpectColor([console backgroundColor], 0.15, 0.15, 0.15); // a twentieth more
    ExpectColor([controls.prefBGColor color], 0.15, 0.15, 0.15);
    Send(colors, 27);
    ExpectBackAt(controls.prefBGColor, colors);
    EXPECT_FALSE([controls.prefBGColor isActive]);
    Close();
    ExpectColor([[console settings] objectForKey:@"bgcolor"], 0.15, 0.15, 0.15);
}

TEST_F(PanelsByKeyboard, ReturnOpensTheColorsAsTheSpaceBarDoes) {
    NSColorPanel* const colors = [NSColorPanel sharedColorPanel];
    [panel makeFirstResponder:controls.prefBGColor];
    Send(panel, 'x');
    EXPECT_FALSE([colors isVisible]);
    Send(Opened(controls.prefBGColor, colors, '\r'), 27);
    ExpectBackAt(controls.prefBGColor, colors);
}

TEST_F(PanelsByKeyboard, TabGoesThroughThePickerThatWasChosen) {
    NSWindow* const colors = Colors();
    EXPECT_TRUE(IsIn((NSView*)[colors firstResponder], colors, [NSMatrix class])) << "that of the pickers";
    for (int i = 0; i < 2; ++i) {
        Send(colors, i == 0 ? NSRightArrowFunctionKey : NSLeftArrowFunctionKey, NSFunctionKeyMask);
        std::set<NSView*> sliders;
        SlidersIn([colors contentView], sliders);
        EXPECT_GE(sliders.size(), 1U);
        const std::set<NSView*> reached = Reached(colors);
        for (NSView* const slider : sliders) EXPECT_EQ(reached.count(slider), 1U) << i;
        [colors makeFirstResponder:nil];
        [colors selectNextKeyView:nil];
    }
}

TEST_F(PanelsByKeyboard, ShiftTabGoesBackThroughThePickerThatWasChosen) {
    NSWindow* const colors = Colors();
    Send(colors, NSRightArrowFunctionKey, NSFunctionKeyMask);
    std::vector<id> forth, back;
    for (int i = 0; i < 3; ++i, Send(colors, '\t')) forth.push_back([colors firstResponder]);
    EXPECT_EQ(std::set<id>(forth.begin(), forth.end()).size(), 3U) << "pickers, and two sliders";
    for (int i = 0; i < 3; ++i) {
        Send(colors, i == 1 ? '\t' : NSBackTabCharacter, NSShiftKeyMask);
        back.push_back([colors firstResponder]);
    }
    EXPECT_EQ(back, (std::vector<id>{forth[2], forth[1], forth[0]}));
}

// The magnifier would wait for a click, and nothing but a click ends that.
TEST_F(PanelsByKeyboard, NothingThatNeedsTheMouseIsReached) {
    for (NSView* const view : Reached(Colors())) {
        EXPECT_FALSE([view isKindOfClass:[NSButton class]]);
        EXPECT_FALSE([view isKindOfClass:[NSColorWell class]]);
    }
}

TEST_F(PanelsByKeyboard, TheArrowsChooseAFontAndTheSpaceBarSetsIt) {
    const Replaced behind([NSApplication class], @selector(mainWindow), windowBehind);
    NSWindow* const fonts = Fonts();
    NSMatrix* const families = Reach(fonts, [NSMatrix class]);
    EXPECT_STREQ([[[families selectedCell] stringValue] UTF8String], "DejaVu Sans Mono");
    Send(fonts, NSDownArrowFunctionKey, NSFunctionKeyMask);
    NSButton* button = nil;
    while (button == nil || ![[button title] isEqualToString:@"Set"]) {
        button = Reach(fonts, [NSButton class]);
        ASSERT_NE(button, nil);
    }
    Send(fonts, ' ');
    EXPECT_STREQ([[[console font] fontName] UTF8String], "DejaVuSerif");
    Send(fonts, 27);
    ExpectBackAt(controls.prefFont, fonts);
}

TEST_F(PanelsByKeyboard, TheListOfFontsThatHasTheFocusIsSeen) {
    NSWindow* const fonts = Fonts();
    NSMatrix* const families = Reach(fonts, [NSMatrix class]);
    const NSRect row = [families cellFrameAtRow:[families selectedRow] column:0];
    const auto edge = [&] {
        [fonts displayIfNeeded];
        [families lockFocus];
        NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:row] autorelease];
        [families unlockFocus];
        return [[bits colorAtX:[bits pixelsWide] / 2 y:0] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    };
    NSColor* const focus =
        [[NSColor keyboardFocusIndicatorColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    EXPECT_NEAR([edge() redComponent], [focus redComponent], 0.02);
    Send(fonts, '\t');
    EXPECT_GT([edge() redComponent], [focus redComponent] + 0.1) << "it stays";
}

} // namespace
