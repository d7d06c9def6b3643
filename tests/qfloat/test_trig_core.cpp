// SPDX-License-Identifier: MIT
//
// The 384-bit steps under the trigonometric functions: each keeps the relative error that its header
// promises.
#include "../cases.h"
#include "oracle.h"
#include "qtrigcore.h"

namespace oracle::test_trig_core {

using limb::Extended;

constexpr int ROUNDS = cases(10000);

void toReal(const Extended& x, Real& value) {
    mpz_class mantissa;
    mpz_import(mantissa.get_mpz_t(), limb::COUNT, -1, sizeof x.limb[0], 0, 0, x.limb);
    mpfr_set_z_2exp(value, mantissa.get_mpz_t(), x.exponent - 384, MPFR_RNDN);
}

// |got - exact| <= exact * 2^-bits
void expectWithin(int bits, const Extended& got, const Real& exact, const char* what) {
    Real error(1000);
    toReal(got, error);
    EXPECT_NE(got.limb[limb::COUNT - 1] & limb::TOP_BIT, 0U) << what << " is not normalized";
    mpfr_sub(error, error, exact, MPFR_RNDN);
    mpfr_div(error, error, exact, MPFR_RNDN);
    EXPECT_LT(std::fabs(mpfr_get_d(error, MPFR_RNDA)), std::ldexp(1.0, -bits)) << what;
}

class TrigCore : public Seeded {
protected:
    // Dense mantissas, a third of them close to the upper end of their binade, where the series are longest.
    Extended Draw(int64_t exponent) {
        Extended x{};
        for (uint64_t& l : x.limb) l = random.Next();
        x.limb[limb::COUNT - 1] |= random.Chance(33) ? 0xFFF0000000000000 : limb::TOP_BIT;
        x.exponent = exponent;
        return x;
    }

    // Below 0.79.
    Extended DrawSmall() {
        const bool near = random.Chance(70);
        for (;;) {
            const Extended x = Draw(near ? random.Between(-12, 0) : random.Between(-500, 0));
            if (x.exponent < 0 || x.limb[limb::COUNT - 1] < 0xC9FFFFFFFFFFFFFF) return x;
        }
    }
};

TEST_F(TrigCore, SineAndCosineKeepTheirBound) {
    for (int i = 0; i < ROUNDS; ++i) {
        const Extended x = DrawSmall();
        Real value(384), exact(1500);
        toReal(x, value);
        Extended s, c;
        trig::sine(x, s);
        mpfr_sin(exact, value, MPFR_RNDN);
        expectWithin(379, s, exact, "sine");
        trig::cosine(x, c);
        mpfr_cos(exact, value, MPFR_RNDN);
        expectWithin(379, c, exact, "cosine");
        trig::cosineOfArcsine(s, c);
        expectWithin(378, c, exact, "cosine from the sine");
    }
}

TEST_F(TrigCore, SineAndCosineOfShortArguments) {
    for (int i = 0; i < ROUNDS; ++i) {
        const auto n = static_cast<uint64_t>(random.Between(1, int64_t{1} << random.Between(1, 31)));
        const uint64_t longest = 0xC9FFFFFF; // 0.789
        for (const uint64_t m : {n, longest - n}) {
            if (m == 0 || m > longest) continue;
            Real value(384), exact(1000);
            mpfr_set_ui_2exp(value, m, -32, MPFR_RNDN);
            Extended s, c;
            trig::sinCosShort(m, s, c);
            mpfr_sin(exact, value, MPFR_RNDN);
            expectWithin(379, s, exact, "sine");
            mpfr_cos(exact, value, MPFR_RNDN);
            expectWithin(379, c, exact, "cosine");
        }
    }
}

TEST_F(TrigCore, TheHyperbolicSeriesKeepsItsBound) {
    for (int i = 0; i < ROUNDS; ++i) {
        const Extended x = DrawSmall();
        Real value(384), exact(1500);
        toReal(x, value);
        Extended s, c;
        trig::sinhCoshSeries(x, s, c);
        mpfr_sinh(exact, value, MPFR_RNDN);
        expectWithin(379, s, exact, "hyperbolic sine");
        mpfr_cosh(exact, value, MPFR_RNDN);
        expectWithin(379, c, exact, "hyperbolic cosine");
    }
}

TEST_F(TrigCore, TheReductionKeepsItsBound) {
    for (int i = 0; i < ROUNDS; ++i) {
        const Extended x = Draw(i % 50 == 0 ? random.Between(1000, 32768) : random.Between(-3, 400));
        Real value(384), turns(34000), exact(34000);
        toReal(x, value);
        const trig::Reduced r = trig::reduceAngle(x);
        mpfr_const_pi(exact, MPFR_RNDN);
        mpfr_div_2ui(exact, exact, 1, MPFR_RNDN);
        mpfr_div(turns, value, exact, MPFR_RNDN);
        mpfr_rint(turns, turns, MPFR_RNDN);
        mpfr_mul(exact, exact, turns, MPFR_RNDN);
        mpfr_sub(exact, value, exact, MPFR_RNDN);
        EXPECT_EQ(r.negative, mpfr_sgn(mpfr_srcptr(exact)) < 0);
        mpfr_abs(exact, exact, MPFR_RNDN);
        expectWithin(379, r.magnitude, exact, "reduced angle");
        mpfr_fmod_ui(turns, turns, 4, MPFR_RNDN);
        EXPECT_EQ(r.quadrant, mpfr_get_ui(turns, MPFR_RNDN));
    }
}

TEST_F(TrigCore, TheArcTangentKeepsItsBound) {
    for (int i = 0; i < ROUNDS; ++i) {
        const bool near = random.Chance(70);
        const int64_t reach = near ? 8 : 500;
        const Extended n = Draw(random.Between(-reach, reach)), d = Draw(random.Between(-reach, reach));
        Real over(384), under(384), exact(1500);
        toReal(n, over);
        toReal(d, under);
        Extended y;
        trig::arctangent(n, d, y);
        mpfr_atan2(exact, over, under, MPFR_RNDN);
        expectWithin(376, y, exact, "arc tangent");
    }
}

} // namespace oracle::test_trig_core
