// SPDX-License-Identifier: MIT
//
// The rules whose results are fixed to the last bit, written a second time over GMP integers, step by step
// and without regard to speed.  Nothing of the number library is used here.
#pragma once

#include "oracle.h"

namespace model {

using oracle::Number;
using oracle::Register;

// A working register: words 2..14 (high word, mantissa, guard) as one integer of 416 bits.
struct Work {
    uint32_t sign;
    int64_t exponent;
    mpz_class words;
};

Work load(const Number& q);
Work load(const Register& r);
Register toRegister(const Work& w);

// Sets the top bit of word 3 by shifting; returns the left shift (negative: right), 0 for all zero words.
int64_t normalize(Work& w);

// Normalizes and rounds after a multiply or divide; sets `code` to 3 or 4 where the exponent leaves its
// range.
void normalizeAndRound(Work& w, int& code);

struct Sum {
    Number result;
    int code = 0;         // merror, 0 when it is left alone
    bool flushed = false; // taken as exact cancellation
    bool ranged = false;  // overflow, or underflow to zero
};

// b + a, or b - a when `subtract`; `outputSign` is the sign word that the output array holds before.
Sum add(const Number& a, const Number& b, bool subtract, uint32_t outputSign);

// The double of a normalized number, as its 64 bits; code 3 on overflow.
uint64_t toDouble(const Number& q, int& code);

} // namespace model
