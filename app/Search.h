// SPDX-License-Identifier: MIT
//
// Looking for a text while it is typed, from the newest to the oldest place, without AppKit: in the
// transcript (Control-F) or among earlier entries (Control-R). Capital letters and small ones are the same.
#pragma once

#include "Keys.h"
#include "Transcript.h"

#include <optional>
#include <string>

class Search {
public:
    enum class In { Nothing, Transcript, History };

    // What a key press means to the search.
    enum class Step {
        Look,   // what is looked for changed, or an older or a newer place is
        Keep,   // it ends; what was found stays, which an earlier entry does at the prompt
        GiveUp, // it ends as if it had not been
        Leave   // it ends and the key does what it does without it
    };

    // Keeps what stands at the prompt and what is selected, for the one who gives up.
    void Begin(In where, std::string entry, EntryRange selected);
    void End() { in = In::Nothing; }
    In Where() const { return in; }
    const std::string& Draft() const { return draft; }
    EntryRange Selection() const { return selection; }

    // Takes the key press of a search that has begun.
    Step Press(const KeyPress& key);

    // After Look: the next place in the text, the one before when there is no other, or none.
    std::optional<EntryRange> FindIn(const std::u16string& text);

    // The same in the history: the line, k being the k-th newest one, or 0.
    int FindIn(const CHistory& history);

    // What the status line says: "Find: wid", and whether that was not found.
    std::u16string Text() const;

private:
    enum class Direction { Same, Older, Newer };

    In in = In::Nothing;
    std::string draft; // in UTF-8
    EntryRange selection;
    std::u16string wanted;
    std::optional<size_t> place; // of the last match: its first character, or k
    Direction direction = Direction::Same;
    bool isFound = true;
};
