// SPDX-License-Identifier: MIT
#import "ConsoleScrollView.h"

#import "MainConsole.h"

// A place in the text: its end, or a character at the top and how far its line is scrolled out.
struct Place {
    bool isEnd = true;
    NSUInteger character = 0;
    CGFloat out = 0;
};

static CGFloat topOfLine(NSTextView* text, NSUInteger character) {
    NSLayoutManager* const layout = [text layoutManager];
    const NSRange glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                          actualCharacterRange:NULL];
    const NSRect line = [layout lineFragmentRectForGlyphAtIndex:glyphs.location effectiveRange:NULL];
    return NSMinY(line) + [text textContainerOrigin].y;
}

@implementation ConsoleScrollView

- (Place)place {
    MainConsole* const text = [self documentView];
    const NSRect seen = [self documentVisibleRect];
    const NSUInteger length = [[text string] length];
    // The half of the last line is as good as all of it.
    if (!text || length == 0 || NSMaxY(seen) + [[text font] pointSize] / 2 >= NSMaxY([text frame])) return {};
    const NSPoint top = NSMakePoint(1, NSMinY(seen) - [text textContainerOrigin].y + 1);
    NSLayoutManager* const layout = [text layoutManager];
    const NSUInteger glyph = [layout glyphIndexForPoint:top inTextContainer:[text textContainer]];
    Place place;
    place.isEnd = false;
    place.character = [layout characterIndexForGlyphAtIndex:static_cast<unsigned>(glyph)];
    place.out = NSMinY(seen) - topOfLine(text, place.character);
    return place;
}

- (void)goTo:(const Place&)place {
    MainConsole* const text = [self documentView];
    if (!text) return;
    [text fitToScrollView];
    const CGFloat lowest = NSMaxY([text frame]) - [self contentSize].height;
    const CGFloat y = place.isEnd ? lowest : topOfLine(text, place.character) + place.out;
    [text scrollPoint:NSMakePoint(0, y)];
    [self reflectScrolledClipView:[self contentView]];
}

- (void)setFrame:(NSRect)frame {
    const Place place = [self place];
    [super setFrame:frame];
    [self goTo:place];
}

- (void)setFrameSize:(NSSize)size {
    const Place place = [self place];
    [super setFrameSize:size];
    [self goTo:place];
}

@end
