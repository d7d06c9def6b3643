// SPDX-License-Identifier: MIT
#include "qlimb.h"

#include "qfloat.h"
#include "qproduct.h"
#include "qregister.h"

namespace limb {
#if !TALLYQUILL_INT128
inline namespace portable {
#endif

void multiply(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    product<COUNT, COUNT, COUNT - 1, COUNT>(x, y, z);
}

void square(const uint64_t* x, uint64_t* z) {
    Column sum;
    const auto finish = [&sum](Column cross) {
        cross.Twice();
        sum.Add(cross);
        return sum.Next();
    };
    Column c5, c6, c7, c8, c9;
    c5.AddStored(x[0], x[5]), c5.AddStored(x[1], x[4]), c5.AddStored(x[2], x[3]);
    finish(c5);
    c6.AddStored(x[1], x[5]), c6.AddStored(x[2], x[4]);
    sum.AddStored(x[3], x[3]);
    z[0] = finish(c6);
    c7.AddStored(x[2], x[5]), c7.AddStored(x[3], x[4]);
    z[1] = finish(c7);
    c8.AddStored(x[3], x[5]);
    sum.AddStored(x[4], x[4]);
    z[2] = finish(c8);
    c9.AddStored(x[4], x[5]);
    z[3] = finish(c9);
    sum.AddStored(x[5], x[5]);
    z[4] = sum.Next();
    z[5] = sum.Next();
}

namespace {

// One quotient digit of (r2, r1, r0, ...) / (d1, d0, ...): the quotient of the top three limbs by the top
// two, 2^64 - 1 where it would not fit, never below the true digit and at most one above it.
// v is the reciprocal of the two-limb divisor (Moeller and Granlund, algorithm 5).
uint64_t quotientDigit(uint64_t r2, uint64_t r1, uint64_t r0, uint64_t d1, uint64_t d0, uint64_t v) {
    if (r2 > d1 || (r2 == d1 && r1 >= d0)) return ~uint64_t{0};
    uint64_t q1;
    uint64_t q0 = multiply(v, r2, q1);
    uint64_t carry = 0;
    q0 = addCarry(q0, r1, carry);
    q1 = addCarry(q1, r2, carry);
    uint64_t high = r1 - q1 * d1;
    uint64_t t1;
    const uint64_t t0 = multiply(d0, q1, t1);
    uint64_t borrow = 0;
    uint64_t low = subtractBorrow(r0, t0, borrow);
    high = high - t1 - borrow;
    borrow = 0;
    low = subtractBorrow(low, d0, borrow);
    high = high - d1 - borrow;
    ++q1;
    if (high >= q0) {
        --q1;
        carry = 0;
        low = addCarry(low, d0, carry);
        high = high + d1 + carry;
    }
    if (high > d1 || (high == d1 && low >= d0)) ++q1;
    return q1;
}

// The reciprocal of a two-limb divisor for quotientDigit (algorithm 6 of the same paper).
uint64_t reciprocal(uint64_t d1, uint64_t d0) {
    uint64_t v = limb::reciprocal(d1);
    uint64_t p = d1 * v + d0;
    if (p < d0) {
        --v;
        if (p >= d1) {
            --v;
            p -= d1;
        }
        p -= d1;
    }
    uint64_t t1;
    const uint64_t t0 = multiply(v, d0, t1);
    p += t1;
    if (p < t1) {
        --v;
        if (p > d1 || (p == d1 && t0 >= d0)) --v;
    }
    return v;
}

// r (n + 1 limbs from r[0]) -= q * d (n limbs); gives d back once where q was one too large. Returns q.
template <int N> inline uint64_t reduce(uint64_t* r, const uint64_t* d, uint64_t q) {
    uint64_t high = 0;
    for (int i = 0; i < N; ++i) {
        uint64_t above;
        uint64_t carry = 0;
        const uint64_t low = addCarry(multiply(d[i], q, above), high, carry);
        high = above + carry;
        uint64_t borrow = 0;
        r[i] = subtractBorrow(r[i], low, borrow);
        high += borrow;
    }
    uint64_t borrow = 0;
    r[N] = subtractBorrow(r[N], high, borrow);
    while (borrow != 0) {
        --q;
        uint64_t carry = 0;
        for (int i = 0; i < N; ++i) r[i] = addCarry(r[i], d[i], carry);
        r[N] += carry;
        if (carry != 0 && r[N] == 0) borrow = 0;
    }
    return q;
}

} // namespace

void divide(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    if ((y[0] | y[1] | y[2] | y[3] | y[4]) == 0) {
        divideLimb(x, y[5], z);
        return;
    }
    const uint64_t d[COUNT] = {y[0], y[1], y[2], y[3], y[4], y[5]};
    uint64_t r[COUNT + 1] = {0, x[0], x[1], x[2], x[3], x[4], x[5]};
    const uint64_t v = reciprocal(d[5], d[4]);
    std::memset(z, 0xFF, COUNT * sizeof *z);
    z[5] = reduce<6>(r, d, quotientDigit(r[6], r[5], r[4], d[5], d[4], v));
    z[4] = reduce<5>(r, d + 1, quotientDigit(r[5], r[4], r[3], d[5], d[4], v));
    // A cut divisor of almost all ones may leave a remainder above it: the digits that follow are all ones.
    if (r[5] != 0) return;
    z[3] = reduce<4>(r, d + 2, quotientDigit(r[4], r[3], r[2], d[5], d[4], v));
    if (r[4] != 0) return;
    z[2] = reduce<3>(r, d + 3, quotientDigit(r[3], r[2], r[1], d[5], d[4], v));
    if (r[3] != 0) return;
    z[1] = reduce<2>(r, d + 4, quotientDigit(r[2], r[1], r[0], d[5], d[4], v));
    if (r[2] != 0 || r[1] >= d[5]) return;
    uint64_t rest;
    z[0] = divideWide(r[1], r[0], d[5], rest);
}

void divideLimb(const uint64_t* x, uint64_t y, uint64_t* z) {
    const uint64_t v = limb::reciprocal(y);
    uint64_t rest = x[5];
    for (int i = COUNT - 1; i > 0; --i) z[i] = divideBy(rest, x[i - 1], y, v, rest);
    z[0] = divideBy(rest, 0, y, v, rest);
}

void multiply(const Extended& x, const Extended& y, Extended& z) {
    const int64_t exponent = x.exponent + y.exponent;
    multiply(x.limb, y.limb, z.limb);
    z.exponent = exponent;
    if (!(z.limb[COUNT - 1] & TOP_BIT)) {
        shiftUp(z.limb, 1);
        --z.exponent;
    }
}

void divide(const Extended& x, const Extended& y, Extended& z) {
    uint64_t n[COUNT];
    copy(x.limb, n);
    z.exponent = x.exponent - y.exponent;
    if (compare(n, y.limb) >= 0) {
        shiftDown(n, 1);
        ++z.exponent;
    }
    divide(n, y.limb, z.limb);
    if (!(z.limb[COUNT - 1] & TOP_BIT)) { // the cut bit of n made the quotient fall just below one half
        shiftUp(z.limb, 1);
        --z.exponent;
    }
}

namespace {

// x >>= n for any n >= 0.
void alignDown(uint64_t* x, int64_t n) {
    shiftDown(x, n < 64 * COUNT ? static_cast<int>(n) : 64 * COUNT);
}

void normalize(Extended& x) {
    if (x.limb[COUNT - 1] & TOP_BIT) return; // most often
    const int zeros = leadingZeros(x.limb);
    shiftUp(x.limb, zeros);
    x.exponent -= zeros;
}

} // namespace

void add(const Extended& x, const Extended& y, Extended& z) {
    Extended big = x.exponent >= y.exponent ? x : y;
    Extended small = x.exponent >= y.exponent ? y : x;
    alignDown(small.limb, big.exponent - small.exponent);
    if (add(small.limb, big.limb) != 0) {
        shiftDown(big.limb, 1);
        big.limb[COUNT - 1] |= TOP_BIT;
        ++big.exponent;
    }
    z = big;
}

void subtract(const Extended& x, const Extended& y, Extended& z) {
    Extended difference = x;
    Extended small = y;
    alignDown(small.limb, x.exponent - y.exponent);
    subtract(small.limb, difference.limb);
    normalize(difference);
    z = difference;
}

int compare(const Extended& x, const Extended& y) {
    if (x.exponent != y.exponent) return x.exponent < y.exponent ? -1 : 1;
    return compare(x.limb, y.limb);
}

void load(const uint32_t* q, Extended& x) {
    load(q, x.limb);
    x.exponent = int64_t{q[1]} - EXPONENT_BIAS;
    normalize(x);
}

void store(const Extended& x, uint32_t sign, int underflowCode, uint32_t* q) {
    uint64_t mantissa[COUNT];
    copy(x.limb, mantissa);
    const int64_t exponent = x.exponent + roundHalfUp(mantissa) + EXPONENT_BIAS;
    qclear(q);
    if (exponent > 0xFFFF) {
        q[0] = sign;
        qinfin(q);
        merror = 3;
    } else if (exponent < 1) {
        if (underflowCode != 0) merror = underflowCode;
    } else {
        q[0] = sign;
        q[1] = static_cast<uint32_t>(exponent);
        store(mantissa, q);
    }
}

// Seven multiplications at most have factors that are not exact (10^160 has 372 bits without its twos): each
// adds at most 14 units and the half unit of a table entry, of 2^-383 or less of the value; the one by a limb
// adds two: less than 104 of these in all.
void powerOfTen(int n, Extended& p) {
    constexpr int IN_LIMB = 4; // bits of n whose power of ten is a single limb
    const uint64_t low = LIMB_TENS[n & ((1 << IN_LIMB) - 1)];
    const int zeros = leadingZeros(low);
    if (n >> IN_LIMB == 0) {
        p = Extended{{0, 0, 0, 0, 0, low << zeros}, 64 - zeros};
        return;
    }
    int k = IN_LIMB;
    while (!(n >> k & 1)) ++k;
    p = TENS[k];
    for (++k; n >> k != 0; ++k) {
        if (n >> k & 1) multiply(p, TENS[k], p);
    }
    if (low == 1) return;
    multiplyLimb(p.limb, low << zeros, p.limb);
    const int one = static_cast<int>(~p.limb[COUNT - 1] >> 63);
    shiftUp(p.limb, one);
    p.exponent += 64 - zeros - one;
}

// One or two steps, each with the power's error and at most 40 units of 2^-383 more: less than 144 each.
void scaleTen(Extended& x, int n) {
    for (int left = n < 0 ? -n : n; left > 0;) {
        const int step = left < 16384 ? left : 16383;
        Extended p;
        powerOfTen(step, p);
        if (n < 0) {
            divide(x, p, x);
        } else {
            multiply(x, p, x);
        }
        left -= step;
    }
}

#if !TALLYQUILL_INT128
} // namespace portable
#endif
} // namespace limb
