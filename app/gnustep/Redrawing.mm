// SPDX-License-Identifier: MIT
//
// What is drawn again: of the console's text only what has changed, where GNUstep draws all of the view for
// each key press; and what shows the keyboard's focus.
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
    const bool isPart = needs && isUpdating && changedFrom > 0 && changedFrom != NSNotFound;
    if (!isPart) {
        [super setNeedsDisplay:needs];
        return;
    }
    NSRect below = [self visibleRect];
    const CGFloat top = topOfLine(self, changedFrom - 1);
    below.size.height = NSMaxY(below) - top;
    below.origin.y = top;
    if (NSHeight(below) > 0) [self setNeedsDisplayInRect:below];
}

@end

// GNUstep shows the keyboard's focus with a control's next change, if at all.
@implementation NSWindow (Redrawing)

+ (void)load {
    exchange(self, @selector(makeFirstResponder:), @selector(makeFirstResponderSeen:));
}

// What has the focus is the window's editor while a field is typed in.
static NSView* ownerOf(NSResponder* responder) {
    const bool isEditor =
        [responder isKindOfClass:[NSText class]] && [static_cast<NSText*>(responder) isFieldEditor];
    const id owner = isEditor ? [static_cast<NSText*>(responder) delegate] : responder;
    return [owner isKindOfClass:[NSControl class]] ? owner : nil;
}

// Under this name is GNUstep's own.
- (BOOL)makeFirstResponderSeen:(NSResponder*)responder {
    NSView* const before = [[ownerOf([self firstResponder]) retain] autorelease];
    const BOOL isMade = [self makeFirstResponderSeen:responder];
    [before setNeedsDisplay:YES];
    [ownerOf([self firstResponder]) setNeedsDisplay:YES];
    return isMade;
}

@end
