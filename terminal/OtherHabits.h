// SPDX-License-Identifier: MIT
//
// How something is written here that other calculators write otherwise: functions, operators that are words,
// units of the sets that ship. Each gives one line without its line feed, or nothing.
#pragma once

#include <string>
#include <string_view>

// Of a function that is not there, such as "cbrt", by its name.
std::string hintForFunction(std::string_view name);

// Of an entry with a word between blanks, such as "5 km to mi" or "10 mod 3".
std::string hintForWords(std::string_view entry);

// Of a unit that the set "everyday" has, also one with a prefix in front, such as "kWh".
std::string hintForUnit(std::string_view unit);
