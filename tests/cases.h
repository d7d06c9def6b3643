// SPDX-License-Identifier: MIT
//
// How many arguments a random test tries.
#pragma once

// All that a test asks for in the build that people run. The builds with g++ and with the sanitizers take
// every way through the code with a part of them (CMake's TALLYQUILL_CASES_DIVISOR).
constexpr int cases(int wanted) {
    return wanted / TALLYQUILL_CASES_DIVISOR;
}
