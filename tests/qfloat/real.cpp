// SPDX-License-Identifier: MIT
#include "real.h"

namespace oracle {

Real::Real(const Number& q) {
    mpfr_init2(value, MANTISSA_BITS + 32);
    if (q[1] == 0) {
        mpfr_set_zero(value, 1);
        return;
    }
    const mpz_class mantissa = wordsToInteger(q.data(), 2, 13);
    mpfr_set_z_2exp(value, mantissa.get_mpz_t(), static_cast<int64_t>(q[1]) - BIAS - MANTISSA_BITS,
                    MPFR_RNDN);
    if (q[0] != 0) mpfr_neg(value, value, MPFR_RNDN);
}

mpz_class wordsToInteger(const uint32_t* words, int first, int last) {
    mpz_class z;
    mpz_import(z.get_mpz_t(), static_cast<size_t>(last - first + 1), 1, sizeof(uint32_t), 0, 0,
               words + first);
    return z;
}

void integerToWords(const mpz_class& z, uint32_t* words, int first, int last) {
    mpz_class rest = z;
    for (int i = last; i >= first; --i) {
        words[i] = static_cast<uint32_t>(mpz_get_ui(rest.get_mpz_t()) & 0xFFFFFFFF);
        rest >>= 32;
    }
}

mpz_class power2(unsigned long n) {
    return mpz_class(1) << n;
}

Rounded roundHalfUp(const Real& value) {
    const mpfr_exp_t exponent = mpfr_get_exp(value);
    Real t(mpfr_get_prec(value) + 4);
    mpfr_abs(t, value, MPFR_RNDN);
    mpfr_mul_2si(t, t, MANTISSA_BITS - exponent, MPFR_RNDN);
    mpfr_add_d(t, t, 0.5, MPFR_RNDN);
    Rounded r{mpfr_sgn(value) < 0, exponent + BIAS, 0};
    mpfr_get_z(r.mantissa.get_mpz_t(), t, MPFR_RNDD);
    if (r.mantissa == power2(MANTISSA_BITS)) {
        r.mantissa >>= 1;
        ++r.exponent;
    }
    return r;
}

Number store(const Rounded& value) {
    Number q{};
    q[0] = value.negative ? NEGATIVE_SIGN : 0;
    q[1] = static_cast<uint32_t>(value.exponent);
    integerToWords(value.mantissa, q.data(), 3, 13);
    return q;
}

} // namespace oracle
