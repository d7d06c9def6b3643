// SPDX-License-Identifier: MIT
//
// Speed rows of the elementary functions.
#include "ratio.h"

#include <memory>

namespace {

using bench::Operands;

constexpr unsigned long factorialOf = 1000;
constexpr int quotientBits = 50; // fifteen digits

struct Workspace {
    Operands roots{11, -100, 100, true};
    Operands exponents{12, -5, 10};
    Operands logarithms{13, -100, 100, true};
    Operands nearOne{14, 1, 1, true}; // 1 .. 2
    Operands bases{15, -20, 20, true}, powers{16, -5, 9};
    Operands divisors{17, 0, 0}, dividends{18, quotientBits, quotientBits};
    Operands hugeDividends{19, 20000, 20000};
    qfloat result = {}, whole = {};
    mpfr_t peerResult;

    Workspace() {
        mpfr_init2(peerResult, bench::precision);
        const int64_t n = factorialOf;
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
        name, bar, [=](size_t i) { ours((*w.*operands).ours(i), w->result); },
        [=](size_t i) { peer(w->peerResult, (*w.*operands).peer(i), MPFR_RNDN); });
}

void addRemainder(const Shared& w, const char* name, double bar, Operands Workspace::*dividends) {
    bench::addRow(
        name, bar, [=](size_t i) { qremain(w->divisors.ours(i), (*w.*dividends).ours(i), w->result); },
        [=](size_t i) { mpfr_fmod(w->peerResult, (*w.*dividends).peer(i), w->divisors.peer(i), MPFR_RNDN); });
}

void addRows() {
    const auto w = std::make_shared<Workspace>();
    addUnary(w, "square root", 4.6, &Workspace::roots, qsqrt, mpfr_sqrt);
    addUnary(w, "exp", 1.5, &Workspace::exponents, qexp, mpfr_exp);
    addUnary(w, "ln", 1.3, &Workspace::logarithms, qlog, mpfr_log);
    addUnary(w, "ln of 1 to 2", 1.3, &Workspace::nearOne, qlog, mpfr_log);
    bench::addRow(
        "power", 1.5, [w](size_t i) { qpow(w->bases.ours(i), w->powers.ours(i), w->result); },
        [w](size_t i) { mpfr_pow(w->peerResult, w->bases.peer(i), w->powers.peer(i), MPFR_RNDN); });
    bench::addRow(
        "factorial of 1000", 0.6, [w](size_t) { qfac(w->whole, w->result); },
        [w](size_t) { mpfr_fac_ui(w->peerResult, factorialOf, MPFR_RNDN); });
    addRemainder(w, "remainder, 15-digit quotient", 2.0, &Workspace::dividends);
    addRemainder(w, "remainder, 6000-digit quotient", 10.0, &Workspace::hugeDividends);
}

const bench::RowGroup group(addRows);

} // namespace
