// SPDX-License-Identifier: MIT
//
// The exact decisions.
#include "qexact.h"

#include "qproduct.h"

namespace limb {

uint64_t comparisons;

namespace {

// A whole number that grows by multiplication with single limbs.
class Whole {
public:
    explicit Whole(const uint64_t* x) { copy(x, limbs); }

    void Multiply(uint64_t y) {
        uint64_t carried = 0;
        for (int i = 0; i < size; ++i) {
            uint64_t high, carry = 0;
            limbs[i] = addCarry(multiply(limbs[i], y, high), carried, carry);
            carried = high + carry;
        }
        if (carried != 0) limbs[size++] = carried;
    }

    // The number of its bits.
    int64_t Bits() const { return 64 * int64_t{size} - leadingZeros(limbs[size - 1]); }

    // -1, 0, 1 as this number, shifted until its top bit is that of `top`, is below, equal to or above it.
    int CompareLeading(const uint64_t* top) const {
        const int zeros = leadingZeros(limbs[size - 1]);
        for (int i = 0; i < size; ++i) {
            const uint64_t below = i + 1 < size ? limbs[size - 2 - i] : 0;
            const uint64_t own = joinUp(limbs[size - 1 - i], below, zeros);
            const uint64_t other = i < COUNT ? top[COUNT - 1 - i] : 0;
            if (own != other) return own < other ? -1 : 1;
        }
        return 0;
    }

private:
    // x of six limbs times 5^32767, which has 76084 bits.
    static constexpr int CAPACITY = COUNT + 76084 / 64 + 1;
    uint64_t limbs[CAPACITY];
    int size = COUNT;
};

} // namespace

int compareProduct(const uint64_t* x, const uint64_t* y, const uint64_t* z) {
    uint64_t xy[2 * COUNT];
    product<COUNT, COUNT, 0, 0>(x, y, xy);
    const int order = compare(xy + COUNT, z);
    return order != 0 || isZero(xy) ? order : 1;
}

// multiply leaves out at most six units, so that the floor of the product is z .. z + 6. The bit that
// decides is that of 2^31, or of 2^30 where the product is still to be shifted up: neither changes unless a
// multiple of 2^30 lies above z by six units or less.
void multiplyExactly(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    multiply(x, y, z);
    constexpr uint64_t UNIT = uint64_t{1} << 30;
    if ((z[0] & (UNIT - 1)) < UNIT - 6) return;
    ++comparisons;
    product<COUNT, COUNT, 0, COUNT>(x, y, z);
}

// c <= x / y exactly where c * y <= x. With a divisor of one limb divideLimb gives the quotient cut below
// the last limb, which rounds as the quotient itself.
void divideExactly(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    if ((y[0] | y[1] | y[2] | y[3] | y[4]) == 0) {
        divideLimb(x, y[5], z);
        return;
    }
    constexpr uint32_t ERROR = 16 + 1; // divide's from the floor
    uint64_t q[COUNT];
    divide(x, y, q);
    settleByComparison(q, ERROR, [x, y](const uint64_t* c) { return compareProduct(c, y, x) <= 0; });
    copy(q, z);
}

void scaleTenExactly(Extended& x, int n) {
    constexpr uint32_t ERROR = 1 << 10; // scaleTen's 2^-374 of the value
    const Extended before = x;
    scaleTen(x, n);
    settleByComparison(x.limb, ERROR, [&](const uint64_t*) { return compareScaledTen(before, n, x) >= 0; });
}

// With x = X * 2^(e - 384) and x * 10^n = (X * 5^n) * 2^(e - 384 + n), the whole number X * 5^n is compared;
// for n < 0 the other way round, y * 10^-n against x.
int compareScaledTen(const Extended& x, int n, const Extended& y) {
    if (n < 0) return -compareScaledTen(y, -n, x);
    constexpr int STEP = 27; // 5^27 < 2^63
    constexpr uint64_t FIVE_TO_STEP = 7450580596923828125;
    Whole scaled(x.limb);
    int left = n;
    for (; left >= STEP; left -= STEP) scaled.Multiply(FIVE_TO_STEP);
    uint64_t rest = 1;
    for (; left > 0; --left) rest *= 5;
    scaled.Multiply(rest);
    const int64_t exponent = scaled.Bits() + x.exponent - 64 * COUNT + n;
    if (exponent != y.exponent) return exponent < y.exponent ? -1 : 1;
    return scaled.CompareLeading(y.limb);
}

} // namespace limb
