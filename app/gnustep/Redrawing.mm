// SPDX-License-Identifier: MIT
//
// What is drawn again: of the console's text only what has changed, where GNUstep draws all of the view for
// each key press; and the edge of a field, which shows the keyboard's focus.
#import "Controls.h"
#import "Exchange.h"
#import "MainConsole.h"

#include <algorithm>

@interface NSTextView (Redrawing)
- (void)_updateState:(id)sender;
@end

@implementation MainConsole (Redrawing)

- (void)textStorageDidProcessEditing:(NSNotification*)notification {
    changedFrom = std::min(changedFrom, [[self textStorage] editedRange].location);
}

// GNUstep's own, once for all changes of a turn of the run loop. A version without it calls nothing here, and
// all of the view is drawn then.
- (void)_updateState:(id)sender {
    isUpdating = YES;
    [super _updateState:sender];
    isUpdating = NO;
    changedFrom = NSNotFound;
}

// The lines above the change are as they were. A character that goes can let the line in front of it end
// elsewhere.
- (void)setNeedsDisplay:(BOOL)needs {
    const NSUInteger length = [[self string] length];
    const bool isPart = needs && isUpdating && changedFrom > 0 && changedFrom != NSNotFound && length > 0;
    if (!isPart) {
        [super setNeedsDisplay:needs];
        return;
    }
    NSRect below = [self visibleRect];
    const CGFloat top = topOfLine(self, std::min(changedFrom, length) - 1);
    below.size.height = NSMaxY(below) - top;
    below.origin.y = top;
    if (NSHeight(below) > 0) [self setNeedsDisplayInRect:below];
}

@end

// GNUstep draws a field's edge with the next change of its text only.
@implementation NSTextField (Redrawing)

+ (void)load {
    exchange(self, @selector(becomeFirstResponder), @selector(becomeFirstResponderSeen));
    exchange(self, @selector(textDidEndEditing:), @selector(textDidEndEditingSeen:));
}

// Under these names is GNUstep's own.
- (BOOL)becomeFirstResponderSeen {
    const BOOL becomes = [self becomeFirstResponderSeen];
    [self setNeedsDisplay:YES];
    return becomes;
}

- (void)textDidEndEditingSeen:(NSNotification*)notification {
    [self textDidEndEditingSeen:notification];
    [self setNeedsDisplay:YES];
}

@end
