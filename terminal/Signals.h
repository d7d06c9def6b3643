// SPDX-License-Identifier: MIT
//
// Signals that are caught for a while. A program that was started with a signal ignored, as nohup does, goes
// on ignoring it, and so do the programs that it starts.
#pragma once

#include <csignal>

class SignalCatcher {
public:
    SignalCatcher() = default;
    ~SignalCatcher() { Stop(); }
    SignalCatcher(const SignalCatcher&) = delete;
    SignalCatcher& operator=(const SignalCatcher&) = delete;

    // From here on `handler` gets the signal, unless it is ignored. A blocking call then fails with EINTR.
    void Start(int toCatch, void (*handler)(int));

    // What Start found holds again.
    void Stop();

    // Whether the signal is one that this object catches.
    bool IsCatching(int asked) const { return asked == signal; }

    // In the handler: does what the signal would have done had nobody caught it, as to end or to stop the
    // program.
    // Returns when that leaves the program running.
    void PassOn() const;

private:
    int signal = 0; // none
    struct sigaction found = {};
};
