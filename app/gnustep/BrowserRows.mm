// SPDX-License-Identifier: MIT
//
// The rows of the panels for files and fonts. GNUstep's own lie on the color of the window, not on that of
// the list, and have an arrow of single pixels.
#import "Controls.h"
#import "NumberField.h"

#include <cmath>

static const CGFloat ROW_GAP = 4; // between the parts of a row
static const CGFloat ARROW = 12;  // the room for an arrow

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
