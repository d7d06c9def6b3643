// SPDX-License-Identifier: MIT
//
// The calculator's window.
#import "NightTheme.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

int main(int argc, const char** argv) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    platformRegisterDefaults();
    [NSApplication sharedApplication];
    platformAfterLaunch();
    useNightTheme();
    PelmoAppDelegate* const delegate = [[PelmoAppDelegate alloc] init];
    [NSApp setDelegate:(id)delegate];
    waitingToOpenFilename = [platformFileArgument(argc, argv) copy];
    [pool release];
    [NSApp run]; // the end comes as applicationWillTerminate:, and exits
    return 0;
}
