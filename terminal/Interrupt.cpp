// SPDX-License-Identifier: MIT
#include "Interrupt.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t endAsked = 0;

void raiseFlag(int) {
    interrupted = 1;
}

void askForEnd(int signal) {
    endAsked = signal;
}

} // namespace

bool isInterrupted() {
    return interrupted != 0 || endAsked != 0;
}

int endSignal() {
    return endAsked;
}

void forgetInterrupt() {
    interrupted = 0;
}

InterruptCatcher::InterruptCatcher() {
    forgetInterrupt();
    catcher.Start(SIGINT, raiseFlag);
}

EndCatcher::EndCatcher() {
    hangUp.Start(SIGHUP, askForEnd);
    termination.Start(SIGTERM, askForEnd);
}

void dieOf(int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
    _exit(128 + signal); // where the signal is blocked
}

void dieOfInterrupt() {
    dieOf(SIGINT);
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
