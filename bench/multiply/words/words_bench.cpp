// Word arithmetic beside GMP's loops on the same bits: nanoseconds per 64 bits. Row "c32i" is an array of 32-bit words of
// as many bytes. Then two tasks beside one, and beside memcpy by as many.

#include "multiply/words/parallel_words.h"
#include "multiply/words/shoup_divider.h"
#include "multiply/words/word_loops.h"
#include "parallel/tasks/framework_config.h"

#include <benchmark/benchmark.h>
#include <gmp.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>

namespace {

using namespace zvp;

/// Three arrays of the same number of bytes, 64-byte aligned, with random words.
struct Arrays {
    explicit Arrays(std::size_t bytes) : limbs(bytes / 8) {
        std::mt19937_64 random(1);
        for (Block& block : blocks) {
            block.reset(static_cast<c64i*>(std::aligned_alloc(4096, (bytes + 4095) / 4096 * 4096)));
            for (std::size_t i = 0; i < limbs; ++i) block[i] = random();
        }
    }

    template <class Word = c64i>
    Word* at(unsigned i) const {
        return reinterpret_cast<Word*>(blocks[i].get());
    }

    struct Free {
        void operator()(c64i* p) const { std::free(p); }
    };
    using Block = std::unique_ptr<c64i[], Free>;
    std::size_t limbs;
    Block blocks[3];
};

/// Runs call(T, A, B, words) on arrays of the size that the benchmark's argument names, in bytes.
template <class Word, class Call>
void measure(benchmark::State& state, Call&& call) {
    const Arrays arrays(static_cast<std::size_t>(state.range(0)));
    Word *T = arrays.at<Word>(0), *A = arrays.at<Word>(1), *B = arrays.at<Word>(2);
    const std::size_t n = arrays.limbs * 8 / sizeof(Word);
    for (auto _ : state) {
        benchmark::DoNotOptimize(call(T, A, B, n));
        benchmark::ClobberMemory();
    }
    const auto limbs = static_cast<double>(state.iterations()) * static_cast<double>(arrays.limbs);
    state.counters["s/limb"] = benchmark::Counter(limbs, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

using Limb = mp_limb_t;
constexpr c64i factor = 0x1234'5678'9ABC'DEF1;
constexpr c64i divisor = 0x1234'5678'9ABC'DEF1;
constexpr c64i small_divisor = 640'320;

void add_gmp(benchmark::State& state) {
    measure<Limb>(
        state, [](Limb* T, Limb* A, Limb* B, std::size_t n) { return mpn_add_n(T, A, B, static_cast<mp_size_t>(n)); });
}
template <class Word>
void add(benchmark::State& state) {
    measure<Word>(state, [](Word* T, Word* A, Word* B, std::size_t n) { return add_words(T, A, B, n); });
}
void subtract_gmp(benchmark::State& state) {
    measure<Limb>(
        state, [](Limb* T, Limb* A, Limb* B, std::size_t n) { return mpn_sub_n(T, A, B, static_cast<mp_size_t>(n)); });
}
template <class Word>
void subtract(benchmark::State& state) {
    measure<Word>(state, [](Word* T, Word* A, Word* B, std::size_t n) { return subtract_words(T, A, B, n); });
}
void multiply_gmp(benchmark::State& state) {
    measure<Limb>(state, [](Limb* T, Limb* A, Limb*, std::size_t n) {
        return mpn_mul_1(T, A, static_cast<mp_size_t>(n), factor);
    });
}
template <class Word>
void multiply(benchmark::State& state) {
    measure<Word>(state, [](Word* T, Word* A, Word*, std::size_t n) {
        return mul_word(T, A, n, static_cast<Word>(factor), Word{1});
    });
}
void multiply_add_gmp(benchmark::State& state) {
    measure<Limb>(state, [](Limb* T, Limb* A, Limb*, std::size_t n) {
        return mpn_addmul_1(T, A, static_cast<mp_size_t>(n), factor);
    });
}
template <class Word>
void multiply_add(benchmark::State& state) {
    measure<Word>(state, [](Word* T, Word* A, Word*, std::size_t n) {
        return mul_add_word(T, A, n, static_cast<Word>(factor), Word{1});
    });
}

void divide_gmp(benchmark::State& state) {
    measure<Limb>(state, [](Limb* T, Limb* A, Limb*, std::size_t n) {
        return mpn_divrem_1(T, 0, A, static_cast<mp_size_t>(n), divisor);
    });
}
void divide_small_gmp(benchmark::State& state) {
    measure<Limb>(state, [](Limb* T, Limb* A, Limb*, std::size_t n) {
        return mpn_divrem_1(T, 0, A, static_cast<mp_size_t>(n), small_divisor);
    });
}
template <class Word>
void divide(benchmark::State& state) {
    const ShoupDivider<Word> D(static_cast<Word>(sizeof(Word) == 8 ? divisor : small_divisor));
    measure<Word>(state, [&](Word* T, Word* A, Word*, std::size_t n) { return D.divmod(T, A, n, Word{5}); });
}
template <class Word>
void divide_zeros(benchmark::State& state) {
    const ShoupDivider<Word> D(static_cast<Word>(sizeof(Word) == 8 ? divisor : small_divisor));
    measure<Word>(state, [&](Word* T, Word*, Word*, std::size_t n) { return D.divmod(T, n, Word{5}); });
}
void remainder_gmp(benchmark::State& state) {
    measure<Limb>(
        state, [](Limb*, Limb* A, Limb*, std::size_t n) { return mpn_mod_1(A, static_cast<mp_size_t>(n), divisor); });
}
template <class Word>
void remainder_only(benchmark::State& state) {
    const ShoupDivider<Word> D(static_cast<Word>(sizeof(Word) == 8 ? divisor : small_divisor));
    measure<Word>(state, [&](Word*, Word* A, Word*, std::size_t n) { return D.mod(A, n, Word{5}); });
}

void in_and_out_of_cache(benchmark::internal::Benchmark* bench) {
    for (const std::int64_t bytes : {256, 4096, 65536, 64 << 20}) bench->Arg(bytes);
}

BENCHMARK(add_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(add<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(add<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(subtract_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(subtract<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(subtract<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(multiply_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(multiply<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(multiply<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(multiply_add_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(multiply_add<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(multiply_add<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(divide_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(divide_small_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(divide<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(divide<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(divide_zeros<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(divide_zeros<c32i>)->Apply(in_and_out_of_cache);
BENCHMARK(remainder_gmp)->Apply(in_and_out_of_cache);
BENCHMARK(remainder_only<c64i>)->Apply(in_and_out_of_cache);
BENCHMARK(remainder_only<c32i>)->Apply(in_and_out_of_cache);

/// Runs call(T, A, B, words, ctx) on 64 MiB with as many tasks as the benchmark's argument names.
template <class Call>
void measure_tasks(benchmark::State& state, Call&& call) {
    const Arrays arrays(std::size_t{64} << 20);
    const auto framework = make_framework_config("pushpool")->make_framework();
    const ParallelContext ctx{static_cast<std::uint32_t>(state.range(0)), framework.get()};
    c32i *T = arrays.at<c32i>(0), *A = arrays.at<c32i>(1), *B = arrays.at<c32i>(2);
    for (auto _ : state) call(T, A, B, 2 * arrays.limbs, ctx);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(8 * arrays.limbs));
}

void tasks_copy(benchmark::State& state) {
    measure_tasks(
        state, [](c32i* T, c32i* A, c32i*, std::size_t n, const ParallelContext& ctx) { bp_copy(T, A, 4 * n, ctx); });
}
void tasks_fill(benchmark::State& state) {
    measure_tasks(state,
                  [](c32i* T, c32i*, c32i*, std::size_t n, const ParallelContext& ctx) { bp_fill(T, n, 7, ctx); });
}
void tasks_not(benchmark::State& state) {
    measure_tasks(state,
                  [](c32i* T, c32i* A, c32i*, std::size_t n, const ParallelContext& ctx) { bp_not(T, A, n, ctx); });
}
void tasks_add(benchmark::State& state) {
    measure_tasks(state, [](c32i* T, c32i* A, c32i* B, std::size_t n, const ParallelContext& ctx) {
        benchmark::DoNotOptimize(bp_add(T, A, B, n, true, ctx));
    });
}
void tasks_add_window(benchmark::State& state) {
    measure_tasks(state, [](c32i* T, c32i* A, c32i* B, std::size_t n, const ParallelContext& ctx) {
        const auto end = static_cast<std::int64_t>(n);
        benchmark::DoNotOptimize(bp_uadd_window(T, ctx, true, {A, n, 0}, {B, n / 2, 1001}, 0, end));
    });
}
void tasks_multiply(benchmark::State& state) {
    measure_tasks(state, [](c32i* T, c32i* A, c32i*, std::size_t n, const ParallelContext& ctx) {
        benchmark::DoNotOptimize(bp_mul_word(T, A, n, 640'320, 1, ctx));
    });
}
void tasks_scan(benchmark::State& state) {
    measure_tasks(state, [scanned = static_cast<c32i*>(nullptr)](c32i* T, c32i*, c32i*, std::size_t n,
                                                                 const ParallelContext& ctx) mutable {
        if (scanned != T) std::fill_n(scanned = T, n, 0);
        benchmark::DoNotOptimize(bp_scan_top(c32i{0}, T, n, ctx));
    });
}
void tasks_divide(benchmark::State& state) {
    const ShoupDivider<c32i> D(640'320);
    measure_tasks(state, [&](c32i* T, c32i* A, c32i*, std::size_t n, const ParallelContext& ctx) {
        benchmark::DoNotOptimize(bp_div_np(D, T, A, n, c32i{5}, ctx));
    });
}
void tasks_divide_zeros(benchmark::State& state) {
    const ShoupDivider<c32i> D(640'320);
    measure_tasks(state, [&](c32i* T, c32i*, c32i*, std::size_t n, const ParallelContext& ctx) {
        benchmark::DoNotOptimize(bp_div_ex(D, T, n, c32i{5}, ctx));
    });
}

void one_two_and_more(benchmark::internal::Benchmark* bench) {
    bench->Arg(1)->Arg(2)->Arg(8)->UseRealTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(tasks_copy)->Apply(one_two_and_more);
BENCHMARK(tasks_fill)->Apply(one_two_and_more);
BENCHMARK(tasks_not)->Apply(one_two_and_more);
BENCHMARK(tasks_add)->Apply(one_two_and_more);
BENCHMARK(tasks_add_window)->Apply(one_two_and_more);
BENCHMARK(tasks_multiply)->Apply(one_two_and_more);
BENCHMARK(tasks_scan)->Apply(one_two_and_more);
BENCHMARK(tasks_divide)->Apply(one_two_and_more);
BENCHMARK(tasks_divide_zeros)->Apply(one_two_and_more);

} // namespace

BENCHMARK_MAIN();
