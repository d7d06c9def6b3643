// SPDX-License-Identifier: MIT
//
// The table of functions, with MPFR's and the ranges of their arguments.
#include "exact.h"
#include "qtrig.h"

namespace exact {

using oracle::Real;

namespace {

using Unary = void (*)(const qfloat, qfloat);
using Binary = void (*)(const qfloat, const qfloat, qfloat);
using UnaryTruth = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using DegreeTruth = int (*)(mpfr_ptr, mpfr_srcptr, unsigned long, mpfr_rnd_t);

constexpr Range NONE = {1, 0, true};

Function unary(const char* name, Unary ours, UnaryTruth truth, Range whole, Range usual) {
    return {name,
            [ours](const qfloat x, const qfloat, qfloat z) { ours(x, z); },
            [truth](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr, mpfr_rnd_t rounding) { truth(z, x, rounding); },
            whole,
            usual,
            NONE,
            false,
            false};
}

Function ofDegrees(const char* name, Unary ours, DegreeTruth truth, Range whole, Range usual) {
    Function f = unary(name, ours, mpfr_set, whole, usual);
    f.truth = [truth](mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr, mpfr_rnd_t rounding) {
        truth(z, x, 360, rounding);
    };
    return f;
}

Function binary(const char* name, Binary ours,
                void (*truth)(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y, mpfr_rnd_t), Range whole, Range usual,
                Range second, bool isSecondWhole) {
    return {name, ours, truth, whole, usual, second, isSecondWhole, true};
}

// Whether x^-y, rounded, is above the range for a whole y < 0. Then x^y is a special value, also where it is
// the smallest number.
bool isOfOverflow(mpfr_srcptr x, mpfr_srcptr y) {
    if (mpfr_sgn(y) >= 0 || mpfr_integer_p(y) == 0) return false;
    Real opposite(oracle::MANTISSA_BITS), inverse(oracle::MANTISSA_BITS);
    mpfr_neg(opposite, y, MPFR_RNDN);
    mpfr_pow(inverse, x, opposite, MPFR_RNDN);
    return mpfr_get_exp(inverse) > 32768;
}

// 0, which no power is, where it is no number of the type.
void power(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y, mpfr_rnd_t rounding) {
    mpfr_pow(z, x, y, rounding);
    if (mpfr_regular_p(z) != 0 && mpfr_get_exp(z) <= -32767 && isOfOverflow(x, y)) mpfr_set_zero(z, 1);
}

// MPFR has no logarithm to any base: a quotient with so many bits more that its error does not show.
void logarithm(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y, mpfr_rnd_t rounding) {
    const mpfr_prec_t bits = mpfr_get_prec(z) + 700;
    Real value(bits), base(bits);
    mpfr_log(value, x, MPFR_RNDN);
    mpfr_log(base, y, MPFR_RNDN);
    mpfr_div(z, value, base, rounding);
}

std::vector<Function> makeTable() {
    const Range anything = {-32767, 32767, true}, around = {-20, 20, true};
    const Range tiny = {-400, 15, false};
    const auto upTo = [](int64_t highest) { return Range{-400, highest, false}; };
    const auto within = [](int64_t lowest, int64_t highest) { return Range{lowest, highest, false}; };
    Function log = unary("qlog", qlog, mpfr_log, anything, around);
    log.isSpecialNextToOne = true;
    return {
        unary("qexp", qexp, mpfr_exp, tiny, within(-3, 10)),
        log,
        binary("qlogbase", qlogbase, logarithm, anything, around, {-20, 20, true}, false),
        binary("qpow", qpow, power, {-300, 300, true}, around, {-20, 10, false}, false),
        binary("qpowi", qpowi, power, {-300, 300, false}, within(0, 2), {1, 14, false}, true),
        unary("qsin", qsin, mpfr_sin, upTo(332), within(-3, 10)),
        unary("qcos", qcos, mpfr_cos, upTo(332), within(-3, 10)),
        unary("qtan", qtan, mpfr_tan, upTo(500), within(-3, 10)),
        unary("qatn", qatn, mpfr_atan, within(-32767, 32767), within(-8, 8)),
        unary("qasin", qasin, mpfr_asin, upTo(0), within(-4, 0)),
        unary("qacos", qacos, mpfr_acos, upTo(0), within(-4, 0)),
        unary("qsinh", qsinh, mpfr_sinh, upTo(15), within(-4, 8)),
        unary("qcosh", qcosh, mpfr_cosh, upTo(15), within(-4, 8)),
        unary("qtanh", qtanh, mpfr_tanh, upTo(10), within(-4, 6)),
        ofDegrees("qsindeg", qsindeg, mpfr_sinu, upTo(337), within(-3, 12)),
        ofDegrees("qcosdeg", qcosdeg, mpfr_cosu, upTo(337), within(-3, 12)),
        ofDegrees("qtandeg", qtandeg, mpfr_tanu, upTo(500), within(-3, 12)),
        ofDegrees("qatndeg", qatndeg, mpfr_atanu, within(-32760, 32767), within(-8, 8)),
        ofDegrees("qasindeg", qasindeg, mpfr_asinu, upTo(0), within(-4, 0)),
        ofDegrees("qacosdeg", qacosdeg, mpfr_acosu, upTo(0), within(-4, 0)),
    };
}

} // namespace

const std::vector<Function>& functions() {
    static const std::vector<Function> table = makeTable();
    return table;
}

} // namespace exact
