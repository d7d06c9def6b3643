// SPDX-License-Identifier: MIT
//
// The release of the left button of the mouse that was lost.
#import "Platform.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <X11/Xlib.h>

static const NSTimeInterval LOOK_INTERVAL = 0.05; // seconds
static const int LOOKS = 2;                       // by the second one a release that is on its way has come

// Looks at the button as long as its timer lives, which retains it.
@interface ReleaseWatch : NSObject {
    NSEvent* press;
    int looks; // at a button that is up
}
- (id)initWithPress:(NSEvent*)event;
@end

static bool isButtonDown(NSWindow* window) {
    Display* const display = static_cast<Display*>([GSServerForWindow(window) serverDevice]);
    Window root = 0;
    Window child = 0;
    int place[4] = {};
    unsigned mask = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &child, &place[0], &place[1], &place[2],
                  &place[3], &mask);
    return (mask & Button1Mask) != 0;
}

@implementation ReleaseWatch

- (id)initWithPress:(NSEvent*)event {
    self = [super init];
    if (self) press = [event retain];
    return self;
}

- (void)dealloc {
    [press release];
    [super dealloc];
}

- (void)look:(NSTimer*)timer {
    if (isButtonDown([press window])) {
        looks = 0;
        return;
    }
    if (++looks < LOOKS) return;
    [NSApp postEvent:[NSEvent mouseEventWithType:NSLeftMouseUp
                                        location:[press locationInWindow]
                                   modifierFlags:[press modifierFlags]
                                       timestamp:[press timestamp]
                                    windowNumber:[press windowNumber]
                                         context:[press context]
                                     eventNumber:[press eventNumber]
                                      clickCount:[press clickCount]
                                        pressure:0]
             atStart:NO];
}

@end

NSTimer* platformWatchForRelease(NSEvent* press) {
    ReleaseWatch* const watch = [[[ReleaseWatch alloc] initWithPress:press] autorelease];
    NSTimer* const timer = [NSTimer timerWithTimeInterval:LOOK_INTERVAL
                                                   target:watch
                                                 selector:@selector(look:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    return timer;
}
