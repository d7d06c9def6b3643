// SPDX-License-Identifier: MIT
//
// The preferences panel's controller, which also fades the main window.
#ifndef TALLYQUILL_PREFCONTROLLER_H
#define TALLYQUILL_PREFCONTROLLER_H

#import <AppKit/AppKit.h>

@class MainConsole;

@interface PrefController : NSObject {
    MainConsole* mainConsole; // not retained
    NSTimer* timer;           // of the running fade, or nil
}
- (void)setMainConsole:(MainConsole*)console;

// Changes the window's opacity to `target` in steps of `rate` every 0.03 seconds; at once when the rate is 0 or
// its magnitude 1 or more. A target of 0 then takes the window away, a negative one hides the application. A new
// fade ends the one that runs.
- (void)fadeWindow:(float)target rate:(float)rate;

- (void)closePanel; // closes the panel when it is open
@end

#endif
