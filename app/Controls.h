// SPDX-License-Identifier: MIT
//
// What the windows are made of.
#pragma once

#import <AppKit/AppKit.h>

// A panel that Escape closes, also from within a field.
@interface EscapePanel : NSPanel
@end

// A panel that stays above nothing, is kept when it is closed and does not go away with the application's
// focus. `size`: of what is in it, in points. `style`: beside a title and a button that closes it.
id makePanel(Class kind, NSString* title, NSSize size, NSUInteger style);

// Places a panel that is not shown yet beside the window, where the screen has more room.
void placeBeside(NSWindow* panel, NSWindow* window);

// Shows a panel to which the keys go then. It is drawn whole at once: a system's own panel would be black,
// except what changes in it, until the window manager has answered, which takes seconds on a machine that is
// busy.
void showWhole(NSWindow* panel);

// Makes a field a line of text that cannot be changed.
void makeLabel(NSTextField* field);
NSTextField* labelIn(NSView* view, NSString* text, NSRect frame);

void useOurScroller(NSScrollView* scroll);

// Puts a text view into a scroll view with our scroller. The text is as wide as the view.
void scrollText(NSScrollView* scroll, NSTextView* text);

// The character at a place of the view, and how far into it the place is (0 to 1).
struct CharacterPlace {
    NSUInteger character;
    CGFloat fraction;
};
CharacterPlace characterAt(NSTextView* text, NSPoint place);

CGFloat topOfLine(NSTextView* text, NSUInteger character); // of the line it is in, in the view

// An image of the application's bundle, or nil.
NSImage* bundleImage(NSString* name);

// The modes of the run loop in which timers go on while a panel waits or a menu is open too.
NSArray* everyMode();

NSColor* gray(CGFloat white); // 0 black, 1 white

// For text drawn in this font and color.
NSMutableDictionary* textLook(NSFont* font, NSColor* color);
