// SPDX-License-Identifier: MIT
#include "Keyboard.h"

#include "Descriptor.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace {

// What the signal handlers need; there is one keyboard at a time.
volatile std::sig_atomic_t active = 0;
int descriptor = -1;
termios lineMode;
termios byteMode;

constexpr int kEndingSignals[] = {SIGTERM, SIGHUP, SIGQUIT};

void endBySignal(int signal) {
    if (active != 0) tcsetattr(descriptor, TCSANOW, &lineMode);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void stopBySignal(int signal) {
    const int saved = errno;
    tcsetattr(descriptor, TCSANOW, &lineMode);
    std::signal(signal, SIG_DFL);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, signal);
    raise(signal);
    sigprocmask(SIG_UNBLOCK, &mask, nullptr); // stops here
    if (active != 0) tcsetattr(descriptor, TCSANOW, &byteMode);
    std::signal(signal, stopBySignal);
    errno = saved;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

Keyboard::Keyboard(int input, int echo, std::size_t keep) : input_(input), echo_(echo), keep_(keep) {
    if (tcgetattr(input_, &modes_) != 0) return;
    if ((modes_.c_lflag & ECHO) == 0) echo_ = -1; // whoever turned it off wants it off
    descriptor = input_;
    lineMode = modes_;
    byteMode = modes_;
    byteMode.c_lflag &= static_cast<tcflag_t>(~static_cast<tcflag_t>(ICANON | ECHO));
    byteMode.c_cc[VMIN] = 1;
    byteMode.c_cc[VTIME] = 0;
    for (const int signal : kEndingSignals) std::signal(signal, endBySignal);
    std::signal(SIGTSTP, stopBySignal);
    active = 1;
    tcsetattr(input_, TCSADRAIN, &byteMode);
}

Keyboard::~Keyboard() {
    if (active == 0) return;
    active = 0;
    for (const int signal : kEndingSignals) std::signal(signal, SIG_DFL);
    std::signal(SIGTSTP, SIG_DFL);
    tcsetattr(input_, TCSADRAIN, &lineMode);
}

bool Keyboard::isKey(char byte, int key) const {
    const cc_t code = modes_.c_cc[key];
    return code != _POSIX_VDISABLE && static_cast<cc_t>(byte) == code;
}

void Keyboard::flushEcho() {
    if (echo_ >= 0 && !shown_.empty()) writeAll(echo_, shown_);
    shown_.clear();
}

void Keyboard::append(char byte, std::string& line) {
    if (line.size() >= keep_) return;
    line += byte;
    // A NUL or another control character is refused later; here it must not move the cursor.
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x20 || byte == '\t')
        shown_ += byte;
    else
        shown_.append({'^', static_cast<char>(code + '@')});
}

void Keyboard::eraseCharacter(std::string& line) {
    while (!line.empty() && isContinuation(line.back())) line.pop_back();
    if (line.empty()) return;
    line.pop_back();
    shown_ += "\b \b";
}

void Keyboard::eraseWord(std::string& line) {
    while (!line.empty() && line.back() == ' ') eraseCharacter(line);
    while (!line.empty() && line.back() != ' ') eraseCharacter(line);
}

bool Keyboard::take(char byte, std::string& line) {
    if (escape_ == Escape::Started) { // arrow and function keys have no meaning yet
        escape_ = byte == '[' || byte == 'O' ? Escape::Sequence : Escape::None;
        return false;
    }
    if (escape_ == Escape::Sequence) {
        if (byte >= '@' && byte <= '~') escape_ = Escape::None;
        return false;
    }
    if (byte == '\n') {
        shown_ += '\n';
        return true;
    }
    if (byte == '\x1b') {
        escape_ = Escape::Started;
    } else if (isKey(byte, VERASE) || byte == '\b' || byte == '\x7f') {
        eraseCharacter(line);
    } else if (isKey(byte, VKILL)) {
        while (!line.empty()) eraseCharacter(line);
    } else if (isKey(byte, VWERASE)) {
        eraseWord(line);
    } else if (isKey(byte, VEOF)) {
        atEnd_ = line.empty();
        return atEnd_;
    } else {
        append(byte, line);
    }
    return false;
}

// A key arrives by itself, a pasted text in large pieces.
Keyboard::Status Keyboard::lineStatus(const std::string& line) const {
    return line.empty() && end_ > 1 ? Status::Blank : Status::Line;
}

Keyboard::Status Keyboard::next(std::string& line) {
    line.clear();
    for (;;) {
        while (start_ < end_) {
            if (!take(block_[start_++], line)) continue;
            flushEcho();
            return atEnd_ ? Status::End : lineStatus(line);
        }
        flushEcho();
        const ssize_t count = read(input_, block_, sizeof block_);
        if (count == 0 || (count < 0 && errno == EIO)) return Status::End; // EIO: the terminal is gone
        if (count < 0 && errno != EINTR) return Status::Failed;
        if (count < 0) return Status::Cancelled;
        start_ = 0;
        end_ = static_cast<std::size_t>(count);
    }
}
