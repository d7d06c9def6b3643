// SPDX-License-Identifier: MIT
//
// The end of the window's transcript, which is there again at its next start.
#pragma once

#include <cstddef>
#include <string>

constexpr size_t TRANSCRIPT_LINES = 300;
constexpr size_t TRANSCRIPT_BYTES = 100000;

// The last whole lines of a text in UTF-8, no more than both limits allow, each with its end. What must not
// reach a screen, control characters and bytes that are no UTF-8, is replaced (ShownText.h).
std::string endOfTranscript(const std::string& text);
