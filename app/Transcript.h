// SPDX-License-Identifier: MIT
//
// The text of the console as its keys see it, without AppKit: in front of `g_linestart` the transcript, which
// is read only, and from there to the end the entry. The text view says what it holds, asks what a key press
// does, and carries that out.
//
// Main thread only. Positions count the characters (UTF-16 units) of the whole text. "8-bit string" is text
// in ISO Latin-1, of which ASCII is a part, ended by a NUL.
#pragma once

#include "Calculator.h"
#include "Keys.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

constexpr size_t PROMPT_SIZE = 10000; // bytes of `prompt`, terminator included
constexpr size_t MATCH_SIZE = 101;    // bytes of `matchstr`, terminator included

// One console per process.
extern ZqCalculator calc;
extern int32_t g_linestart;      // where the entry begins, just behind the prompt "> "
extern char prompt[PROMPT_SIZE]; // the entry as an 8-bit string, see fetchPrompt; scratch for completion
extern bool scriptInterrupted;   // a pause or a typed-out echo was interrupted; the script's runner clears it

// History recall: the prefix, whether the arrows match it, and whether it has been taken from the entry.
extern char matchstr[MATCH_SIZE];
extern uint8_t matching_enable;
extern uint8_t update_match_str;

// The virtual key codes (those of macOS) of this key press and of the one before it.
extern uint32_t keyCode;
extern uint32_t prevKey;

struct EntryRange {
    size_t location = 0;
    size_t length = 0;
    size_t end() const { return location + length; }
};

// What a key press does, in this order.
struct KeyEffect {
    enum class Edit {
        None,
        Type,    // `text` as if typed
        Replace, // the selection becomes `text`
        Clear,   // the entry becomes empty
        Recall   // the entry becomes the history's line
    };
    enum class Then {
        Nothing,
        Preview,
        Pass, // the text view does with the key what text views do; then the preview
        Commit,
        Hide,
        Copy,
        Find,
        FindEarlier,
        Controls,
        MenuBar
    };
    bool goesToEnd = false; // the cursor, and into view
    std::optional<EntryRange> select = std::nullopt;
    Edit edit = Edit::None;
    std::string text; // an 8-bit string
    std::optional<EntryRange> selectAfter = std::nullopt;
    Then then = Then::Preview;
};

// What the text view holds at one moment.
class Transcript {
public:
    // The text from `g_linestart` on, and what is selected in the whole text.
    Transcript(std::u16string typedText, EntryRange selected)
        : entry(std::move(typedText)), selection(selected) {}

    // What the key press does. Sets the globals above and moves in the history. With `minusIsSign` a first
    // minus is a sign and the second one puts "ans" in front of it; without, the first one does.
    KeyEffect Press(const KeyPress& key, bool minusIsSign) const;

    // Copies the entry into `prompt`. False when it is not all ISO Latin-1 or does not fit: `prompt` then
    // holds what could be had.
    bool FetchPrompt() const;

    // What of the selection lies in the entry, empty when nothing does.
    EntryRange SelectedInEntry() const;

    // The letters, digits and '_' of the entry before the cursor: "1+si" completes "si".
    EntryRange PartialWord() const;

    // Whether the entry may have so many characters more in place of its selected part: a longer one could
    // not be run.
    bool HasRoomFor(size_t characters) const;

private:
    KeyEffect Act(KeyAction action, const KeyPress& key, bool minusIsSign) const;
    KeyEffect Complete() const;
    std::string NextProposal() const;
    std::string EightBit(size_t from, size_t length) const; // of the entry
    KeyEffect Escape() const;
    KeyEffect Erase(bool isForward) const;
    KeyEffect GoHome(bool extends) const;
    KeyEffect GoHomeOrSelect(bool extends) const;
    KeyEffect GoToEnd(bool extends) const;
    KeyEffect GoLeft() const;
    KeyEffect WalkHistory(bool isUp) const;
    KeyEffect Type(KeyAction action, const KeyPress& key, bool minusIsSign) const;
    void ApplyAnsRules(KeyEffect& effect, KeyAction action, bool minusIsSign) const;
    size_t Start() const { return static_cast<size_t>(g_linestart); } // never below 0
    size_t end() const { return Start() + entry.size(); }

    std::u16string entry;
    EntryRange selection;
};
