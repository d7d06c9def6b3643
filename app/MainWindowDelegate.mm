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

// A window manager's frame takes up to so much of a zoomed window.
static const CGFloat FRAME_ROOM = 48;

// Moves one axis of a window (its start and length) to an end of a screen's. False when it is near neither.
static bool snapAxis(CGFloat* start, CGFloat length, CGFloat screenStart, CGFloat screenLength) {
    if (std::fabs(screenStart - *start - SHIFT) <= BAND) {
        *start = screenStart;
        return true;
    }
    const CGFloat gap = screenStart + screenLength - (*start + length);
    if (std::fabs(gap + SHIFT) > BAND) return false;
    *start += gap;
    return true;
}

NSRect snappedFrame(NSRect frame, const NSRect* screens, size_t count) {
    bool isSnappedX = false;
    bool isSnappedY = false;
    for (size_t i = 0; i < count; i++) {
        const NSRect& screen = screens[i];
        if (!isSnappedX) {
            isSnappedX = snapAxis(&frame.origin.x, frame.size.width, screen.origin.x, screen.size.width);
        }
        if (!isSnappedY) {
            isSnappedY = snapAxis(&frame.origin.y, frame.size.height, screen.origin.y, screen.size.height);
        }
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

@implementation MainWindow

// GNUstep would keep all of a titled window on the screen: a drag stopped at every edge, and a window that
// stood partly outside came back elsewhere. Where a window may go is left to the window manager.
- (NSRect)constrainFrameRect:(NSRect)frame toScreen:(NSScreen*)screen {
    if (platformWindowManagerMoves()) return frame;
    return [super constrainFrameRect:frame toScreen:screen];
}

// GNUstep zooms, but does not go back.
- (void)zoom:(id)sender {
    if (!platformWindowManagerMoves()) {
        [super zoom:sender];
        return;
    }
    MainWindowDelegate* const mover = (MainWindowDelegate*)[self delegate];
    if ([self isZoomed]) {
        [mover placeWindow:unzoomed];
        return;
    }
    unzoomed = [self frame];
    [mover placeWindow:[[self screen] visibleFrame]];
    zoomed = [self frame];
}

// The window manager may have moved it a little, to make room for its frame.
- (BOOL)isZoomed {
    if (!platformWindowManagerMoves()) return [super isZoomed];
    const NSSize size = [self frame].size;
    return std::fabs(size.width - zoomed.size.width) <= FRAME_ROOM &&
           std::fabs(size.height - zoomed.size.height) <= FRAME_ROOM;
}

- (void)setLevel:(NSInteger)level {
    if (!platformWindowManagerMoves()) {
        [super setLevel:level];
        return;
    }
    isKeptAbove = level >= NSFloatingWindowLevel;
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    [center removeObserver:self name:NSWindowDidBecomeKeyNotification object:nil];
    if (isKeptAbove) {
        [center addObserver:self
                   selector:@selector(anyWindowDidBecomeKey:)
                       name:NSWindowDidBecomeKeyNotification
                     object:nil];
    }
    for (NSWindow* const one in [NSApp windows]) {
        if ([one isVisible] && ([one styleMask] & NSTitledWindowMask)) platformKeepAbove(one, isKeptAbove);
    }
}

// A question, or another window of ours, must not disappear behind this one.
- (void)anyWindowDidBecomeKey:(NSNotification*)notification {
    platformKeepAbove([notification object], true);
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self
                                                    name:NSWindowDidBecomeKeyNotification
                                                  object:nil];
    [super dealloc];
}

- (NSInteger)level {
    return isKeptAbove ? static_cast<NSInteger>(NSFloatingWindowLevel) : [super level];
}

// A window manager forgets it of a window that goes away.
- (void)orderWindow:(NSWindowOrderingMode)place relativeTo:(NSInteger)other {
    [super orderWindow:place relativeTo:other];
    if (isKeptAbove && place == NSWindowAbove) platformKeepAbove(self, true);
}

@end

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
    if (!snapEnabled || ![self isShown]) return;
    const std::vector<NSRect> screens = visibleFrames();
    const NSRect frame = [window frame];
    const NSRect snapped = snappedFrame(frame, screens.data(), screens.size());
    if (!NSEqualRects(frame, snapped)) [self placeWindow:snapped];
}

- (bool)isShown {
    return [window isVisible] && ![window isMiniaturized] && !mainWinIsHidden;
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
