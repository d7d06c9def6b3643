// SPDX-License-Identifier: MIT
//
// The calculator's window.
#import "PelmoAppDelegate.h"
#import "Platform.h"
#import "Termination.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

static const int STATUS_NO_DISPLAY = 1;

// The engine writes the trace of its evaluation to standard output, where it would fill a desktop's log. With
// the option of the terminal's program, --trace, it goes to standard error as it does there.
static void directTrace(int argc, const char* const* argv) {
    bool isWanted = false;
    for (int i = 1; i < argc; ++i) isWanted = isWanted || strcmp(argv[i], "--trace") == 0;
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
    const std::vector<int> signals = terminationSignals();
    [NSApplication sharedApplication];
    heedTerminationSignals(signals);
    platformAfterLaunch();
    useNightTheme();
    PelmoAppDelegate* const delegate = [[PelmoAppDelegate alloc] init];
    [NSApp setDelegate:(id)delegate];
    waitingToOpenFilenames = [platformFileArguments(argc, argv) mutableCopy];
    [pool release];
    [NSApp run]; // the end comes as applicationWillTerminate:, and exits
    [delegate release];
    return 0;
}
