#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes qfloat/qconst.cpp: the constants of the number type as word tables.

Everything is exact integer arithmetic on BITS binary places (pi by Machin's formula, ln 2 and Euler's
constant by series, roots by isqrt), rounded once at the end. The test suite recomputes each word with MPFR.

usage: scripts/make_constants.py > qfloat/qconst.cpp
"""
import struct
from fractions import Fraction
from math import isqrt

from series import inverse_series, pi_in

BITS = 1200
ONE = 1 << BITS


def ln_of(n, ln2):
    """ln n for a power of two n."""
    return (n.bit_length() - 1) * ln2


def euler(ln2):
    """Brent and McMillan: gamma = U/V - ln n, error below e^(-4n); 4 * 256 / ln 2 > 1400 bits."""
    n = 256
    a = -ln_of(n, ln2)
    b = ONE
    u, v, k = a, b, 0
    while b or a:
        k += 1
        b = b * n * n // (k * k)
        a = (a * n * n // k + b) // k
        u += a
        v += b
        if b == 0 and -1 <= a <= 0:
            break
    return u * ONE // v


def round_to(value, bits):
    """(mantissa of exactly `bits` bits, exponent) with value ~ 0.m * 2^exponent, nearest; value > 0."""
    value = Fraction(value)
    exponent = value.numerator.bit_length() - value.denominator.bit_length() + 1
    while value >= Fraction(2) ** exponent:
        exponent += 1
    while value < Fraction(2) ** (exponent - 1):
        exponent -= 1
    scaled = value * Fraction(2) ** (bits - exponent)
    mantissa = (2 * scaled.numerator + scaled.denominator) // (2 * scaled.denominator)
    if mantissa >> bits:
        mantissa >>= 1
        exponent += 1
    return mantissa, exponent


def words(value):
    value = Fraction(value)
    if value == 0:
        return [0] * 16
    mantissa, exponent = round_to(abs(value), 352)
    return ([0xFFFFFFFF if value < 0 else 0, 0x8000 + exponent, 0]
            + [(mantissa >> (32 * i)) & 0xFFFFFFFF for i in range(10, -1, -1)] + [0, 0])


def table(values):
    out = ["{"]
    for i in range(0, 16, 8):
        out.append("    " + ", ".join("0x%08X" % w for w in values[i:i + 8]) + ("," if i == 0 else ""))
    out.append("}")
    return "\n".join(out)


def double(x):
    return Fraction(struct.unpack("<d", struct.pack("<d", x))[0])


pi = Fraction(pi_in(ONE), ONE)
ln2_scaled = 2 * inverse_series(3, 1, ONE)
ln2 = Fraction(ln2_scaled, ONE)
root2 = Fraction(isqrt(2 * ONE * ONE), ONE)
root_pi = Fraction(isqrt(pi.numerator * ONE * ONE // pi.denominator), ONE)
gamma = Fraction(euler(ln2_scaled), ONE)
c1 = Fraction(0xB17217F7, 1 << 32)

CONSTANTS = [
    ("qzero", 0), ("qhalf", Fraction(1, 2)), ("qone", 1), ("qtwo", 2), ("qthree", 3), ("qnine", 9),
    ("qten", 10), ("q32", 32), ("q32bitmax", 1 << 32), ("q31bitmax", 1 << 31),
    ("qlog2", ln2), ("qsqrt2", root2), ("oneopi", 2 / root_pi), ("qpi", pi), ("qeul", gamma),
    ("C1", c1), ("C2", ln2 - c1),
    ("qsq0", double(0.313567057)), ("qsq1", double(0.890194099)), ("qsq2", double(-0.204405847)),
    ("qrad2deg", 180 / pi), ("qsmall", Fraction(1, 10 ** 80)),
    ("qtp8", root2 - 1), ("qt3p8", root2 + 1),
]

print("// SPDX-License-Identifier: MIT")
print("//")
print("// The constants as words. Written by scripts/make_constants.py; change that, not this file.")
print("// clang-format off")
print('#include "qlimb.h"')
print('#include "qfloat.h"')
for name, value in CONSTANTS:
    print("\nqconstant %s = %s;" % (name, table(words(value))))
for name, sign in (("qtens", 1), ("qmtens", -1)):
    print("\nqconstant %s[14] = {" % name)
    print(",\n".join(table(words(Fraction(10) ** (sign * 2 ** (13 - i)))) for i in range(14)))
    print("};")
print("\nqconstant rndbit = %s;" % table([0] * 13 + [1, 0, 0]))
print("\nconst uint32_t bmask[32] = {")
for i in range(0, 32, 8):
    print("    " + ", ".join("0x%08X" % ((0xFFFFFFFF << k) & 0xFFFFFFFF) for k in range(i, i + 8))
          + ("," if i < 24 else ""))
print("};")
print("\nconst limb::Extended limb::TENS[14] = {")
for i in range(14):
    m, e = round_to(Fraction(10) ** (2 ** i), 384)
    limbs = [(m >> (64 * k)) & 0xFFFFFFFFFFFFFFFF for k in range(6)]
    print("    {{%s},\n     %d}%s" % (",\n      ".join(", ".join("0x%016XU" % l for l in limbs[j:j + 3])
                                                     for j in (0, 3)), e, "," if i < 13 else ""))
print("};")
