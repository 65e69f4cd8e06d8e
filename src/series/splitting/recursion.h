#pragma once
// The three levels of the recursion over a range, in both arithmetic kinds: sequential tree levels, then the parallel
// level, whose nodes run their halves as two tasks, then the serial level.

#include "series/splitting/block_plan.h"
#include "series/splitting/merge.h"

#include <algorithm>

namespace zvp {
class StatusNode;
}

namespace zvp::BinarySplitting {

/// Where (a, b] is cut in two.
template <class Family>
std::uint64_t split(const typename Family::Series& series, std::uint64_t a, std::uint64_t b) {
    if (b - a <= plain_split_terms) return a + (b - a) / 2;
    const std::uint64_t middle = std::clamp(series.midpoint(a, b), a + 1, b - 1);
    return Family::splits_at_even && b - a >= min_parallel_terms ? middle & ~std::uint64_t{1} : middle;
}

/// What all nodes of a run share.
template <class Family>
struct Job {
    const typename Family::Series& series;
    std::uint32_t tds;        // tasks of a merge
    std::uint32_t leaf_tasks; // tasks below the tree
    std::size_t bottom_words; // the capacity of a result that the plan leaves below the tree
};

/// (a, b], with its results on the storage of `numbers`.
template <class Family, class Number>
struct Node {
    NumbersOf<Family, Number> numbers;
    std::uint64_t a, b;
    bool is_last;
};

/// Runs `depth` tree levels and what is below. Results have a precision of `limit` words; exact ones don't look at it.
/// Throws BufferTooSmallException ("BSR_BlockT::run()") where numbers don't fit; what merges and leaves throw.
template <class Family, class Number>
void run_tree(const Job<Family>& job, const MultiplyParameters& pars, StatusNode* status, Node<Family, Number>& node,
              std::uint32_t depth, std::size_t limit);

} // namespace zvp::BinarySplitting
