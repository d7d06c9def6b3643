// SPDX-License-Identifier: MIT
//
// Shows the console. When its size changes the end of the text stays in sight if it was, otherwise the line
// at the top stays where it is.
#pragma once

#import <AppKit/AppKit.h>

@interface ConsoleScrollView : NSScrollView // its document view is a MainConsole
@end
