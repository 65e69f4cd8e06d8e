#pragma once
// One range of one series, summed in memory by binary splitting.
//
// The recursion has three levels: `depth` sequential tree levels, whose merges use all tasks; the parallel level, which
// gives each half of a node its share of tasks, memory and scratch; the serial level, where one task does the rest.
// Ranges split where their halves are of equal size. The numbers are made in place: the left half's at the start of the
// storage, the right half's behind it, the merge's over both.
//
// Exact numbers carry their residues, and how the range is split doesn't depend on tasks: the exact results are the same
// to the bit for any number of tasks. The truncated kind cuts every product to the precision that its range still needs.

#include "series/splitting/binary_bbp.h"
#include "series/splitting/block_plan.h"
#include "series/splitting/brent_mcmillan_ab.h"
#include "series/splitting/common_p2b3.h"
#include "series/splitting/hyperdescent.h"

namespace zvp {
class MultiplyTables;
class StatusNode;
} // namespace zvp

namespace zvp::BinarySplitting {

/// The longest precision that is worked with, in words.
inline constexpr std::size_t max_limit = std::size_t{1} << 31;

/// Family: CommonP2B3::Family, Hyperdescent::Family, BinaryBBP::Family or BrentMcMillanAB::Family. Read-only once it is
/// made; runs allocate nothing but status texts.
template <class Family>
class BSR_BlockB {
public:
    using Series = typename Family::Series;
    using FloatNumbers = typename Family::template Numbers<BigFloat>;
    using ExactNumbers = typename Family::template Numbers<ExactNumber>;

    /// For (a, b] of `series`, which must stay; truncated results have `limit` words of precision (at most max_limit
    /// count). `tds` tasks, 0 counts as 1; for the halves of the tree they are multiplied by 2^shift, unless tds is 1.
    /// `is_last` tells that nothing will be summed behind b: what only a later range would need (R in CommonP2B3, N0 in
    /// BrentMcMillanAB) isn't made, and tells nothing afterwards.
    BSR_BlockB(const Series& series, std::uint64_t a, std::uint64_t b, std::size_t limit, std::uint32_t tds,
               std::uint32_t shift, std::uint32_t depth, bool is_last = false);

    /// Leaves the results of the range in the first Family::results numbers, each at or near the start of its buffer. The
    /// numbers come with buffer and capacity: plan.number_words for the results, plan.scratch_number_words for the
    /// others, each buffer at a multiple of 64 bytes. pars.M has plan.scratch_bytes, pars.tables are built for
    /// ensure_tables(). `status` may be null; pars.status isn't used.
    ///
    /// The truncated kind. A merge at p words adds less than 8 W^-p to the relative error of its range's sum (64 W^-p in
    /// BrentMcMillanAB): each of its numbers is cut to p + 2 words, operands as well. p is `limit` at a and what m still
    /// needs, series.precision_words(m), for the range behind a split at m, whose part in the sum is as much smaller.
    /// Factors that P and Q have in common may be wrong by more, and R/Q is as good as b needs. Ranges whose size_words
    /// aren't above p are exact.
    ///
    /// Throws BufferTooSmallException ("BSR_BlockB::run()") where a capacity or pars.ML is below the plan, and
    /// InvalidParametersException for a pars.tds above the plan's; what the merges and leaves throw.
    void run(const MultiplyParameters& pars, StatusNode* status, FloatNumbers& numbers) const;
    void run(const MultiplyParameters& pars, StatusNode* status, ExactNumbers& numbers) const;

    /// Raises the wish of `tables` to the products of a run.
    void ensure_tables(MultiplyTables& tables) const;

    const Series& series;
    const std::uint64_t a, b;
    const std::size_t limit;
    const std::size_t size_words; // of (a, b]
    const std::uint32_t tds;
    const std::uint32_t shift; // 0 if tds is 1
    const std::uint32_t depth;
    const bool is_last;
    const std::size_t bottom_words; // of a range below the tree
    const BlockNeeds plan;

private:
    template <class Numbers>
    void check(const MultiplyParameters& pars, const Numbers& numbers) const;
    template <class Number>
    void run_kind(const MultiplyParameters& pars, StatusNode* status,
                  typename Family::template Numbers<Number>& numbers) const;
};

extern template class BSR_BlockB<CommonP2B3::Family>;
extern template class BSR_BlockB<Hyperdescent::Family>;
extern template class BSR_BlockB<BinaryBBP::Family>;
extern template class BSR_BlockB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting
