// SPDX-License-Identifier: MIT
//
// The remainder: long division of the magnitudes, 64 quotient bits a step, keeping the remainder only.
#include "qelem.h"
#include "qfloat.h"
#include "qregister.h"

#include <cstring>

using elem::Extended;
using limb::COUNT;

namespace {

// r = r * 2^bits mod d, 0 < bits <= 64, for r < d and d with its top bit set; v is the reciprocal of d's top
// limb.  The quotient digit, estimated from that limb alone, is at most two too large.
void reduceStep(uint64_t* r, int bits, const uint64_t* d, uint64_t v) {
    uint64_t wide[COUNT + 1]; // r * 2^bits
    wide[0] = bits < 64 ? r[0] << bits : 0;
    for (int i = 1; i < COUNT; ++i) wide[i] = bits < 64 ? limb::joinUp(r[i], r[i - 1], bits) : r[i - 1];
    wide[COUNT] = r[COUNT - 1] >> (64 - bits);

    uint64_t digit = ~uint64_t{0}, rest;
    if (wide[COUNT] < d[COUNT - 1])
        digit = limb::divideBy(wide[COUNT], wide[COUNT - 1], d[COUNT - 1], v, rest);
    uint64_t carried = 0, borrow = 0;
    for (int i = 0; i < COUNT; ++i) {
        uint64_t high, carry = 0;
        const uint64_t low = limb::addCarry(limb::multiply(d[i], digit, high), carried, carry);
        carried = high + carry;
        r[i] = limb::subtractBorrow(wide[i], low, borrow);
    }
    uint64_t top = limb::subtractBorrow(wide[COUNT], carried, borrow);
    while (top != 0) top += limb::add(d, r); // negative: the digit was too large
}

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
    const uint64_t v = limb::reciprocal(divisor.limb[COUNT - 1]);
    int64_t left = rest.exponent - divisor.exponent; // bits still to bring down
    if (limb::compare(rest.limb, divisor.limb) >= 0) limb::subtract(divisor.limb, rest.limb);
    while (left > 0 && !elem::isZero(rest)) {
        const int bits = left < 64 ? static_cast<int>(left) : 64;
        reduceStep(rest.limb, bits, divisor.limb, v);
        left -= bits;
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
