// SPDX-License-Identifier: MIT
//
// usage: tallyquill_nearest [seed [count]]
//
// Whether the arithmetic and the decimal text give the numbers nearest to the true values: a table of the
// results that differ from MPFR's, rounded once, and of those that the second way decided, for `count` random
// operands (1,000,000) and a hundredth of that of hard ones, whose true values lie next to the middle of two
// numbers.  Where the true value is out of range others are drawn.
#include "hard.h"
#include "qexact.h"
#include "qfloat.h"
#include "real.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>

namespace {

using namespace oracle;

constexpr mpfr_prec_t BITS = 352, EXACT_BITS = 1500;
constexpr int MOST_DIGITS = 104;

std::mt19937_64 engine;
const hard::Source SOURCE = [] { return engine(); };

long between(long low, long high) {
    return low + static_cast<long>(engine() % static_cast<uint64_t>(high - low + 1));
}

// The leading 352 bits of mantissa * 2^exponent.
Number toNumber(const mpz_class& mantissa, long exponent) {
    const size_t size = mpz_sizeinbase(mantissa.get_mpz_t(), 2);
    mpz_class words = mantissa;
    if (size <= BITS) {
        words <<= static_cast<unsigned long>(BITS) - size;
    } else {
        words >>= size - static_cast<unsigned long>(BITS);
    }
    return store({false, BIAS + exponent + static_cast<long>(size), words});
}

enum class Verdict { Right, Wrong, OutOfRange };

Verdict verdict(bool isRight) {
    return isRight ? Verdict::Right : Verdict::Wrong;
}

// Whether q is the value rounded to the nearest, ties away from zero.
Verdict isNearest(const Number& q, const Real& value) {
    const Rounded nearest = roundHalfUp(value);
    if (nearest.exponent < 1 || nearest.exponent > 0xFFFF) return Verdict::OutOfRange; // other rules hold
    return verdict(q == store(nearest));
}

// Dense, sparse, of a few words, or a few units beside such a number.
Number randomNumber(long lowest, long highest) {
    mpz_class z = hard::randomBits(SOURCE, BITS);
    if (engine() % 3 == 0) z &= hard::randomBits(SOURCE, BITS) & hard::randomBits(SOURCE, BITS);
    if (engine() % 3 == 0) {
        const unsigned long zeros = engine() % BITS;
        z = (z >> zeros << zeros) + between(0, 4);
        if (z > 2) z -= 2;
        mpz_fdiv_r_2exp(z.get_mpz_t(), z.get_mpz_t(), BITS);
    }
    mpz_setbit(z.get_mpz_t(), BITS - 1);
    return toNumber(z, between(lowest, highest) - BITS);
}

using Case = std::function<Verdict()>; // draws a case and judges the result

Case product(bool isHard) {
    return [isHard] {
        Number a, b, c;
        Real exact(EXACT_BITS);
        if (isHard) {
            const hard::Pair pair = hard::product(SOURCE);
            a = toNumber(pair.a, 0), b = toNumber(pair.b, 0);
        } else {
            a = randomNumber(-16000, 16000), b = randomNumber(-16000, 16000);
        }
        qmul(a.data(), b.data(), c.data());
        mpfr_mul(exact, Real(a), Real(b), MPFR_RNDN);
        return isNearest(c, exact);
    };
}

Case quotient(bool isHard) {
    return [isHard] {
        Number a, b, c;
        Real exact(EXACT_BITS);
        if (isHard) {
            const hard::Pair pair = hard::quotient(SOURCE);
            a = toNumber(pair.a, 0), b = toNumber(pair.b, 0);
        } else {
            a = randomNumber(-16000, 16000), b = randomNumber(-16000, 16000);
        }
        qdiv(a.data(), b.data(), c.data());
        mpfr_div(exact, Real(b), Real(a), MPFR_RNDN);
        return isNearest(c, exact);
    };
}

Case root(bool isHard) {
    return [isHard] {
        Number x, y;
        Real exact(EXACT_BITS);
        if (isHard) {
            const hard::Square square = hard::square(SOURCE);
            x = toNumber(square.m, square.exponent);
        } else {
            x = randomNumber(-32767, 32767);
        }
        qsqrt(x.data(), y.data());
        mpfr_sqrt(exact, Real(x), MPFR_RNDN);
        return isNearest(y, exact);
    };
}

Case remainderCase() {
    return [] {
        const Number a = randomNumber(-16000, 16000);
        Number b = randomNumber(-600, engine() % 2 != 0 ? 600 : 16000), c;
        b[1] += a[1] - 0x8000;
        qremain(a.data(), b.data(), c.data());
        Real exact(BITS);
        mpfr_fmod(exact, Real(b), Real(a), MPFR_RNDN);
        return verdict(mpfr_equal_p(exact, Real(c)) != 0);
    };
}

// An exponent of ten, and a whole number that it brings next to the middle of two numbers, of `bits` at most.
mpz_class hardDecimal(unsigned long bits, long& n) {
    if (engine() % 2 != 0) {
        n = engine() % 2 != 0 ? between(12, 147) : between(-147, -12);
        return hard::decimalNear(SOURCE, n);
    }
    n = engine() % 2 != 0 ? between(160, 9700) : between(-9700, -160);
    const mpz_class middle = mpz_class(1) << static_cast<unsigned long>(BITS);
    return hard::decimal(SOURCE, n, 40 + engine() % (bits - 40), middle, 2 * middle).d;
}

void scaledByTen(Real& value, const mpz_class& digits, long n) {
    mpfr_ui_pow_ui(value, 10, static_cast<unsigned long>(std::labs(n)), MPFR_RNDN);
    if (n < 0) {
        Real numerator(BITS);
        mpfr_set_z(numerator, digits.get_mpz_t(), MPFR_RNDN);
        mpfr_div(value, numerator, value, MPFR_RNDN);
    } else {
        mpfr_mul_z(value, value, digits.get_mpz_t(), MPFR_RNDN);
    }
}

Case decimalScale(bool isHard) {
    return [isHard] {
        long n = between(-9800, 9800);
        const mpz_class digits = isHard ? hardDecimal(350, n) : hard::randomBits(SOURCE, BITS) + 1;
        Number q = toNumber(digits, 0);
        qdecexp(q.data(), n);
        Real exact(EXACT_BITS);
        scaledByTen(exact, digits, n);
        return isNearest(q, exact);
    };
}

Case reading(bool isHard) {
    return [isHard] {
        long n = engine() % 2 != 0 ? between(-9960, 9750) : between(-120, 20);
        const mpz_class digits =
            isHard ? hardDecimal(343, n) : hard::randomBits(SOURCE, 1 + engine() % 345) + 1;
        const std::string text = digits.get_str() + "e" + std::to_string(n);
        Number q;
        asctoq(text.c_str(), q.data());
        Real exact(EXACT_BITS);
        scaledByTen(exact, digits, n);
        return isNearest(q, exact);
    };
}

Case writing(bool isHard) {
    return [isHard] {
        const auto digits = static_cast<int>(between(1, MOST_DIGITS));
        Number q;
        if (isHard) {
            const long n = engine() % 2 != 0 ? between(160, 9700) : between(-9700, -160);
            mpz_class low;
            mpz_ui_pow_ui(low.get_mpz_t(), 10, static_cast<unsigned long>(digits));
            low *= 2; // the first of the odd halves of the last digit
            const hard::Decimal x = hard::decimal(SOURCE, n, 20 + engine() % 330, low, 10 * low);
            q = toNumber(x.d, -x.e - 1);
        } else {
            q = randomNumber(-32767, 32767);
        }
        char buffer[160], peer[160];
        qtoasc(q.data(), buffer, digits);
        mpfr_exp_t exponent;
        mpfr_get_str(peer, &exponent, 10, static_cast<size_t>(digits) + 1, Real(q), MPFR_RNDN);
        const std::string expected =
            std::string(" ") + peer[0] + "." + (peer + 1) + "E" + std::to_string(exponent - 1);
        return verdict(expected == buffer);
    };
}

void count(const char* function, const char* operands, long cases, const Case& judge) {
    long judged = 0, wrong = 0;
    const uint64_t before = limb::comparisons;
    while (judged < cases) {
        const Verdict result = judge();
        judged += result == Verdict::OutOfRange ? 0 : 1;
        wrong += result == Verdict::Wrong ? 1 : 0;
    }
    std::printf("| `%s` | %s | %ld | %llu | %ld |\n", function, operands, cases,
                static_cast<unsigned long long>(limb::comparisons - before), wrong);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const uint64_t seed = argc > 1 ? std::strtoull(argv[1], nullptr, 0) : 20240229;
    const long cases = argc > 2 ? std::strtol(argv[2], nullptr, 0) : 1000000;
    engine.seed(seed);
    std::printf("Seed %llu.\n\n| Function | Operands | Count | second way | Not the nearest "
                "|\n|---|---|---|---|---|\n",
                static_cast<unsigned long long>(seed));
    struct Row {
        const char* function;
        Case (*make)(bool isHard);
    };
    for (const Row& row : {Row{"qmul", product}, Row{"qdiv", quotient}, Row{"qsqrt", root},
                           Row{"qdecexp", decimalScale}, Row{"asctoq", reading}, Row{"qtoasc", writing}}) {
        count(row.function, "random", cases, row.make(false));
        count(row.function, "next to a midpoint", cases / 100, row.make(true));
    }
    count("qremain", "random", cases, remainderCase());
    return 0;
}
