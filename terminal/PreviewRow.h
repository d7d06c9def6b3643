// SPDX-License-Identifier: MIT
//
// The row below a line that is being edited, where its answer is shown. Nothing here writes: what to write is
// returned.
#pragma once

#include "ScreenText.h"

#include <string>
#include <string_view>

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
