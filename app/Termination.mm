// SPDX-License-Identifier: MIT
#import "Termination.h"

#import "Controls.h"
#import "MainConsole.h"
#import "PelmoAppDelegate.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

static const NSTimeInterval RETRY_DELAY = 0.05; // while an entry ends

TerminationRequest terminationRequest;

static void askForEnd(int) {
    const int error = errno;
    terminationRequest.isAsked = 1;
    (void)write(terminationRequest.wakingEnd, "", 1); // when it is full the run loop will wake anyway
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

// Ends the application when the pipe can be read.
@interface Terminator : NSObject
@end

@implementation Terminator
- (void)end:(NSNotification*)notification {
    PelmoAppDelegate* const delegate = (PelmoAppDelegate*)[NSApp delegate];
    if (![[delegate mainConsole] isAtWork]) {
        [NSApp terminate:nil];
        return;
    }
    [self performSelector:@selector(end:) withObject:nil afterDelay:RETRY_DELAY inModes:everyMode()];
}
@end

void heedTerminationSignals(const std::vector<int>& signals) {
    int ends[2];
    if (pipe(ends) != 0) return; // the library's own handlers stay
    for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    terminationRequest.wakingEnd = ends[1];
    // Both stay for the rest of the run.
    Terminator* const terminator = [[Terminator alloc] init];
    NSFileHandle* const readable = [[NSFileHandle alloc] initWithFileDescriptor:ends[0]];
    [[NSNotificationCenter defaultCenter] addObserver:terminator
                                             selector:@selector(end:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:readable];
    [readable waitForDataInBackgroundAndNotifyForModes:everyMode()];
    for (const int number : signals) {
        struct sigaction action = {};
        action.sa_handler = askForEnd;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}
