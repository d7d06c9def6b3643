// SPDX-License-Identifier: MIT
//
// The cursor of the console rests, visible, some time after the last key, so that an idle window costs
// nothing. GNUstep's own blinks for ever.
#import "Controls.h"
#import "MainConsole.h"

static const NSTimeInterval BLINKING = 10; // seconds

@interface NSTextView (Blinking)
- (void)_startInsertionTimer;
- (void)_stopInsertionTimer;
@end

@implementation MainConsole (Blinking)

- (NSTimeInterval)blinkingTime {
    return BLINKING;
}

- (void)forgetResting {
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(restCursor) object:nil];
}

// GNUstep's own, whenever the cursor has moved.
- (void)_startInsertionTimer {
    [super _startInsertionTimer];
    [self forgetResting];
    [self performSelector:@selector(restCursor)
               withObject:nil
               afterDelay:[self blinkingTime]
                  inModes:everyMode()];
}

// GNUstep's own covers the cursor with the background's color, which is not what is behind the text: a line
// would stay.
- (void)drawInsertionPointInRect:(NSRect)rect color:(NSColor*)color turnedOn:(BOOL)isOn {
    if (isOn)
        [super drawInsertionPointInRect:rect color:color turnedOn:YES];
    else
        [self setNeedsDisplayInRect:rect];
}

- (void)restCursor {
    [self updateInsertionPointStateAndRestartTimer:YES]; // which draws it
    [self forgetResting];
    [self _stopInsertionTimer];
}

@end
