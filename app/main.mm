// SPDX-License-Identifier: MIT
//
// The calculator's window.
#import "LackOfMemory.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"
#import "Termination.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

static const int STATUS_NO_DISPLAY = 1;

static bool hasOption(int argc, const char* const* argv, const char* option) {
    return std::any_of(argv + 1, argv + argc, [option](const char* one) { return strcmp(one, option) == 0; });
}

// The engine writes the trace of its evaluation to standard output, where it would fill a desktop's log. With
// the option of the terminal's program, --trace, it goes to standard error as it does there.
static void directTrace(int argc, const char* const* argv) {
    const bool isWanted = hasOption(argc, argv, "--trace");
    const int trace = isWanted ? dup(STDERR_FILENO) : open("/dev/null", O_WRONLY);
    if (trace < 0 || trace == STDOUT_FILENO) return;
    dup2(trace, STDOUT_FILENO);
    close(trace);
    if (isWanted) setvbuf(stdout, nullptr, _IOLBF, 0); // each line when it happens
}

int main(int argc, const char** argv) {
    directTrace(argc, argv);
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    platformRegisterDefaults();
    if (!platformHasDisplay()) {
        fputs("Tallyquill: there is no display for a window; the program for the terminal is tallyquill.\n",
              stderr);
        return STATUS_NO_DISPLAY;
    }
    NSArray* const paths = platformFileArguments(argc, argv);
    if (platformHandOver(paths, hasOption(argc, argv, "--new-window"))) return 0;
    const std::vector<int> signals = terminationSignals();
    [NSApplication sharedApplication];
    heedTerminationSignals(signals);
    platformAfterLaunch();
    tellOfLackOfMemory();
    useFlatTheme();
    PelmoAppDelegate* const delegate = [[PelmoAppDelegate alloc] init];
    [NSApp setDelegate:(id)delegate];
    waitingToOpenFilenames = [paths mutableCopy];
    // The end comes as applicationWillTerminate:, and exits: what is released then needs the pool.
    [NSApp run];
    [delegate release];
    [pool release];
    return 0;
}
