// Chudnovsky's series, as Pi takes it, in one truncated block of the precision, as the first and last block of a constant
// would be, and exactly; then as Pi sums it, in blocks with the division at the end: the times, and the shares of the leaves
// alone and of the residue check. Times are the least of several runs by the wall clock; leaves and check are timed on one
// thread. Arguments: the decimal digits of each row.

#include "constants/pi/pi_sum.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/tasks/framework_config.h"
#include "platform/clock.h"
#include "series/double_double/size_units.h"
#include "series/splitting/block.h"
#include "series/splitting/verify.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace zvp;
namespace bs = zvp::BinarySplitting;
using bs::CommonP2B3::Family;

struct Free {
    void operator()(void* p) const { std::free(p); }
};

class Memory {
public:
    explicit Memory(std::size_t bytes) : block(std::aligned_alloc(64, (bytes + 127) / 64 * 64)) {}
    std::byte* get() const { return static_cast<std::byte*>(block.get()); }
    wtype* words() const { return static_cast<wtype*>(block.get()); }

private:
    std::unique_ptr<void, Free> block;
};

double least_seconds(int rounds, const std::function<void()>& call) {
    double least = 1e99;
    for (int i = 0; i < rounds; ++i) {
        const std::uint64_t began = platform::performance_counter();
        call();
        least = std::min(least, static_cast<double>(platform::performance_counter() - began) * 1e-9);
    }
    return least;
}

/// A block with its memory.
class Run {
public:
    Run(const PiChudnovskySeries& series, std::size_t words, std::uint32_t tds)
        : block(series, 0, series.N, words, tds, 1, 0, true), scratch(block.plan.scratch_bytes) {
        for (std::size_t i = 0; i < Family::numbers; ++i) numbers.emplace_back(capacity(i) * sizeof(wtype));
        block.ensure_tables(tables);
        table_memory = std::make_unique<Memory>(tables.bytes());
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
        for (std::size_t i = 0; i < Family::numbers; ++i) targets[i] = Number(numbers[i].words(), capacity(i));
        block.run(pars, nullptr, targets);
        return targets;
    }

    /// The leaves of (a, b] and nothing else, each on the start of the storage.
    void run_leaves(std::uint64_t a, std::uint64_t b) const {
        const auto& series = block.series;
        if (b - a < series.leaf_terms) {
            bs::ExactNumber n[Family::numbers];
            for (std::size_t i = 0; i < Family::numbers; ++i) n[i] = bs::ExactNumber(numbers[i].words(), capacity(i));
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
    std::vector<Memory> numbers;
    std::unique_ptr<Memory> table_memory;
    Memory scratch;
};

/// Seconds of the series' value as Pi takes it: blocks of falling precision, folded, and the division at the end.
double value_seconds(std::size_t words, std::uint32_t tds, int rounds) {
    const Pi_Series_BigFloatR pi(PiSeries::chudnovsky, -1, words, tds, false);
    const std::unique_ptr<ParallelFramework> framework = make_framework_config("pushpool")->make_framework();
    MultiplyTables tables;
    pi.ensure_tables(tables);
    const Memory table_memory(tables.bytes()), number(pi.result_words * sizeof(wtype)), memory(pi.memory_bytes);
    tables.place(table_memory.get());
    MultiplyParameters pars;
    pars.tds = tds;
    pars.framework = framework.get();
    pars.tables = &tables;
    return least_seconds(rounds, [&] {
        BigFloat value(number.words(), pi.result_words);
        pi.sum.run(pars, {}, value, {memory.get(), pi.memory_bytes});
    });
}

void bench(std::uint64_t digits) {
    const double nats = static_cast<double>(digits) / digits_per_nat().hi;
    const auto words = static_cast<std::size_t>(nats * words_per_nat().hi) + 3;
    const PiChudnovskySeries series(words);
    const int rounds = digits <= 200'000 ? 15 : digits <= 2'000'000 ? 5 : 2;
    std::printf("%llu digits, %llu terms\n", static_cast<unsigned long long>(digits),
                static_cast<unsigned long long>(series.N));
    double first = 0;
    for (const std::uint32_t tds : {1U, 2U}) {
        const Run run(series, words, tds);
        const double whole = least_seconds(rounds, [&] { run.run<BigFloat>(); });
        const double exact = least_seconds(rounds, [&] { run.run<bs::ExactNumber>(); });
        if (tds == 1) first = whole;
        std::printf("  %u task%s  truncated %10.3f ms  %8.1f ns/digit  speedup %4.2f   exact %10.3f ms\n", tds,
                    tds == 1 ? " " : "s", whole * 1e3, whole * 1e9 / static_cast<double>(digits), first / whole,
                    exact * 1e3);
        const double value = value_seconds(words, tds, rounds);
        std::printf("           blocks and division %10.3f ms\n", value * 1e3);
        if (tds > 1) continue;
        const double leaves = least_seconds(rounds, [&] { run.run_leaves(0, series.N); });
        const auto results = run.run<bs::ExactNumber>();
        const double check = least_seconds(rounds, [&] {
            bs::zvc_Verify_BSR(0, series.N, {results.data(), 2}, run.pars);
        });
        std::printf(
            "           leaves %10.3f ms = %4.1f %% of truncated, %4.1f %% of blocks and division, %6.1f ns/term   "
            "merges %5.1f %%   check %7.3f ms = %5.2f %% of exact\n",
            leaves * 1e3, leaves / whole * 100, leaves / value * 100, leaves * 1e9 / static_cast<double>(series.N),
            (whole - leaves) / whole * 100, check * 1e3, check / exact * 100);
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::uint64_t> digits;
    for (int i = 1; i < argc; ++i) digits.push_back(std::strtoull(argv[i], nullptr, 10));
    if (digits.empty()) digits = {100'000, 1'000'000, 10'000'000};
    for (const std::uint64_t n : digits) bench(n);
}
