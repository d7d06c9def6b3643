// SPDX-License-Identifier: MIT
#include "Signals.h"

namespace {

bool isIgnored(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

void SignalCatcher::start(int signal, void (*handler)(int)) {
    stop();
    struct sigaction found = {};
    if (sigaction(signal, nullptr, &found) != 0 || isIgnored(found)) return;
    found_ = found; // before the handler can ask for it
    signal_ = signal;
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr); // without SA_RESTART
}

void SignalCatcher::stop() {
    if (signal_ != 0) sigaction(signal_, &found_, nullptr);
    signal_ = 0;
}

void SignalCatcher::passOn() const {
    struct sigaction ours = {};
    sigaction(signal_, &found_, &ours);
    raise(signal_);
    sigset_t signals;
    sigset_t blocked;
    sigemptyset(&signals);
    sigaddset(&signals, signal_);
    sigprocmask(SIG_UNBLOCK, &signals, &blocked); // it comes here
    sigprocmask(SIG_SETMASK, &blocked, nullptr);
    sigaction(signal_, &ours, nullptr);
}
