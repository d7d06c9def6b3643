// SPDX-License-Identifier: MIT
//
// The table of settings for tests that go through all of them.
#pragma once

#include "Settings.h"

#include <vector>

// Another value than the default that the number can have; not a point as the mark between groups, which
// counts as the comma of the default.
inline int otherValue(const Setting& setting) {
    int value = setting.kind == Setting::CHARACTER ? setting.least : setting.standard + 1;
    while (!setting.IsPossible(value)) value = value < setting.most ? value + 1 : setting.least;
    return value;
}

inline std::vector<Setting> numberSettings() {
    std::vector<Setting> numbers;
    for (const Setting& setting : SETTINGS) {
        if (setting.IsNumber()) numbers.push_back(setting);
    }
    return numbers;
}
