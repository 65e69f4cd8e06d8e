#pragma once
// The square root of a word and the golden ratio, as constants of the catalog.

#include "constants/plan/constant_plan.h"
#include "constants/roots/square_root.h"

namespace zvp {

class SqrtPlanB final : public ConstantPlanB {
public:
    SqrtPlanB(MultiplyTables& tables, wtype n, std::size_t precision_words, std::uint32_t tasks);

    std::string short_algorithm_name() const override { return "Newton"; }
    std::string long_algorithm_name() const override { return "Newton's Method"; }
    std::size_t result_words() const override { return root.result_words; }
    std::uint64_t memory_bytes() const override { return root.memory_bytes; }
    bool run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const override;

    const Sqrt_Newton_BigFloatR root;
};

class GoldenRatioPlanB final : public ConstantPlanB {
public:
    GoldenRatioPlanB(MultiplyTables& tables, std::size_t precision_words, std::uint32_t tasks);

    std::string short_algorithm_name() const override { return "Newton"; }
    std::string long_algorithm_name() const override { return "Newton's Method"; }
    std::size_t result_words() const override { return ratio.result_words; }
    std::uint64_t memory_bytes() const override { return ratio.memory_bytes; }
    bool run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
             AlignedBufferC<64> memory) const override;

    const GoldenRatio_Newton_BigFloatR ratio;
};

} // namespace zvp
