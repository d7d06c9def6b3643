// SPDX-License-Identifier: MIT
//
// The second way of the elementary functions at its own face: every function keeps the error that decided()
// allows for, at several widths, and decided() widens until it is clear.
#include "qwide.h"
#include "reference.h"

namespace oracle::test_wide {

using wide::Wide;

constexpr int CASES = 12;
constexpr size_t WIDTHS[] = {wide::FIRST_WIDTH, 2 * wide::FIRST_WIDTH, 4 * wide::FIRST_WIDTH};
constexpr mpfr_prec_t BITS = 64 * 4 * wide::FIRST_WIDTH + 200;

void toReal(const Wide& x, Real& r) {
    mpz_class z;
    mpz_import(z.get_mpz_t(), x.Width(), -1, sizeof(uint64_t), 0, 0, x.limb.data());
    mpfr_set_z_2exp(r, z.get_mpz_t(), x.exponent - 64 * static_cast<int64_t>(x.Width()), MPFR_RNDN);
    if (x.negative) mpfr_neg(r, r, MPFR_RNDN);
}

// |got / exact - 1| is below 2^(60 - 64 width), as qwide.h says.
void expectWithin(const Wide& got, const Real& exact, const char* what) {
    Real error(BITS);
    toReal(got, error);
    mpfr_sub(error, error, exact, MPFR_RNDN);
    if (mpfr_zero_p(mpfr_srcptr(error)) != 0) return;
    mpfr_div(error, error, exact, MPFR_RNDN);
    EXPECT_LT(mpfr_get_exp(error), 60 - 64 * static_cast<int64_t>(got.Width())) << what << got.Width();
}

using Truth = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

void expectFunction(const Wide& got, Truth truth, const Number& x, const char* what) {
    Real exact(BITS);
    truth(exact, Real(x), MPFR_RNDN);
    expectWithin(got, exact, what);
}

class WideFunctions : public Seeded {};

TEST_F(WideFunctions, KeepTheirError) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (const size_t width : WIDTHS) {
            const Number any = randomWithin(random, random.Chance(50) ? -400 : -3, 15, false);
            expectFunction(wide::exp(Wide::Of(any.data(), width)), mpfr_exp, any, "exp");
            const Number x = randomWithin(random, random.Chance(50) ? -400 : -3, 15, true);
            const Wide value = Wide::Of(x.data(), width);
            expectFunction(wide::hyperbolic(value).sine, mpfr_sinh, x, "sinh");
            expectFunction(wide::hyperbolic(value).cosine, mpfr_cosh, x, "cosh");
            expectFunction(wide::circular(value).sine, mpfr_sin, x, "sin");
            expectFunction(wide::circular(value).cosine, mpfr_cos, x, "cos");
            expectFunction(wide::arctangent(value, Wide(1, width)), mpfr_atan, x, "arctan");
            expectFunction(wide::log(value), mpfr_log, x, "ln");
            expectFunction(wide::sqrt(value), mpfr_sqrt, x, "root");
            const Number one = neighbor(number(1), static_cast<int>(random.Between(1, 1000)));
            expectFunction(wide::log(Wide::Of(one.data(), width)), mpfr_log, one, "ln next to 1");
        }
    }
}

TEST_F(WideFunctions, KeepTheErrorOfRootsUpToTheLimits) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (const size_t width : WIDTHS) {
            const Number x = randomWithin(random, -32700, 32700, true);
            expectFunction(wide::sqrt(Wide::Of(x.data(), width)), mpfr_sqrt, x, "root");
        }
    }
}

TEST_F(WideFunctions, KeepTheErrorOfAnglesNextToMultiplesOfARightAngle) {
    Number x; // comes within 2^-340 of pi
    qmov(qpi, x.data());
    for (const size_t width : WIDTHS) {
        const wide::SineCosine got = wide::circular(Wide::Of(x.data(), width));
        expectFunction(got.sine, mpfr_sin, x, "sin");
        expectFunction(got.cosine, mpfr_cos, x, "cos");
        const Number degrees = neighbor(number(180), 1);
        Real exact(BITS);
        mpfr_sinu(exact, Real(degrees), 360, MPFR_RNDN);
        expectWithin(wide::circularOfDegrees(Wide::Of(degrees.data(), width)).sine, exact, "sin of degrees");
    }
}

TEST_F(WideFunctions, KeepTheErrorOfPowersUpToTheLimits) {
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (const size_t width : WIDTHS) {
            const Number x = randomWithin(random, -20, 20, true), y = randomWithin(random, 1, 10, false);
            Real exact(BITS);
            mpfr_pow(exact, Real(x), Real(y), MPFR_RNDN);
            expectWithin(wide::power(Wide::Of(x.data(), width), Wide::Of(y.data(), width)), exact, "power");
        }
    }
}

// 1 + 2^-352 + 2^-1000 and 1 + 2^-352 - 2^-1000: not to be told from the midpoint in 14 limbs.
TEST(WideDecision, WidensUntilItIsClear) {
    for (const int sign : {1, -1}) {
        std::vector<size_t> widths;
        const limb::Extended got = wide::decided([&](size_t width) {
            widths.push_back(width);
            return Wide(1, width) + wide::timesPowerOfTwo(Wide(1, width), -352) +
                   wide::timesPowerOfTwo(Wide(sign, width), -1000);
        });
        EXPECT_EQ(widths, (std::vector<size_t>{wide::FIRST_WIDTH, 2 * wide::FIRST_WIDTH}));
        EXPECT_EQ(got.limb[0], sign > 0 ? 0x80000000U : 0x7FFFFFFFU);
        EXPECT_EQ(got.exponent, 1);
    }
}

TEST(WideDecision, IsClearAtOnceBesideAMidpointThatTheErrorDoesNotReach) {
    int calls = 0;
    wide::decided([&](size_t width) {
        ++calls;
        return Wide(1, width) + wide::timesPowerOfTwo(Wide(1, width), -352) +
               wide::timesPowerOfTwo(Wide(1, width), -830);
    });
    EXPECT_EQ(calls, 1);
}

} // namespace oracle::test_wide
