#pragma once
// What a plan of an iterative function tells its caller, and what a run checks against it.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/contract/multiply_tables.h"
#include "numbers/big_float.h"
#include "parallel/memory/linear_word_buffer.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Storage for a run at one precision. Words are wtype; memory is scratch for products, MultiplyParameters::ML.
struct IterationSizes {
    std::size_t result_words = 0;
    std::size_t buffer_words = 0;
    std::uint64_t memory_bytes = 0;
};

/// The limits of a plan: the highest precision in words, and the largest task decomposition.
struct IterationLimits {
    std::size_t p = 0;
    std::uint32_t tds = 0;

    /// Throws InvalidParametersException in the name of `function`.
    void check(const char* function, std::size_t run_p, std::uint32_t run_tds) const;
};

/// mSBsizes() of products of up to `words` words, rounded up to the unit of scratch memory.
std::uint64_t product_memory(std::size_t words, std::uint32_t tds);

/// Grows the wish of `tables` to products of up to `words` words.
void ensure_product_tables(MultiplyTables& tables, std::size_t words);

/// Throws BufferTooSmallException in the name of `function`.
void check_size(const char* function, std::uint64_t have, std::uint64_t needed);

/// A zero on `words` words from the bottom of the buffer.
inline BigFloat carve(LinearWordBuffer& buffer, std::size_t words) {
    const LinearWordBuffer front = buffer.cut_from_bottom(words);
    return {front.pointer, front.words};
}

/// The precision from which an iteration reaches p.
constexpr std::size_t previous_precision(std::size_t p) { return p < 3 ? (p > 0 ? p - 1 : 0) : p / 2 + 1; }

/// From this precision on, products go by kept forward forms.
inline constexpr std::size_t transform_precision = 10;

} // namespace zvp
