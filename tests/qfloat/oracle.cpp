// SPDX-License-Identifier: MIT
#include "oracle.h"

#include <cstdio>
#include <functional>

namespace oracle {

namespace {

// Prints the seed once when the program starts.
class SeedPrinter : public ::testing::Environment {
public:
    void SetUp() override {
        std::printf("[ SEED     ] %s\n", seedText().c_str());
        std::fflush(stdout);
    }
};

const auto* const PRINTER = ::testing::AddGlobalTestEnvironment(new SeedPrinter);

std::string testName() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    return std::string(info->test_suite_name()) + "." + info->name();
}

// A hash with the same value on every platform (FNV-1a).
uint64_t hash(const std::string& text) {
    uint64_t h = 0xCBF29CE484222325;
    for (const char c : text) h = (h ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return h;
}

} // namespace

Seeded::Seeded() : random(hash(testName())), trace(__FILE__, __LINE__, seedText()) {
    RecordProperty("seed", std::to_string(testSeed()));
}

Rounded roundToEven(const Real& value) {
    Real t(MANTISSA_BITS);
    mpfr_set(t, value, MPFR_RNDN);
    return roundHalfUp(t);
}

Number overflowValue(uint32_t sign) {
    Number q;
    q.fill(0xFFFFFFFF);
    q[0] = sign;
    q[1] = static_cast<uint32_t>(OVERFLOW_EXPONENT);
    q[2] = 0;
    return q;
}

Number exactly(const Real& value) {
    if (mpfr_zero_p(value)) return Number{};
    const Rounded r = roundHalfUp(value);
    const Number q = store(r);
    const bool same = r.exponent >= 1 && r.exponent <= OVERFLOW_EXPONENT && mpfr_equal_p(Real(q), value) != 0;
    EXPECT_TRUE(same) << "the expected value is no number of this format";
    return q;
}

Number withinRange(const Rounded& value, int& code) {
    if (value.exponent > OVERFLOW_EXPONENT) {
        code = 3;
        return overflowValue(value.negative ? NEGATIVE_SIGN : 0);
    }
    return value.exponent < 1 ? Number{} : store(value);
}

double errorInUlps(const Number& got, const Real& exact) {
    Real difference(mpfr_get_prec(exact) + 400);
    mpfr_sub(difference, Real(got), exact, MPFR_RNDA);
    if (mpfr_zero_p(difference)) return 0;
    mpfr_mul_2si(difference, difference, MANTISSA_BITS - mpfr_get_exp(exact), MPFR_RNDA);
    mpfr_abs(difference, difference, MPFR_RNDA);
    return mpfr_get_d(difference, MPFR_RNDA);
}

Number scaled(const std::string& hexInteger, int64_t exponent) {
    Real value(2000);
    mpfr_set_str(value, hexInteger.c_str(), 16, MPFR_RNDN);
    mpfr_mul_2si(value, value, exponent, MPFR_RNDN);
    return exactly(value);
}

Number decimal(const std::string& text) {
    Real value(2000);
    mpfr_set_str(value, text.c_str(), 10, MPFR_RNDN);
    return mpfr_zero_p(value) ? Number{} : store(roundHalfUp(value));
}

namespace {

std::string showWords(const uint32_t* words, size_t count) {
    std::string text = "{";
    for (size_t i = 0; i < count; ++i) {
        char word[16];
        std::snprintf(word, sizeof word, i == 0 ? "%08X" : " %08X", static_cast<unsigned>(words[i]));
        text += word;
    }
    return text + "}";
}

void setRuns(Random& random, Number& q) {
    bool one = random.Chance(50);
    int64_t left = 0;
    for (int bit = 0; bit < MANTISSA_BITS; ++bit) {
        if (left-- == 0) {
            one = !one;
            left = random.Between(1, 80);
        }
        const auto mask = uint32_t{1} << (31 - bit % 32);
        auto& word = q[static_cast<size_t>(3 + bit / 32)];
        word = one ? word | mask : word & ~mask;
    }
}

} // namespace

std::string show(const Number& q) {
    return showWords(q.data(), q.size());
}
std::string show(const Register& r) {
    return showWords(r.data(), r.size());
}

Number randomMantissa(Random& random) {
    Number q{};
    switch (random.Between(0, 7)) {
    case 0:
    case 1: // dense
        for (size_t i = 3; i < 14; ++i) q[i] = random.Word();
        break;
    case 2: // sparse
        for (int n = 0; n < 6; ++n)
            q[static_cast<size_t>(random.Between(3, 13))] |= 1U << random.Between(0, 31);
        break;
    case 3: // one word
        q[3] = random.Word();
        break;
    case 4: // short: the leading words only
        for (int64_t left = random.Between(1, 9); left > 0; --left)
            q[static_cast<size_t>(2 + left)] = random.Word();
        break;
    case 5: // long runs of equal bits
        setRuns(random, q);
        break;
    case 6: // all ones but the last word, or with a few bits missing
        for (size_t i = 3; i < 14; ++i) q[i] = 0xFFFFFFFF;
        if (random.Chance(50)) q[13] = random.Word();
        if (random.Chance(50)) q[static_cast<size_t>(random.Between(3, 13))] ^= 1U << random.Between(0, 31);
        break;
    default: // a power of two, or just above one
        if (random.Chance(50)) q[13] = static_cast<uint32_t>(random.Between(0, 8192));
        break;
    }
    q[3] |= 0x80000000;
    return q;
}

int64_t randomExponent(Random& random) {
    switch (random.Between(0, 9)) {
    case 0: return random.Between(1, 400);
    case 1: return random.Between(0xFE00, 0xFFFF);
    case 2: return random.Chance(50) ? 1 : 0xFFFF;
    case 3:
    case 4: return random.Between(1, 0xFFFF);
    default: return random.Between(BIAS - 400, BIAS + 400);
    }
}

Number randomOperand(Random& random) {
    if (random.Chance(2)) return Number{};
    const uint32_t sign = random.Chance(50) ? NEGATIVE_SIGN : 0;
    if (random.Chance(2)) return overflowValue(sign);
    Number q = randomMantissa(random);
    q[0] = sign;
    q[1] = static_cast<uint32_t>(randomExponent(random));
    return q;
}

Number randomPartner(Random& random, const Number& a) {
    const auto kind = random.Between(0, 9);
    if (kind <= 2 || a[1] == 0) return randomOperand(random);
    if (kind == 3) {
        Number same = a;
        if (random.Chance(50)) same[0] = ~same[0];
        return same;
    }
    if (kind <= 6) { // of similar size
        Number b = randomMantissa(random);
        b[0] = random.Chance(50) ? NEGATIVE_SIGN : 0;
        const int64_t reach = random.Chance(30) ? 3 : 360;
        const int64_t exponent = static_cast<int64_t>(a[1]) + random.Between(-reach, reach);
        b[1] = static_cast<uint32_t>(exponent < 1 ? 1 : exponent > 0xFFFF ? 0xFFFF : exponent);
        return b;
    }
    // Close to a or -a: a few thousand units of the last place away, or a few units of some higher bit.
    mpz_class mantissa = wordsToInteger(a.data(), 3, 13);
    mpz_class offset =
        static_cast<long>(random.Between(0, 3) == 0 ? random.Between(4090, 4100) : random.Between(1, 9000));
    if (random.Chance(25)) offset <<= static_cast<unsigned long>(random.Between(0, 330));
    mantissa += random.Chance(50) ? offset : mpz_class(-offset);
    int64_t exponent = a[1];
    if (mantissa >= power2(MANTISSA_BITS)) {
        mantissa >>= 1;
        exponent = exponent < 0xFFFF ? exponent + 1 : exponent;
    } else if (mantissa < power2(MANTISSA_BITS - 1)) {
        mantissa = mantissa * 2 + static_cast<long>(random.Between(0, 1));
        if (mantissa < power2(MANTISSA_BITS - 1)) mantissa = power2(MANTISSA_BITS - 1);
        exponent = exponent > 1 ? exponent - 1 : exponent;
    }
    return store(Rounded{random.Chance(50), exponent, mantissa});
}

} // namespace oracle
