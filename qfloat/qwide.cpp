// SPDX-License-Identifier: MIT
//
// Floating point of any width: sums, products, quotients, roots, and the decision.
#include "qwide.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace wide {

using limb::TOP_BIT;
using Limbs = std::vector<uint64_t>;

uint64_t decisions;

namespace {

// x >>= bits and x <<= bits for any bits >= 0; what leaves the limbs is lost.
void shiftDown(Limbs& x, uint64_t bits) {
    const size_t whole = std::min<uint64_t>(bits / 64, x.size());
    const int rest = static_cast<int>(bits % 64);
    for (size_t i = 0; i < x.size(); ++i) {
        const uint64_t low = i + whole < x.size() ? x[i + whole] : 0;
        const uint64_t high = i + whole + 1 < x.size() ? x[i + whole + 1] : 0;
        x[i] = limb::joinDown(high, low, rest);
    }
}

void shiftUp(Limbs& x, uint64_t bits) {
    const size_t whole = std::min<uint64_t>(bits / 64, x.size());
    const int rest = static_cast<int>(bits % 64);
    for (size_t i = x.size(); i-- > 0;) {
        const uint64_t high = i >= whole ? x[i - whole] : 0;
        const uint64_t low = i >= whole + 1 ? x[i - whole - 1] : 0;
        x[i] = limb::joinUp(high, low, rest);
    }
}

void normalize(Wide& x) {
    size_t zeros = 0;
    while (zeros < x.Width() && x.limb[x.Width() - 1 - zeros] == 0) ++zeros;
    if (zeros == x.Width()) return;
    const uint64_t bits =
        64 * zeros + static_cast<uint64_t>(limb::leadingZeros(x.limb[x.Width() - 1 - zeros]));
    if (bits == 0) return;
    shiftUp(x.limb, bits);
    x.exponent -= static_cast<int64_t>(bits);
}

// x + y, y's sign replaced.
Wide sum(const Wide& x, const Wide& y, bool yNegative) {
    const bool swapped = compareMagnitudes(x, y) < 0;
    Wide big = swapped ? y : x;
    big.negative = swapped ? yNegative : x.negative;
    Limbs small = swapped ? x.limb : y.limb;
    if ((swapped ? x : y).IsZero()) return big;
    shiftDown(small, static_cast<uint64_t>(big.exponent - (swapped ? x : y).exponent));
    uint64_t carry = 0;
    uint64_t* const a = big.limb.data();
    const uint64_t* const b = small.data();
    if (x.negative == yNegative) {
        for (size_t i = 0; i < small.size(); ++i) a[i] = limb::addCarry(a[i], b[i], carry);
        if (carry == 0) return big;
        shiftDown(big.limb, 1);
        big.limb.back() |= TOP_BIT;
        ++big.exponent;
    } else {
        for (size_t i = 0; i < small.size(); ++i) a[i] = limb::subtractBorrow(a[i], b[i], carry);
        normalize(big);
    }
    return big;
}

} // namespace

Wide::Wide(int64_t whole, size_t width) : limb(width), exponent(64), negative(whole < 0) {
    limb.back() = static_cast<uint64_t>(whole < 0 ? -whole : whole);
    normalize(*this);
}

Wide Wide::OfDouble(double value, size_t width) {
    int power = 0;
    const double mantissa = std::frexp(value, &power);
    Wide x(static_cast<int64_t>(std::ldexp(mantissa, 62)), width);
    x.exponent += power - 62;
    return x;
}

Wide Wide::Of(const uint32_t* q, size_t width) {
    Wide x = OfMagnitude(q, width);
    x.negative = q[0] != 0;
    return x;
}

Wide Wide::OfMagnitude(const uint32_t* q, size_t width) {
    Extended value;
    limb::load(q, value);
    Wide x(0, width);
    std::copy(value.limb, value.limb + limb::COUNT, x.limb.end() - limb::COUNT);
    x.exponent = value.exponent;
    return x;
}

double Wide::MantissaAsDouble() const {
    return std::ldexp(static_cast<double>(limb.back()), -64);
}

Wide Wide::Resized(size_t width) const {
    Wide x = *this;
    if (width < Width()) x.limb.erase(x.limb.begin(), x.limb.end() - static_cast<std::ptrdiff_t>(width));
    if (width > Width()) x.limb.insert(x.limb.begin(), width - Width(), 0);
    return x;
}

int compareMagnitudes(const Wide& x, const Wide& y) {
    if (x.IsZero() || y.IsZero()) return static_cast<int>(y.IsZero()) - static_cast<int>(x.IsZero());
    if (x.exponent != y.exponent) return x.exponent < y.exponent ? -1 : 1;
    for (size_t i = x.Width(); i-- > 0;) {
        if (x.limb[i] != y.limb[i]) return x.limb[i] < y.limb[i] ? -1 : 1;
    }
    return 0;
}

Wide operator+(const Wide& x, const Wide& y) {
    return sum(x, y, y.negative);
}

Wide operator-(const Wide& x, const Wide& y) {
    return sum(x, y, !y.negative);
}

Wide operator-(Wide x) {
    x.negative = !x.negative;
    return x;
}

// Of the columns below the n limbs that are kept, two are formed: the others would add less than 2^-60 of the
// last bit. Nothing is lost where both mantissas end within n + 2 limbs taken together.
Wide operator*(const Wide& x, const Wide& y) {
    const size_t n = x.Width();
    Wide z(0, n + 2);
    const uint64_t* const a = x.limb.data();
    for (size_t i = 0; i < n; ++i) {
        const uint64_t factor = y.limb[i];
        if (factor == 0) continue;
        const size_t first = i < n - 2 ? n - 2 - i : 0;
        uint64_t* column = z.limb.data() + (i + first - (n - 2));
        uint64_t above = 0;
        for (size_t k = first; k < n; ++k) {
            uint64_t high;
            uint64_t carry = 0;
            const uint64_t low = limb::addCarry(limb::multiply(a[k], factor, high), above, carry);
            above = high + carry;
            carry = 0;
            *column = limb::addCarry(*column, low, carry);
            ++column;
            above += carry;
        }
        *column = above;
    }
    z.exponent = x.exponent + y.exponent;
    z.negative = x.negative != y.negative;
    normalize(z);
    z.limb.erase(z.limb.begin(), z.limb.begin() + 2);
    return z;
}

Wide operator/(const Wide& x, uint64_t y) {
    Wide z = x;
    uint64_t rest = 0;
    uint64_t* const a = z.limb.data();
    for (size_t i = z.Width(); i-- > 0;) a[i] = limb::divideWide(rest, a[i], y, rest);
    // The quotient's top limb may be small: one more limb of it keeps the last one full.
    const uint64_t below = limb::divideWide(rest, 0, y, rest);
    z.limb.insert(z.limb.begin(), below);
    normalize(z);
    z.limb.erase(z.limb.begin());
    return z;
}

Wide operator/(const Wide& x, const Wide& y) {
    // r <- r + r (1 - y r) squares the relative error of r, from 2^-50 on.
    const Wide one(1, x.Width());
    Wide r = Wide::OfDouble(1 / y.MantissaAsDouble(), x.Width());
    r.exponent -= y.exponent;
    r.negative = y.negative;
    for (size_t bits = 50; bits < 64 * x.Width(); bits *= 2) r = r + r * (one - y * r);
    return x * r;
}

Wide sqrt(const Wide& x) {
    // r <- r + r (1 - x r^2) / 2 for the reciprocal root: an error e becomes 1.5 e^2.
    const Wide one(1, x.Width());
    const int64_t half = x.exponent / 2;
    const double reduced = std::ldexp(x.MantissaAsDouble(), static_cast<int>(x.exponent - 2 * half));
    Wide r = Wide::OfDouble(1 / std::sqrt(reduced), x.Width());
    r.exponent -= half;
    for (size_t bits = 49; bits < 64 * x.Width(); bits = 2 * bits - 1)
        r = r + timesPowerOfTwo(r * (one - x * r * r), -1);
    return x * r;
}

Wide timesPowerOfTwo(Wide x, int64_t n) {
    x.exponent += n;
    return x;
}

Wide nearestWhole(const Wide& x) {
    Wide y = x + timesPowerOfTwo(Wide(1, x.Width()), -1);
    if (y.exponent <= 0) return Wide(0, x.Width());
    const auto whole = static_cast<size_t>(y.exponent);
    for (size_t i = 0; i < y.Width(); ++i) { // limb i holds the places from 64 (width - i) - 63 on
        const size_t above = 64 * (y.Width() - 1 - i);
        if (whole <= above) {
            y.limb[i] = 0;
        } else if (whole < above + 64) {
            y.limb[i] &= ~uint64_t{0} << (64 - (whole - above));
        }
    }
    return y;
}

unsigned lowBits(const Wide& whole) {
    unsigned bits = 0;
    for (int64_t place = whole.exponent - 2; place < whole.exponent;
         ++place) { // the last two before the point
        bits *= 2;
        if (place < 0 || whole.IsZero()) continue;
        const auto n = static_cast<size_t>(place);
        if (n / 64 < whole.Width())
            bits |= static_cast<unsigned>(whole.limb[whole.Width() - 1 - n / 64] >> (63 - n % 64) & 1);
    }
    return bits;
}

namespace {

// Whether a unit of the lowest limb but one decides to which number x rounds: not where the bits behind the
// 352 are 1000...0 or 0111...1 down to there.
bool isUndecided(const Wide& x) {
    const size_t first = x.Width() - limb::COUNT; // the upper half of this limb ends the number
    const auto guard = static_cast<uint32_t>(x.limb[first]);
    uint64_t fill;
    if (guard == 0x80000000U) {
        fill = 0;
    } else if (guard == 0x7FFFFFFFU) {
        fill = ~uint64_t{0};
    } else {
        return false;
    }
    return std::all_of(x.limb.begin() + 1, x.limb.begin() + static_cast<std::ptrdiff_t>(first),
                       [fill](uint64_t l) { return l == fill; });
}

} // namespace

Extended leading(const Wide& x) {
    Extended y;
    std::copy(x.limb.end() - limb::COUNT, x.limb.end(), y.limb);
    y.exponent = x.exponent;
    return y;
}

Extended decided(const std::function<Wide(size_t width)>& value) {
    ++decisions;
    size_t width = FIRST_WIDTH;
    Wide x = value(width);
    while (isUndecided(x)) x = value(width *= 2);
    return leading(x);
}

} // namespace wide
