// SPDX-License-Identifier: MIT
//
// usage: tallyquill_accuracy [seed [name]]
//
// Prints the table of docs/accuracy.md: for each row the number of arguments whose result lies inside the
// range, and the worst and mean error in units of the last place of the true value.  With a name, only the
// functions whose name begins with it.
#include "accuracy.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace accuracy {

namespace {

constexpr int MANTISSA_BITS = 352;
constexpr int64_t BIAS = 0x8000;

std::vector<Row>& rows() {
    static std::vector<Row> list;
    return list;
}

struct Value {
    explicit Value(mpfr_prec_t bits) { mpfr_init2(m, bits); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { mpfr_clear(m); }
    mpfr_t m;
};

// The error of z in units of the last place of `exact`, or of 2^-352.
double errorOf(const qfloat z, mpfr_srcptr exact, bool absolute) {
    Value got(MANTISSA_BITS), difference(PRECISION);
    toMpfr(z, got.m);
    mpfr_sub(difference.m, got.m, exact, MPFR_RNDN);
    if (mpfr_zero_p(difference.m)) return 0;
    const mpfr_exp_t size = absolute || mpfr_zero_p(exact) ? 0 : mpfr_get_exp(exact);
    mpfr_mul_2si(difference.m, difference.m, MANTISSA_BITS - size, MPFR_RNDN);
    return std::fabs(mpfr_get_d(difference.m, MPFR_RNDA));
}

// Whether the true value can be stored.
bool isInRange(mpfr_srcptr exact) {
    if (!mpfr_number_p(exact)) return false;
    if (mpfr_zero_p(exact)) return true;
    const mpfr_exp_t exponent = mpfr_get_exp(exact);
    return exponent > -BIAS && exponent < BIAS;
}

void measure(const Row& row, uint64_t seed) {
    Random random(seed);
    Value x(MANTISSA_BITS), y(MANTISSA_BITS), exact(PRECISION);
    double worst = 0, sum = 0;
    long used = 0;
    for (long i = 0; i < row.count; ++i) {
        qfloat qx = {}, qy = {}, qz = {};
        row.draw(random, qx, qy);
        toMpfr(qx, x.m);
        toMpfr(qy, y.m);
        row.truth(exact.m, x.m, y.m);
        if (!isInRange(exact.m)) continue;
        row.ours(qx, qy, qz);
        const double error = errorOf(qz, exact.m, row.absolute);
        worst = std::fmax(worst, error);
        sum += error;
        ++used;
    }
    std::printf("| `%s` | %s | %ld | %.7g%s | %.4f |\n", row.function.c_str(), row.arguments.c_str(), used,
                worst, row.absolute ? " (absolute)" : "", used != 0 ? sum / static_cast<double>(used) : 0.0);
    std::fflush(stdout);
}

} // namespace

void add(const Row& row) {
    rows().push_back(row);
}

void drawNumber(Random& random, int64_t lowest, int64_t highest, bool positive, qfloat q) {
    q[0] = positive || random.Next() % 2 != 0 ? 0 : 0xFFFFFFFF;
    q[1] = static_cast<uint32_t>(BIAS + random.Between(lowest, highest));
    q[2] = 0;
    for (int i = 3; i < 14; ++i) q[i] = static_cast<uint32_t>(random.Next() >> 32);
    q[3] |= 0x80000000;
}

void fromMpfr(mpfr_srcptr m, qfloat q) {
    qclear(q);
    if (mpfr_zero_p(m)) return;
    Value rounded(MANTISSA_BITS);
    mpfr_set(rounded.m, m, MPFR_RNDN);
    const mpfr_exp_t exponent = mpfr_get_exp(rounded.m);
    q[0] = mpfr_signbit(rounded.m) ? 0xFFFFFFFF : 0;
    q[1] = static_cast<uint32_t>(exponent + BIAS);
    mpfr_abs(rounded.m, rounded.m, MPFR_RNDN);
    mpfr_set_exp(rounded.m, 32);
    for (int i = 3; i < 14; ++i) {
        q[i] = static_cast<uint32_t>(mpfr_get_ui(rounded.m, MPFR_RNDZ));
        mpfr_sub_ui(rounded.m, rounded.m, q[i], MPFR_RNDN);
        mpfr_mul_2ui(rounded.m, rounded.m, 32, MPFR_RNDN);
    }
}

void toMpfr(const qfloat q, mpfr_ptr m) {
    mpfr_set_zero(m, 1);
    if (q[1] == 0) return;
    for (int i = 3; i < 14; ++i) {
        mpfr_mul_2ui(m, m, 32, MPFR_RNDN);
        mpfr_add_ui(m, m, q[i], MPFR_RNDN);
    }
    mpfr_mul_2si(m, m, static_cast<int64_t>(q[1]) - BIAS - MANTISSA_BITS, MPFR_RNDN);
    if (q[0] != 0) mpfr_neg(m, m, MPFR_RNDN);
}

} // namespace accuracy

int main(int argc, char** argv) {
    const uint64_t seed = argc > 1 ? std::strtoull(argv[1], nullptr, 0) : 20240229;
    const std::string name = argc > 2 ? argv[2] : "";
    std::printf("Seed %llu.\n\n", static_cast<unsigned long long>(seed));
    std::printf("| Function | Arguments | Count | Worst error | Mean error |\n|---|---|---|---|---|\n");
    for (const auto& row : accuracy::rows()) {
        if (row.function.compare(0, name.size(), name) == 0) accuracy::measure(row, seed);
    }
    return 0;
}
