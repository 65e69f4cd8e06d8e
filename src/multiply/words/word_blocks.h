#pragma once
// How the parallel forms cut an array into blocks and run them.

#include "multiply/words/word_types.h"
#include "parallel/tasks/parallel_framework.h"

#include <algorithm>
#include <cstdint>

namespace zvp {

/// The most blocks of a step that keeps something for each block.
inline constexpr std::uint32_t max_blocks = 64;

inline constexpr std::size_t cache_line_bytes = 64;

/// The tasks that a context allows.
inline std::uint32_t tasks_of(const ParallelContext& ctx) { return ctx.framework ? ctx.tds : 1; }

/// The words of T up to the next cache line, at most n.
template <class Word>
std::size_t words_to_line(const Word* T, std::size_t n) {
    const std::size_t past = reinterpret_cast<std::uintptr_t>(T) % cache_line_bytes;
    return past == 0 ? 0 : std::min(n, (cache_line_bytes - past) / sizeof(Word));
}

/// Blocks 0 .. count - 1 of `size` elements, the last one shorter; they cover [0, n).
struct WordBlocks {
    std::size_t n;
    std::size_t size;
    std::uint32_t count;

    std::size_t begin(std::uint32_t i) const { return i * size; }
    std::size_t length(std::uint32_t i) const { return std::min(size, n - begin(i)); }
};

/// At most `tasks` blocks, each of at least `min_block` elements (the last one may be shorter) and a multiple of `unit`.
/// Wants n > 0 and tasks > 0.
inline WordBlocks split_blocks(std::size_t n, std::uint32_t tasks, std::size_t min_block, std::size_t unit) {
    const std::size_t size = (std::max((n - 1) / tasks + 1, min_block) + unit - 1) / unit * unit;
    return {n, size, static_cast<std::uint32_t>((n - 1) / size + 1)};
}

/// Runs function(i) for i in 0 .. count - 1 as tasks.
template <class Function>
void run_blocks(const ParallelContext& ctx, std::uint32_t count, Function&& function) {
    struct Action final : BasicAction {
        explicit Action(Function& f) : call(f) {}
        void run(std::uint32_t i) override { call(i); }
        Function& call;
    } action{function};
    ctx.framework->run_in_parallel(action, 0, count);
}

} // namespace zvp
