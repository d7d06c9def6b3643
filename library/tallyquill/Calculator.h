// SPDX-License-Identifier: MIT
//
// The calculator for programs: a line in, a status, a value and a text out.
//
//   tallyquill::Calculator calculator;
//   calculator.Evaluate("f(x) = x^2 + 1");
//   const tallyquill::Answer answer = calculator.Evaluate("f(3)"); // answer.text is "10"
//
// A line is what a person types: expressions, assignments, functions, conversions such as "5 km->mi", and
// command words such as "mode rad" and "sigfigs 20", which change the settings from there on.
#pragma once

#include "Real.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace tallyquill {

struct Answer {
    enum class Status {
        Value,   // `value` and `name` hold the answer, `text` shows it
        Message, // `text` is to be shown: a definition, a setting. It may be empty
        Error,   // `text` says what is wrong, and `start` and `length` where
        Command  // `text` is a command for a screen, such as "clear"; `echo` may hold what it shows
    };
    Status status = Status::Message;
    Real value;       // of the last statement; 0 unless it has one
    std::string name; // the variable that has it: "ans" unless the statement assigns to another
    std::string text; // "14"; without a line end
    std::string echo; // what "echo" and "disp" showed meanwhile, in lines

    // The part of the line that an error is about, in bytes. NOWHERE: it is not known.
    static constexpr size_t NOWHERE = static_cast<size_t>(-1);
    size_t start = NOWHERE;
    size_t length = 0;
};

// One at a time in a process, and in one thread at a time: functions and units belong to the process. When it
// has ended another one may begin, with nothing left of the first. It writes nothing, reads no file, starts
// no program, and works in every locale. A line leaves `merror` at 0. A
// new calculator begins the sequence of std::rand, from which rand() takes its numbers.
class Calculator {
public:
    // Throws std::logic_error while there is another one.
    Calculator();
    ~Calculator();
    Calculator(const Calculator&) = delete;
    Calculator& operator=(const Calculator&) = delete;

    // Evaluates a line of at most 9,999 bytes in UTF-8, all its statements. One that fails ends it; what the
    // statements in front of it have changed stays. An empty line repeats the last assignment, as Return on
    // an empty prompt does.
    Answer Evaluate(std::string_view line);

    // The value or the error of a line while it is typed, as the calculator shows it below the line. Nothing
    // is stored, but rand() goes on in its sequence. A function's definition has an empty message, and so has
    // what takes more than some milliseconds; command words are not known.
    Answer Preview(std::string_view line);

    // Asked every few milliseconds of a long evaluation, in its thread. True ends it with an error, and
    // everything is as it was before the line. Null asks nothing.
    void SetInterruptCheck(bool (*isInterrupted)());

private:
    class Engine;
    std::unique_ptr<Engine> engine;
};

} // namespace tallyquill

#pragma GCC visibility pop
