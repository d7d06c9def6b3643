// SPDX-License-Identifier: MIT
//
// The colors of controls, menus and panels.
#pragma once

#import <AppKit/AppKit.h>

// Shades of gray by their use.
struct Palette {
    CGFloat window, field, control, pressed, edge, dim, mark, text, strong;
    CGFloat focus[3]; // the keyboard's focus: a color, and far from the others, since it is but a line
};

// That of the theme in use; another one than ours stands on its own colors.
const Palette& palette();

// What is chosen, with white text.
NSColor* accent();
