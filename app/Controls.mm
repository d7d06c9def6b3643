// SPDX-License-Identifier: MIT
#import "Controls.h"

#import "Platform.h"
#import "ZqScroller.h"

#include <algorithm>

@implementation EscapePanel

- (void)sendEvent:(NSEvent*)event {
    if ([event type] == NSKeyDown && platformKeyCode(event) == KEY_ESCAPE)
        [self performClose:nil];
    else
        [super sendEvent:event];
}

@end

id makePanel(Class kind, NSString* title, NSSize size, NSUInteger style) {
    NSPanel* const panel = [[kind alloc] initWithContentRect:NSMakeRect(0, 0, size.width, size.height)
                                                   styleMask:style | NSTitledWindowMask | NSClosableWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:YES];
    [panel setTitle:title];
    [panel setReleasedWhenClosed:NO];
    [panel setHidesOnDeactivate:NO];
    [panel center];
    return [panel autorelease];
}

void placeBeside(NSWindow* panel, NSWindow* window) {
    if ([panel isVisible]) return;
    const CGFloat gap = 16; // window managers put a frame around each
    const NSRect screen = [[window screen] visibleFrame], beside = [window frame];
    const CGFloat width = NSWidth([panel frame]);
    const bool isRight = NSMaxX(screen) - NSMaxX(beside) >= NSMinX(beside) - NSMinX(screen);
    const CGFloat x = isRight ? std::min(NSMaxX(beside) + gap, NSMaxX(screen) - width)
                              : std::max(NSMinX(beside) - gap - width, NSMinX(screen));
    [panel setFrameTopLeftPoint:NSMakePoint(x, NSMaxY(beside))];
}

void showWhole(NSWindow* panel) {
    [panel makeKeyAndOrderFront:nil];
    [panel display];
}

void makeLabel(NSTextField* field) {
    [field setEditable:NO];
    [field setSelectable:NO];
    [field setBezeled:NO];
    [field setBordered:NO];
    [field setDrawsBackground:NO];
}

NSTextField* labelIn(NSView* view, NSString* text, NSRect frame) {
    NSTextField* const field = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    makeLabel(field);
    [field setStringValue:text];
    [view addSubview:field];
    return field;
}

void useOurScroller(NSScrollView* scroll) {
    const NSRect track = NSMakeRect(0, 0, [ZqScroller scrollerWidth], NSHeight([scroll frame]));
    [scroll setVerticalScroller:[[[ZqScroller alloc] initWithFrame:track] autorelease]];
    [scroll setHasVerticalScroller:YES];
}

void scrollText(NSScrollView* scroll, NSTextView* text) {
    useOurScroller(scroll);
    [scroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    const NSSize inside = [scroll contentSize];
    [text setFrame:NSMakeRect(0, 0, inside.width, inside.height)];
    [text setMinSize:inside];
    [text setMaxSize:NSMakeSize(1e7, 1e7)];
    [text setVerticallyResizable:YES];
    [text setHorizontallyResizable:NO];
    [text setAutoresizingMask:NSViewWidthSizable];
    [[text textContainer] setContainerSize:NSMakeSize(inside.width, 1e7)];
    [[text textContainer] setWidthTracksTextView:YES];
    [scroll setDocumentView:text];
}

CharacterPlace characterAt(NSTextView* text, NSPoint place) {
    CharacterPlace found = {};
    const NSPoint origin = [text textContainerOrigin];
    NSLayoutManager* const layout = [text layoutManager];
    const NSUInteger glyph = [layout glyphIndexForPoint:NSMakePoint(place.x - origin.x, place.y - origin.y)
                                        inTextContainer:[text textContainer]
                         fractionOfDistanceThroughGlyph:&found.fraction];
    found.character = [layout characterIndexForGlyphAtIndex:static_cast<unsigned>(glyph)];
    return found;
}

CGFloat topOfLine(NSTextView* text, NSUInteger character) {
    NSLayoutManager* const layout = [text layoutManager];
    const NSRange glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                          actualCharacterRange:NULL];
    const NSRect line = [layout lineFragmentRectForGlyphAtIndex:glyphs.location effectiveRange:NULL];
    return NSMinY(line) + [text textContainerOrigin].y;
}

NSImage* bundleImage(NSString* name) {
    NSString* const path = [[NSBundle mainBundle] pathForResource:name ofType:@"png"];
    return path ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
}

NSArray* everyMode() {
    return @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
}

NSColor* gray(CGFloat white) {
    return [NSColor colorWithCalibratedWhite:white alpha:1];
}

NSMutableDictionary* textLook(NSFont* font, NSColor* color) {
    return [NSMutableDictionary dictionaryWithDictionary:@{
        NSFontAttributeName : font,
        NSForegroundColorAttributeName : color,
        NSLigatureAttributeName : @0
    }];
}
