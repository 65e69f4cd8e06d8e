// Bytes per second of the hash and the digit counts on one thread: every kernel set, on data that fits the caches and on
// data that doesn't, beside memset, memcpy and a plain sum of the same bytes.

#include "digits/digest/sha2.h"
#include "digits/hash/digit_counts.h"
#include "digits/hash/digit_hash.h"
#include "digits/hash/digit_kernels.h"
#include "digits/hash/word_hash.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace zvp;

constexpr std::int64_t cached_bytes = 256 << 10;
constexpr std::int64_t far_bytes = 256 << 20;

/// Range 0 is the number of bytes. work(data) is called on random bytes below `limit`.
template <class Function>
void on_bytes(benchmark::State& state, unsigned limit, Function&& work) {
    std::vector<std::uint64_t> words(static_cast<std::size_t>(state.range(0)) / 8 + 8);
    auto* bytes = reinterpret_cast<std::uint8_t*>(words.data());
    std::mt19937_64 random(1);
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < 8 * words.size(); ++i) {
        if (i % 8 == 0) last = random();
        bytes[i] = static_cast<std::uint8_t>((last >> i % 8 * 8 & 255) % limit);
    }
    bytes += (0 - reinterpret_cast<std::uintptr_t>(bytes)) % 64;
    for (auto _ : state) work(bytes);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

void run_memset(benchmark::State& state) {
    on_bytes(state, 256, [&](std::uint8_t* p) {
        std::memset(p, 1, static_cast<std::size_t>(state.range(0)));
        benchmark::ClobberMemory();
    });
}

void run_memcpy(benchmark::State& state) {
    std::vector<std::uint8_t> target(static_cast<std::size_t>(state.range(0)));
    on_bytes(state, 256, [&](const std::uint8_t* p) {
        std::memcpy(target.data(), p, target.size());
        benchmark::ClobberMemory();
    });
}

void run_read(benchmark::State& state) {
    on_bytes(state, 256, [&](const std::uint8_t* p) {
        std::uint64_t sums[8]{};
        for (std::int64_t i = 0; i < state.range(0); i += 64)
            for (std::size_t j = 0; j < 8; ++j) {
                std::uint64_t limb;
                std::memcpy(&limb, p + i + 8 * j, 8);
                sums[j] += limb;
            }
        benchmark::DoNotOptimize(sums);
    });
}

void run_words(benchmark::State& state, const DigitKernels* kernels) {
    on_bytes(state, 256, [&](const std::uint8_t* p) {
        const std::size_t rows = static_cast<std::size_t>(state.range(0)) / 4 / kernels->row_words;
        benchmark::DoNotOptimize(kernels->hash_rows(reinterpret_cast<const std::byte*>(p), rows));
    });
}

void run_digits(benchmark::State& state, const DigitKernels* kernels, unsigned radix) {
    const auto kernel = radix == 10 ? kernels->hash_decimal : kernels->hash_hexadecimal;
    on_bytes(state, radix, [&](const std::uint8_t* p) {
        benchmark::DoNotOptimize(kernel(0, p, static_cast<std::size_t>(state.range(0)) / kernels->vector_digits));
    });
}

void run_counts(benchmark::State& state, const DigitKernels* kernels, bool decimal) {
    on_bytes(state, decimal ? 10 : 16, [&](const std::uint8_t* p) {
        std::uint64_t counts[16]{};
        const std::size_t vectors = static_cast<std::size_t>(state.range(0)) / kernels->vector_digits;
        (decimal ? kernels->count_decimal : kernels->count_all)(counts, p, vectors);
        benchmark::DoNotOptimize(counts);
    });
}

/// The interface, with the set that is active: ZORVANE_KERNELS chooses it.
void run_hash_words(benchmark::State& state) {
    on_bytes(state, 256, [&](std::uint8_t* p) {
        const auto n = static_cast<std::size_t>(state.range(0)) / 4;
        benchmark::DoNotOptimize(hash_words(0, reinterpret_cast<const std::uint32_t*>(p), n));
    });
}

void run_add(benchmark::State& state, unsigned radix) {
    on_bytes(state, radix, [&](const std::uint8_t* p) {
        DigitCounts counts(radix);
        counts.add(p, static_cast<std::size_t>(state.range(0)));
        benchmark::DoNotOptimize(counts);
    });
}

template <class Sha>
void run_sha(benchmark::State& state) {
    on_bytes(state, 256, [&](const std::uint8_t* p) {
        Sha sha;
        sha.update(p, static_cast<std::size_t>(state.range(0)));
        benchmark::DoNotOptimize(sha.finish());
    });
}

template <class... Arguments>
void on_both_sizes(const std::string& name, Arguments... arguments) {
    benchmark::RegisterBenchmark(name.c_str(), arguments...)->Arg(cached_bytes)->Arg(far_bytes);
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    on_both_sizes("memset", run_memset);
    on_both_sizes("memcpy", run_memcpy);
    on_both_sizes("read", run_read);
    for (const platform::KernelSet set : platform::all_kernel_sets) {
        if (!platform::kernel_set_supported(set)) continue;
        const std::string name(platform::kernel_set_name(set));
        const DigitKernels* kernels = &digit_kernels(set);
        on_both_sizes(name + "/hash_words", run_words, kernels);
        on_both_sizes(name + "/hash_digits/10", run_digits, kernels, 10u);
        on_both_sizes(name + "/hash_digits/16", run_digits, kernels, 16u);
        on_both_sizes(name + "/count/10", run_counts, kernels, true);
        on_both_sizes(name + "/count/16", run_counts, kernels, false);
    }
    for (const std::int64_t words : {8, 16, 32, 48, 64, 96, 128, 256, 1024, 65'536})
        benchmark::RegisterBenchmark("words", run_hash_words)->Arg(4 * words);
    on_both_sizes("add/10", run_add, 10u);
    on_both_sizes("add/16", run_add, 16u);
    benchmark::RegisterBenchmark("sha256", run_sha<Sha256>)->Arg(cached_bytes);
    benchmark::RegisterBenchmark("sha512", run_sha<Sha512>)->Arg(cached_bytes);
    benchmark::RunSpecifiedBenchmarks();
}
