#pragma once
// One block of a sum: a range that is summed by itself and folded into what stands behind it.

#include "app/console/status.h"
#include "parallel/memory/aligned_buffer.h"
#include "series/plans/running_numbers.h"
#include "series/splitting/block.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting {

/// The terms (a, b] of a series. Equilibrium blocks (E) have numbers no longer than the precision at their start: these
/// are exact and checked by their residues. Those of aggressive blocks (A) would be longer, and are cut; they are watched
/// (numbers/big_float.h) and checked as well. Read-only once made.
template <class Family>
class PSR_BlockB {
public:
    using Series = typename Family::Series;
    using Fold = Folding<Family>;
    using Running = typename Fold::Running;

    /// `is_last`: nothing stands behind it. `depth`: sequential levels of its recursion, which save memory.
    PSR_BlockB(const Series& series, std::uint64_t a, std::uint64_t b, std::uint32_t tasks, std::uint32_t depth,
               bool is_last);

    bool is_aggressive() const { return prec_a + 2 < block.size_words; }
    char letter() const { return is_aggressive() ? 'A' : 'E'; }

    /// Sums the block and folds it into `running`, or, as the last one, makes `running`, whose numbers have
    /// folded_words(prec_a) of room. `memory` has memory_bytes; the scratch of `pars` isn't used. `status` may be null.
    ///
    /// Throws BufferTooSmallException ("PSR_BlockB::run()") before anything is computed, BSRModularCheckFailedException
    /// where the numbers of an equilibrium block contradict their residues, and what BSR_BlockB::run() throws.
    void run(const MultiplyParameters& pars, StatusNode* status, Running& running, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const;

    const std::size_t prec_a, prec_b; // words of precision at a and at b
    const BSR_BlockB<Family> block;
    const BlockPrecision precision;
    std::array<std::size_t, Family::numbers> number_words; // of the block's numbers, each a multiple of 16
    std::uint64_t memory_bytes;                            // a multiple of 64

private:
    using Numbers = typename Fold::Numbers;

    void sum(const MultiplyParameters& pars, StatusNode* status, Numbers& numbers) const;
};

extern template class PSR_BlockB<CommonP2B3::Family>;
extern template class PSR_BlockB<BinaryBBP::Family>;
extern template class PSR_BlockB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting
