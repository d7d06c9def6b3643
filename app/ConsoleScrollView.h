// SPDX-License-Identifier: MIT
//
// Shows the console with some air above and below and as many whole lines as fit: none is cut at the top,
// wherever it is scrolled to. When its size changes the end of the text stays in sight if it was, otherwise
// the line at the top stays where it is.
#pragma once

#import <AppKit/AppKit.h>

constexpr CGFloat TEXT_AIR = 6; // points around the text

@interface ConsoleScrollView : NSScrollView // its document view is a MainConsole
@end
