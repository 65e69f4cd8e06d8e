// Division by a word in blocks whose entering remainders are known beforehand.

#include "app/failure/exceptions.h"
#include "multiply/words/shoup_divider.h"
#include "multiply/words/shoup_step.h"
#include "multiply/words/word_blocks.h"

#include <array>

namespace zvp {

namespace {

constexpr std::size_t min_block = 1000;

/// A remainder that no division leaves: what a block that never ran would show.
template <class Word>
constexpr Word no_remainder = static_cast<Word>(~Word{0});

template <class Word>
using BlockRemainders = std::array<Word, max_blocks>;

/// The remainder that leaves each block, from the one that enters the top block and the blocks' own residues.
template <class Word>
void predict(const ShoupDivider<Word>& D, const WordBlocks& split, Word r, const BlockRemainders<Word>& residues,
             BlockRemainders<Word>& expected) {
    const std::uint32_t top = split.count - 1;
    const ConstantFactor<Word> c_top(D, D.powmod(split.length(top)));
    const ConstantFactor<Word> c(D, D.powmod(split.size));
    for (std::uint32_t i = split.count; i-- > 0;) {
        r = add_mod(D, (i == top ? c_top : c).times(r), residues[i]);
        expected[i] = r;
    }
}

/// Runs divide(begin, length, r), which returns the remainder, on all blocks; returns the bottom block's.
template <class Word, class Divide>
Word divide_blocks(const WordBlocks& split, Word r, const BlockRemainders<Word>& expected, const char* function,
                   const ParallelContext& ctx, Divide&& divide) {
    BlockRemainders<Word> actual;
    actual.fill(no_remainder<Word>);
    run_blocks(ctx, split.count, [&](std::uint32_t i) {
        actual[i] = divide(split.begin(i), split.length(i), i + 1 == split.count ? r : expected[i + 1]);
    });
    for (std::uint32_t i = 0; i < split.count; ++i)
        if (actual[i] != expected[i]) throw AlgorithmFailedException(function, "Mismatching block residuals.");
    return actual[0];
}

template <class Word>
Word div_ex(const ShoupDivider<Word>& D, Word* T, std::size_t n, Word r, const ParallelContext& ctx) {
    const std::uint32_t tasks = std::min(tasks_of(ctx), max_blocks);
    if (tasks < 2 || n < min_block || r >= D.d) return D.divmod(T, n, r);
    const WordBlocks split = split_blocks(n, tasks, min_block, 1);
    BlockRemainders<Word> residues{}, expected;
    predict(D, split, r, residues, expected);
    return divide_blocks(
        split, r, expected, "bp_div_ex()", ctx,
        [&](std::size_t begin, std::size_t length, Word entering) { return D.divmod(T + begin, length, entering); });
}

template <class Word>
Word div_np(const ShoupDivider<Word>& D, Word* T, const Word* A, std::size_t n, Word r, const ParallelContext& ctx) {
    const std::uint32_t tasks = std::min(tasks_of(ctx), max_blocks);
    if (tasks < 3 || n < min_block || r >= D.d) return D.divmod(T, A, n, r);
    const WordBlocks split = split_blocks(n, tasks, min_block, 1);
    BlockRemainders<Word> residues, expected;
    residues.fill(no_remainder<Word>);
    run_blocks(ctx, split.count,
               [&](std::uint32_t i) { residues[i] = D.mod(A + split.begin(i), split.length(i), Word{0}); });
    predict(D, split, r, residues, expected);
    return divide_blocks(split, r, expected, "bp_div_np(A)", ctx,
                         [&](std::size_t begin, std::size_t length, Word entering) {
                             return D.divmod(T + begin, A + begin, length, entering);
                         });
}

} // namespace

c32i bp_div_ex(const ShoupDivider<c32i>& D, c32i* T, std::size_t n, c32i r, const ParallelContext& ctx) {
    return div_ex(D, T, n, r, ctx);
}
c64i bp_div_ex(const ShoupDivider<c64i>& D, c64i* T, std::size_t n, c64i r, const ParallelContext& ctx) {
    return div_ex(D, T, n, r, ctx);
}

c32i bp_div_np(const ShoupDivider<c32i>& D, c32i* T, const c32i* A, std::size_t n, c32i r, const ParallelContext& ctx) {
    return div_np(D, T, A, n, r, ctx);
}
c64i bp_div_np(const ShoupDivider<c64i>& D, c64i* T, const c64i* A, std::size_t n, c64i r, const ParallelContext& ctx) {
    return div_np(D, T, A, n, r, ctx);
}

} // namespace zvp
