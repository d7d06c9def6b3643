// SPDX-License-Identifier: MIT
//
// The remainder: long division of the magnitudes, 64 quotient bits a step, keeping the remainder only.  A
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

    // r = r * x; x may be r.
    void Multiply(const uint64_t* x, uint64_t* r) const {
        uint64_t wide[2 * COUNT]; // below d^2, so that its upper half is below d
        limb::product<COUNT, COUNT, 0, 0>(x, r, wide);
        for (int i = COUNT - 1; i >= 0; --i) Reduce(wide + i, wide + i);
        limb::copy(wide, r);
    }

    // r = r * 2^n as (r * 2^(n mod 2^j)) * (2^(n / 2^j))^(2^j), where 2^(n / 2^j) is below the divisor.
    void ShiftFar(uint64_t* r, int64_t n) const {
        int j = 0;
        while (n >> j > 64 * COUNT - 2) ++j;
        const auto bit = static_cast<int>(n >> j);
        uint64_t power[COUNT] = {};
        power[bit / 64] = uint64_t{1} << bit % 64;
        for (int k = 0; k < j; ++k) Multiply(power, power);
        Shift(r, n - (int64_t{bit} << j));
        Multiply(power, r);
    }

private:
    // r = wide (COUNT + 1 limbs, below d * 2^64) modulo d; r may be the place of wide.  The quotient digit,
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

constexpr int64_t FAR = 2048; // bits from which on ShiftFar is the faster way

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
    const Modulus modulus(divisor.limb);
    const int64_t left = rest.exponent - divisor.exponent; // bits still to bring down
    if (limb::compare(rest.limb, divisor.limb) >= 0) limb::subtract(divisor.limb, rest.limb);
    if (left < FAR) {
        modulus.Shift(rest.limb, left);
    } else {
        modulus.ShiftFar(rest.limb, left);
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
