// SPDX-License-Identifier: MIT
//
// tallyquill: the calculator's console for terminals, pipes and scripts.
#include "Console.h"
#include "Signals.h"

#include <csignal>

int main(int argc, char** argv) {
    // Writing to a pipe that nobody reads is reported like any other failed write. Caught and not ignored:
    // programs that this one starts get the signal as it was.
    static SignalCatcher brokenPipes;
    brokenPipes.Start(SIGPIPE, [](int) {});
    return runConsole(argc, argv);
}
