// SPDX-License-Identifier: MIT
#include "model.h"

#include <utility>

namespace model {

using namespace oracle;

namespace {

constexpr unsigned long REGISTER_BITS = 416;
constexpr unsigned long BELOW_HIGH_WORD = 384; // bits of the mantissa and the guard word

bool bit(const mpz_class& z, unsigned long index) {
    return mpz_tstbit(z.get_mpz_t(), index) != 0;
}

mpz_class lowBits(const mpz_class& z, unsigned long count) {
    return z % power2(count);
}

mpz_class highWord(const mpz_class& words) {
    return words >> BELOW_HIGH_WORD;
}

} // namespace

Work load(const Number& q) {
    return {q[0], q[1], wordsToInteger(q.data(), 2, 13) << 32};
}

Work load(const Register& r) {
    return {r[0], r[1], wordsToInteger(r.data(), 2, 14)};
}

Register toRegister(const Work& w) {
    Register r{};
    r[0] = w.sign;
    r[1] = static_cast<uint32_t>(w.exponent);
    integerToWords(w.words, r.data(), 2, 14);
    return r;
}

int64_t normalize(Work& w) {
    if (w.words == 0) return 0;
    const auto length = static_cast<int64_t>(mpz_sizeinbase(w.words.get_mpz_t(), 2));
    const int64_t left = static_cast<int64_t>(BELOW_HIGH_WORD) - length;
    if (left >= 0) {
        w.words <<= static_cast<unsigned long>(left);
    } else {
        w.words >>= static_cast<unsigned long>(-left);
    }
    return left;
}

void normalizeAndRound(Work& w, int& code) {
    const auto halve = [&w, &code] {
        w.words >>= 1;
        if (w.exponent > 0xFFFF) {
            w.exponent = OVERFLOW_EXPONENT;
            code = 3;
        } else {
            ++w.exponent;
        }
    };
    for (int i = 0; i < 3 && highWord(w.words) != 0; ++i) halve();
    for (int i = 0; i < 3 && !bit(w.words, BELOW_HIGH_WORD - 1); ++i) {
        if (w.exponent == 0) {
            code = 4;
        } else {
            w.words = lowBits(w.words << 1, REGISTER_BITS);
            --w.exponent;
        }
    }
    if (bit(w.words, 31)) w.words += power2(32);
    if (highWord(w.words) != 0) halve();
    w.words = (w.words >> 32) << 32;
}

namespace {

Number numberOf(const Work& w) {
    const Register r = toRegister(w);
    Number q;
    std::copy(r.begin(), r.begin() + 14, q.begin());
    return q;
}

Sum overflow(uint32_t sign) {
    Sum s{overflowValue(sign)};
    s.code = 3;
    s.ranged = true;
    return s;
}

// Equal exponents and equal mantissas.
Sum addEqual(const Work& x, const Work& y) {
    if (x.sign != y.sign || x.exponent == 0) return Sum{Number{}};
    if (x.exponent >= OVERFLOW_EXPONENT) return overflow(x.sign);
    Sum s{numberOf(y)};
    ++s.result[1];
    return s;
}

// Normalizes, takes the shift off the exponent; false when the result left the range (then `s` holds it).
bool settle(Work& w, uint32_t outputSign, Sum& s) {
    w.exponent -= normalize(w);
    if (w.exponent > OVERFLOW_EXPONENT) {
        s = overflow(outputSign);
        return false;
    }
    if (w.exponent < 0) {
        s = Sum{Number{}};
        s.ranged = true;
        return false;
    }
    return true;
}

} // namespace

Sum add(const Number& a, const Number& b, bool subtract, uint32_t outputSign) {
    Work x = load(a);
    Work y = load(b);
    if (subtract) x.sign = ~x.sign;
    int64_t distance = x.exponent - y.exponent;
    if (distance > 0) {
        std::swap(x, y);
        distance = -distance;
    }
    if (distance < -353) return Sum{numberOf(y)};
    if (distance != 0) {
        x.words >>= static_cast<unsigned long>(-distance);
    } else if (x.words == y.words) {
        return addEqual(x, y);
    } else if (x.words > y.words) {
        std::swap(x, y);
    }
    const bool added = x.sign == y.sign;
    y.words = added ? mpz_class(y.words + x.words) : mpz_class(y.words - x.words);
    Sum s{Number{}};
    if ((y.words >> 32) < 4095) {
        s.flushed = true;
        return s;
    }
    if (!settle(y, outputSign, s)) return s;
    if (added && bit(y.words, 31)) {
        y.words += power2(32);
        if (!settle(y, outputSign, s)) return s;
    }
    s.result = numberOf(y);
    return s;
}

uint64_t toDouble(const Number& q, int& code) {
    constexpr unsigned long WORD4 = 320; // the lowest bit of mantissa word 4
    const uint64_t sign = q[0] != 0 ? uint64_t{1} << 63 : 0;
    Work w = load(q);
    int64_t e = w.exponent - 31746;
    if (w.words == 0 || e < -52) return sign;
    if (e < 1) {
        w.words >>= static_cast<unsigned long>(31747 - w.exponent);
        e = 0;
    }
    const mpz_class below = lowBits(w.words >> WORD4, 11);
    const bool above = below > 0x400;
    const bool atHalf = below == 0x400;
    if (above || (atHalf && bit(w.words, WORD4 + 11) && lowBits(w.words, WORD4) != 0)) {
        w.words += power2(WORD4 + 11);
        if (highWord(w.words) != 0) {
            w.words >>= 1;
            ++e;
        } else if (e == 0 && bit(w.words, BELOW_HIGH_WORD - 1)) {
            e = 1;
        }
    }
    if (e >= 2047) {
        code = 3;
        return sign | 0x7FEFFFFFFFFFFFFF;
    }
    const mpz_class fraction = lowBits(w.words >> (BELOW_HIGH_WORD - 53), 52);
    return sign | (static_cast<uint64_t>(e) << 52) | fraction.get_ui();
}

} // namespace model
