// SPDX-License-Identifier: MIT
//
// The six-limb arithmetic under the number type, against GMP integers and against its portable form.
#include "../cases.h"
#include "oracle.h"
#include "portable_limb.h"
#include "qlimb.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace oracle::test_limb {

using limb::COUNT;
using Limbs = std::vector<uint64_t>;

constexpr int CASES = cases(100000);

// Limbs of dense, sparse, all-zero and all-one bits: the patterns that carry far and divide badly.
class Source {
public:
    uint64_t One() {
        switch (random() % 6) {
        case 0: return 0;
        case 1: return ~uint64_t{0};
        case 2: return uint64_t{1} << (random() % 64);
        case 3: return ~(uint64_t{1} << (random() % 64));
        default: return random();
        }
    }
    Limbs Six(bool normalized) {
        Limbs x(COUNT);
        const bool dense = (random() & 1) != 0;
        for (uint64_t& l : x) l = dense ? random() : One();
        if (normalized) x[COUNT - 1] |= limb::TOP_BIT;
        return x;
    }
    std::mt19937_64 random{testSeed()};
};

class Integer {
public:
    Integer() { mpz_init(z); }
    explicit Integer(const Limbs& x) : Integer() {
        mpz_import(z, x.size(), -1, sizeof(uint64_t), 0, 0, x.data());
    }
    ~Integer() { mpz_clear(z); }
    Integer(const Integer&) = delete;
    Integer& operator=(const Integer&) = delete;
    mpz_t z;
};

// |a - b| <= limit units of the lowest limb.
bool within(const Integer& a, const Integer& b, unsigned long limit) {
    Integer d;
    mpz_sub(d.z, a.z, b.z);
    return mpz_cmpabs_ui(d.z, limit) <= 0;
}

TEST(Limb, ProductIsTheTopHalfLessAtMostSixUnits) {
    Source source;
    for (int i = 0; i < CASES; ++i) {
        const Limbs x = source.Six(true), y = source.Six(true);
        Limbs z(COUNT), squared(COUNT);
        limb::multiply(x.data(), y.data(), z.data());
        limb::square(x.data(), squared.data());
        Integer product;
        mpz_mul(product.z, Integer(x).z, Integer(y).z);
        mpz_fdiv_q_2exp(product.z, product.z, 64 * COUNT);
        ASSERT_TRUE(within(product, Integer(z), 6)) << "case " << i;
        ASSERT_GE(mpz_cmp(product.z, Integer(z).z), 0) << "case " << i;
        mpz_mul(product.z, Integer(x).z, Integer(x).z);
        mpz_fdiv_q_2exp(product.z, product.z, 64 * COUNT);
        ASSERT_TRUE(within(product, Integer(squared), 6)) << "case " << i;
    }
}

TEST(Limb, QuotientIsWithinSixteenUnitsForOperandsThatCutBadly) {
    Limbs x = {0x76d6ce938ef28229, 0x7f212458609b1f40, 0xc06f6dd3cfb2706a,
               0xe037b6e9e7d93830, 0xfffffffffffffffa, 0x7fffffffffffffff};
    const Limbs y = {0xf7b5aa3b2e5762f3, 0xffffffffffffffff, 0xffffffffffffffff,
                     0xfffffffffffffffd, 0xfffffffffffffffd, 0x8000000000000000};
    Limbs z(COUNT);
    limb::divide(x.data(), y.data(), z.data());
    Integer quotient;
    mpz_mul_2exp(quotient.z, Integer(x).z, 64 * COUNT);
    mpz_fdiv_q(quotient.z, quotient.z, Integer(y).z);
    EXPECT_TRUE(within(quotient, Integer(z), 16));
}

TEST(Limb, QuotientIsWithinSixteenUnits) {
    Source source;
    for (int i = 0; i < CASES; ++i) {
        Limbs x = source.Six(false), y = source.Six(true);
        if (source.random() % 8 == 0) { // dividend just below the divisor: quotient digits of all ones
            x = y;
            x[0] -= 1;
        }
        if (limb::compare(x.data(), y.data()) >= 0) std::swap(x, y);
        if (!(y[COUNT - 1] & limb::TOP_BIT) || limb::compare(x.data(), y.data()) >= 0) continue;
        Limbs z(COUNT);
        limb::divide(x.data(), y.data(), z.data());
        Integer quotient;
        mpz_mul_2exp(quotient.z, Integer(x).z, 64 * COUNT);
        mpz_fdiv_q(quotient.z, quotient.z, Integer(y).z);
        ASSERT_TRUE(within(quotient, Integer(z), 16)) << "case " << i;
    }
}

TEST(Limb, QuotientByOneLimbIsExact) {
    Source source;
    for (int i = 0; i < CASES; ++i) {
        Limbs x = source.Six(false), y(COUNT), z(COUNT);
        y[COUNT - 1] = source.One() | limb::TOP_BIT;
        if (x[COUNT - 1] >= y[COUNT - 1]) x[COUNT - 1] = y[COUNT - 1] - 1;
        limb::divide(x.data(), y.data(), z.data());
        Integer quotient;
        mpz_mul_2exp(quotient.z, Integer(x).z, 64 * COUNT);
        mpz_fdiv_q(quotient.z, quotient.z, Integer(y).z);
        ASSERT_TRUE(within(quotient, Integer(z), 0)) << "case " << i;
    }
}

TEST(Limb, ShiftsMatchIntegerShiftsForEveryCount) {
    Source source;
    for (int n = 0; n <= 64 * COUNT + 70; ++n) {
        const Limbs x = source.Six(false);
        Limbs down = x, up = x;
        limb::shiftDown(down.data(), n);
        limb::shiftUp(up.data(), n);
        Integer expected;
        mpz_fdiv_q_2exp(expected.z, Integer(x).z, static_cast<mp_bitcnt_t>(n));
        ASSERT_TRUE(within(expected, Integer(down), 0)) << n;
        mpz_mul_2exp(expected.z, Integer(x).z, static_cast<mp_bitcnt_t>(n));
        mpz_fdiv_r_2exp(expected.z, expected.z, 64 * COUNT);
        ASSERT_TRUE(within(expected, Integer(up), 0)) << n;
    }
}

TEST(Limb, PortableSingleLimbArithmeticIsTheSame) {
    Source source;
    for (int i = 0; i < CASES; ++i) {
        const uint64_t x = source.One(), y = source.One();
        uint64_t high = 0, portableHigh = 0;
        ASSERT_EQ(limb::multiply(x, y, high), portable_limb::multiply(x, y, portableHigh));
        ASSERT_EQ(high, portableHigh);
        for (uint64_t carry = 0; carry <= 1; ++carry) {
            uint64_t ours = carry, portable = carry;
            ASSERT_EQ(limb::addCarry(x, y, ours), portable_limb::addCarry(x, y, portable));
            ASSERT_EQ(ours, portable);
            ours = portable = carry;
            ASSERT_EQ(limb::subtractBorrow(x, y, ours), portable_limb::subtractBorrow(x, y, portable));
            ASSERT_EQ(ours, portable);
        }
        const uint64_t d = std::max<uint64_t>(1, source.One());
        uint64_t rest = 0, portableRest = 0;
        ASSERT_EQ(limb::divideWide(y % d, x, d, rest), portable_limb::divideWide(y % d, x, d, portableRest));
        ASSERT_EQ(rest, portableRest);
    }
}

TEST(Limb, PortableMantissaArithmeticIsTheSame) {
    Source source;
    for (int i = 0; i < CASES; ++i) {
        Limbs x = source.Six(true), y = source.Six(true), ours(COUNT), portable(COUNT);
        limb::multiply(x.data(), y.data(), ours.data());
        portable_limb::multiply(x.data(), y.data(), portable.data());
        ASSERT_EQ(ours, portable);
        limb::square(x.data(), ours.data());
        portable_limb::square(x.data(), portable.data());
        ASSERT_EQ(ours, portable);
        ours = portable = x;
        const int n = static_cast<int>(source.random() % 400);
        limb::shiftDown(ours.data(), n);
        portable_limb::shiftDown(portable.data(), n);
        ASSERT_EQ(ours, portable);
        if (limb::compare(x.data(), y.data()) > 0) std::swap(x, y);
        if (x == y) continue;
        limb::divide(x.data(), y.data(), ours.data());
        portable_limb::divide(x.data(), y.data(), portable.data());
        ASSERT_EQ(ours, portable);
    }
}

TEST(Limb, PowersOfTenAreRightToTheirBound) {
    for (int n = 0; n < 16384; ++n) {
        limb::Extended p;
        limb::powerOfTen(n, p);
        Integer exact;
        mpz_ui_pow_ui(exact.z, 10, static_cast<unsigned long>(n));
        const size_t bits = mpz_sizeinbase(exact.z, 2);
        ASSERT_EQ(static_cast<size_t>(p.exponent), bits) << n;
        Integer ours(Limbs(p.limb, p.limb + COUNT));
        if (bits > 384) {
            mpz_fdiv_q_2exp(exact.z, exact.z, bits - 384);
        } else {
            mpz_mul_2exp(exact.z, exact.z, 384 - bits);
        }
        ASSERT_TRUE(within(exact, ours, n <= 160 ? 0 : 32)) << n;
    }
}

} // namespace oracle::test_limb
