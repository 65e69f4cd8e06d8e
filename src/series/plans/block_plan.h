#pragma once
// Where a series is cut into blocks. Behind index x only precision_words(x) words matter, so that one recursion over the
// whole range would make numbers longer than anybody needs.

#include "series/splitting/series.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvp::BinarySplitting {

/// The terms a+1 .. b.
struct BlockRange {
    std::uint64_t a;
    std::uint64_t b;

    bool operator==(const BlockRange& other) const = default;
};

/// The blocks of the range (a, b] of a series, in rising order: each begins where the one before ended. A block is to be
/// as long as what is still needed behind it, but not below a size that keeps all tasks busy, nor above a limit.
class BlockPlan {
public:
    /// `max_words`: the limit of a block's size. Sizes for products of `tasks` tasks. Warns on the console where the blocks
    /// reach ten thousand: the series is all but divergent.
    BlockPlan(const Series& series, std::uint64_t a_, std::uint64_t b_, std::uint32_t tasks, std::size_t max_words);

    const std::uint64_t a, b;
    const DoubleDouble min_block, max_block; // nats
    const std::vector<BlockRange> blocks;

    static constexpr std::size_t many_blocks = 10'000;
};

/// The least index c whose block (a, c] is as large as what is needed behind it; N if there is none below.
std::uint64_t equilibrium_index(const Series& series, std::uint64_t a);

/// The least index c with log_range(a, c) >= nats; N if there is none below.
std::uint64_t reach(const Series& series, std::uint64_t a, const DoubleDouble& nats);

/// The least size of a block, in nats, for so many tasks: 14,680,065 bits for each of the tasks, twice their number
/// rounded up to a power of two, but at most 2^26 bits.
DoubleDouble least_block(std::uint32_t tasks);

} // namespace zvp::BinarySplitting
