// SPDX-License-Identifier: MIT
//
// Stored numbers as MPFR numbers and back.  For the tests and for bench/; nothing of the number library is
// used here.
#pragma once

#include <array>
#include <cstdint>

#include <gmpxx.h>

// Functions instead of macros, so that Real converts.
#define MPFR_USE_NO_MACRO
#include <mpfr.h>

namespace oracle {

using Number = std::array<uint32_t, 14>; // a stored number

constexpr int64_t BIAS = 0x8000;
constexpr int MANTISSA_BITS = 352;
constexpr uint32_t NEGATIVE_SIGN = 0xFFFFFFFF;

// An MPFR number.
class Real {
public:
    explicit Real(mpfr_prec_t precision = 1000) { mpfr_init2(value, precision); }
    explicit Real(const Number& q); // exactly the value of q; exponent 0 is zero
    Real(const Real&) = delete;
    Real& operator=(const Real&) = delete;
    ~Real() { mpfr_clear(value); }
    operator mpfr_ptr() { return value; }
    operator mpfr_srcptr() const { return value; }

private:
    mpfr_t value;
};

// The integer of words first..last, most significant first, and back.
mpz_class wordsToInteger(const uint32_t* words, int first, int last);
void integerToWords(const mpz_class& z, uint32_t* words, int first, int last);

// 2^n
mpz_class power2(unsigned long n);

// A value rounded to 352 bits, with an unbounded exponent (biased as stored).
struct Rounded {
    bool negative;
    int64_t exponent;
    mpz_class mantissa;
};

// Rounds half up on the magnitude; the value is not zero.
Rounded roundHalfUp(const Real& value);
Number store(const Rounded& value);

} // namespace oracle
