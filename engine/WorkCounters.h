// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

// How much work the last statement took. Tests hold these against the number of terms.
struct WorkCounters {
    uint64_t checked = 0; // terms visited by the check, in statements and definitions
    uint64_t ordered = 0; // terms visited to order operators, in statements and definitions
    uint64_t reduced = 0; // operators applied by ProcTermsLoop
    uint64_t copied = 0;  // terms copied by expanding the calls of functions
    uint64_t listed = 0;  // terms of definitions that commands wrote out
    uint64_t units = 0;   // units of work that conversions and definitions of units took
    uint64_t names = 0;   // variables whose names were checked
    uint64_t indexed = 0; // variables and units' lines put into the index of their names or taken out
    uint64_t looked = 0;  // characters of operands that the scanner copied or looked up
};
