// SPDX-License-Identifier: MIT
#import "MainWindowDelegate.h"

#import "MainConsole.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

#include <cmath>
#include <vector>

uint8_t snapEnabled = 0;
NSPoint mouseLocOrig = {0, 0};
NSPoint windLocOrig = {0, 0};
float ddX = 0;
float ddY = 0;

// The band in which an edge snaps is 72 points wide and lies mostly beyond the screen's edge.
static const CGFloat BAND = 36;
static const CGFloat SHIFT = 18;

// Moves one axis of a window (its start and length) to an end of a screen's. False when it is near neither.
static bool snapAxis(CGFloat* start, CGFloat length, CGFloat screenStart, CGFloat screenLength) {
    const CGFloat gap = screenStart + screenLength - (*start + length);
    const bool isAtStart = std::fabs(screenStart - *start - SHIFT) <= BAND;
    if (!isAtStart && std::fabs(gap + SHIFT) > BAND) return false;
    *start = isAtStart ? screenStart : *start + gap;
    return true;
}

NSRect snappedFrame(NSRect frame, const NSRect* screens, size_t count) {
    bool isSnappedX = false, isSnappedY = false;
    NSPoint& origin = frame.origin;
    for (size_t i = 0; i < count; ++i) {
        const NSRect& screen = screens[i];
        isSnappedX = isSnappedX || snapAxis(&origin.x, NSWidth(frame), NSMinX(screen), NSWidth(screen));
        isSnappedY = isSnappedY || snapAxis(&origin.y, NSHeight(frame), NSMinY(screen), NSHeight(screen));
    }
    return frame;
}

static std::vector<NSRect> visibleFrames() {
    std::vector<NSRect> frames;
    for (NSScreen* const screen in [NSScreen screens]) {
        const bool isScreen = [screen isKindOfClass:[NSScreen class]];
        frames.push_back(isScreen ? [screen visibleFrame] : [screen frame]);
    }
    return frames;
}

@implementation MainWindowDelegate

- (void)setWindow:(NSWindow*)mainWindow console:(MainConsole*)console {
    window = mainWindow;
    mainConsole = console;
}

- (void)windowWillMove:(NSNotification*)notification {
    if (isPlacing) return;
    isDragging = true;
    snapEnabled = [mainConsole setting:@"snaptoscreen"] != 0;
    mouseLocOrig = [NSEvent mouseLocation];
    windLocOrig = [window frame].origin;
    ddX = static_cast<float>(windLocOrig.x - mouseLocOrig.x);
    ddY = static_cast<float>(windLocOrig.y - mouseLocOrig.y);
}

// A drag of the window's background moves it, as one of the title bar does.
- (void)mouseDown:(NSEvent*)event {
    [self windowWillMove:nil];
}

- (void)mouseDragged:(NSEvent*)event {
    // A drag whose begin went elsewhere would throw the window to where an earlier one left it.
    if ([event type] != NSLeftMouseDragged || !isDragging) return;
    if (([event modifierFlags] & NSAlternateKeyMask) || !snapEnabled) return;
    const NSPoint mouse = [NSEvent mouseLocation];
    NSRect frame = [window frame];
    frame.origin = NSMakePoint(mouse.x + ddX, mouse.y + ddY);
    // GNUstep tells of our own moves too: the drag would begin anew, from where the window has snapped to.
    [self placeWindow:frame];
    [self snap];
}

- (void)mouseUp:(NSEvent*)event {
    isDragging = false;
}

- (void)windowDidMove:(NSNotification*)notification {
    if (isPlacing) return;
    // A window manager that moves the window tells afterwards only.
    if (platformWindowManagerMoves()) snapEnabled = [mainConsole setting:@"snaptoscreen"] != 0;
    [self snap];
}

- (void)snap {
    if (!snapEnabled || !isShown(window)) return;
    const std::vector<NSRect> screens = visibleFrames();
    const NSRect frame = [window frame];
    const NSRect snapped = snappedFrame(frame, screens.data(), screens.size());
    if (!NSEqualRects(frame, snapped)) [self placeWindow:snapped];
}

- (void)placeWindow:(NSRect)frame {
    isPlacing = true;
    [window setFrame:frame display:YES];
    isPlacing = false;
}

// Hidden or in the dock, a window's frame is not where it will be.
- (void)windowWillMiniaturize:(NSNotification*)notification {
    [mainConsole storeFrame];
}

- (void)windowWillClose:(NSNotification*)notification {
    [mainConsole forgetWaitingScripts];
    [mainConsole storeFrame];
}

// Brought back by the window manager instead of the status item.
- (void)windowDidDeminiaturize:(NSNotification*)notification {
    if (mainWinIsHidden) [[mainConsole myAppDelegate] applicationDidBecomeActive:nil];
}

@end
