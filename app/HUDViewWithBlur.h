// SPDX-License-Identifier: MIT
//
// The window's content view: paints the translucent background behind the console. A press of the mouse where
// no control is goes to the window's delegate, which drags the window.
#pragma once

#import <AppKit/AppKit.h>

@class MainConsole;

@interface HUDViewWithBlur : NSView {
    MainConsole* mainConsole; // not retained
}
@property(nonatomic, assign) MainConsole* mainConsole;

// Fills the band between the status line and the controls, as far as it lies in `dirty`, with the console's
// background color at an alpha of 1 - 0.004 x the setting `trans`.
- (void)drawRect:(NSRect)dirty;
@end
