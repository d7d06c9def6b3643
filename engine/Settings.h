// SPDX-License-Identifier: MIT
//
// The settings.
#pragma once

#include <cstdint>

enum SciMode : int32_t { SCI_AUTO, SCI_NEVER, SCI_ALWAYS, SCI_ENGINEERING, SCI_PREFIX, SCI_FIXED };

// What an entry is read and answered with. A front end sets them before each entry; commands change some of them.
struct EntrySettings {
    bool degreeMode = false;    // angles in degrees
    int32_t sciMode = SCI_AUTO; // a SciMode
    int32_t sigFigs = 10;       // significant figures, 1 to 100; in fixed mode the number of decimals
    bool european = false;      // decimal comma: ',' and '.' trade places on input and output
    bool histStack = true;      // entries are recorded in the history
    bool tenKey = false;        // adding-machine entry: the sign follows its number
    int32_t displayBase = 10;   // 10, 16 or 2
    bool twosComp = false;      // two's complement display in hexadecimal and binary
    bool useSeparator = false;  // group the integer digits in decimal display
    char separatorChar = ',';   // the grouping character
};
