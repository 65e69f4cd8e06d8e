#pragma once
// The memory that summing a range takes, worked out before anything runs.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvp::BinarySplitting {

struct BlockNeeds {
    std::uint64_t scratch_bytes = 0;      // for pars.M, a multiple of 256
    std::size_t number_words = 0;         // the capacity of each result, a multiple of 16
    std::size_t scratch_number_words = 0; // the capacity of each scratch number, a multiple of 16
};

/// Ranges of fewer terms are summed by one task, and those of at most plain_split_terms split at their middle index.
inline constexpr std::uint64_t min_parallel_terms = 1000;
inline constexpr std::uint64_t plain_split_terms = 100;

/// Numbers of halves start at multiples of this many words from the start of their storage, a cache line.
inline constexpr std::size_t number_alignment = 16;

/// By how many words the transforms of a merge are longer than its longest product, and how many words longer than the
/// range's size that product may be: each half's size is rounded up.
inline constexpr std::size_t merge_spare = 6;
inline constexpr std::size_t halves_spare = 2;

/// What a plan of memory starts from.
struct BlockShape {
    std::size_t size_words;  // of the range
    std::size_t split_slack; // of the series
    std::size_t leaf_words;  // the size of the longest leaf
    std::uint64_t terms;     // of the range
    std::vector<std::uint64_t>
        half_terms;           // the most terms of a part after 1, 2, .. splits; missing ones are too few to share
    std::uint32_t tds;        // tasks of a merge, at least 1
    std::uint32_t leaf_tasks; // tasks below the tree
    std::uint32_t depth;
};

/// The needs of the recursion: of a node, those of its own merge and those of its halves, which use its storage one after
/// the other (scratch in the tree and on the serial level) or each a half of it.
BlockNeeds block_needs(const BlockShape& shape);

/// Those of a range below the tree.
BlockNeeds bottom_needs(const BlockShape& shape);

/// The words of the largest number below `depth` tree levels.
std::size_t words_below(const BlockShape& shape);

} // namespace zvp::BinarySplitting
