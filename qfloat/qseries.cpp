// SPDX-License-Identifier: MIT
#include "qseries.h"

#include "qproduct.h"

namespace limb {

namespace {

template <int N> inline void upperProduct(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    product<N, N, N - 1, N>(x, y, z);
}

template <int N> inline void upperProduct(uint64_t x, const uint64_t* y, uint64_t* z) {
    uint64_t high;
    multiply(y[0], x, high);
    for (int i = 1; i < N; ++i) {
        uint64_t next, carry = 0;
        z[i - 1] = addCarry(multiply(y[i], x, next), high, carry);
        high = next + carry;
    }
    z[N - 1] = high;
}

template <Signs SIGNS, int N, typename Factor>
inline void run(Factor x, const uint64_t* c, int stride, int steps, uint64_t* sum) {
    uint64_t value[N];
    std::memcpy(value, sum, sizeof value);
    for (; steps > 0; --steps, c -= stride) {
        upperProduct<N>(x, value, value);
        uint64_t carry = 0;
        for (int i = 0; i < N; ++i) {
            value[i] = SIGNS == Signs::Equal ? addCarry(c[i], value[i], carry)
                                             : subtractBorrow(c[i], value[i], carry);
        }
    }
    std::memcpy(sum, value, sizeof value);
}

template <Signs SIGNS, typename Factor>
inline void runOf(Factor x, const uint64_t* c, int stride, int steps, uint64_t* sum, int n) {
    switch (n) {
    case 6: return run<SIGNS, 6>(x, c, stride, steps, sum);
    case 5: return run<SIGNS, 5>(x, c, stride, steps, sum);
    case 4: return run<SIGNS, 4>(x, c, stride, steps, sum);
    case 3: return run<SIGNS, 3>(x, c, stride, steps, sum);
    case 2: return run<SIGNS, 2>(x, c, stride, steps, sum);
    default: return run<SIGNS, 1>(x, c, stride, steps, sum);
    }
}

} // namespace

template <Signs SIGNS>
void hornerSteps(const uint64_t* x, const uint64_t* c, int stride, int steps, uint64_t* sum, int n) {
    runOf<SIGNS>(x, c, stride, steps, sum, n);
}

template <Signs SIGNS>
void hornerSteps(uint64_t x, const uint64_t* c, int stride, int steps, uint64_t* sum, int n) {
    runOf<SIGNS>(x, c, stride, steps, sum, n);
}

template void hornerSteps<Signs::Alternating>(const uint64_t*, const uint64_t*, int, int, uint64_t*, int);
template void hornerSteps<Signs::Equal>(const uint64_t*, const uint64_t*, int, int, uint64_t*, int);
template void hornerSteps<Signs::Alternating>(uint64_t, const uint64_t*, int, int, uint64_t*, int);
template void hornerSteps<Signs::Equal>(uint64_t, const uint64_t*, int, int, uint64_t*, int);

} // namespace limb
