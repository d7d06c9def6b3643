// SPDX-License-Identifier: MIT
//
// The square root.
//
// For m in [1/4, 1), R = 1 / (2 sqrt m) lies in (1/2, 1].  From a machine number a little below R,
//   R <- R + 2 R (1/4 - m R^2)
// doubles the number of right bits and never passes the root, so that every difference is non-negative.
// After two steps (about 197 bits) the root itself, s = 2 m R, is corrected once by R (m - s^2).
#include "qelem.h"
#include "qfloat.h"
#include "qregister.h"

#include <cmath>
#include <cstring>

using limb::COUNT;

namespace elem {

namespace {

// R as a fraction of one limb, below 1 / (2 sqrt m) by about 2^-50.
uint64_t reciprocalRootEstimate(uint64_t m) {
    const double root = 0.5 / std::sqrt(static_cast<double>(m >> 11) * (1.0 / 9007199254740992.0));
    return static_cast<uint64_t>(root * (1 - 1e-15) * 9007199254740992.0) << 11;
}

} // namespace

void sqrt(const Extended& x, Extended& y) {
    uint64_t m[COUNT];
    limb::copy(x.limb, m);
    int64_t exponent = x.exponent;
    if (exponent % 2 != 0) {
        limb::shiftDown(m, 1);
        ++exponent;
    }
    uint64_t root[COUNT] = {0, 0, 0, 0, 0, reciprocalRootEstimate(m[COUNT - 1])};
    for (int step = 0; step < 2; ++step) {
        uint64_t square[COUNT], rest[COUNT] = {0, 0, 0, 0, 0, limb::TOP_BIT >> 1};
        limb::square(root, square);
        limb::multiply(m, square, square);
        limb::subtract(square, rest);
        limb::multiply(root, rest, rest);
        limb::shiftUp(rest, 1);
        limb::add(rest, root);
    }
    uint64_t s[COUNT], square[COUNT];
    limb::multiply(m, root, s);
    limb::shiftUp(s, 1);
    limb::square(s, square);
    limb::subtract(square, m);
    limb::multiply(root, m, m);
    if (limb::add(m, s) != 0) std::memset(s, 0xFF, sizeof s); // the root of a number next to 1
    const int zeros = limb::leadingZeros(s);                  // 1 for a root just cut below 1/2
    limb::shiftUp(s, zeros);
    limb::copy(s, y.limb);
    y.exponent = exponent / 2 - zeros;
}

} // namespace elem

void qsqrt(const qfloat x, qfloat y) {
    elem::Extended value;
    limb::load(x, value);
    const bool negative = x[0] != 0;
    if (x[1] == 0 || elem::isZero(value)) {
        qclear(y);
        if (negative) y[0] = NEGATIVE_SIGN; // the root of a negative zero is a negative zero
        return;
    }
    if (negative) {
        qclear(y);
        merror = 1;
        return;
    }
    elem::sqrt(value, value);
    elem::store(value, 0, y);
}
