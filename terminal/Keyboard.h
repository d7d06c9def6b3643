// SPDX-License-Identifier: MIT
//
// Lines typed at a terminal.
//
// A terminal's own line mode drops what a line has beyond 4,095 bytes without a word, which would turn a long
// pasted sum into a wrong one. So the bytes are taken one by one, and the keys that the line mode knows (erase
// a character, a word, the line; end of input) are carried out here. Ctrl-C and Ctrl-Z stay the terminal's.
#pragma once

#include <cstddef>
#include <string>
#include <termios.h>

class Keyboard {
public:
    enum class Status {
        Line,      // a line was typed; it is empty when someone pressed Return alone
        Blank,     // an empty line that came together with other input, as in a pasted text
        Cancelled, // a signal came (Ctrl-C): what was typed is dropped
        End,       // end of input (Ctrl-D on an empty line) or a hang-up
        Failed     // the terminal cannot be read; errno says why
    };

    // Reads from the terminal `input` and shows what is typed on `echo` (-1: nowhere). Of each line at most
    // `keep` bytes are kept. From here to the destructor the terminal hands over single bytes; its modes are
    // given back at the end, also when a signal ends or stops the program. One object at a time.
    Keyboard(int input, int echo, std::size_t keep);
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    // Puts the next line into `line`, without its line feed.
    Status next(std::string& line);

private:
    enum class Escape { None, Started, Sequence };

    // Carries out one byte. Returns true when it ends the line.
    bool take(char byte, std::string& line);
    bool isKey(char byte, int key) const;
    void append(char byte, std::string& line);
    void eraseCharacter(std::string& line);
    void eraseWord(std::string& line);
    void flushEcho();

    // The status of the line whose line feed was just taken.
    Status lineStatus(const std::string& line) const;

    int input_;
    int echo_;
    std::size_t keep_;
    termios modes_ = {};
    std::string shown_; // not yet written
    Escape escape_ = Escape::None;
    bool atEnd_ = false;
    std::size_t start_ = 0; // block_[start_, end_) is unread
    std::size_t end_ = 0;
    char block_[4096] = {};
};
