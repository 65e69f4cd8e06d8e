#include "constants/pi/pi_sum.h"

#include "functions/iteration_plan.h"
#include "parallel/memory/carving.h"
#include "series/plans/fold_products.h"

#include <algorithm>
#include <string>

namespace zvp {
namespace {

using BinarySplitting::FactorialSeries;

constexpr const char* function = "Pi_Series_BigFloatR::run()";

/// T = (c1 S + c2) / c3, or its reciprocal, and T / sqrt(d) is Pi or 1/Pi.
struct PiFormula {
    std::int32_t c1, c2;
    std::uint32_t c3;
    wtype d;
};

PiFormula formula(PiSeries series, int power) {
    if (series == PiSeries::chudnovsky)
        return {1, 13'591'409, power == 1 ? 426'880u : 4'270'934'400u, 10'005}; // the latter times 10005
    if (power == 1) return {4, 4'412, 9'801, 2};
    return {1, 1'103, 9'801, 8};
}

std::unique_ptr<const FactorialSeries> make_series(PiSeries series, std::size_t precision_words) {
    if (series == PiSeries::chudnovsky) return std::make_unique<PiChudnovskySeries>(precision_words);
    return std::make_unique<PiRamanujanSeries>(precision_words);
}

/// The longest product of the last multiplication.
constexpr std::size_t last_product(std::size_t precision_words) { return 2 * (precision_words + 5); }

} // namespace

std::uint64_t Pi_Series_BigFloatR::product_bytes(std::size_t precision_words, std::uint32_t tasks) {
    return product_memory(last_product(precision_words), tasks);
}

Pi_Series_BigFloatR::Pi_Series_BigFloatR(PiSeries which, int power, std::size_t precision_words, std::uint32_t tasks,
                                         bool reduced)
    : series(make_series(which, precision_words)),
      sum(*series, power, formula(which, power).c1, formula(which, power).c2, formula(which, power).c3, precision_words,
          tasks, reduced),
      d(formula(which, power).d),
      root(precision_words, tasks),
      root_words(padded_words(root.result_words)),
      result_words(sum.result_words),
      memory_bytes(std::max(sum.memory_bytes, root_words * sizeof(wtype)
                                                  + std::max(padded_words(root.buffer_words) * sizeof(wtype)
                                                                 + padded_bytes(root.memory_bytes),
                                                             product_bytes(precision_words, tasks)))) {}

void Pi_Series_BigFloatR::run(const MultiplyParameters& caller, const RunReport& report, BigFloat& result,
                              AlignedBufferC<64> memory) const {
    check_size(function, result.capacity, result_words);
    check_size(function, memory.bytes, memory_bytes);
    sum.run(caller, report, result, memory);

    MultiplyParameters pars = caller;
    pars.status = nullptr;
    const LinearWordBuffer root_storage = memory.spawn_words(root_words);
    BigFloat inverse(root_storage.pointer, root_storage.words);
    {
        AlignedBufferC<64> rest = memory;
        const LinearWordBuffer buffer = rest.spawn_words(padded_words(root.buffer_words));
        pars.M = rest.pointer;
        pars.ML = rest.bytes;
        report.log("InvSqrt(" + std::to_string(d) + ")");
        root.run_task(pars, report.sink, inverse, d, root.p, buffer);
    }
    const ReportedTask task(report, "Large Multiply", "Large Multiply...");
    pars.M = memory.pointer;
    pars.ML = memory.bytes;
    BinarySplitting::multiply_in_place(pars, result, result, inverse, root.p);
}

void Pi_Series_BigFloatR::ensure_tables(MultiplyTables& tables) const {
    sum.ensure_tables(tables);
    root.ensure_tables(tables);
    ensure_product_tables(tables, last_product(root.p));
}

} // namespace zvp
