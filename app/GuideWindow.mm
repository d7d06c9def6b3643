// SPDX-License-Identifier: MIT
#import "GuideWindow.h"

#import "Platform.h"
#import "ZqScroller.h"

#include <algorithm>
#include <cmath>
#include <vector>

static const CGFloat TEXT_SIZE_POINTS = 13;
static const CGFloat MARGIN = 16;
static const CGFloat COLUMN_GAP = 20;

// What a heading is known by, as a link names it: "how-answers-look".
static NSString* const ANCHOR = @"GuideAnchor";

static NSColor* ink(CGFloat white) {
    return [NSColor colorWithCalibratedWhite:white alpha:1];
}

static NSColor* codeColor() {
    return [NSColor colorWithCalibratedRed:0.35 green:0.85 blue:0.85 alpha:1];
}

static NSParagraphStyle* paragraph(CGFloat indent) {
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setHeadIndent:indent];
    return style;
}

static NSDictionary* attributes(NSFont* font, NSColor* color, NSParagraphStyle* style) {
    return [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, color,
                                                      NSForegroundColorAttributeName, style,
                                                      NSParagraphStyleAttributeName, nil];
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
            [inner setObject:[NSFont userFixedPitchFontOfSize:TEXT_SIZE_POINTS] forKey:NSFontAttributeName];
            [inner setObject:codeColor() forKey:NSForegroundColorAttributeName];
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

static NSDictionary* plainLook(NSParagraphStyle* style) {
    return attributes([NSFont systemFontOfSize:TEXT_SIZE_POINTS], ink(0.86), style);
}

static void appendLine(NSMutableAttributedString* out, NSString* line, NSParagraphStyle* style) {
    appendPart(out, line, plainLook(style));
    append(out, @"\n", plainLook(style));
}

// A little space between what stands above and what follows.
static void appendSpace(NSMutableAttributedString* out) {
    append(out, @"\n", attributes([NSFont systemFontOfSize:6], ink(1), paragraph(0)));
}

static bool isRule(NSString* line) {
    NSCharacterSet* const others = [[NSCharacterSet characterSetWithCharactersInString:@"|-: "] invertedSet];
    return [line rangeOfCharacterFromSet:others].location == NSNotFound;
}

static NSString* trimmed(NSString* text) {
    return [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
}

// The cells of a row, without empty ones at its end.
static NSArray* cellsOf(NSString* line) {
    NSString* const marked = [line stringByReplacingOccurrencesOfString:@"\\|" withString:@"\x01"];
    NSMutableArray* const cells = [NSMutableArray array];
    NSArray* const pieces = [marked componentsSeparatedByString:@"|"];
    for (NSUInteger i = 1; i + 1 < [pieces count]; i++) {
        NSString* const cell = trimmed([pieces objectAtIndex:i]);
        [cells addObject:[cell stringByReplacingOccurrencesOfString:@"\x01" withString:@"|"]];
    }
    while ([cells count] > 0 && [[cells lastObject] isEqualToString:@""]) [cells removeLastObject];
    return cells;
}

static CGFloat widthOf(NSString* cell) {
    NSMutableAttributedString* const text = [[[NSMutableAttributedString alloc] init] autorelease];
    appendPart(text, cell, plainLook(paragraph(0)));
    return std::ceil([text size].width);
}

// The rows of a table, each a paragraph with its cells at tab stops. A column is as wide as the widest cell
// that has another one behind it.
static void appendTable(NSMutableAttributedString* out, NSArray* rows) {
    std::vector<CGFloat> widths;
    for (NSArray* const cells in rows) {
        for (NSUInteger i = 0; i + 1 < [cells count]; i++) {
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
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setTabStops:stops];
    [style setHeadIndent:stop]; // the last column alone may be too long for its line
    for (NSArray* const cells in rows) appendLine(out, [cells componentsJoinedByString:@"\t"], style);
}

// "How answers look" is known as "how-answers-look".
static NSString* anchorOf(NSString* heading) {
    return [[heading lowercaseString] stringByReplacingOccurrencesOfString:@" " withString:@"-"];
}

static void appendHeading(NSMutableAttributedString* out, NSString* line, NSUInteger level) {
    const CGFloat sizes[] = {20, 16, 14};
    NSFont* const font = [NSFont boldSystemFontOfSize:sizes[level - 1]];
    NSString* const heading = [line substringFromIndex:level + 1];
    NSMutableDictionary* const look =
        [NSMutableDictionary dictionaryWithDictionary:attributes(font, ink(1), paragraph(0))];
    [look setObject:anchorOf(heading) forKey:ANCHOR];
    appendSpace(out);
    append(out, [heading stringByAppendingString:@"\n"], look);
}

static NSUInteger headingLevel(NSString* line) {
    NSUInteger level = 0;
    while (level < [line length] && [line characterAtIndex:level] == '#') level++;
    const bool isHeading =
        level >= 1 && level <= 3 && [line length] > level && [line characterAtIndex:level] == ' ';
    return isHeading ? level : 0;
}

NSAttributedString* guideText(NSString* markdown) {
    NSMutableAttributedString* const out = [[[NSMutableAttributedString alloc] init] autorelease];
    NSFont* const mono = [NSFont userFixedPitchFontOfSize:TEXT_SIZE_POINTS];
    NSArray* const lines = [markdown componentsSeparatedByString:@"\n"];
    bool isCode = false;
    NSMutableString* const text = [NSMutableString string]; // lines of one paragraph
    NSMutableArray* const rows = [NSMutableArray array];    // of one table
    for (NSUInteger i = 0; i <= [lines count]; i++) {
        NSString* const whole = i < [lines count] ? [lines objectAtIndex:i] : @"";
        NSString* const line = isCode && i < [lines count] ? whole : trimmed(whole);
        const NSUInteger level = headingLevel(line);
        const bool isFence = [line hasPrefix:@"```"];
        const bool isItem = [line hasPrefix:@"- "];
        const bool isRow = [line hasPrefix:@"|"];
        const bool isPlain = !isCode && !isFence && !isRow && level == 0 && [line length] > 0;
        if ((!isPlain || isItem) && [text length] > 0) {
            const bool isListed = [text hasPrefix:@"\u2022"];
            appendLine(out, text, paragraph(isListed ? MARGIN : 0));
            [text setString:@""];
        }
        if ((!isRow || isCode) && [rows count] > 0) {
            appendTable(out, rows);
            [rows removeAllObjects];
        }
        if ([line length] == 0 && !isCode) appendSpace(out);
        if (isFence) {
            isCode = !isCode;
        } else if (isCode) {
            append(out, [line stringByAppendingString:@"\n"], attributes(mono, codeColor(), paragraph(0)));
        } else if (level > 0) {
            appendHeading(out, line, level);
        } else if (isRow) {
            if (!isRule(line) && [cellsOf(line) count] > 0) [rows addObject:cellsOf(line)];
        } else if (isPlain) {
            if ([text length] > 0) [text appendString:@" "];
            [text appendString:isItem ? [@"\u2022 " stringByAppendingString:[line substringFromIndex:2]]
                                      : line];
        }
    }
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

// GNUstep's text view looks for no links.
- (void)mouseDown:(NSEvent*)event {
    const NSPoint place = [self convertPoint:[event locationInWindow] fromView:nil];
    const NSPoint origin = [self textContainerOrigin];
    const NSPoint inText = NSMakePoint(place.x - origin.x, place.y - origin.y);
    NSLayoutManager* const layout = [self layoutManager];
    const NSUInteger glyph = [layout glyphIndexForPoint:inText inTextContainer:[self textContainer]];
    const NSRect ink = [layout boundingRectForGlyphRange:NSMakeRange(glyph, 1)
                                         inTextContainer:[self textContainer]];
    const NSUInteger index =
        [layout characterRangeForGlyphRange:NSMakeRange(glyph, 1) actualGlyphRange:NULL].location;
    const bool isInText = index < [[self textStorage] length] && NSPointInRect(inText, ink);
    const id link =
        isInText ? [[self textStorage] attribute:NSLinkAttributeName atIndex:index effectiveRange:NULL] : nil;
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
        NSLayoutManager* const layout = [self layoutManager];
        const NSRange glyphs = [layout glyphRangeForCharacterRange:run actualCharacterRange:NULL];
        const NSRect place = [layout lineFragmentRectForGlyphAtIndex:glyphs.location effectiveRange:NULL];
        [self scrollPoint:NSMakePoint(0, NSMinY(place) + [self textContainerOrigin].y - MARGIN / 2)];
        return;
    }
}

@end

// A panel, because it is no main window: it does not keep the calculator running once that is closed.
static NSWindow* buildGuideWindow(NSAttributedString* text) {
    const NSRect frame = NSMakeRect(0, 0, 720, 560);
    NSPanel* const window =
        [[NSPanel alloc] initWithContentRect:frame
                                   styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                             NSMiniaturizableWindowMask | NSResizableWindowMask
                                     backing:NSBackingStoreBuffered
                                       defer:YES];
    [window setHidesOnDeactivate:NO];
    [window setExcludedFromWindowsMenu:NO];
    [window setContentMinSize:SMALLEST_CONTENT];
    [window setTitle:@"Tallyquill Guide"];
    [window setReleasedWhenClosed:NO];
    NSScrollView* const scroll = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
    [scroll
        setVerticalScroller:[[[ZqScroller alloc] initWithFrame:NSMakeRect(0, 0, [ZqScroller scrollerWidth],
                                                                          NSHeight(frame))] autorelease]];
    [scroll setHasVerticalScroller:YES];
    [scroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    const NSSize inside = [scroll contentSize];
    GuideView* const view =
        [[[GuideView alloc] initWithFrame:NSMakeRect(0, 0, inside.width, inside.height)] autorelease];
    [view setMinSize:inside];
    [view setMaxSize:NSMakeSize(1e7, 1e7)];
    [view setVerticallyResizable:YES];
    [view setAutoresizingMask:NSViewWidthSizable];
    [[view textContainer] setWidthTracksTextView:YES];
    [view setTextContainerInset:NSMakeSize(MARGIN, MARGIN)];
    [view setBackgroundColor:ink(0.11)];
    [view setLinkTextAttributes:[NSDictionary
                                    dictionaryWithObjectsAndKeys:codeColor(), NSForegroundColorAttributeName,
                                                                 [NSNumber
                                                                     numberWithInt:NSUnderlineStyleSingle],
                                                                 NSUnderlineStyleAttributeName,
                                                                 [NSCursor pointingHandCursor],
                                                                 NSCursorAttributeName, nil]];
    [[view textStorage] setAttributedString:text];
    [view setEditable:NO];
    [scroll setDocumentView:view];
    [window setContentView:scroll];
    [window setInitialFirstResponder:view];
    [window center];
    return window;
}

bool showGuideWindow() {
    static NSWindow* window = nil; // one for as long as the application runs
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"guide" ofType:@"md"];
    if (!path) return false;
    if (!window) {
        NSData* const bytes = [NSData dataWithContentsOfFile:path];
        if (!bytes) return false;
        NSString* const text = [[[NSString alloc] initWithData:bytes
                                                      encoding:NSUTF8StringEncoding] autorelease];
        if (!text) return false;
        window = buildGuideWindow(guideText(text));
    }
    [window makeKeyAndOrderFront:nil];
    return true;
}
