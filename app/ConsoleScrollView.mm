// SPDX-License-Identifier: MIT
#import "ConsoleScrollView.h"

#import "Controls.h"
#import "MainConsole.h"

#include <algorithm>
#include <cmath>

static const CGFloat WHEEL_STEP = 48; // points a notch, or a line that is higher: three of the usual font

// A place in the text: its end, or a character at the top and how far its line is scrolled out.
struct Place {
    bool isEnd = true;
    NSUInteger character = 0;
    CGFloat out = 0;
};

// The height of the console's lines, which are all alike; 0 without any.
static CGFloat lineHeight(NSTextView* text) {
    if ([[text string] length] == 0) return 0;
    return NSHeight([[text layoutManager] lineFragmentRectForGlyphAtIndex:0 effectiveRange:NULL]);
}

// Shows whole lines from the top on.
@interface WholeLines : NSClipView
@end

@implementation WholeLines

- (NSPoint)constrainScrollPoint:(NSPoint)wanted {
    NSPoint place = [super constrainScrollPoint:wanted];
    const CGFloat line = lineHeight([self documentView]);
    if (line > 0) place.y = std::round(place.y / line) * line;
    return place;
}

@end

@implementation ConsoleScrollView

- (id)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (!self) return nil;
    WholeLines* const clip = [[[WholeLines alloc] initWithFrame:NSZeroRect] autorelease];
    [self setContentView:clip];
    return self;
}

// What is left of the height when whole lines are shown is below them.
- (void)tile {
    [super tile];
    MainConsole* const text = [self documentView];
    const CGFloat line = lineHeight(text);
    if (line <= 0) return;
    NSRect frame = [[self contentView] frame];
    const CGFloat lines = std::max<CGFloat>(1, std::floor((NSHeight(frame) - 2 * TEXT_AIR) / line));
    const CGFloat below = NSHeight(frame) - TEXT_AIR - lines * line;
    frame.origin.y += [self isFlipped] ? TEXT_AIR : below;
    frame.size.height = lines * line;
    [[self contentView] setFrame:frame];
    [self setVerticalLineScroll:line * std::max<CGFloat>(1, std::round(WHEEL_STEP / line))];
}

// Beside the lines a press is one into the text.
- (void)mouseDown:(NSEvent*)event {
    [[self documentView] mouseDown:event];
}

- (Place)place {
    MainConsole* const text = [self documentView];
    const NSRect seen = [self documentVisibleRect];
    const NSUInteger length = [[text string] length];
    // The half of the last line is as good as all of it.
    if (length == 0 || NSMaxY(seen) + [[text font] pointSize] / 2 >= NSMaxY([text frame])) return {};
    Place place;
    place.isEnd = false;
    place.character = characterAt(text, NSMakePoint(1, NSMinY(seen) + 1)).character;
    place.out = NSMinY(seen) - topOfLine(text, place.character);
    return place;
}

- (void)goTo:(const Place&)place {
    MainConsole* const text = [self documentView];
    if (!text) return;
    [text fitToScrollView];
    const CGFloat lowest = NSMaxY([text frame]) - [self contentSize].height;
    const CGFloat y = place.isEnd ? lowest : topOfLine(text, place.character) + place.out;
    [text scrollPoint:NSMakePoint(0, y)];
    [self reflectScrolledClipView:[self contentView]];
}

- (void)setFrame:(NSRect)frame {
    const Place place = [self place];
    [super setFrame:frame];
    [self goTo:place];
}

- (void)setFrameSize:(NSSize)size {
    const Place place = [self place];
    [super setFrameSize:size];
    [self goTo:place];
}

@end
