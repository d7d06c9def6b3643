// SPDX-License-Identifier: MIT
//
// A pull-down button whose list may be longer than the screen, where GNUstep's own menus end.
#import "Controls.h"
#import "MainConsole.h"
#import "NumberField.h"
#import "Platform.h"
#import "ZqScroller.h"

#include <algorithm>
#include <cmath>

// In points.
static const CGFloat ITEM_HEIGHT = 20;
static const CGFloat END = 8; // so near to an end of what is in sight the pointer scrolls
static const CGFloat EDGE = 1;
static const CGFloat PADDING = 10;
static const CGFloat GAP_BEFORE_KEYS = 24;
static const CGFloat WIDEST_COLUMN = 260;
static const CGFloat SCREEN_GAP = 8; // to the screen's edge

static const NSTimeInterval TYPING_PAUSE = 1; // seconds
static const NSTimeInterval SCROLL_PERIOD = 0.05;

// The list of a button while it is open, in a scroll view.
@interface ListView : NSView {
    NSPopUpButton* button; // not retained: it waits until the list is closed
    NSArray* items;        // of NSMenuItem, without the button's title
    CGFloat widths[2];     // of the columns
    int count;             // of rows
    int selected;          // -1: none
    bool isOpen;
    bool isHeld;     // the button of the mouse is down since the list was opened
    NSPoint pointer; // on the screen
    NSMutableString* typed;
    NSTimeInterval lastTyped;
}
- (id)initFor:(NSPopUpButton*)opener;

// Takes all events until the list is closed. `event`: the press of the mouse that opened it, or nil. Returns
// the chosen item, or nil.
- (NSMenuItem*)run:(NSEvent*)event;
@end

@implementation ListView

static NSFont* listFont() {
    return [NSFont menuFontOfSize:11];
}

- (id)initFor:(NSPopUpButton*)opener {
    self = [super initWithFrame:NSZeroRect];
    if (!self) return nil;
    button = opener;
    NSArray* const all = [button itemArray];
    items = [[all subarrayWithRange:NSMakeRange(1, [all count] - 1)] retain];
    count = static_cast<int>([items count]);
    typed = [[NSMutableString alloc] init];
    selected = -1;
    for (NSMenuItem* const item in items) {
        CGFloat* width = widths;
        for (NSString* const cell in [[item title] componentsSeparatedByString:@"\t"]) {
            if (width == widths + 2) break;
            *width = std::min(std::max(*width, std::ceil([listFont() widthOfString:cell])), WIDEST_COLUMN);
            ++width;
        }
    }
    return self;
}

- (void)dealloc {
    [items release];
    [typed release];
    [super dealloc];
}

- (BOOL)isFlipped {
    return YES;
}

// The button on the screen.
- (NSRect)buttonFrame {
    const NSRect inWindow = [button convertRect:[button bounds] toView:nil];
    return {[[button window] convertBaseToScreen:inWindow.origin], inWindow.size};
}

// On the screen below the button, or above it where there is more room. Rows that do not fit scroll.
- (NSRect)chooseFrame {
    const NSRect opener = [self buttonFrame];
    const NSRect screen = [[[button window] screen] visibleFrame];
    const CGFloat scale = platformScale();
    const CGFloat below = NSMinY(opener) - NSMinY(screen) - SCREEN_GAP;
    const CGFloat above = NSMaxY(screen) - NSMaxY(opener) - SCREEN_GAP;
    const CGFloat wanted = (count * ITEM_HEIGHT + 2 * EDGE) * scale;
    const bool goesDown = wanted <= below || below >= above;
    const CGFloat room = goesDown ? below : above;
    int inSight = count;
    if (wanted > room) inSight = std::max(static_cast<int>((room / scale - 2 * EDGE) / ITEM_HEIGHT), 1);
    const CGFloat columns = widths[0] + (widths[1] > 0 ? GAP_BEFORE_KEYS + widths[1] : 0);
    const CGFloat scroller = inSight < count ? [ZqScroller scrollerWidth] : 0;
    const CGFloat width = std::max((columns + scroller + 2 * (PADDING + EDGE)) * scale, NSWidth(opener));
    const CGFloat height = (inSight * ITEM_HEIGHT + 2 * EDGE) * scale;
    const CGFloat x = std::max(std::min(NSMinX(opener), NSMaxX(screen) - width), NSMinX(screen));
    return NSMakeRect(x, goesDown ? NSMinY(opener) - height : NSMaxY(opener), width, height);
}

// --- Rows ---

- (NSMenuItem*)itemAt:(int)row {
    return row >= 0 && row < count ? [items objectAtIndex:static_cast<NSUInteger>(row)] : nil;
}

// The item of the selected row, or nil when that is none or cannot be chosen.
- (NSMenuItem*)choice {
    NSMenuItem* const item = [self itemAt:selected];
    return [item isSeparatorItem] ? nil : item;
}

- (void)select:(int)row {
    selected = row;
    [self setNeedsDisplay:YES];
}

- (NSRect)frameOf:(int)row {
    return NSMakeRect(0, row * ITEM_HEIGHT, NSWidth([self bounds]), ITEM_HEIGHT);
}

// Selects the row, or the next one in that direction (1 or -1) that can be, and brings it into sight.
- (void)goTo:(int)row direction:(int)direction {
    row = std::max(std::min(row, count - 1), 0);
    while ([[self itemAt:row] isSeparatorItem]) row += direction;
    if (![self itemAt:row]) return;
    [self select:row];
    [self scrollRectToVisible:[self frameOf:row]];
}

// --- The pointer ---

- (bool)isOnList {
    return NSPointInRect(pointer, [[self window] frame]);
}

- (bool)isOnButton {
    return NSPointInRect(pointer, [self buttonFrame]);
}

- (NSPoint)pointerHere {
    return [self convertPoint:[[self window] convertScreenToBase:pointer] fromView:nil];
}

- (int)rowAtPointer {
    const NSPoint here = [self pointerHere];
    return NSPointInRect(here, [self visibleRect]) ? static_cast<int>(here.y / ITEM_HEIGHT) : -1;
}

- (void)followPointer:(NSEvent*)event {
    NSWindow* const window = [event window];
    pointer = window ? [window convertBaseToScreen:[event locationInWindow]] : [NSEvent mouseLocation];
    [self selectAtPointer];
}

- (void)selectAtPointer {
    const int row = [self rowAtPointer];
    if (row >= 0 || isHeld) [self select:row];
}

- (void)scrollAtEnds {
    // Pulled beyond the list it scrolls too, but not by the click that opened it.
    if (![self isOnList] && (!isHeld || [self isOnButton])) return;
    const NSRect seen = [self visibleRect];
    const NSPoint here = [self pointerHere];
    if (here.x < NSMinX(seen) || here.x >= NSMaxX(seen)) return;
    if (here.y < NSMinY(seen) + END) [self scrollPoint:NSMakePoint(0, NSMinY(seen) - ITEM_HEIGHT)];
    if (here.y > NSMaxY(seen) - END) [self scrollPoint:NSMakePoint(0, NSMinY(seen) + ITEM_HEIGHT)];
    if ([self isOnList]) [self selectAtPointer];
}

// Let go on the button that opened the list, it stays open.
- (void)letGo {
    isHeld = false;
    if ([self isOnButton]) return;
    const bool isOnRow = [self rowAtPointer] >= 0 && [self choice];
    if (isOnRow || ![self isOnList]) isOpen = false;
}

// --- Keys ---

- (void)typeKey:(NSEvent*)event {
    NSString* const text = [event characters];
    if ([text length] == 0 || [text characterAtIndex:0] <= ' ' || [text characterAtIndex:0] >= 0xf700) return;
    if ([event timestamp] - lastTyped > TYPING_PAUSE) [typed setString:@""];
    lastTyped = [event timestamp];
    [typed appendString:[text substringToIndex:1]];
    for (int row = 0; row < count; ++row) {
        NSString* const title = [[self itemAt:row] title]; // that of a separator is empty
        const NSStringCompareOptions start = NSCaseInsensitiveSearch | NSAnchoredSearch;
        if ([title rangeOfString:typed options:start].length == 0) continue;
        [self goTo:row direction:1];
        return;
    }
    [typed deleteCharactersInRange:NSMakeRange([typed length] - 1, 1)]; // nothing begins so
}

- (void)moveBy:(NSEvent*)event {
    const int inSight = static_cast<int>(std::lround(NSHeight([self visibleRect]) / ITEM_HEIGHT));
    NSString* const plain = [event charactersIgnoringModifiers];
    switch ([plain length] > 0 ? [plain characterAtIndex:0] : 0) {
    case NSUpArrowFunctionKey: [self goTo:selected < 0 ? count - 1 : selected - 1 direction:-1]; return;
    case NSDownArrowFunctionKey: [self goTo:selected + 1 direction:1]; return;
    case NSPageUpFunctionKey: [self goTo:selected - inSight direction:-1]; return;
    case NSPageDownFunctionKey: [self goTo:selected + inSight direction:1]; return;
    case NSHomeFunctionKey: [self goTo:0 direction:1]; return;
    case NSEndFunctionKey: [self goTo:count - 1 direction:-1]; return;
    default: [self typeKey:event];
    }
}

- (void)takeKey:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    if (([event modifierFlags] & NSCommandKeyMask) || menuRow(keyPress(event))) {
        [self giveUp];
        [NSApp postEvent:event atStart:YES];
    } else if (key == KEY_ESCAPE) {
        [self giveUp];
    } else if (key == KEY_RETURN || key == KEY_ENTER) {
        isOpen = ![self choice];
    } else {
        [self moveBy:event];
    }
}

// --- Events ---

- (void)giveUp {
    selected = -1;
    isOpen = false;
}

- (void)takeOther:(NSEvent*)event {
    NSWindow* const window = [button window];
    const bool wasKey = [window isKeyWindow];
    const bool isClosing = [event type] == NSAppKitDefined && [event subtype] == GSAppKitWindowClose;
    if (!isClosing) [NSApp sendEvent:event];
    if (isClosing || wasKey != [window isKeyWindow]) [self giveUp];
    if (isClosing) [NSApp postEvent:event atStart:YES]; // when the list is gone
}

- (void)take:(NSEvent*)event {
    switch ([event type]) {
    case NSKeyDown: [self takeKey:event]; break;
    case NSKeyUp:
    case NSRightMouseDown:
    case NSRightMouseUp:
    case NSOtherMouseDown:
    case NSOtherMouseUp: break;
    case NSMouseMoved:
    case NSLeftMouseDragged: [self followPointer:event]; break;
    case NSLeftMouseDown:
        [self followPointer:event];
        if (![self isOnList])
            [self giveUp];
        else if ([self rowAtPointer] < 0)
            [NSApp sendEvent:event]; // to the scroller, which follows the mouse until it is let go
        break;
    case NSLeftMouseUp:
        [self followPointer:event];
        [self letGo];
        break;
    case NSScrollWheel:
        [[self enclosingScrollView] scrollWheel:event];
        [self selectAtPointer];
        break;
    case NSPeriodic: [self scrollAtEnds]; break;
    default: [self takeOther:event];
    }
}

- (void)showIn:(NSView*)content {
    NSScrollView* const scroll =
        [[[NSScrollView alloc] initWithFrame:NSInsetRect([content bounds], EDGE, EDGE)] autorelease];
    useOurScroller(scroll);
    [scroll setHasVerticalScroller:NSHeight([scroll frame]) < count * ITEM_HEIGHT];
    [scroll setVerticalLineScroll:3 * ITEM_HEIGHT];
    [self setFrame:NSMakeRect(0, 0, [scroll contentSize].width, count * ITEM_HEIGHT)];
    [scroll setDocumentView:self];
    [content addSubview:scroll];
}

- (NSMenuItem*)run:(NSEvent*)event {
    NSPanel* const panel = [[[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, ITEM_HEIGHT, ITEM_HEIGHT)
                                                       styleMask:NSBorderlessWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:YES] autorelease];
    [panel setLevel:NSPopUpMenuWindowLevel];
    [panel setHidesOnDeactivate:NO];
    [panel setReleasedWhenClosed:NO];
    [panel setAcceptsMouseMovedEvents:YES];
    [panel setBackgroundColor:[NSColor gridColor]]; // the edge
    [panel setFrame:[self chooseFrame] display:NO];
    [self showIn:[panel contentView]];
    [panel orderFront:nil];
    isOpen = true;
    if (event) [self followPointer:event];
    isHeld = event != nil;
    [NSEvent startPeriodicEventsAfterDelay:SCROLL_PERIOD withPeriod:SCROLL_PERIOD];
    while (isOpen) {
        @autoreleasepool {
            [self take:[NSApp nextEventMatchingMask:NSAnyEventMask
                                          untilDate:[NSDate distantFuture]
                                             inMode:NSEventTrackingRunLoopMode
                                            dequeue:YES]];
        }
    }
    [NSEvent stopPeriodicEvents];
    [panel close];
    return [self choice];
}

// --- How it looks ---

// A cell's text, from x to the right or, when that is its end, to the left.
static void drawCell(NSString* cell, CGFloat width, NSColor* color, NSPoint place, bool endsThere) {
    NSDictionary* const attributes =
        @{NSFontAttributeName : listFont(), NSForegroundColorAttributeName : color};
    // A column is as wide as the font says; drawn on pixels, the widest text may take a little more.
    const bool fits = [listFont() widthOfString:cell] <= width;
    NSString* const text = fits ? cell : headThatFits(cell, @"", width, attributes);
    if (endsThere) place.x -= [text sizeWithAttributes:attributes].width;
    [text drawAtPoint:place withAttributes:attributes];
}

- (void)drawRow:(int)row in:(NSRect)frame {
    NSMenuItem* const item = [self itemAt:row];
    if ([item isSeparatorItem]) {
        [[NSColor gridColor] set];
        NSRectFill(NSMakeRect(NSMinX(frame) + 4, std::floor(NSMidY(frame)), NSWidth(frame) - 8, 1));
        return;
    }
    if (row == selected) {
        [[NSColor selectedMenuItemColor] set];
        NSRectFill(frame);
    }
    NSColor* const color = row == selected ? [NSColor selectedMenuItemTextColor] : [NSColor controlTextColor];
    NSArray* const cells = [[item title] componentsSeparatedByString:@"\t"];
    const CGFloat y = std::floor(NSMidY(frame) - [listFont() defaultLineHeightForFont] / 2);
    drawCell([cells objectAtIndex:0], widths[0], color, NSMakePoint(NSMinX(frame) + PADDING, y), false);
    if ([cells count] < 2) return;
    const CGFloat end = NSMaxX(frame) - PADDING;
    drawCell([cells objectAtIndex:1], widths[1], color, NSMakePoint(end, y), true);
}

- (void)drawRect:(NSRect)dirty {
    [[NSColor windowBackgroundColor] set];
    NSRectFill(dirty);
    const int end = std::min(static_cast<int>(std::ceil(NSMaxY(dirty) / ITEM_HEIGHT)), count);
    for (int row = static_cast<int>(NSMinY(dirty) / ITEM_HEIGHT); row < end; ++row)
        [self drawRow:row in:[self frameOf:row]];
}

@end

// --- The button ---

@interface ListPopUp : NSPopUpButton {
    bool isOpen;
}
@end

@implementation ListPopUp

- (void)openList:(NSEvent*)event {
    if ([self numberOfItems] < 2 || isOpen) return;
    isOpen = true;
    ListView* const list = [[[ListView alloc] initFor:self] autorelease];
    NSMenuItem* const chosen = [list run:event];
    isOpen = false;
    if (!chosen) return;
    [self selectItem:chosen];
    [self sendAction:[self action] to:[self target]];
}

- (void)mouseDown:(NSEvent*)event {
    [self openList:event];
}

- (void)performClick:(id)sender {
    [self openList:nil];
}

- (void)keyDown:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    if (key == KEY_DOWN || key == KEY_RETURN || [[event characters] isEqualToString:@" "])
        [self openList:nil];
    else
        [[self nextResponder] keyDown:event]; // the superclass keeps Escape to itself
}

@end

NSPopUpButton* makeListPopUp(NSString* title) {
    ListPopUp* const button = [[[ListPopUp alloc] initWithFrame:NSZeroRect pullsDown:YES] autorelease];
    [button addItemWithTitle:title];
    return button;
}
