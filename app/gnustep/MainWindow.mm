// SPDX-License-Identifier: MIT
//
// The main window. GNUstep leaves to it what a window manager does.
#import "MainWindowDelegate.h"
#import "Platform.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#include <algorithm>
#include <cmath>
#include <iterator>

// A window manager's frame takes up to so much of a zoomed window.
static const CGFloat FRAME_ROOM = 48;

// Sends the root window a message about a window that is shown, one of the "Extended Window Manager Hints".
static bool tellManager(NSWindow* window, const char* type, const long (&data)[4]) {
    const int number = static_cast<int>([window windowNumber]);
    if (number <= 0) return false;
    GSDisplayServer* const server = GSServerForWindow(window);
    Display* const display = static_cast<Display*>([server serverDevice]);
    if (!display) return false;
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = reinterpret_cast<Window>([server windowDevice:number]);
    message.xclient.message_type = XInternAtom(display, type, False);
    message.xclient.format = 32;
    std::copy(std::begin(data), std::end(data), message.xclient.data.l);
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureNotifyMask | SubstructureRedirectMask,
               &message);
    return true;
}

// Asks the window manager to keep a window above the others, in front of those that are kept there already,
// or no longer to. It keeps its place in the lists of windows, which a level of GNUstep's own would cost it.
static void keepAbove(NSWindow* window, bool isAbove) {
    GSDisplayServer* const server = GSServerForWindow(window);
    Display* const display = static_cast<Display*>([server serverDevice]);
    if (!display) return;
    const long above = static_cast<long>(XInternAtom(display, "_NET_WM_STATE_ABOVE", False));
    // 1 adds the state and 0 removes it; the last 1: an application asks.
    if (!tellManager(window, "_NET_WM_STATE", {isAbove ? 1 : 0, above, 0, 1})) return;
    // A window that joins those above may come below the front one of them.
    const int number = static_cast<int>([window windowNumber]);
    if (isAbove) XRaiseWindow(display, reinterpret_cast<Window>([server windowDevice:number]));
    XFlush(display);
}

// 2: as a taskbar asks, whose wish counts whatever has the focus.
void platformFocus(NSWindow* window) {
    if (!tellManager(window, "_NET_ACTIVE_WINDOW", {2, CurrentTime, 0, 0})) return;
    XFlush(static_cast<Display*>([GSServerForWindow(window) serverDevice]));
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
