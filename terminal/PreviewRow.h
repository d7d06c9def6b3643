// SPDX-License-Identifier: MIT
//
// The row below a line that is being edited, where its answer is shown. Nothing here writes: what to write is
// returned.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Where a text that wraps at the width of a screen puts its end, counted from where it began. A text that
// fills a row ends at the start of the next one.
struct ScreenPlace {
    int row = 0;
    int column = 0;
};

// The place behind the UTF-8 text that begins at `from`: control characters take two columns, as in ^A, tabs
// go to the next multiple of eight, and a wide character that does not fit begins the next row.
ScreenPlace placeBehind(std::string_view text, ScreenPlace from, int width);

// The text without what no screen shows: each "\001...\002".
std::string withoutMarkedParts(std::string_view text);

// At most so many columns of the UTF-8 text; one that was cut ends in "…", so that no number looks like
// another one.
std::string cutToWidth(std::string_view text, int width);

class PreviewRow {
public:
    // Draws the text below a line of which the cursor and the end stand at these places, and puts the cursor
    // back. At the bottom of the screen this scrolls by a row.
    std::string Draw(std::string_view text, ScreenPlace cursor, ScreenPlace end, int width);

    // Takes it away again, with the cursor where Draw put it; nothing when none is drawn.
    std::string Erase();

    // Clears the screen below the line.
    static std::string ClearBelow(ScreenPlace cursor, ScreenPlace end);

private:
    int rowsBelow = 0; // it stands so many rows below the cursor; 0: it is not drawn
    int column = 0;    // of the cursor
};
