// SPDX-License-Identifier: MIT
#import "HUDViewWithBlur.h"

#import "Interface.h"
#import "MainConsole.h"

@implementation HUDViewWithBlur

@synthesize mainConsole;

// The superclass keeps a press to itself and hands the drags on, which would then begin nowhere.
- (NSResponder*)dragger {
    return (NSResponder*)[[self window] delegate];
}

- (void)mouseDown:(NSEvent*)event {
    [[self dragger] mouseDown:event];
}

- (void)mouseDragged:(NSEvent*)event {
    [[self dragger] mouseDragged:event];
}

- (void)mouseUp:(NSEvent*)event {
    [[self dragger] mouseUp:event];
}

- (void)drawRect:(NSRect)dirty {
    NSRect band = [self bounds];
    band.origin.y = STATUS_HEIGHT;
    band.size.height -= STATUS_HEIGHT + CONTROLS_HEIGHT;
    if (NSHeight(band) <= 0) return;
    const CGFloat alpha = 1 - 0.008 * [mainConsole setting:@"trans"] * 0.5;
    [[[mainConsole backgroundColor] colorWithAlphaComponent:alpha] set];
    NSRectFillUsingOperation(NSIntersectionRect(band, dirty), NSCompositeCopy);
}

@end
