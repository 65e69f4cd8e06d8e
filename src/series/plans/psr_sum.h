#pragma once
// A whole series by blocks: the chain from the last block to the first.

#include "app/console/run_report.h"
#include "series/plans/block_plan.h"
#include "series/plans/psr_block.h"

#include <string>
#include <vector>

namespace zvp::BinarySplitting {

/// The line that a sum begins with: the family's heading, the terms, and how much longer than the precision the numbers
/// of one recursion over everything would be.
std::string sum_heading(const char* heading, const Series& series, std::size_t precision_words);

/// Read-only once made.
template <class Family>
class PSR_SumB {
public:
    using Series = typename Family::Series;
    using Running = typename Folding<Family>::Running;

    /// All of `series`, made for `precision` words. `halve_plan`: blocks of at most half the precision, which take less
    /// memory. Equilibrium blocks that would need more than `spare_bytes`, what the caller needs anyway, get a sequential
    /// level where that saves memory.
    PSR_SumB(const Series& series, std::size_t precision, std::uint32_t tasks, bool halve_plan,
             std::uint64_t spare_bytes);

    /// Leaves the carried numbers in `running`, each with room for running_words. `memory` has memory_bytes. The status
    /// shows what has been summed and the block at work. Throws what PSR_BlockB::run() throws.
    void run(const MultiplyParameters& pars, StatusNode* status, Running& running, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const;

    const BlockPlan plan;
    const std::vector<PSR_BlockB<Family>> blocks; // in the order of their terms
    const std::size_t running_words;              // a multiple of 16
    const std::uint64_t memory_bytes;             // a multiple of 64
};

extern template class PSR_SumB<CommonP2B3::Family>;
extern template class PSR_SumB<BinaryBBP::Family>;
extern template class PSR_SumB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting
