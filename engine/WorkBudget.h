// SPDX-License-Identifier: MIT
//
// The account of an entry's work: when a preview gives up, and when it is time to ask for an interruption.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

struct Outcome;
struct Statement;

// What work costs. A unit takes 0.05 to 0.1 microseconds. Conversions have their costs in units.h, in the
// same unit: that folder knows nothing of this one.
namespace Cost {

constexpr uint64_t COPIED_TERM = 1;
constexpr uint64_t OPERATOR = 3;
constexpr uint64_t EXPENSIVE = 24;       // more for what computes long, such as a sine, a power, a conversion
constexpr uint64_t REMAINDER_BITS = 256; // a remainder: one for so many bits by which its operands differ
constexpr uint64_t SHOWN_RESULT = 150;   // and one for so many bits of its integer part:
constexpr uint64_t SHOWN_BITS = 32;
constexpr uint64_t LISTED_TERM = 40; // a number, with an operator to it

// A line of the definitions file, besides the evaluation of its statement, and each of the statement's
// characters.
constexpr uint64_t READ_LINE = 20;
constexpr uint64_t CHARACTER_OF_FUNCTION = 8;
constexpr uint64_t CHARACTER_OF_VALUE = 2;

} // namespace Cost

// How much work there may be.
namespace WorkLimit {

constexpr uint64_t NONE = UINT64_MAX;
constexpr uint64_t PREVIEW = 60000;          // it is evaluated at every key press: 2 to 5 milliseconds
constexpr uint64_t BETWEEN_QUESTIONS = 1000; // 0.1 milliseconds; a few of what takes longest
constexpr uint64_t READ_FILE = 8000000;      // 0.4 seconds, beside reading each definition of the file once
constexpr uint64_t READ_DEFINITION = 400000; // of that, for one of them

// These are not work but memory, which calls of functions could fill in a short time.
constexpr int32_t CALL_LEVEL = 100; // every expansion raises its body by the level of the call
constexpr int32_t TERMS = 250000;
constexpr size_t LONG_TEXT = 64;        // longer names, in an argument or a body, are counted:
constexpr size_t LONG_TEXTS = 16 << 20; // the characters that one statement may copy

} // namespace WorkLimit

// Whether copies of the text, which may be null, are counted.
inline bool isLongText(const char* text) {
    return text && strnlen(text, WorkLimit::LONG_TEXT + 1) > WorkLimit::LONG_TEXT;
}

class WorkBudget {
public:
    enum class Next {
        GoOn,
        Ask,   // it is time to ask for an interruption, and to tell Asked
        GiveUp // the limit does not allow this
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
        if (spent <= nextStop) return Next::GoOn;
        return spent > limit ? Next::GiveUp : Next::Ask;
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

// Spends the work of the entry that runs, and says in the message why it has to stop.
class Spending {
public:
    using InterruptCheck = bool (*)();

    // All of them have to live longer.
    Spending(const Statement& theStatement, Outcome& theOutcome, const InterruptCheck& theCheck,
             WorkCounters& theWork)
        : statement(theStatement), outcome(theOutcome), interruptCheck(theCheck), work(theWork) {}

    WorkBudget budget;

    // Counts work before it is done, and asks for an interruption now and then. Returns 0, or -1 with a
    // message when the evaluation has to stop: a preview at its limit, an entry that is interrupted.
    int Spend(uint64_t units) {
        const WorkBudget::Next next = budget.Spend(units);
        return next == WorkBudget::Next::GoOn ? 0 : Stop(next);
    }

    // Asks now. Returns 0, or -1 with a message.
    int AskForInterruption();

    // The same for work of the unit library.
    int SpendForUnits(uint64_t units) {
        work.units += units;
        return Spend(units);
    }

    // What the unit library asks before it works. The account has to live longer.
    struct UnitsAccount {
        bool isStopped = false;                   // it must not go on; the message says why
        std::vector<uint64_t>* charges = nullptr; // if given it receives each of them
    };
    std::function<bool(uint64_t)> ForUnits(UnitsAccount& account);

private:
    int Stop(WorkBudget::Next next);

    const Statement& statement;
    Outcome& outcome;
    const InterruptCheck& interruptCheck;
    WorkCounters& work;
};
