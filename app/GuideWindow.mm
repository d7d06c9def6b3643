// SPDX-License-Identifier: MIT
#import "GuideWindow.h"

#import "ZqScroller.h"

static const CGFloat TEXT_SIZE_POINTS = 13;
static const CGFloat MARGIN = 16;
static const CGFloat COLUMN = 196;

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

// The rows of a table: the second and third columns begin at tab stops.
static NSParagraphStyle* row(NSUInteger cells) {
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    NSMutableArray* const stops = [NSMutableArray array];
    const CGFloat columns[] = {COLUMN, 2 * COLUMN - 20};
    for (const CGFloat column : columns) {
        [stops addObject:[[[NSTextTab alloc] initWithType:NSLeftTabStopType location:column] autorelease]];
    }
    [style setTabStops:stops];
    [style setHeadIndent:cells > 2 ? columns[1] : columns[0]];
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

// Where the next "[" is that stands in no `code`, from `start` on.
static NSUInteger bracket(NSString* line, NSUInteger start) {
    bool isCode = false;
    for (NSUInteger i = start; i < [line length]; i++) {
        const unichar c = [line characterAtIndex:i];
        if (c == '`') isCode = !isCode;
        if (c == '[' && !isCode) return i;
    }
    return NSNotFound;
}

// Leaves of "![x](y)" nothing and of "[x](y)" the x.
static NSString* withoutLinks(NSString* line) {
    NSMutableString* const text = [NSMutableString string];
    NSUInteger i = 0;
    while (i < [line length]) {
        const NSRange open = NSMakeRange(bracket(line, i), 1);
        const NSRange middle =
            open.location == NSNotFound
                ? open
                : [line rangeOfString:@"]("
                              options:0
                                range:NSMakeRange(open.location, [line length] - open.location)];
        const NSRange close =
            middle.location == NSNotFound
                ? middle
                : [line rangeOfString:@")"
                              options:0
                                range:NSMakeRange(middle.location, [line length] - middle.location)];
        if (close.location == NSNotFound) break;
        const bool isImage = open.location > i && [line characterAtIndex:open.location - 1] == '!';
        [text appendString:[line substringWithRange:NSMakeRange(i, open.location - i - (isImage ? 1 : 0))]];
        const NSUInteger start = open.location + 1;
        if (!isImage)
            [text appendString:[line substringWithRange:NSMakeRange(start, middle.location - start)]];
        i = close.location + 1;
    }
    [text appendString:[line substringFromIndex:i]];
    return text;
}

// Appends a line, turning `code` and **strong** into their looks.
static void appendLine(NSMutableAttributedString* out, NSString* line, NSParagraphStyle* style) {
    NSFont* const plain = [NSFont systemFontOfSize:TEXT_SIZE_POINTS];
    NSFont* const strong = [NSFont boldSystemFontOfSize:TEXT_SIZE_POINTS];
    NSFont* const mono = [NSFont userFixedPitchFontOfSize:TEXT_SIZE_POINTS];
    NSArray* const pieces = [withoutLinks(line) componentsSeparatedByString:@"`"];
    for (NSUInteger i = 0; i < [pieces count]; i++) {
        if (i % 2 == 1) {
            append(out, [pieces objectAtIndex:i], attributes(mono, codeColor(), style));
            continue;
        }
        NSArray* const parts = [[pieces objectAtIndex:i] componentsSeparatedByString:@"**"];
        for (NSUInteger j = 0; j < [parts count]; j++) {
            append(out, [parts objectAtIndex:j], attributes(j % 2 == 1 ? strong : plain, ink(0.86), style));
        }
    }
    append(out, @"\n", attributes(plain, ink(0.86), style));
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

// A row of a table: the first cell, and behind it the others.
static void appendRow(NSMutableAttributedString* out, NSString* line) {
    if (isRule(line)) return;
    NSString* const marked = [line stringByReplacingOccurrencesOfString:@"\\|" withString:@"\x01"];
    NSMutableArray* const cells = [NSMutableArray array];
    NSArray* const pieces = [marked componentsSeparatedByString:@"|"];
    for (NSUInteger i = 1; i + 1 < [pieces count]; i++) {
        NSString* const cell = trimmed([pieces objectAtIndex:i]);
        [cells addObject:[cell stringByReplacingOccurrencesOfString:@"\x01" withString:@"|"]];
    }
    while ([cells count] > 0 && [[cells lastObject] isEqualToString:@""]) [cells removeLastObject];
    if ([cells count] == 0) return;
    appendLine(out, [cells componentsJoinedByString:@"\t"], row([cells count]));
}

static void appendHeading(NSMutableAttributedString* out, NSString* line, NSUInteger level) {
    const CGFloat sizes[] = {20, 16, 14};
    NSFont* const font = [NSFont boldSystemFontOfSize:sizes[level - 1]];
    appendSpace(out);
    append(out, [[line substringFromIndex:level + 1] stringByAppendingString:@"\n"],
           attributes(font, ink(1), paragraph(0)));
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
        if ([line length] == 0 && !isCode) appendSpace(out);
        if (isFence) {
            isCode = !isCode;
        } else if (isCode) {
            append(out, [line stringByAppendingString:@"\n"], attributes(mono, codeColor(), paragraph(0)));
        } else if (level > 0) {
            appendHeading(out, line, level);
        } else if (isRow) {
            appendRow(out, line);
        } else if (isPlain) {
            if ([text length] > 0) [text appendString:@" "];
            [text appendString:isItem ? [@"\u2022 " stringByAppendingString:[line substringFromIndex:2]]
                                      : line];
        }
    }
    return out;
}

// --- The window ---

// The narrowest window in which the last column of a table has room: GNUstep lays out no text at all behind a tab
// stop that lies beyond the edge.
static const NSSize SMALLEST_CONTENT = {2 * COLUMN + 220, 200};

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
    NSTextView* const view =
        [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, inside.width, inside.height)] autorelease];
    [view setMinSize:inside];
    [view setMaxSize:NSMakeSize(1e7, 1e7)];
    [view setVerticallyResizable:YES];
    [view setAutoresizingMask:NSViewWidthSizable];
    [[view textContainer] setWidthTracksTextView:YES];
    [view setTextContainerInset:NSMakeSize(MARGIN, MARGIN)];
    [view setBackgroundColor:ink(0.11)];
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
