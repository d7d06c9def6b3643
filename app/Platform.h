// SPDX-License-Identifier: MIT
//
// What macOS and GNUstep do differently. One of the folders macos/ and gnustep/ is compiled, and nothing else
// asks which.
#pragma once

#import <AppKit/AppKit.h>

#include "Keys.h"

#include <chrono>

// Whether the window manager has asked for this window to be closed, which waits in the queue of events and
// stays there. Other windows are closed at once. On macOS a click does that, which is not looked for.
bool platformCloseIsWaiting(NSWindow* window);

// Takes the release of the left button from the queue of events when it has come already, as that of a
// touchpad may when its press is looked at. GNUstep's text view would forget it and wait for another one for
// ever. False on macOS.
bool platformTakeEarlyRelease();

// What ends the way of GNUstep's text view with the mouse, which waits for the release of the left button:
// when the button is up and the release was lost all the same, another one comes. For a press that is handed
// to the text view; to be invalidated behind that. Nil on macOS.
NSTimer* platformWatchForRelease(NSEvent* press);

// The virtual key code of a key press.
uint32_t platformKeyCode(NSEvent* event);

// Before [NSApplication sharedApplication]: defaults that the window needs, and kinds of images that it does
// not.
void platformRegisterDefaults();

// Whether windows can be shown: where an X server does that, whether it answers.
bool platformHasDisplay();

// After it: LC_NUMERIC is "C" again, as the engine expects, and when the X server goes away the delegate is
// told by displayWasLost before the program ends with status 1.
void platformAfterLaunch();

// The paths of the files that the command line names, in order; our own options and GNUstep's are none. On
// macOS the system hands files over by itself.
NSArray* platformFileArguments(int argc, const char* const* argv);

// True when a window of this person on this display was there, has taken the paths and shows itself: this
// start is over then. Otherwise, and always where another window `isWanted`, later starts are told to the
// delegate by showAgainWith:. Call it before there is an application. On macOS the system does that, and it
// is false.
bool platformHandOver(NSArray* paths, bool isWanted);

// Asks the window manager to give a window the focus, also when another program has it. Nothing on macOS.
void platformFocus(NSWindow* window);

// Opens a page in the browser. False when the address is none or nothing can be started.
bool platformOpenPage(NSString* address);

// The bar for status items, or nil where there is none.
NSStatusBar* platformStatusBar();

// Hides the application, whose main window has been faded away. Where no status item brings it back (GNUstep)
// the window is put among the minimized ones instead, from where the window manager does.
void platformHide(NSWindow* window);

// The class of the main window. It may stand partly outside the screens, as the person or a snap leaves it,
// is zoomed to the whole screen and back, and with a floating level stays above the windows of all programs.
Class mainWindowClass();

// The text of a sheet in lines that are not too long where a sheet does not break lines by itself (GNUstep).
NSString* platformSheetText(NSString* text);

// The menu bar, still empty. On GNUstep it also takes the keys that people of Linux desktops press: Control
// where a row of the table of keys says so, and Command, which is Alt there, as everywhere.
NSMenu* platformMenuBar(NSString* title);

// Opens the first menu of the bar in the window for the keyboard and returns when all are closed again: the
// arrows choose, Return takes an item, Escape, F10 and the mouse close. Any other key closes them and goes to
// the window. Nothing on macOS, whose own keys do that.
void platformOpenMenuBar(NSWindow* window);

// Lets the item of a menu show and do what its key does on this platform.
void platformFitMenuItem(NSMenuItem* item, const KeyRow& row);

// Text that was selected, for other programs to paste with the middle button of the mouse. Nothing on macOS.
void platformOfferSelection(NSString* text);

// Text that is selected in any program, for the middle button to paste; empty for none, and on macOS. Of a
// text that is longer than any entry at least the first 100,000 bytes. Nil when its owner does not hand it
// over: no part of it is waited for longer than 0.3 seconds.
NSString* platformSelection();

// Has the desktop's manager of clipboards, where one runs, take over what was copied, which would be lost
// with the end of the program. Waits for it a second at most. Whether it has it. Where there is none that can
// be asked, waits until a second after the copy: some managers only look now and then. False on macOS, where
// what was copied is kept.
bool platformKeepClipboard(std::chrono::steady_clock::time_point copied);

// Shows a menu at the mouse and returns when it is gone. A key closes it and then goes to the window; Escape
// only closes it. On macOS the keys select in menus.
void platformPopUpMenu(NSMenu* menu, NSEvent* event, NSView* view);

// To be called before a panel for files is opened, which there is one of for all of a run. GNUstep's loses
// its size between two openings. `button`: the title of the one that ends it with a file.
void platformWillOpenPanel(NSSavePanel* panel, NSString* button);

// How many units of a window's frame make one point within the window: more than 1 on a dense screen under
// GNUstep, whose default GSScaleFactor says it. A new window is made larger by it, and so is a smallest
// content; frames that are set later and the smallest size of the frame are to be multiplied. 1 on macOS,
// where frames are in points.
CGFloat platformScale();

// Whether the window manager moves windows and tells afterwards only (GNUstep).
bool platformWindowManagerMoves();

// Draws a vertical three-part image in a flipped view, `top` at the top as it is seen: source over, opaque.
void platformDrawVertical(NSRect frame, NSImage* top, NSImage* fill, NSImage* bottom);

// Makes controls, menus and panels flat and dark, like the console at first. Call it after [NSApplication
// sharedApplication]. Nothing on GNUstep when the person has chosen a theme with the default GSTheme.
void useFlatTheme();

// Of links and code: legible on [NSColor textBackgroundColor] in each look, which it follows.
NSColor* platformLinkColor();

// Makes them light, or dark again, at once. Nothing on GNUstep without the theme above.
void platformUseLook(bool isLight);

// A segmented control with its labels in the middle, which shows the keyboard's focus and in which Left and
// Right choose. GNUstep's own has its labels a little to the right and takes no keys.
NSSegmentedControl* makeSegmentedControl();

// A color well that shows whether it has the keyboard's focus and opens the color panel with the space bar
// and with Return, which GNUstep's own does not.
NSColorWell* makeColorWell();

// A pull-down button with this title as its first item, whose list may be longer than the screen: the lists
// of variables and functions have thousands of rows. Items are added to its menu; what stands behind a tab in
// an item's title is a second column. macOS' own menus do that; on GNUstep:
//
// The list scrolls with the wheel and while the pointer is at its ends. Up, Down, Page Up, Page Down, Home
// and End move in it, typed letters go to the first row that begins with them (after a pause of a second they
// begin anew), Return chooses, Escape and a click elsewhere close it. The keys of the menus close it and are
// carried out.
NSPopUpButton* makeListPopUp(NSString* title);
