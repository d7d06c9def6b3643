// SPDX-License-Identifier: MIT
#include "Keyboard.h"

#include "Descriptor.h"
#include "Interrupt.h"
#include "ScreenText.h"
#include "ShownText.h"

#include <cerrno>
#include <climits>
#include <fstream>
#include <unistd.h>

namespace {

// Begins the two bytes of the characters U+0080 to U+00BF.
constexpr char LEAD = '\xC2';

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// It leaves no other mark on what it starts. Where there is no such folder, as on macOS, it needs its option
// -a.
TerminalModes::Use useHere() {
    std::string name;
    std::ifstream("/proc/" + std::to_string(getppid()) + "/comm") >> name;
    return name == "rlwrap" ? TerminalModes::Use::Lines : TerminalModes::Use::Plain;
}

} // namespace

Keyboard::Keyboard(PromptHost& theHost, int from, int to, size_t length, System& calls)
    : system(calls), host(theHost), terminal(from, to, useHere(), calls), screen(to), keep(length) {
    useUtf8();
}

void Keyboard::Flush() {
    if (screen >= 0 && !shown.empty()) writeAll(screen, shown, system);
    shown.clear();
}

void Keyboard::Append(char byte, std::string& line) {
    if (line.size() >= keep) return;
    if (terminal.Echoes()) Show(byte, line.empty() ? '\0' : line.back());
    line += byte;
}

// A control character is refused later; here it must not move the cursor. 0xC2 may begin one: it is shown
// together with the byte behind it.
void Keyboard::Show(char byte, char before) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == LEAD) return;
    if (before == LEAD && isContinuation(byte))
        shown += shownText(std::string{before, byte});
    else if (code >= 0x20 || byte == '\t')
        shown += byte;
    else
        shown.append({'^', static_cast<char>(code + '@')});
}

std::string Keyboard::ShownForm(const std::string& line) {
    std::string before;
    before.swap(shown);
    char last = '\0';
    for (const char byte : line) {
        if (terminal.Echoes()) Show(byte, last);
        last = byte;
    }
    before.swap(shown);
    return before;
}

void Keyboard::ShowAgain(const std::string& line) {
    shown = "\r" + host.PromptText(false) + ShownForm(line);
    Flush();
}

int Keyboard::ColumnBehind(const std::string& line) {
    const std::string row = withoutMarkedParts(host.PromptText(true)) + ShownForm(line);
    return placeBehind(row, {}, INT_MAX).column;
}

// The columns that go are written over: a wide character has two, a tab up to eight.
void Keyboard::Shorten(std::string& line, size_t length) {
    const int before = ColumnBehind(line);
    line.resize(length);
    for (int column = ColumnBehind(line); column < before; ++column) shown += "\b \b";
}

// With what stands on it, such as an accent, which has no columns of its own.
void Keyboard::EraseCharacter(std::string& line) {
    const int before = ColumnBehind(line);
    std::string rest = line;
    do {
        while (!rest.empty() && isContinuation(rest.back())) rest.pop_back();
        if (!rest.empty()) rest.pop_back();
    } while (!rest.empty() && terminal.Echoes() && ColumnBehind(rest) == before);
    Shorten(line, rest.size());
}

void Keyboard::EraseWord(std::string& line) {
    const size_t last = line.find_last_not_of(' ');
    Shorten(line, last == std::string::npos ? 0 : line.find_last_of(' ', last) + 1);
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
        if (terminal.Echoes()) shown += '\n';
        return true;
    }
    if (byte == '\x1b') {
        escape = Escape::Started;
    } else if (terminal.IsKey(byte, VERASE) || byte == '\b' || byte == '\x7f') {
        EraseCharacter(line);
    } else if (terminal.IsKey(byte, VKILL)) {
        Shorten(line, 0);
    } else if (terminal.IsKey(byte, VWERASE)) {
        EraseWord(line);
    } else if (terminal.IsKey(byte, VEOF)) {
        atEnd = line.empty();
        return atEnd;
    } else {
        Append(byte, line);
    }
    return false;
}

// A key arrives by itself, a pasted text in large pieces.
Keyboard::Status Keyboard::LineStatus(const std::string& line) const {
    if (terminal.HasLineMode() && line.size() >= TerminalModes::LONGEST_LINE) return Status::Cut;
    return line.empty() && end > 1 ? Status::Blank : Status::Line;
}

Keyboard::Status Keyboard::Next(std::string& line) {
    using Event = TerminalModes::Event;
    line.clear();
    forgetInterrupt(); // one that came during the entry before
    terminal.Forget();
    terminal.isEditing = true;
    shown = host.PromptText(false);
    for (;;) {
        while (start < end) {
            if (!Take(block[start++], line)) continue;
            Flush();
            terminal.isEditing = false;
            return atEnd ? Status::End : LineStatus(line);
        }
        Flush();
        start = end = 0;
        switch (terminal.Wait(host.DoDue())) {
        case Event::Input: {
            const long count = terminal.Read(block, sizeof block);
            if (count == 0) return Status::End;
            if (count < 0 && errno != EAGAIN) return Status::Failed;
            end = count < 0 ? 0 : static_cast<size_t>(count);
            break;
        }
        case Event::Interrupted: return Status::Canceled;
        case Event::EndAsked: return Status::End;
        case Event::Failed: return Status::Failed;
        case Event::Stopping: terminal.Stop(); break;
        case Event::Back:
            terminal.Forget(); // first: the next stop may come while this is shown
            ShowAgain(line);
            break;
        case Event::Resized: terminal.Forget(); break;
        case Event::Rest: break;
        }
    }
}
