#pragma once
// Pi, or its reciprocal, by a series: T / sqrt(d), T from the series' sum.

#include "app/console/run_report.h"
#include "constants/pi/pi_series.h"
#include "functions/invsqrt_word.h"
#include "series/plans/psr_series.h"

#include <cstdint>
#include <memory>

namespace zvp {

enum class PiSeries { chudnovsky, ramanujan };

/// Read-only once made; runs allocate nothing but status texts.
class Pi_Series_BigFloatR {
public:
    /// power: -1 for Pi, 1 for 1/Pi; InvalidParametersException ("PSR_SeriesB()") for any other. `reduced` takes less
    /// memory and more time.
    Pi_Series_BigFloatR(PiSeries series, int power, std::size_t precision_words, std::uint32_t tasks, bool reduced);

    /// result = the number, at the plan's precision: the error is below 40 W^-p of it. `result` has result_words, `memory`
    /// memory_bytes, or BufferTooSmallException is thrown ("Pi_Series_BigFloatR::run()"); the scratch of `pars` isn't
    /// used and pars.tds is the plan's.
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const;

private:
    const std::unique_ptr<const BinarySplitting::FactorialSeries> series;

public:
    const BinarySplitting::PSR_SeriesB<BinarySplitting::CommonP2B3::Family> sum;
    const wtype d;
    const InvsqrtWord_BigFloatR root;
    const std::size_t root_words;   // of 1/sqrt(d), a multiple of 16
    const std::size_t result_words; // a multiple of 16
    const std::uint64_t memory_bytes;

private:
    static std::uint64_t product_bytes(std::size_t precision_words, std::uint32_t tasks);
};

} // namespace zvp
