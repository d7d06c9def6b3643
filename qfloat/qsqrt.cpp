// SPDX-License-Identifier: MIT
//
// The square root.
//
// For m in [1/4, 1), R = 1 / (2 sqrt m) lies in (1/2, 1]. From a machine number a little below R,
//   R <- R + 2 R (1/4 - m R^2)
// doubles the number of right bits without a division: with R = (1 - e) / (2 sqrt m), the next e is 1.5 e^2
// less e^3 / 2. It never passes the root, so that every difference is non-negative: what is cut is smaller
// than 1.5 e^2 each time. Each step multiplies only the limbs that it needs:
//
//   R of   e
//   1 limb     2^-51 .. 2^-49        the machine's root; see reciprocalRootEstimate
//   2 limbs    2^-102 .. 2^-97       cut below 2^-125
//   4 limbs    2^-204 .. 2^-193      cut below 2^-251
//
// Then s = 2 m R of 4 limbs is the root less a part e, and s + R (m - s^2) the root less a part e^2 / 2 <
// 2^-386.
#include "qelem.h"
#include "qexact.h"
#include "qfloat.h"
#include "qproduct.h"
#include "qregister.h"

#include <cmath>
#include <cstring>

using limb::COUNT;

namespace elem {

namespace {

// How far `root` may stay below the root, in units of its last limb.
constexpr uint64_t ROOT_ERROR = 6;

// R as a fraction of one limb. m cut to 51 bits or more makes R too large by up to 2^-52 of itself, the
// machine's three roundings change it by up to 2^-53 each, and the last cut takes up to 2^-52 off: the factor
// 1 - 9 * 2^-53 puts it between 4 and 14 times 2^-53 below the true R.
uint64_t reciprocalRootEstimate(uint64_t m) {
    const double root = 0.5 / std::sqrt(static_cast<double>(m >> 11) * (1.0 / 9007199254740992.0));
    return static_cast<uint64_t>(root * (1 - 1e-15) * 9007199254740992.0) << 11;
}

// x += y, x of X limbs, y of Y <= X limbs in the place of x's lowest.
template <int X, int Y> inline void addLow(uint64_t* x, const uint64_t* y) {
    uint64_t carry = 0;
    for (int i = 0; i < X; ++i) x[i] = limb::addCarry(x[i], i < Y ? y[i] : 0, carry);
}

template <int N> inline void twice(uint64_t* x) {
    for (int i = N - 1; i > 0; --i) x[i] = limb::joinUp(x[i], x[i - 1], 1);
    x[0] <<= 1;
}

// rest = 1/4 - m R^2 in N limbs, for N limbs of m and the square of R.
template <int N> inline void restOfQuarter(const uint64_t* m, const uint64_t* square, uint64_t* rest) {
    uint64_t most[N];
    limb::product<N, N, N - 1, N>(m, square, most); // cut by less than N + 1 units
    uint64_t borrow = 0;
    for (int i = 0; i < N; ++i) {
        rest[i] = limb::subtractBorrow(i == N - 1 ? limb::TOP_BIT >> 1 : 0, most[i], borrow);
    }
}

// R in four limbs.
void reciprocalRoot(const uint64_t* m, uint64_t* root) {
    const uint64_t r0 = reciprocalRootEstimate(m[COUNT - 1]);
    uint64_t square[4], rest[4], step[4];
    limb::product<1, 1, 0, 0>(&r0, &r0, square);
    restOfQuarter<2>(m + 4, square, rest);
    limb::product<1, 2, 0, 1>(&r0, rest, step);
    twice<2>(step);
    uint64_t r1[2] = {0, r0};
    addLow<2, 2>(r1, step);

    limb::product<2, 2, 0, 0>(r1, r1, square);
    restOfQuarter<4>(m + 2, square, rest); // below 2^-97: the top limb is zero
    limb::product<2, 3, 1, 2>(r1, rest, step);
    twice<3>(step);
    root[0] = root[1] = 0;
    root[2] = r1[0];
    root[3] = r1[1];
    addLow<4, 3>(root, step);
}

// s = the square root of m in [1/4, 1), less at most ROOT_ERROR units: the rest m - s^2 (2^-205 .. 2^-192) is
// cut by up to 2^-384, R to three limbs, their product by three units, each an error to the same side.
void root(const uint64_t* m, uint64_t* s) {
    uint64_t r[4], first[4], square[8], rest[3], step[3];
    reciprocalRoot(m, r);
    limb::product<4, 4, 3, 4>(m + 2, r, first);
    twice<4>(first);
    limb::product<4, 4, 0, 0>(first, first, square);
    uint64_t borrow = 1; // for the square's limbs below m's
    for (int i = 0; i < 3; ++i) rest[i] = limb::subtractBorrow(m[i], square[i + 2], borrow);
    limb::product<3, 3, 2, 3>(r + 1, rest, step);
    s[0] = s[1] = 0;
    std::memcpy(s + 2, first, sizeof first);
    addLow<COUNT, 3>(s, step);
}

// The mantissa of x over an even power of two; returns that power.
int64_t evenMantissa(const Extended& x, uint64_t* m) {
    const int odd = static_cast<int>(x.exponent & 1);
    limb::copy(x.limb, m);
    limb::shiftDown(m, odd);
    return x.exponent + odd;
}

// y = s * 2^(exponent / 2); s is just below 1/2 where the true root is 1/2.
void normalized(uint64_t* s, int64_t exponent, Extended& y) {
    const int zeros = static_cast<int>(~s[COUNT - 1] >> 63);
    limb::shiftUp(s, zeros);
    limb::copy(s, y.limb);
    y.exponent = exponent / 2 - zeros;
}

} // namespace

void sqrt(const Extended& x, Extended& y) {
    uint64_t m[COUNT], s[COUNT];
    const int64_t exponent = evenMantissa(x, m);
    root(m, s);
    normalized(s, exponent, y);
}

} // namespace elem

// The nearest number: where the error of the root leaves it open on which side of c = a number and a half
// unit it lies, c^2 is compared with m. (No root is such a c itself: c has 353 bits, and the square of an
// odd number of 353 bits has more than m's.)
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
    uint64_t m[COUNT], s[COUNT];
    const int64_t exponent = elem::evenMantissa(value, m);
    elem::root(m, s);
    limb::settleByComparison(s, elem::ROOT_ERROR,
                             [&m](const uint64_t* c) { return limb::compareProduct(c, c, m) <= 0; });
    elem::normalized(s, exponent, value);
    elem::store(value, 0, y);
}
