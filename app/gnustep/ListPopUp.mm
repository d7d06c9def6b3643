// SPDX-License-Identifier: MIT
//
// A pull-down button whose list may be longer than the screen, where GNUstep's own menus end.
#import "Platform.h"

#include <algorithm>
#include <cmath>

// In points.
static const CGFloat ROW = 20;
static const CGFloat STRIP = 16; // at each end of a list that scrolls, with an arrow
static const CGFloat EDGE = 1;
static const CGFloat PADDING = 10;
static const CGFloat COLUMN_GAP = 24;
static const CGFloat WIDEST_COLUMN = 260;
static const CGFloat SCREEN_GAP = 8; // to the screen's edge

static const NSTimeInterval TYPING_PAUSE = 1; // seconds
static const NSTimeInterval SCROLL_PERIOD = 0.05;

static NSFont* listFont() {
    return [NSFont menuFontOfSize:11];
}

static CGFloat widthOf(NSString* text) {
    return [text sizeWithAttributes:[NSDictionary dictionaryWithObject:listFont() forKey:NSFontAttributeName]]
        .width;
}

// The widths of texts, added up from those of their characters: laying out thousands of texts would be felt.
class Ruler {
public:
    CGFloat width(NSString* text) {
        CGFloat sum = 0;
        for (NSUInteger i = 0; i < [text length]; i++) {
            const unichar c = [text characterAtIndex:i];
            sum += c < COUNT ? ofCharacter(c) : widthOf([text substringWithRange:NSMakeRange(i, 1)]);
        }
        return sum;
    }

private:
    static constexpr unichar COUNT = 128;

    CGFloat ofCharacter(unichar c) {
        if (known[c] == 0) known[c] = widthOf([NSString stringWithCharacters:&c length:1]);
        return known[c];
    }

    CGFloat known[COUNT] = {};
};

// The start of the text that fits the width, with an ellipsis when that is not all of it.
static NSString* fitted(NSString* text, CGFloat width) {
    if (widthOf(text) <= width) return text;
    NSUInteger fits = 0, tooMany = [text length];
    while (fits + 1 < tooMany) {
        const NSUInteger middle = (fits + tooMany) / 2;
        NSString* const head = [[text substringToIndex:middle] stringByAppendingString:@"\u2026"];
        (widthOf(head) <= width ? fits : tooMany) = middle;
    }
    return [[text substringToIndex:fits] stringByAppendingString:@"\u2026"];
}

// --- The list ---

@interface ListView : NSView {
    NSArray* items;     // of NSMenuItem, without the button's title
    NSInteger top;      // the first row in sight
    NSInteger inSight;  // how many rows are
    NSInteger selected; // -1: none
    NSMutableString* typed;
    NSTimeInterval lastTyped;
    CGFloat first, second; // the columns' widths
}
- (id)initWithItems:(NSArray*)all;
- (NSSize)sizeInHeight:(CGFloat)room; // in points; rows that do not fit scroll
- (NSInteger)selected;
- (BOOL)isChoice;              // whether the selected row can be chosen
- (NSInteger)rowAt:(CGFloat)y; // y from the upper edge; -1 when there is none
- (int)endAt:(CGFloat)y;       // -1 and 1: the upper and the lower end of a list that scrolls, and beyond
- (void)select:(NSInteger)row;
- (void)scrollBy:(NSInteger)rows;
- (void)takeKey:(NSEvent*)event;
@end

@implementation ListView

- (id)initWithItems:(NSArray*)all {
    self = [super initWithFrame:NSZeroRect];
    if (!self) return nil;
    items = [all retain];
    typed = [[NSMutableString alloc] init];
    selected = -1;
    Ruler ruler;
    for (NSMenuItem* const item in items) {
        NSArray* const cells = [[item title] componentsSeparatedByString:@"\t"];
        first = std::max(first, ruler.width([cells objectAtIndex:0]));
        if ([cells count] > 1) second = std::max(second, ruler.width([cells objectAtIndex:1]));
    }
    first = std::min(std::ceil(first), WIDEST_COLUMN);
    second = std::min(std::ceil(second), WIDEST_COLUMN);
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

- (NSInteger)count {
    return static_cast<NSInteger>([items count]);
}

- (BOOL)scrolls {
    return inSight < [self count];
}

// For the bar that shows the position.
- (CGFloat)barRoom {
    return [self scrolls] ? 4 : 0;
}

- (NSSize)sizeInHeight:(CGFloat)room {
    inSight = [self count];
    if (static_cast<CGFloat>(inSight) * ROW + 2 * EDGE > room) {
        inSight = std::max<NSInteger>(static_cast<NSInteger>((room - 2 * (EDGE + STRIP)) / ROW), 1);
    }
    const CGFloat strips = [self scrolls] ? 2 * STRIP : 0;
    const CGFloat width =
        first + (second > 0 ? COLUMN_GAP + second : 0) + [self barRoom] + 2 * PADDING + 2 * EDGE;
    return NSMakeSize(width, static_cast<CGFloat>(inSight) * ROW + strips + 2 * EDGE);
}

- (NSInteger)selected {
    return selected;
}

- (BOOL)canSelect:(NSInteger)row {
    return row >= 0 && row < [self count] &&
           ![[items objectAtIndex:static_cast<NSUInteger>(row)] isSeparatorItem];
}

- (BOOL)isChoice {
    return [self canSelect:selected];
}

- (CGFloat)startOfRows {
    return EDGE + ([self scrolls] ? STRIP : 0);
}

- (NSInteger)rowAt:(CGFloat)y {
    const CGFloat line = std::floor((y - [self startOfRows]) / ROW);
    if (line < 0 || line >= static_cast<CGFloat>(inSight)) return -1;
    return top + static_cast<NSInteger>(line);
}

- (int)endAt:(CGFloat)y {
    if (![self scrolls]) return 0;
    if (y < [self startOfRows]) return -1;
    return y >= [self startOfRows] + static_cast<CGFloat>(inSight) * ROW ? 1 : 0;
}

- (void)select:(NSInteger)row {
    selected = row;
    [self setNeedsDisplay:YES];
}

- (void)scrollBy:(NSInteger)rows {
    top = std::max<NSInteger>(std::min(top + rows, [self count] - inSight), 0);
    [self setNeedsDisplay:YES];
}

// Selects the row, or the next one in that direction (1 or -1) that can be, and brings it into sight.
- (void)goTo:(NSInteger)row direction:(NSInteger)direction {
    row = std::max<NSInteger>(std::min(row, [self count] - 1), 0);
    while (row >= 0 && row < [self count] && ![self canSelect:row]) row += direction;
    if (![self canSelect:row]) return;
    [self select:row];
    if (row < top) [self scrollBy:row - top];
    if (row >= top + inSight) [self scrollBy:row - top - inSight + 1];
}

- (void)goToTyped {
    for (NSInteger row = 0; row < [self count]; row++) {
        NSString* const title = [[items objectAtIndex:static_cast<NSUInteger>(row)] title];
        const NSRange found = [title rangeOfString:typed options:NSCaseInsensitiveSearch | NSAnchoredSearch];
        if (![self canSelect:row] || found.location == NSNotFound) continue;
        [self goTo:row direction:1];
        return;
    }
    [typed deleteCharactersInRange:NSMakeRange([typed length] - 1, 1)]; // nothing begins so
}

- (void)typeKey:(NSEvent*)event {
    NSString* const text = [event characters];
    if ([text length] == 0 || [text characterAtIndex:0] <= ' ' || [text characterAtIndex:0] >= 0xf700) return;
    if ([event timestamp] - lastTyped > TYPING_PAUSE) [typed setString:@""];
    lastTyped = [event timestamp];
    [typed appendString:[text substringToIndex:1]];
    [self goToTyped];
}

- (void)takeKey:(NSEvent*)event {
    NSString* const plain = [event charactersIgnoringModifiers];
    const unichar key = [plain length] > 0 ? [plain characterAtIndex:0] : 0;
    const NSInteger last = [self count] - 1;
    switch (key) {
    case NSUpArrowFunctionKey: [self goTo:selected < 0 ? last : selected - 1 direction:-1]; return;
    case NSDownArrowFunctionKey: [self goTo:selected + 1 direction:1]; return;
    case NSPageUpFunctionKey: [self goTo:selected - inSight direction:-1]; return;
    case NSPageDownFunctionKey: [self goTo:selected + inSight direction:1]; return;
    case NSHomeFunctionKey: [self goTo:0 direction:1]; return;
    case NSEndFunctionKey: [self goTo:last direction:-1]; return;
    default: [self typeKey:event];
    }
}

// --- How it looks ---

static void drawText(NSString* text, NSPoint place, NSColor* color) {
    [text drawAtPoint:place
        withAttributes:[NSDictionary dictionaryWithObjectsAndKeys:listFont(), NSFontAttributeName, color,
                                                                  NSForegroundColorAttributeName, nil]];
}

- (void)drawRow:(NSInteger)row in:(NSRect)frame {
    NSMenuItem* const item = [items objectAtIndex:static_cast<NSUInteger>(row)];
    if ([item isSeparatorItem]) {
        [[NSColor gridColor] set];
        NSRectFill(NSMakeRect(NSMinX(frame) + 4, std::floor(NSMidY(frame)), NSWidth(frame) - 8, 1));
        return;
    }
    const bool isSelected = row == selected;
    if (isSelected) {
        [[NSColor selectedMenuItemColor] set];
        NSRectFill(frame);
    }
    NSColor* const color = isSelected ? [NSColor selectedMenuItemTextColor] : [NSColor controlTextColor];
    NSArray* const cells = [[item title] componentsSeparatedByString:@"\t"];
    const CGFloat height = [listFont() defaultLineHeightForFont];
    const CGFloat y = std::floor(NSMidY(frame) - height / 2);
    drawText(fitted([cells objectAtIndex:0], first), NSMakePoint(NSMinX(frame) + PADDING, y), color);
    if ([cells count] < 2) return;
    NSString* const value = fitted([cells objectAtIndex:1], second);
    drawText(value, NSMakePoint(NSMaxX(frame) - PADDING - [self barRoom] - widthOf(value), y), color);
}

// A triangle that points up (-1) or down (1), dim where there is nothing more.
- (void)drawArrow:(int)direction in:(NSRect)strip isLive:(bool)isLive {
    const CGFloat x = std::floor(NSMidX(strip)), y = std::floor(NSMidY(strip)), half = 4;
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(x - half, y - direction * half / 2)];
    [path lineToPoint:NSMakePoint(x + half, y - direction * half / 2)];
    [path lineToPoint:NSMakePoint(x, y + direction * half / 2)];
    [path closePath];
    [isLive ? [NSColor controlTextColor] : [NSColor gridColor] set];
    [path fill];
}

// Where in the list the rows in sight are.
- (void)drawPosition:(NSRect)rows {
    const CGFloat all = static_cast<CGFloat>([self count]);
    const CGFloat length = std::max(NSHeight(rows) * static_cast<CGFloat>(inSight) / all, ROW);
    const CGFloat share = static_cast<CGFloat>(top) / (all - static_cast<CGFloat>(inSight));
    const NSRect bar =
        NSMakeRect(NSMaxX(rows) - 5, NSMinY(rows) + share * (NSHeight(rows) - length), 3, length);
    [[NSColor disabledControlTextColor] set];
    [[NSBezierPath bezierPathWithRoundedRect:bar xRadius:1.5 yRadius:1.5] fill];
}

- (void)drawRect:(NSRect)dirty {
    const NSRect bounds = [self bounds];
    [[NSColor windowBackgroundColor] set];
    NSRectFill(bounds);
    const CGFloat width = NSWidth(bounds) - 2 * EDGE;
    const NSRect rows = NSMakeRect(EDGE, [self startOfRows], width, static_cast<CGFloat>(inSight) * ROW);
    for (NSInteger i = 0; i < inSight; i++) {
        [self drawRow:top + i in:NSMakeRect(EDGE, NSMinY(rows) + static_cast<CGFloat>(i) * ROW, width, ROW)];
    }
    if ([self scrolls]) {
        [self drawArrow:-1 in:NSMakeRect(EDGE, EDGE, width, STRIP) isLive:top > 0];
        [self drawArrow:1
                     in:NSMakeRect(EDGE, NSMaxY(rows), width, STRIP)
                 isLive:top + inSight < [self count]];
        [self drawPosition:rows];
    }
    [[NSColor gridColor] set];
    NSFrameRect(bounds);
}

@end

// --- The button ---

@interface ListPopUp : NSPopUpButton {
    NSPanel* panel; // not nil while the list is open
    ListView* list; // of the panel
    bool isOpen;
    bool isHeld;     // the button of the mouse is down since the list was opened
    NSPoint pointer; // on the screen
}
@end

@implementation ListPopUp

static NSPoint placeOnScreen(NSEvent* event) {
    NSWindow* const window = [event window];
    return window ? [window convertBaseToScreen:[event locationInWindow]] : [NSEvent mouseLocation];
}

// The button on the screen.
- (NSRect)place {
    const NSRect inWindow = [self convertRect:[self bounds] toView:nil];
    return {[[self window] convertBaseToScreen:inWindow.origin], inWindow.size};
}

// Below the button, or above it where there is more room.
- (NSRect)frameOfList {
    const NSRect place = [self place];
    const NSRect screen = [[[self window] screen] visibleFrame];
    const CGFloat scale = platformScale();
    const CGFloat below = NSMinY(place) - NSMinY(screen) - SCREEN_GAP;
    const CGFloat above = NSMaxY(screen) - NSMaxY(place) - SCREEN_GAP;
    NSSize size = [list sizeInHeight:1e7];
    const bool goesDown = size.height * scale <= below || below >= above;
    size = [list sizeInHeight:(goesDown ? below : above) / scale];
    size = NSMakeSize(std::max(size.width * scale, NSWidth(place)), size.height * scale);
    const CGFloat x = std::max(std::min(NSMinX(place), NSMaxX(screen) - size.width), NSMinX(screen));
    return NSMakeRect(x, goesDown ? NSMinY(place) - size.height : NSMaxY(place), size.width, size.height);
}

- (void)open {
    NSMutableArray* const rows = [NSMutableArray arrayWithArray:[[self menu] itemArray]];
    [rows removeObjectAtIndex:0];
    list = [[[ListView alloc] initWithItems:rows] autorelease];
    panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, ROW, ROW)
                                       styleMask:NSBorderlessWindowMask
                                         backing:NSBackingStoreBuffered
                                           defer:YES];
    [panel setLevel:NSPopUpMenuWindowLevel];
    [panel setHidesOnDeactivate:NO];
    [panel setReleasedWhenClosed:NO];
    [panel setAcceptsMouseMovedEvents:YES];
    [panel setContentView:list];
    [panel setFrame:[self frameOfList] display:NO];
    [panel orderFront:nil];
    isOpen = true;
}

- (void)close {
    [panel close];
    [panel release];
    panel = nil;
    list = nil;
}

// From the list's upper edge, in points.
- (CGFloat)pointerHeight {
    return (NSMaxY([panel frame]) - pointer.y) / platformScale();
}

- (NSInteger)rowAtPointer {
    const NSRect frame = [panel frame];
    return pointer.x < NSMinX(frame) || pointer.x >= NSMaxX(frame) ? -1 : [list rowAt:[self pointerHeight]];
}

- (void)followPointer:(NSEvent*)event {
    pointer = placeOnScreen(event);
    const NSInteger row = [self rowAtPointer];
    if (row >= 0 || isHeld) [list select:row];
}

- (void)scrollAtEnds {
    const NSRect frame = [panel frame];
    if (pointer.x < NSMinX(frame) || pointer.x >= NSMaxX(frame)) return;
    // Pulled beyond the list it scrolls too, but not by the click that opened it.
    if (!NSPointInRect(pointer, frame) && (!isHeld || NSPointInRect(pointer, [self place]))) return;
    [list scrollBy:[list endAt:[self pointerHeight]]];
}

// Let go on the button that opened the list, it stays open.
- (void)letGo {
    isHeld = false;
    if (NSPointInRect(pointer, [self place])) return;
    const bool isOnRow = [self rowAtPointer] >= 0 && [list isChoice];
    if (isOnRow || !NSPointInRect(pointer, [panel frame])) isOpen = false;
}

- (void)takeKey:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    if ([event modifierFlags] & NSCommandKeyMask) {
        [list select:-1];
        isOpen = false;
        [NSApp postEvent:event atStart:YES];
    } else if (key == KEY_ESCAPE) {
        [list select:-1];
        isOpen = false;
    } else if (key == KEY_RETURN || key == KEY_ENTER) {
        isOpen = ![list isChoice];
    } else {
        [list takeKey:event];
    }
}

- (void)takeOther:(NSEvent*)event {
    const bool wasKey = [[self window] isKeyWindow];
    const bool isClosing = [event type] == NSAppKitDefined && [event subtype] == GSAppKitWindowClose;
    if (!isClosing) [NSApp sendEvent:event];
    if (!isClosing && wasKey == [[self window] isKeyWindow]) return;
    [list select:-1];
    isOpen = false;
    if (isClosing) [NSApp postEvent:event atStart:YES]; // when the list is gone
}

- (void)take:(NSEvent*)event {
    switch ([event type]) {
    case NSKeyDown: [self takeKey:event]; break;
    case NSKeyUp:
    case NSRightMouseDown:
    case NSRightMouseUp: break;
    case NSMouseMoved:
    case NSLeftMouseDragged: [self followPointer:event]; break;
    case NSLeftMouseDown:
        [self followPointer:event];
        if (NSPointInRect(pointer, [panel frame])) break;
        [list select:-1];
        isOpen = false;
        break;
    case NSLeftMouseUp:
        [self followPointer:event];
        [self letGo];
        break;
    case NSScrollWheel:
        [list scrollBy:-std::lround(3 * [event deltaY])];
        if ([self rowAtPointer] >= 0) [list select:[self rowAtPointer]];
        break;
    case NSPeriodic: [self scrollAtEnds]; break;
    default: [self takeOther:event];
    }
}

// Returns when a row was chosen or the list was closed.
- (void)runList {
    [self open];
    [NSEvent startPeriodicEventsAfterDelay:SCROLL_PERIOD withPeriod:SCROLL_PERIOD];
    while (isOpen) {
        NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
        [self take:[NSApp nextEventMatchingMask:NSAnyEventMask
                                      untilDate:[NSDate distantFuture]
                                         inMode:NSEventTrackingRunLoopMode
                                        dequeue:YES]];
        [pool release];
    }
    [NSEvent stopPeriodicEvents];
    const NSInteger chosen = [list isChoice] ? [list selected] : -1;
    [self close];
    if (chosen < 0) return;
    [self selectItemAtIndex:chosen + 1]; // behind the title
    [self sendAction:[self action] to:[self target]];
}

- (void)mouseDown:(NSEvent*)event {
    if ([self numberOfItems] < 2 || panel) return;
    pointer = placeOnScreen(event);
    isHeld = true;
    [self runList];
}

- (void)performClick:(id)sender {
    if ([self numberOfItems] < 2 || panel) return;
    isHeld = false;
    [self runList];
}

@end

NSPopUpButton* makeListPopUp(NSString* title) {
    ListPopUp* const button = [[[ListPopUp alloc] initWithFrame:NSZeroRect pullsDown:YES] autorelease];
    [button addItemWithTitle:title];
    return button;
}
