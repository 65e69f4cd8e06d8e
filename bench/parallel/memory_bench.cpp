// Bytes per second of getting large memory ready, beside memset on the same block: fresh pages (the system's price
// included) and pages that are there already.

#include "parallel/memory/page_lock.h"
#include "parallel/memory/residency.h"
#include "parallel/memory/touch.h"
#include "parallel/tasks/push_pool.h"
#include "platform/memory.h"
#include "platform/threads.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace zvp;
using platform::PageKind;

constexpr std::size_t block_bytes = std::size_t{1} << 30;

void set_rate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(block_bytes));
}

/// Calls work(block) on a new block each time; the clock runs in `work` only.
template <class Function>
void on_fresh_blocks(benchmark::State& state, PageKind kind, Function&& work) {
    platform::MemorySystem& system = platform::memory_system();
    for (auto _ : state) {
        state.PauseTiming();
        const platform::Mapping block = system.map(block_bytes, 4096, kind);
        if (!block.base) return state.SkipWithError("no such pages");
        state.ResumeTiming();
        work(block.data);
        state.PauseTiming();
        system.release(block);
        state.ResumeTiming();
    }
    set_rate(state);
}

void fresh_memset(benchmark::State& state, PageKind kind) {
    on_fresh_blocks(state, kind, [](std::byte* p) { std::memset(p, 1, block_bytes); });
}

void fresh_touch(benchmark::State& state, PageKind kind) {
    on_fresh_blocks(state, kind, [](std::byte* p) { touch(p, block_bytes); });
}

void fresh_parallel_touch(benchmark::State& state, PageKind kind) {
    PushPool pool({}, [](std::uint32_t) {});
    const auto tasks = static_cast<std::uint32_t>(8 * platform::usable_cores().size());
    on_fresh_blocks(state, kind, [&](std::byte* p) { touch_in_parallel({tasks, &pool}, p, block_bytes); });
}

void lock_fresh(benchmark::State& state) {
    std::size_t locked = 0;
    on_fresh_blocks(state, PageKind::small,
                    [&](std::byte* p) { locked = lock_region(platform::memory_system(), p, block_bytes); });
    state.counters["locked %"] = 100.0 * static_cast<double>(locked) / static_cast<double>(block_bytes);
}

/// Calls work(block) on one block that is there.
template <class Function>
void on_touched_block(benchmark::State& state, Function&& work) {
    platform::MemorySystem& system = platform::memory_system();
    const platform::Mapping block = system.map(block_bytes, 4096, PageKind::small);
    if (!block.base) return state.SkipWithError("no memory");
    std::memset(block.data, 1, block_bytes);
    for (auto _ : state) work(block.data);
    set_rate(state);
    system.release(block);
}

void warm_memset(benchmark::State& state) {
    on_touched_block(state, [](std::byte* p) { std::memset(p, 1, block_bytes); });
}

void warm_touch(benchmark::State& state) {
    on_touched_block(state, [](std::byte* p) { touch(p, block_bytes); });
}

/// Locking pages that are there.
void lock_touched(benchmark::State& state) {
    on_fresh_blocks(state, PageKind::small, [&](std::byte* p) {
        state.PauseTiming();
        std::memset(p, 1, block_bytes);
        state.ResumeTiming();
        lock_region(platform::memory_system(), p, block_bytes);
    });
}

void ask_nodes(benchmark::State& state) {
    on_touched_block(state, [](std::byte* p) {
        benchmark::DoNotOptimize(count_node_bytes({}, platform::memory_system(), p, block_bytes));
    });
}

/// How a page of 4 KiB gets its node: by the policy of the thread that touches it, or by a binding of the page, which is
/// taken back behind the touch so that mappings don't run out.
enum class Placement { policy, binding };

/// Two threads place and touch every other page of 256 MiB each.
void place(benchmark::State& state, Placement placement) {
    constexpr std::size_t page = 4096, bytes = 256 << 20;
    constexpr int preferred = 1, plain = 0;
    const std::array<unsigned long, 64> mask{1};
    const auto fill = [&](std::byte* p) {
        if (placement == Placement::policy) syscall(SYS_set_mempolicy, preferred, mask.data(), 4096);
        for (std::size_t at = 0; at < bytes; at += 2 * page) {
            if (placement == Placement::binding) syscall(SYS_mbind, p + at, page, preferred, mask.data(), 4096, 0);
            p[at] = std::byte{1};
            if (placement == Placement::binding) syscall(SYS_mbind, p + at, page, plain, nullptr, 0, 0);
        }
    };
    platform::MemorySystem& system = platform::memory_system();
    for (auto _ : state) {
        state.PauseTiming();
        const platform::Mapping block = system.map(bytes, page, PageKind::small);
        if (!block.base) return state.SkipWithError("no memory");
        state.ResumeTiming();
        std::thread odd(fill, block.data + page), even(fill, block.data);
        odd.join();
        even.join();
        state.PauseTiming();
        system.release(block);
        state.ResumeTiming();
    }
    state.counters["page"] = benchmark::Counter(static_cast<double>(state.iterations() * (bytes / page)),
                                                benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK_CAPTURE(place, policy, Placement::policy)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(place, binding, Placement::binding)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_memset, small, PageKind::small)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_touch, small, PageKind::small)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_parallel_touch, small, PageKind::small)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_memset, large, PageKind::large_transparent)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_touch, large, PageKind::large_transparent)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(fresh_parallel_touch, large, PageKind::large_transparent)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(warm_memset)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(warm_touch)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(lock_fresh)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(lock_touched)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ask_nodes)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
