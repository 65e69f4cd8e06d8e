// Which plan computes which constant.

#include "constants/catalog/argument_constants.h"
#include "constants/catalog/plain_constants.h"
#include "constants/e/e_sum.h"
#include "constants/pi/pi_plan.h"
#include "constants/roots/root_plans.h"

namespace zvp {

std::unique_ptr<ConstantPlanB> SqrtConstant::make_plan(MultiplyTables& tables, std::uint32_t tasks) const {
    return std::make_unique<SqrtPlanB>(tables, argument, working_words(), tasks);
}

std::unique_ptr<ConstantPlanB> GoldenRatioConstant::make_plan(MultiplyTables& tables, std::uint32_t tasks) const {
    return std::make_unique<GoldenRatioPlanB>(tables, working_words(), tasks);
}

std::unique_ptr<ConstantPlanB> EConstant::make_plan(MultiplyTables& tables, std::uint32_t tasks) const {
    return std::make_unique<EPlanB>(tables, algorithm == 1, working_words(), tasks);
}

std::unique_ptr<ConstantPlanB> PiConstant::make_plan(MultiplyTables& tables, std::uint32_t tasks) const {
    const PiSeries series = algorithm % 2 == 0 ? PiSeries::chudnovsky : PiSeries::ramanujan;
    return std::make_unique<PiPlanB>(tables, series, algorithm >= 2, working_words(), tasks);
}

} // namespace zvp
