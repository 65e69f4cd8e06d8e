#include "series/plans/psr_series.h"

#include "functions/iteration_plan.h"
#include "parallel/memory/carving.h"
#include "series/splitting/verify.h"

#include <algorithm>

namespace zvp::BinarySplitting {
namespace {

constexpr const char* function = "PSR_SeriesB::run()";

BigFloat spawn_number(AlignedBufferC<64>& memory, std::size_t words) {
    const LinearWordBuffer storage = memory.spawn_words(words);
    return {storage.pointer, storage.words};
}

constexpr std::uint64_t bytes_of(std::size_t words) { return std::uint64_t{words} * sizeof(wtype); }

/// The sum's task with the status of its parts.
template <class Sum>
void run_sum(const RunReport& report, const std::string& heading, Sum&& sum) {
    const ReportedTask task(report, heading, heading);
    if (StatusNode* node = task.node()) node->push_cell({'w', "Summing: "});
    sum(task.node());
}

} // namespace

template <class Family>
PSR_SeriesB<Family>::PSR_SeriesB(const Series& series_, int power, std::int32_t c1, std::int32_t c2, std::uint32_t c3,
                                 std::size_t precision, std::uint32_t tasks, bool halve_plan)
    : series(series_),
      finish("PSR_SeriesB()", power, {c1, c2, c3}, precision, tasks),
      sum(series, precision, tasks, halve_plan, finish.memory_bytes),
      number_words(std::max(sum.running_words, finish.number_words)),
      result_words(std::max(number_words, finish.result_words)),
      memory_bytes(bytes_of(number_words) + std::max(sum.memory_bytes, finish.memory_bytes)) {}

template <class Family>
void PSR_SeriesB<Family>::run(const MultiplyParameters& pars, const RunReport& report, BigFloat& out,
                              AlignedBufferC<64> memory) const {
    check_size(function, out.capacity, result_words);
    check_size(function, memory.bytes, memory_bytes);
    std::array<BigFloat, 2> running{BigFloat(out.buffer, out.capacity), spawn_number(memory, number_words)};
    run_sum(report, sum_heading(Folding<Family>::heading, series, finish.division.p),
            [&](StatusNode* status) { sum.run(pars, status, running, memory); });
    report.log("Finishing Series");
    finish.run(pars, report, out, running[0], running[1], memory);
}

template <class Family>
void PSR_SeriesB<Family>::ensure_tables(MultiplyTables& tables) const {
    sum.ensure_tables(tables);
    finish.ensure_tables(tables);
}

template class PSR_SeriesB<CommonP2B3::Family>;
template class PSR_SeriesB<BinaryBBP::Family>;

namespace Hyperdescent {

SeriesB::SeriesB(const Series& series_, int power, std::int32_t c1, std::int32_t c2, std::uint32_t c3,
                 std::size_t precision_, std::uint32_t tasks)
    : series(series_),
      precision(precision_),
      finish("PSR_SeriesB()", power, {c1, c2, c3}, precision, tasks),
      block(series, 0, series.N, max_limit, tasks, 1, 0, true),
      number_words(std::max(block.plan.number_words, finish.number_words)),
      result_words(finish.result_words),
      memory_bytes(2 * bytes_of(number_words)
                   + std::max<std::uint64_t>(padded_bytes(block.plan.scratch_bytes), finish.memory_bytes)) {}

void SeriesB::run(const MultiplyParameters& caller, const RunReport& report, BigFloat& out,
                  AlignedBufferC<64> memory) const {
    check_size("Hyperdescent::SeriesB::run()", out.capacity, result_words);
    check_size(function, memory.bytes, memory_bytes);
    const LinearWordBuffer P_words = memory.spawn_words(number_words), Q_words = memory.spawn_words(number_words);
    BSR_BlockB<Family>::ExactNumbers numbers{ExactNumber(P_words.pointer, P_words.words),
                                             ExactNumber(Q_words.pointer, Q_words.words)};
    MultiplyParameters pars = caller;
    pars.status = nullptr;
    pars.M = memory.pointer;
    pars.ML = memory.bytes;
    run_sum(report, sum_heading(heading, series, precision), [&](StatusNode* status) {
        block.run(pars, status, numbers);
        zvc_Verify_BSR(0, series.N, numbers, pars);
    });
    report.log("Finishing Series");
    finish.run(caller, report, out, as_float(numbers[P]), as_float(numbers[Q]), memory);
}

void SeriesB::ensure_tables(MultiplyTables& tables) const {
    block.ensure_tables(tables);
    finish.ensure_tables(tables);
}

} // namespace Hyperdescent
} // namespace zvp::BinarySplitting
