// SPDX-License-Identifier: MIT
#import "Interface.h"
#import "replacement.h"

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

class Guide : public ::testing::Test {
protected:
    void SetUp() override { pool = [[NSAutoreleasePool alloc] init]; }
    void TearDown() override { [pool release]; }

    static NSAttributedString* LaidOut(const std::string& text) {
        return guideText([NSString stringWithUTF8String:text.c_str()]);
    }

    // The text without the empty lines that are the space between its parts.
    static std::string Lines(NSAttributedString* text) {
        std::istringstream all([[text string] UTF8String]);
        std::string result, line;
        while (std::getline(all, line)) {
            if (!line.empty()) result += line + "\n";
        }
        return result;
    }
    static std::string Lines(const std::string& text) { return Lines(LaidOut(text)); }

    static NSFont* FontAt(NSAttributedString* text, const char* part) {
        const NSRange place = [[text string] rangeOfString:[NSString stringWithUTF8String:part]];
        EXPECT_NE(place.location, static_cast<NSUInteger>(NSNotFound)) << part;
        if (place.location == NSNotFound) return nil;
        NSRange run = {0, 0};
        NSFont* const font = [text attribute:NSFontAttributeName atIndex:place.location effectiveRange:&run];
        return font;
    }

    static bool IsCode(NSFont* font) {
        return [[font fontName] isEqualToString:[[NSFont userFixedPitchFontOfSize:13] fontName]];
    }

    static bool IsBold(NSFont* font) {
        return ([[NSFontManager sharedFontManager] traitsOfFont:font] & NSBoldFontMask) != 0;
    }

    NSAutoreleasePool* pool = nil;
};

TEST_F(Guide, ParagraphsAreJoinedAndSetApart) {
    EXPECT_EQ(Lines("One line\nand another.\n\nA second one.\n"), "One line and another.\nA second one.\n");
}

TEST_F(Guide, HeadingsAreBoldAndTheSmallerTheDeeper) {
    NSAttributedString* const text = LaidOut("# First\nplain\n## Second\n### Third\n");
    EXPECT_EQ(Lines(text), "First\nplain\nSecond\nThird\n");
    EXPECT_TRUE(IsBold(FontAt(text, "First")));
    EXPECT_TRUE(IsBold(FontAt(text, "Third")));
    EXPECT_FALSE(IsBold(FontAt(text, "plain")));
    EXPECT_GT([FontAt(text, "First") pointSize], [FontAt(text, "Second") pointSize]);
    EXPECT_GT([FontAt(text, "Second") pointSize], [FontAt(text, "Third") pointSize]);
    EXPECT_GT([FontAt(text, "Third") pointSize], [FontAt(text, "plain") pointSize]);
}

TEST_F(Guide, NoHeadingWithoutABlankOrBelowTheThirdLevel) {
    EXPECT_EQ(Lines("#first\n"), "#first\n");
    EXPECT_EQ(Lines("#### fourth\n"), "#### fourth\n");
    EXPECT_EQ(Lines("#\n"), "#\n");
}

TEST_F(Guide, CodeAndStrongWordsHaveTheirFonts) {
    NSAttributedString* const text = LaidOut("Type `1+1` for **two** now.\n");
    EXPECT_EQ(Lines(text), "Type 1+1 for two now.\n");
    EXPECT_TRUE(IsCode(FontAt(text, "1+1")));
    EXPECT_TRUE(IsBold(FontAt(text, "two")));
    EXPECT_FALSE(IsCode(FontAt(text, "Type")));
    EXPECT_FALSE(IsBold(FontAt(text, "now")));
}

TEST_F(Guide, StarsInCodeAreNoMarks) {
    EXPECT_EQ(Lines("The power `2**3` and `a**b`.\n"), "The power 2**3 and a**b.\n");
}

TEST_F(Guide, BracketsInCodeAreNoLinks) {
    EXPECT_EQ(Lines("Write `[a](b)` so.\n"), "Write [a](b) so.\n");
}

TEST_F(Guide, FencedCodeIsLeftAsItIs) {
    NSAttributedString* const text =
        LaidOut("```\n# no heading\n- no item\n\n| no | row |\n  two blanks\n[a](b) `c` **d**\n```\nafter\n");
    EXPECT_EQ(Lines(text), "# no heading\n- no item\n| no | row |\n  two blanks\n[a](b) `c` **d**\nafter\n");
    EXPECT_TRUE(IsCode(FontAt(text, "no heading")));
    EXPECT_FALSE(IsCode(FontAt(text, "after")));
}

TEST_F(Guide, AFenceThatIsNeverClosedShowsItsCode) {
    EXPECT_EQ(Lines("```\n1+1\n"), "1+1\n");
}

TEST_F(Guide, ItemsHaveBulletsAndTakeTheirNextLines) {
    EXPECT_EQ(Lines("Before\n- one\n  and more\n- two\n\nAfter\n"),
              "Before\n\u2022 one and more\n\u2022 two\nAfter\n");
}

TEST_F(Guide, RowsOfTablesHaveTheirCellsAtTabs) {
    EXPECT_EQ(Lines("| Key | What |\n|---|:---:|\n| a | `b` |\n"), "Key\tWhat\na\tb\n");
}

TEST_F(Guide, AnEscapedBarIsPartOfItsCell) {
    EXPECT_EQ(Lines("| or | `a \\| b` |\n"), "or\ta | b\n");
}

TEST_F(Guide, AnEmptyCellKeepsItsColumn) {
    EXPECT_EQ(Lines("| a |  | c |\n"), "a\t\tc\n");
}

TEST_F(Guide, LinksShowTheirTextAndImagesNothing) {
    EXPECT_EQ(Lines("See [the list](list.md) and [that](x).\n"), "See the list and that.\n");
    EXPECT_EQ(Lines("Look: ![a picture](p.png) there.\n"), "Look:  there.\n");
    EXPECT_EQ(Lines("A vector [1;2] and (3).\n"), "A vector [1;2] and (3).\n");
    EXPECT_EQ(Lines("Half [a link](x\n"), "Half [a link](x\n");
}

std::string linkAt(NSAttributedString* text, const char* part) {
    const NSRange place = [[text string] rangeOfString:[NSString stringWithUTF8String:part]];
    EXPECT_NE(place.location, static_cast<NSUInteger>(NSNotFound)) << part;
    NSString* const link = [text attribute:NSLinkAttributeName atIndex:place.location effectiveRange:NULL];
    return link ? [link UTF8String] : "";
}

TEST_F(Guide, OnlyLinksToItsOwnSectionsAreLinks) {
    NSAttributedString* const text =
        LaidOut("See [the list](#all-words), **[strong](#b)** or [that](x.md).\n");
    EXPECT_EQ(Lines(text), "See the list, strong or that.\n");
    EXPECT_EQ(linkAt(text, "the list"), "all-words");
    EXPECT_EQ(linkAt(text, "strong"), "b");
    EXPECT_TRUE(IsBold(FontAt(text, "strong")));
    EXPECT_EQ(linkAt(text, "See"), "");
    EXPECT_EQ(linkAt(text, ", "), "");
    EXPECT_EQ(linkAt(text, "that"), "");
    EXPECT_EQ(Lines("A [`word`](#b) here.\n"), "A word here.\n");
}

TEST_F(Guide, NothingGivesNothing) {
    EXPECT_EQ(Lines(""), "");
    EXPECT_EQ(Lines("\n\n\n"), "");
    EXPECT_EQ(Lines("|\n||\n"), "");
}

NSString* pathOfTests(id, SEL, NSString*, NSString*) {
    return [NSString stringWithUTF8String:TALLYQUILL_GUIDE];
}

NSWindow* shownGuide() {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTests);
    NSWindow* const window = buildGuideWindow();
    EXPECT_EQ(std::string([[window title] UTF8String]), "Tallyquill Guide");
    [window makeKeyAndOrderFront:nil];
    return window;
}

TEST_F(Guide, ItsWindowShowsAllOfTheTextAtTheSmallestWidth) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    NSTextView* const view = [(NSScrollView*)[window contentView] documentView];
    const NSRect before = [window frame];
    // As far as a person can make it narrow.
    const NSSize least = [window minSize];
    EXPECT_GT(least.width, 400);
    EXPECT_LT(least.width, 720);
    [window setFrame:NSMakeRect(NSMinX(before), NSMinY(before), least.width, least.height) display:YES];
    ASSERT_EQ(NSWidth([window frame]), least.width);
    NSLayoutManager* const layout = [view layoutManager];
    const NSRange shown = [layout glyphRangeForTextContainer:[view textContainer]];
    EXPECT_EQ(shown.location, 0u);
    EXPECT_EQ(shown.length, [layout numberOfGlyphs]);
    const NSUInteger last = [layout numberOfGlyphs] - 1;
    const NSRect end = [layout lineFragmentRectForGlyphAtIndex:last effectiveRange:NULL];
    EXPECT_GT(NSMinY(end), 3000) << "the last line stands below all others";
    [window setFrame:before display:NO];
    [window close];
}

NSTextView* viewOf(NSWindow* window) {
    return [(NSScrollView*)[window contentView] documentView];
}

CGFloat leftOf(NSLayoutManager* layout, NSUInteger character) {
    const NSRange glyph = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                         actualCharacterRange:NULL];
    return std::round([layout locationForGlyphAtIndex:glyph.location].x);
}

// Where the cells behind the first one begin, for each line of text with tabs; empty for the others.
std::vector<std::vector<CGFloat>> columns(NSTextView* view) {
    NSString* const text = [view string];
    std::vector<std::vector<CGFloat>> found;
    std::vector<CGFloat> line;
    for (NSUInteger i = 0; i < [text length]; ++i) {
        const unichar c = [text characterAtIndex:i];
        if (c == '\t') line.push_back(leftOf([view layoutManager], i + 1));
        if (c != '\n') continue;
        found.push_back(line);
        line.clear();
    }
    return found;
}

TEST_F(Guide, TheCellsOfATableStandBelowEachOther) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    int rows = 0;
    std::vector<CGFloat> above;
    for (const std::vector<CGFloat>& row : columns(viewOf(window))) {
        for (size_t i = 0; i < row.size() && i < above.size(); ++i) EXPECT_EQ(row[i], above[i]) << rows;
        for (size_t i = 0; i < row.size(); ++i) EXPECT_GT(row[i], i == 0 ? 20 : row[i - 1] + 20) << rows;
        // Below a row with fewer cells the others still stand where the last full row had them.
        if (row.empty())
            above.clear();
        else if (row.size() > above.size())
            above = row;
        rows += !row.empty();
    }
    EXPECT_GT(rows, 60);
    [window close];
}

NSEvent* keyPress(unichar key, NSUInteger flags = 0) {
    NSString* const text = [NSString stringWithCharacters:&key length:1];
    return [NSEvent keyEventWithType:NSKeyDown
                            location:NSZeroPoint
                       modifierFlags:flags | (key >= 0xf700 ? NSFunctionKeyMask : 0)
                           timestamp:0
                        windowNumber:0
                             context:nil
                          characters:text
         charactersIgnoringModifiers:text
                           isARepeat:NO
                             keyCode:0];
}

TEST_F(Guide, HomeAndEndScrollToItsEnds) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    NSTextView* const view = viewOf(window);
    [view keyDown:keyPress(NSEndFunctionKey)];
    EXPECT_EQ(NSMaxY([view visibleRect]), NSMaxY([view bounds]));
    EXPECT_GT(NSMinY([view visibleRect]), 3000);
    [view keyDown:keyPress(NSHomeFunctionKey)];
    EXPECT_EQ(NSMinY([view visibleRect]), 0);
    [window close];
}

TEST_F(Guide, ArrowsSpaceAndPageKeysScroll) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    NSTextView* const view = viewOf(window);
    const auto top = [&] { return NSMinY([view visibleRect]); };
    [view keyDown:keyPress(NSDownArrowFunctionKey)];
    const CGFloat line = top();
    EXPECT_GT(line, 0);
    [view keyDown:keyPress(NSUpArrowFunctionKey)];
    EXPECT_EQ(top(), 0);
    for (const unichar key : std::initializer_list<unichar>{NSPageDownFunctionKey, ' '}) {
        [view keyDown:keyPress(key)];
        EXPECT_GT(top(), 5 * line);
        EXPECT_LT(top(), NSHeight([view visibleRect]));
        [view keyDown:keyPress(NSPageUpFunctionKey)];
        EXPECT_EQ(top(), 0);
    }
    [window close];
}

// Which stands out as what is selected.
TEST_F(Guide, TabGoesFromLinkToLinkAndReturnFollowsOne) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    NSTextView* const view = viewOf(window);
    const auto selectedLink = [&] {
        const NSRange range = [view selectedRange];
        if (range.length == 0) return std::string();
        NSString* const link = [[view textStorage] attribute:NSLinkAttributeName
                                                     atIndex:range.location
                                              effectiveRange:NULL];
        return std::string(link ? [link UTF8String] : "");
    };
    const auto press = [&](unichar key) { [view keyDown:keyPress(key)]; };
    press(u'\t');
    const std::string first = selectedLink();
    EXPECT_NE(first, "");
    press(u'\t');
    const std::string second = selectedLink();
    EXPECT_NE(second, "");
    EXPECT_NE(second, first);
    [view keyDown:keyPress(25, NSShiftKeyMask)];
    EXPECT_EQ(selectedLink(), first);
    [view keyDown:keyPress(25, NSShiftKeyMask)];
    const std::string last = selectedLink();
    EXPECT_NE(last, first);
    press(u'\t');
    EXPECT_EQ(selectedLink(), first) << "behind the last one comes the first";
    EXPECT_LT(NSMinY([view visibleRect]), NSHeight([view visibleRect]));
    press(u'\t');
    press(u'\r');
    NSString* const title = [@(second.c_str()) stringByReplacingOccurrencesOfString:@"-" withString:@" "];
    const NSRange heading = [[view string] rangeOfString:[NSString stringWithFormat:@"\n%@\n", title]
                                                 options:NSCaseInsensitiveSearch];
    const NSRange glyph =
        [[view layoutManager] glyphRangeForCharacterRange:NSMakeRange(heading.location + 1, 1)
                                     actualCharacterRange:NULL];
    const NSRect line = [[view layoutManager] lineFragmentRectForGlyphAtIndex:glyph.location
                                                               effectiveRange:NULL];
    EXPECT_TRUE(NSIntersectsRect([view visibleRect], line));
    EXPECT_GT(NSMinY([view visibleRect]), 0);
    [window close];
}

// A press on a character that is in sight.
void clickOn(NSTextView* view, NSUInteger character) {
    NSLayoutManager* const layout = [view layoutManager];
    const NSRange glyph = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                         actualCharacterRange:NULL];
    const NSRect place = [layout boundingRectForGlyphRange:glyph inTextContainer:[view textContainer]];
    const NSPoint origin = [view textContainerOrigin];
    const NSPoint middle = NSMakePoint(NSMidX(place) + origin.x, NSMidY(place) + origin.y);
    [view mouseDown:[NSEvent mouseEventWithType:NSLeftMouseDown
                                       location:[view convertPoint:middle toView:nil]
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:[[view window] windowNumber]
                                        context:nil
                                    eventNumber:0
                                     clickCount:1
                                       pressure:0]];
}

TEST_F(Guide, AClickOnALinkGoesToItsSection) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    NSTextView* const view = viewOf(window);
    NSAttributedString* const text = [view textStorage];
    std::set<std::string> sections;
    NSRange run = {0, 0};
    for (NSUInteger i = 0; i < [text length]; i = NSMaxRange(run)) {
        NSString* const link = [text attribute:NSLinkAttributeName atIndex:i effectiveRange:&run];
        if (!link) continue;
        const NSRange place = [[view layoutManager] glyphRangeForCharacterRange:NSMakeRange(i, 1)
                                                           actualCharacterRange:NULL];
        const NSRect above = [[view layoutManager] lineFragmentRectForGlyphAtIndex:place.location
                                                                    effectiveRange:NULL];
        [view scrollPoint:NSMakePoint(0, std::max<CGFloat>(NSMinY(above) - 50, 0))];
        clickOn(view, i);
        const NSRect sight = [view visibleRect];
        EXPECT_GT(NSMinY(sight), 0) << [link UTF8String] << " is no section";
        // The heading stands at the top, unless the text ends too soon behind it.
        NSString* const name = [link stringByReplacingOccurrencesOfString:@"-" withString:@" "];
        const NSRange heading = [[text string] rangeOfString:[NSString stringWithFormat:@"\n%@\n", name]
                                                     options:NSCaseInsensitiveSearch];
        ASSERT_NE(heading.location, static_cast<NSUInteger>(NSNotFound)) << [name UTF8String];
        const NSRange glyph =
            [[view layoutManager] glyphRangeForCharacterRange:NSMakeRange(heading.location + 1, 1)
                                         actualCharacterRange:NULL];
        const NSRect line = [[view layoutManager] lineFragmentRectForGlyphAtIndex:glyph.location
                                                                   effectiveRange:NULL];
        const CGFloat y = NSMinY(line) + [view textContainerOrigin].y;
        EXPECT_GE(y, NSMinY(sight)) << [name UTF8String];
        const bool isAtEnd = NSMaxY(sight) == NSMaxY([view bounds]);
        EXPECT_LT(y, isAtEnd ? NSMaxY(sight) : NSMinY(sight) + 40) << [name UTF8String];
        sections.insert([link UTF8String]);
    }
    std::ifstream guide(TALLYQUILL_GUIDE);
    size_t headings = 0;
    for (std::string line; std::getline(guide, line);) headings += line.rfind("## ", 0) == 0;
    EXPECT_EQ(sections.size(), headings) << "every section is among the contents";
    [window close];
}

TEST_F(Guide, ItsWindowDoesNotKeepTheProgramRunning) {
    NSWindow* const window = shownGuide();
    ASSERT_NE(window, nil);
    EXPECT_FALSE([window canBecomeMainWindow]);
    EXPECT_TRUE([window canBecomeKeyWindow]);
    EXPECT_FALSE([window hidesOnDeactivate]);
    EXPECT_FALSE([window isExcludedFromWindowsMenu]);
    [window close];
}

TEST_F(Guide, OurGuideIsLaidOutWithoutLeftovers) {
    std::ifstream file(TALLYQUILL_GUIDE);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    ASSERT_GT(bytes.str().size(), 1000U);
    NSAttributedString* const text = LaidOut(bytes.str());
    ASSERT_GT([text length], 1000U);
    NSUInteger i = 0;
    while (i < [text length]) {
        NSRange run = {0, 0};
        NSFont* const font = [text attribute:NSFontAttributeName atIndex:i effectiveRange:&run];
        ASSERT_NE(font, nil);
        const std::string part = [[[text string] substringWithRange:run] UTF8String];
        i = NSMaxRange(run);
        if (IsCode(font)) continue; // code may hold anything
        for (const char* const mark : {"**", "`", "](", "|", "\x01"}) {
            EXPECT_EQ(part.find(mark), std::string::npos) << part;
        }
        EXPECT_NE(part.rfind("# ", 0), 0U) << part;
        EXPECT_NE(part.rfind("- ", 0), 0U) << part;
    }
}

// GNUstep has no interface for them: the window is silent, and a person must not have to find that out.
TEST_F(Guide, SaysThatScreenReadersReadTheTerminal) {
    std::ifstream guide(TALLYQUILL_GUIDE);
    std::string text;
    for (std::string line; std::getline(guide, line);) text += line + " ";
    const size_t place = text.find("For screen readers take the terminal's `tallyquill`");
    ASSERT_NE(place, std::string::npos);
    EXPECT_NE(text.find("because GNUstep", place), std::string::npos);
}

} // namespace
