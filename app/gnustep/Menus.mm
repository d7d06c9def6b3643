// SPDX-License-Identifier: MIT
//
// Menus at the mouse, and how menus write keys.
#import "MainConsole.h"
#import "Platform.h"

#import <objc/runtime.h>

#include <cmath>

// --- Menus at the mouse ---

static const NSTimeInterval LOOK = 0.03; // seconds between two looks at where the mouse is
static const CGFloat MOVED = 4;          // points: less is a click, which leaves the menu open
static const NSUInteger BUTTONS = NSLeftMouseDownMask | NSLeftMouseUpMask | NSRightMouseDownMask |
                                  NSRightMouseUpMask | NSLeftMouseDraggedMask | NSRightMouseDraggedMask;

// GNUstep's own way to follow the mouse leaves the keys alone until a click.
@interface TypedMenuView : NSMenuView {
    NSInteger chosen; // the item, or -1
}
- (NSInteger)chosen;
@end

@implementation TypedMenuView

- (NSInteger)chosen {
    return chosen;
}

// The item under the mouse, or -1.
- (NSInteger)itemAtMouse {
    const NSPoint place = [[self window] mouseLocationOutsideOfEventStream];
    return [self indexOfItemAtPoint:[self convertPoint:place fromView:nil]];
}

// Follows the mouse up to a click, a drag that ends, or a key, which waits for the window behind.
- (void)mouseDown:(NSEvent*)event {
    const NSPoint start = [NSEvent mouseLocation];
    bool isClick = true; // the click that opened the menu has not ended elsewhere
    chosen = -1;
    for (;;) {
        const NSInteger item = [self itemAtMouse];
        const NSPoint now = [NSEvent mouseLocation];
        if (std::hypot(now.x - start.x, now.y - start.y) > MOVED) isClick = false;
        if (item != [self highlightedItemIndex]) [self setHighlightedItemIndex:item];
        [self display]; // what is drawn before the window is there is lost
        [[self window] flushWindow];
        if ([self closesOnKey]) break;
        NSEvent* const next = [NSApp nextEventMatchingMask:BUTTONS
                                                 untilDate:[NSDate dateWithTimeIntervalSinceNow:LOOK]
                                                    inMode:NSEventTrackingRunLoopMode
                                                   dequeue:YES];
        const NSEventType type = next ? [next type] : NSPeriodic;
        if (type == NSLeftMouseDown || type == NSRightMouseDown) {
            isClick = false;
            if (item < 0) break;
        } else if ((type == NSLeftMouseUp || type == NSRightMouseUp) && !isClick) {
            chosen = [self itemAtMouse];
            break;
        }
    }
    [self setHighlightedItemIndex:-1];
}

- (BOOL)closesOnKey {
    NSEvent* const key = [NSApp nextEventMatchingMask:NSKeyDownMask
                                            untilDate:[NSDate distantPast]
                                               inMode:NSEventTrackingRunLoopMode
                                              dequeue:YES];
    if (key && platformKeyCode(key) != KEY_ESCAPE) [NSApp postEvent:key atStart:YES];
    return key != nil;
}

@end

void platformPopUpMenu(NSMenu* menu, NSEvent* event, NSView* view) {
    TypedMenuView* const typed = [[[TypedMenuView alloc] initWithFrame:NSZeroRect] autorelease];
    [menu setMenuRepresentation:typed];
    [menu update];
    [NSMenu popUpContextMenu:menu withEvent:event forView:view];
    const NSInteger chosen = [typed chosen];
    if (chosen >= 0 && [[menu itemAtIndex:chosen] isEnabled]) [menu performActionForItemAtIndex:chosen];
}

// --- The menu bar ---

// GNUstep's own menus know one key for an item.
@interface KeyMenu : NSMenu
@end

@implementation KeyMenu

- (BOOL)performKeyEquivalent:(NSEvent*)event {
    const KeyRow* const row = menuRow(keyPress(event));
    if (!row) return NO;
    NSMenu* const menu = [[self itemWithTitle:@(row->item.menu)] submenu];
    [menu update];
    const auto item = static_cast<NSMenuItem*>([menu itemWithTitle:@(row->item.title)]);
    const bool isControl = ([event modifierFlags] & NSControlKeyMask) != 0;
    SEL action = sel_registerName(isControl ? row->item.withControl : row->item.selector);
    NSResponder* const responder = [[event window] firstResponder];
    // A field knows nothing of what Control does in the console alone, and its keys are not for the console.
    if (isControl && ![item target] && ![responder respondsToSelector:action])
        [responder tryToPerform:sel_registerName(row->item.selector) with:item];
    else if ([item isEnabled])
        [NSApp sendAction:action to:[item target] from:item];
    return YES;
}

@end

// The bar's own view, in the window.
static NSMenuView* barIn(NSView* view) {
    if ([view isKindOfClass:[NSMenuView class]]) return (NSMenuView*)view;
    for (NSView* const one in [view subviews]) {
        NSMenuView* const found = barIn(one);
        if (found) return found;
    }
    return nil;
}

static bool canBeChosen(NSMenu* menu, NSInteger row) {
    NSMenuItem* const item = row >= 0 ? (NSMenuItem*)[menu itemAtIndex:row] : nil;
    return item && ![item isSeparatorItem] && [item isEnabled];
}

// Highlights the next item in that direction that can be chosen, and behind the last one the first.
static void step(NSMenuView* view, NSInteger direction, NSInteger place) {
    NSMenu* const menu = [view menu];
    const NSInteger count = [menu numberOfItems];
    for (NSInteger i = 0; i < count; ++i) {
        place = (place + direction + count) % count;
        if (!canBeChosen(menu, place)) continue;
        [view setHighlightedItemIndex:place];
        return;
    }
}

static NSMenuView* openMenu(NSMenuView* bar, NSInteger place) {
    [bar detachSubmenu];
    [bar setHighlightedItemIndex:place];
    if (place < 0) return nil;
    [[[[bar menu] itemAtIndex:place] submenu] update];
    [bar attachSubmenuForItemAtIndex:place];
    NSMenuView* const opened = [bar attachedMenuView];
    step(opened, 1, -1);
    return opened;
}

// The item of a menu or of the bar at which the mouse was when the event came, or -1.
static NSInteger itemAt(NSEvent* event, NSMenuView* view) {
    const NSPoint onScreen = [[event window] convertBaseToScreen:[event locationInWindow]];
    const NSPoint inMenu = [[view window] convertScreenToBase:onScreen];
    return [view indexOfItemAtPoint:[view convertPoint:inMenu fromView:nil]];
}

// Return, or a button of the mouse that is let go on an item, which is highlighted then.
static bool isChoice(NSEvent* event, NSMenuView* menu) {
    const NSEventType type = [event type];
    if (type == NSKeyDown) return platformKeyCode(event) == KEY_RETURN || platformKeyCode(event) == KEY_ENTER;
    if (type != NSLeftMouseUp && type != NSRightMouseUp) return false;
    const NSInteger row = itemAt(event, menu);
    if (!canBeChosen([menu menu], row)) return false;
    [menu setHighlightedItemIndex:row];
    return true;
}

// What a press of the mouse does: on an item it shows which one that is, on the title of another menu it
// opens that, and elsewhere it closes them.
static NSInteger afterPress(NSEvent* event, NSMenuView* bar, NSMenuView* menu, NSInteger place) {
    const NSInteger row = itemAt(event, menu);
    if (canBeChosen([menu menu], row)) [menu setHighlightedItemIndex:row];
    if (row >= 0) return place;
    const NSInteger title = itemAt(event, bar);
    return title == place ? -1 : title;
}

// What the event does with the menu at `place` of the bar: where it goes, -1 for the end.
static NSInteger afterEvent(NSEvent* event, NSMenuView* bar, NSMenuView* menu, NSInteger place) {
    const NSInteger count = [[bar menu] numberOfItems];
    const bool isPress = [event type] == NSLeftMouseDown || [event type] == NSRightMouseDown;
    if (isPress) return afterPress(event, bar, menu, place);
    if ([event type] != NSKeyDown) return place;
    switch (platformKeyCode(event)) {
    case KEY_LEFT: return (place + count - 1) % count;
    case KEY_RIGHT: return (place + 1) % count;
    case KEY_UP: step(menu, -1, [menu highlightedItemIndex]); return place;
    case KEY_DOWN: step(menu, 1, [menu highlightedItemIndex]); return place;
    default: return -1;
    }
}

// A key that does nothing in a menu closes it and goes to the window: what is typed fast is not lost.
static bool isForWindow(uint32_t key) {
    return key != KEY_ESCAPE && key != KEY_F10;
}

void platformOpenMenuBar(NSWindow* window) {
    NSMenuView* const bar = barIn([[window contentView] superview]);
    if (!bar) return;
    NSMenuView* menu = nil;
    NSMenu* chosen = nil;
    NSInteger row = -1;
    for (NSInteger place = 0, shown = -1; place >= 0;) {
        if (place != shown) menu = openMenu(bar, place);
        shown = place;
        [menu display]; // as above
        [[menu window] flushWindow];
        NSEvent* const event = [NSApp nextEventMatchingMask:NSKeyDownMask | BUTTONS
                                                  untilDate:[NSDate dateWithTimeIntervalSinceNow:LOOK]
                                                     inMode:NSEventTrackingRunLoopMode
                                                    dequeue:YES];
        if (!event) continue;
        if (isChoice(event, menu)) {
            chosen = [menu menu];
            row = [menu highlightedItemIndex];
            break;
        }
        place = afterEvent(event, bar, menu, place);
        const bool isKey = [event type] == NSKeyDown;
        if (place < 0 && isKey && isForWindow(platformKeyCode(event))) [NSApp postEvent:event atStart:YES];
    }
    openMenu(bar, -1);
    if (row >= 0) [chosen performActionForItemAtIndex:row];
}

NSMenu* platformMenuBar(NSString* title) {
    return [[[KeyMenu alloc] initWithTitle:title] autorelease];
}

void platformFitMenuItem(NSMenuItem* item, const KeyRow& row) {
    if (!row.item.withControl) return;
    [item setAction:sel_registerName(row.item.withControl)];
    [item setKeyEquivalentModifierMask:NSControlKeyMask];
}

// --- How keys are written ---

// As they stand on the keyboard: "Alt+Shift+S" where GNUstep would write "Alt+S", and "Alt+S" for "Alt+s".
// The names of the modifiers are GNUstep's defaults (platformRegisterDefaults()).

@interface NSMenuItemCell (WrittenKeys)
- (NSString*)_keyEquivalentString;
@end

@implementation NSMenuItemCell (WrittenKeys)

// In place of GNUstep's own: what is measured and drawn at the right of an item.
- (NSString*)_keyEquivalentString {
    NSString* const key = [[self menuItem] keyEquivalent];
    if ([key length] == 0) return @"";
    NSString* const capital = [key uppercaseString];
    const bool isCapital = [key isEqualToString:capital] && ![key isEqualToString:[key lowercaseString]];
    const NSUInteger flags = [[self menuItem] keyEquivalentModifierMask] | (isCapital ? NSShiftKeyMask : 0);
    const struct {
        NSUInteger flag;
        NSString* setting;
        NSString* usual;
    } modifiers[] = {{NSControlKeyMask, @"GSControlKeyString", @"Ctrl+"},
                     {NSAlternateKeyMask, @"GSAlternateKeyString", @"Option+"},
                     {NSCommandKeyMask, @"GSCommandKeyString", @"Alt+"},
                     {NSShiftKeyMask, @"GSShiftKeyString", @"Shift+"}};
    NSMutableString* const text = [NSMutableString string];
    for (const auto& modifier : modifiers) {
        NSString* const name = [[NSUserDefaults standardUserDefaults] stringForKey:modifier.setting];
        if (flags & modifier.flag) [text appendString:name ? name : modifier.usual];
    }
    [text appendString:capital];
    return text;
}

@end
