#pragma once
// Products of operands whose lengths the compiler knows, column by column and without a loop.

#include "multiply/basecase/column_sum.h"

#include <cstddef>
#include <utility>

namespace zvp::MULB {

/// f(integral constant 0), f(integral constant 1) .. f(integral constant n - 1): a loop that is certain to be unrolled.
template <std::size_t n, class F>
[[gnu::always_inline]] constexpr void unrolled(F f) {
    [&]<std::size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
        (f(std::integral_constant<std::size_t, I>()), ...);
    }
    (std::make_index_sequence<n>());
}

/// Limb i of an operand of n limbs, the last of which may be half a limb in memory.
template <std::size_t n, bool half>
[[gnu::always_inline]] inline std::uint64_t limb_at(const limb* A, std::size_t i) {
    if constexpr (half)
        if (i == n - 1) return *reinterpret_cast<const half_limb*>(A + i);
    return A[i];
}

/// T[0, a + b - 1) = A * B without its top limb, which is returned; a >= b >= 1. T doesn't overlap the operands.
template <std::size_t a, std::size_t b, bool half_a = false, bool half_b = false>
[[gnu::always_inline]] inline std::uint64_t fixed_product(limb* T, const limb* A, const limb* B) {
    ColumnSum sum;
    unrolled<a + b - 1>([&](auto k) __attribute__((always_inline)) {
        constexpr std::size_t first = k < a ? 0 : k - a + 1, last = k < b ? k : b - 1;
        unrolled<last - first + 1>([&](auto j) __attribute__((always_inline)) {
            sum.add_product(limb_at<a, half_a>(A, k - first - j), limb_at<b, half_b>(B, first + j));
        });
        T[k] = sum.next();
    });
    return sum.next();
}

} // namespace zvp::MULB
