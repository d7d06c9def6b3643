// SPDX-License-Identifier: MIT
#include "qregister.h"

#include "qexact.h"
#include "qfloat.h"
#include "qlimb.h"

uint32_t ac1[REGISTER_WORDS], ac2[REGISTER_WORDS], ac3[REGISTER_WORDS], ac4[REGISTER_WORDS];
int32_t SC;
char subflg;

namespace {

void shiftRight(uint32_t* r, int bits) {
    uint32_t in = 0;
    for (int i = HIGH_WORD; i <= GUARD_WORD; ++i) {
        const uint32_t out = r[i] << (32 - bits);
        r[i] = (r[i] >> bits) | in;
        in = out;
    }
}

void shiftLeft(uint32_t* r, int bits) {
    uint32_t in = 0;
    for (int i = GUARD_WORD; i >= HIGH_WORD; --i) {
        const uint32_t out = r[i] >> (32 - bits);
        r[i] = (r[i] << bits) | in;
        in = out;
    }
}

// Words 3..14 of a register as limbs and back.
void loadRegister(const uint32_t* r, uint64_t* x) {
    limb::load(r, x);
    x[0] |= r[GUARD_WORD];
}

void storeRegister(const uint64_t* x, uint32_t* r) {
    limb::store(x, r);
    r[GUARD_WORD] = static_cast<uint32_t>(x[0]);
    r[HIGH_WORD] = 0;
}

} // namespace

void shdn1(uint32_t* r) {
    shiftRight(r, 1);
}
void shdn8(uint32_t* r) {
    shiftRight(r, 8);
}
void shdn16(uint32_t* r) {
    shiftRight(r, 16);
}
void shup1(uint32_t* r) {
    shiftLeft(r, 1);
}
void shup8(uint32_t* r) {
    shiftLeft(r, 8);
}
void shup16(uint32_t* r) {
    shiftLeft(r, 16);
}

void setshiftcount(int32_t n) {
    SC = n;
}

void shift(uint32_t* r) {
    // 13 words: any longer shift leaves nothing.
    if (SC > 13 * 32) SC = 13 * 32;
    if (SC < -13 * 32) SC = -13 * 32;
    for (; SC <= -16; SC += 16) shdn16(r);
    for (; SC <= -8; SC += 8) shdn8(r);
    for (; SC < 0; ++SC) shdn1(r);
    for (; SC >= 16; SC -= 16) shup16(r);
    for (; SC >= 8; SC -= 8) shup8(r);
    for (; SC > 0; --SC) shup1(r);
}

void addm(const uint32_t* x, uint32_t* y) {
    uint64_t carry = 0;
    for (int i = GUARD_WORD; i >= HIGH_WORD; --i) {
        carry += uint64_t{y[i]} + x[i];
        y[i] = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
}

void subm(const uint32_t* x, uint32_t* y) {
    uint64_t borrow = 0;
    for (int i = GUARD_WORD; i >= HIGH_WORD; --i) {
        const uint64_t d = uint64_t{y[i]} - x[i] - borrow;
        y[i] = static_cast<uint32_t>(d);
        borrow = d >> 63;
    }
}

void andm(const uint32_t* x, uint32_t* y) {
    for (int i = HIGH_WORD; i <= GUARD_WORD; ++i) y[i] &= x[i];
}

void orm(const uint32_t* x, uint32_t* y) {
    for (int i = HIGH_WORD; i <= GUARD_WORD; ++i) y[i] |= x[i];
}

void xorm(const uint32_t* x, uint32_t* y) {
    for (int i = HIGH_WORD; i <= GUARD_WORD; ++i) y[i] ^= x[i];
}

int cmpm(const uint32_t* x, const uint32_t* y) {
    for (int i = HIGH_WORD; i <= LAST_WORD; ++i) {
        if (x[i] != y[i]) return x[i] > y[i] ? 1 : -1;
    }
    return 0;
}

void mulm(const uint32_t* x, uint32_t* y) {
    uint64_t a[limb::COUNT], b[limb::COUNT], ab[limb::COUNT];
    limb::load(x, a);
    limb::load(y, b);
    limb::multiplyExactly(a, b, ab);
    storeRegister(ab, y);
    mdnorm(y);
}

void mulin(const uint32_t* x, uint32_t* y) {
    uint64_t b[limb::COUNT];
    limb::load(y, b);
    limb::multiplyLimb(b, uint64_t{x[FIRST_WORD]} << 32, b);
    storeRegister(b, y);
    mdnorm(y);
}

void divm(const uint32_t* x, uint32_t* y) {
    uint64_t d[limb::COUNT], n[limb::COUNT];
    limb::load(x, d);
    const int zeros = limb::leadingZeros(d);
    if (zeros == 64 * limb::COUNT) return;
    limb::shiftUp(d, zeros);
    loadRegister(y, n);
    limb::shiftDown(n, 2); // now below the divisor
    limb::divide(n, d, n);
    storeRegister(n, y);
    mdnorm(y);
}

namespace {

// One unit more in the exponent, unless that leaves the range.
void raiseExponent(uint32_t* r) {
    if (r[1] > 0xFFFF) {
        r[1] = OVERFLOW_EXPONENT;
        merror = 3;
    } else {
        ++r[1];
    }
}

} // namespace

void mdnorm(uint32_t* r) {
    for (int i = 0; i < 3 && r[HIGH_WORD] != 0; ++i) {
        shdn1(r);
        raiseExponent(r);
    }
    for (int i = 0; i < 3 && !(r[FIRST_WORD] & 0x80000000); ++i) {
        if (r[1] == 0) {
            merror = 4;
            break;
        }
        shup1(r);
        --r[1];
    }
    if (r[GUARD_WORD] & 0x80000000) {
        for (int i = LAST_WORD; i >= HIGH_WORD; --i) {
            if (++r[i] != 0) break;
        }
    }
    if (r[HIGH_WORD] != 0) {
        shdn1(r);
        raiseExponent(r);
    }
    r[GUARD_WORD] = 0;
}

int normlz(uint32_t* r) {
    SC = 0;
    if (r[HIGH_WORD] != 0) {
        for (; r[HIGH_WORD] > 0xFF; SC -= 8) shdn8(r);
        for (; r[HIGH_WORD] != 0; --SC) shdn1(r);
        return 0;
    }
    if (r[FIRST_WORD] & 0x80000000) return 0;
    while (r[FIRST_WORD] == 0) {
        shup16(r);
        SC += 16;
        if (SC > MANTISSA_BITS) return 1;
    }
    for (; r[FIRST_WORD] < 0x01000000; SC += 8) shup8(r);
    for (; !(r[FIRST_WORD] & 0x80000000); ++SC) shup1(r);
    return 0;
}
