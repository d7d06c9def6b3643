// SPDX-License-Identifier: MIT
//
// The arrows beside a number. GNUstep's own take one step however long they are held down.
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include <algorithm>

// In seconds.
static const NSTimeInterval BEFORE_REPEATING = 0.5;
static const NSTimeInterval BETWEEN_STEPS = 0.1;

@implementation NSStepperCell (Repeating)

- (void)step:(NSControl*)view {
    const double next = [self doubleValue] + (highlightUp ? 1 : -1) * [self increment];
    [self setDoubleValue:std::clamp(next, [self minValue], [self maxValue])];
    [view sendAction:[self action] to:[self target]];
}

- (void)press:(bool)isUp down:(bool)isDown in:(NSControl*)view {
    highlightUp = isUp;
    highlightDown = isDown;
    [view display];
}

// In place of GNUstep's own.
- (BOOL)trackMouse:(NSEvent*)event inRect:(NSRect)frame ofView:(NSView*)view untilMouseUp:(BOOL)untilUp {
    NSControl* const control = static_cast<NSControl*>(view);
    const NSPoint pressed = [view convertPoint:[event locationInWindow] fromView:nil];
    const NSRect upper = [[GSTheme theme] stepperUpButtonRectWithFrame:frame];
    const bool isUp = NSPointInRect(pressed, upper);
    const NSRect arrow = isUp ? upper : [[GSTheme theme] stepperDownButtonRectWithFrame:frame];
    bool isInside = true;
    [self press:isUp down:!isUp in:control];
    [self step:control];
    [NSEvent startPeriodicEventsAfterDelay:BEFORE_REPEATING withPeriod:BETWEEN_STEPS];
    for (NSEventType type = NSLeftMouseDown; type != NSLeftMouseUp;) {
        NSEvent* const next =
            [NSApp nextEventMatchingMask:NSLeftMouseUpMask | NSLeftMouseDraggedMask | NSPeriodicMask
                               untilDate:[NSDate distantFuture]
                                  inMode:NSEventTrackingRunLoopMode
                                 dequeue:YES];
        type = [next type];
        if (type == NSLeftMouseDragged)
            isInside = NSPointInRect([view convertPoint:[next locationInWindow] fromView:nil], arrow);
        if (type == NSPeriodic && isInside) [self step:control];
    }
    [NSEvent stopPeriodicEvents];
    [self press:false down:false in:control];
    return YES;
}

@end
