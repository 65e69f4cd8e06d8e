#include "constants/plan/constant_plan.h"

#include "functions/iteration_plan.h"

#include <algorithm>

namespace zvp {

ConstantPlanB::ConstantPlanB(MultiplyTables& tables, std::size_t precision_words, std::uint32_t tasks)
    : w(precision_words), tds(std::max<std::uint32_t>(tasks, 1)) {
    ensure_product_tables(tables, 2 * (w + 10));
}

} // namespace zvp
