// SPDX-License-Identifier: MIT
#import "NameListPanel.h"

#import "MainConsole.h"

#include <algorithm>

static const NSSize SIZE = {480, 420};
static const CGFloat MARGIN = 8;
static const CGFloat FIELD_HEIGHT = 22;
static const size_t COLUMN = 14; // characters of the name, before what it is

// A click takes a line.
@interface NameListView : NSTextView
@end

@implementation NameListView

- (void)mouseDown:(NSEvent*)event {
    const NSUInteger place =
        characterAt(self, [self convertPoint:[event locationInWindow] fromView:nil]).character;
    NSString* const above = [[self string] substringToIndex:MIN(place, [[self string] length])];
    const NSUInteger line = [[above componentsSeparatedByString:@"\n"] count] - 1;
    [(NameListPanel*)[self window] take:line];
}

@end

@implementation NameListPanel

+ (NameListPanel*)newPanel:(NSString*)title
                      rows:(const std::vector<NameRow>&)names
                   console:(MainConsole*)owner {
    NameListPanel* const panel = [makePanel(self, title, SIZE, NSResizableWindowMask) retain];
    panel->rows = names;
    panel->console = owner;
    [panel fill];
    return panel;
}

- (void)fill {
    NSView* const content = [self contentView];
    const NSSize size = [content bounds].size;
    const CGFloat top = size.height - MARGIN - FIELD_HEIGHT;
    field = [[[NSTextField alloc]
        initWithFrame:NSMakeRect(MARGIN, top, size.width - 2 * MARGIN, FIELD_HEIGHT)] autorelease];
    [field setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];
    [[field cell] setPlaceholderString:@"Type a part of a name or of what it is"];
    [field setDelegate:(id)self];
    [field setTarget:self];
    [field setAction:@selector(takeFirst:)];
    [content addSubview:field];
    NSScrollView* const scroll =
        [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, size.width, top - MARGIN)] autorelease];
    [scroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    list = [[[NameListView alloc] initWithFrame:NSZeroRect] autorelease];
    [list setEditable:NO];
    [list setSelectable:NO];
    [list setBackgroundColor:gray(0.11)];
    [list setTextContainerInset:NSMakeSize(MARGIN, MARGIN)];
    scrollText(scroll, list);
    [content addSubview:scroll];
    [self setInitialFirstResponder:field];
    [self show];
}

- (BOOL)row:(const NameRow&)row contains:(NSString*)part {
    if ([part length] == 0) return YES;
    NSString* const line = [NSString stringWithFormat:@"%s %s", row.shown.c_str(), row.text.c_str()];
    return [line rangeOfString:part options:NSCaseInsensitiveSearch].location != NSNotFound;
}

- (void)show {
    inSight.clear();
    std::string text;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (![self row:rows[i] contains:[field stringValue]]) continue;
        inSight.push_back(i);
        std::string line = rows[i].shown;
        if (!rows[i].text.empty()) line.resize(std::max(line.size() + 2, COLUMN), ' ');
        text += (text.empty() ? "" : "\n") + line + rows[i].text;
    }
    NSFont* const font = [NSFont userFixedPitchFontOfSize:12];
    NSDictionary* const look = textLook(font, gray(0.86));
    [[list textStorage]
        setAttributedString:[[[NSAttributedString alloc] initWithString:textFromBytes(text.c_str())
                                                             attributes:look] autorelease]];
    [list sizeToFit];
    [list scrollPoint:NSZeroPoint];
}

- (void)controlTextDidChange:(NSNotification*)notification {
    [self show];
}

- (void)take:(NSUInteger)line {
    if (line >= inSight.size()) return;
    [console typeName:textFromBytes(rows[inSight[line]].name.c_str())];
    [[console window] makeKeyAndOrderFront:nil];
}

- (void)takeFirst:(id)sender {
    if ([[field stringValue] length] > 0) [self take:0];
}

@end
