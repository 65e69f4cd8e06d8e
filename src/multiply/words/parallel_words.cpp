#include "multiply/words/parallel_words.h"

#include "multiply/words/carry_repair.h"
#include "multiply/words/word_blocks.h"
#include "multiply/words/word_loops.h"
#include "parallel/memory/dry_run.h"

#include <array>
#include <cstring>

namespace zvp {

namespace {

constexpr std::size_t copy_bytes = 131072;
constexpr std::size_t fill_words = 16384;
constexpr std::size_t add_length = 8192;
constexpr std::size_t window_length = 4096;
constexpr std::size_t mul_length = 20000;
constexpr std::size_t scan_length = 16384;

/// Blocks are multiples of this, whole cache lines for either kind of word.
constexpr std::size_t block_unit = 16;

/// The words that bp_add_carry() tries before it thinks of blocks.
constexpr std::size_t carry_try = 4;

std::uint32_t blocks_of(const ParallelContext& ctx) { return std::min(tasks_of(ctx), max_blocks); }

/// Runs block(begin, length) over [0, n), where T + begin is what it writes, in tasks if n has `least` elements behind
/// the head; the blocks report nothing.
template <class Element, class Block>
void sweep(const Element* T, std::size_t n, std::size_t least, std::size_t unit, const ParallelContext& ctx,
           Block&& block) {
    if (is_dry(T)) return;
    const std::size_t head = words_to_line(T, n);
    if (tasks_of(ctx) <= 1 || n - head < least) return block(0, n);
    block(0, head);
    const WordBlocks split = split_blocks(n - head, tasks_of(ctx), least, unit);
    run_blocks(ctx, split.count, [&](std::uint32_t i) { block(head + split.begin(i), split.length(i)); });
}

template <class Word>
void fill(Word* T, std::size_t n, Word word, const ParallelContext& ctx) {
    sweep(T, n, fill_words, block_unit, ctx,
          [=](std::size_t begin, std::size_t length) { std::fill_n(T + begin, length, word); });
}

template <class Word>
void complement(Word* T, const Word* A, std::size_t n, const ParallelContext& ctx) {
    sweep(T, n, fill_words, block_unit, ctx, [=](std::size_t begin, std::size_t length) {
        for (std::size_t i = begin; i < begin + length; ++i) T[i] = ~A[i];
    });
}

/// Runs block(begin, length, carry), which returns its carry out, over [0, n), where T + begin is what it writes, in
/// tasks if n has `least` words behind the head, and puts the blocks together. Carries have the weight `sign`: -1 for a
/// borrow.
template <class Word, class Block>
bool chain(Word* T, std::size_t n, bool carry, int sign, std::size_t least, const ParallelContext& ctx, Block&& block) {
    if (is_dry(T)) return false;
    const std::size_t head = words_to_line(T, n);
    if (blocks_of(ctx) < 2 || n - head < least) return block(0, n, carry);
    carry = block(0, head, carry);
    const WordBlocks split = split_blocks(n - head, blocks_of(ctx), least, block_unit);
    std::array<BlockCarry, max_blocks> carries;
    run_blocks(ctx, split.count, [&](std::uint32_t i) {
        const bool out = block(head + split.begin(i), split.length(i), i == 0 && carry);
        carries[i].carry = static_cast<std::int8_t>(out ? sign : 0);
    });
    return apply_block_carries(carries.data(), split, T + head, ctx) != 0;
}

template <class Word>
bool add(Word* T, const Word* A, const Word* B, std::size_t n, bool carry, const ParallelContext& ctx) {
    return chain(T, n, carry, 1, add_length, ctx, [=](std::size_t begin, std::size_t length, bool c) {
        return add_words(T + begin, A + begin, B + begin, length, c);
    });
}

template <class Word>
bool subtract(Word* T, const Word* A, const Word* B, std::size_t n, bool borrow, const ParallelContext& ctx) {
    return chain(T, n, borrow, -1, add_length, ctx, [=](std::size_t begin, std::size_t length, bool b) {
        return subtract_words(T + begin, A + begin, B + begin, length, b);
    });
}

/// The high word of each block enters the block above: added to its first word, with a ripple through two words at most.
/// What runs on is left to carry_pass(). Returns the high word of the last block.
template <class Word>
Word apply_high_words(const Word* high, const WordBlocks& split, Word* T, const ParallelContext& ctx) {
    std::array<BlockCarry, max_blocks> carries;
    bool runs_on = false;
    for (std::uint32_t i = 1; i < split.count; ++i) {
        const bool out = add_word(T + split.begin(i), std::min(quick_words, split.length(i)), high[i - 1]);
        carries[i].carry = out;
        runs_on |= out;
    }
    Word top = high[split.count - 1];
    if (runs_on)
        top += static_cast<Word>(carry_pass(carries.data(), split.count, split.size, T, split.n, quick_words, ctx));
    return top;
}

template <class Word>
Word multiply(Word* T, const Word* A, std::size_t n, Word x, Word carry, const ParallelContext& ctx) {
    if (is_dry(T)) return 1;
    const std::size_t head = words_to_line(T, n);
    if (blocks_of(ctx) < 2 || n - head < mul_length) return mul_word(T, A, n, x, carry);
    carry = mul_word(T, A, head, x, carry);
    T += head;
    A += head;
    const WordBlocks split = split_blocks(n - head, blocks_of(ctx), mul_length, block_unit);
    std::array<Word, max_blocks> high;
    run_blocks(ctx, split.count, [&](std::uint32_t i) {
        const std::size_t begin = split.begin(i);
        high[i] = mul_word(T + begin, A + begin, split.length(i), x, i == 0 ? carry : Word{0});
    });
    return apply_high_words(high.data(), split, T, ctx);
}

template <class Word>
int add_carry(int c, Word* T, std::size_t n, const ParallelContext& ctx) {
    if (is_dry(T)) return 0;
    if (blocks_of(ctx) < 2 || n < add_length) return carry_ripple(c, T, n);
    c = carry_ripple(c, T, carry_try);
    if (c == 0) return 0;
    const WordBlocks split = split_blocks(n, blocks_of(ctx), add_length, 1);
    std::array<BlockCarry, max_blocks> carries;
    carries[0].carry = static_cast<std::int8_t>(c);
    return carry_pass(carries.data(), split.count, split.size, T, n, carry_try, ctx);
}

template <class Word>
std::size_t scan_top(Word word, const Word* T, std::size_t n, const ParallelContext& ctx) {
    if (n == 0 || is_dry(T) || T[n - 1] != word) return n;
    const std::size_t head = words_to_line(T, n);
    if (blocks_of(ctx) < 2 || n - head < scan_length) return top_length(word, T, n);
    const WordBlocks split = split_blocks(n - head, blocks_of(ctx), scan_length, block_unit);
    std::array<std::size_t, max_blocks> lengths;
    run_blocks(ctx, split.count,
               [&](std::uint32_t i) { lengths[i] = top_length(word, T + head + split.begin(i), split.length(i)); });
    for (std::uint32_t i = split.count; i-- > 0;)
        if (lengths[i] != 0) return head + split.begin(i) + lengths[i];
    return top_length(word, T, head);
}

} // namespace

void bp_copy(void* T, const void* A, std::size_t bytes, const ParallelContext& ctx) {
    auto* const to = static_cast<std::byte*>(T);
    const auto* const from = static_cast<const std::byte*>(A);
    sweep(to, bytes, copy_bytes, cache_line_bytes, ctx, [=](std::size_t begin, std::size_t length) {
        if (length > 0) std::memcpy(to + begin, from + begin, length);
    });
}

void bp_fill(c32i* T, std::size_t n, c32i word, const ParallelContext& ctx) { fill(T, n, word, ctx); }
void bp_fill(c64i* T, std::size_t n, c64i word, const ParallelContext& ctx) { fill(T, n, word, ctx); }

void bp_not(c32i* T, const c32i* A, std::size_t n, const ParallelContext& ctx) { complement(T, A, n, ctx); }
void bp_not(c64i* T, const c64i* A, std::size_t n, const ParallelContext& ctx) { complement(T, A, n, ctx); }

bool bp_add(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool carry, const ParallelContext& ctx) {
    return add(T, A, B, n, carry, ctx);
}
bool bp_add(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool carry, const ParallelContext& ctx) {
    return add(T, A, B, n, carry, ctx);
}

bool bp_sub(c32i* T, const c32i* A, const c32i* B, std::size_t n, bool borrow, const ParallelContext& ctx) {
    return subtract(T, A, B, n, borrow, ctx);
}
bool bp_sub(c64i* T, const c64i* A, const c64i* B, std::size_t n, bool borrow, const ParallelContext& ctx) {
    return subtract(T, A, B, n, borrow, ctx);
}

bool bp_uadd_window(wtype* T, const ParallelContext& ctx, bool carry, const WordWindow& A, const WordWindow& B,
                    std::int64_t lo, std::int64_t hi) {
    return chain(T, static_cast<std::size_t>(hi - lo), carry, 1, window_length, ctx,
                 [&](std::size_t begin, std::size_t length, bool c) {
                     return add_windows(T + begin, A, B, lo + static_cast<std::int64_t>(begin), length, c);
                 });
}

bool bp_usub_window(wtype* T, const ParallelContext& ctx, bool borrow, const WordWindow& A, const WordWindow& B,
                    std::int64_t lo, std::int64_t hi) {
    return chain(T, static_cast<std::size_t>(hi - lo), borrow, -1, window_length, ctx,
                 [&](std::size_t begin, std::size_t length, bool b) {
                     return subtract_windows(T + begin, A, B, lo + static_cast<std::int64_t>(begin), length, b);
                 });
}

c32i bp_mul_word(c32i* T, const c32i* A, std::size_t n, c32i x, c32i carry, const ParallelContext& ctx) {
    return multiply(T, A, n, x, carry, ctx);
}
c64i bp_mul_word(c64i* T, const c64i* A, std::size_t n, c64i x, c64i carry, const ParallelContext& ctx) {
    return multiply(T, A, n, x, carry, ctx);
}

int bp_add_carry(int c, c32i* T, std::size_t n, const ParallelContext& ctx) { return add_carry(c, T, n, ctx); }
int bp_add_carry(int c, c64i* T, std::size_t n, const ParallelContext& ctx) { return add_carry(c, T, n, ctx); }

std::size_t bp_scan_top(c32i word, const c32i* T, std::size_t n, const ParallelContext& ctx) {
    return scan_top(word, T, n, ctx);
}
std::size_t bp_scan_top(c64i word, const c64i* T, std::size_t n, const ParallelContext& ctx) {
    return scan_top(word, T, n, ctx);
}

} // namespace zvp
