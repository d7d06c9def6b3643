// SPDX-License-Identifier: MIT
//
// Private to qfloat/: the working registers and the mantissa primitives.
//
// A working register is a qfloat of 14 words followed by a guard word (word 14), which takes the bits shifted
// out below the mantissa and decides rounding. Word 2 receives the carries out of the mantissa. The shifts
// and sums work on words 2..14.
#pragma once

#include <cstdint>

constexpr int REGISTER_WORDS = 15;
constexpr int HIGH_WORD = 2, FIRST_WORD = 3, LAST_WORD = 13, GUARD_WORD = 14;
constexpr int MANTISSA_BITS = 352;
constexpr uint32_t EXPONENT_BIAS = 0x8000;
constexpr uint32_t OVERFLOW_EXPONENT = 0x10000;
constexpr uint32_t NEGATIVE_SIGN = 0xFFFFFFFF;

extern uint32_t ac1[REGISTER_WORDS], ac2[REGISTER_WORDS], ac3[REGISTER_WORDS], ac4[REGISTER_WORDS];
extern int32_t SC; // shift count: left by normlz for its callers, consumed by shift

void shdn1(uint32_t* r); // shift right by 1, 8, 16 bits
void shdn8(uint32_t* r);
void shdn16(uint32_t* r);
void shup1(uint32_t* r); // shift left by 1, 8, 16 bits
void shup8(uint32_t* r);
void shup16(uint32_t* r);

// Shifts r by SC bits, negative to the right; SC is 0 afterwards.
void shift(uint32_t* r);

void addm(const uint32_t* x, uint32_t* y); // y = y + x over words 14..2
void subm(const uint32_t* x, uint32_t* y); // y = y - x over words 14..2
void andm(const uint32_t* x, uint32_t* y); // y = y & x, and so on, over words 14..2
void orm(const uint32_t* x, uint32_t* y);
void xorm(const uint32_t* x, uint32_t* y);

// Compares words 2..13: 1 when x > y, 0 when equal, -1 when x < y.
int cmpm(const uint32_t* x, const uint32_t* y);

// y's mantissa = x's * y's, cut below the guard word, then mdnorm(y). Here and in mulin the high and guard
// words of x and y do not take part.
void mulm(const uint32_t* x, uint32_t* y);

// y's mantissa = word 3 of x * y's mantissa, then mdnorm(y).
void mulin(const uint32_t* x, uint32_t* y);

// y's mantissa = y's / x's, on the scale where equal mantissas give 1/4, then mdnorm(y), which lowers y's
// exponent by the normalizing shift. x is taken as if normalized; its guard word and y's high word do not
// take part. A zero x leaves y as it is.
void divm(const uint32_t* x, uint32_t* y);

// Normalizes and rounds after a multiplication or division: up to three shifts by one bit either way,
// adjusting the exponent, then half up on the guard word's top bit; the guard is cleared.
// merror = 3 when the exponent would pass 0xFFFF (it becomes 0x10000), 4 when it is 0 and would fall.
void mdnorm(uint32_t* r);

// Normalizes the mantissa and leaves in SC what the caller subtracts from the exponent. Returns 1 when the
// mantissa is all zero.
int normlz(uint32_t* r);
