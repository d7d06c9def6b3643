// SPDX-License-Identifier: MIT
//
// The console's vertical scroller: narrow, drawn from images, without arrows.
#pragma once

#import <AppKit/AppKit.h>

@interface ZqScroller : NSScroller {
    NSImage* knobTop;
    NSImage* knobVerticalFill;
    NSImage* knobBottom;
    NSImage* slotVerticalFill;
}
+ (CGFloat)scrollerWidth; // points
@end

// The rectangle of a knob image `width` points wide, centered in the knob's track.
NSRect centeredKnob(NSRect knob, CGFloat width);
