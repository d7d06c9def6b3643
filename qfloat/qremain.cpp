// SPDX-License-Identifier: MIT
//
// The remainder: long division of the magnitudes, 64 quotient bits a step, keeping the remainder only. A
// quotient of thousands of bits would take hundreds of steps; there the power of two between the operands is
// reduced first, by squaring.
#include "qelem.h"
#include "qfloat.h"
#include "qproduct.h"
#include "qregister.h"

#include <cstring>

using elem::Extended;
using limb::COUNT;

namespace {

// Arithmetic modulo a divisor with its top bit set; the numbers are below it.
class Modulus {
public:
    explicit Modulus(const uint64_t* divisor) : d(divisor), v(limb::reciprocal(divisor[COUNT - 1])) {}

    // r = r * 2^bits.
    void Shift(uint64_t* r, int64_t bits) const {
        for (; bits > 0 && !limb::isZero(r); bits -= 64) {
            const int n = bits < 64 ? static_cast<int>(bits) : 64;
            uint64_t wide[COUNT + 1];
            wide[0] = n < 64 ? r[0] << n : 0;
            for (int i = 1; i < COUNT; ++i) wide[i] = n < 64 ? limb::joinUp(r[i], r[i - 1], n) : r[i - 1];
            wide[COUNT] = r[COUNT - 1] >> (64 - n);
            Reduce(wide, r);
        }
    }

private:
    // r = wide (COUNT + 1 limbs, below d * 2^64) modulo d; r may be the place of wide. The quotient digit,
    // estimated from the divisor's top limb alone, is at most two too large.
    void Reduce(const uint64_t* wide, uint64_t* r) const {
        const uint64_t highest = wide[COUNT];
        uint64_t digit = ~uint64_t{0}, rest;
        if (highest < d[COUNT - 1]) digit = limb::divideBy(highest, wide[COUNT - 1], d[COUNT - 1], v, rest);
        uint64_t carried = 0, borrow = 0;
        for (int i = 0; i < COUNT; ++i) {
            uint64_t high, carry = 0;
            const uint64_t low = limb::addCarry(limb::multiply(d[i], digit, high), carried, carry);
            carried = high + carry;
            r[i] = limb::subtractBorrow(wide[i], low, borrow);
        }
        uint64_t top = limb::subtractBorrow(highest, carried, borrow);
        while (top != 0) top += limb::add(d, r); // negative: the digit was too large
    }

    const uint64_t* const d;
    const uint64_t v;
};

// Arithmetic modulo an odd d of up to 352 bits, by Montgomery's products x y / 2^384: a multiple of d makes
// the lower half of x y zero. For x and y below 2^354 a product is below d + 2^324.
class OddModulus {
public:
    explicit OddModulus(const uint64_t* divisor) : d(divisor), v(NegativeInverse(divisor[0])) {}

    // r = r * x / 2^384; x may be r.
    void Multiply(const uint64_t* x, uint64_t* r) const {
        uint64_t wide[2 * COUNT], q[COUNT];
        limb::product<COUNT, COUNT, 0, 0>(x, r, wide);
        limb::Column sum;
        for (int k = 0; k < COUNT; ++k) {
            sum.Add(wide[k]);
            for (int i = 0; i < k; ++i) sum.AddStored(q[i], d[k - i]);
            q[k] = sum.low * v;
            sum.AddStored(q[k], d[0]);
            sum.Next(); // zero
        }
        for (int k = COUNT; k < 2 * COUNT; ++k) {
            sum.Add(wide[k]);
            for (int i = k - COUNT + 1; i < COUNT; ++i) sum.AddStored(q[i], d[k - i]);
            r[k - COUNT] = sum.Next();
        }
    }

private:
    // -1 / x modulo 2^64: x is right to three bits, and each step doubles them.
    static uint64_t NegativeInverse(uint64_t x) {
        uint64_t inverse = x;
        for (int bits = 3; bits < 64; bits *= 2) inverse *= 2 - x * inverse;
        return 0 - inverse;
    }

    const uint64_t* const d;
    const uint64_t v;
};

int trailingZeros(const uint64_t* x) {
    int n = 0;
    while ((x[n / 64] >> n % 64 & 1) == 0) ++n;
    return n;
}

// r = r * 2^n modulo the divisor, whose lowest 32 bits are zero, as r's; n >= 384.
//
// With divisor = d 2^z for an odd d the remainder is 2^z times that of (r / 2^32) * 2^f by d, f = n - z + 32.
// From p = 2^(384 + k) for the leading bits k of f, Montgomery's squares 2^(384 + 2k) and doublings bring f.
void shiftFar(const uint64_t* divisor, uint64_t* r, int64_t n) {
    constexpr int64_t MOST_AT_ONCE = 350;
    const int zeros = trailingZeros(divisor);
    if (zeros == 64 * COUNT - 1) { // a power of two
        std::memset(r, 0, COUNT * sizeof *r);
        return;
    }
    uint64_t d[COUNT], p[COUNT] = {0, 0, 0, 0, 0, limb::TOP_BIT};
    limb::copy(divisor, d);
    limb::shiftDown(d, zeros);
    limb::shiftDown(r, 32);
    const int64_t f = n - zeros + 32;
    int j = 0;
    while (f >> j > MOST_AT_ONCE) ++j;
    const Modulus modulus(divisor);
    modulus.Shift(p, 1 + (f >> j) + zeros);
    limb::shiftDown(p, zeros);
    const OddModulus odd(d);
    while (--j >= 0) {
        odd.Multiply(p, p);
        limb::shiftUp(p, static_cast<int>(f >> j & 1));
    }
    odd.Multiply(p, r);
    modulus.Shift(r, zeros);
}

constexpr int64_t FAR = 2048; // bits from which on shiftFar is the faster way

} // namespace

void qremain(const qfloat a, const qfloat b, qfloat c) {
    Extended divisor, rest;
    limb::load(a, divisor);
    limb::load(b, rest);
    if (a[1] == 0 || elem::isZero(divisor)) {
        qclear(c);
        merror = 2;
        return;
    }
    if (b[1] == 0 || elem::isZero(rest)) {
        qclear(c);
        return;
    }
    if (limb::compare(rest, divisor) < 0) {
        qmov(b, c);
        return;
    }
    const int64_t left = rest.exponent - divisor.exponent; // bits still to bring down
    if (limb::compare(rest.limb, divisor.limb) >= 0) limb::subtract(divisor.limb, rest.limb);
    if (left < FAR) {
        Modulus(divisor.limb).Shift(rest.limb, left);
    } else {
        shiftFar(divisor.limb, rest.limb, left);
    }
    const uint32_t sign = b[0] != 0 ? NEGATIVE_SIGN : 0;
    if (elem::isZero(rest)) {
        qclear(c);
        return;
    }
    const int zeros = limb::leadingZeros(rest.limb);
    limb::shiftUp(rest.limb, zeros);
    rest.exponent = divisor.exponent - zeros;
    elem::store(rest, sign, c); // exact: multiples of the divisor's last place
}
