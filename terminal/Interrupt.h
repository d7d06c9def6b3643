// SPDX-License-Identifier: MIT
//
// Ctrl-C, and the signals that ask a program to end. While nobody catches them, they end it as they end any
// other.
#pragma once

#include "Signals.h"

// Whether Ctrl-C came since the last forgetInterrupt, or the end was asked for. May be called at any time.
bool isInterrupted();

// The signal that asked for the end, or 0.
int endSignal();

void forgetInterrupt();

// Catches Ctrl-C for its lifetime, beginning with the flag cleared: it sets the flag and lets a blocking read
// fail with EINTR. Then all is as it was, except the flag. A process that was started with Ctrl-C ignored,
// as in the background, goes on ignoring it.
class InterruptCatcher {
public:
    InterruptCatcher();
    InterruptCatcher(const InterruptCatcher&) = delete;
    InterruptCatcher& operator=(const InterruptCatcher&) = delete;

private:
    SignalCatcher catcher;
};

// Catches SIGHUP and SIGTERM for its lifetime: what runs is interrupted, and endSignal tells.
class EndCatcher {
public:
    EndCatcher();
    EndCatcher(const EndCatcher&) = delete;
    EndCatcher& operator=(const EndCatcher&) = delete;

private:
    SignalCatcher hangUp;
    SignalCatcher termination;
};

// Ends the program as this signal does when nobody catches it.
[[noreturn]] void dieOf(int signal);

// Ends the program as an uncaught Ctrl-C does, so that the shell's loop around it ends too.
[[noreturn]] void dieOfInterrupt();

// Sleeps. Returns early, and false, when Ctrl-C comes.
bool sleepUnlessInterrupted(long milliseconds);
