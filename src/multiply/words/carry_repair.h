#pragma once
// Putting blocks back together that were computed without the carries of the blocks below them.
//
// Nearly always a carry dies in the first two words of the next block, and apply_block_carries() is all there is to do.
// A carry that runs on falls to carry_pass(), which finds by three passes over the blocks where all carries end.

#include "multiply/words/word_blocks.h"

#include <cstdint>

namespace zvp {

/// What a block tells of itself. State 255: all its words are ones, a carry of +1 would run through; 0: all are zero, a
/// carry of -1 would run through; 128: carries of either sign end inside.
struct BlockCarry {
    std::uint8_t state = 0;
    std::int8_t carry = 0;
};

/// The words of a block that take the carry of the block below at once.
inline constexpr std::size_t quick_words = 2;

/// Arrays below this length are repaired serially.
inline constexpr std::size_t min_parallel_carry = 8192;

/// Adds block.carry to the n words at T, then sets its state, and its carry to what left the top. n = 0 is a fatal stop.
template <class Word>
void bp_ksr_carry(BlockCarry& block, Word* T, std::size_t n);

/// Adds blocks[i].carry at word offset + i * B of T, for each block i, and ripples as far as it goes; returns what leaves
/// the n words: +1, 0 or -1. The block's carries are used up.
template <class Word>
int carry_pass(BlockCarry* blocks, std::uint32_t n_blocks, std::size_t B, Word* T, std::size_t n, std::size_t offset,
               const ParallelContext& ctx);

/// Each block of T holds its own result, blocks[i].carry (+1, 0 or -1) what left its top. Adds each to the block above;
/// returns the carry out of the last.
template <class Word>
int apply_block_carries(BlockCarry* blocks, const WordBlocks& split, Word* T, const ParallelContext& ctx);

extern template int apply_block_carries(BlockCarry*, const WordBlocks&, c32i*, const ParallelContext&);
extern template int apply_block_carries(BlockCarry*, const WordBlocks&, c64i*, const ParallelContext&);
extern template int carry_pass(BlockCarry*, std::uint32_t, std::size_t, c32i*, std::size_t, std::size_t,
                               const ParallelContext&);
extern template int carry_pass(BlockCarry*, std::uint32_t, std::size_t, c64i*, std::size_t, std::size_t,
                               const ParallelContext&);
extern template void bp_ksr_carry(BlockCarry&, c32i*, std::size_t);
extern template void bp_ksr_carry(BlockCarry&, c64i*, std::size_t);

} // namespace zvp
