// SPDX-License-Identifier: MIT
#import "Interface.h"

#import "Controls.h"
#import "Platform.h"

#include <algorithm>
#include <cmath>
#include <vector>

static const CGFloat TEXT_SIZE_POINTS = 13;
static const CGFloat MARGIN = 16;
static const CGFloat COLUMN_GAP = 20;

// What a heading is known by, as a link names it: "how-answers-look".
static NSString* const ANCHOR = @"GuideAnchor";

static NSDictionary* codeLook() {
    return textLook([NSFont userFixedPitchFontOfSize:TEXT_SIZE_POINTS], [NSColor colorWithCalibratedRed:0.35
                                                                                                  green:0.85
                                                                                                   blue:0.85
                                                                                                  alpha:1]);
}

static NSDictionary* plainLook(CGFloat indent, NSArray* tabStops) {
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setHeadIndent:indent];
    if (tabStops) [style setTabStops:tabStops];
    NSMutableDictionary* const look = textLook([NSFont systemFontOfSize:TEXT_SIZE_POINTS], gray(0.86));
    [look setObject:style forKey:NSParagraphStyleAttributeName];
    return look;
}

static void append(NSMutableAttributedString* out, NSString* text, NSDictionary* look) {
    [out appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                                 attributes:look] autorelease]];
}

// Appends a part of a line, turning `code`, **strong** and [links](#to-sections) into their looks. Of other
// links the text alone stays, and of ![images](y) nothing.
static void appendPart(NSMutableAttributedString* out, NSString* line, NSDictionary* look) {
    enum { CODE = 1, STRONG, LINK_TEXT, LINK_TARGET };
    NSString* const marks =
        @"`([^`]*)`|\\*\\*(.+?)\\*\\*|!\\[[^\\]]*\\]\\([^)]*\\)|\\[([^\\]]*)\\]\\(([^)]*)\\)";
    NSRegularExpression* const finder = [NSRegularExpression regularExpressionWithPattern:marks
                                                                                  options:0
                                                                                    error:NULL];
    const NSRange all = NSMakeRange(0, [line length]);
    NSUInteger place = 0;
    for (NSTextCheckingResult* const match in [finder matchesInString:line options:0 range:all]) {
        const auto part = [&](NSUInteger group) -> NSString* {
            const NSRange range = [match rangeAtIndex:group];
            return range.location < all.length ? [line substringWithRange:range] : nil;
        };
        append(out, [line substringWithRange:NSMakeRange(place, [match range].location - place)], look);
        place = NSMaxRange([match range]);
        NSMutableDictionary* const inner = [NSMutableDictionary dictionaryWithDictionary:look];
        if (part(CODE)) {
            [inner addEntriesFromDictionary:codeLook()];
            append(out, part(CODE), inner);
        } else if (part(STRONG)) {
            [inner setObject:[NSFont boldSystemFontOfSize:TEXT_SIZE_POINTS] forKey:NSFontAttributeName];
            appendPart(out, part(STRONG), inner);
        } else if (part(LINK_TEXT)) {
            if ([part(LINK_TARGET) hasPrefix:@"#"])
                [inner setObject:[part(LINK_TARGET) substringFromIndex:1] forKey:NSLinkAttributeName];
            appendPart(out, part(LINK_TEXT), inner);
        }
    }
    append(out, [line substringFromIndex:place], look);
}

static void appendLine(NSMutableAttributedString* out, NSString* line, NSDictionary* look) {
    appendPart(out, line, look);
    append(out, @"\n", look);
}

// A little space between what stands above and what follows.
static void appendSpace(NSMutableAttributedString* out) {
    append(out, @"\n", textLook([NSFont systemFontOfSize:6], gray(1)));
}

static NSString* trimmed(NSString* text) {
    return [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
}

// The cells of a row, without empty ones at its end. None of a line that is but a rule.
static NSArray* cellsOf(NSString* line) {
    NSMutableArray* const cells = [NSMutableArray array];
    NSCharacterSet* const others = [[NSCharacterSet characterSetWithCharactersInString:@"|-: "] invertedSet];
    if ([line rangeOfCharacterFromSet:others].location == NSNotFound) return cells;
    NSString* const marked = [line stringByReplacingOccurrencesOfString:@"\\|" withString:@"\x01"];
    NSArray* const pieces = [marked componentsSeparatedByString:@"|"];
    for (NSUInteger i = 1; i + 1 < [pieces count]; ++i) {
        NSString* const cell = trimmed([pieces objectAtIndex:i]);
        [cells addObject:[cell stringByReplacingOccurrencesOfString:@"\x01" withString:@"|"]];
    }
    while ([cells count] > 0 && [[cells lastObject] isEqualToString:@""]) [cells removeLastObject];
    return cells;
}

static CGFloat widthOf(NSString* cell) {
    NSMutableAttributedString* const text = [[[NSMutableAttributedString alloc] init] autorelease];
    appendPart(text, cell, plainLook(0, nil));
    return std::ceil([text size].width);
}

// The rows of a table, each a paragraph with its cells at tab stops. A column is as wide as the widest cell
// that has another one behind it.
static void appendTable(NSMutableAttributedString* out, NSArray* rows) {
    std::vector<CGFloat> widths;
    for (NSArray* const cells in rows) {
        for (NSUInteger i = 0; i + 1 < [cells count]; ++i) {
            if (widths.size() <= i) widths.push_back(0);
            widths[i] = std::max(widths[i], widthOf([cells objectAtIndex:i]));
        }
    }
    NSMutableArray* const stops = [NSMutableArray array];
    CGFloat stop = 0;
    for (const CGFloat width : widths) {
        stop += width + COLUMN_GAP;
        [stops addObject:[[[NSTextTab alloc] initWithType:NSLeftTabStopType location:stop] autorelease]];
    }
    // The last column alone may be too long for its line.
    NSDictionary* const look = plainLook(stop, stops);
    for (NSArray* const cells in rows) appendLine(out, [cells componentsJoinedByString:@"\t"], look);
}

// Known by its text: "How answers look" by "how-answers-look".
static void appendHeading(NSMutableAttributedString* out, NSString* heading, NSUInteger level) {
    const CGFloat sizes[] = {20, 16, 14};
    NSMutableDictionary* const look = textLook([NSFont boldSystemFontOfSize:sizes[level - 1]], gray(1));
    NSString* const words = [heading lowercaseString];
    [look setObject:[words stringByReplacingOccurrencesOfString:@" " withString:@"-"] forKey:ANCHOR];
    appendSpace(out);
    append(out, [heading stringByAppendingString:@"\n"], look);
}

// 1 to 3, or 0 for a line that is no heading.
static NSUInteger headingLevel(NSString* line) {
    const NSUInteger level = [line rangeOfString:@" "].location;
    const bool isHeading = level >= 1 && level <= 3 && [@"### " hasSuffix:[line substringToIndex:level + 1]];
    return isHeading ? level : 0;
}

// Appends what was collected, the lines of a paragraph or the rows of a table, and empties it.
static void appendCollected(NSMutableAttributedString* out, NSMutableString* text, NSMutableArray* rows) {
    if ([text length] > 0) appendLine(out, text, plainLook([text hasPrefix:@"\u2022"] ? MARGIN : 0, nil));
    if ([rows count] > 0) appendTable(out, rows);
    [text setString:@""];
    [rows removeAllObjects];
}

NSAttributedString* guideText(NSString* markdown) {
    NSMutableAttributedString* const out = [[[NSMutableAttributedString alloc] init] autorelease];
    NSMutableString* const text = [NSMutableString string]; // of one paragraph
    NSMutableArray* const rows = [NSMutableArray array];    // of one table
    bool isCode = false;
    for (NSString* const whole in [markdown componentsSeparatedByString:@"\n"]) {
        NSString* const line = isCode ? whole : trimmed(whole);
        const NSUInteger level = headingLevel(line);
        const bool isItem = [line hasPrefix:@"- "], isRow = [line hasPrefix:@"|"];
        const bool goesOn = isRow ? [text length] == 0 : [rows count] == 0 && !isItem && level == 0;
        if ([line hasPrefix:@"```"] || [line length] == 0 || !goesOn) appendCollected(out, text, rows);
        if ([line hasPrefix:@"```"]) {
            isCode = !isCode;
        } else if (isCode) {
            append(out, [line stringByAppendingString:@"\n"], codeLook());
        } else if ([line length] == 0) {
            appendSpace(out);
        } else if (level > 0) {
            appendHeading(out, [line substringFromIndex:level + 1], level);
        } else if (isRow) {
            if ([cellsOf(line) count] > 0) [rows addObject:cellsOf(line)];
        } else {
            if ([text length] > 0) [text appendString:@" "];
            [text appendString:isItem ? [@"\u2022 " stringByAppendingString:[line substringFromIndex:2]]
                                      : line];
        }
    }
    appendCollected(out, text, rows);
    appendSpace(out);
    return out;
}

// --- The window ---

// The narrowest window in which the last column of a table has room: GNUstep lays out no text at all behind a
// tab stop that lies beyond the edge.
static const NSSize SMALLEST_CONTENT = {612, 200};

@interface GuideView : NSTextView
@end

@implementation GuideView

- (void)keyDown:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    if (key == KEY_HOME)
        [self scrollPoint:NSZeroPoint];
    else if (key == KEY_END)
        [self scrollPoint:NSMakePoint(0, NSMaxY([self bounds]))];
    else
        [super keyDown:event];
}

- (NSRect)inkOf:(NSUInteger)character {
    NSLayoutManager* const layout = [self layoutManager];
    const NSRange glyph = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                         actualCharacterRange:NULL];
    const NSRect ink = [layout boundingRectForGlyphRange:glyph inTextContainer:[self textContainer]];
    return NSOffsetRect(ink, [self textContainerOrigin].x, [self textContainerOrigin].y);
}

// GNUstep's text view looks for no links.
- (void)mouseDown:(NSEvent*)event {
    const NSPoint place = [self convertPoint:[event locationInWindow] fromView:nil];
    const NSUInteger index = characterAt(self, place).character;
    id link = nil;
    if (index < [[self textStorage] length] && NSPointInRect(place, [self inkOf:index]))
        link = [[self textStorage] attribute:NSLinkAttributeName atIndex:index effectiveRange:NULL];
    if (link)
        [self clickedOnLink:link atIndex:index];
    else
        [super mouseDown:event];
}

// To the heading of that name, at the top of what is in sight.
- (void)clickedOnLink:(id)link atIndex:(NSUInteger)index {
    NSTextStorage* const text = [self textStorage];
    NSRange run = {0, 0};
    for (NSUInteger i = 0; i < [text length]; i = NSMaxRange(run)) {
        if (![link isEqual:[text attribute:ANCHOR atIndex:i effectiveRange:&run]]) continue;
        [self scrollPoint:NSMakePoint(0, topOfLine(self, run.location) - MARGIN / 2)];
        return;
    }
}

@end

static GuideView* buildView(NSAttributedString* text) {
    GuideView* const view = [[[GuideView alloc] initWithFrame:NSZeroRect] autorelease];
    [view setTextContainerInset:NSMakeSize(MARGIN, MARGIN)];
    [view setBackgroundColor:gray(0.11)];
    [view setLinkTextAttributes:@{
        NSForegroundColorAttributeName : [codeLook() objectForKey:NSForegroundColorAttributeName],
        NSUnderlineStyleAttributeName : @(NSUnderlineStyleSingle),
        NSCursorAttributeName : [NSCursor pointingHandCursor]
    }];
    [[view textStorage] setAttributedString:text];
    [view setEditable:NO];
    return view;
}

NSPanel* buildGuideWindow() {
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"guide" ofType:@"md"];
    NSString* const text =
        path ? [NSString stringWithContentsOfFile:path encoding:NSUTF8StringEncoding error:NULL] : nil;
    if (!text) return nil;
    const NSSize size = {720, 560};
    NSPanel* const window = makePanel([NSPanel class], @"Tallyquill Guide", size,
                                      NSMiniaturizableWindowMask | NSResizableWindowMask);
    [window setExcludedFromWindowsMenu:NO];
    [window setContentMinSize:SMALLEST_CONTENT];
    NSScrollView* const scroll =
        [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)] autorelease];
    scrollText(scroll, buildView(guideText(text)));
    [window setContentView:scroll];
    [window setInitialFirstResponder:[scroll documentView]];
    return window;
}
