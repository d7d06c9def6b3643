// SPDX-License-Identifier: MIT
//
// Moves the main window: it snaps to the edges of the screens.
#pragma once

#import <AppKit/AppKit.h>

#include <cstddef>
#include <cstdint>

@class MainConsole;

// The drag that goes on: whether it snaps, where mouse and window began, and the way from the mouse to the
// window's origin.
extern uint8_t snapEnabled;
extern NSPoint mouseLocOrig;
extern NSPoint windLocOrig;
extern float ddX;
extern float ddY;

// The window's next responder too, so that the drags arrive that no view takes.
@interface MainWindowDelegate : NSResponder {
    NSWindow* window;         // not retained
    MainConsole* mainConsole; // not retained
    bool isPlacing;           // the window is being moved by us
    bool isDragging;          // the begin of a drag has been recorded
}
- (void)setWindow:(NSWindow*)mainWindow console:(MainConsole*)console;

// The begin of a move: records where mouse and window are.
- (void)windowWillMove:(NSNotification*)notification;
- (void)windowDidMove:(NSNotification*)notification;

// Places the window where it shall not snap.
- (void)placeWindow:(NSRect)frame;
@end

// The frame moved to the edges of a screen where it is near one, each axis by itself, by the first screen
// that attracts it. An edge snaps from 18 points inside the screen's edge to 54 points beyond it.
NSRect snappedFrame(NSRect frame, const NSRect* screens, size_t count);
