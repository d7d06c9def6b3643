// SPDX-License-Identifier: MIT
//
// Speed rows of the elementary functions.
#include "ratio.h"

#include <memory>

namespace {

using bench::Operands;

constexpr unsigned long FACTORIAL_OF = 1000;
constexpr int QUOTIENT_BITS = 50; // fifteen digits

struct Workspace {
    Operands roots{11, -100, 100, true};
    Operands exponents{12, -5, 10};
    Operands logarithms{13, -100, 100, true};
    Operands nearOne{14, 1, 1, true}; // 1 .. 2
    Operands bases{15, -20, 20, true}, powers{16, -5, 9};
    Operands divisors{17, 0, 0}, dividends{18, QUOTIENT_BITS, QUOTIENT_BITS};
    Operands hugeDividends{19, 20000, 20000};
    qfloat result = {}, whole = {};
    mpfr_t peerResult;

    Workspace() {
        mpfr_init2(peerResult, bench::PRECISION);
        const int64_t n = FACTORIAL_OF;
        ltoq(&n, whole);
    }
    ~Workspace() { mpfr_clear(peerResult); }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
};

using Shared = std::shared_ptr<Workspace>;

void addUnary(const Shared& w, const char* name, double bar, Operands Workspace::*operands,
              void (*ours)(const qfloat, qfloat), int (*peer)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)) {
    bench::addRow(
        name, bar, [=](size_t i) { ours((*w.*operands).Ours(i), w->result); },
        [=](size_t i) { peer(w->peerResult, (*w.*operands).Peer(i), MPFR_RNDN); });
}

void addRemainder(const Shared& w, const char* name, double bar, Operands Workspace::*dividends) {
    bench::addRow(
        name, bar, [=](size_t i) { qremain(w->divisors.Ours(i), (*w.*dividends).Ours(i), w->result); },
        [=](size_t i) { mpfr_fmod(w->peerResult, (*w.*dividends).Peer(i), w->divisors.Peer(i), MPFR_RNDN); });
}

void addRows() {
    const auto w = std::make_shared<Workspace>();
    addUnary(w, "square root", 0.9, &Workspace::roots, qsqrt, mpfr_sqrt);
    addUnary(w, "exp", 1.0, &Workspace::exponents, qexp, mpfr_exp);
    addUnary(w, "ln", 1.0, &Workspace::logarithms, qlog, mpfr_log);
    addUnary(w, "ln of 1 to 2", 1.0, &Workspace::nearOne, qlog, mpfr_log);
    bench::addRow(
        "power", 1.0, [w](size_t i) { qpow(w->bases.Ours(i), w->powers.Ours(i), w->result); },
        [w](size_t i) { mpfr_pow(w->peerResult, w->bases.Peer(i), w->powers.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "factorial of 1000", 0.6, [w](size_t) { qfac(w->whole, w->result); },
        [w](size_t) { mpfr_fac_ui(w->peerResult, FACTORIAL_OF, MPFR_RNDN); });
    addRemainder(w, "remainder, 15-digit quotient", 0.5, &Workspace::dividends);
    addRemainder(w, "remainder, 6000-digit quotient", 0.9, &Workspace::hugeDividends);
}

const bench::RowGroup GROUP(addRows);

} // namespace
