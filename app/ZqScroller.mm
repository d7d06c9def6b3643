// SPDX-License-Identifier: MIT
#import "ZqScroller.h"

#import "Platform.h"

#include <cmath>

static const CGFloat WIDTH = 15;

static NSImage* scrollerImage(NSString* name) {
    NSString* const path = [[NSBundle bundleForClass:[ZqScroller class]]
        pathForResource:[@"TransparentScroller" stringByAppendingString:name]
                 ofType:@"tif"];
    return path ? [[NSImage alloc] initWithContentsOfFile:path] : nil;
}

NSRect centeredKnob(NSRect knob, CGFloat width) {
    knob.origin.x += std::floor((knob.size.width - width + 0.5) * 0.5);
    knob.size.width = width;
    return knob;
}

@implementation ZqScroller

+ (CGFloat)scrollerWidth {
    return WIDTH;
}

- (id)initWithFrame:(NSRect)frame {
    return [[super initWithFrame:frame] prepared];
}

- (id)initWithCoder:(NSCoder*)coder {
    return [[super initWithCoder:coder] prepared];
}

- (id)prepared {
    [self setArrowsPosition:NSScrollerArrowsNone];
    knobTop = scrollerImage(@"KnobTop");
    knobVerticalFill = scrollerImage(@"KnobVerticalFill");
    knobBottom = scrollerImage(@"KnobBottom");
    slotVerticalFill = scrollerImage(@"SlotVerticalFill");
    return self;
}

- (void)dealloc {
    [knobTop release];
    [knobVerticalFill release];
    [knobBottom release];
    [slotVerticalFill release];
    [super dealloc];
}

// The color of the console, or the scroller's own where no text view is scrolled.
- (NSColor*)trackColor {
    const id document = [[self enclosingScrollView] documentView];
    if ([document respondsToSelector:@selector(backgroundColor)]) return [document backgroundColor];
    return [NSColor colorWithCalibratedWhite:0.13 alpha:0.855];
}

// GNUstep leaves the proportion as it was when a document begins to fit.
- (BOOL)documentFits {
    NSScrollView* const scroll = [self enclosingScrollView];
    return scroll && NSHeight([[scroll documentView] frame]) <= NSHeight([[scroll contentView] bounds]);
}

// GNUstep keeps more free at one side than at the other.
- (NSRect)rectForPart:(NSScrollerPart)part {
    const NSRect bounds = [self bounds];
    NSRect frame = [super rectForPart:part];
    if (part == NSScrollerKnobSlot) return bounds;
    if (part != NSScrollerKnob || NSIsEmptyRect(frame)) return frame;
    frame.origin.x = NSMinX(bounds);
    frame.size.width = NSWidth(bounds);
    return frame;
}

// Where nothing is painted behind the text, what lies behind it is seen here too.
- (BOOL)isOpaque {
    NSScrollView* const scroll = [self enclosingScrollView];
    return !scroll || [scroll drawsBackground];
}

- (void)drawRect:(NSRect)dirty {
    [[self trackColor] set];
    if ([self isOpaque]) NSRectFill(NSIntersectionRect(dirty, [self bounds]));
    [self drawKnobSlot];
    if ([self knobProportion] > 0 && ![self documentFits]) [self drawKnob];
}

- (void)drawKnobSlot {
    platformDrawVertical([self rectForPart:NSScrollerKnobSlot], slotVerticalFill, slotVerticalFill,
                         slotVerticalFill);
}

- (void)drawKnob {
    const NSRect knob = centeredKnob([self rectForPart:NSScrollerKnob], [knobVerticalFill size].width);
    platformDrawVertical(knob, knobTop, knobVerticalFill, knobBottom);
    // Where a point is no whole pixel the parts do not quite touch: others cover the seams.
    platformDrawVertical(NSInsetRect(knob, 0, 1), knobTop, knobVerticalFill, knobBottom);
}

@end
