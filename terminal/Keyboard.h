// SPDX-License-Identifier: MIT
//
// Lines typed at a terminal, read without an editor and without an escape sequence: for terminals that can do
// no more, for screen readers, and for programs that put an editor of their own around this one.
//
// The bytes are taken one by one (TerminalModes.h), and the keys that a terminal's line mode knows (erase a
// character, a word, the line; end of input) are carried out here. rlwrap edits lines only for programs that
// leave that to the terminal: where it stands around this one, the terminal reads them.
#pragma once

#include "LineSource.h"
#include "TerminalModes.h"

#include <cstddef>
#include <string>

class Keyboard : public LineSource {
public:
    // Reads from the terminal `from` and shows prompts and what is typed on `to` (-1: nowhere). Of each
    // line at most `length` bytes are kept. One object at a time. Sets the process's locale for characters.
    Keyboard(PromptHost& theHost, int from, int to, size_t length, System& calls = System::Real());

    Status Next(std::string& line) override;

private:
    enum class Escape { None, Started, Sequence };

    // Carries out one byte. Returns true when it ends the line.
    bool Take(char byte, std::string& line);
    void Append(char byte, std::string& line);
    void Show(char byte, char before);
    std::string ShownForm(const std::string& line); // as the screen has it
    int ColumnBehind(const std::string& line);
    void ShowAgain(const std::string& line);
    void Shorten(std::string& line, size_t length);
    void EraseCharacter(std::string& line);
    void EraseWord(std::string& line);
    void Flush();

    // The status of the line whose line feed was just taken.
    Status LineStatus(const std::string& line) const;

    System& system;
    PromptHost& host;
    TerminalModes terminal;
    int screen;
    size_t keep;
    std::string shown; // not yet written
    Escape escape = Escape::None;
    bool atEnd = false;
    size_t start = 0; // block[start, end) is unread
    size_t end = 0;
    char block[4096] = {};
};
