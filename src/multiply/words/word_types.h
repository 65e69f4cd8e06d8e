#pragma once
// The two kinds of word arrays. Both are little-endian: word 0 is the least significant.

#include <cstddef>
#include <cstdint>

namespace zvp {

using c32i = std::uint32_t;
using c64i = std::uint64_t;

/// The word of the floating-point numbers.
using wtype = c32i;

template <class Word>
inline constexpr unsigned word_bits = 8 * sizeof(Word);

} // namespace zvp
