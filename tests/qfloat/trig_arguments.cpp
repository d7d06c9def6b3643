// SPDX-License-Identifier: MIT
#include "trig_arguments.h"

#include "qtrig.h"
#include "reference_trig.h"

#include <cstdlib>
#include <cstring>

namespace trigtest {

using namespace oracle;

const Function FUNCTIONS[9] = {
    {"sin", qsin, reference::sine, mpfr_sin, Symmetry::Odd, -32767, 8, 332},
    {"cos", qcos, reference::cosine, mpfr_cos, Symmetry::Even, -32767, 8, 332},
    {"tan", qtan, reference::tangent, mpfr_tan, Symmetry::Odd, -32767, 8, 32767},
    {"atan", qatn, reference::arcTangent, mpfr_atan, Symmetry::Odd, -32767, 10, 32767},
    {"asin", qasin, reference::arcSine, mpfr_asin, Symmetry::Odd, -32767, 0, 0},
    {"acos", qacos, reference::arcCosine, mpfr_acos, Symmetry::None, -32767, 0, 0},
    // An exponent word of 1 is a zero to sinh.
    {"sinh", qsinh, reference::hyperbolicSine, mpfr_sinh, Symmetry::Odd, -32766, 6, 15},
    {"cosh", qcosh, reference::hyperbolicCosine, mpfr_cosh, Symmetry::Even, -32767, 6, 15},
    {"tanh", qtanh, reference::hyperbolicTangent, mpfr_tanh, Symmetry::Odd, -32767, 7, 32767},
};

const Function& find(const char* name) {
    for (const Function& f : FUNCTIONS) {
        if (std::strcmp(f.name, name) == 0) return f;
    }
    ADD_FAILURE() << "no function " << name;
    return FUNCTIONS[0];
}

void printTo(const Function& f, std::ostream* out) {
    *out << f.name;
}

Number valueOf(const Function& f, const Number& x) {
    Number y = overflowValue(0x12345678);
    merror = 0;
    f.ours(x.data(), y.data());
    return y;
}

namespace {

// Whether x lies in the range; the hyperbolic sine and cosine end below 32768 ln 2 = 22713.047.
bool inRange(const Function& f, const Number& x) {
    const int64_t exponent = static_cast<int64_t>(x[1]) - BIAS;
    if (exponent < f.lowest || exponent > f.highest) return false;
    return f.highest != 15 || mpfr_cmpabs(Real(x), Real(decimal("22713"))) < 0;
}

Number nearest(const Real& value) {
    return store(roundHalfUp(value));
}

} // namespace

Number randomArgument(Random& random, const Function& f) {
    for (;;) {
        Number x = randomMantissa(random);
        const auto kind = random.Between(0, 9);
        const int64_t exponent = kind < 6   ? random.Between(-8, f.usual)
                                 : kind < 9 ? random.Between(-400, std::min<int64_t>(f.highest, 400))
                                            : random.Between(f.lowest, f.highest);
        x[0] = random.Chance(50) ? oracle::NEGATIVE_SIGN : 0;
        x[1] = static_cast<uint32_t>(BIAS + exponent);
        if (inRange(f, x)) return x;
    }
}

void addAround(const Function& f, const Real& value, std::vector<Number>& list) {
    for (const int offset : {-1000, -2, -1, 0, 1, 2, 1000}) {
        Real near(1000);
        mpfr_set_si_2exp(near, offset, mpfr_get_exp(value) - oracle::MANTISSA_BITS, MPFR_RNDN);
        mpfr_add(near, near, value, MPFR_RNDN);
        Number x = nearest(near);
        if (!inRange(f, x)) continue;
        list.push_back(x);
        x[0] = x[0] != 0 ? 0 : oracle::NEGATIVE_SIGN;
        list.push_back(x);
    }
}

std::vector<Number> branchArguments(const Function& f) {
    std::vector<Number> list;
    Real value(1000);
    const int64_t first = std::max<int64_t>(f.lowest, -400), last = std::min<int64_t>(f.highest, 400);
    for (int64_t exponent = first; exponent <= last; exponent += std::abs(exponent) < 70 ? 1 : 7) {
        mpfr_set_si_2exp(value, 1, exponent, MPFR_RNDN);
        addAround(f, value, list);
    }
    for (const int64_t exponent : {f.lowest, f.highest - 1}) {
        mpfr_set_si_2exp(value, 1, exponent, MPFR_RNDN);
        addAround(f, value, list);
    }
    for (const char* text : {"0.3",  "0.7",   "0.9",     "0.999",   "0.9999999999", "1",      "1.0000001",
                             "1.5",  "2",     "3",       "88",      "122.3",        "122.65", "244",
                             "1e50", "1e-50", "22712.9", "32767.5", "1e9000",       "1e-9000"}) {
        mpfr_set_str(value, text, 10, MPFR_RNDN);
        addAround(f, value, list);
    }
    for (const int root : {2, 3}) { // tan(pi/8), tan(3 pi/8), sin(pi/3), sin(pi/4), tan(pi/6)
        for (const int added : {-1, 0, 1}) {
            mpfr_sqrt_ui(value, static_cast<unsigned long>(root), MPFR_RNDN);
            mpfr_add_si(value, value, added, MPFR_RNDN);
            addAround(f, value, list);
            mpfr_div_2ui(value, value, 1, MPFR_RNDN);
            addAround(f, value, list);
        }
    }
    for (const int part : {1, 2, 3, 4, 6, 8, 12}) {
        mpfr_const_pi(value, MPFR_RNDN);
        mpfr_div_si(value, value, part, MPFR_RNDN);
        addAround(f, value, list);
    }
    return list;
}

std::vector<Number> nearMultiples(Random& random, const Function& f, int n, int64_t highest) {
    std::vector<Number> list;
    for (int i = 0; i < n; ++i) {
        const auto bits = static_cast<unsigned long>(random.Between(1, highest - 1));
        mpz_class k = 1;
        for (unsigned long done = 0; done < bits && done < 1000; done += 64) {
            k = (k << 64) + mpz_class(static_cast<unsigned long>(random.Next()));
        }
        k >>= mpz_sizeinbase(k.get_mpz_t(), 2) - std::min(bits, mpz_sizeinbase(k.get_mpz_t(), 2));
        const auto missing = bits - mpz_sizeinbase(k.get_mpz_t(), 2);
        Real value(static_cast<mpfr_prec_t>(bits + 1000));
        mpfr_const_pi(value, MPFR_RNDN);
        mpfr_mul_z(value, value, k.get_mpz_t(), MPFR_RNDN);
        mpfr_mul_2si(value, value, static_cast<long>(missing) - 1, MPFR_RNDN);
        addAround(f, value, list);
    }
    return list;
}

std::vector<Number> closestToMultiples(const Function& f, int64_t lowestScale, int64_t highestScale,
                                       int64_t step) {
    std::vector<Number> list;
    for (int64_t scale = lowestScale; scale <= highestScale; scale += step) {
        // m * 2^scale is near k * pi/2 where m/k is a convergent of (pi/2) * 2^-scale.
        const mpfr_prec_t precision = 1000 + (scale > 0 ? scale : 0);
        Real ratio(precision), whole(precision);
        mpfr_const_pi(ratio, MPFR_RNDN);
        mpfr_mul_2si(ratio, ratio, -1 - scale, MPFR_RNDN);
        mpz_class m = 1, before = 0, term;
        while (true) {
            mpfr_get_z(term.get_mpz_t(), ratio, MPFR_RNDD);
            const mpz_class next = term * m + before;
            if (next >= power2(oracle::MANTISSA_BITS)) break;
            before = m;
            m = next;
            mpfr_sub_z(ratio, ratio, term.get_mpz_t(), MPFR_RNDN);
            if (mpfr_zero_p(ratio)) break;
            mpfr_ui_div(ratio, 1, ratio, MPFR_RNDN);
        }
        mpfr_set_z_2exp(whole, m.get_mpz_t(), scale, MPFR_RNDN);
        const Number x = nearest(whole);
        if (m > 1 && inRange(f, x)) list.push_back(x);
    }
    return list;
}

} // namespace trigtest
