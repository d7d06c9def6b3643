// SPDX-License-Identifier: MIT
#import "ConsoleScrollView.h"

#import "Controls.h"
#import "MainConsole.h"

// A place in the text: its end, or a character at the top and how far its line is scrolled out.
struct Place {
    bool isEnd = true;
    NSUInteger character = 0;
    CGFloat out = 0;
};

@implementation ConsoleScrollView

- (Place)place {
    MainConsole* const text = [self documentView];
    const NSRect seen = [self documentVisibleRect];
    const NSUInteger length = [[text string] length];
    // The half of the last line is as good as all of it.
    if (!text || length == 0 || NSMaxY(seen) + [[text font] pointSize] / 2 >= NSMaxY([text frame])) return {};
    Place place;
    place.isEnd = false;
    place.character = characterAt(text, NSMakePoint(1, NSMinY(seen) + 1)).character;
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
