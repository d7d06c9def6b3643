// SPDX-License-Identifier: MIT
//
// The circular, inverse circular and hyperbolic functions of the number type. Angles are in radians, but
// those of qsindeg, qcosdeg and qtandeg in degrees.
//
// Every routine reads x and writes y; y may be the same array as x. Every result is the number nearest to
// the true value, also next to the zeros of a function and for huge arguments.
//
// Special results, all functions: sin, tan, arctan, arcsin and tanh of a zero are a zero with the sign of x;
// sinh of a zero is a plain zero. Only the conditions named below write merror; no routine clears it.
#pragma once

#include "qfloat.h"

#pragma GCC visibility push(default) // what programs may call in the shared library

// y = sin x. |x| >= 2^333: y = 0 and merror = 3.
void qsin(const qfloat x, qfloat y);

// y = cos x. y = 0 and merror = 3 where pi/2 - x, rounded, is 2^333 or more in magnitude: from about
// 2^333 + pi/2 on for positive x, from -(2^333 - pi/2) down for negative x.
void qcos(const qfloat x, qfloat y);

// y = tan x, for any x: no limit and no code. A pole gives a huge value (tan of qpi/2 is about -2.3 *
// 10^106).
void qtan(const qfloat x, qfloat y);

// The same of x degrees, which are reduced exactly: whole multiples of 30 and 45 have exact results where
// there are
// such, and the sine of 10^100 degrees is that of 280. A sine or cosine that is exactly zero is a plain
// zero, a
// pole of the tangent the overflow value without a code. Refused like qsin and qcos of the angle in radians,
// from about 10^102 degrees on.
void qsindeg(const qfloat x, qfloat y);
void qcosdeg(const qfloat x, qfloat y);
void qtandeg(const qfloat x, qfloat y);

// y = arctan x, -pi/2 .. pi/2. arctan 1 is pi/4 to the last bit. No code.
void qatn(const qfloat x, qfloat y);

// y = arcsin x, -pi/2 .. pi/2. |x| > 1: y = 0 and merror = 1.
void qasin(const qfloat x, qfloat y);

// y = arccos x, 0 .. pi. |x| > 1: y = 0 and merror = 1.
void qacos(const qfloat x, qfloat y);

// The same in degrees: half a turn is 180. A zero is a plain zero.
void qatndeg(const qfloat x, qfloat y);
void qasindeg(const qfloat x, qfloat y);
void qacosdeg(const qfloat x, qfloat y);

// y = sinh x. Overflow (|x| above about 22713.0468): the overflow value with x's sign and merror = 3.
// An x with the smallest exponent, 1, counts as zero.
void qsinh(const qfloat x, qfloat y);

// y = cosh x. Overflow as for qsinh: the overflow value and merror = 3.
void qcosh(const qfloat x, qfloat y);

// y = tanh x; 1 or -1, and no code, from where the difference falls below half a unit on (|x| > 122.69).
void qtanh(const qfloat x, qfloat y);

#pragma GCC visibility pop
