// SPDX-License-Identifier: MIT
#include "hard.h"

#include <cmath>

namespace hard {

namespace {

mpz_class power2(unsigned long n) {
    return mpz_class(1) << n;
}

mpz_class modulo2(const mpz_class& z, unsigned long bits) {
    mpz_class r;
    mpz_fdiv_r_2exp(r.get_mpz_t(), z.get_mpz_t(), bits);
    return r;
}

mpz_class inverse2(const mpz_class& odd, unsigned long bits) {
    mpz_class r;
    mpz_invert(r.get_mpz_t(), odd.get_mpz_t(), power2(bits).get_mpz_t());
    return r;
}

// An odd mantissa: dense, or a few words.
mpz_class oddMantissa(const Source& random) {
    const unsigned long zeros = random() % 4 == 0 ? 32 * (random() % 10) : 0;
    mpz_class z = randomBits(random, BITS) >> zeros << zeros;
    mpz_setbit(z.get_mpz_t(), BITS - 1);
    mpz_setbit(z.get_mpz_t(), 0);
    return z;
}

// A small whole number of either sign.
long smallOffset(const Source& random) {
    const auto size = static_cast<long>(random() % (uint64_t{1} << (random() % 21)));
    return random() % 2 != 0 ? size : -size;
}

// The square root of delta = 1 modulo 8, modulo 2^bits, by Newton's method for the inverse of the root.
mpz_class root2(const mpz_class& delta, unsigned long bits) {
    mpz_class y = 1;
    for (unsigned long known = 3; known < bits + 2; known = 2 * known - 2) {
        y = modulo2(y * (3 - delta * y * y) / 2, bits + 4);
    }
    return modulo2(delta * y, bits);
}

// 10^n with `bits` bits as mantissa * 2^exponent.
mpz_class powerOfTen(long n, unsigned long bits, long& exponent) {
    mpz_class five;
    mpz_ui_pow_ui(five.get_mpz_t(), 5, static_cast<unsigned long>(n < 0 ? -n : n));
    const auto size = static_cast<long>(mpz_sizeinbase(five.get_mpz_t(), 2));
    const auto wanted = static_cast<long>(bits);
    if (n < 0) {
        exponent = n - size - wanted;
        return power2(static_cast<unsigned long>(size + wanted)) / five;
    }
    exponent = n + size - wanted;
    return size > wanted ? mpz_class(five >> static_cast<unsigned long>(size - wanted))
                         : mpz_class(five << static_cast<unsigned long>(wanted - size));
}

} // namespace

mpz_class randomBits(const Source& random, unsigned long bits) {
    mpz_class z;
    for (unsigned long have = 0; have < bits; have += 64) z = (z << 64) + mpz_class(random());
    return modulo2(z, bits);
}

Pair product(const Source& random) {
    for (;;) {
        const unsigned long below = BITS - random() % 2; // bits of the product behind its first 352
        const mpz_class a = oddMantissa(random);
        mpz_class b = modulo2(inverse2(a, below) * (power2(below - 1) + smallOffset(random)), below);
        mpz_setbit(b.get_mpz_t(), BITS - 1);
        if (mpz_sizeinbase(mpz_class(a * b).get_mpz_t(), 2) == BITS + below) return {a, b};
    }
}

Pair quotient(const Source& random) {
    for (;;) {
        const unsigned long shift = BITS + random() % 2;
        const mpz_class a = oddMantissa(random);
        const mpz_class rest = 2 * smallOffset(random) + 1;
        mpz_class middle = modulo2(-rest * inverse2(a, shift), shift);
        if (shift == BITS) mpz_setbit(middle.get_mpz_t(), BITS);
        const mpz_class b = (middle * a + rest) >> shift;
        const bool fits = mpz_sizeinbase(b.get_mpz_t(), 2) <= BITS;
        if (fits && mpz_sizeinbase(middle.get_mpz_t(), 2) == BITS + 1) return {a, b};
    }
}

Square square(const Source& random) {
    for (;;) {
        const mpz_class delta = 8 * mpz_class(smallOffset(random)) + 1;
        const unsigned long shift = BITS + 1 + random() % 2;
        const mpz_class root = root2(delta, shift);
        for (const mpz_class& sign : {mpz_class(root), mpz_class(-root)}) {
            const mpz_class middle = modulo2(sign + (random() % 2 != 0 ? power2(shift - 1) : 0), shift);
            if (mpz_sizeinbase(middle.get_mpz_t(), 2) != BITS + 1) continue;
            const mpz_class m = (middle * middle - delta) >> shift;
            if (mpz_sizeinbase(m.get_mpz_t(), 2) <= BITS) return {m, static_cast<long>(shift)};
        }
    }
}

Decimal decimal(const Source& random, long n, unsigned long bits, const mpz_class& low,
                const mpz_class& high) {
    constexpr unsigned long PRECISION = 900; // of 10^n: more than twice the bits of a convergent
    long exponent = 0;
    const mpz_class power = powerOfTen(n, PRECISION, exponent);
    const auto highBits = static_cast<long>(mpz_sizeinbase(high.get_mpz_t(), 2));
    for (;; bits = bits > 8 ? bits - 1 : 8 + random() % 300) {
        // numerator / denominator = 10^n * 2^-e, about high / 2^bits
        const long fractionBits = static_cast<long>(PRECISION + bits) - highBits;
        mpz_class numerator = power, denominator = 1;
        (fractionBits > 0 ? denominator : numerator) <<= static_cast<unsigned long>(std::labs(fractionBits));
        mpz_class p = 1, q = 0, lastP = 0, lastQ = 1;
        while (denominator != 0 && p < high) {
            const mpz_class quotient = numerator / denominator;
            mpz_class next = numerator - quotient * denominator;
            numerator.swap(denominator);
            denominator.swap(next);
            lastP += quotient * p, lastQ += quotient * q;
            lastP.swap(p), lastQ.swap(q);
            if (p >= low && p < high && mpz_odd_p(p.get_mpz_t()) != 0 && q > 1)
                return {q, exponent + fractionBits};
        }
    }
}

mpz_class decimalNear(const Source& random, long n) {
    constexpr unsigned long DIGIT_BITS = 345; // of 10^104 and less
    mpz_class five;
    mpz_ui_pow_ui(five.get_mpz_t(), 5, static_cast<unsigned long>(std::labs(n)));
    const unsigned long size = mpz_sizeinbase(five.get_mpz_t(), 2);
    for (;;) {
        if (n < 0) { // d * 2^shift = middle * 5^-n + rest
            const unsigned long shift = BITS + 1 + size - DIGIT_BITS;
            const mpz_class rest = 2 * smallOffset(random) + 1;
            mpz_class middle = randomBits(random, BITS + 1) >> shift << shift;
            middle += modulo2(-rest * inverse2(five, shift), shift);
            mpz_setbit(middle.get_mpz_t(), BITS);
            const mpz_class d = (middle * five + rest) >> shift;
            if (mpz_sizeinbase(middle.get_mpz_t(), 2) == BITS + 1) return d;
        } else { // d * 5^n = ... 1 000 ... rest, 353 bits and `below` - 1
            const unsigned long below = DIGIT_BITS + size - BITS - random() % 2;
            const mpz_class end =
                modulo2(inverse2(five, below) * (power2(below - 1) + smallOffset(random)), below);
            mpz_class d = (randomBits(random, DIGIT_BITS) >> below << below) + end;
            mpz_setbit(d.get_mpz_t(), DIGIT_BITS - 1);
            if (mpz_sizeinbase(mpz_class(d * five).get_mpz_t(), 2) == BITS + below) return d;
        }
    }
}

mpz_class decimalTie(const Source& random, unsigned long n) {
    mpz_class five;
    mpz_ui_pow_ui(five.get_mpz_t(), 5, n);
    const mpz_class lowest = power2(BITS) / five + 1, highest = (power2(BITS + 1) - 1) / five;
    mpz_class d = lowest + randomBits(random, BITS + 8) % (highest - lowest + 1);
    if (mpz_even_p(d.get_mpz_t()) != 0) d += d < highest ? 1 : -1;
    return d;
}

} // namespace hard
