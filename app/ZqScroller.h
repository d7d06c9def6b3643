// SPDX-License-Identifier: MIT
//
// The console's vertical scroller: narrow, drawn from images, without arrows.
#ifndef TALLYQUILL_ZQSCROLLER_H
#define TALLYQUILL_ZQSCROLLER_H

#import <AppKit/AppKit.h>

@interface ZqScroller : NSScroller
+ (CGFloat)scrollerWidth; // points
@end

// The rectangle of a knob image `width` points wide, centred in the knob's track.
NSRect centeredKnob(NSRect knob, CGFloat width);

#endif
