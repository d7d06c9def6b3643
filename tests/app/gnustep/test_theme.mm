// SPDX-License-Identifier: MIT
//
// The looks on GNUstep. macOS has its own.
#import "../console_fixture.h"
#include "../leaks.h"

#import "Platform.h"
#import "ZqScroller.h"

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

// GNUstep reads it once, when the first scroll view is made.
TEST_F(Theme, KeepsAsMuchRoomForScrollersAsTheyDraw) {
    EXPECT_EQ([[GSTheme theme] defaultScrollerWidth], [ZqScroller scrollerWidth]);
}

} // namespace
