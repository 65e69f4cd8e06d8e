#include "series/splitting/block_plan.h"

#include "multiply/tables/algorithm_table.h"

#include <algorithm>

namespace zvp::BinarySplitting {
namespace {

constexpr std::uint64_t scratch_alignment = 256;

constexpr std::uint64_t round_up(std::uint64_t value, std::uint64_t unit) { return (value + unit - 1) / unit * unit; }

class Planner {
public:
    explicit Planner(const BlockShape& shape_) : shape(shape_) {}

    std::size_t half(std::size_t L) const { return L / 2 + shape.split_slack; }

    /// Of one task. Halves of what is smaller than the slack count as larger: the largest number is one of the two.
    BlockNeeds serial(std::size_t L) const {
        const std::size_t largest = std::max(L, 2 * shape.split_slack);
        BlockNeeds needs;
        needs.scratch_bytes = std::max(merge_bytes(largest, 1), leaf_bytes());
        needs.number_words = serial_words(L);
        needs.scratch_number_words = product_words(largest);
        return needs;
    }

    /// Of `tasks` tasks, after `splits` splits: shared by two halves, or by one task where there are too few terms. Two
    /// halves of tasks that differ by one need at most what two of the larger share need.
    BlockNeeds parallel(std::size_t L, std::uint32_t tasks, std::size_t splits) const {
        BlockNeeds needs = serial(L);
        if (tasks < 2 || most_terms(splits) < min_parallel_terms) return needs;
        BlockNeeds child = parallel(half(L), tasks - tasks / 2, splits + 1);
        child.scratch_bytes *= 2;
        child.number_words *= 2;
        child.scratch_number_words *= 2;
        needs = larger(needs, child);
        needs.scratch_bytes = std::max(needs.scratch_bytes, merge_bytes(L, std::min(tasks, shape.tds)));
        return needs;
    }

    /// Of `depth` sequential levels and the parallel one below, which may begin early where there are few terms.
    BlockNeeds tree(std::size_t L, std::uint64_t terms, std::uint32_t depth) const {
        constexpr std::uint64_t unequal_halves = 4; // how much fewer terms one half may have than the other
        BlockNeeds needs;
        if (depth == 0 || terms < unequal_halves * min_parallel_terms)
            needs = parallel(L, shape.leaf_tasks, shape.depth - depth);
        if (depth == 0) return needs;
        BlockNeeds child = tree(half(L), terms / 2, depth - 1);
        child.number_words *= 2;
        needs = larger(needs, child);
        needs.scratch_bytes = std::max(needs.scratch_bytes, merge_bytes(L, shape.tds));
        needs.scratch_number_words = std::max(needs.scratch_number_words, product_words(L));
        return needs;
    }

private:
    std::uint64_t most_terms(std::size_t splits) const {
        if (splits == 0) return shape.terms;
        return splits <= shape.half_terms.size() ? shape.half_terms[splits - 1] : 0;
    }

    static BlockNeeds larger(const BlockNeeds& a, const BlockNeeds& b) {
        return {std::max(a.scratch_bytes, b.scratch_bytes), std::max(a.number_words, b.number_words),
                std::max(a.scratch_number_words, b.scratch_number_words)};
    }

    static std::uint64_t merge_bytes(std::size_t L, std::uint32_t tasks) {
        const std::uint64_t longest = L + halves_spare + merge_spare;
        return round_up(algorithm_table<wtype>().mSBsize(longest, tasks, true), scratch_alignment);
    }

    /// A leaf of short integers keeps one of its numbers there, which grows as the left result and the right half's needs.
    std::uint64_t leaf_bytes() const {
        constexpr std::size_t least_words = 64;
        return round_up((2 * shape.leaf_words + least_words) * sizeof(wtype), scratch_alignment);
    }

    /// A product of two halves; it carries once where it is a sum.
    static std::size_t product_words(std::size_t L) { return round_up(L + halves_spare + 1, number_alignment); }

    /// The left result stays while the right half runs, and so on below: the sum of the halves, each from a multiple of 16
    /// words on. 32 levels reach below every leaf; what they add beyond the leaves covers its single terms.
    std::size_t serial_words(std::size_t L) const {
        constexpr int pairs = 16;
        std::size_t odd = 0, even = 0;
        for (int i = 0; i < pairs; ++i) {
            odd += round_up(L = half(L), number_alignment);
            even += round_up(L = half(L), number_alignment);
        }
        return odd + even;
    }

    const BlockShape& shape;
};

} // namespace

BlockNeeds block_needs(const BlockShape& shape) {
    return Planner(shape).tree(shape.size_words, shape.terms, shape.depth);
}

BlockNeeds bottom_needs(const BlockShape& shape) {
    return Planner(shape).parallel(words_below(shape), shape.leaf_tasks, shape.depth);
}

std::size_t words_below(const BlockShape& shape) {
    std::size_t L = shape.size_words;
    for (std::uint32_t d = 0; d < shape.depth; ++d) L = Planner(shape).half(L);
    return L;
}

} // namespace zvp::BinarySplitting
