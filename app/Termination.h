// SPDX-License-Identifier: MIT
//
// The end from outside: signals that ask the program to end (SIGTERM, SIGINT, and SIGHUP when a session
// ends), and the loss of the display. What is due is written first.
#pragma once

#include <csignal>
#include <vector>

// What the signals' handler has to do with, which can be given nothing: one for the process.
struct TerminationRequest {
    volatile std::sig_atomic_t isAsked = 0; // whether such a signal has come
    int wakingEnd = -1;                     // of a pipe whose other end the run loop watches
};
extern TerminationRequest terminationRequest;

// The signals that are to be heeded: those that whoever started the program does not have ignored, as nohup
// does. To be called before [NSApplication sharedApplication], which sets handlers of its own.
std::vector<int> terminationSignals();

// From now on each of these signals ends the application like its menu, as soon as the run loop has a turn
// and no entry runs; an entry that runs is interrupted. To be called after [NSApplication sharedApplication].
void heedTerminationSignals(const std::vector<int>& signals);
