// SPDX-License-Identifier: MIT
#include "Interrupt.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupted = 0;

void raiseFlag(int) {
    interrupted = 1;
}

} // namespace

bool isInterrupted() {
    return interrupted != 0;
}

void forgetInterrupt() {
    interrupted = 0;
}

InterruptCatcher::InterruptCatcher() {
    forgetInterrupt();
    catcher.Start(SIGINT, raiseFlag);
}

void dieOfInterrupt() {
    std::signal(SIGINT, SIG_DFL);
    raise(SIGINT);
    _exit(130); // where the signal is blocked
}

bool sleepUnlessInterrupted(long milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    // In small steps: a signal between the question and the sleep would otherwise be noticed only at the end.
    const auto step = std::chrono::milliseconds(10);
    while (!isInterrupted()) {
        const auto left = end - Clock::now();
        if (left <= Clock::duration::zero()) return true;
        std::this_thread::sleep_for(std::min<Clock::duration>(left, step));
    }
    return false;
}
