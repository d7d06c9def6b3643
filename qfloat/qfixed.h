// SPDX-License-Identifier: MIT
//
// Private to qfloat/: fixed point with 384 fraction bits and one limb for the integer part, for the argument
// reductions of the elementary functions.
#pragma once

#include "qlimb.h"

namespace elem {

using limb::Extended;

// The value limb / 2^384; limb[6] is the integer part.
struct Fixed {
    static constexpr int SIZE = limb::COUNT + 1;
    uint64_t limb[SIZE];

    bool IsNegative() const { return (limb[SIZE - 1] & limb::TOP_BIT) != 0; } // after a difference
};

// ln 2 in units of 2^-448, cut.
constexpr uint64_t LN2_LIMBS[7] = {0xED2EAE35C1382144, 0x559552FB4AFA1B10, 0xE7B876206DEBAC98,
                                   0x8A0D175B8BAAFA2B, 0x40F343267298B62D, 0xC9E3B39803F2F6AF,
                                   0xB17217F7D1CF79AB};

// y += x, y -= x; wraps like two's complement.
inline void add(const Fixed& x, Fixed& y) {
    uint64_t carry = 0;
    for (int i = 0; i < Fixed::SIZE; ++i) y.limb[i] = limb::addCarry(y.limb[i], x.limb[i], carry);
}

inline void subtract(const Fixed& x, Fixed& y) {
    uint64_t borrow = 0;
    for (int i = 0; i < Fixed::SIZE; ++i) y.limb[i] = limb::subtractBorrow(y.limb[i], x.limb[i], borrow);
}

// x cut below 2^-384; 0 <= x < 2^64.
inline Fixed toFixed(const Extended& x) {
    Fixed f;
    limb::copy(x.limb, f.limb);
    f.limb[limb::COUNT] = 0;
    if (x.exponent > 0) {
        const int bits = static_cast<int>(x.exponent);
        f.limb[limb::COUNT] = x.limb[limb::COUNT - 1] >> (64 - bits);
        limb::shiftUp(f.limb, bits);
    } else {
        const int64_t all = 64 * limb::COUNT;
        limb::shiftDown(f.limb, static_cast<int>(-x.exponent < all ? -x.exponent : all));
    }
    return f;
}

// The value of a non-negative f, cut to 384 bits. Zero has an all-zero mantissa.
inline Extended toExtended(const Fixed& f) {
    Extended x;
    limb::copy(f.limb, x.limb);
    const uint64_t integer = f.limb[limb::COUNT];
    if (integer != 0) {
        const int bits = 64 - limb::leadingZeros(integer);
        limb::shiftDown(x.limb, bits);
        x.limb[limb::COUNT - 1] |= integer << (64 - bits);
        x.exponent = bits;
    } else {
        const int zeros = limb::leadingZeros(x.limb);
        limb::shiftUp(x.limb, zeros);
        x.exponent = -zeros;
    }
    return x;
}

// n * ln 2, cut, for n < 2^32: error below two units of 2^-384.
inline Fixed timesLn2(uint64_t n) {
    Fixed f;
    uint64_t carried = 0;
    for (int i = 0; i < 7; ++i) {
        uint64_t high;
        uint64_t carry = 0;
        const uint64_t low = limb::addCarry(limb::multiply(LN2_LIMBS[i], n, high), carried, carry);
        carried = high + carry;
        if (i > 0) f.limb[i - 1] = low;
    }
    f.limb[limb::COUNT] = carried;
    return f;
}

} // namespace elem
