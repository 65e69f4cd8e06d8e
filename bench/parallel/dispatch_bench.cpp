// From dispatch to return: an empty pair and an empty range of 16 tasks under each framework.

#include "parallel/tasks/framework_config.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace {

struct Empty final : zvp::BasicAction {
    void run(std::uint32_t) override {}
};

/// Times each call by itself: what counts is the median, as a call that wakes a thread now and then takes many times as
/// long.
template <class Call>
void measure(benchmark::State& state, Call call) {
    std::vector<double> seconds;
    for (auto _ : state) {
        const auto began = std::chrono::steady_clock::now();
        call();
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count());
        state.SetIterationTime(seconds.back());
    }
    std::sort(seconds.begin(), seconds.end());
    state.counters["median"] = seconds[seconds.size() / 2];
    state.counters["p99"] = seconds[seconds.size() * 99 / 100];
}

void pair(benchmark::State& state, const std::string& key) {
    const auto framework = zvp::make_framework_config(key)->make_framework();
    Empty first, second;
    measure(state, [&] { framework->run_in_parallel(first, second); });
}

void range_of_16(benchmark::State& state, const std::string& key) {
    const auto framework = zvp::make_framework_config(key)->make_framework();
    Empty action;
    measure(state, [&] { framework->run_in_parallel(action, 0, 16); });
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    for (const std::string& key : zvp::framework_registry().names()) {
        benchmark::RegisterBenchmark((key + "/pair").c_str(), pair, key)->UseManualTime()->Iterations(20'000);
        benchmark::RegisterBenchmark((key + "/range16").c_str(), range_of_16, key)->UseManualTime()->Iterations(2'000);
    }
    benchmark::RunSpecifiedBenchmarks();
}
