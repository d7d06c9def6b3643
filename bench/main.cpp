// SPDX-License-Identifier: MIT
//
// usage: tallyquill_bench [Google Benchmark options]
//        tallyquill_bench --rows
//        tallyquill_bench --count ROW
//
// Prints one table: operation, ours, peer (MPFR at 352 bits unless the row's name says otherwise), ratio,
// bar; behind it the geometric mean of the ratios. --rows only names the rows, and --count only does our
// operation of a row once with each operand, for whoever counts instructions.
#include "ratio.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <map>

namespace {

constexpr double BAR_OF_MEAN = 0.28;

struct Row {
    std::string name;
    double bar;
    std::function<void(size_t)> ours;
};

std::vector<Row>& rows() {
    static std::vector<Row> list;
    return list;
}

std::vector<void (*)()>& groups() {
    static std::vector<void (*)()> list;
    return list;
}

void registerSide(const std::string& name, std::function<void(size_t)> operation) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [operation](benchmark::State& state) {
                                     size_t i = 0;
                                     for (auto _ : state) {
                                         operation(i);
                                         i = (i + 1) % bench::OPERAND_COUNT;
                                     }
                                 })
        ->Unit(benchmark::kNanosecond)
        ->MinTime(0.005)
        ->Repetitions(15);
}

// Keeps the fastest repetition of each side: what the machine's other work adds is never negative.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const auto found = fastest.find(run.run_name.function_name);
            const double time = run.GetAdjustedCPUTime();
            if (found == fastest.end()) {
                fastest.emplace(run.run_name.function_name, time);
            } else {
                found->second = std::min(found->second, time);
            }
        }
    }

    void Finalize() override {
        std::printf("%-28s %10s %10s %7s %7s\n", "operation", "ours ns", "peer ns", "ratio", "bar");
        double logarithms = 0;
        int count = 0;
        for (const Row& row : rows()) {
            const auto ours = fastest.find(row.name + "/ours");
            const auto peer = fastest.find(row.name + "/peer");
            if (ours == fastest.end() || peer == fastest.end()) continue;
            const double ratio = ours->second / peer->second;
            std::printf("%-28s %10.1f %10.1f %7.2f %7.2f%s\n", row.name.c_str(), ours->second, peer->second,
                        ratio, row.bar, ratio > row.bar ? "  above the bar" : "");
            logarithms += std::log(ratio);
            ++count;
        }
        const double mean = count > 0 ? std::exp(logarithms / count) : 0;
        std::printf("geometric mean of %-3d rows %29.3f %7.2f%s\n", count, mean, BAR_OF_MEAN,
                    mean > BAR_OF_MEAN ? "  above the bar" : "");
    }

private:
    std::map<std::string, double> fastest;
};

} // namespace

namespace bench {

RowGroup::RowGroup(void (*add)()) {
    groups().push_back(add);
}

void addRow(const std::string& name, double bar, std::function<void(size_t)> ours,
            std::function<void(size_t)> peer) {
    rows().push_back({name, bar, ours});
    registerSide(name + "/ours", std::move(ours));
    registerSide(name + "/peer", std::move(peer));
}

// A name that a counter of instructions can be told.
__attribute__((noinline)) static void allOperands(const std::function<void(size_t)>& operation) {
    for (size_t i = 0; i < OPERAND_COUNT; ++i) operation(i);
}

void toPeer(const qfloat q, mpfr_ptr m) {
    mpz_t mantissa;
    mpz_init(mantissa);
    mpz_import(mantissa, 11, 1, sizeof *q, 0, 0, q + 3);
    mpfr_set_z_2exp(m, mantissa, static_cast<mpfr_exp_t>(q[1]) - 0x8000 - 352, MPFR_RNDN);
    if (q[0] != 0) mpfr_neg(m, m, MPFR_RNDN);
    mpz_clear(mantissa);
}

Operands::Operands(unsigned seed, int lowest, int highest, bool positive)
    : numbers(OPERAND_COUNT * 14), peers(OPERAND_COUNT) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> exponent(lowest, highest);
    for (size_t i = 0; i < OPERAND_COUNT; ++i) {
        uint32_t* q = Ours(i);
        q[0] = !positive && (random() & 1) != 0 ? 0xFFFFFFFF : 0;
        q[1] = static_cast<uint32_t>(0x8000 + exponent(random));
        q[2] = 0;
        for (int word = 3; word < 14; ++word) q[word] = static_cast<uint32_t>(random());
        q[3] |= 0x80000000;
        mpfr_init2(Peer(i), PRECISION);
        toPeer(q, Peer(i));
    }
}

Operands::~Operands() {
    for (__mpfr_struct& m : peers) mpfr_clear(&m);
}

} // namespace bench

int main(int argc, char** argv) {
    for (void (*add)() : groups()) add();
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--rows") {
        for (const Row& row : rows()) std::puts(row.name.c_str());
        return 0;
    }
    if (option == "--count") {
        const auto row = std::find_if(rows().begin(), rows().end(),
                                      [&](const Row& one) { return argc == 3 && one.name == argv[2]; });
        if (row == rows().end()) return 2;
        bench::allOperands(row->ours);
        return 0;
    }
    std::vector<char*> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
