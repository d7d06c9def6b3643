// SPDX-License-Identifier: MIT
#import "HUDViewWithBlur.h"

#import "Interface.h"
#import "MainConsole.h"
#import "Platform.h"

@implementation HUDViewWithBlur

@synthesize mainConsole;

// What is typed while a control has the keyboard's focus, and is none of its keys, is for the entry. Escape
// and F6 only go back there; Tab is the window's.
- (void)keyDown:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    if (key == KEY_TAB || [[self window] firstResponder] == mainConsole) {
        [super keyDown:event];
        return;
    }
    [[self window] makeFirstResponder:mainConsole];
    if (key != KEY_ESCAPE && key != KEY_F6) [mainConsole keyDown:event];
}

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
