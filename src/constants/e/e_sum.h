#pragma once
// e by the series of exp(1), or by that of exp(-1) and a reciprocal.

#include "app/console/run_report.h"
#include "constants/e/e_series.h"
#include "constants/plan/constant_plan.h"
#include "series/plans/psr_series.h"

namespace zvp {

/// exp(1) or exp(-1). Read-only once made; runs allocate nothing but status texts.
class e_Taylor_BigFloatR {
public:
    /// The series alternates where `alternating` is set; it then gives exp(-1), and its reciprocal e. power: 1 or -1.
    /// InvalidParametersException ("e_Taylor_BigFloatR()") for any other, and for -1 without `alternating`.
    e_Taylor_BigFloatR(bool alternating, int power, std::size_t precision_words, std::uint32_t tasks);

    /// result = the number, at the plan's precision: the error is below 20 W^-p of it. Sizes and errors as
    /// Hyperdescent::SeriesB::run().
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const { sum.ensure_tables(tables); }

    const SeriesETaylor series;
    const BinarySplitting::Hyperdescent::SeriesB sum;
    const std::size_t result_words;
    const std::uint64_t memory_bytes;
};

class EPlanB final : public ConstantPlanB {
public:
    /// `alternating`: by exp(-1).
    EPlanB(MultiplyTables& tables, bool alternating, std::size_t precision_words, std::uint32_t tasks);

    std::string short_algorithm_name() const override;
    std::string long_algorithm_name() const override;
    std::size_t result_words() const override { return e.result_words; }
    std::uint64_t memory_bytes() const override { return e.memory_bytes; }
    bool run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const override;

    const e_Taylor_BigFloatR e;
};

} // namespace zvp
