// SPDX-License-Identifier: MIT
//
// The circular functions of degrees: exact angles, and all others against MPFR, which reduces them exactly
// too.
#include "../cases.h"
#include "oracle.h"
#include "qtrig.h"
#include "reference.h"

namespace oracle::test_degrees {

struct DegreeFunction {
    const char* name;
    Unary ours;
    int (*exact)(mpfr_ptr, mpfr_srcptr, unsigned long, mpfr_rnd_t);
    int64_t highest; // exponents below it are computed
};

const DegreeFunction FUNCTIONS[] = {
    {"sin", qsindeg, mpfr_sinu, 338}, {"cos", qcosdeg, mpfr_cosu, 338}, {"tan", qtandeg, mpfr_tanu, 3000}};

Number degrees(const std::string& text) {
    return decimal(text);
}

void expectNearest(const DegreeFunction& f, const Number& x) {
    const Outcome got = run(f.ours, x);
    Real exact(1000);
    f.exact(exact, Real(x), 360, MPFR_RNDZ);
    EXPECT_EQ(got.code, 0) << f.name << show(x);
    if (mpfr_zero_p(mpfr_srcptr(exact)) != 0) {
        EXPECT_EQ(got.value[1], 0U) << f.name << show(x);
    } else if (mpfr_inf_p(mpfr_srcptr(exact)) != 0) {
        EXPECT_EQ(got.value[1], 0x10000U) << f.name << show(x);
    } else {
        EXPECT_EQ(got.value, store(roundHalfUp(exact))) << f.name << show(x);
    }
}

const Number ZERO{};
const Number ONE = number(1);
const Number HALF = number(0.5);

TEST(Degrees, HaveExactSinesAndCosinesWhereThereAreSuch) {
    // By steps of 30 degrees: the sine, 2 where it is irrational.
    const double sines[12] = {0, 0.5, 2, 1, 2, 0.5, 0, -0.5, 2, -1, 2, -0.5};
    for (int step = -120; step <= 120; ++step) {
        const Number x = number(30.0 * step);
        const double sine = sines[(step % 12 + 12) % 12];
        const double cosine = sines[((step + 3) % 12 + 12) % 12];
        if (sine != 2) {
            EXPECT_EQ(0, qcmp(run(qsindeg, x).value.data(), number(sine).data())) << 30 * step;
        }
        if (cosine != 2) {
            EXPECT_EQ(0, qcmp(run(qcosdeg, x).value.data(), number(cosine).data())) << 30 * step;
        }
    }
}

TEST(Degrees, HaveExactTangentsAndPolesWithoutACode) {
    for (int turn = -3; turn <= 3; ++turn) {
        const auto tangent = [turn](double x) { return run(qtandeg, number(180.0 * turn + x)); };
        EXPECT_EQ(tangent(45), (Outcome{ONE, 0}));
        EXPECT_EQ(tangent(-45), (Outcome{negated(ONE), 0}));
        EXPECT_EQ(tangent(0).value[1], 0U);
        EXPECT_EQ(tangent(90).value[1], 0x10000U);
        EXPECT_EQ(tangent(90).code, 0);
    }
}

// 10^100 = 280 and 10^101 = 280 modulo 360.
TEST(Degrees, OfHugeAnglesAreThoseOfTheirRemainder) {
    EXPECT_EQ(run(qsindeg, degrees("1e100")), run(qsindeg, number(280)));
    EXPECT_EQ(run(qcosdeg, degrees("1e101")), run(qcosdeg, number(280)));
    EXPECT_EQ(run(qtandeg, degrees("-1e101")), run(qtandeg, number(-280)));
    EXPECT_EQ(run(qsindeg, degrees("36e99")), (Outcome{ZERO, 0}));
    EXPECT_EQ(run(qsindeg, degrees("360000000030")), (Outcome{HALF, 0}));
}

TEST(Degrees, OfTwoToThe333RadiansAndMoreAreRefusedBySineAndCosine) {
    Number limit = scaled("1", 333);
    qmul(qrad2deg, limit.data(), limit.data());
    for (const Unary f : {qsindeg, qcosdeg}) {
        EXPECT_EQ(run(f, degrees("1e200")), (Outcome{ZERO, 3}));
        EXPECT_EQ(run(f, degrees("-1e200")), (Outcome{ZERO, 3}));
        EXPECT_EQ(run(f, neighbor(limit, 2000000)), (Outcome{ZERO, 3})); // some 244 degrees more
        EXPECT_EQ(run(f, neighbor(limit, -4)).code, 0);
    }
    expectNearest(FUNCTIONS[2], degrees("1e200"));
    expectNearest(FUNCTIONS[2], degrees("1e9000"));
}

class RandomDegrees : public Seeded {};

// Where the reduced angle is as small as it can be: next to multiples of 15 degrees.
TEST_F(RandomDegrees, NextToExactAnglesAreTheNearestNumbers) {
    for (const DegreeFunction& f : FUNCTIONS) {
        for (int i = 0; i < cases(3000) && !HasFailure(); ++i) {
            const int64_t step =
                random.Chance(50) ? random.Between(-60, 60) : random.Between(-(1LL << 40), 1LL << 40);
            const Number exactly = number(15.0 * static_cast<double>(step == 0 ? 1 : step));
            expectNearest(f, neighbor(exactly, static_cast<int>(random.Between(-5000, 5000))));
        }
    }
}

TEST_F(RandomDegrees, ThatAreTinyHaveTheNearestNumbers) {
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        const Number x = randomWithin(random, -32000, -200, false);
        expectNearest(FUNCTIONS[0], x);
        expectNearest(FUNCTIONS[1], x);
        expectNearest(FUNCTIONS[2], x);
    }
    for (const Number& nothing : {ZERO, negated(ZERO)}) {
        EXPECT_EQ(run(qsindeg, nothing), (Outcome{nothing, 0}));
        EXPECT_EQ(run(qcosdeg, nothing), (Outcome{ONE, 0}));
        EXPECT_EQ(run(qtandeg, nothing), (Outcome{nothing, 0}));
    }
}

} // namespace oracle::test_degrees
