// Terms per second of the digit extractor: the kernels alone, then whole records on threads.

#include "bbp/bbp_kernels.h"
#include "bbp/threaded_sum.h"
#include "support/core_clock.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace BBPv2;
using zvp::platform::KernelSet;

// The middle of a computation at offset 10^9: exponents of 32 bits, four digits for 32 hexadecimal ones.
constexpr std::uint64_t offset = 1'000'000'000;
constexpr std::size_t digit_count = 4;
constexpr PowerTerms typical_terms{8 * (offset / 4) + 1, 8, 4 * offset - offset, 4, max_call_terms};

using PowerKernel = KernelSet (*)(std::int64_t*, std::size_t, const PowerTerms&);

void sum_powers(benchmark::State& state, PowerKernel kernel) {
    alignas(64) std::int64_t digits[8 * digit_count]{};
    const double clock_before = bench::core_clock();
    for (auto _ : state) {
        kernel(digits, digit_count, typical_terms);
        benchmark::DoNotOptimize(digits);
    }
    const double clock = (clock_before + bench::core_clock()) / 2;
    const auto terms = static_cast<double>(state.iterations()) * static_cast<double>(max_call_terms);
    state.counters["terms/s"] = benchmark::Counter(terms, benchmark::Counter::kIsRate);
    state.counters["cycles/term"] =
        benchmark::Counter(terms / clock, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Range 0 is the number of threads.
void sum_whole_record(benchmark::State& state) {
    const ModeA mode(bbp_kernels(zvp::platform::active_kernel_set()));
    const auto threads = static_cast<std::uint32_t>(state.range(0));
    constexpr std::uint64_t terms = 100'000'000;
    const TermRecord record{8, 1, -4, 4 * static_cast<std::int64_t>(terms) + 2, true};
    for (auto _ : state)
        benchmark::DoNotOptimize(sum_record(record, terms, 6, {&mode}, {threads, true}, [](std::uint64_t) {}));
    state.counters["terms/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * terms, benchmark::Counter::kIsRate);
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    for (const KernelSet set : zvp::platform::all_kernel_sets) {
        if (!zvp::platform::kernel_set_supported(set)) continue;
        const std::string name(zvp::platform::kernel_set_name(set));
        const BBPKernels& kernels = bbp_kernels(set);
        benchmark::RegisterBenchmark((name + "/mode_a").c_str(), sum_powers, kernels.sum_powers_mode_a);
        benchmark::RegisterBenchmark((name + "/mode_b").c_str(), sum_powers, kernels.sum_powers_mode_b);
    }
    for (const int threads : {1, 2})
        benchmark::RegisterBenchmark("record/threads", sum_whole_record)
            ->Arg(threads)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
}
