// SPDX-License-Identifier: MIT
//
// Arguments whose exact result lies next to a midpoint of two numbers of 352 bits, far nearer than chance
// would bring it.  For the tests and for bench/; nothing of the number library is used here.
#pragma once

#include <cstdint>
#include <functional>

#include <gmpxx.h>

namespace hard {

constexpr unsigned long BITS = 352;

using Source = std::function<uint64_t()>; // of random bits

// 0 <= the value < 2^bits
mpz_class randomBits(const Source& random, unsigned long bits);

struct Pair {
    mpz_class a, b; // at most 352 bits
};

// a * b is (2k + 1) 2^350 or 2^351 and up to 2^20, above or below, with k of 352 bits; sometimes the tie
// itself.
Pair product(const Source& random);

// b * 2^352 or 2^353 is (2k + 1) a and up to 2^20, above or below: b / a is 2^-330 units or less from a
// midpoint.
Pair quotient(const Source& random);

// m * 2^even: its root is 2^-330 units or less from a midpoint.
struct Square {
    mpz_class m; // at most 352 bits
    long exponent;
};
Square square(const Source& random);

// d * 10^n * 2^-e is an odd number from `low` to below `high`, and less than 1 / d above or below: the best
// approximations are the convergents of the continued fraction of 10^n * 2^-e.  d has about `bits` bits; |n|
// is at least 160, so that the fraction is long.
struct Decimal {
    mpz_class d;
    long e;
};
Decimal decimal(const Source& random, long n, unsigned long bits, const mpz_class& low,
                const mpz_class& high);

// d * 10^n, 12 <= |n| < 148, is an odd number of 353 bits with a power of two and up to 2^20 / 5^|n| or
// 2^-|n| beside it; d has at most 345 bits.
mpz_class decimalNear(const Source& random, long n);

// d * 5^n is exactly an odd number of 353 bits, 0 < n < 150.
mpz_class decimalTie(const Source& random, unsigned long n);

} // namespace hard
