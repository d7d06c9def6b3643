// SPDX-License-Identifier: MIT
#include "ratio.h"

#include <memory>

namespace {

using bench::OPERAND_COUNT;
using bench::Operands;

struct Workspace {
    Operands a{1, -20, 20}, b{2, -20, 20};
    qfloat result = {};
    mpfr_t peerResult;
    std::vector<std::string> texts;
    char buffer[160] = {};
    int order = 0;
    double machine = 0;

    Workspace() {
        mpfr_init2(peerResult, bench::PRECISION);
        std::mt19937 random(3);
        for (size_t i = 0; i < OPERAND_COUNT; ++i) {
            std::string text = {static_cast<char>('1' + random() % 9), '.'};
            for (int digit = 0; digit < 99; ++digit) text += static_cast<char>('0' + random() % 10);
            texts.push_back(text);
        }
    }
    ~Workspace() { mpfr_clear(peerResult); }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
};

void addRows() {
    const auto w = std::make_shared<Workspace>();
    constexpr unsigned long ONE_WORD = 4000000007UL;
    static qfloat divisor, multiplier;
    asctoq("4000000007", divisor);
    asctoq("7", multiplier);

    bench::addRow(
        "add", 1.0, [w](size_t i) { qadd(w->a.Ours(i), w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_add(w->peerResult, w->a.Peer(i), w->b.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "subtract", 1.0, [w](size_t i) { qsub(w->a.Ours(i), w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_sub(w->peerResult, w->b.Peer(i), w->a.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "multiply", 0.65, [w](size_t i) { qmul(w->a.Ours(i), w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_mul(w->peerResult, w->a.Peer(i), w->b.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "multiply by one word", 0.65, [w](size_t i) { qmuli(multiplier, w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_mul_ui(w->peerResult, w->b.Peer(i), 7, MPFR_RNDN); });
    bench::addRow(
        "divide", 0.85, [w](size_t i) { qdiv(w->a.Ours(i), w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_div(w->peerResult, w->b.Peer(i), w->a.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "divide by one word", 1.0, [w](size_t i) { qdiv(divisor, w->b.Ours(i), w->result); },
        [w](size_t i) { mpfr_div_ui(w->peerResult, w->b.Peer(i), ONE_WORD, MPFR_RNDN); });
    bench::addRow(
        "compare", 0.8, [w](size_t i) { w->order = qcmp(w->a.Ours(i), w->b.Ours(i)); },
        [w](size_t i) { w->order = mpfr_cmp(w->a.Peer(i), w->b.Peer(i)); });
    bench::addRow(
        "floor", 0.8, [w](size_t i) { qfloor(w->a.Ours(i), w->result); },
        [w](size_t i) { mpfr_floor(w->peerResult, w->a.Peer(i)); });
    bench::addRow(
        "to a double", 0.8, [w](size_t i) { qtoe(w->a.Ours(i), &w->machine); },
        [w](size_t i) { w->machine = mpfr_get_d(w->a.Peer(i), MPFR_RNDN); });
    bench::addRow(
        "parse 100 digits", 0.8, [w](size_t i) { asctoq(w->texts[i].c_str(), w->result); },
        [w](size_t i) { mpfr_set_str(w->peerResult, w->texts[i].c_str(), 10, MPFR_RNDN); });
    bench::addRow(
        "print 100 digits", 0.8, [w](size_t i) { qtoasc(w->a.Ours(i), w->buffer, 99); },
        [w](size_t i) {
            mpfr_exp_t exponent;
            mpfr_get_str(w->buffer, &exponent, 10, 100, w->a.Peer(i), MPFR_RNDN);
        });
}

const bench::RowGroup GROUP(addRows);

} // namespace
