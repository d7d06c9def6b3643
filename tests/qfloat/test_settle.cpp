// SPDX-License-Identifier: MIT
//
// The exact comparisons behind the rounding, against GMP integers.
#include "../cases.h"
#include "oracle.h"
#include "qexact.h"

namespace oracle::test_settle {

constexpr int CASES = cases(20000);

class Exact : public Seeded {
protected:
    // A mantissa of six limbs with its top bit set, often with zeros below.
    mpz_class Mantissa() {
        mpz_class z;
        const bool isShort = random.Chance(40);
        for (int i = 0; i < limb::COUNT; ++i) z = (z << 64) + mpz_class(isShort && i > 1 ? 0 : random.Next());
        mpz_setbit(z.get_mpz_t(), 383);
        return z;
    }

    // z as it is, or one unit beside it.
    mpz_class Beside(const mpz_class& z) { return z + random.Between(-1, 1); }

    static void ToLimbs(const mpz_class& z, uint64_t* limbs) {
        std::fill(limbs, limbs + limb::COUNT, 0);
        mpz_export(limbs, nullptr, -1, sizeof *limbs, 0, 0, z.get_mpz_t());
    }
};

int sign(int order) {
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

TEST_F(Exact, ProductsCompare) {
    for (int i = 0; i < CASES; ++i) {
        const mpz_class x = Mantissa(), y = Mantissa();
        const mpz_class z = Beside(mpz_class(x * y) >> 384);
        uint64_t lx[limb::COUNT], ly[limb::COUNT], lz[limb::COUNT];
        ToLimbs(x, lx), ToLimbs(y, ly), ToLimbs(z, lz);
        ASSERT_EQ(limb::compareProduct(lx, ly, lz), sign(cmp(x * y, z << 384)));
    }
}

TEST_F(Exact, NumbersScaledByPowersOfTenCompare) {
    for (int i = 0; i < CASES; ++i) {
        const long n = random.Between(0, i % 400 == 0 ? 32767 : random.Chance(50) ? 12 : 300);
        mpz_class power;
        mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(n));
        const mpz_class x = Mantissa(), product = x * power;
        const unsigned long below = mpz_sizeinbase(product.get_mpz_t(), 2) - 384;
        const mpz_class y = Beside(product >> below);
        if (mpz_sizeinbase(y.get_mpz_t(), 2) != 384) continue;
        const int64_t shift = random.Between(-1, 1) * random.Between(0, 1);
        limb::Extended ex, ey;
        ex.exponent = random.Between(-40000, 40000);
        ey.exponent = ex.exponent + static_cast<int64_t>(below) + shift;
        ToLimbs(x, ex.limb), ToLimbs(y, ey.limb);
        const int expected = shift != 0 ? (shift > 0 ? -1 : 1) : sign(cmp(product, y << below));
        ASSERT_EQ(limb::compareScaledTen(ex, static_cast<int>(n), ey), expected);
        ASSERT_EQ(limb::compareScaledTen(ey, static_cast<int>(-n), ex), -expected);
    }
}

// Below, at and above the half, as far as the error reaches and one unit further.
TEST(Settle, AsksOnlyNextToTheHalf) {
    constexpr uint32_t ERROR = 5;
    constexpr int64_t HALF = int64_t{1} << 31;
    for (int64_t offset = -7; offset <= 7; ++offset) {
        for (const bool reached : {false, true}) {
            const auto guard = static_cast<uint64_t>(HALF + offset);
            uint64_t z[limb::COUNT] = {0xABCDEF0100000000 + guard, 1, 2, 3, 4, limb::TOP_BIT};
            bool asked = false;
            limb::settleByComparison(z, ERROR, [&](const uint64_t* c) {
                asked = true;
                EXPECT_EQ(c[0], 0xABCDEF0180000000U);
                return reached;
            });
            EXPECT_EQ(asked, offset >= -5 && offset <= 5) << offset;
            const bool up = (z[0] >> 31 & 1) != 0;
            EXPECT_EQ(up, asked ? reached : offset > 0) << offset;
            EXPECT_EQ(z[0] >> 32, 0xABCDEF01U);
            EXPECT_EQ(z[1], 1U);
        }
    }
}

} // namespace oracle::test_settle
