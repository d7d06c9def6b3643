// SPDX-License-Identifier: MIT
#include "Keyboard.h"

#include "Descriptor.h"
#include "Interrupt.h"
#include "ShownText.h"

#include <atomic>
#include <cerrno>
#include <sys/select.h>
#include <unistd.h>

namespace {

// The one keyboard, for the signal handlers.
std::atomic<Keyboard*> current{nullptr};

// Begins the two bytes of the characters U+0080 to U+00BF.
constexpr char kLead = '\xC2';

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isInBackground(int terminal) {
    const pid_t foreground = tcgetpgrp(terminal);
    return foreground > 0 && foreground != getpgrp();
}

// In the background the terminal has the modes of the shell's line editor. There the system stops whoever waits for
// the output, which changes nothing, until the shell brings the program to the foreground.
void waitForForeground(int terminal) {
    while (isInBackground(terminal) && tcdrain(terminal) != 0 && errno == EINTR) {
    }
}

} // namespace

// Before a signal ends or stops the program. What is behind the passing on happens only when it does not end.
void Keyboard::giveBack(int signal) {
    const int saved = errno;
    Keyboard* const keyboard = current;
    tcsetattr(keyboard->input_, TCSANOW, &keyboard->modes_);
    for (const SignalCatcher& catcher : keyboard->catchers_) {
        if (catcher.isCatching(signal)) catcher.passOn();
    }
    takeAgain(signal);
    errno = saved;
}

// After a stop, whatever stopped the program. A person or the shell may have set other modes meanwhile; those without
// lines are our own, after a stop that could not be caught.
void Keyboard::takeAgain(int) {
    const int saved = errno;
    Keyboard* const keyboard = current;
    waitForForeground(keyboard->input_);
    termios found = {};
    if (tcgetattr(keyboard->input_, &found) == 0 && (found.c_lflag & ICANON) != 0) keyboard->useModes(found);
    tcsetattr(keyboard->input_, TCSANOW, &keyboard->byteModes_);
    keyboard->isBack_ = 1;
    errno = saved;
}

void Keyboard::useModes(const termios& found) {
    modes_ = found;
    echoes_ = (found.c_lflag & ECHO) != 0; // whoever turned it off wants it off
    byteModes_ = found;
    byteModes_.c_lflag &= static_cast<tcflag_t>(~static_cast<tcflag_t>(ICANON | ECHO));
    byteModes_.c_cc[VMIN] = 1;
    byteModes_.c_cc[VTIME] = 0;
}

Keyboard::Keyboard(int input, int screen, std::size_t keep) : input_(input), screen_(screen), keep_(keep) {
    if (isatty(input_) == 0) return;
    waitForForeground(input_);
    termios found = {};
    if (tcgetattr(input_, &found) != 0) return;
    isTerminal_ = true;
    useModes(found);
    current = this;
    constexpr std::array<int, 4> kGivingBack = {SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    for (std::size_t i = 0; i < kGivingBack.size(); ++i) catchers_[i].start(kGivingBack[i], giveBack);
    catchers_.back().start(SIGCONT, takeAgain);
    tcsetattr(input_, TCSADRAIN, &byteModes_);
}

Keyboard::~Keyboard() {
    if (!isTerminal_) return;
    for (SignalCatcher& catcher : catchers_) catcher.stop();
    current = nullptr;
    tcsetattr(input_, TCSADRAIN, &modes_);
}

bool Keyboard::isKey(char byte, int key) const {
    const cc_t code = modes_.c_cc[key];
    return code != _POSIX_VDISABLE && static_cast<cc_t>(byte) == code;
}

void Keyboard::flush() {
    if (screen_ >= 0 && !shown_.empty()) writeAll(screen_, shown_);
    shown_.clear();
}

void Keyboard::append(char byte, std::string& line) {
    if (line.size() >= keep_) return;
    if (echoes_) show(byte, line.empty() ? '\0' : line.back());
    line += byte;
}

// A control character is refused later; here it must not move the cursor. 0xC2 may begin one: it is shown together
// with the byte behind it.
void Keyboard::show(char byte, char before) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == kLead) return;
    if (before == kLead && isContinuation(byte))
        shown_ += ShownText(std::string{before, byte});
    else if (code >= 0x20 || byte == '\t')
        shown_ += byte;
    else
        shown_.append({'^', static_cast<char>(code + '@')});
}

void Keyboard::showAgain(std::string_view prompt, const std::string& line) {
    shown_ = "\r";
    shown_ += prompt;
    char before = '\0';
    for (const char byte : line) {
        if (echoes_) show(byte, before);
        before = byte;
    }
    flush();
}

void Keyboard::eraseCharacter(std::string& line) {
    while (!line.empty() && isContinuation(line.back())) line.pop_back();
    if (line.empty()) return;
    line.pop_back();
    if (echoes_) shown_ += "\b \b";
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
        if (echoes_) shown_ += '\n';
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

// The signals that end the wait are held back between the question for their flags and the wait: one that came just
// there would otherwise be noticed only after the next key.
bool Keyboard::waitForByte() const {
    sigset_t signals;
    sigset_t found;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTSTP, SIGCONT}) sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &found);
    fd_set inputs;
    FD_ZERO(&inputs);
    FD_SET(input_, &inputs);
    int ready = -1;
    int error = EINTR;
    if (!isInterrupted() && isBack_ == 0) {
        ready = pselect(input_ + 1, &inputs, nullptr, nullptr, nullptr, &found);
        error = errno;
    }
    sigprocmask(SIG_SETMASK, &found, nullptr);
    errno = error;
    return ready >= 0;
}

bool Keyboard::fill() {
    start_ = end_ = 0;
    if (!waitForByte()) return false;
    const ssize_t count = read(input_, block_, sizeof block_);
    if (count > 0) end_ = static_cast<std::size_t>(count);
    if (count == 0 || (count < 0 && errno == EIO)) errno = 0; // EIO: the terminal is gone
    return count > 0 || errno == EAGAIN || errno == EWOULDBLOCK;
}

Keyboard::Status Keyboard::next(std::string_view prompt, std::string& line) {
    line.clear();
    forgetInterrupt(); // one that came during the entry before
    isBack_ = 0;
    shown_ = prompt;
    for (;;) {
        while (start_ < end_) {
            if (!take(block_[start_++], line)) continue;
            flush();
            return atEnd_ ? Status::End : lineStatus(line);
        }
        flush();
        if (fill()) continue;
        if (errno != EINTR) return errno == 0 ? Status::End : Status::Failed;
        if (isInterrupted()) return Status::Cancelled;
        isBack_ = 0; // first: the next stop may come while this is shown
        showAgain(prompt, line);
    }
}
