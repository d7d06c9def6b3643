// SPDX-License-Identifier: MIT
//
// The panel that tells what the program is.
#import "Interface.h"
#import "shell_fixture.h"

namespace {

NSString* pathOfTests(id, SEL, NSString* name, NSString* type) {
    return [NSString stringWithFormat:@"%s/%@.%@", TALLYQUILL_RESOURCES, name, type];
}

NSDictionary* information(id, SEL) {
    return [NSDictionary dictionaryWithObject:@"1.2.3" forKey:@"ApplicationRelease"];
}

class About : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        [window makeKeyAndOrderFront:nil];
        const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTests);
        const Replaced about([NSBundle class], @selector(infoDictionary), information);
        panel = buildAboutPanel();
        ASSERT_NE(panel, nil);
        EXPECT_EQ(std::string([[panel title] UTF8String]), "About Tallyquill");
        [panel makeKeyAndOrderFront:nil];
    }
    void TearDown() override {
        [panel orderOut:nil];
        ShellTest::TearDown();
    }

    NSWindow* panel = nil;
};

TEST_F(About, TellsNameVersionPurposeAndLicense) {
    std::string lines;
    bool hasIcon = false;
    for (NSView* const view in [[panel contentView] subviews]) {
        EXPECT_TRUE(NSContainsRect([[panel contentView] bounds], [view frame]));
        if ([view isKindOfClass:[NSImageView class]]) hasIcon = [(NSImageView*)view image] != nil;
        if (![view isKindOfClass:[NSTextField class]]) continue;
        NSTextField* const line = (NSTextField*)view;
        lines += std::string([[line stringValue] UTF8String]) + "\n";
        EXPECT_LE([[line cell] cellSize].width, NSWidth([line frame])) << lines;
    }
    EXPECT_EQ(lines, "Tallyquill\nVersion 1.2.3\nA calculator that works like a console.\n"
                     "Free software under the MIT license.\n");
    EXPECT_TRUE(hasIcon);
}

NSDictionary* informationOfBundles(id, SEL) {
    return [NSDictionary dictionaryWithObject:@"4.5.6" forKey:@"CFBundleShortVersionString"];
}

NSDictionary* noInformation(id, SEL) {
    return nil;
}

bool hasLine(NSWindow* panel, NSString* start) {
    for (NSView* const view in [[panel contentView] subviews]) {
        const bool isText = [view isKindOfClass:[NSTextField class]];
        if (isText && [[(NSTextField*)view stringValue] hasPrefix:start]) return true;
    }
    return false;
}

TEST_F(About, TakesTheVersionFromWhereTheSystemKeepsIt) {
    {
        const Replaced about([NSBundle class], @selector(infoDictionary), informationOfBundles);
        EXPECT_TRUE(hasLine(buildAboutPanel(), @"Version 4.5.6"));
    }
    const Replaced about([NSBundle class], @selector(infoDictionary), noInformation);
    EXPECT_FALSE(hasLine(buildAboutPanel(), @"Version"));
}

TEST_F(About, TakesTheKeysAndEscapeClosesIt) {
    EXPECT_TRUE([panel isVisible]);
    EXPECT_TRUE([panel isKeyWindow]);
    EXPECT_TRUE([panel canBecomeKeyWindow]);
    EXPECT_FALSE([panel isMainWindow]);
    [panel sendEvent:[NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[panel windowNumber]
                                             context:nil
                                          characters:@"\033"
                         charactersIgnoringModifiers:@"\033"
                                           isARepeat:NO
                                             keyCode:53]];
    EXPECT_FALSE([panel isVisible]);
    EXPECT_TRUE([window isVisible]);
}

TEST_F(About, TheMenusCloseClosesItAndNotTheCalculator) {
    [panel performClose:nil]; // what the menu sends to the window that has the keys
    EXPECT_FALSE([panel isVisible]);
    EXPECT_TRUE([window isVisible]);
}

} // namespace
