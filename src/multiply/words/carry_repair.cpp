#include "multiply/words/carry_repair.h"

#include "app/console/console.h"
#include "multiply/words/word_loops.h"

namespace zvp {

namespace {

constexpr std::uint8_t all_zeros = 0, absorbs = 128, all_ones = 255;

/// The blocks as carry_pass() sees them: block i begins `offset` words late, and ends where the next one begins.
struct ShiftedBlocks {
    std::size_t size;
    std::size_t n;
    std::size_t offset;

    std::size_t begin(std::uint32_t i) const { return std::min(n, offset + i * size); }
    std::size_t length(std::uint32_t i) const { return std::min(size, n - begin(i)); }
};

template <class Word>
std::uint8_t classify(const Word* T, std::size_t n) {
    const Word first = T[0];
    if (first != 0 && static_cast<Word>(~first) != 0) return absorbs;
    if (std::find_if(T, T + n, [first](Word x) { return x != first; }) != T + n) return absorbs;
    return first == 0 ? all_zeros : all_ones;
}

template <class Word>
int serial_pass(const BlockCarry* blocks, std::uint32_t n_blocks, const ShiftedBlocks& split, Word* T) {
    int carry = 0;
    for (std::uint32_t i = 0; i < n_blocks; ++i)
        carry = carry_ripple(carry + blocks[i].carry, T + split.begin(i), split.length(i));
    return carry;
}

/// Turns what each block sends out into what it gets; returns what leaves the last. A state and a carry in overflow or
/// underflow the byte exactly when the carry runs through the block.
int chain_carries(BlockCarry* blocks, std::uint32_t n_blocks) {
    int carry = 0;
    for (std::uint32_t i = 0; i < n_blocks; ++i) {
        const int sum = blocks[i].state + carry;
        const int out = blocks[i].carry + (sum >> 8);
        blocks[i].carry = static_cast<std::int8_t>(carry);
        carry = out;
    }
    return carry;
}

template <class Word>
void take_carry(const BlockCarry& block, Word* T, std::size_t n) {
    if (block.state == all_ones && block.carry > 0)
        std::fill_n(T, n, Word{0});
    else if (block.state == all_zeros && block.carry < 0)
        std::fill_n(T, n, static_cast<Word>(~Word{0}));
    else if (block.carry != 0)
        carry_ripple(block.carry, T, n);
}

} // namespace

template <class Word>
void bp_ksr_carry(BlockCarry& block, Word* T, std::size_t n) {
    if (n == 0) fatal_stop("bp_ksr_carry(): Length cannot be zero.");
    block.carry = static_cast<std::int8_t>(carry_ripple(block.carry, T, n));
    block.state = classify(T, n);
}

template <class Word>
int carry_pass(BlockCarry* blocks, std::uint32_t n_blocks, std::size_t B, Word* T, std::size_t n, std::size_t offset,
               const ParallelContext& ctx) {
    const ShiftedBlocks split{B, n, offset};
    if (n < min_parallel_carry || !ctx.framework) return serial_pass(blocks, n_blocks, split, T);

    // Only the last block can begin at the array's end; its carry has left the array.
    int beyond_end = 0;
    for (; n_blocks > 0 && split.length(n_blocks - 1) == 0; --n_blocks) beyond_end += blocks[n_blocks - 1].carry;

    run_blocks(ctx, n_blocks, [&](std::uint32_t i) { bp_ksr_carry(blocks[i], T + split.begin(i), split.length(i)); });
    const int carry = chain_carries(blocks, n_blocks);
    run_blocks(ctx, n_blocks, [&](std::uint32_t i) { take_carry(blocks[i], T + split.begin(i), split.length(i)); });
    return carry + beyond_end;
}

template <class Word>
int apply_block_carries(BlockCarry* blocks, const WordBlocks& split, Word* T, const ParallelContext& ctx) {
    int from_below = 0;
    bool runs_on = false;
    for (std::uint32_t i = 0; i < split.count; ++i) {
        const int out = blocks[i].carry;
        const std::size_t quick = std::min(quick_words, split.length(i));
        blocks[i].carry = static_cast<std::int8_t>(carry_ripple(from_below, T + split.begin(i), quick));
        runs_on |= blocks[i].carry != 0;
        from_below = out;
    }
    if (!runs_on) return from_below;
    return from_below + carry_pass(blocks, split.count, split.size, T, split.n, quick_words, ctx);
}

template int apply_block_carries(BlockCarry*, const WordBlocks&, c32i*, const ParallelContext&);
template int apply_block_carries(BlockCarry*, const WordBlocks&, c64i*, const ParallelContext&);
template int carry_pass(BlockCarry*, std::uint32_t, std::size_t, c32i*, std::size_t, std::size_t,
                        const ParallelContext&);
template int carry_pass(BlockCarry*, std::uint32_t, std::size_t, c64i*, std::size_t, std::size_t,
                        const ParallelContext&);
template void bp_ksr_carry(BlockCarry&, c32i*, std::size_t);
template void bp_ksr_carry(BlockCarry&, c64i*, std::size_t);

} // namespace zvp
