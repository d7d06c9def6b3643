// SPDX-License-Identifier: MIT
//
// What the commands that the engine hands to its front end (a status of STATUS_COMMAND) ask for.
#pragma once

#include <string_view>

// Whether the command is the word with a number behind it, as in pause500 or pause0x10; then `number` is that
// one.
bool CommandHasNumber(std::string_view command, std::string_view word, long& number);

// How long pause<n> waits, in milliseconds: n, but a second where n is negative or above five seconds.
long PauseLength(long number);

// How long echo<n> waits between two characters, in milliseconds: for n characters a second. 0, not at all,
// where n is 0, negative or above 100.
long WaitBetweenCharacters(long number);
