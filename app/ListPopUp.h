// SPDX-License-Identifier: MIT
//
// A pull-down button whose list may be longer than the screen: the lists of variables and functions have thousands of
// rows. macOS' own menus do that; GNUstep's end at the edge of the screen.
#ifndef TALLYQUILL_LISTPOPUP_H
#define TALLYQUILL_LISTPOPUP_H

#import <AppKit/AppKit.h>

// A pull-down button with this title as its first item. Items are added to its menu; what stands behind a tab in an
// item's title is a second column.
//
// The list scrolls with the wheel and while the pointer is at its ends. Up, Down, Page Up, Page Down, Home and End
// move in it, typed letters go to the first row that begins with them (after a pause of a second they begin anew),
// Return chooses, Escape and a click elsewhere close it. Keys with Command close it and are carried out.
NSPopUpButton* makeListPopUp(NSString* title);

#endif
