// SPDX-License-Identifier: MIT
#import "Termination.h"

#import "MainConsole.h"
#import "PelmoAppDelegate.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

static const NSTimeInterval RETRY_DELAY = 0.05; // while an entry ends

// What a signal handler may touch.
static volatile std::sig_atomic_t isAsked = 0;
static int wakingEnd = -1; // of a pipe whose other end the run loop watches

static void askForEnd(int) {
    const int error = errno;
    isAsked = 1;
    if (write(wakingEnd, "", 1) < 0) errno = error; // it is full: the run loop will wake anyway
    errno = error;
}

std::vector<int> terminationSignals() {
    std::vector<int> heeded;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction found = {};
        sigaction(number, nullptr, &found);
        if (found.sa_handler != SIG_IGN) heeded.push_back(number);
    }
    return heeded;
}

bool isTerminationAsked() {
    return isAsked != 0;
}

// Ends the application when the pipe can be read.
@interface Terminator : NSObject
@end

@implementation Terminator
- (void)pipeIsReady:(NSNotification*)notification {
    [self end];
}

- (void)end {
    PelmoAppDelegate* const delegate = (PelmoAppDelegate*)[NSApp delegate];
    if (![[delegate mainConsole] isAtWork]) {
        [NSApp terminate:nil];
        return;
    }
    [self performSelector:@selector(end)
               withObject:nil
               afterDelay:RETRY_DELAY
                  inModes:@[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ]];
}
@end

void heedTerminationSignals(const std::vector<int>& signals) {
    int ends[2];
    if (pipe(ends) != 0) return; // the library's own handlers stay
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    wakingEnd = ends[1];
    // Both stay for the rest of the run.
    Terminator* const terminator = [[Terminator alloc] init];
    NSFileHandle* const readable = [[NSFileHandle alloc] initWithFileDescriptor:ends[0]];
    [[NSNotificationCenter defaultCenter] addObserver:terminator
                                             selector:@selector(pipeIsReady:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:readable];
    [readable waitForDataInBackgroundAndNotifyForModes:@[
        NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode
    ]];
    for (const int number : signals) {
        struct sigaction action = {};
        action.sa_handler = askForEnd;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}
