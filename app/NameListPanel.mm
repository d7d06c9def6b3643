// SPDX-License-Identifier: MIT
#import "NameListPanel.h"

#import "MainConsole.h"

#import <objc/runtime.h>

#include <algorithm>

static const NSSize LIST_SIZE = {480, 420};
static const CGFloat MARGIN = 8;
static const CGFloat FIELD_HEIGHT = 22;
static const CGFloat LABEL = 56;      // the width of the field's label
static const NSInteger PAGE = 10;     // lines
static const size_t NAME_COLUMN = 14; // characters of the name, before what it is

// A click takes a line.
@interface NameListView : NSTextView
@end

@implementation NameListView

- (void)mouseDown:(NSEvent*)event {
    const NSPoint place = [self convertPoint:[event locationInWindow] fromView:nil];
    const NSRect lines = [[self layoutManager] usedRectForTextContainer:[self textContainer]];
    if (place.y - [self textContainerOrigin].y >= NSMaxY(lines)) return; // below them
    [(NameListPanel*)[self window] takeAt:characterAt(self, place).character];
}

@end

@implementation NameListPanel

+ (NameListPanel*)newPanel:(NSString*)title
                      rows:(const std::vector<NameRow>&)names
                   console:(MainConsole*)owner {
    NameListPanel* const panel = [makePanel(self, title, LIST_SIZE, NSResizableWindowMask) retain];
    panel->rows = names;
    panel->console = owner;
    [panel fill];
    return panel;
}

- (void)fill {
    NSView* const content = [self contentView];
    const NSSize size = [content bounds].size;
    const CGFloat top = size.height - MARGIN - FIELD_HEIGHT;
    NSTextField* const label =
        labelIn(content, @"Search:", NSMakeRect(MARGIN, top, LABEL - MARGIN, FIELD_HEIGHT - 3));
    [label setAutoresizingMask:NSViewMinYMargin];
    [label setAlignment:NSRightTextAlignment];
    const NSRect place = NSMakeRect(LABEL + MARGIN, top, size.width - LABEL - 2 * MARGIN, FIELD_HEIGHT);
    field = [[[NSTextField alloc] initWithFrame:place] autorelease];
    [field setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];
    [field setDelegate:(id)self];
    [content addSubview:field];
    NSScrollView* const scroll =
        [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, size.width, top - MARGIN)] autorelease];
    [scroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    list = [[[NameListView alloc] initWithFrame:NSZeroRect] autorelease];
    [list setEditable:NO];
    [list setSelectable:NO];
    [list setBackgroundColor:[NSColor textBackgroundColor]];
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
    starts.clear();
    for (size_t i = 0; i < rows.size(); ++i) {
        if ([self row:rows[i] contains:[field stringValue]]) inSight.push_back(i);
    }
    // What begins as what is typed comes first.
    const std::string start = bytesOf([[field stringValue] lowercaseString], NSISOLatin1StringEncoding);
    std::stable_partition(inSight.begin(), inSight.end(), [&](size_t row) {
        NSString* const name = [textFromBytes(rows[row].name.c_str()) lowercaseString];
        return bytesOf(name, NSISOLatin1StringEncoding).compare(0, start.size(), start) == 0;
    });
    std::string text;
    for (const size_t i : inSight) {
        std::string line = rows[i].shown;
        if (!rows[i].text.empty()) line.resize(std::max(line.size() + 2, NAME_COLUMN), ' ');
        starts.push_back(text.size()); // a byte is a character
        text += line + rows[i].text + "\n";
    }
    NSFont* const font = [NSFont userFixedPitchFontOfSize:12];
    NSMutableDictionary* const look = textLook(font, [NSColor textColor]);
    // What does not fit on a line goes on below what the name is.
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setHeadIndent:NAME_COLUMN * [@"0" sizeWithAttributes:look].width +
                         [[list textContainer] lineFragmentPadding]];
    [look setObject:style forKey:NSParagraphStyleAttributeName];
    [[list textStorage]
        setAttributedString:[[[NSAttributedString alloc] initWithString:textFromBytes(text.c_str())
                                                             attributes:look] autorelease]];
    [list sizeToFit];
    [list scrollPoint:NSZeroPoint];
    chosen = -1;
    if ([[field stringValue] length] > 0) [self choose:0];
}

- (NSRange)rangeOf:(NSInteger)line {
    const auto index = static_cast<size_t>(line);
    const NSUInteger end = index + 1 < starts.size() ? starts[index + 1] : [[list string] length];
    return NSMakeRange(starts[index], end - starts[index]);
}

- (void)show:(NSInteger)line on:(NSColor*)back in:(NSColor*)front {
    [[list textStorage]
        addAttributes:@{NSBackgroundColorAttributeName : back, NSForegroundColorAttributeName : front}
                range:[self rangeOf:line]];
}

- (void)choose:(NSInteger)line {
    if (inSight.empty()) return;
    if (chosen >= 0) [self show:chosen on:[NSColor textBackgroundColor] in:[NSColor textColor]];
    chosen = std::max<NSInteger>(0, std::min(line, static_cast<NSInteger>(inSight.size()) - 1));
    [self show:chosen on:[NSColor selectedTextBackgroundColor] in:[NSColor selectedTextColor]];
    [list scrollRangeToVisible:[self rangeOf:chosen]];
}

- (void)controlTextDidChange:(NSNotification*)notification {
    [self show];
}

- (void)take:(NSInteger)line {
    if (line < 0 || line >= static_cast<NSInteger>(inSight.size())) return;
    const NameRow& row = rows[inSight[static_cast<size_t>(line)]];
    [console typeName:textFromBytes(row.name.c_str())];
    [[console window] makeKeyAndOrderFront:nil];
}

- (void)takeAt:(NSUInteger)character {
    if (character >= [[list string] length]) return; // below the last line
    [self take:std::upper_bound(starts.begin(), starts.end(), character) - starts.begin() - 1];
}

// The keys of the field that are the list's.
- (BOOL)control:(NSControl*)control textView:(NSTextView*)editor doCommandBySelector:(SEL)command {
    const struct {
        SEL selector;
        NSInteger lines;
    } moves[] = {{@selector(moveUp:), -1},          {@selector(moveDown:), 1},
                 {@selector(pageUp:), -PAGE},       {@selector(pageDown:), PAGE},
                 {@selector(scrollPageUp:), -PAGE}, {@selector(scrollPageDown:), PAGE}};
    for (const auto& move : moves) {
        if (!sel_isEqual(command, move.selector)) continue;
        [self choose:chosen + move.lines];
        return YES;
    }
    if (!sel_isEqual(command, @selector(insertNewline:))) return NO;
    [self take:chosen];
    return YES;
}

@end
