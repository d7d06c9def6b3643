// SPDX-License-Identifier: MIT
//
// The series of sine, cosine and their hyperbolic relatives in fixed point.
//
// With z = x^2 < 0.62 the sums cos x = 1 - z (1/2! - z (1/4! - ...)) and sin x = x (1 - z (1/3! - z (1/5! -
// ...))) are evaluated from the inside out.
//
// The inner sums are below 1.06 / n! of their first term, so that no sum or carry reaches a limb that is zero
// in 1/n!: those limbs are left out. A product that comes to the result multiplied by z^k, z < 2^-e, is
// formed without the limbs below 2^-384 * 2^(e k - 8), which takes at most 9 * 2^-8 units of 2^-384 from the
// result, and nothing for z >= 1/2; all of them take less than 1.3 units.
// Each product is cut by at most 6 units, which z damps from step to step, and z itself by 7 units, so a sum
// is within 7 / (1 - z) + 3.4 units for the cosine, 7 / (1 - z) + 1.2 for the sine. The parts 1 - ... are
// above 0.7 for the cosine, 0.9 for the sine, whose product with x takes 7 units of 2^-384 more, relative to
// x. The relative error so stays below 2^-379.
#include "qelem.h"
#include "qseries.h"
#include "qtrigcore.h"

namespace trig {

using namespace limb;

namespace {

// The number n of terms after which the next, z^(n + 1) / (2n + 2)!, lies below 2^-388; z < 2^exponent.
// The last row of the table suffices for z < 0.62, where that term is below 2^-400.
int termCount(int64_t exponent) {
    constexpr int MOST = (INVERSE_FACTORIAL_COUNT - 3) / 2;
    int n = 1;
    while (n < MOST && -exponent * (n + 1) + INVERSE_FACTORIAL_ZEROS[2 * n + 2] <= 388) ++n;
    return n;
}

// The factor of a step that takes the limbs `low` to below `high` of a sum.
inline const uint64_t* factorOf(const uint64_t* z, int low, int high) {
    return z + low + COUNT - high;
}
inline uint64_t factorOf(uint64_t z, int, int) {
    return z;
}

inline void multiplyBy(const uint64_t* z, uint64_t* y) {
    multiply(y, z, y);
}
inline void multiplyBy(uint64_t z, uint64_t* y) {
    multiplyLimb(y, z, y);
}

// sum = z (1/first! -+ z (1/(first + 2)! -+ ...)), n terms; first is 2 or 3, z < 2^exponent of six limbs or
// one.
template <Signs SIGNS, typename Factor>
void sumSeries(int first, int n, Factor z, int64_t exponent, uint64_t* sum) {
    constexpr int SPARE = 8;
    const auto damping = static_cast<int>(-exponent);
    const auto firstLimb = [=](int k) { // of those that term k and what follows it need
        const int damped = damping * (k + 1) - SPARE;
        return damped > 0 ? damped / 64 : 0;
    };
    const auto endLimb = [=](int k) { return COUNT - INVERSE_FACTORIAL_ZEROS[first + 2 * k] / 64; };
    copy(INVERSE_FACTORIAL[first + 2 * (n - 1)], sum);
    for (int k = n - 2; k >= 0;) {
        const int low = firstLimb(k), high = endLimb(k);
        int next = k - 1;
        while (next >= 0 && firstLimb(next) == low && endLimb(next) == high) --next;
        hornerSteps<SIGNS>(factorOf(z, low, high), INVERSE_FACTORIAL[first + 2 * k] + low, 2 * COUNT,
                           k - next, sum + low, high - low);
        k = next;
    }
    multiplyBy(z, sum);
}

// y = 1 - f for a fixed f < 1/2.
void oneMinus(const uint64_t* f, Extended& y) {
    if (isZero(f)) {
        y = ONE;
        return;
    }
    uint64_t carry = 1;
    for (int i = 0; i < COUNT; ++i) y.limb[i] = addCarry(~f[i], 0, carry);
    y.exponent = 0;
}

// z = x^2 as a fixed value and the number of terms that it needs; 0 when z vanishes.
int squareFixed(const Extended& x, uint64_t* z) {
    if (x.exponent < -32 * COUNT) return 0;
    square(x.limb, z);
    const auto down = static_cast<int>(-2 * x.exponent);
    shiftDown(z, down);
    return termCount(2 * x.exponent);
}

} // namespace

void sine(const Extended& r, Extended& s) {
    uint64_t z[COUNT], sum[COUNT];
    const int n = squareFixed(r, z);
    s = r;
    if (n == 0) return;
    sumSeries<Signs::Alternating, const uint64_t*>(3, n, z, 2 * r.exponent, sum);
    Extended part;
    oneMinus(sum, part);
    multiply(r, part, s);
}

void cosine(const Extended& r, Extended& c) {
    uint64_t z[COUNT], sum[COUNT];
    const int n = squareFixed(r, z);
    c = ONE;
    if (n == 0) return;
    sumSeries<Signs::Alternating, const uint64_t*>(2, n, z, 2 * r.exponent, sum);
    oneMinus(sum, c);
}

void sinCosShort(uint64_t n, Extended& s, Extended& c) {
    const uint64_t z = n * n;
    const int64_t exponent = -leadingZeros(z);
    const int terms = termCount(exponent);
    uint64_t sum[COUNT];
    sumSeries<Signs::Alternating>(2, terms, z, exponent, sum);
    oneMinus(sum, c);
    sumSeries<Signs::Alternating>(3, terms, z, exponent, sum);
    oneMinus(sum, s);
    const int zeros = leadingZeros(n);
    multiplyLimb(s.limb, n << zeros, s.limb);
    s.exponent += 32 - zeros;
    if (!(s.limb[COUNT - 1] & TOP_BIT)) {
        shiftUp(s.limb, 1);
        --s.exponent;
    }
}

void sinhCoshSeries(const Extended& x, Extended& s, Extended& c) {
    uint64_t z[COUNT];
    const int n = squareFixed(x, z);
    s = x;
    c = ONE;
    if (n == 0) return;
    sumSeries<Signs::Equal, const uint64_t*>(2, n, z, 2 * x.exponent, c.limb);
    elem::onePlus(c);
    Extended part;
    sumSeries<Signs::Equal, const uint64_t*>(3, n, z, 2 * x.exponent, part.limb);
    elem::onePlus(part);
    multiply(x, part, s);
}

} // namespace trig
