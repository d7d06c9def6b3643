// SPDX-License-Identifier: MIT
//
// The engine's questions whether to stop, counted and answered. The engine asks a function without an object.
#pragma once

inline int questions = 0; // since a test set it to 0
inline int stopAt = 0;    // from this question on the answer is yes; 0: never

inline bool countQuestions() {
    return ++questions >= stopAt && stopAt > 0;
}
