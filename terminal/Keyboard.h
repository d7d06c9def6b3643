// SPDX-License-Identifier: MIT
//
// Lines typed at a terminal.
//
// A terminal's own line mode drops what a line has beyond 4,095 bytes without a word, which would turn a long
// pasted sum into a wrong one. So the bytes are taken one by one, and the keys that the line mode knows
// (erase a character, a word, the line; end of input) are carried out here. Ctrl-C and Ctrl-Z stay the
// terminal's.
#pragma once

#include "Signals.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <string>
#include <string_view>
#include <termios.h>

class Keyboard {
public:
    enum class Status {
        Line,      // a line was typed; it is empty when someone pressed Return alone
        Blank,     // an empty line that came together with other input, as in a pasted text
        Cancelled, // Ctrl-C came (Interrupt.h): what was typed is dropped
        End,       // end of input (Ctrl-D on an empty line) or a hang-up
        Failed     // the terminal cannot be read; errno says why
    };

    // Reads from the terminal `from` and shows prompts and what is typed on `to` (-1: nowhere). Of each
    // line at most `length` bytes are kept. From here to the destructor the terminal hands over single bytes;
    // its modes are given back at the end, also when a signal ends or stops the program. In the background
    // this waits until the program comes to the foreground. One object at a time.
    Keyboard(int from, int to, std::size_t length);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    // Shows the prompt and puts the next line into `line`, without its line feed. When the program goes on
    // after a stop, the prompt and what was typed are shown again. A terminal that is set not to block is
    // waited for.
    Status Next(std::string_view prompt, std::string& line);

private:
    enum class Escape { None, Started, Sequence };

    // Carries out one byte. Returns true when it ends the line.
    bool Take(char byte, std::string& line);
    bool IsKey(char byte, int key) const;
    void Append(char byte, std::string& line);
    void Show(char byte, char before);
    void ShowAgain(std::string_view prompt, const std::string& line);

    // Waits for input. False with EINTR when a signal came instead, with another errno when waiting failed.
    bool WaitForByte() const;

    // Waits for bytes and takes them into the empty block. False when a signal came instead, at the end and
    // on a failure; then errno says which, 0 at the end.
    bool Fill();

    // Takes these modes for those of the terminal.
    void UseModes(const termios& found);

    static void GiveBack(int signal);
    static void TakeAgain(int signal);
    void EraseCharacter(std::string& line);
    void EraseWord(std::string& line);
    void Flush();

    // The status of the line whose line feed was just taken.
    Status LineStatus(const std::string& line) const;

    int input;
    int screen;
    std::size_t keep;
    bool echoes = false;     // shows what is typed
    bool isTerminal = false; // the modes below are its
    termios modes = {};      // as they were found in the foreground
    termios byteModes = {};
    std::array<SignalCatcher, 5> catchers;
    volatile std::sig_atomic_t isBack = 0; // the program was stopped and goes on
    std::string shown;                     // not yet written
    Escape escape = Escape::None;
    bool atEnd = false;
    std::size_t start = 0; // block[start, end) is unread
    std::size_t end = 0;
    char block[4096] = {};
};
