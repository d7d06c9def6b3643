// SPDX-License-Identifier: MIT
#import "Interface.h"

#import "Controls.h"
#import "Platform.h"

#include <algorithm>
#include <cmath>
#include <vector>

static const CGFloat TEXT_SIZE_POINTS = 13;
static const CGFloat TEXT_MARGIN = 16;
static const CGFloat COLUMN_GAP = 20;

// What a heading is known by, as a link names it: "how-answers-look".
static NSString* const ANCHOR = @"GuideAnchor";

// The colors are the system's, which follow the look.
static NSDictionary* codeLook() {
    return textLook([NSFont userFixedPitchFontOfSize:TEXT_SIZE_POINTS], platformLinkColor());
}

static NSDictionary* plainLook(CGFloat indent, NSArray* tabStops) {
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setHeadIndent:indent];
    if (tabStops) [style setTabStops:tabStops];
    NSMutableDictionary* const look =
        textLook([NSFont systemFontOfSize:TEXT_SIZE_POINTS], [NSColor textColor]);
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
    append(out, @"\n", textLook([NSFont systemFontOfSize:6], [NSColor textColor]));
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
    NSMutableDictionary* const look =
        textLook([NSFont boldSystemFontOfSize:sizes[level - 1]], [NSColor textColor]);
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
    if ([text length] > 0)
        appendLine(out, text, plainLook([text hasPrefix:@"\u2022"] ? TEXT_MARGIN : 0, nil));
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

static const CGFloat LINE_STEP = 48; // points that an arrow scrolls

// Tab goes from link to link, and Return follows one.
@interface GuideView : NSTextView
@end

@implementation GuideView

- (void)keyDown:(NSEvent*)event {
    const CGFloat page = NSHeight([self visibleRect]) - LINE_STEP;
    const bool isBack = ([event modifierFlags] & NSShiftKeyMask) != 0;
    switch (platformKeyCode(event)) {
    case KEY_HOME: [self scrollPoint:NSZeroPoint]; return;
    case KEY_END: [self scrollPoint:NSMakePoint(0, NSMaxY([self bounds]))]; return;
    case KEY_UP: [self scrollBy:-LINE_STEP]; return;
    case KEY_DOWN: [self scrollBy:LINE_STEP]; return;
    case KEY_TAB: [self selectLink:isBack]; return;
    case KEY_RETURN:
    case KEY_ENTER: [self followSelectedLink]; return;
    default: break;
    }
    NSString* const plain = [event charactersIgnoringModifiers];
    switch ([plain length] > 0 ? [plain characterAtIndex:0] : 0) {
    case ' ': [self scrollBy:isBack ? -page : page]; return;
    case NSPageUpFunctionKey: [self scrollBy:-page]; return;
    case NSPageDownFunctionKey: [self scrollBy:page]; return;
    default: [super keyDown:event];
    }
}

- (void)scrollBy:(CGFloat)points {
    [self scrollPoint:NSMakePoint(0, NSMinY([self visibleRect]) + points)];
}

- (id)linkAt:(NSUInteger)character run:(NSRange*)run {
    return [[self textStorage] attribute:NSLinkAttributeName
                                 atIndex:character
                   longestEffectiveRange:run
                                 inRange:NSMakeRange(0, [[self textStorage] length])];
}

// Selects the link behind the selection, or the one before it, and beyond the last one the first.
- (void)selectLink:(bool)isBefore {
    std::vector<NSRange> links;
    NSRange run = {0, 0};
    for (NSUInteger i = 0; i < [[self textStorage] length]; i = NSMaxRange(run)) {
        if ([self linkAt:i run:&run]) links.push_back(run);
    }
    if (links.empty()) return;
    const NSRange from = [self selectedRange];
    const auto isBehind = [](const NSRange& one, const NSRange& other) {
        return one.location < other.location;
    };
    auto next = isBefore ? std::lower_bound(links.begin(), links.end(), from, isBehind)
                         : std::upper_bound(links.begin(), links.end(), from, isBehind);
    if (!isBefore && from.length == 0 && from.location == 0) next = links.begin();
    if (isBefore && next == links.begin()) next = links.end();
    if (isBefore) --next;
    if (next == links.end()) next = links.begin();
    [self setSelectedRange:*next];
    [self scrollRangeToVisible:*next];
}

- (void)followSelectedLink {
    const NSRange selected = [self selectedRange];
    const id link = selected.length > 0 ? [self linkAt:selected.location run:NULL] : nil;
    if (link) [self clickedOnLink:link atIndex:selected.location];
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
        [self scrollPoint:NSMakePoint(0, topOfLine(self, run.location) - TEXT_MARGIN / 2)];
        return;
    }
}

@end

static GuideView* buildView(NSAttributedString* text) {
    GuideView* const view = [[[GuideView alloc] initWithFrame:NSZeroRect] autorelease];
    [view setTextContainerInset:NSMakeSize(TEXT_MARGIN, TEXT_MARGIN)];
    [view setBackgroundColor:[NSColor textBackgroundColor]];
    [view setLinkTextAttributes:@{
        NSForegroundColorAttributeName : platformLinkColor(),
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
