// SPDX-License-Identifier: MIT
#include "TerminalModes.h"

#include "Interrupt.h"

#include <atomic>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace {

// The one object, for the signal handlers.
std::atomic<TerminalModes*> watching{nullptr};

bool isInBackground(int terminal, System& system) {
    const pid_t foreground = system.Foreground(terminal);
    return foreground > 0 && foreground != getpgrp();
}

// In the background the terminal has the modes of the shell's line editor. There the system stops whoever
// waits for the output, which changes nothing, until the shell brings the program to the foreground.
void waitForForeground(int terminal, System& system) {
    while (isInBackground(terminal, system) && system.Drain(terminal) != 0 && errno == EINTR) {
    }
}

} // namespace

void TerminalModes::MarkPastes() {
    marksPastes = true;
    WriteMarks(true);
}

void TerminalModes::WriteMarks(bool isOn) const {
    constexpr std::string_view ON = "\x1b[?2004h";
    constexpr std::string_view OFF = "\x1b[?2004l";
    const std::string_view text = isOn ? ON : OFF;
    if (marksPastes && system.Write(screen, text.data(), text.size()) < 0) return; // nothing can be done
}

// What is behind the raising happens only when the signal does not end the program.
void TerminalModes::PassOn(int signal) {
    WriteMarks(false);
    system.SetModes(input, TCSANOW, modes);
    for (const SignalCatcher& catcher : catchers) {
        if (catcher.IsCatching(signal)) catcher.PassOn();
    }
    TakeAgain(signal);
}

void TerminalModes::GiveBack(int signal) {
    const int saved = errno;
    watching.load()->PassOn(signal);
    errno = saved;
}

void TerminalModes::HoldOrStop(int signal) {
    TerminalModes* const terminal = watching;
    if (terminal->isEditing)
        terminal->isStopping = 1;
    else
        GiveBack(signal);
}

void TerminalModes::Stop() {
    isStopping = 0;
    PassOn(SIGTSTP);
}

// After a stop, whatever stopped the program. A person or the shell may have set other modes meanwhile; those
// without lines are our own, after a stop that could not be caught.
void TerminalModes::TakeAgain(int) {
    const int saved = errno;
    TerminalModes* const terminal = watching;
    waitForForeground(terminal->input, terminal->system);
    termios found = {};
    if (terminal->system.Modes(terminal->input, found) == 0 && (found.c_lflag & ICANON) != 0)
        terminal->UseModes(found);
    terminal->Take();
    terminal->isBack = 1;
    errno = saved;
}

void TerminalModes::Take() {
    system.SetModes(input, TCSANOW, byteModes);
    WriteMarks(true);
}

void TerminalModes::UseModes(const termios& found) {
    modes = found;
    byteModes = found;
    if (use == Use::Lines) return;
    byteModes.c_lflag &= static_cast<tcflag_t>(~static_cast<tcflag_t>(ICANON | ECHO));
    byteModes.c_cc[VMIN] = 0; // reading does not wait: Ctrl-C may take away what Wait has seen
    byteModes.c_cc[VTIME] = 0;
    if (use == Use::Plain) return;
    byteModes.c_iflag &= static_cast<tcflag_t>(~static_cast<tcflag_t>(ICRNL | INLCR | ISTRIP | INPCK));
    byteModes.c_cc[VLNEXT] = _POSIX_VDISABLE; // the editor has a key for it
}

TerminalModes::TerminalModes(int from, int to, Use purpose, System& calls)
    : system(calls), input(from), screen(to), use(purpose) {
    if (system.IsTerminal(input) == 0) return;
    waitForForeground(input, system);
    termios found = {};
    if (system.Modes(input, found) != 0) return;
    isTerminal = true;
    UseModes(found);
    watching = this;
    catchers[0].Start(SIGQUIT, GiveBack);
    catchers[1].Start(SIGTSTP, HoldOrStop);
    catchers[2].Start(SIGCONT, TakeAgain);
    catchers[3].Start(SIGWINCH, [](int) { watching.load()->isResized = 1; });
    Take();
}

TerminalModes::~TerminalModes() {
    if (!isTerminal) return;
    for (SignalCatcher& catcher : catchers) catcher.Stop();
    watching = nullptr;
    WriteMarks(false);
    while (system.SetModes(input, TCSADRAIN, modes) != 0 && errno == EINTR) {
    }
}

bool TerminalModes::IsKey(char byte, int key) const {
    const cc_t code = modes.c_cc[key];
    return code != _POSIX_VDISABLE && static_cast<cc_t>(byte) == code;
}

// The signals that end the wait are held back between the question for their flags and the wait: one that
// came just there would otherwise be noticed only after the next key.
TerminalModes::Event TerminalModes::Wait(long milliseconds) {
    sigset_t signals;
    sigset_t found;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &found);
    const timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    int ready = 0;
    const auto happened = [this] {
        if (endSignal() != 0) return Event::EndAsked;
        if (isInterrupted()) return Event::Interrupted;
        if (isStopping != 0) return Event::Stopping;
        if (isBack != 0) return Event::Back;
        return isResized != 0 ? Event::Resized : Event::Rest;
    };
    if (happened() == Event::Rest)
        ready = system.WaitForInput(input, milliseconds < 0 ? nullptr : &time, found);
    const int error = errno;
    pthread_sigmask(SIG_SETMASK, &found, nullptr);
    errno = error;
    // First what happened: keys that came behind a Ctrl-C belong to the next line.
    const Event event = happened();
    if (event != Event::Rest || ready == 0) return event;
    if (ready > 0) return Event::Input;
    return error == EINTR ? Event::Rest : Event::Failed;
}

// Ctrl-C comes as a signal and not as a byte among the others, so that it interrupts an entry at once. So
// only what is read before its signal is known to stand in front of it. A Ctrl-C that comes while the system
// copies the bytes counts as later: they are dropped with their line.
long TerminalModes::Read(char* to, size_t size) const {
    if (isInterrupted()) {
        errno = EAGAIN;
        return -1;
    }
    ssize_t count = system.Read(input, to, size);
    if (count == 0 && isTerminal &&
        use != Use::Lines) { // at the end there is always something to read, which is nothing
        pollfd waiting = {input, POLLIN, 0};
        const bool isEnd = system.Poll(waiting, 0) != 0;
        errno = EAGAIN;
        count = isEnd ? system.Read(input, to, size) : -1;
    }
    if (count < 0 && errno == EIO) return 0;
    if (count < 0 && (errno == EINTR || errno == EWOULDBLOCK)) errno = EAGAIN;
    return count;
}
