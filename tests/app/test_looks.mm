// SPDX-License-Identifier: MIT
//
// What a glance at the console tells: shades, the marked bracket, hints, whole lines with air around them.
#import "console_fixture.h"

#import "ConsoleScrollView.h"
#include "Shades.h"

#import <objc/runtime.h>

#include <sstream>

namespace {

class Looks : public ConsoleTest {
protected:
    static Shade ShadeOf(NSColor* color) {
        NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
        return {[rgb redComponent], [rgb greenComponent], [rgb blueComponent]};
    }

    NSRange Find(const char* text) const {
        const NSRange range = [[console string] rangeOfString:@(text) options:NSBackwardsSearch];
        EXPECT_NE(range.location, static_cast<NSUInteger>(NSNotFound)) << text;
        return range;
    }

    // The one color that the whole text has; black when it has several.
    Shade ColorOf(const char* text) const { return ColorIn(Find(text), text); }
    Shade ColorIn(NSRange wanted, const char* text) const {
        NSRange run;
        NSColor* const color = [[console textStorage] attribute:NSForegroundColorAttributeName
                                                        atIndex:wanted.location
                                          longestEffectiveRange:&run
                                                        inRange:wanted];
        EXPECT_TRUE(NSEqualRanges(run, wanted)) << text;
        return NSEqualRanges(run, wanted) ? ShadeOf(color) : Shade{};
    }

    static void ExpectSame(const Shade& one, const Shade& other) {
        EXPECT_NEAR(one.red, other.red, 1e-4);
        EXPECT_NEAR(one.green, other.green, 1e-4);
        EXPECT_NEAR(one.blue, other.blue, 1e-4);
    }

    TextShades Wanted() const {
        return textShades(ShadeOf([console textColor]), ShadeOf([console backgroundColor]));
    }

    void ShowColors(const Shade& text, const Shade& back) {
        const auto color = [](const Shade& s) {
            return [NSColor colorWithCalibratedRed:s.red green:s.green blue:s.blue alpha:1];
        };
        [console showTextColor:color(text) background:color(back)];
    }

    std::string Hint() const {
        Ivar const field = class_getInstanceVariable([MainConsole class], "answerStatus");
        NSString* const hint = [[object_getIvar(console, field) cell] placeholderString];
        return hint ? [hint UTF8String] : "";
    }
};

constexpr Shade TEXT = {0.1, 0.9, 0.9};

TEST_F(Looks, EntriesAnswersAndErrorsDifferInShade) {
    Enter("2+3");
    Enter("wdith*2");
    Type("7*7");
    ExpectSame(ColorOf("> 2+3"), TEXT);
    ExpectSame(ColorOf("ans = 5\n"), Wanted().answer);
    ExpectSame(ColorOf("> wdith*2"), TEXT);
    ExpectSame(ColorOf("** ERROR 7: invalid term = wdith **\n"), Wanted().error);
    ExpectSame(ColorOf("> 7*7"), TEXT);
}

TEST_F(Looks, WhatIsShownBeforeAnErrorIsNoError) {
    Enter("echo before; 1/0");
    ExpectSame(ColorOf("before\n"), Wanted().answer);
    ExpectSame(ColorOf("** ERROR: divide by zero **\n"), Wanted().error);
}

TEST_F(Looks, ARepeatedEntryAndAnAnswerInAnotherBaseHaveTheShadeOfAnswers) {
    Enter("x=1");
    Enter("x=x+1");
    Press(KEY_RETURN);
    ExpectSame(ColorOf("x = 3\n"), Wanted().answer);
    [console setDisplayBase:16:NO];
    ExpectSame(ColorOf("x=x+1 = 0x0003\n"), Wanted().answer);
    Type("5");
    ExpectSame(ColorOf("> 5"), TEXT);
}

TEST_F(Looks, AScriptsOutputHasTheShades) {
    const std::string path = home + "/a.script";
    Write(path, "6*7\nwdith\n");
    [console loadFile:@(path.c_str())];
    ExpectSame(ColorOf("ans = 42\n"), Wanted().answer);
    ExpectSame(ColorOf("** ERROR 7: invalid term = wdith **\n"), Wanted().error);
    Type("1");
    ExpectSame(ColorOf("> 1"), TEXT);
}

TEST_F(Looks, ARestoredTranscriptHasTheShades) {
    Enter("2+3");
    Enter("echo before; 1/0");
    Enter("wdith");
    Enter("clear x");
    const auto kinds = [this] {
        std::string colors;
        for (NSUInteger i = 0; i < [[console string] length]; ++i) {
            NSColor* const color = [[console textStorage] attribute:NSForegroundColorAttributeName
                                                            atIndex:i
                                                     effectiveRange:NULL];
            const Shade shade = ShadeOf(color);
            const bool isError = std::abs(shade.red - Wanted().error.red) < 1e-4;
            colors += isError ? 'e' : std::abs(shade.red - TEXT.red) < 1e-4 ? 't' : 'a';
        }
        return colors;
    };
    // The empty lines between have no shade.
    const auto shadesOf = [&] {
        std::string lines = Text(), shades = kinds();
        for (size_t i = 0; i < lines.size(); ++i) {
            if (lines[i] == '\n') shades[i] = ' ';
        }
        return shades;
    };
    const std::string text = Text(), shades = shadesOf();
    ASSERT_NE(shades.find('e'), std::string::npos);
    ASSERT_NE(shades.find('a'), std::string::npos);
    Terminate();
    Restart();
    ASSERT_EQ(Text(), text);
    EXPECT_EQ(shadesOf(), shades);
    Type("1");
    ExpectSame(ColorOf("> 1"), TEXT);
}

TEST_F(Looks, TextThatIsTypedOutHasTheShadeOfAnswers) {
    Enter("echo100 slowly");
    ExpectSame(ColorOf("slowly"), Wanted().answer);
    EXPECT_EQ(Entry(), "");
    ShowColors({0, 0, 0}, {1, 1, 1});
    ExpectSame(ColorOf("slowly"), Wanted().answer);
    ShowColors(TEXT, {0.1, 0.1, 0.1});
    Type("1");
    ExpectSame(ColorOf("> 1"), TEXT);
}

TEST_F(Looks, NewColorsReachTheWholeTranscript) {
    Enter("2+3");
    Enter("wdith");
    const Shade black = {0, 0, 0}, white = {1, 1, 1};
    ShowColors(black, white);
    ExpectSame(ColorOf("> 2+3"), black);
    ExpectSame(ColorOf("ans = 5\n"), textShades(black, white).answer);
    ExpectSame(ColorOf("** ERROR 7: invalid term = wdith **\n"), textShades(black, white).error);
    Enter("8*8");
    ExpectSame(ColorOf("> 8*8"), black);
    ExpectSame(ColorOf("ans = 64\n"), textShades(black, white).answer);
}

TEST_F(Looks, TheSettingsKeepThePersonsColorWhateverTheTextBeginsWith) {
    ShowColors({0.2, 0.3, 0.4}, {1, 1, 1});
    [console insertPrePrompt:"earlier\n":2];
    [console saveSettings];
    ExpectSame(ShadeOf([console textColor]), {0.2, 0.3, 0.4});
    ExpectSame(ColorOf("earlier\n"), Wanted().answer);
}

TEST_F(Looks, UndoAndPastingKeepTheShadeOfEntries) {
    Enter("2+3");
    SetPasteboard("40+2");
    [console paste:nil];
    ExpectSame(ColorOf("> 40+2"), TEXT);
    Type("+1");
    [console undo:nil];
    [console redo:nil];
    ExpectSame(ColorIn(NSMakeRange(static_cast<NSUInteger>(g_linestart), Entry().size()), "entry"), TEXT);
    ExpectSame(ColorOf("ans = 5\n"), Wanted().answer);
}

TEST_F(Looks, TypingBehindAClickIntoAnAnswerHasTheShadeOfEntries) {
    Enter("2+3");
    Select(Find("ans = 5").location + 2);
    Type("9");
    EXPECT_EQ(Entry(), "9");
    ExpectSame(ColorOf("> 9"), TEXT);
}

// The selection lies between the text and the background.
TEST_F(Looks, SelectedTextIsLegible) {
    const Shade pairs[][2] = {{TEXT, {0.1, 0.1, 0.1}},
                              {{0, 0, 0}, {1, 1, 1}},
                              {{0, 0.5, 0.4}, {1, 1, 0.9}},
                              {{0.6, 0.6, 0.6}, {0.1, 0.1, 0.3}},
                              {{1, 0.2, 0.2}, {0, 0, 0}}};
    for (const auto& pair : pairs) {
        ShowColors(pair[0], pair[1]);
        NSDictionary* const look = [console selectedTextAttributes];
        const Shade text = ShadeOf([look objectForKey:NSForegroundColorAttributeName]);
        const Shade back = ShadeOf([look objectForKey:NSBackgroundColorAttributeName]);
        EXPECT_GE(contrast(text, back), 4.5) << &pair - pairs;
    }
    ShowColors(TEXT, {0.1, 0.1, 0.1});
    ExpectSame(ShadeOf([[console selectedTextAttributes] objectForKey:NSForegroundColorAttributeName]), TEXT);
}

TEST_F(Looks, CopiesArePlainText) {
    Enter("2+3");
    Enter("wdith");
    [console selectAll:nil];
    [console copy:nil];
    NSArray* const types = [[NSPasteboard generalPasteboard] types];
    EXPECT_TRUE([types containsObject:NSStringPboardType]);
    EXPECT_FALSE([types containsObject:NSRTFPboardType]);
    EXPECT_FALSE([types containsObject:NSRTFDPboardType]);
    EXPECT_EQ(Pasteboard(), Text());
}

// --- Without colors ---

// A person who tells no color from another, or a printer, has the words and the places: an error is between
// asterisks, an answer has no prompt, and what is missing is said in words.
TEST_F(Looks, NothingIsMeantByColorAlone) {
    Enter("2+3");
    Enter("wdith");
    Enter("1/0");
    std::string kinds;
    std::istringstream lines(Text());
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) continue;
        const Shade shade = ColorOf(line.c_str());
        const bool isError = std::abs(shade.red - Wanted().error.red) < 1e-4;
        const bool isTyped = std::abs(shade.red - TEXT.red) < 1e-4;
        EXPECT_EQ(isError, line.rfind("** ", 0) == 0) << line;
        EXPECT_EQ(isTyped, line.rfind("> ", 0) == 0) << line;
        kinds += isError ? 'e' : isTyped ? 't' : 'a';
    }
    EXPECT_EQ(kinds, "tatetet") << "the last one is the new prompt";
    Type("(2");
    EXPECT_EQ(Hint(), "missing )");
}

// --- The bracket ---

class BracketMark : public Looks {
protected:
    bool IsMarked() const { return !NSIsEmptyRect(Mark()); }

    NSRect Mark() const { return PartOf<NSRect>("bracketMark"); }

    // Where a character of the entry stands.
    NSRect PlaceOf(NSUInteger place) const {
        NSLayoutManager* const layout = [console layoutManager];
        const NSRange glyph = NSMakeRange(static_cast<NSUInteger>(g_linestart) + place, 1);
        const NSRect found = [layout boundingRectForGlyphRange:glyph inTextContainer:[console textContainer]];
        return NSOffsetRect(found, [console textContainerOrigin].x, [console textContainerOrigin].y);
    }
};

TEST_F(BracketMark, FollowsTheCursor) {
    Type("2*(3+(4)");
    EXPECT_TRUE(NSEqualRects(Mark(), PlaceOf(5)));
    Type(")");
    EXPECT_TRUE(NSEqualRects(Mark(), PlaceOf(2)));
    SelectEntry(6);
    EXPECT_TRUE(NSEqualRects(Mark(), PlaceOf(7)));
    SelectEntry(1);
    EXPECT_FALSE(IsMarked());
    SelectEntry(2, 3);
    EXPECT_FALSE(IsMarked()) << "there is no cursor";
}

TEST_F(BracketMark, GoesWithItsPartner) {
    Type("(1)");
    SelectEntry(2);
    EXPECT_TRUE(NSEqualRects(Mark(), PlaceOf(0)));
    Press(KEY_FORWARD_DELETE);
    EXPECT_FALSE(IsMarked());
    Press(KEY_ESCAPE);
    Enter("(1)");
    EXPECT_FALSE(IsMarked()) << "it is no entry any more";
    Select(Find("(1)").location + 3);
    EXPECT_FALSE(IsMarked());
}

TEST_F(BracketMark, LeavesNoTraceInTheText) {
    Type("(1)");
    ExpectSame(ColorOf("> (1)"), TEXT);
    NSRange run;
    [[console textStorage] attributesAtIndex:0 effectiveRange:&run];
    EXPECT_EQ(run.length, Text().size());
    [console undo:nil];
    EXPECT_EQ(Entry(), "");
}

// --- The status line ---

TEST_F(Looks, TheStatusLineSaysInGrayWhatIsMissing) {
    Type("(2+3");
    EXPECT_EQ(StatusLine(), "");
    EXPECT_EQ(Hint(), "missing )");
    Type(")");
    EXPECT_EQ(StatusLine(), "ans = 5");
    EXPECT_EQ(Hint(), "");
    Type("*wdith");
    EXPECT_EQ(Hint(), "unknown: wdith");
    Press(KEY_RETURN);
    EXPECT_EQ(Hint(), "");
}

TEST_F(Looks, NothingIsMissingInAnEntryThatWasNotPreviewed) {
    Type("(2");
    Type("+");
    [console insertText:@"\u20ac"];
    Press(KEY_END);
    Type("1");
    EXPECT_EQ(Hint(), "");
}

TEST_F(Looks, TheStatusLineIsInTheConsolesFont) {
    Ivar const field = class_getInstanceVariable([MainConsole class], "answerStatus");
    NSFont* const font = [object_getIvar(console, field) font];
    EXPECT_TRUE([[font fontName] isEqualToString:[[console font] fontName]]);
    EXPECT_EQ([@"i" sizeWithAttributes:@{NSFontAttributeName : font}].width,
              [@"M" sizeWithAttributes:@{NSFontAttributeName : font}].width);
}

// The interruption check is what the engine calls while an entry runs.
TEST_F(Looks, ALongEntryIsSaidToBeCalculated) {
    [console watchInterrupts];
    EXPECT_FALSE([console isInterrupted]);
    EXPECT_EQ(StatusLine(), "");
    // Later than both: it looks again, and a second has gone by.
    using Clock = std::chrono::steady_clock;
    PartOf<Clock::time_point>("lastInterruptCheck") -= std::chrono::seconds(1);
    PartOf<std::optional<Clock::time_point>>("longFrom") = Clock::now();
    EXPECT_FALSE([console isInterrupted]);
    EXPECT_EQ(StatusLine(), "Calculating... Escape ends it.");
    Enter("1+1");
    EXPECT_EQ(StatusLine(), "");
}

// --- Lines ---

class WholeLinesTest : public Looks {
protected:
    NSClipView* Clip() const { return [[console enclosingScrollView] contentView]; }

    NSRect LineAt(NSUInteger character) const {
        return [[console layoutManager] lineFragmentRectForGlyphAtIndex:character effectiveRange:NULL];
    }

    // How much of the line at the top is scrolled out.
    double CutAtTop() const {
        const double top = NSMinY([Clip() bounds]);
        const NSUInteger glyph = [[console layoutManager] glyphIndexForPoint:NSMakePoint(10, top + 1)
                                                             inTextContainer:[console textContainer]];
        return top - NSMinY(LineAt(glyph));
    }

    void FillUp() {
        for (int i = 0; i < 30; ++i) Enter(std::to_string(i).c_str());
    }
};

TEST_F(WholeLinesTest, AllLinesAreEquallyHigh) {
    FillUp();
    Enter("wdith");
    [console insertText:@"\u20ac\u4e2d"];
    const double first = NSHeight(LineAt(0));
    for (NSUInteger i = 0; i < [[console string] length]; ++i) ASSERT_EQ(NSHeight(LineAt(i)), first) << i;
}

TEST_F(WholeLinesTest, NoneIsCutAtTheTopWhereverItIsScrolled) {
    FillUp();
    EXPECT_NEAR(CutAtTop(), 0, 0.01) << "at the end";
    for (double y = 0; y < 600; y += 37) {
        [console scrollPoint:NSMakePoint(0, y)];
        EXPECT_NEAR(CutAtTop(), 0, 0.01) << y;
    }
    [console makeTextBigger:nil];
    EXPECT_NEAR(CutAtTop(), 0, 0.01) << "in another size";
    NSRect frame = [window frame];
    for (int i = 0; i < 20; ++i) {
        frame.size.height += 3;
        [window setFrame:frame display:YES];
        EXPECT_NEAR(CutAtTop(), 0, 0.01) << frame.size.height;
    }
}

TEST_F(WholeLinesTest, TheTextHasAirAroundIt) {
    FillUp();
    NSScrollView* const scroll = [console enclosingScrollView];
    const NSRect shown = [Clip() frame], all = [scroll bounds];
    const double above = [scroll isFlipped] ? NSMinY(shown) : NSMaxY(all) - NSMaxY(shown);
    const double below = NSHeight(all) - above - NSHeight(shown);
    EXPECT_EQ(above, 6);
    EXPECT_GE(below, 6);
    EXPECT_EQ([[console textContainer] lineFragmentPadding], 6);
    EXPECT_EQ([console textContainerOrigin].x, 0);
}

// The air around the text too, which is no part of the text view.
TEST_F(WholeLinesTest, NewColorsAreDrawnEverywhereAtOnce) {
    NSView* const content = [window contentView];
    const auto picture = [&] {
        [content lockFocus];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[content bounds]] autorelease];
        [content unlockFocus];
        return [bits TIFFRepresentation];
    };
    [window display];
    NSData* const before = picture();
    ShowColors({0.1, 0.1, 0.1}, {0.9, 0.8, 0.7});
    [window displayIfNeeded];
    NSData* const changed = picture();
    [window display];
    EXPECT_FALSE([changed isEqualToData:before]);
    EXPECT_TRUE([changed isEqualToData:picture()]) << "parts were left as they were";
}

TEST_F(WholeLinesTest, ANotchOfTheWheelMovesHugeTextToo) {
    FillUp();
    for (int i = 0; i < 20; ++i) [console makeTextBigger:nil];
    EXPECT_GE([[console enclosingScrollView] verticalLineScroll], NSHeight(LineAt(0)));
}

} // namespace
