#pragma once
// Pi as a constant of the catalog.

#include "constants/pi/pi_sum.h"
#include "constants/plan/constant_plan.h"

namespace zvp {

class PiPlanB final : public ConstantPlanB {
public:
    /// The reduced forms take less memory and give the same digits.
    PiPlanB(MultiplyTables& tables, PiSeries series, bool reduced, std::size_t precision_words, std::uint32_t tasks);

    std::string short_algorithm_name() const override;
    std::string long_algorithm_name() const override;
    std::size_t result_words() const override { return pi.result_words; }
    std::uint64_t memory_bytes() const override { return pi.memory_bytes; }
    bool run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const override;

    const PiSeries series;
    const bool reduced;
    const Pi_Series_BigFloatR pi;
};

} // namespace zvp
