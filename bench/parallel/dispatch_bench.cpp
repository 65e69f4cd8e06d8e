// From dispatch to return: an empty pair and an empty range of 16 tasks under each framework. And what the length of a
// spinning wait is to be weighed against: one round of it (spin), and putting a thread to sleep and waking it (wake).

#include "parallel/tasks/framework_config.h"
#include "platform/threads.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
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

void spin(benchmark::State& state) {
    const std::atomic<bool> over{false};
    for (auto _ : state) {
        if (over.load(std::memory_order_acquire)) return;
        zvp::platform::spin_pause();
    }
}

/// From the waker's notification to the woken thread's first step; the thread has had the time to fall asleep.
void wake(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    std::mutex mutex;
    std::condition_variable condition;
    bool called = false, ends = false;
    std::atomic<Clock::rep> woken{0};
    std::thread sleeper([&] {
        std::unique_lock lock(mutex);
        for (;;) {
            condition.wait(lock, [&] { return called || ends; });
            if (ends) return;
            woken = Clock::now().time_since_epoch().count();
            called = false;
        }
    });
    const auto notify = [&](bool& flag) {
        const std::lock_guard lock(mutex);
        flag = true;
        condition.notify_one();
    };
    std::vector<double> seconds;
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        woken = 0;
        const auto began = Clock::now();
        notify(called);
        const auto notified = Clock::now();
        while (woken == 0) zvp::platform::spin_pause();
        const auto end = std::max(notified, Clock::time_point(Clock::duration(woken)));
        seconds.push_back(std::chrono::duration<double>(end - began).count());
        state.SetIterationTime(seconds.back());
    }
    notify(ends);
    sleeper.join();
    std::sort(seconds.begin(), seconds.end());
    state.counters["median"] = seconds[seconds.size() / 2];
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    for (const std::string& key : zvp::framework_registry().names()) {
        benchmark::RegisterBenchmark((key + "/pair").c_str(), pair, key)->UseManualTime()->Iterations(20'000);
        benchmark::RegisterBenchmark((key + "/range16").c_str(), range_of_16, key)->UseManualTime()->Iterations(2'000);
    }
    benchmark::RegisterBenchmark("spin", spin);
    benchmark::RegisterBenchmark("wake", wake)->UseManualTime()->Iterations(2'000);
    benchmark::RunSpecifiedBenchmarks();
}
