// SPDX-License-Identifier: MIT
//
// The main window. GNUstep leaves to it what a window manager does.
#import "MainWindowDelegate.h"
#import "Platform.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <cmath>

// A window manager's frame takes up to so much of a zoomed window.
static const CGFloat FRAME_ROOM = 48;

// Asks the window manager to keep a window that is shown above the others, in front of those that are kept
// there already, or no longer to. It keeps its place in the lists of windows, which a level of GNUstep's own
// would cost it.
static void keepAbove(NSWindow* window, bool isAbove) {
    const int number = static_cast<int>([window windowNumber]);
    if (number <= 0) return;
    GSDisplayServer* const server = GSServerForWindow(window);
    Display* const display = static_cast<Display*>([server serverDevice]);
    if (!display) return;
    // The "Extended Window Manager Hints": a message to the root window, 1 to add the state and 0 to remove
    // it.
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = reinterpret_cast<Window>([server windowDevice:number]);
    message.xclient.message_type = XInternAtom(display, "_NET_WM_STATE", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = isAbove ? 1 : 0;
    message.xclient.data.l[1] = static_cast<long>(XInternAtom(display, "_NET_WM_STATE_ABOVE", False));
    message.xclient.data.l[3] = 1; // an application asks
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureNotifyMask | SubstructureRedirectMask,
               &message);
    // A window that joins those above may come below the front one of them.
    if (isAbove) XRaiseWindow(display, message.xclient.window);
    XFlush(display);
}

@interface MainWindow : NSWindow {
    NSRect unzoomed; // where it stood before it was zoomed
    NSRect zoomed;   // where that put it; empty before the first time
    bool isKeptAbove;
}
@end

@implementation MainWindow

// GNUstep would keep all of a titled window on the screen: a drag stopped at every edge, and a window that
// stood partly outside came back elsewhere. Where a window may go is left to the window manager.
- (NSRect)constrainFrameRect:(NSRect)frame toScreen:(NSScreen*)screen {
    return frame;
}

// GNUstep zooms, but does not go back. It does as long as nothing else has changed the size.
- (void)zoom:(id)sender {
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
    const NSSize size = [self frame].size;
    return std::fabs(size.width - zoomed.size.width) <= FRAME_ROOM &&
           std::fabs(size.height - zoomed.size.height) <= FRAME_ROOM;
}

// A floating level keeps the window above the others of all programs, also after it was hidden.
- (void)setLevel:(NSInteger)level {
    isKeptAbove = level >= NSFloatingWindowLevel;
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    NSString* const news = NSWindowDidBecomeKeyNotification;
    [center removeObserver:self name:news object:nil];
    if (isKeptAbove)
        [center addObserver:self selector:@selector(anyWindowDidBecomeKey:) name:news object:nil];
    for (NSWindow* const one in [NSApp windows]) {
        if ([one isVisible] && ([one styleMask] & NSTitledWindowMask)) keepAbove(one, isKeptAbove);
    }
}

// A question, or another window of ours, must not disappear behind this one.
- (void)anyWindowDidBecomeKey:(NSNotification*)notification {
    keepAbove([notification object], true);
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (NSInteger)level {
    return isKeptAbove ? static_cast<NSInteger>(NSFloatingWindowLevel) : [super level];
}

// A window manager forgets it of a window that goes away.
- (void)orderWindow:(NSWindowOrderingMode)place relativeTo:(NSInteger)other {
    [super orderWindow:place relativeTo:other];
    if (isKeptAbove && place == NSWindowAbove) keepAbove(self, true);
}

@end

Class mainWindowClass() {
    return [MainWindow class];
}
