// SPDX-License-Identifier: MIT
//
// A terminal at which a person types in pieces, between which signals come and a call may fail. There is
// nothing to read behind the last piece: the input has ended.
#pragma once

#include "System.h"

#include <algorithm>
#include <csignal>
#include <deque>
#include <functional>
#include <string>
#include <utility>

struct Piece {
    std::string bytes;                 // what one call reads, or
    int error = 0;                     // why it fails
    std::function<void()> meanwhile{}; // what happens while it is waited for
    int behind = 0;                    // a signal that comes when it was read
};

inline Piece during(int signal) {
    return {"", 0, [signal] { raise(signal); }};
}

class TypedKeys : public System {
public:
    explicit TypedKeys(std::deque<Piece> typed) : pieces(std::move(typed)) {}

    int WaitForInput(int, const timespec*, const sigset_t&) override {
        if (pieces.empty() || !pieces.front().meanwhile) return 1;
        pieces.front().meanwhile();
        pieces.pop_front();
        errno = EINTR;
        return -1;
    }
    ssize_t Read(int, void* to, size_t size) override {
        if (pieces.empty()) return 0;
        const Piece piece = pieces.front();
        pieces.pop_front();
        errno = piece.error;
        if (piece.error != 0) return -1;
        const size_t count = std::min(size, piece.bytes.size());
        std::copy_n(piece.bytes.data(), count, static_cast<char*>(to));
        if (piece.behind != 0) raise(piece.behind);
        return static_cast<ssize_t>(count);
    }
    int Poll(pollfd&, int) override { return 1; }
    int IsTerminal(int) override { return 1; }
    int Modes(int, termios& modes) override {
        modes = {};
        modes.c_lflag = ICANON | ECHO;
        return 0;
    }
    int SetModes(int, int, const termios&) override { return 0; }
    pid_t Foreground(int) override { return -1; }

private:
    std::deque<Piece> pieces;
};
