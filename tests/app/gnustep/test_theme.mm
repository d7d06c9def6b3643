// SPDX-License-Identifier: MIT
//
// The looks on GNUstep. macOS has its own.
#import "../console_fixture.h"
#include "../leaks.h"
#import "../replacement.h"

#import "Interface.h"
#import "NameListPanel.h"
#import "Platform.h"
#import "ZqScroller.h"

#include "Shades.h"

#include <cmath>
#include <string>

#import <GNUstepGUI/GSTheme.h>

@interface NSMenuItemCell (Written)
- (NSString*)_keyEquivalentString;
@end

namespace {

// --- Keys in menus ---

std::string written(NSString* key, NSUInteger flags = NSCommandKeyMask) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"Do" action:NULL
                                                  keyEquivalent:key] autorelease];
    [item setKeyEquivalentModifierMask:flags];
    NSMenuItemCell* const cell = [[[NSMenuItemCell alloc] init] autorelease];
    [cell setMenuItem:item];
    return [[cell _keyEquivalentString] UTF8String];
}

class MenuKeys : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        platformRegisterDefaults();
    }
};

TEST_F(MenuKeys, AreWrittenAsTheyStandOnTheKeyboard) {
    EXPECT_EQ(written(@"s"), "Alt+S");
    EXPECT_EQ(written(@","), "Alt+,");
    EXPECT_EQ(written(@"1"), "Alt+1");
    EXPECT_EQ(written(@"?"), "Alt+?");
}

TEST_F(MenuKeys, WhatControlDoesIsWrittenWithControl) {
    EXPECT_EQ(written(@"s", NSControlKeyMask), "Ctrl+S");
    EXPECT_EQ(written(@"S", NSControlKeyMask), "Ctrl+Shift+S");
}

TEST_F(MenuKeys, ACapitalNeedsShift) {
    EXPECT_EQ(written(@"S"), "Alt+Shift+S");
    EXPECT_EQ(written(@"z", NSCommandKeyMask | NSShiftKeyMask), "Alt+Shift+Z");
}

TEST_F(MenuKeys, AnItemWithoutAKeyShowsNone) {
    EXPECT_EQ(written(@""), "");
}

// --- The theme ---

class Theme : public ConsoleTest {
protected:
    void SetUp() override {
        {
            const LeaksOfLibraries here; // a theme of GNUstep's does not release all that it makes
            useFlatTheme();
        }
        ConsoleTest::SetUp();
    }
    void TearDown() override {
        ConsoleTest::TearDown();
        [GSTheme setTheme:nil];
    }
};

// A row of a panel for files or fonts on its list, which is white where it has no rows.
TEST_F(Theme, TheRowsOfPanelsHaveTheColorOfTheirList) {
    for (const bool isLight : {false, true}) {
        platformUseLook(isLight);
        NSBrowserCell* const cell = [[[NSBrowserCell alloc] initTextCell:@"a name"] autorelease];
        [cell setLeaf:YES];
        NSView* const view = [window contentView];
        const NSRect row = NSMakeRect(0, 0, 120, 18);
        [view lockFocus];
        [cell drawInteriorWithFrame:row inView:view];
        NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:row] autorelease];
        [view unlockFocus];
        NSColor* const list =
            [[NSColor textBackgroundColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
        EXPECT_NEAR([[bits colorAtX:115 y:9] redComponent], [list redComponent], 0.01) << isLight;
    }
}

// A block is all of the text's color.
TEST_F(Theme, ARowThatCannotBeChosenIsGray) {
    for (const bool isEnabled : {true, false}) {
        NSBrowserCell* const cell = [[[NSBrowserCell alloc] initTextCell:@"\u2588\u2588"] autorelease];
        [cell setLeaf:YES];
        [cell setEnabled:isEnabled];
        NSView* const view = [window contentView];
        const NSRect row = NSMakeRect(0, 0, 120, 18);
        [view lockFocus];
        [cell drawInteriorWithFrame:row inView:view];
        NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:row] autorelease];
        [view unlockFocus];
        NSColor* const expected = [isEnabled ? [NSColor controlTextColor] : [NSColor disabledControlTextColor]
            colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
        EXPECT_NEAR([[bits colorAtX:8 y:9] redComponent], [expected redComponent], 0.02) << isEnabled;
    }
}

NSArray* browsersIn(NSView* view) {
    NSMutableArray* const found = [NSMutableArray array];
    for (NSView* const one in [view subviews])
        [found addObjectsFromArray:[one isKindOfClass:[NSBrowser class]] ? @[ one ] : browsersIn(one)];
    return found;
}

// Of whole points too, without seams where they meet.
TEST_F(Theme, TheListsOfPanelsShowWholeRows) {
    NSFontPanel* const fonts = [[NSFontManager sharedFontManager] fontPanel:YES];
    NSArray* const browsers = browsersIn([fonts contentView]);
    EXPECT_EQ([browsers count], 3u); // families, faces, sizes
    for (const CGFloat height : {300, 301, 307, 313, 360}) {
        [fonts setFrame:NSMakeRect(0, 0, 320, height) display:NO];
        for (NSBrowser* const browser in browsers) {
            NSMatrix* const rows = [browser matrixInColumn:0];
            const CGFloat row = [rows cellSize].height;
            const CGFloat shown = NSHeight([[[rows enclosingScrollView] contentView] frame]);
            EXPECT_EQ(row, std::floor(row));
            EXPECT_GE(shown, 3 * row) << height;
            EXPECT_NEAR(std::remainder(shown, row), 0, 1e-6) << height;
        }
    }
}

Shade shadeOf(NSColor* color) {
    NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return {[rgb redComponent], [rgb greenComponent], [rgb blueComponent]};
}

// What text is written in, and what it stands on.
TEST_F(Theme, TextIsLegibleInBothLooks) {
    for (const bool light : {false, true}) {
        platformUseLook(light);
        NSColor* const grayed = [NSColor disabledControlTextColor]; // and hints
        NSColor* const pairs[][2] = {{[NSColor controlTextColor], [NSColor windowBackgroundColor]},
                                     {[NSColor controlTextColor], [NSColor controlBackgroundColor]},
                                     {[NSColor controlTextColor], [NSColor controlColor]},
                                     {[NSColor controlTextColor], [NSColor selectedControlColor]},
                                     {[NSColor controlTextColor], [NSColor controlHighlightColor]},
                                     {grayed, [NSColor windowBackgroundColor]},
                                     {grayed, [NSColor textBackgroundColor]},
                                     {[NSColor textColor], [NSColor textBackgroundColor]},
                                     {[NSColor selectedTextColor], [NSColor selectedTextBackgroundColor]},
                                     {[NSColor selectedControlTextColor], [NSColor selectedControlColor]},
                                     {[NSColor selectedMenuItemTextColor], [NSColor selectedMenuItemColor]},
                                     {[NSColor headerTextColor], [NSColor headerColor]}};
        for (const auto& pair : pairs)
            EXPECT_GE(contrast(shadeOf(pair[0]), shadeOf(pair[1])), 4.5) << light << " " << &pair - pairs;
        EXPECT_EQ(isLight(shadeOf([NSColor windowBackgroundColor])), light);
    }
    platformUseLook(false);
}

// As it is drawn: a block is all of the text's color.
TEST_F(Theme, SelectedTextOfAFieldIsLegibleInBothLooks) {
    NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 30, 100, 24)] autorelease];
    [[window contentView] addSubview:field];
    [field setStringValue:@"\u2588\u2588 \u2588"];
    [window makeKeyAndOrderFront:nil];
    for (const bool light : {false, true}) {
        platformUseLook(light);
        [window makeFirstResponder:nil];
        [window makeFirstResponder:field];
        [[field currentEditor] selectAll:nil];
        [window display];
        [field lockFocus];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:NSMakeRect(0, 0, 100, 24)] autorelease];
        [field unlockFocus];
        const auto colorAt = [&](NSInteger x) { return shadeOf([bits colorAtX:x y:12]); };
        const Shade text = colorAt(8);
        Shade back = text; // that of the blank
        for (NSInteger x = 9; x < 30; ++x) {
            if (contrast(text, colorAt(x)) > contrast(text, back)) back = colorAt(x);
        }
        EXPECT_GE(contrast(text, back), 4.5) << light;
        const Shade accent = shadeOf([NSColor selectedTextBackgroundColor]);
        EXPECT_NEAR(back.red, accent.red, 0.02) << light;
        EXPECT_NEAR(back.green, accent.green, 0.02) << light;
    }
    platformUseLook(false);
}

// A highlighted item as it is drawn: a row of a menu, or the title of an open menu in the bar.
NSBitmapImageRep* drawnItem(NSView* view, NSMenuItem* item, bool isInBar) {
    NSMenuView* const menu = [[[NSMenuView alloc] initWithFrame:NSMakeRect(0, 0, 120, 20)] autorelease];
    [menu setHorizontal:isInBar];
    NSMenuItemCell* const cell = [[[NSMenuItemCell alloc] init] autorelease];
    [cell setMenuItem:item];
    [cell setMenuView:menu];
    [cell setHighlighted:YES];
    const NSRect frame = NSMakeRect(0, 0, 120, 20);
    [view lockFocus];
    [[GSTheme theme] drawBorderAndBackgroundForMenuItemCell:cell
                                                  withFrame:frame
                                                     inView:view
                                                      state:GSThemeHighlightedState
                                               isHorizontal:isInBar];
    if (isInBar) {
        [[GSTheme theme] drawTitleForMenuItemCell:cell
                                        withFrame:frame
                                           inView:view
                                            state:GSThemeHighlightedState
                                     isHorizontal:YES];
    } else {
        [cell drawStateImageWithFrame:frame inView:view];
    }
    NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:frame] autorelease];
    [view unlockFocus];
    return bits;
}

// The most that a pixel differs from the one at the upper right, on which nothing is written.
double greatestContrast(NSBitmapImageRep* bits) {
    const Shade back = shadeOf([bits colorAtX:115 y:2]);
    double greatest = 1;
    for (NSInteger y = 2; y < 18; ++y) {
        for (NSInteger x = 0; x < 115; ++x)
            greatest = std::max(greatest, contrast(shadeOf([bits colorAtX:x y:y]), back));
    }
    return greatest;
}

TEST_F(Theme, WhatIsHighlightedInMenusIsLegibleInBothLooks) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"\u2588\u2588" action:NULL
                                                  keyEquivalent:@""] autorelease];
    [item setState:NSOnState];
    NSView* const view = [window contentView];
    for (const bool light : {false, true}) {
        platformUseLook(light);
        EXPECT_GE(greatestContrast(drawnItem(view, item, true)), 4.5) << light << " the title in the bar";
        EXPECT_GE(greatestContrast(drawnItem(view, item, false)), 4.5)
            << light << " the mark of what is chosen";
    }
    platformUseLook(false);
}

// Its gray could hardly be read there.
TEST_F(Theme, WhatCannotBeChosenInAMenuIsNotHighlighted) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"Redo" action:NULL
                                                  keyEquivalent:@""] autorelease];
    [item setEnabled:NO];
    for (const bool light : {false, true}) {
        platformUseLook(light);
        const Shade back = shadeOf([drawnItem([window contentView], item, false) colorAtX:115 y:2]);
        EXPECT_NEAR(contrast(back, shadeOf([NSColor windowBackgroundColor])), 1, 0.02) << light;
    }
    platformUseLook(false);
}

NSString* pathOfGuide(id, SEL, NSString*, NSString*) {
    return @TALLYQUILL_GUIDE;
}

NSPanel* guideWindow() {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfGuide);
    return buildGuideWindow();
}

// What the views of the window's text are drawn on; every run of it is legible there.
void expectLegible(NSTextView* view, bool light) {
    const Shade back = shadeOf([view backgroundColor]);
    EXPECT_EQ(isLight(back), light);
    NSRange run = {0, 0};
    for (NSUInteger i = 0; i < [[view textStorage] length]; i = NSMaxRange(run)) {
        NSDictionary* look = [[view textStorage] attributesAtIndex:i effectiveRange:&run];
        if ([look objectForKey:NSLinkAttributeName]) look = [view linkTextAttributes];
        NSColor* const behind = [look objectForKey:NSBackgroundColorAttributeName];
        EXPECT_GE(contrast(shadeOf([look objectForKey:NSForegroundColorAttributeName]),
                           behind ? shadeOf(behind) : back),
                  4.5)
            << light << " " << [[[view string] substringWithRange:run] UTF8String];
    }
}

// They are open while the look changes.
TEST_F(Theme, TheGuideAndTheListsAreLegibleInBothLooks) {
    NSPanel* const window = guideWindow();
    NSTextView* const text = [static_cast<NSScrollView*>([window contentView]) documentView];
    NameListPanel* const names = [NameListPanel newPanel:@"Units" rows:unitRows() console:console];
    [names choose:1];
    NSTextView* list = nil;
    for (NSView* const one in [[names contentView] subviews]) {
        if ([one isKindOfClass:[NSScrollView class]]) list = [static_cast<NSScrollView*>(one) documentView];
    }
    for (const bool light : {false, true}) {
        platformUseLook(light);
        expectLegible(text, light);
        expectLegible(list, light);
    }
    platformUseLook(false);
    [names release];
}

TEST_F(Theme, FollowsTheBackgroundOfTheConsole) {
    [console showTextColor:[NSColor blackColor] background:[NSColor whiteColor]];
    EXPECT_TRUE(isLight(shadeOf([NSColor windowBackgroundColor])));
    [console saveSettings];
    platformUseLook(false);
    Restart();
    EXPECT_TRUE(isLight(shadeOf([NSColor windowBackgroundColor]))) << "at the next start";
    [console showTextColor:[NSColor whiteColor] background:[NSColor blackColor]];
    EXPECT_FALSE(isLight(shadeOf([NSColor windowBackgroundColor])));
}

TEST_F(Theme, SeparatorsInMenusAreNinePixelsHigh) {
    EXPECT_EQ([[GSTheme theme] menuSeparatorHeight], 9);
}

TEST_F(Theme, TheTwoButtonsOfAStepperShareItsFrame) {
    const NSRect frame = NSMakeRect(3, 4, 18, 22);
    const NSRect up = [[GSTheme theme] stepperUpButtonRectWithFrame:frame];
    const NSRect down = [[GSTheme theme] stepperDownButtonRectWithFrame:frame];
    EXPECT_TRUE(NSContainsRect(frame, up));
    EXPECT_TRUE(NSContainsRect(frame, down));
    EXPECT_FALSE(NSIntersectsRect(up, down));
}

// As the theme draws it. The picture counts from above.
NSBitmapImageRep* drawnStep(NSView* view, bool isUp, bool isPressed) {
    const NSRect frame = NSMakeRect(0, 0, 18, 12);
    GSTheme* const theme = [GSTheme theme];
    [view lockFocus];
    if (isUp && isPressed)
        [theme drawStepperHighlightUpButton:frame];
    else if (isUp)
        [theme drawStepperUpButton:frame];
    else if (isPressed)
        [theme drawStepperHighlightDownButton:frame];
    else
        [theme drawStepperDownButton:frame];
    NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:frame] autorelease];
    [view unlockFocus];
    return bits;
}

TEST_F(Theme, AnArrowThatIsHeldDownLooksPressed) {
    for (const bool isUp : {true, false}) {
        for (const bool isPressed : {true, false}) {
            NSBitmapImageRep* const bits = drawnStep([window contentView], isUp, isPressed);
            const double field = shadeOf([bits colorAtX:4 y:6]).red;
            NSColor* const expected = isPressed ? [NSColor controlHighlightColor] : [NSColor headerColor];
            EXPECT_NEAR(field, shadeOf(expected).red, 0.02) << isUp << isPressed;
            // The arrow is widest at the end from which it points away.
            const double upper = shadeOf([bits colorAtX:7 y:4]).red;
            const double lower = shadeOf([bits colorAtX:7 y:7]).red;
            EXPECT_GT((isUp ? lower : upper), (isUp ? upper : lower) + 0.1) << isUp << isPressed;
        }
    }
}

// Whatever GNUstep would have raised or sunk.
TEST_F(Theme, BordersAreFlatLinesOfOnePoint) {
    const NSRect frame = NSMakeRect(0, 0, 30, 20);
    for (const SEL border : {
             @selector(drawGrayBezel:withClip:), @selector(drawWhiteBezel:withClip:),
                 @selector(drawDarkBezel:withClip:), @selector(drawLightBezel:withClip:),
                 @selector(drawGroove:withClip:), @selector(drawButton:withClip:)
         }) {
        [window display];
        NSView* const view = [window contentView];
        [view lockFocus];
        [[NSColor blackColor] set];
        NSRectFill(frame);
        const IMP draw = [[GSTheme theme] methodForSelector:border];
        const NSRect inside = reinterpret_cast<NSRect (*)(id, SEL, NSRect, NSRect)>(draw)(
            [GSTheme theme], border, frame, frame);
        NSBitmapImageRep* const bits = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:frame] autorelease];
        [view unlockFocus];
        EXPECT_TRUE(NSEqualRects(inside, NSInsetRect(frame, 1, 1))) << sel_getName(border);
        const double edge = shadeOf([NSColor gridColor]).red;
        const NSInteger places[][2] = {{0, 10}, {29, 10}, {15, 0}, {15, 19}};
        for (const auto& place : places)
            EXPECT_NEAR(shadeOf([bits colorAtX:place[0] y:place[1]]).red, edge, 0.02) << sel_getName(border);
        EXPECT_NEAR(shadeOf([bits colorAtX:15 y:10]).red, 0, 0.02) << sel_getName(border);
    }
}

NSString* nameOfTheme(id, SEL, NSString* key) {
    return [key isEqualToString:@"GSTheme"] ? @"Mine" : nil;
}

TEST_F(Theme, APersonsOwnStays) {
    [GSTheme setTheme:nil];
    GSTheme* const before = [GSTheme theme];
    const Replaced defaults([NSUserDefaults class], @selector(stringForKey:), nameOfTheme);
    useFlatTheme();
    EXPECT_EQ([GSTheme theme], before);
}

// GNUstep reads it once, when the first scroll view is made.
TEST_F(Theme, KeepsAsMuchRoomForScrollersAsTheyDraw) {
    EXPECT_EQ([[GSTheme theme] defaultScrollerWidth], [ZqScroller scrollerWidth]);
}

} // namespace
