// SPDX-License-Identifier: MIT
//
// Argument reduction modulo pi/2 by a long table of 2/pi (Payne and Hanek, "Radian reduction for
// trigonometric functions"): x * 2/pi is formed from those bits of 2/pi alone that reach the result, so the
// whole exponent range reduces with a bounded product and the reduced angle keeps its full relative
// precision.
#include "qfloat.h"
#include "qtrigcore.h"

namespace trig {

using namespace limb;

namespace {

// An operand of 352 bits comes no closer to a multiple of pi/2 than about 2^-(352 + 16), so that this many
// bits of the fraction may cancel; limbs of the table and of the product for the worst case.
constexpr int64_t WORST_CANCELLATION = 376;
constexpr int WINDOW_LIMBS = 20;
constexpr int PRODUCT_LIMBS = WINDOW_LIMBS + COUNT + 1;
constexpr int GUARD_BITS = 16;

// p (n + 7 limbs, least significant first) = m * (n limbs of the table from `first` on), top limb zero.
void multiplyWindow(const uint64_t* m, int64_t first, int n, uint64_t* p) {
    std::memset(p, 0, static_cast<size_t>(n + COUNT + 1) * sizeof *p);
    for (int i = 0; i < n; ++i) {
        const uint64_t w = TWO_OVER_PI[first + n - 1 - i];
        uint64_t above = 0;
        for (int k = 0; k < COUNT; ++k) {
            uint64_t high;
            uint64_t carry = 0;
            const uint64_t low = addCarry(multiply(m[k], w, high), above, carry);
            high += carry;
            carry = 0;
            p[i + k] = addCarry(p[i + k], low, carry);
            above = high + carry;
        }
        p[i + COUNT] = above;
    }
}

// p <<= bits, over `length` limbs.
void shiftUpLong(uint64_t* p, int length, int bits) {
    const int whole = bits / 64, rest = bits % 64;
    for (int i = length - 1; i >= 0; --i) {
        const uint64_t high = i - whole >= 0 ? p[i - whole] : 0;
        const uint64_t low = i - whole - 1 >= 0 ? p[i - whole - 1] : 0;
        p[i] = joinUp(high, low, rest);
    }
}

void negateLong(uint64_t* p, int length) {
    uint64_t carry = 1;
    for (int i = 0; i < length; ++i) p[i] = addCarry(~p[i], 0, carry);
}

int leadingZerosLong(const uint64_t* p, int length) {
    for (int i = length - 1; i >= 0; --i) {
        if (p[i] != 0) return 64 * (length - 1 - i) + leadingZeros(p[i]);
    }
    return 64 * length;
}

// Splits x * 2/pi, whose top `integerBits` + 64 bits in p are integer, into the nearest integer modulo 4 and
// a fraction f, |f| <= 1/2. Returns the number of zero bits between f's point and its first bit.
int splitQuadrant(uint64_t* p, int length, int integerBits, Reduced& f) {
    shiftUpLong(p, length, integerBits + 62); // two integer bits stay, on top
    uint64_t& top = p[length - 1];
    top += uint64_t{1} << 61; // one half
    f.quadrant = static_cast<unsigned>(top >> 62);
    f.negative = (top >> 61 & 1) == 0;
    top = (top & (~uint64_t{0} >> 2)) - (uint64_t{1} << 61);
    if (f.negative) negateLong(p, length);
    const int zeros = leadingZerosLong(p, length);
    shiftUpLong(p, length, zeros);
    std::memcpy(f.magnitude.limb, p + length - COUNT, sizeof f.magnitude.limb);
    f.magnitude.exponent = 2 - zeros;
    return zeros - 2;
}

} // namespace

Reduced reduceAngle(const Extended& x) {
    Reduced r = {x, false, 0};
    if (x.exponent < 0 || (x.exponent == 0 && compare(x.limb, quarterPi.limb) <= 0)) return r;
    // x = M * 2^(exponent - 384) for an integer M: leading limbs of 2/pi that make multiples of 4 are
    // skipped.
    const int64_t skipped = x.exponent > 386 ? (x.exponent - 386) / 64 : 0;
    const int integerBits = static_cast<int>(x.exponent - 64 * skipped);
    // The cut table leaves an error below 2^(integerBits - 64 n) in the fraction.
    int64_t canceled = 8;
    for (;;) {
        const int n = static_cast<int>((integerBits + 64 * COUNT + GUARD_BITS + canceled + 63) / 64);
        uint64_t p[PRODUCT_LIMBS];
        multiplyWindow(x.limb, skipped, n, p);
        const int zeros = splitQuadrant(p, n + COUNT + 1, integerBits, r);
        if (zeros <= canceled || canceled == WORST_CANCELLATION) break;
        canceled = zeros < WORST_CANCELLATION ? zeros : WORST_CANCELLATION;
    }
    multiply(r.magnitude, HALF_PI, r.magnitude);
    return r;
}

namespace {

const qfloat FULL_TURN = {0, 0x8009, 0, 0xB4000000}; // 360

// x = x - 90 n for x < 512 with 32 zero bits below, and n the nearest whole number or one of two. Returns
// whether the difference is negative; `x` is its magnitude.
bool subtractQuadrants(Extended& x, unsigned& n) {
    constexpr int PLACES = 10; // before the point
    constexpr int POINT = 64 - PLACES;
    shiftDown(x.limb, static_cast<int>(PLACES - x.exponent));
    uint64_t& top = x.limb[COUNT - 1];
    n = static_cast<unsigned>(((top + (uint64_t{45} << POINT)) >> POINT) / 90);
    top -= uint64_t{90 * n} << POINT;
    const bool isNegative = (top & TOP_BIT) != 0;
    if (isNegative) negateLong(x.limb, COUNT);
    const int zeros = leadingZeros(x.limb);
    x.exponent = PLACES - zeros;
    shiftUp(x.limb, zeros);
    return isNegative;
}

} // namespace

void remainderOfTurn(const uint32_t* x, uint32_t* rest) {
    qfloat magnitude;
    qmov(x, magnitude);
    qabs(magnitude);
    qremain(FULL_TURN, magnitude, rest);
}

Reduced reduceDegrees(const uint32_t* x) {
    qfloat degrees;
    remainderOfTurn(x, degrees);
    Reduced r = {{}, false, 0};
    if (!loadMagnitude(degrees, r.magnitude)) return r;
    if (r.magnitude.exponent > 5) r.negative = subtractQuadrants(r.magnitude, r.quadrant); // 32 and more
    if (!isZero(r.magnitude.limb)) multiply(r.magnitude, RADIANS_PER_DEGREE, r.magnitude);
    return r;
}

} // namespace trig
