// The smallest products beside GMP's, for each kernel set: nanoseconds and the ratio of the times, smaller than 1 where
// ours is faster. The two are timed in turn, so that a change of the clock meets both; each time is the lowest of many.
//
//   basecase_bench              all sets, c64i
//   basecase_bench words        c32i through the process's functions, odd lengths and misaligned arrays included
//   basecase_bench thresholds   schoolbook beside one cut in halves, from which the tables' thresholds are read

#include "multiply/basecase/limb_products.h"
#include "multiply/basecase/mulb.h"
#include "multiply/basecase/mulb_kernels.h"
#include "platform/clock.h"

#include <gmp.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <string_view>
#include <vector>

namespace {

using namespace zvp;
using MULB::ProductKernels;

constexpr std::size_t longest = 512;

struct Arrays {
    Arrays() {
        std::mt19937_64 random(1);
        std::generate(A.begin(), A.end(), random);
        std::generate(B.begin(), B.end(), random);
    }
    std::vector<c64i> A = std::vector<c64i>(longest + 1), B = A, T = std::vector<c64i>(2 * longest + 2);
    std::vector<c64i> S = std::vector<c64i>(MULB::mul_scratch(2 * longest) / 8 + 1);
};

/// Calls that take about 10 microseconds at n limbs.
std::size_t calls_for(std::size_t n) { return std::max<std::size_t>(1, 40'000 / (n * n + 20)); }

/// Nanoseconds of each function: they are called in turn, in bursts, and the shortest burst counts.
template <class... F>
std::array<double, sizeof...(F)> lowest_times(std::size_t n, F... functions) {
    std::array<double, sizeof...(F)> best;
    best.fill(1e9);
    const std::size_t calls = calls_for(n);
    const auto burst = [&](auto& function, double& lowest) {
        const std::uint64_t began = platform::performance_counter();
        for (std::size_t i = 0; i < calls; ++i) function();
        lowest =
            std::min(lowest, static_cast<double>(platform::performance_counter() - began) / static_cast<double>(calls));
    };
    for (int round = 0; round < 300; ++round) {
        std::size_t at = 0;
        (burst(functions, best[at++]), ...);
    }
    return best;
}

void print_row(std::size_t n, const std::array<double, 4>& times) {
    std::printf("%4zu   %9.1f %9.1f %6.2f   %9.1f %9.1f %6.2f\n", n, times[0], times[1], times[0] / times[1], times[2],
                times[3], times[2] / times[3]);
}

void measure_set(platform::KernelSet set) {
    std::printf("%s, limbs: product, mpn_mul_n, ratio; square, mpn_sqr, ratio\n",
                platform::kernel_set_name(set).data());
    Arrays x;
    const MULB::Kernels<c64i> k{MULB::product_kernels(set)};
    for (const std::size_t n : {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 16, 18,  20,  22,  24,
                                26, 28, 30, 32, 34, 36, 38, 40, 42, 44, 46, 48, 50, 64, 96, 128, 192, 256, 512}) {
        const auto size = static_cast<mp_size_t>(n);
        print_row(n, lowest_times(
                         n, [&] { k.elm(x.A.data(), x.B.data(), n, x.T.data(), x.S.data()); },
                         [&] { mpn_mul_n(x.T.data(), x.A.data(), x.B.data(), size); },
                         [&] { k.sqr(x.A.data(), n, x.T.data(), x.S.data()); },
                         [&] { mpn_sqr(x.T.data(), x.A.data(), size); }));
    }
}

/// GMP is given the limbs that hold the words.
void measure_words() {
    std::printf("%s, c32i words at addresses 4 modulo 8: product, mpn_mul_n, ratio; square, mpn_sqr, ratio\n",
                platform::kernel_set_name(platform::active_kernel_set()).data());
    Arrays x;
    const auto *A = reinterpret_cast<const c32i*>(x.A.data()) + 1, *B = reinterpret_cast<const c32i*>(x.B.data()) + 1;
    auto* T = reinterpret_cast<c32i*>(x.T.data()) + 1;
    for (const std::size_t n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 16, 21, 25, 32, 33, 41, 50, 51, 64, 65, 100, 101}) {
        const auto size = static_cast<mp_size_t>((n + 1) / 2);
        print_row(n, lowest_times((n + 1) / 2, [&] { MULB::elm(A, B, n, T, x.S.data()); },
                                  [&] { mpn_mul_n(x.T.data(), x.A.data(), x.B.data(), size); },
                                  [&] { MULB::sqr(A, n, T, x.S.data()); },
                                  [&] { mpn_sqr(x.T.data(), x.A.data(), size); }));
    }
}

void measure_thresholds(platform::KernelSet set) {
    std::printf("%s, limbs: product halved, schoolbook, ratio; square halved, schoolbook, ratio\n",
                platform::kernel_set_name(set).data());
    Arrays x;
    for (std::size_t n = 10; n <= 64; n += 2) {
        ProductKernels halved = MULB::product_kernels(set), whole = halved;
        halved.karatsuba_mul = std::min(n, halved.karatsuba_mul);
        halved.karatsuba_sqr = std::min(n, halved.karatsuba_sqr);
        whole.karatsuba_mul = whole.karatsuba_sqr = n + 1;
        c64i *A = x.A.data(), *B = x.B.data(), *T = x.T.data(), *S = x.S.data();
        print_row(n, lowest_times(
                         n, [&] { MULB::multiply_equal(halved, T, A, B, n, S); },
                         [&] { MULB::multiply_equal(whole, T, A, B, n, S); }, [&] { MULB::square(halved, T, A, n, S); },
                         [&] { MULB::square(whole, T, A, n, S); }));
    }
}

} // namespace

int main(int count, char** arguments) {
    const std::string_view what = count > 1 ? arguments[1] : "";
    if (what == "words") return measure_words(), 0;
    for (const platform::KernelSet set : platform::all_kernel_sets) {
        if (!platform::kernel_set_supported(set)) continue;
        what == "thresholds" ? measure_thresholds(set) : measure_set(set);
    }
}
