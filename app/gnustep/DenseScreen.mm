// SPDX-License-Identifier: MIT
//
// A screen on which a point is more than a pixel, such as one and a half. GNUstep scales all that is drawn,
// except what is here.
#import "Exchange.h"
#import "Platform.h"

#import <GNUstepGUI/GSWindowDecorationView.h>

CGFloat platformScale() {
    return [[NSScreen mainScreen] userSpaceScaleFactor];
}

// GNUstep takes the widths of the window manager's frame, which are pixels, for points: what is in a window
// would stand too high and leave a strip below it.
@implementation GSBackendWindowDecorationView (DenseScreen)

- (void)layout {
    const NSRect inside = [[self class] contentRectForFrameRect:[self frame] styleMask:[window styleMask]];
    contentRect.origin = NSMakePoint(NSMinX(inside) / platformScale(), NSMinY(inside) / platformScale());
    [super layout];
}

@end

// GNUstep goes from view to view by way of the screen's pixels and compares what comes of it: where a pixel
// is no whole part of a point, a view lacked the last bit of a length, had not drawn all of itself then, and
// drew again over what was there. So a view is asked for a little more.
@implementation NSView (DenseScreen)

+ (void)load {
    exchange(self, @selector(displayRectIgnoringOpacity:inContext:), @selector(displayAllOfRect:inContext:));
}

// Under this name is GNUstep's own.
- (void)displayAllOfRect:(NSRect)rect inContext:(NSGraphicsContext*)context {
    const CGFloat little = 1e-6;
    const NSRect all = NSIsEmptyRect(rect) ? rect : NSInsetRect(rect, -little, -little);
    [self displayAllOfRect:all inContext:context];
}

@end
