// SPDX-License-Identifier: MIT
//
// The lists of functions and units to look through.
#import "console_fixture.h"

#import "NameListPanel.h"

#include <algorithm>

namespace {

class NameLists : public ConsoleTest {
protected:
    void TearDown() override {
        [Panel() close];
        ConsoleTest::TearDown();
    }

    static NameListPanel* Panel() {
        for (NSWindow* const one in [NSApp windows]) {
            if ([one isKindOfClass:[NameListPanel class]] && [one isVisible])
                return static_cast<NameListPanel*>(one);
        }
        return nil;
    }

    static NSTextField* Field() {
        for (NSView* const one in [[Panel() contentView] subviews]) {
            if ([one isKindOfClass:[NSTextField class]]) return static_cast<NSTextField*>(one);
        }
        return nil;
    }

    static std::string Lines() {
        for (NSView* const one in [[Panel() contentView] subviews]) {
            if (![one isKindOfClass:[NSScrollView class]]) continue;
            NSTextView* const list = [static_cast<NSScrollView*>(one) documentView];
            return [[list string] UTF8String];
        }
        return "";
    }

    static void Look(NSString* part) {
        [Field() setStringValue:part];
        [Panel() controlTextDidChange:[NSNotification notificationWithName:NSControlTextDidChangeNotification
                                                                    object:Field()]];
    }
};

TEST_F(NameLists, FunctionsHaveALineEachThePersonsFirst) {
    Enter("hyp(a,b)=sqrt(a^2+b^2)");
    [console showFunctions:nil];
    const std::string lines = Lines();
    EXPECT_EQ(lines.substr(0, lines.find('\n')), "mod(x,d)=x%d");
    EXPECT_NE(lines.find("\nhyp(a,b)=sqrt(a^2+b^2)\n"), std::string::npos);
    EXPECT_NE(lines.find("\nsqrt(x)  "), std::string::npos);
}

TEST_F(NameLists, WhatIsTypedNarrowsThem) {
    [console showUnits:nil];
    const auto count = [] {
        const std::string lines = Lines();
        return std::count(lines.begin(), lines.end(), '\n') + 1;
    };
    const auto all = count();
    EXPECT_GT(all, 100);
    Look(@"KILOGR");
    EXPECT_LT(count(), all);
    Look(@"no such unit");
    EXPECT_EQ(Lines(), "");
    Look(@"");
    EXPECT_EQ(count(), all);
}

TEST_F(NameLists, ALineThatIsTakenIsTypedAtThePrompt) {
    Type("2*");
    [console showFunctions:nil];
    Look(@"sqrt(x)");
    [Panel() take:0];
    EXPECT_EQ(Entry(), "2*sqrt(");
    [Panel() take:7]; // below the last line
    EXPECT_EQ(Entry(), "2*sqrt(");
}

TEST_F(NameLists, ReturnTakesTheFirstLineOfASearch) {
    [console showUnits:nil];
    [[Field() target] performSelector:[Field() action] withObject:Field()];
    EXPECT_EQ(Entry(), "") << "nothing was looked for";
    Look(@"siemens");
    [[Field() target] performSelector:[Field() action] withObject:Field()];
    EXPECT_EQ(Entry(), "siemens");
}

TEST_F(NameLists, OneIsOpenAtATime) {
    [console showUnits:nil];
    [console showFunctions:nil];
    int open = 0;
    for (NSWindow* const one in [NSApp windows]) {
        if ([one isKindOfClass:[NameListPanel class]] && [one isVisible]) ++open;
    }
    EXPECT_EQ(open, 1);
    EXPECT_TRUE([[Panel() title] isEqualToString:@"Functions"]);
}

} // namespace
