#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes qfloat/qtables.cpp: the tables of the elementary functions.

Everything is exact integer arithmetic (pi by Machin's formula on BITS binary places, exponentials by their series
on 512 places), rounded once at the end. The test suite recomputes every limb with MPFR.

usage: scripts/make_tables.py > qfloat/qtables.cpp
"""
from series import pi_in

TWO_OVER_PI_LIMBS = 528   # the largest exponent, 2^15, plus the operand, the result and what cancels
FACTORIALS = 80           # 1/n! for n = 0 .. 79
ODD = 7                   # 1/(2k + 1) for k = 0 .. 6
EXP_LEVELS = 4            # of four bits of an exponent each

BITS = 64 * TWO_OVER_PI_LIMBS + 128
ONE = 1 << BITS


def limbs(value, count):
    """The `count` limbs of an integer, least significant first."""
    return [(value >> (64 * i)) & 0xFFFFFFFFFFFFFFFF for i in range(count)]


def number(values):
    """Six limbs as a brace list, three a line, without the outer indent."""
    text = ["0x%016XU" % v for v in values]
    return "{%s,\n     %s}" % (", ".join(text[:3]), ", ".join(text[3:]))


def nearest(numerator, denominator):
    return (2 * numerator + denominator) // (2 * denominator)


def fractions(name, size, denominators):
    """A table of 1/d in units of 2^-384 (d = 1, which does not fit, becomes 0)."""
    print("\nconst uint64_t %s[%s][COUNT] = {" % (name, size))
    for d in denominators:
        print("    %s," % number(limbs(nearest(1 << 384, d) if d > 1 else 0, 6)))
    print("};")


def extended(name, mantissa, exponent):
    print("\nconst Extended %s = {\n    %s,\n    %d};" % (name, number(limbs(mantissa, 6)), exponent))


def exponential_less_one(numerator, bits):
    """e^(numerator / 2^bits) - 1 to the nearest unit of 2^-384."""
    places = 512
    term, total, n = 1 << places, 0, 1
    while term:
        term = term * numerator // (n << bits)
        total += term
        n += 1
    return nearest(total, 1 << (places - 384))


pi = pi_in(ONE)
two_over_pi = 2 * ONE * ONE // pi
assert two_over_pi < ONE

print("// SPDX-License-Identifier: MIT")
print("//")
print("// Tables of the elementary functions. Written by scripts/make_tables.py; change that, not this file.")
print("// clang-format off")
print('#include "qtables.h"')
print("\nnamespace limb {")
# pi/2 and pi/4 have the mantissa of pi.
mantissa = nearest(pi, 1 << (BITS + 2 - 384))
extended("HALF_PI", mantissa, 1)
extended("quarterPi", mantissa, 0)
extended("WHOLE_PI", mantissa, 2)
extended("RADIANS_PER_DEGREE", nearest(pi, 180 << (BITS - 384 - 5)), -5)
fractions("INVERSE_ODD", "INVERSE_ODD_COUNT", [2 * k + 1 for k in range(ODD)])
factorial, factorials = 1, []
for n in range(FACTORIALS):
    factorial *= max(n, 1)
    factorials.append(factorial)
fractions("INVERSE_FACTORIAL", "INVERSE_FACTORIAL_COUNT", factorials)
print("\nconst int16_t INVERSE_FACTORIAL_ZEROS[INVERSE_FACTORIAL_COUNT] = {")
zeros = [0, 0] + [384 - nearest(1 << 384, d).bit_length() for d in factorials[2:]]
for i in range(0, FACTORIALS, 16):
    print("    " + ", ".join("%d" % v for v in zeros[i:i + 16]) + ",")
print("};")
print("\nconst uint64_t EXP_STEPS[EXP_LEVELS][16][COUNT] = {")
for level in range(1, EXP_LEVELS + 1):
    print("    {")
    for n in range(16 if level > 1 else 12):  # below ln 2
        print("    %s," % number(limbs(exponential_less_one(n, 4 * level), 6)))
    print("    },")
print("};")
print("\n// The fraction of 2/pi, most significant limb first.")
print("const uint64_t TWO_OVER_PI[TWO_OVER_PI_LIMBS] = {")
table = limbs(two_over_pi >> 128, TWO_OVER_PI_LIMBS)
for i in range(TWO_OVER_PI_LIMBS, 0, -4):
    print("    " + ", ".join("0x%016XU" % v for v in table[i - 4:i][::-1]) + ",")
print("};")
print("\n} // namespace limb")
