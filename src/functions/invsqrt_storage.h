#pragma once
// The storage that both inverse square roots carve from their buffers.

#include "functions/iteration_plan.h"

#include <algorithm>

namespace zvp {

constexpr std::size_t invsqrt_estimate_words(std::size_t q) { return (q + 19) & ~std::size_t{15}; }
constexpr std::size_t invsqrt_correction_words(std::size_t q) { return (q + 17) & ~std::size_t{15}; }

/// Of a small plan for s.
inline IterationSizes invsqrt_small_sizes(std::size_t s, std::uint32_t tds) {
    return {s + 4, (s + 22) & ~std::size_t{15}, product_memory(s + 8, tds)};
}

/// Of a plan for p whose longest product has `words` words.
inline IterationSizes invsqrt_sizes(std::size_t p, std::uint32_t tds, std::size_t words) {
    const IterationSizes small = invsqrt_small_sizes(std::min(p, transform_precision), tds);
    const std::size_t q = (p >> 1) + 1;
    return {std::max(p + 36, small.result_words),
            std::max(invsqrt_estimate_words(q) + invsqrt_correction_words(q), small.buffer_words),
            std::max(product_memory(words, tds), small.memory_bytes)};
}

} // namespace zvp
