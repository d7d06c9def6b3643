// SPDX-License-Identifier: MIT
//
// usage: tallyquill_accuracy [seed [count [name]]]
//
// Whether the elementary functions give the numbers nearest to the true values: prints the table of
// docs/accuracy.md.  `count` random arguments (1,000,000) and a hundredth of that of hard ones for each
// function, or for the one of that name; of qfac all arguments.  Where the true result is out of range
// another argument is drawn.  Ends with status 1 when a result is not the nearest number, or when there are
// not so many.
#include "exact.h"
#include "qwide.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr long MOST_DRAWS = 10; // for each result that is judged

struct Counts {
    long judged = 0, wrong = 0;
    uint64_t second = 0;
};

Counts count(const exact::Function& f, long cases, uint64_t seed,
             exact::Arguments (*draw)(const exact::Function&, exact::Engine&)) {
    exact::Engine engine(seed);
    Counts counts;
    const uint64_t before = wide::decisions;
    for (long draws = 0; counts.judged < cases && draws < MOST_DRAWS * cases; ++draws) {
        const exact::Arguments a = draw(f, engine);
        const exact::Verdict verdict = exact::judge(f, a);
        if (verdict == exact::Verdict::OutOfRange) continue;
        ++counts.judged;
        if (verdict == exact::Verdict::Right) continue;
        ++counts.wrong;
        std::fprintf(stderr, "%s\n", exact::describe(f, a).c_str());
    }
    counts.second = wide::decisions - before;
    return counts;
}

void print(const std::string& name, const Counts& random, const Counts& hard) {
    std::printf("| `%s` | %ld | %llu | %ld | %llu | %ld |\n", name.c_str(), random.judged,
                static_cast<unsigned long long>(random.second), hard.judged,
                static_cast<unsigned long long>(hard.second), random.wrong + hard.wrong);
    std::fflush(stdout);
}

// Every argument that qfac has.
Counts countFactorials() {
    constexpr int64_t LAST = 1754;
    Counts counts;
    const uint64_t before = wide::decisions;
    for (int64_t n = 0; n <= LAST; ++n) {
        exact::Number q{};
        ltoq(&n, q.data());
        qfac(q.data(), q.data());
        oracle::Real truth(oracle::MANTISSA_BITS + 1); // cut behind the first bit that is not stored
        mpfr_fac_ui(truth, static_cast<unsigned long>(n), MPFR_RNDZ);
        ++counts.judged;
        if (q != oracle::store(oracle::roundHalfUp(truth))) ++counts.wrong;
    }
    counts.second = wide::decisions - before;
    return counts;
}

} // namespace

int main(int argc, char** argv) {
    const uint64_t seed = argc > 1 ? std::strtoull(argv[1], nullptr, 0) : 20240229;
    const long cases = argc > 2 ? std::strtol(argv[2], nullptr, 0) : 1000000;
    const std::string name = argc > 3 ? argv[3] : "";
    std::printf("Seed %llu.\n\n", static_cast<unsigned long long>(seed));
    std::printf("| Function | Random | second way | Hard | second way | Not the nearest |\n"
                "|---|---|---|---|---|---|\n");
    long wrong = 0; // or missing
    for (const exact::Function& f : exact::functions()) {
        if (!name.empty() && f.name != name) continue;
        const Counts random = count(f, cases, seed, exact::randomArguments);
        const Counts hard = count(f, cases / 100, seed, exact::hardArguments);
        print(f.name, random, hard);
        wrong += random.wrong + hard.wrong + (cases - random.judged) + (cases / 100 - hard.judged);
    }
    if (name.empty() || name == "qfac") {
        const Counts all = countFactorials();
        print("qfac", all, {});
        wrong += all.wrong;
    }
    return wrong == 0 ? 0 : 1;
}
