// SPDX-License-Identifier: MIT
//
// usage: tallyquill_nearest [seed [count]]
//
// Whether the arithmetic and the decimal text give the numbers nearest to the true values: a table of the
// results that differ from MPFR's, rounded once, for `count` random operands (1,000,000) and a hundredth of
// that of hard ones, whose true values lie next to the middle of two numbers.
#include "hard.h"
#include "qfloat.h"

#include <mpfr.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>

namespace {

constexpr mpfr_prec_t BITS = 352, EXACT_BITS = 1500;
constexpr int MOST_DIGITS = 104;

std::mt19937_64 engine;
const hard::Source SOURCE = [] { return engine(); };

long between(long low, long high) {
    return low + static_cast<long>(engine() % static_cast<uint64_t>(high - low + 1));
}

struct Value {
    explicit Value(mpfr_prec_t bits) { mpfr_init2(m, bits); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { mpfr_clear(m); }
    mpfr_t m;
};

void toNumber(const mpz_class& mantissa, long exponent, qfloat q) {
    qclear(q);
    const size_t size = mpz_sizeinbase(mantissa.get_mpz_t(), 2);
    mpz_class words = mantissa;
    if (size <= BITS) {
        words <<= static_cast<unsigned long>(BITS) - size;
    } else {
        words >>= size - static_cast<unsigned long>(BITS);
    }
    q[1] = static_cast<uint32_t>(0x8000 + exponent + static_cast<long>(size));
    mpz_export(q + 3, nullptr, 1, sizeof *q, 0, 0, words.get_mpz_t());
}

void toMpfr(const qfloat q, mpfr_ptr m) {
    mpz_class mantissa;
    mpz_import(mantissa.get_mpz_t(), 11, 1, sizeof *q, 0, 0, q + 3);
    mpfr_set_z_2exp(m, mantissa.get_mpz_t(), static_cast<long>(q[1]) - 0x8000 - BITS, MPFR_RNDN);
}

// Whether q is the value rounded to the nearest, ties away from zero (0 where that is no number).
bool isNearest(const qfloat q, mpfr_ptr value) {
    Value nearest(BITS), got(BITS);
    mpfr_round_nearest_away(mpfr_set, nearest.m, value);
    const mpfr_exp_t exponent = mpfr_get_exp(nearest.m);
    if (exponent < -0x7FFF || exponent > 0x7FFF) return true; // other rules hold there
    toMpfr(q, got.m);
    return mpfr_equal_p(got.m, nearest.m) != 0;
}

// Dense, sparse, of a few words, or a few units beside such a number.
void randomNumber(long lowest, long highest, qfloat q) {
    mpz_class z = hard::randomBits(SOURCE, BITS);
    if (engine() % 3 == 0) z &= hard::randomBits(SOURCE, BITS) & hard::randomBits(SOURCE, BITS);
    if (engine() % 3 == 0) {
        const unsigned long zeros = engine() % BITS;
        z = (z >> zeros << zeros) + between(0, 4);
        if (z > 2) z -= 2;
        mpz_fdiv_r_2exp(z.get_mpz_t(), z.get_mpz_t(), BITS);
    }
    mpz_setbit(z.get_mpz_t(), BITS - 1);
    toNumber(z, between(lowest, highest) - BITS, q);
}

using Case = std::function<bool()>; // draws a case and tells whether the result is right

Case product(bool isHard) {
    return [isHard] {
        qfloat a, b, c;
        Value x(BITS), y(BITS), exact(EXACT_BITS);
        if (isHard) {
            const hard::Pair pair = hard::product(SOURCE);
            toNumber(pair.a, 0, a), toNumber(pair.b, 0, b);
        } else {
            randomNumber(-16000, 16000, a), randomNumber(-16000, 16000, b);
        }
        qmul(a, b, c);
        toMpfr(a, x.m), toMpfr(b, y.m);
        mpfr_mul(exact.m, x.m, y.m, MPFR_RNDN);
        return isNearest(c, exact.m);
    };
}

Case quotient(bool isHard) {
    return [isHard] {
        qfloat a, b, c;
        Value x(BITS), y(BITS), exact(EXACT_BITS);
        if (isHard) {
            const hard::Pair pair = hard::quotient(SOURCE);
            toNumber(pair.a, 0, a), toNumber(pair.b, 0, b);
        } else {
            randomNumber(-16000, 16000, a), randomNumber(-16000, 16000, b);
        }
        qdiv(a, b, c);
        toMpfr(a, x.m), toMpfr(b, y.m);
        mpfr_div(exact.m, y.m, x.m, MPFR_RNDN);
        return isNearest(c, exact.m);
    };
}

Case root(bool isHard) {
    return [isHard] {
        qfloat x, y;
        Value m(BITS), exact(EXACT_BITS);
        if (isHard) {
            const hard::Square square = hard::square(SOURCE);
            toNumber(square.m, square.exponent, x);
        } else {
            randomNumber(-32767, 32767, x);
        }
        qsqrt(x, y);
        toMpfr(x, m.m);
        mpfr_sqrt(exact.m, m.m, MPFR_RNDN);
        return isNearest(y, exact.m);
    };
}

Case remainderCase() {
    return [] {
        qfloat a, b, c;
        randomNumber(-16000, 16000, a);
        randomNumber(-600, 600, b);
        b[1] += a[1] - 0x8000;
        qremain(a, b, c);
        Value x(BITS), y(BITS), exact(BITS), got(BITS);
        toMpfr(a, x.m), toMpfr(b, y.m), toMpfr(c, got.m);
        mpfr_fmod(exact.m, y.m, x.m, MPFR_RNDN);
        return mpfr_zero_p(exact.m) != 0 ? c[1] == 0 : mpfr_equal_p(exact.m, got.m) != 0;
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

void scaledByTen(mpfr_ptr value, const mpz_class& digits, long n) {
    mpfr_ui_pow_ui(value, 10, static_cast<unsigned long>(std::labs(n)), MPFR_RNDN);
    if (n < 0) {
        Value numerator(BITS);
        mpfr_set_z(numerator.m, digits.get_mpz_t(), MPFR_RNDN);
        mpfr_div(value, numerator.m, value, MPFR_RNDN);
    } else {
        mpfr_mul_z(value, value, digits.get_mpz_t(), MPFR_RNDN);
    }
}

Case decimalScale(bool isHard) {
    return [isHard] {
        long n = between(-9800, 9800);
        const mpz_class digits = isHard ? hardDecimal(350, n) : hard::randomBits(SOURCE, BITS) + 1;
        qfloat q;
        toNumber(digits, 0, q);
        qdecexp(q, n);
        Value exact(EXACT_BITS);
        scaledByTen(exact.m, digits, n);
        return isNearest(q, exact.m);
    };
}

Case reading(bool isHard) {
    return [isHard] {
        long n = engine() % 2 != 0 ? between(-9960, 9750) : between(-120, 20);
        const mpz_class digits =
            isHard ? hardDecimal(343, n) : hard::randomBits(SOURCE, 1 + engine() % 345) + 1;
        const std::string text = digits.get_str() + "e" + std::to_string(n);
        qfloat q;
        asctoq(text.c_str(), q);
        Value exact(EXACT_BITS);
        scaledByTen(exact.m, digits, n);
        return isNearest(q, exact.m);
    };
}

Case writing(bool isHard) {
    return [isHard] {
        const auto digits = static_cast<int>(between(1, MOST_DIGITS));
        qfloat q;
        if (isHard) {
            const long n = engine() % 2 != 0 ? between(160, 9700) : between(-9700, -160);
            mpz_class low;
            mpz_ui_pow_ui(low.get_mpz_t(), 10, static_cast<unsigned long>(digits));
            low *= 2; // the first of the odd halves of the last digit
            const hard::Decimal x = hard::decimal(SOURCE, n, 20 + engine() % 330, low, 10 * low);
            toNumber(x.d, -x.e - 1, q);
        } else {
            randomNumber(-32767, 32767, q);
        }
        char buffer[160], peer[160];
        qtoasc(q, buffer, digits);
        Value value(BITS);
        toMpfr(q, value.m);
        mpfr_exp_t exponent;
        mpfr_get_str(peer, &exponent, 10, static_cast<size_t>(digits) + 1, value.m, MPFR_RNDN);
        const std::string expected =
            std::string(" ") + peer[0] + "." + (peer + 1) + "E" + std::to_string(exponent - 1);
        return expected == buffer;
    };
}

void count(const char* function, const char* operands, long cases, const Case& isRight) {
    long wrong = 0;
    for (long i = 0; i < cases; ++i) wrong += isRight() ? 0 : 1;
    std::printf("| `%s` | %s | %ld | %ld |\n", function, operands, cases, wrong);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const uint64_t seed = argc > 1 ? std::strtoull(argv[1], nullptr, 0) : 20240229;
    const long cases = argc > 2 ? std::strtol(argv[2], nullptr, 0) : 1000000;
    engine.seed(seed);
    std::printf("Seed %llu.\n\n| Function | Operands | Count | Not the nearest |\n|---|---|---|---|\n",
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
