// SPDX-License-Identifier: MIT
//
// The elementary functions with any number of limbs, by their series. A series ends when a term falls below
// the last bit of its first one; what follows is less than that term.
#include "qwide.h"

#include <cmath>

namespace wide {

namespace {

enum class Kind { Circular, Hyperbolic };

// Whether term number k (k / 2 for even ones) of a series of this kind is subtracted.
bool isSubtracted(Kind kind, uint64_t k) {
    return kind == Kind::Circular && k % 4 >= 2;
}

void addTerm(Wide& sum, const Wide& term, Kind kind, uint64_t k) {
    sum = isSubtracted(kind, k) ? sum - term : sum + term;
}

// sin x and cos x or their hyperbolic relatives for |x| <= 1: the odd and the even terms x^k / k!.
SineCosine series(const Wide& x, Kind kind) {
    SineCosine y{x, Wide(1, x.Width())};
    const int64_t last = x.exponent - 64 * static_cast<int64_t>(x.Width());
    Wide term = x;
    for (uint64_t k = 2; !term.IsZero() && term.exponent >= last; ++k) {
        term = term * x / k;
        addTerm(k % 2 != 0 ? y.sine : y.cosine, term, kind, k);
    }
    return y;
}

// arctan z or artanh z for |z| <= 1/3.
Wide arcSeries(const Wide& z, Kind kind) {
    const Wide square = z * z;
    const int64_t last = z.exponent - 64 * static_cast<int64_t>(z.Width());
    Wide sum = z, power = z;
    for (uint64_t k = 3; !power.IsZero() && power.exponent >= last; k += 2) {
        power = power * square;
        addTerm(sum, power / k, kind, k);
    }
    return sum;
}

// arctan or artanh of 1/n, n small.
Wide arcOfInverse(uint64_t n, Kind kind, size_t width) {
    Wide power = Wide(1, width) / n, sum = power;
    for (uint64_t k = 3; power.exponent >= -64 * static_cast<int64_t>(width); k += 2) {
        power = power / (n * n);
        addTerm(sum, power / k, kind, k);
    }
    return sum;
}

// Machin's formula: pi = 16 arctan(1/5) - 4 arctan(1/239).
Wide machin(size_t width) {
    return timesPowerOfTwo(arcOfInverse(5, Kind::Circular, width), 4) -
           timesPowerOfTwo(arcOfInverse(239, Kind::Circular, width), 2);
}

Wide twoArtanhOfAThird(size_t width) {
    return timesPowerOfTwo(arcOfInverse(3, Kind::Hyperbolic, width), 1);
}

Wide ln2(size_t width) {
    static const Wide usual = twoArtanhOfAThird(FIRST_WIDTH);
    return width == FIRST_WIDTH ? usual : twoArtanhOfAThird(width);
}

// sin and cos of quadrant * pi/2 + r.
SineCosine turned(const Wide& r, unsigned quadrant) {
    SineCosine y = series(r, Kind::Circular);
    switch (quadrant) {
    case 0: return y;
    case 1: return {y.cosine, -y.sine};
    case 2: return {-y.sine, -y.cosine};
    default: return {-y.cosine, y.sine};
    }
}

} // namespace

Wide pi(size_t width) {
    static const Wide usual = machin(FIRST_WIDTH);
    return width == FIRST_WIDTH ? usual : machin(width);
}

Wide exp(const Wide& x) {
    constexpr int SQUARINGS = 8;
    const Wide log2 = ln2(x.Width());
    Wide magnitude = x;
    magnitude.negative = false;
    Wide n = nearestWhole(magnitude / log2);
    n.negative = x.negative;
    const SineCosine y = series(timesPowerOfTwo(x - n * log2, -SQUARINGS), Kind::Hyperbolic);
    Wide power = y.cosine + y.sine;
    for (int i = 0; i < SQUARINGS; ++i) power = power * power;
    const auto shift = n.IsZero() ? 0 : static_cast<int64_t>(n.limb.back() >> (64 - n.exponent));
    return timesPowerOfTwo(power, x.negative ? -shift : shift);
}

// x = 2^e m with 2/3 <= m < 4/3; ln m = 2 artanh((m - 1) / (m + 1)), whose argument is exact to the last bit
// and 1/5 at most. Where e is not 0, |e ln 2| > 2 |ln m| and at most two bits cancel.
Wide log(const Wide& x) {
    const Wide one(1, x.Width());
    Wide m = x;
    m.exponent = x.MantissaAsDouble() < 2.0 / 3 ? 1 : 0;
    const Wide y = timesPowerOfTwo(arcSeries((m - one) / (m + one), Kind::Hyperbolic), 1);
    const Wide e(x.exponent - m.exponent, x.Width());
    return e.IsZero() ? y : e * ln2(x.Width()) + y;
}

Wide power(const Wide& x, const Wide& y) {
    return exp(y * log(x));
}

// x - k pi/2 has an error of 2^(exponent + 16 - 64 width) at most: the width is raised until that leaves
// enough bits of it. (A number of 352 bits comes as close to a multiple of pi/2 as 2^-368, so the first try
// suffices.)
SineCosine circular(const Wide& x) {
    if (x.exponent < 0) return series(x, Kind::Circular);
    for (size_t spare = 7;; spare *= 2) {
        const size_t width = x.Width() + spare + static_cast<size_t>(x.exponent) / 64 + 1;
        const Wide quarterTurn = timesPowerOfTwo(pi(width), -1);
        const Wide angle = x.Resized(width);
        const Wide k = nearestWhole(angle / quarterTurn);
        const Wide r = angle - k * quarterTurn;
        if (!r.IsZero() && r.exponent > 64 - 64 * static_cast<int64_t>(spare))
            return turned(r.Resized(x.Width()), lowBits(k));
    }
}

SineCosine circularOfDegrees(const Wide& x) {
    const Wide ninety(90, x.Width());
    const Wide k = nearestWhole(x / ninety);
    return turned((x - k * ninety) * pi(x.Width()) / 180, lowBits(k));
}

SineCosine hyperbolic(const Wide& x) {
    if (x.exponent < 0) return series(x, Kind::Hyperbolic);
    const Wide grown = exp(x), shrunk = Wide(1, x.Width()) / grown;
    return {timesPowerOfTwo(grown - shrunk, -1), timesPowerOfTwo(grown + shrunk, -1)};
}

// With v = n / d and any angle a near arctan v: arctan v = a + arctan((v cos a - sin a) / (cos a + v sin a)).
Wide arctangent(const Wide& n, const Wide& d) {
    if (compareMagnitudes(n, d) > 0) return timesPowerOfTwo(pi(n.Width()), -1) - arctangent(d, n);
    const Wide v = n / d;
    if (v.exponent < -2) return arcSeries(v, Kind::Circular);
    const double near = std::atan(std::ldexp(v.MantissaAsDouble(), static_cast<int>(v.exponent)));
    const Wide a = Wide::OfDouble(near, v.Width());
    const SineCosine of = series(a, Kind::Circular);
    return a + arcSeries((v * of.cosine - of.sine) / (of.cosine + v * of.sine), Kind::Circular);
}

Wide cosineOfArcsine(const Wide& a) {
    const Wide one(1, a.Width());
    return sqrt((one - a) * (one + a));
}

} // namespace wide
