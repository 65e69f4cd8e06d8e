#pragma once
// The three levels of the recursion over a range, in both arithmetic kinds: sequential tree levels, then the parallel
// level, whose nodes run their halves as two tasks, then the serial level.

#include "series/splitting/merge.h"

namespace zvp {
class StatusNode;
}

namespace zvp::BinarySplitting {

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
