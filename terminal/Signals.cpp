// SPDX-License-Identifier: MIT
#include "Signals.h"

namespace {

bool isIgnored(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

void SignalCatcher::Start(int toCatch, void (*handler)(int)) {
    Stop();
    struct sigaction present = {};
    if (sigaction(toCatch, nullptr, &present) != 0 || isIgnored(present)) return;
    found = present; // before the handler can ask for it
    signal = toCatch;
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    if (sigaction(signal, &action, nullptr) != 0) signal = 0; // without SA_RESTART
}

void SignalCatcher::Stop() {
    if (signal != 0) sigaction(signal, &found, nullptr);
    signal = 0;
}

void SignalCatcher::PassOn() const {
    struct sigaction ours = {};
    sigaction(signal, &found, &ours);
    raise(signal);
    sigset_t signals;
    sigset_t blocked;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    sigprocmask(SIG_UNBLOCK, &signals, &blocked); // it comes here
    sigprocmask(SIG_SETMASK, &blocked, nullptr);
    sigaction(signal, &ours, nullptr);
}
