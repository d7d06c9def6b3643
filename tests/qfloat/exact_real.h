// SPDX-License-Identifier: MIT
//
// Private to exact*.cpp: MPFR numbers and how stored numbers become such and back.
#pragma once

#include "exact.h"

#include <algorithm>

namespace exact {

constexpr int64_t BIAS = 0x8000;
constexpr mpfr_prec_t BITS = 352;
constexpr mpfr_prec_t WORKING_BITS = 1300;
constexpr uint32_t NEGATIVE_SIGN = 0xFFFFFFFF;

class Real {
public:
    explicit Real(mpfr_prec_t precision) { mpfr_init2(value, precision); }
    // Exactly q.
    explicit Real(const Number& q) {
        mpfr_init2(value, BITS);
        mpfr_set_zero(value, 1);
        if (q[1] == 0) return;
        for (size_t i = 3; i < 14; ++i) {
            mpfr_mul_2ui(value, value, 32, MPFR_RNDN);
            mpfr_add_ui(value, value, q[i], MPFR_RNDN);
        }
        mpfr_mul_2si(value, value, static_cast<int64_t>(q[1]) - BIAS - BITS, MPFR_RNDN);
        if (q[0] != 0) mpfr_neg(value, value, MPFR_RNDN);
    }
    Real(const Real&) = delete;
    Real& operator=(const Real&) = delete;
    ~Real() { mpfr_clear(value); }
    operator mpfr_ptr() { return value; }
    operator mpfr_srcptr() const { return value; }

private:
    mpfr_t value;
};

// q = the number nearest to x, ties away from 0; false where there is none with an exponent word in
// 1 .. 0xFFFF.
inline bool toNumber(const Real& x, Number& q) {
    if (mpfr_regular_p(x) == 0) return false;
    Real rounded(BITS);
    mpfr_set(rounded, x, mpfr_min_prec(x) == BITS + 1 ? MPFR_RNDA : MPFR_RNDN); // a tie, or not
    const int64_t word = mpfr_get_exp(rounded) + BIAS;
    if (word < 1 || word > 0xFFFF) return false;
    q = {};
    q[0] = mpfr_sgn(mpfr_srcptr(rounded)) < 0 ? NEGATIVE_SIGN : 0;
    q[1] = static_cast<uint32_t>(word);
    mpfr_abs(rounded, rounded, MPFR_RNDN);
    mpfr_set_exp(rounded, 32);
    for (size_t i = 3; i < 14; ++i) {
        q[i] = static_cast<uint32_t>(mpfr_get_ui(rounded, MPFR_RNDZ));
        mpfr_sub_ui(rounded, rounded, q[i], MPFR_RNDN);
        mpfr_mul_2ui(rounded, rounded, 32, MPFR_RNDN);
    }
    return true;
}

} // namespace exact
