#pragma once
// A constant's series, from its terms to the result.

#include "series/plans/psr_sum.h"
#include "series/plans/series_finish.h"

namespace zvp::BinarySplitting {

/// (c1 S + c2) / c3, or its reciprocal, of a series' sum S. Family: CommonP2B3 or BinaryBBP. Read-only once made; runs
/// allocate nothing but status texts.
template <class Family>
class PSR_SeriesB {
public:
    using Series = typename Family::Series;

    /// For `series`, which must stay and was made for `precision` words. `power` is 1 or -1; InvalidParametersException
    /// ("PSR_SeriesB()", "Power must be 1 or -1.") otherwise. `halve_plan` as PSR_SumB.
    PSR_SeriesB(const Series& series_, int power, std::int32_t c1, std::int32_t c2, std::uint32_t c3,
                std::size_t precision, std::uint32_t tasks, bool halve_plan);

    /// out = the value, at the plan's precision. `out` has result_words and `memory` memory_bytes, or
    /// BufferTooSmallException is thrown before anything is computed ("PSR_SeriesB::run()"); the scratch of `pars` isn't
    /// used and pars.tds is the plan's.
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& out, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const;

    const Series& series;
    const SeriesFinish finish;
    const PSR_SumB<Family> sum;
    const std::size_t number_words; // of P, in `out`, and Q
    const std::size_t result_words; // a multiple of 16
    const std::uint64_t memory_bytes;
};

extern template class PSR_SeriesB<CommonP2B3::Family>;
extern template class PSR_SeriesB<BinaryBBP::Family>;

namespace Hyperdescent {

/// The same for a series of this family: one exact recursion over everything, which its residues prove.
class SeriesB {
public:
    /// As PSR_SeriesB; `series` has terms enough for `precision` words.
    SeriesB(const Series& series_, int power, std::int32_t c1, std::int32_t c2, std::uint32_t c3,
            std::size_t precision_, std::uint32_t tasks);

    /// As PSR_SeriesB::run(); "Hyperdescent::SeriesB::run()" for `out`, "PSR_SeriesB::run()" for `memory`.
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& out, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const;

    static constexpr const char* heading = "Series Hyperdescent...  ";

    const Series& series;
    const std::size_t precision;
    const SeriesFinish finish;
    const BSR_BlockB<Family> block;
    const std::size_t number_words;
    const std::size_t result_words;
    const std::uint64_t memory_bytes;
};

} // namespace Hyperdescent
} // namespace zvp::BinarySplitting
