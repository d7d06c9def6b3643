// SPDX-License-Identifier: MIT
#include "Keyboard.h"

#include "Descriptor.h"
#include "Interrupt.h"
#include "ShownText.h"

#include <cerrno>

namespace {

// Begins the two bytes of the characters U+0080 to U+00BF.
constexpr char LEAD = '\xC2';

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

void Keyboard::Flush() {
    if (screen >= 0 && !shown.empty()) writeAll(screen, shown);
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

void Keyboard::ShowAgain(const std::string& line) {
    shown = "\r";
    shown += host.PromptText(false);
    char before = '\0';
    for (const char byte : line) {
        if (terminal.Echoes()) Show(byte, before);
        before = byte;
    }
    Flush();
}

void Keyboard::EraseCharacter(std::string& line) {
    while (!line.empty() && isContinuation(line.back())) line.pop_back();
    if (line.empty()) return;
    line.pop_back();
    if (terminal.Echoes()) shown += "\b \b";
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
        if (terminal.Echoes()) shown += '\n';
        return true;
    }
    if (byte == '\x1b') {
        escape = Escape::Started;
    } else if (terminal.IsKey(byte, VERASE) || byte == '\b' || byte == '\x7f') {
        EraseCharacter(line);
    } else if (terminal.IsKey(byte, VKILL)) {
        while (!line.empty()) EraseCharacter(line);
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
        case Event::Interrupted: return Status::Cancelled;
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
