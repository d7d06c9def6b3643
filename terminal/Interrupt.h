// SPDX-License-Identifier: MIT
//
// Ctrl-C. While nobody catches it, it ends the program as it ends any other.
#pragma once

#include "Signals.h"

// Whether Ctrl-C came since the last forgetInterrupt. May be called at any time.
bool isInterrupted();

void forgetInterrupt();

// Catches Ctrl-C for its lifetime, beginning with the flag cleared: it sets the flag and lets a blocking read
// fail with EINTR. Then all is as it was, but for the flag. A process that was started with Ctrl-C ignored,
// as in the background, goes on ignoring it.
class InterruptCatcher {
public:
    InterruptCatcher();
    InterruptCatcher(const InterruptCatcher&) = delete;
    InterruptCatcher& operator=(const InterruptCatcher&) = delete;

private:
    SignalCatcher catcher;
};

// Ends the program as an uncaught Ctrl-C does, so that the shell's loop around it ends too.
[[noreturn]] void dieOfInterrupt();

// Sleeps. Returns early, and false, when Ctrl-C comes.
bool sleepUnlessInterrupted(long milliseconds);
