// SPDX-License-Identifier: MIT
#include "qtrig.h"
#include "ratio.h"

#include <memory>

namespace {

using bench::Operands;

using Function = void (*)(const qfloat, qfloat);
using Peer = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

struct Workspace {
    Workspace(unsigned seed, int lowest, int highest) : x(seed, lowest, highest) {
        mpfr_init2(peerResult, bench::PRECISION);
    }
    ~Workspace() { mpfr_clear(peerResult); }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    Operands x;
    qfloat result = {};
    mpfr_t peerResult;
};

// A function on random numbers 0.m * 2^e, e in lowest .. highest, of either sign.
void addRow(const char* name, double bar, Function ours, Peer peer, int lowest, int highest) {
    const auto w = std::make_shared<Workspace>(31, lowest, highest);
    bench::addRow(
        name, bar, [w, ours](size_t i) { ours(w->x.Ours(i), w->result); },
        [w, peer](size_t i) { peer(w->peerResult, w->x.Peer(i), MPFR_RNDN); });
}

void addRows() {
    addRow("sin", 1.0, qsin, mpfr_sin, -3, 4);
    addRow("sin, 2^100 to 2^300", 1.0, qsin, mpfr_sin, 101, 300);
    addRow("cos", 1.0, qcos, mpfr_cos, -3, 4);
    addRow("tan", 1.0, qtan, mpfr_tan, -3, 4);
    addRow("arctan", 0.9, qatn, mpfr_atan, -3, 4);
    addRow("arcsin", 0.9, qasin, mpfr_asin, -3, 0);
    addRow("arccos", 0.9, qacos, mpfr_acos, -3, 0);
    addRow("sinh", 1.0, qsinh, mpfr_sinh, -4, 5);
    addRow("cosh", 1.0, qcosh, mpfr_cosh, -4, 5);
    addRow("tanh", 1.0, qtanh, mpfr_tanh, -4, 5);
}

const bench::RowGroup GROUP(addRows);

} // namespace
