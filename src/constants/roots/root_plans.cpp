#include "constants/roots/root_plans.h"

#include "parallel/memory/carving.h"

namespace zvp {

SqrtPlanB::SqrtPlanB(MultiplyTables& tables, wtype n, std::size_t precision_words, std::uint32_t tasks)
    : ConstantPlanB(tables, precision_words, tasks), root(n, w, tds) {
    root.ensure_tables(tables);
    memory_budget.emplace_back("Sqrt(" + std::to_string(n) + ")",
                               padded_bytes(root.result_words * sizeof(wtype)) + root.memory_bytes);
}

bool SqrtPlanB::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                    AlignedBufferC<64> memory) const {
    root.run(pars, report, result, memory);
    return false;
}

GoldenRatioPlanB::GoldenRatioPlanB(MultiplyTables& tables, std::size_t precision_words, std::uint32_t tasks)
    : ConstantPlanB(tables, precision_words, tasks), ratio(1, w, tds) {
    ratio.ensure_tables(tables);
    memory_budget.emplace_back("Golden Ratio", padded_bytes(ratio.result_words * sizeof(wtype)) + ratio.memory_bytes);
}

bool GoldenRatioPlanB::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                           AlignedBufferC<64> memory) const {
    ratio.run(pars, report, result, memory);
    return false;
}

} // namespace zvp
