// SPDX-License-Identifier: MIT
//
// What an entry has answered: texts, values and a status.
#pragma once

#include "deq.h"
#include "qfloat.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

// Size of the engine's text buffers. A statement has fewer characters than this.
constexpr size_t TEXT_SIZE = 10000;

enum Status : int32_t {
    STATUS_ERROR = -1,  // `message` holds the error
    STATUS_RESULT = 0,  // `resultLine` holds the answer
    STATUS_MESSAGE = 1, // `message` holds a text to show, empty after an empty statement
    STATUS_COMMAND = 2  // `message` holds a command for the front end
};

// A part of a text: its first character, counted from 0, and the number of characters. -1: it is not known.
struct TextRange {
    int32_t start = -1;
    int32_t length = 0;
};

struct Outcome {
    int32_t status = STATUS_RESULT; // of the last full entry's last statement, a Status
    char message[TEXT_SIZE];        // message of the last statement, or the command for the front end
    char echoText[TEXT_SIZE];       // what the echo commands of one entry collected
    qfloat result = {};             // value of the last evaluation
    char resultLine[TEXT_SIZE];     // "name = value\n" of the last statement
    qfloat* lastValue = nullptr;    // value of the variable last assigned; null after a full entry
    char* lastName = nullptr;       // its name, owned by the variable
    char lastAnswer[TEXT_SIZE];     // the last full entry's result as shown; "name = value" by disp
    TextRange errorRange;           // what the error in `message` is about, in bytes of the entry
    bool interrupted = false;       // the last entry was stopped by interruptCheck
    bool overflowed = false; // what the last statement showed, a preview's and disp's included, is beyond
                             // the range, "+OVERFLOW" in decimal: no error

    // The texts are empty. The rest of their buffers is not written, as most of it is never used.
    Outcome() { message[0] = echoText[0] = resultLine[0] = lastAnswer[0] = '\0'; }

    // Copies the texts up to their ends, which are short, and not their buffers.
    Outcome(const Outcome& other) : Outcome() { *this = other; }
    Outcome& operator=(const Outcome& other);
    ~Outcome() = default;

    // Writes a text into `message`, cut at TEXT_SIZE - 1 characters. Returns STATUS_MESSAGE.
    int Tell(std::string_view text);

    // Writes an error into `message`: each conversion in `format` ("%s", "%i", ...) takes the next text.
    // Internal characters are shown as "->"; texts too long for the message are cut, its frame never.
    // Returns -1.
    int Fail(std::string_view format, std::initializer_list<std::string_view> texts = {});

    // The same about a part of the statement, counted without blanks: when the statement has ended its place
    // in the entry is known (errorRange).
    int FailAt(TextRange range, std::string_view format, std::initializer_list<std::string_view> texts = {});
    int FailAt(const node* term, std::string_view format, std::initializer_list<std::string_view> texts = {});
};

// Copies the texts one behind the other into a buffer of TEXT_SIZE bytes, cut where they would not fit.
void copyTexts(char* out, std::initializer_list<std::string_view> texts);
inline void copyText(char* out, std::string_view text) {
    copyTexts(out, {text});
}

// --- The errors of the number library ---

// The exponent word of the overflow value: numbers from there on are shown as OVERFLOW.
constexpr uint32_t OVERFLOW_EXPONENT = 0x10000;

// Codes of the number library's `merror`.
enum MathError : int { MATH_OVERFLOW = 3, MATH_UNDERFLOW = 4 };

// Reports the pending error of the number library: 0 when there is none; else clears it, returns its code and
// writes "** ERROR: 'name' text **\n" into `out` (TEXT_SIZE bytes, may be null), without the name when null.
int checkMathError(const char* name, char* out);
