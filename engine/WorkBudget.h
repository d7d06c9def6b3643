// SPDX-License-Identifier: MIT
//
// The account of an entry's work: when a preview gives up, and when it is time to ask for an interruption.
#pragma once

#include <cstddef>
#include <cstdint>

// What work costs. A unit takes 0.05 to 0.1 microseconds; the unit library counts in the same unit (units.h).
namespace Cost {

constexpr uint64_t COPIED_TERM = 1;
constexpr uint64_t OPERATOR = 3;
constexpr uint64_t EXPENSIVE = 24;       // more for what computes long, such as a sine, a power, a conversion
constexpr uint64_t REMAINDER_BITS = 256; // a remainder: one for so many bits by which its operands differ
constexpr uint64_t SHOWN_RESULT = 150;   // and one for so many bits of its integer part:
constexpr uint64_t SHOWN_BITS = 32;
constexpr uint64_t LISTED_TERM = 40; // a number, with an operator to it
constexpr uint64_t FILE_LINE = 20;   // a line of the functions file, and for each of its characters:
constexpr uint64_t CHARACTER_OF_FUNCTION = 8;
constexpr uint64_t CHARACTER_OF_VALUE = 2;

} // namespace Cost

// How much work there may be.
namespace WorkLimit {

constexpr uint64_t NONE = UINT64_MAX;
constexpr uint64_t PREVIEW = 60000;          // it is evaluated at every key press: 2 to 5 milliseconds
constexpr uint64_t FUNCTIONS_FILE = 8000000; // 0.4 seconds, beside reading each of its lines once
constexpr uint64_t LINE_OF_FILE = 400000;
constexpr uint64_t BETWEEN_QUESTIONS = 1000; // 0.1 milliseconds; a few of what takes longest

// These are not work but memory, which calls of functions could fill in a short time.
constexpr int32_t CALL_LEVEL = 100; // every expansion raises its body by the level of the call
constexpr int32_t TERMS = 250000;
constexpr size_t LONG_TEXT = 64;        // longer names, in an argument or a body, are counted:
constexpr size_t LONG_TEXTS = 16 << 20; // the characters that one statement may copy

} // namespace WorkLimit

class WorkBudget {
public:
    enum class Next {
        GO_ON,
        ASK,    // it is time to ask for an interruption, and to tell Asked
        GIVE_UP // the limit does not allow this
    };

    // A new account, of nothing yet, with a limit of units.
    void Begin(uint64_t units = WorkLimit::NONE) {
        limit = units;
        spent = 0;
        Asked();
    }

    // Counts work, before it is done.
    Next Spend(uint64_t units) {
        spent += units;
        if (spent <= nextStop) return Next::GO_ON;
        return spent > limit ? Next::GIVE_UP : Next::ASK;
    }

    // The next question is due in WorkLimit::BETWEEN_QUESTIONS.
    void Asked() {
        nextStop = Left() < WorkLimit::BETWEEN_QUESTIONS ? limit : spent + WorkLimit::BETWEEN_QUESTIONS;
    }

    // What the limit still allows: 0 when it was not enough.
    uint64_t Left() const { return spent < limit ? limit - spent : 0; }

private:
    uint64_t limit = WorkLimit::NONE;
    uint64_t spent = 0;
    uint64_t nextStop = WorkLimit::BETWEEN_QUESTIONS;
};
