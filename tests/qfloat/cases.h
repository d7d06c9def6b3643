// SPDX-License-Identifier: MIT
//
// How many arguments a test of numbers tries.
#pragma once

// The sanitizers watch the ways through the code. Fewer arguments take them as well, and each takes longer.
constexpr int cases(int wanted) {
#ifdef __has_feature
#if __has_feature(address_sanitizer)
    return wanted / 5;
#endif
#endif
    return wanted;
}
