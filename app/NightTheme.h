// SPDX-License-Identifier: MIT
//
// How controls, menus and panels look on GNUstep: flat and dark, like the console. macOS draws its own, in its dark
// appearance.
#ifndef TALLYQUILL_NIGHTTHEME_H
#define TALLYQUILL_NIGHTTHEME_H

#import <AppKit/AppKit.h>

// Puts the theme to use, unless the person has chosen one with the default GSTheme. Call it after
// [NSApplication sharedApplication]. On macOS it asks for the dark appearance.
void useNightTheme();

// Gives a segmented control cells with centred labels; GNUstep's own stand a little to the right. To be called
// before the labels are set.
void centerSegmentLabels(NSSegmentedControl* control);

// A colour well. GNUstep's own shows little of its color, nor whether it has the keyboard's focus, and heeds no key;
// this one opens the color panel with the space bar and with Return.
NSColorWell* makeColorWell();

#endif
