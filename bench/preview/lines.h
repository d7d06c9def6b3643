// SPDX-License-Identifier: MIT
//
// The entries whose previews are timed, and how.
#pragma once

#include "Calculator.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace preview {

struct Line {
    std::string name;
    std::string begin;
    std::string repeated = {}; // as often as the length allows; empty: the line is as long as it is
    std::string end = {};
};

// What people type, and the most expensive lines that we know of.
const std::vector<Line>& lines();

// Defines the functions, variables and units that the lines use.
void define(ZqCalculator& calc);

// The line with at most `length` characters, or an empty text when it has no room.
std::string textOf(const Line& line, size_t length);

// The median of several runs in milliseconds of this process's processor time. `prepare` is not counted.
double median(const std::function<void()>& prepare, const std::function<void()>& run);

} // namespace preview
