// Chudnovsky's series, as Pi takes it, in one truncated block of the precision, as the first and last block of a constant
// would be, and exactly; then as Pi sums it, in blocks with the division at the end: the times, and the shares of the leaves
// alone and of the residue check. All take turns, one thread and two: times and ratios are medians of the rounds, by the
// clock. Arguments: the decimal digits of each row.

#include "constants/pi/pi_sum.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/tasks/framework_config.h"
#include "platform/clock.h"
#include "series/double_double/size_units.h"
#include "series/splitting/block.h"
#include "series/splitting/verify.h"
#include "support/large_block.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace zvp;
namespace bs = zvp::BinarySplitting;
using bs::CommonP2B3::Family;

double seconds_of(const std::function<void()>& call) {
    const std::uint64_t began = platform::performance_counter();
    call();
    return static_cast<double>(platform::performance_counter() - began) * 1e-9;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Of each round the first value by the second.
double median_ratio(const std::vector<double>& a, const std::vector<double>& b) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < a.size(); ++i) ratios.push_back(a[i] / b[i]);
    return median(ratios);
}

wtype* words_of(const LargeBlock& memory) { return reinterpret_cast<wtype*>(memory.get()); }

/// A block with its memory.
class Run {
public:
    Run(const PiChudnovskySeries& series, std::size_t words, std::uint32_t tds)
        : block(series, 0, series.N, words, tds, 1, 0, true), scratch(block.plan.scratch_bytes) {
        for (std::size_t i = 0; i < Family::numbers; ++i)
            numbers.push_back(std::make_unique<LargeBlock>(capacity(i) * sizeof(wtype)));
        block.ensure_tables(tables);
        table_memory = std::make_unique<LargeBlock>(tables.bytes());
        tables.place(table_memory->get());
        pars.tables = &tables;
        pars.M = scratch.get();
        pars.ML = block.plan.scratch_bytes;
        pars.tds = tds;
        pars.framework = framework.get();
    }

    template <class Number>
    Family::Numbers<Number> run() const {
        Family::Numbers<Number> targets;
        for (std::size_t i = 0; i < Family::numbers; ++i) targets[i] = Number(words_of(*numbers[i]), capacity(i));
        block.run(pars, nullptr, targets);
        return targets;
    }

    /// The leaves of (a, b] and nothing else, each on the start of the storage.
    void run_leaves(std::uint64_t a, std::uint64_t b) const {
        const auto& series = block.series;
        if (b - a < series.leaf_terms) {
            bs::ExactNumber n[Family::numbers];
            for (std::size_t i = 0; i < Family::numbers; ++i)
                n[i] = bs::ExactNumber(words_of(*numbers[i]), capacity(i));
            return series.BSR_E(pars, n[0], n[1], n[2], n[3], a, b);
        }
        const std::uint64_t m = b - a <= bs::plain_split_terms ? a + (b - a) / 2 : series.midpoint(a, b);
        run_leaves(a, m);
        run_leaves(m, b);
    }

    const bs::BSR_BlockB<Family> block;
    MultiplyParameters pars;

private:
    std::size_t capacity(std::size_t i) const {
        return i < Family::results ? block.plan.number_words : block.plan.scratch_number_words;
    }

    std::unique_ptr<ParallelFramework> framework = make_framework_config("pushpool")->make_framework();
    MultiplyTables tables;
    std::vector<std::unique_ptr<LargeBlock>> numbers;
    std::unique_ptr<LargeBlock> table_memory;
    LargeBlock scratch;
};

/// The series' value as Pi takes it: blocks of falling precision, folded, and the division at the end.
class Value {
public:
    Value(std::size_t words, std::uint32_t tds)
        : pi(PiSeries::chudnovsky, -1, words, tds, false),
          number(pi.result_words * sizeof(wtype)),
          memory(pi.memory_bytes) {
        pi.ensure_tables(tables);
        table_memory = std::make_unique<LargeBlock>(tables.bytes());
        tables.place(table_memory->get());
        pars.tds = tds;
        pars.framework = framework.get();
        pars.tables = &tables;
    }

    void run() const {
        BigFloat value(words_of(number), pi.result_words);
        pi.sum.run(pars, {}, value, {memory.get(), pi.memory_bytes});
    }

private:
    const Pi_Series_BigFloatR pi;
    std::unique_ptr<ParallelFramework> framework = make_framework_config("pushpool")->make_framework();
    MultiplyTables tables;
    MultiplyParameters pars;
    LargeBlock number, memory;
    std::unique_ptr<LargeBlock> table_memory;
};

void bench(std::uint64_t digits) {
    const double nats = static_cast<double>(digits) / digits_per_nat().hi;
    const auto words = static_cast<std::size_t>(nats * words_per_nat().hi) + 3;
    const PiChudnovskySeries series(words);
    const int rounds = digits <= 200'000 ? 41 : digits <= 2'000'000 ? 21 : 5;
    const Run one(series, words, 1), two(series, words, 2);
    const Value value_one(words, 1), value_two(words, 2);
    enum Row { truncated, exact, value, leaves, check, truncated_two, value_two_tasks, rows };
    std::vector<double> seconds[rows];
    for (int round = 0; round < rounds; ++round) {
        const auto time = [&](Row row, const std::function<void()>& call) { seconds[row].push_back(seconds_of(call)); };
        Family::Numbers<bs::ExactNumber> results;
        time(truncated, [&] { one.run<BigFloat>(); });
        time(leaves, [&] { one.run_leaves(0, series.N); });
        time(value, [&] { value_one.run(); });
        time(exact, [&] { results = one.run<bs::ExactNumber>(); });
        time(check, [&] { bs::zvc_Verify_BSR(0, series.N, {results.data(), 2}, one.pars); });
        time(truncated_two, [&] { two.run<BigFloat>(); });
        time(value_two_tasks, [&] { value_two.run(); });
    }
    const auto ms = [&](Row row) { return median(seconds[row]) * 1e3; };
    const auto percent = [&](Row a, Row b) { return median_ratio(seconds[a], seconds[b]) * 100; };
    std::printf("%llu digits, %llu terms\n", static_cast<unsigned long long>(digits),
                static_cast<unsigned long long>(series.N));
    std::printf("  truncated            %10.3f ms, %6.1f ns/digit   two tasks %10.3f ms, speedup %4.2f\n",
                ms(truncated), ms(truncated) * 1e6 / static_cast<double>(digits), ms(truncated_two),
                median_ratio(seconds[truncated], seconds[truncated_two]));
    std::printf("  blocks and division  %10.3f ms, %6.1f ns/digit   two tasks %10.3f ms, speedup %4.2f\n", ms(value),
                ms(value) * 1e6 / static_cast<double>(digits), ms(value_two_tasks),
                median_ratio(seconds[value], seconds[value_two_tasks]));
    std::printf(
        "  leaves               %10.3f ms, %6.1f ns/term    %4.1f %% of truncated, %4.1f %% of blocks and division\n",
        ms(leaves), ms(leaves) * 1e6 / static_cast<double>(series.N), percent(leaves, truncated),
        percent(leaves, value));
    std::printf("  exact                %10.3f ms                    check %7.3f ms, %5.2f %% of it\n", ms(exact),
                ms(check), percent(check, exact));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::uint64_t> digits;
    for (int i = 1; i < argc; ++i) digits.push_back(std::strtoull(argv[i], nullptr, 10));
    if (digits.empty()) digits = {100'000, 1'000'000, 10'000'000};
    for (const std::uint64_t n : digits) bench(n);
}
