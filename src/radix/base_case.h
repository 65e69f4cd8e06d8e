#pragma once

#include <cstddef>
#include <cstdint>

namespace zvp {

/// The most words of output that a leaf may have.
inline constexpr std::size_t max_leaf_words = 31;

/// The first n words of a fraction in radix R to end[-1] downward, the most significant first; returns the digit that
/// comes next, for the check against whoever goes on. The fraction lies below `fraction_end`, `length` words of it; the
/// words beyond the top n + 4 aren't looked at. n <= max_leaf_words, R >= 2. What is cut off is worth less than n W^-2 of the
/// returned digit's unit: digits are one too low where their successors come as close to a full turn.
std::uint32_t convert_leaf(std::uint32_t R, std::uint32_t* end, std::size_t n, const std::uint32_t* fraction_end,
                           std::size_t length);

} // namespace zvp
