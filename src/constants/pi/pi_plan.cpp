#include "constants/pi/pi_plan.h"

namespace zvp {

PiPlanB::PiPlanB(MultiplyTables& tables, PiSeries series_, bool reduced_, std::size_t precision_words,
                 std::uint32_t tasks)
    : ConstantPlanB(tables, precision_words, tasks),
      series(series_),
      reduced(reduced_),
      pi(series, -1, w, tds, reduced) {
    pi.ensure_tables(tables);
    memory_budget.emplace_back("Pi", pi.result_words * sizeof(wtype) + pi.memory_bytes);
}

std::string PiPlanB::short_algorithm_name() const {
    return std::string(series == PiSeries::chudnovsky ? "Chudnovsky" : "Ramanujan") + (reduced ? " (reduced)" : "");
}

std::string PiPlanB::long_algorithm_name() const {
    return std::string(series == PiSeries::chudnovsky ? "Chudnovsky (1988)" : "Ramanujan (1910)")
           + (reduced ? " (reduced memory)" : "");
}

bool PiPlanB::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                  AlignedBufferC<64> memory) const {
    pi.run(pars, report, result, memory);
    return false;
}

} // namespace zvp
