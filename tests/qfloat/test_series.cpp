// SPDX-License-Identifier: MIT
//
// The steps of Horner's rule against GMP integers: each is cut by less than its header says.
#include "../cases.h"
#include "oracle.h"
#include "qseries.h"

#include <algorithm>

namespace oracle::test_series {

using limb::Signs;

constexpr int CASES = cases(5000), MOST_STEPS = 5;

mpz_class integer(const uint64_t* limbs, int n) {
    mpz_class z;
    mpz_import(z.get_mpz_t(), static_cast<size_t>(n), -1, sizeof *limbs, 0, 0, limbs);
    return z;
}

class HornerSteps : public Seeded {
protected:
    // Dense, all ones, or with zeros.
    void Fill(uint64_t* limbs, int n) {
        const auto style = random.Between(0, 3);
        for (int i = 0; i < n; ++i) {
            limbs[i] = style == 0 ? ~uint64_t{0} : style == 1 && random.Chance(50) ? 0 : random.Next();
        }
    }

    // Draws a run of steps, and checks that it is its single steps and that each is cut by less than `cut`
    // units. `factor` makes what stands for x from its limbs.
    template <Signs SIGNS, typename MakeFactor>
    void Check(int n, int factorLimbs, int cut, MakeFactor factor) {
        uint64_t x[limb::COUNT], c[MOST_STEPS][limb::COUNT], sum[limb::COUNT], single[limb::COUNT];
        Fill(x, factorLimbs);
        Fill(sum, n);
        for (auto& row : c) Fill(row, n);
        std::copy(sum, sum + n, single);
        const auto steps = static_cast<int>(random.Between(1, MOST_STEPS));
        for (int i = steps - 1; i >= 0; --i) {
            const mpz_class exact =
                integer(x, factorLimbs) * integer(single, n); // in units of 2^(-64 factorLimbs)
            limb::hornerSteps<SIGNS>(factor(x), c[i], 0, 1, single, n);
            mpz_class product = integer(single, n) - integer(c[i], n);
            if (SIGNS == Signs::Alternating) product = -product;
            mpz_fdiv_r_2exp(product.get_mpz_t(), product.get_mpz_t(),
                            static_cast<unsigned long>(64 * n)); // sums wrap
            const mpz_class left = exact - (product << static_cast<unsigned long>(64 * factorLimbs));
            EXPECT_GE(sgn(left), 0) << n;
            EXPECT_TRUE(left < mpz_class(cut) << static_cast<unsigned long>(64 * factorLimbs)) << n;
        }
        limb::hornerSteps<SIGNS>(factor(x), c[steps - 1], limb::COUNT, steps, sum, n);
        EXPECT_TRUE(std::equal(sum, sum + n, single)) << n << " limbs, " << steps << " steps";
    }
};

TEST_F(HornerSteps, AreCutByNoMoreThanTheirHeaderSays) {
    const auto all = [](const uint64_t* x) { return x; };
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (int n = 1; n <= limb::COUNT; ++n) {
            Check<Signs::Equal>(n, n, n + 1, all);
            Check<Signs::Alternating>(n, n, n + 1, all);
        }
    }
}

TEST_F(HornerSteps, OfAFactorOfOneLimbAreCutByLessThanAUnit) {
    const auto first = [](const uint64_t* x) { return *x; };
    for (int i = 0; i < CASES && !HasFailure(); ++i) {
        for (int n = 1; n <= limb::COUNT; ++n) {
            Check<Signs::Equal>(n, 1, 1, first);
            Check<Signs::Alternating>(n, 1, 1, first);
        }
    }
}

} // namespace oracle::test_series
