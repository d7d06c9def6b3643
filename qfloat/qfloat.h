// SPDX-License-Identifier: MIT
//
// The number type: sign-magnitude binary floating point with 352 mantissa bits (about 106 decimal digits)
// and magnitudes from about 10^-9864 to 10^9864.
//
// A qfloat is 14 words of 32 bits, most significant first:
//
//   word 0      sign      0 positive, 0xFFFFFFFF negative (any non-zero word counts as negative)
//   word 1      exponent  biased by 0x8000; value = 0.m * 2^(exponent - 0x8000); exponent 0 is the number
//                         zero whatever the other words hold
//   word 2      high      always 0 in a stored number
//   words 3-13  mantissa  352 bits, word 3 first; normalized: the top bit of word 3 is set
//
// 1.0 is { 0, 0x8001, 0, 0x80000000, 0, ... }. The overflow value has exponent 0x10000 and a mantissa of
// all ones. The largest finite exponent is 0xFFFF, the smallest 1.
//
// Conventions of every routine here:
//   - the caller owns every array; an output may be the same array as an input;
//   - subtract, divide and remainder take the subtrahend or divisor FIRST;
//   - nothing throws, and only the elementary functions allocate, seldom; failures are reported in `merror`,
//   which no routine ever clears;
//   - nothing is re-entrant (shared scratch state, one thread).
#pragma once

#include <cstdint>

#pragma GCC visibility push(default) // what programs may call in the shared library

typedef uint32_t qfloat[14];

// The code of the last failure. Callers clear it before a calculation and read it afterwards.
//   0 unknown, 1 result is imaginary (domain), 2 singularity, 3 overflow, 4 underflow,
//   5 total loss of precision, 6 partial loss of precision
extern int merror;

// The texts of the codes, index = code (7 entries).
extern const char* const MATH_ERROR_TEXTS[7];

// Sets merror = code. The routine's name is accepted for the caller's record only.
void mtherr(const char* name, int code);

// ---------------------------------------------------------------------------------------------------------
// Constants, all exact to 352 bits unless said otherwise. Stored in 16 words, the last two zero.

typedef const uint32_t qconstant[16];

extern qconstant qzero, qhalf, qone, qtwo, qthree, qnine, qten, q32;
extern qconstant q32bitmax;        // 2^32
extern qconstant q31bitmax;        // 2^31
extern qconstant qlog2;            // ln 2
extern qconstant qsqrt2;           // square root of 2
extern qconstant oneopi;           // 2 / square root of pi (in spite of the name)
extern qconstant qpi;              // pi
extern qconstant qeul;             // Euler's constant, gamma
extern qconstant C1;               // the first 32 mantissa bits of ln 2
extern qconstant C2;               // ln 2 - C1
extern qconstant qsq0, qsq1, qsq2; // 0.313567057, 0.890194099, -0.204405847 as doubles
extern qconstant qrad2deg;         // 180 / pi
extern qconstant qsmall;           // 10^-80
extern qconstant qtp8;             // tan(pi/8) = square root of 2, less 1
extern qconstant qt3p8;            // tan(3 pi/8) = square root of 2, plus 1
extern qconstant qtens[14];        // entry i = 10^(2^(13-i)): 10^8192 ... 10^1
extern qconstant qmtens[14];       // their reciprocals, correctly rounded
extern qconstant rndbit;           // zero except a 1 in word 13: one unit of the last place
extern const uint32_t bmask[32];   // entry k clears the k lowest bits of a word

// ---------------------------------------------------------------------------------------------------------
// Copy, sign, compare. None of these reports an error.

void qmov(const qfloat a, qfloat b); // b = a (14 words)

// b = a with a zero guard word: b is a working register of 15 words.
void qmovz(const qfloat a, uint32_t* b);

void qclear(qfloat a);      // a = 0, all 14 words
void qneg(qfloat a);        // a = -a: a sign word of 0 becomes all ones, any other 0
void qabs(qfloat a);        // a = |a|: clears the sign word
int qisneg(const qfloat a); // 1 when the sign word is non-zero, else 0
void qinfin(qfloat a);      // a = the overflow value; the sign word stays as it is

// Normalizes a in place. An all-zero mantissa gives 0, as does an exponent that falls below 0; one that
// rises above 0x10000 gives the overflow value and merror = 3.
void qnrmlz(qfloat a);

// Returns -1, 0, +1 as a < b, a = b, a > b. When both exponents are at most 352 the difference decides, so
// that a difference which qsub flushes to zero (see there) compares as equal.
int qcmp(const qfloat a, const qfloat b);

// ---------------------------------------------------------------------------------------------------------
// Arithmetic.
//
// Overflow gives the overflow value and merror = 3; underflow gives 0 without a code.

// c = b + a. Exact sum, then: a sum of magnitudes is rounded half up on the 32-bit guard word, a difference
// of magnitudes is cut (not rounded). Operands whose exponents differ by more than 353 give the larger one.
// A difference whose mantissa before normalizing is below 4095 units of the last mantissa word is taken as
// exact cancellation and gives 0. On overflow c's sign word keeps what it held (except for a + a, which
// has the sign of a).
void qadd(const qfloat a, const qfloat b, qfloat c);

// c = b - a (subtrahend first). As qadd.
void qsub(const qfloat a, const qfloat b, qfloat c);

// c = a * b. The number nearest to the product; a product half way between two numbers goes away from zero.
void qmul(const qfloat a, const qfloat b, qfloat c);

// c = a * b where only the first mantissa word of a counts. Rounded as qmul.
void qmuli(const qfloat a, const qfloat b, qfloat c);

// c = b / a (divisor first). The number nearest to the quotient, which is never half way between two
// numbers. 0 / a = 0 for any a, zero included; b / 0 sets merror = 2 and gives the overflow value, c's sign
// word keeping what it held.
void qdiv(const qfloat a, const qfloat b, qfloat c);

// ---------------------------------------------------------------------------------------------------------
// Text.

// q = the number in text: decimal, or radix 16, 8, 2 after "0x", "0o", "0b" (then "e" is followed by a power
// of two; in radix 16 it is a digit). Blanks are ignored; one sign may stand anywhere among the mantissa's
// characters. Of the digits behind the leading zeros of the integer part (zeros behind the point are digits)
// the first 104 count; the others are dropped without any change to the scale. Reading stops at a line end
// and at whatever follows the digits of an exponent.
// Returns 0, or -1 on a syntax error (q = 0, and "asctoq conversion error" goes to standard output).
// merror: 3 overflow (q = the overflow value, signed; a decimal value overflows from exponent 0x10000 on, a
// radix value above it), 4 underflow (q = 0; a radix value that is too small gives 0 without a code), 4 also
// for a zero mantissa with an exponent ("0e5").
// A decimal value is the number nearest to the text's first 104 digits and exponent (a tie goes away from
// zero); radix values are cut.
int asctoq(const char* text, qfloat q);

// As asctoq, and writes nothing: for programs that own their standard output.
int qparse(const char* text, qfloat q);

// Writes q as a sign (blank or '-'), one digit, a point, min(digits, 104) fraction digits, 'E' and the
// decimal exponent: " 1.2345E3", "-5.E-7". The text nearest to q, ties to the even digit; without fraction
// digits (digits below 1) ties are cut.
// The buffer holds at least 3 + min(digits, 104) + 8 bytes.
void qtoasc(const qfloat q, char* buffer, int digits);

// q = q * 10^n, the number nearest to it (a tie goes away from zero). Overflow: the overflow value with q's
// sign and merror = 3. Underflow: 0, no code.
void qdecexp(qfloat q, int64_t n);

// ---------------------------------------------------------------------------------------------------------
// Elementary functions. Every result inside the range is the number nearest to the true value
// (docs/accuracy.md).
//
// Where the 384 bits that are computed first do not tell to which number the value rounds, it is computed a
// second time with more of them: of dense arguments one in half a million or fewer, of powers near the limits
// one in 30 to 300. That allocates memory and takes some tens of microseconds, a tenth of a second for a
// tangent of 2^32767.

// y = the square root of x: the number nearest to it, which is never half way between two numbers.
// A negative zero gives a negative zero; any other negative x: 0, merror = 1.
void qsqrt(const qfloat x, qfloat y);

// y = e^x.
// x >= 32768: the overflow value, y's sign word keeping what it held, merror = 3. x <= -32768: 0, no code.
// Results above the range: the overflow value, merror = 3; below it: 0, no code.
void qexp(const qfloat x, qfloat y);

// y = ln x; exactly 0 for 1.
// x negative (a negative zero too): 0, merror = 1. x = 0: minus the overflow value, merror = 2.
void qlog(const qfloat x, qfloat y);

// y = ln x / ln b, the logarithm of x to the base b. x or b negative or zero: what qlog
// gives for it. b = 1: 0 for x = 1, otherwise the overflow value with the sign of ln x and merror = 2.
void qlogbase(const qfloat x, const qfloat b, qfloat y);

// z = x^y. A whole y below 415032 in magnitude goes through qpowi, anything else is e^(y ln x).
// x = 0: 1 for y = 0, 0 for y > 0, the overflow value and merror = 3 for y < 0.
// Through the logarithm: x negative: merror = 1 and 1 (the logarithm failing as 0). y ln x above the range
// sets merror = 3 also where the result is then 0. An overflow value is positive.
void qpow(const qfloat x, const qfloat y, qfloat z);

// z = x^n, n the integer part of y. A power half way between two numbers goes away from 0.
//   x = 2: exact, whatever n; n > 32767: the overflow value, merror = 3; n < -32768: 0, no code.
//   |y| >= 2147483647: e^(y ln x), as in qpow.
//   x = 0: 1 for n = 0, 0 for n > 0, the overflow value without a code for n < 0.
// Otherwise x^|n| is formed first. Above the range it is the overflow value and merror = 3, below it 0 (with
// the sign of an odd power). For n < 0 the result is the reciprocal of that: just above 2^-32768
// (merror = 3) or the overflow value (merror = 3).
void qpowi(const qfloat x, const qfloat y, qfloat z);

// y = n!, n the integer part of the double nearest to x; exact up to 86!.
// x negative (a negative zero too): the overflow value, merror = 1. x above 1754: the overflow value,
// merror = 3.
void qfac(const qfloat x, qfloat y);

// c = b - k a for the integer k, toward zero, that leaves |c| < |a| (divisor first): exact for any
// exponents, with b's sign, but 0 where it lies below the range; a zero remainder is a plain 0. |b| < |a|: c
// = b. a = 0: 0, merror = 2.
void qremain(const qfloat a, const qfloat b, qfloat c);

// ---------------------------------------------------------------------------------------------------------
// Radix text and bitwise operations.

// The size of the buffers that qtohex and qtobin write to: they stop at the first chunk of 32 bits that
// brings the text to 9,001 characters or more and then append " . . .".
constexpr int RADIX_TEXT_SIZE = 10000;

// Writes the integer part of x (toward zero) in hexadecimal: "0x00FF", "-0x0001", "0x000100000000".
// Groups of eight digits, the first of four when it fits. With `twos` a negative number above -2^31 is
// shown as its 32-bit two's complement ("0xFFFFFFFF" for -1); others keep the minus sign. An integer part of
// 0 is "0x0000", without a sign.
void qtohex(const qfloat x, char* buffer, bool twos);

// The same in binary, each group of four digits behind a blank: "0b 1111 1111"; an integer part of 0 is
// "0b0000". With `twos` a negative number loses its minus sign also where no complement is taken (-2^31 and
// below).
void qtobin(const qfloat x, char* buffer, bool twos);

// c = a op b, op one of '&', '|', '^': the magnitudes' bits, fractions included, aligned at the point
// (1.5 | 0.25 = 1.75). The sign is that of the operand with the larger exponent, b's when they are equal.
// Any other op gives that operand. Bits below the mantissa are rounded half up, or cut when the last qadd or
// qsub took a difference of magnitudes. Overflow by rounding: the overflow value, c's sign word keeping what
// it held, merror = 3.
void qlogic(const qfloat a, const qfloat b, qfloat c, char op);

// ---------------------------------------------------------------------------------------------------------
// Machine numbers and integers.

// q = *n modulo 2^32 on the magnitude, with n's sign: exact for |n| < 2^32 (a quirk that callers know).
void ltoq(const int64_t* n, qfloat q);

// q = the double, exactly. The exponent field 2047 is not special: infinities and NaNs become large finite
// numbers near 2^1024. The second form takes the four 16-bit words, least significant first.
void etoq(const double* d, qfloat q);
void etoq(const uint16_t e[4], qfloat q);

// *d = the double nearest to q. An exact tie is cut, never rounded up; a value above a tie whose excess lies
// below mantissa word 4 (bit 64 and below) is rounded up only after an odd last bit. Overflow: the
// largest finite double with q's sign, merror = 3. Below the subnormal range: a signed zero.
void qtoe(const qfloat q, double* d);
void qtoe(const qfloat q, uint16_t e[4]);

// *i = the integer part of x, toward zero; f = the fraction.
//   |x| < 1: i = 0 and f = x, with its sign.
//   1 <= |x| < 2^31: exact; f is non-negative also for negative x (-2.75 gives -2 and 0.75).
//   |x| >= 2^31: i is saturated to 2147483647 with x's sign; f is still exact.
void qifrac(const qfloat x, int64_t* i, qfloat f);

void qfloor(const qfloat x, qfloat y); // y = the largest integer <= x, exact
void qround(const qfloat x, qfloat y); // y = the nearest integer, halves go up (2.5: 3, -2.5: -2)

// Replaces x by the nearest integer when that is not 0 and lies within 10^-80 of it.
void qfixintegers(qfloat x);

// y = x * 2^n by exponent arithmetic. Overflow, and any n above 131072: the overflow value with x's sign, no
// code; underflow, and any n below -131072: 0, no code. A zero is not special: its exponent word is raised
// too (a quirk that callers guard against).
void qldexp(const qfloat x, int64_t n, qfloat y);

// y = x scaled into [0.5, 1), *e = the power of two removed; 0 gives y = 0, *e = 0.
void qfrexp(const qfloat x, int64_t* e, qfloat y);

// Sets the shift count that the mantissa primitive `shift` consumes (qregister.h).
void setshiftcount(int32_t n);

#pragma GCC visibility pop

// 1 after a difference of magnitudes, 0 after a sum; where the operands were equal or too far apart to be
// added up, 1 after qsub and 0 after qadd. qlogic's rounding reads it. The elementary and circular functions
// do not add numbers up and leave it alone. The shared library does not show it to programs.
extern char subflg;
