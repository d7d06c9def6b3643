// SPDX-License-Identifier: MIT
//
// The images of controls, menus and panels. They are drawn anew wherever they are shown: sharp on every
// screen, and in the colors of the look in use.
#pragma once

#import <AppKit/AppKit.h>

// Puts them in the place of GNUstep's own of the same names. A change of the theme brings those back.
void useThemeImages();

// Nil for a name that is none of ours.
NSImage* themeImage(NSString* name);
