// SPDX-License-Identifier: MIT
//
// The lists of functions and units to look through.
#import "console_fixture.h"

#import "NameListPanel.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string>

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
            if (![one isKindOfClass:[NSTextField class]]) continue;
            if ([static_cast<NSTextField*>(one) isEditable]) return static_cast<NSTextField*>(one);
        }
        return nil;
    }

    static NSTextView* List() {
        for (NSView* const one in [[Panel() contentView] subviews]) {
            if ([one isKindOfClass:[NSScrollView class]])
                return [static_cast<NSScrollView*>(one) documentView];
        }
        return nil;
    }
    static std::string Lines() { return [[List() string] UTF8String]; }

    static std::string LineAt(int index) {
        std::istringstream lines(Lines());
        std::string line;
        for (int i = 0; i <= index; ++i) std::getline(lines, line);
        return line;
    }

    // The line that looks chosen, or "".
    static NSRange ChosenRange() {
        NSRange run = {0, 0};
        for (NSUInteger i = 0; i < [[List() string] length]; i = NSMaxRange(run)) {
            NSColor* const back = [[List() textStorage] attribute:NSBackgroundColorAttributeName
                                                          atIndex:i
                                                   effectiveRange:&run];
            if ([back isEqual:[NSColor selectedTextBackgroundColor]]) return run;
        }
        return NSMakeRange(0, 0);
    }
    static std::string Chosen() {
        const std::string line = [[[List() string] substringWithRange:ChosenRange()] UTF8String];
        return line.substr(0, line.find('\n'));
    }
    static NSRect ChosenFrame() {
        NSLayoutManager* const layout = [List() layoutManager];
        const NSRange glyphs = [layout glyphRangeForCharacterRange:ChosenRange() actualCharacterRange:NULL];
        const NSRect frame = [layout boundingRectForGlyphRange:glyphs inTextContainer:[List() textContainer]];
        return NSOffsetRect(frame, [List() textContainerOrigin].x, [List() textContainerOrigin].y);
    }

    // Where the line with this number is drawn.
    static NSPoint PlaceOf(int index) {
        const std::string line = LineAt(index);
        const NSRange range = [[List() string] rangeOfString:@(line.c_str())];
        NSLayoutManager* const layout = [List() layoutManager];
        const NSRange glyphs = [layout glyphRangeForCharacterRange:range actualCharacterRange:NULL];
        const NSRect frame = [layout boundingRectForGlyphRange:glyphs inTextContainer:[List() textContainer]];
        const NSPoint origin = [List() textContainerOrigin];
        return NSMakePoint(NSMinX(frame) + origin.x + 8, NSMidY(frame) + origin.y);
    }

    static void Click(NSPoint place) {
        [List() mouseDown:[NSEvent mouseEventWithType:NSLeftMouseDown
                                             location:[List() convertPoint:place toView:nil]
                                        modifierFlags:0
                                            timestamp:0
                                         windowNumber:[Panel() windowNumber]
                                              context:nil
                                          eventNumber:0
                                           clickCount:1
                                             pressure:1]];
    }

    // A key press in the panel, as it has the keyboard's focus.
    static void Key(uint32_t code) {
        const std::map<uint32_t, unichar> characters = {{KEY_RETURN, '\r'},
                                                        {KEY_TAB, '\t'},
                                                        {KEY_UP, NSUpArrowFunctionKey},
                                                        {KEY_DOWN, NSDownArrowFunctionKey}};
        if (![[Panel() firstResponder] isKindOfClass:[NSTextView class]])
            [Panel() makeFirstResponder:Field()];
        NSString* const text = [NSString stringWithCharacters:&characters.at(code) length:1];
        [Panel()
            sendEvent:[NSEvent keyEventWithType:NSKeyDown
                                             location:NSZeroPoint
                                        modifierFlags:code == KEY_UP || code == KEY_DOWN ? NSFunctionKeyMask
                                                                                         : 0
                                            timestamp:0
                                         windowNumber:[Panel() windowNumber]
                                              context:nil
                                           characters:text
                          charactersIgnoringModifiers:text
                                            isARepeat:NO
                                              keyCode:0]];
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
    EXPECT_EQ(lines.substr(0, lines.find('\n')), "hyp(a,b)=sqrt(a^2+b^2)");
    EXPECT_NE(lines.find("\nsqrt(x)  "), std::string::npos);
    EXPECT_NE(lines.find("\nmod(x,d)      remainder"), std::string::npos);
    EXPECT_EQ(lines.find("mod(x,d)="), std::string::npos) << "twice";
}

TEST_F(NameLists, AFunctionOfThePersonTakesThePlaceOfAPredefinedOne) {
    Enter("mod(x,d)=x-d");
    [console showFunctions:nil];
    const std::string lines = Lines();
    EXPECT_EQ(lines.substr(0, lines.find('\n')), "mod(x,d)=x-d");
    EXPECT_EQ(lines.find("mod(x,d)  "), std::string::npos);
}

// A fixed width is one for each letter: "fl" is two.
TEST_F(NameLists, TheSecondColumnBeginsAtTheSamePlaceInEachLine) {
    [console showFunctions:nil];
    for (NSString* const name in @[ @"floor(x)", @"sqrt(x)" ]) {
        NSTextStorage* const text = [List() textStorage];
        const NSRange place = [[text string] rangeOfString:name];
        NSNumber* const joins = [text attribute:NSLigatureAttributeName
                                        atIndex:place.location
                                 effectiveRange:NULL];
        EXPECT_TRUE(joins && [joins intValue] == 0) << [name UTF8String];
    }
    Enter("floor(2.5)");
    const NSUInteger typed = [[console string] rangeOfString:@"floor"].location;
    NSNumber* const joins = [[console textStorage] attribute:NSLigatureAttributeName
                                                     atIndex:typed
                                              effectiveRange:NULL];
    EXPECT_TRUE(joins && [joins intValue] == 0) << "in the console";
}

TEST_F(NameLists, WhatDoesNotFitGoesOnBelowTheSecondColumn) {
    [console showFunctions:nil];
    NSLayoutManager* const layout = [List() layoutManager];
    const NSRange place = [[List() string] rangeOfString:@"hyperbolic tangent"];
    ASSERT_NE(place.location, static_cast<NSUInteger>(NSNotFound));
    const auto left = [layout](NSUInteger glyph) {
        const NSRect line = [layout lineFragmentRectForGlyphAtIndex:glyph effectiveRange:NULL];
        return NSMinX(line) + [layout locationForGlyphAtIndex:glyph].x;
    };
    int wrapped = 0;
    NSRange line = {0, 0};
    for (NSUInteger i = 0; i < [[List() string] length]; i = NSMaxRange(line)) {
        [layout lineFragmentRectForGlyphAtIndex:i effectiveRange:&line];
        if (i == 0 || [[List() string] characterAtIndex:i - 1] == '\n') continue;
        ++wrapped;
        EXPECT_NEAR(left(i), left(place.location), 1)
            << [[[List() string] substringWithRange:line] UTF8String];
    }
    EXPECT_GT(wrapped, 0);
}

TEST_F(NameLists, WhatIsTypedNarrowsThem) {
    [console showUnits:nil];
    const auto count = [] {
        const std::string lines = Lines();
        return std::count(lines.begin(), lines.end(), '\n');
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

TEST_F(NameLists, AClickTakesTheLineUnderIt) {
    [console showFunctions:nil];
    Look(@"sin");
    const std::string third = LineAt(2);
    Click(PlaceOf(2));
    EXPECT_EQ(Entry(), third.substr(0, third.find('(') + 1));
    Look(@"sqrt(x)");
    Click(NSMakePoint(20, NSMaxY([List() bounds]) - 2)); // below the last line
    EXPECT_EQ(Entry(), third.substr(0, third.find('(') + 1));
}

TEST_F(NameLists, ReturnTakesTheFirstLineOfASearch) {
    [console showUnits:nil];
    Key(KEY_RETURN);
    EXPECT_EQ(Entry(), "") << "nothing was looked for";
    Look(@"siemens");
    Key(KEY_RETURN);
    EXPECT_EQ(Entry(), "siemens");
}

TEST_F(NameLists, TheArrowsChooseALineWhichIsSeen) {
    [console showFunctions:nil];
    EXPECT_EQ(Chosen(), "");
    Look(@"sin");
    EXPECT_EQ(Chosen(), LineAt(0)) << "Return takes it";
    Key(KEY_DOWN);
    EXPECT_EQ(Chosen(), LineAt(1));
    Key(KEY_DOWN);
    Key(KEY_UP);
    EXPECT_EQ(Chosen(), LineAt(1));
    Key(KEY_UP);
    Key(KEY_UP);
    EXPECT_EQ(Chosen(), LineAt(0)) << "above it there is none";
    Look(@"");
    EXPECT_EQ(Chosen(), "");
    Key(KEY_DOWN);
    EXPECT_EQ(Chosen(), LineAt(0));
    for (int i = 0; i < 200; ++i) Key(KEY_DOWN);
    const std::string last = Chosen();
    EXPECT_TRUE(NSIntersectsRect([List() visibleRect], ChosenFrame()));
    Key(KEY_RETURN);
    EXPECT_EQ(Entry(), last.substr(0, last.find('(') + 1));
}

TEST_F(NameLists, NamesThatBeginAsWhatIsTypedComeFirst) {
    Enter("hyp(a,b)=sqrt(a^2+b^2)");
    [console showFunctions:nil];
    Look(@"SQ");
    EXPECT_EQ(LineAt(0).substr(0, 7), "sqrt(x)");
    EXPECT_EQ(LineAt(1), "hyp(a,b)=sqrt(a^2+b^2)");
}

TEST_F(NameLists, AKeyThatLeavesTheFieldTakesNothing) {
    [console showUnits:nil];
    Look(@"siemens");
    Key(KEY_TAB);
    [Panel() makeFirstResponder:nil];
    EXPECT_EQ(Entry(), "");
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
