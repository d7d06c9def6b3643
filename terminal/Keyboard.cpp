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
constexpr char LEAD = '\xC2';

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isInBackground(int terminal) {
    const pid_t foreground = tcgetpgrp(terminal);
    return foreground > 0 && foreground != getpgrp();
}

// In the background the terminal has the modes of the shell's line editor. There the system stops whoever
// waits for the output, which changes nothing, until the shell brings the program to the foreground.
void waitForForeground(int terminal) {
    while (isInBackground(terminal) && tcdrain(terminal) != 0 && errno == EINTR) {
    }
}

} // namespace

// Before a signal ends or stops the program. What is behind the passing on happens only when it does not end.
void Keyboard::GiveBack(int signal) {
    const int saved = errno;
    Keyboard* const keyboard = current;
    tcsetattr(keyboard->input, TCSANOW, &keyboard->modes);
    for (const SignalCatcher& catcher : keyboard->catchers) {
        if (catcher.IsCatching(signal)) catcher.PassOn();
    }
    TakeAgain(signal);
    errno = saved;
}

// After a stop, whatever stopped the program. A person or the shell may have set other modes meanwhile; those
// without lines are our own, after a stop that could not be caught.
void Keyboard::TakeAgain(int) {
    const int saved = errno;
    Keyboard* const keyboard = current;
    waitForForeground(keyboard->input);
    termios found = {};
    if (tcgetattr(keyboard->input, &found) == 0 && (found.c_lflag & ICANON) != 0) keyboard->UseModes(found);
    tcsetattr(keyboard->input, TCSANOW, &keyboard->byteModes);
    keyboard->isBack = 1;
    errno = saved;
}

void Keyboard::UseModes(const termios& found) {
    modes = found;
    echoes = (found.c_lflag & ECHO) != 0; // whoever turned it off wants it off
    byteModes = found;
    byteModes.c_lflag &= static_cast<tcflag_t>(~static_cast<tcflag_t>(ICANON | ECHO));
    byteModes.c_cc[VMIN] = 1;
    byteModes.c_cc[VTIME] = 0;
}

Keyboard::Keyboard(int from, int to, std::size_t length) : input(from), screen(to), keep(length) {
    if (isatty(input) == 0) return;
    waitForForeground(input);
    termios found = {};
    if (tcgetattr(input, &found) != 0) return;
    isTerminal = true;
    UseModes(found);
    current = this;
    constexpr std::array<int, 4> GIVING_BACK = {SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    for (std::size_t i = 0; i < GIVING_BACK.size(); ++i) catchers[i].Start(GIVING_BACK[i], GiveBack);
    catchers.back().Start(SIGCONT, TakeAgain);
    tcsetattr(input, TCSADRAIN, &byteModes);
}

Keyboard::~Keyboard() {
    if (!isTerminal) return;
    for (SignalCatcher& catcher : catchers) catcher.Stop();
    current = nullptr;
    tcsetattr(input, TCSADRAIN, &modes);
}

bool Keyboard::IsKey(char byte, int key) const {
    const cc_t code = modes.c_cc[key];
    return code != _POSIX_VDISABLE && static_cast<cc_t>(byte) == code;
}

void Keyboard::Flush() {
    if (screen >= 0 && !shown.empty()) writeAll(screen, shown);
    shown.clear();
}

void Keyboard::Append(char byte, std::string& line) {
    if (line.size() >= keep) return;
    if (echoes) Show(byte, line.empty() ? '\0' : line.back());
    line += byte;
}

// A control character is refused later; here it must not move the cursor. 0xC2 may begin one: it is shown
// together with the byte behind it.
void Keyboard::Show(char byte, char before) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == LEAD) return;
    if (before == LEAD && isContinuation(byte))
        shown += ShownText(std::string{before, byte});
    else if (code >= 0x20 || byte == '\t')
        shown += byte;
    else
        shown.append({'^', static_cast<char>(code + '@')});
}

void Keyboard::ShowAgain(std::string_view prompt, const std::string& line) {
    shown = "\r";
    shown += prompt;
    char before = '\0';
    for (const char byte : line) {
        if (echoes) Show(byte, before);
        before = byte;
    }
    Flush();
}

void Keyboard::EraseCharacter(std::string& line) {
    while (!line.empty() && isContinuation(line.back())) line.pop_back();
    if (line.empty()) return;
    line.pop_back();
    if (echoes) shown += "\b \b";
}

void Keyboard::EraseWord(std::string& line) {
    while (!line.empty() && line.back() == ' ') EraseCharacter(line);
    while (!line.empty() && line.back() != ' ') EraseCharacter(line);
}

bool Keyboard::Take(char byte, std::string& line) {
    if (escape == Escape::Started) { // arrow and function keys have no meaning yet
        escape = byte == '[' || byte == 'O' ? Escape::Sequence : Escape::None;
        return false;
    }
    if (escape == Escape::Sequence) {
        if (byte >= '@' && byte <= '~') escape = Escape::None;
        return false;
    }
    if (byte == '\n') {
        if (echoes) shown += '\n';
        return true;
    }
    if (byte == '\x1b') {
        escape = Escape::Started;
    } else if (IsKey(byte, VERASE) || byte == '\b' || byte == '\x7f') {
        EraseCharacter(line);
    } else if (IsKey(byte, VKILL)) {
        while (!line.empty()) EraseCharacter(line);
    } else if (IsKey(byte, VWERASE)) {
        EraseWord(line);
    } else if (IsKey(byte, VEOF)) {
        atEnd = line.empty();
        return atEnd;
    } else {
        Append(byte, line);
    }
    return false;
}

// A key arrives by itself, a pasted text in large pieces.
Keyboard::Status Keyboard::LineStatus(const std::string& line) const {
    return line.empty() && end > 1 ? Status::Blank : Status::Line;
}

// The signals that end the wait are held back between the question for their flags and the wait: one that
// came just there would otherwise be noticed only after the next key.
bool Keyboard::WaitForByte() const {
    sigset_t signals;
    sigset_t found;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTSTP, SIGCONT}) sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &found);
    fd_set inputs;
    FD_ZERO(&inputs);
    FD_SET(input, &inputs);
    int ready = -1;
    int error = EINTR;
    if (!isInterrupted() && isBack == 0) {
        ready = pselect(input + 1, &inputs, nullptr, nullptr, nullptr, &found);
        error = errno;
    }
    sigprocmask(SIG_SETMASK, &found, nullptr);
    errno = error;
    return ready >= 0;
}

bool Keyboard::Fill() {
    start = end = 0;
    if (!WaitForByte()) return false;
    const ssize_t count = read(input, block, sizeof block);
    if (count > 0) end = static_cast<std::size_t>(count);
    if (count == 0 || (count < 0 && errno == EIO)) errno = 0; // EIO: the terminal is gone
    return count > 0 || errno == EAGAIN || errno == EWOULDBLOCK;
}

Keyboard::Status Keyboard::Next(std::string_view prompt, std::string& line) {
    line.clear();
    forgetInterrupt(); // one that came during the entry before
    isBack = 0;
    shown = prompt;
    for (;;) {
        while (start < end) {
            if (!Take(block[start++], line)) continue;
            Flush();
            return atEnd ? Status::End : LineStatus(line);
        }
        Flush();
        if (Fill()) continue;
        if (errno != EINTR) return errno == 0 ? Status::End : Status::Failed;
        if (isInterrupted()) return Status::Cancelled;
        isBack = 0; // first: the next stop may come while this is shown
        ShowAgain(prompt, line);
    }
}
