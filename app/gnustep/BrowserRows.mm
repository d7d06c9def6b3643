// SPDX-License-Identifier: MIT
//
// The rows of the panels for files and fonts. GNUstep's own lie on the color of the window, not on that of
// the list, have an arrow of single pixels and are as high as the letters.
#import "Controls.h"
#import "Exchange.h"
#import "NumberField.h"

#include <algorithm>
#include <cmath>

static const CGFloat ROW_GAP = 4; // between the parts of a row
static const CGFloat ARROW = 12;  // the room for an arrow
static const CGFloat ROW_AIR = 2; // above and below the letters

// That of a folder, at the right.
static void drawArrow(NSRect row, NSColor* color) {
    const NSPoint tip = NSMakePoint(NSMaxX(row) - ROW_GAP - 0.5, std::floor(NSMidY(row)) + 0.5);
    NSBezierPath* const arrow = [NSBezierPath bezierPath];
    [arrow moveToPoint:NSMakePoint(tip.x - 3, tip.y - 3)];
    [arrow lineToPoint:tip];
    [arrow lineToPoint:NSMakePoint(tip.x - 3, tip.y + 3)];
    [arrow setLineWidth:1.3];
    [color set];
    [arrow stroke];
}

@implementation NSBrowserCell (Rows)

// Whole points: between two rows there would be a seam.
- (NSSize)cellSize {
    NSSize size = [super cellSize];
    size.height = std::ceil([[self font] ascender] - [[self font] descender]) + 2 * ROW_AIR;
    return size;
}

// In place of GNUstep's own.
- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view {
    const bool isChosen = [self isHighlighted] || [self state] != NSOffState;
    [isChosen ? [NSColor selectedControlColor] : [NSColor textBackgroundColor] set];
    NSRectFill(frame);
    NSColor* const color = [self isEnabled] ? [NSColor controlTextColor] : [NSColor disabledControlTextColor];
    NSRect room = NSInsetRect(frame, ROW_GAP / 2, 0);
    if (![self isLeaf]) {
        drawArrow(frame, color);
        room.size.width -= ARROW;
    }
    if (NSImage* const image = [self image]) {
        const NSSize size = [image size];
        const CGFloat y = std::floor(NSMidY(frame) - size.height / 2);
        [image drawInRect:NSMakeRect(NSMinX(room), y, size.width, size.height)
                  fromRect:NSZeroRect
                 operation:NSCompositeSourceOver
                  fraction:1
            respectFlipped:YES
                     hints:nil];
        room.origin.x += size.width + ROW_GAP;
        room.size.width -= size.width + ROW_GAP;
    }
    NSDictionary* const look = textLook([self font], color);
    NSString* const text = headThatFits([self stringValue], @"", NSWidth(room), look);
    const CGFloat height = [text sizeWithAttributes:look].height;
    [text drawAtPoint:NSMakePoint(NSMinX(room), std::floor(NSMidY(frame) - height / 2)) withAttributes:look];
}

@end

// A list ends with a whole row; what is left of its height is below.
@implementation NSScrollView (Rows)

+ (void)load {
    exchange(self, @selector(tile), @selector(tileWholeRows));
}

// Under this name is GNUstep's own.
- (void)tileWholeRows {
    [self tileWholeRows];
    NSMatrix* const rows = [self documentView];
    if (![[self superview] isKindOfClass:[NSBrowser class]] || ![rows isKindOfClass:[NSMatrix class]]) return;
    NSRect frame = [[self contentView] frame];
    const CGFloat rest = std::fmod(NSHeight(frame), std::max<CGFloat>(1, [rows cellSize].height));
    if (rest == NSHeight(frame)) return; // it is lower than a row
    frame.size.height -= rest;
    if (![self isFlipped]) frame.origin.y += rest;
    [[self contentView] setFrame:frame];
}

@end
