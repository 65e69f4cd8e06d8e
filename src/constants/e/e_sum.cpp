#include "constants/e/e_sum.h"

#include "app/failure/exceptions.h"

namespace zvp {
namespace {

int checked_power(bool alternating, int power) {
    constexpr const char* function = "e_Taylor_BigFloatR()";
    if (power != 1 && power != -1) throw InvalidParametersException(function, "Power must be 1 or -1.");
    if (power == -1 && !alternating)
        throw InvalidParametersException(function, "Inversion not supported for non-alternating series.");
    return power;
}

} // namespace

e_Taylor_BigFloatR::e_Taylor_BigFloatR(bool alternating, int power, std::size_t precision_words, std::uint32_t tasks)
    : series(alternating, precision_words),
      sum(series, checked_power(alternating, power), 1, 0, 1, precision_words, tasks),
      result_words(sum.result_words),
      memory_bytes(sum.memory_bytes) {}

// The sum of 1/k! begins at 1/2!; that of (-1)^k / k! is exp(-1) as it is, for its first two terms cancel.
void e_Taylor_BigFloatR::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                             AlignedBufferC<64> memory) const {
    sum.run(pars, report, result, memory);
    if (!series.alternating) result.add_ip(2, 0);
}

EPlanB::EPlanB(MultiplyTables& tables, bool alternating, std::size_t precision_words, std::uint32_t tasks)
    : ConstantPlanB(tables, precision_words, tasks), e(alternating, alternating ? -1 : 1, w, tds) {
    e.ensure_tables(tables);
    memory_budget.emplace_back("e", e.result_words * sizeof(wtype) + e.memory_bytes);
}

std::string EPlanB::short_algorithm_name() const { return e.series.alternating ? "exp(-1)" : "exp(1)"; }

std::string EPlanB::long_algorithm_name() const { return "Taylor Series of " + short_algorithm_name(); }

bool EPlanB::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& result,
                 AlignedBufferC<64> memory) const {
    e.run(pars, report, result, memory);
    return false;
}

} // namespace zvp
