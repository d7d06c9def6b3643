// SPDX-License-Identifier: MIT
//
// Private to qfloat/: products of limb arrays whose sizes are known when the program is compiled. A product
// is formed column by column (column k holds the products of limbs i and j with i + j = k), so that the
// columns that a caller does without cost nothing.
#pragma once

#include "qlimb.h"

#include <utility>

namespace limb {
#if !TALLYQUILL_INT128
inline namespace portable {
#endif

// A column sum of three limbs.
struct Column {
    uint64_t low = 0, middle = 0, high = 0;

    void Add(uint64_t x, uint64_t y) {
        uint64_t above;
        uint64_t carry = 0;
        low = addCarry(low, multiply(x, y, above), carry);
        middle = addCarry(middle, above, carry);
        high += carry;
    }

    // Add for a y in memory. Compilers move each carry through a register of its own; the processor's chain
    // of additions with carry takes two thirds of the instructions.
    void AddStored(uint64_t x, const uint64_t& y) {
#if TALLYQUILL_INT128 && defined(__x86_64__)
        uint64_t above;
        __asm__("mulq %5\n\taddq %%rax, %0\n\tadcq %%rdx, %1\n\tadcq $0, %2"
                : "+r"(low), "+r"(middle), "+r"(high), "+a"(x), "=&d"(above)
                : "m"(y)
                : "cc");
#else
        Add(x, y);
#endif
    }

    void Add(uint64_t x) {
        uint64_t carry = 0;
        low = addCarry(low, x, carry);
        middle = addCarry(middle, 0, carry);
        high += carry;
    }

    // Takes the finished lowest limb off.
    uint64_t Next() {
        const uint64_t done = low;
        low = middle;
        middle = high;
        high = 0;
        return done;
    }

    void Twice() {
        high = (high << 1) | (middle >> 63);
        middle = (middle << 1) | (low >> 63);
        low <<= 1;
    }

    void Add(const Column& other) {
        uint64_t carry = 0;
        low = addCarry(low, other.low, carry);
        middle = addCarry(middle, other.middle, carry);
        high += other.high + carry;
    }
};

namespace detail {

template <int X, int Y, int K, int... I>
inline void addColumn(Column& c, const uint64_t* x, const uint64_t* y, std::integer_sequence<int, I...>) {
    constexpr int LOWEST = K < Y ? 0 : K - Y + 1;
    if constexpr (X + Y > 8) { // the limbs of shorter ones are in registers
        (c.AddStored(x[LOWEST + I], y[K - LOWEST - I]), ...);
    } else {
        (c.Add(x[LOWEST + I], y[K - LOWEST - I]), ...);
    }
}

template <int X, int Y, int FIRST, int KEPT, int... K>
inline void addColumns(const uint64_t* x, const uint64_t* y, uint64_t* z, std::integer_sequence<int, K...>) {
    Column c;
    const auto column = [&](auto index) {
        constexpr int NUMBER = FIRST + decltype(index)::value;
        constexpr int COUNT_OF_PRODUCTS =
            (NUMBER < X ? NUMBER : X - 1) - (NUMBER < Y ? 0 : NUMBER - Y + 1) + 1;
        addColumn<X, Y, NUMBER>(c, x, y, std::make_integer_sequence<int, COUNT_OF_PRODUCTS>());
        const uint64_t done = c.Next();
        if constexpr (NUMBER >= KEPT) z[NUMBER - KEPT] = done;
    };
    (column(std::integral_constant<int, K>()), ...);
    z[X + Y - 1 - KEPT] = c.low;
}

} // namespace detail

// z = limbs KEPT .. X + Y - 1 of the product of x (X limbs) and y (Y limbs), without the columns below FIRST,
// KEPT >= FIRST. Exact for FIRST = 0. z may be x or y where KEPT is at least X and Y: the limbs that it
// takes are then no longer needed.
template <int X, int Y, int FIRST, int KEPT>
inline void product(const uint64_t* x, const uint64_t* y, uint64_t* z) {
    detail::addColumns<X, Y, FIRST, KEPT>(x, y, z, std::make_integer_sequence<int, X + Y - 1 - FIRST>());
}

#if !TALLYQUILL_INT128
} // namespace portable
#endif
} // namespace limb
