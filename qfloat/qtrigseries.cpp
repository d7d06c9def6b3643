// SPDX-License-Identifier: MIT
//
// The series of sine, cosine and their hyperbolic relatives in fixed point.
//
// With z = x^2 < 0.62 the sums cos x = 1 - z (1/2! - z (1/4! - ...)) and sin x = x (1 - z (1/3! - z (1/5! -
// ...))) are evaluated from the inside out.  Each product is cut by at most 6 units of 2^-384, which z damps
// from step to step, so a sum is within 6 / (1 - 0.62) + 1 < 18 units; the parts 1 - ... lie between 0.7
// and 1.32, so the relative error stays below 2^-379 with the products by x.
#include "qtrigcore.h"

namespace trig {

using namespace limb;

namespace {

// The number n of terms after which the next, z^(n + 1) / (2n + 2)!, lies below 2^-388; z < 2^exponent.
// The last row of the table suffices for z < 0.62, where that term is below 2^-400.
int termCount(int64_t exponent) {
    constexpr int MOST = (INVERSE_FACTORIAL_COUNT - 3) / 2;
    int n = 1;
    while (n < MOST && -exponent * (n + 1) + leadingZeros(INVERSE_FACTORIAL[2 * n + 2]) <= 388) ++n;
    return n;
}

enum class Signs { Alternating, Equal };

// sum = z (1/first! -+ z (1/(first + 2)! -+ ...)), n terms; first is 2 or 3.
template <Signs Signs, typename Multiply> void sumSeries(int first, int n, Multiply timesZ, uint64_t* sum) {
    copy(INVERSE_FACTORIAL[first + 2 * (n - 1)], sum);
    for (int k = n - 2; k >= 0; --k) {
        timesZ(sum);
        const uint64_t* c = INVERSE_FACTORIAL[first + 2 * k];
        if (Signs == Signs::Equal) {
            add(c, sum);
        } else {
            uint64_t borrow = 0;
            for (int i = 0; i < COUNT; ++i) sum[i] = subtractBorrow(c[i], sum[i], borrow);
        }
    }
    timesZ(sum);
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

// y = 1 + f for a fixed f.
void onePlus(const uint64_t* f, Extended& y) {
    copy(f, y.limb);
    shiftDown(y.limb, 1);
    y.limb[COUNT - 1] |= TOP_BIT;
    y.exponent = 1;
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

void sinCos(const Extended& r, Extended* s, Extended* c) {
    uint64_t z[COUNT], sum[COUNT];
    const int n = squareFixed(r, z);
    if (n == 0) {
        if (s != nullptr) *s = r;
        if (c != nullptr) *c = ONE;
        return;
    }
    const auto timesZ = [&z](uint64_t* y) { multiply(y, z, y); };
    if (c != nullptr) {
        sumSeries<Signs::Alternating>(2, n, timesZ, sum);
        oneMinus(sum, *c);
    }
    if (s != nullptr) {
        sumSeries<Signs::Alternating>(3, n, timesZ, sum);
        Extended part;
        oneMinus(sum, part);
        multiply(r, part, *s);
    }
}

void sinCosShort(uint64_t n, Extended& s, Extended& c) {
    const uint64_t z = n * n;
    const int terms = termCount(-leadingZeros(z));
    const auto timesZ = [z](uint64_t* y) { multiplyLimb(y, z, y); };
    uint64_t sum[COUNT];
    sumSeries<Signs::Alternating>(2, terms, timesZ, sum);
    oneMinus(sum, c);
    sumSeries<Signs::Alternating>(3, terms, timesZ, sum);
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
    uint64_t z[COUNT], sum[COUNT];
    const int n = squareFixed(x, z);
    if (n == 0) {
        s = x;
        c = ONE;
        return;
    }
    const auto timesZ = [&z](uint64_t* y) { multiply(y, z, y); };
    sumSeries<Signs::Equal>(2, n, timesZ, sum);
    onePlus(sum, c);
    sumSeries<Signs::Equal>(3, n, timesZ, sum);
    Extended part;
    onePlus(sum, part);
    multiply(x, part, s);
}

} // namespace trig
