// SPDX-License-Identifier: MIT
//
// A terminal that hands over single bytes, and what can happen while one waits for them.
//
// A terminal's own line mode drops what a line has beyond 4,095 bytes without a word, which would turn a long
// pasted sum into a wrong one. So it is not used, from the first prompt to the last, except within a program
// around this one that edits lines only for programs that use it.
#pragma once

#include "Signals.h"
#include "System.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <string_view>
#include <termios.h>

class TerminalModes {
public:
    enum class Use {
        Plain,   // Return gives a line feed
        Editing, // an editor reads every key as it is
        Lines    // the line mode: lines arrive whole, and what is typed is shown and erased by others
    };
    static constexpr size_t LONGEST_LINE = 4095; // bytes that the line mode keeps

    enum class Event {
        Input,       // there is something to read
        Rest,        // nothing happened in that time
        Interrupted, // Ctrl-C came (Interrupt.h)
        EndAsked,    // a signal asked for the end (Interrupt.h)
        Stopping,    // Ctrl-Z: whoever edits calls Stop when the screen is ready for that
        Back,        // the program was stopped and goes on; the screen shows something else
        Resized,     // the terminal has another size
        Failed       // waiting failed; errno says why
    };

    // From here to the destructor the terminal `from` is in these modes; escape sequences that go with them
    // are written to `to` (-1: nowhere). The modes are given back at the end, also when a signal ends or
    // stops the program. In the background this waits until the program comes to the foreground. One object
    // at a time.
    TerminalModes(int from, int to, Use purpose, System& calls = System::Real());
    ~TerminalModes();
    TerminalModes(const TerminalModes&) = delete;
    TerminalModes& operator=(const TerminalModes&) = delete;

    // From now on pasted texts come between marks (bracketed paste), as long as these modes last.
    void MarkPastes();
    bool MarksPastes() const { return marksPastes; }

    // Waits for so many milliseconds (-1: for ever) until there is input or something else happens. Between
    // its calls a stop is held back until the next one while `isEditing`.
    Event Wait(long milliseconds);
    bool isEditing = false;

    // Stops the program. Returns when it goes on.
    void Stop();

    // Forgets events that came before.
    void Forget() { isBack = isResized = 0; }

    // Reads what is there, without waiting. -1 with errno set on a failure; 0 at the end, also when the
    // terminal is gone; and -1 with EAGAIN when there is nothing after all, or when Ctrl-C came since the
    // last Wait: it takes away what was typed before it, and what is there now belongs to the next line. Call
    // it behind a Wait that told of input.
    long Read(char* to, size_t size) const;

    bool HasLineMode() const { return use == Use::Lines; }

    // Whether what is typed is to be shown: whoever turned that off wants it off.
    bool Echoes() const { return use != Use::Lines && (modes.c_lflag & ECHO) != 0; }

    // Whether this is the terminal's key for something, such as VERASE.
    bool IsKey(char byte, int key) const;

private:
    void Take();
    void UseModes(const termios& found);
    void WriteMarks(bool isOn) const;
    void PassOn(int signal);

    static void GiveBack(int signal);
    static void HoldOrStop(int signal);
    static void TakeAgain(int signal);

    System& system;
    int input;
    int screen;
    Use use;
    bool marksPastes = false;
    bool isTerminal = false; // the modes below are its
    termios modes = {};      // as they were found in the foreground
    termios byteModes = {};
    std::array<SignalCatcher, 4> catchers;
    volatile std::sig_atomic_t isBack = 0;
    volatile std::sig_atomic_t isStopping = 0;
    volatile std::sig_atomic_t isResized = 0;
};
