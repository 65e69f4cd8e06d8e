// Long products by the hybrid transform beside GMP's in one run, on one and two threads; then how the time
// grows with the length. Medians of several rounds, by the clock.

#include "multiply/algorithms/hnt_algorithm.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/hybrid/hybrid_transform.h"
#include "parallel/tasks/framework_config.h"
#include "platform/clock.h"
#include "support/large_block.h"

#include <gmp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace zvp;

template <class Call>
double seconds_of(Call&& call) {
    const auto began = platform::performance_counter();
    call();
    return 1e-9 * static_cast<double>(platform::performance_counter() - began);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

using Limbs = std::vector<mp_limb_t>;

Limbs random_limbs(std::mt19937_64& random, std::size_t n) {
    Limbs limbs(n);
    for (auto& limb : limbs) limb = random();
    return limbs;
}

class Bench {
public:
    explicit Bench(std::uint64_t most_bits) : pool(make_framework_config("pushpool")->make_framework()) {
        algorithm.ensure_tables(tables, most_bits / 64);
        table_memory = std::make_unique<LargeBlock>(tables.bytes());
        tables.place(table_memory->get());
    }

    std::uint64_t bytes(std::size_t limbs, std::uint32_t tds) const { return algorithm.total(limbs, tds); }

    /// Seconds of one product, with M as its memory.
    double product(const LargeBlock& M, Limbs& C, const Limbs& A, const Limbs& B, std::uint32_t tds) {
        const MultiplyParameters pars{{tds, pool.get()}, nullptr, &tables, M.get(), bytes(A.size() + B.size(), tds)};
        return seconds_of(
            [&] { algorithm.mul(pars, C.data(), 0, A.size() + B.size(), A.data(), A.size(), B.data(), B.size()); });
    }

private:
    const MultiplyAlgorithm<c64i>& algorithm = hnt_algorithm<c64i>();
    std::unique_ptr<ParallelFramework> pool;
    MultiplyTables tables;
    std::unique_ptr<LargeBlock> table_memory;
};

/// In each round one thread, two and GMP, one after the other: the ratios are those of neighbours in time. Short products
/// come several in a row, the same number of each, as a computation has them: the second core, which slept through GMP's,
/// takes a tenth of a millisecond to wake.
void compare_with_gmp(Bench& bench, unsigned most) {
    std::printf("medians   GMP s    1 thread s  times   2 threads s  times   scaling\n");
    std::mt19937_64 random(1);
    for (unsigned log_bits = 24; log_bits <= most; log_bits += 2) {
        const std::size_t limbs = std::size_t{1} << (log_bits - 7);
        const Limbs A = random_limbs(random, limbs), B = random_limbs(random, limbs);
        Limbs C(2 * limbs), D(2 * limbs);
        const LargeBlock M(std::max(bench.bytes(2 * limbs, 1), bench.bytes(2 * limbs, 2)));
        const int rounds = log_bits < 26   ? 25
                           : log_bits < 28 ? 11
                                           : 5,
                  in_a_row = log_bits < 26   ? 5
                             : log_bits < 28 ? 2
                                             : 1;
        const auto each = [&](auto&& call) {
            double sum = 0;
            for (int i = 0; i < in_a_row; ++i) sum += call();
            return sum / in_a_row;
        };
        std::vector<double> gmp, one, two, times_one, times_two, scaling;
        for (int i = 0; i < rounds; ++i) {
            one.push_back(each([&] { return bench.product(M, D, A, B, 1); }));
            two.push_back(each([&] { return bench.product(M, D, A, B, 2); }));
            gmp.push_back(each([&] {
                return seconds_of([&] { mpn_mul_n(C.data(), A.data(), B.data(), static_cast<mp_size_t>(limbs)); });
            }));
            times_one.push_back(gmp.back() / one.back());
            times_two.push_back(gmp.back() / two.back());
            scaling.push_back(one.back() / two.back());
        }
        std::printf("2^%u  %8.4f  %8.4f  %6.2f   %8.4f  %6.2f   %6.2f%s\n", log_bits, median(gmp), median(one),
                    median(times_one), median(two), median(times_two), median(scaling), C == D ? "" : "  WRONG");
        std::fflush(stdout);
    }
}

/// Time of products of rising length: the most by which one exceeds a longer one. All lengths are gone through again
/// and again and the least is kept, so that a slow moment doesn't fall on all of one length's products.
void check_smoothness(Bench& bench) {
    std::mt19937_64 random(1);
    std::vector<std::size_t> lengths;
    for (double limbs = 1 << 17; limbs < (1 << 20); limbs *= 1.02) lengths.push_back(static_cast<std::size_t>(limbs));
    const Limbs A = random_limbs(random, lengths.back() / 2);
    Limbs C(lengths.back() + 1);
    std::uint64_t bytes = 0;
    for (const std::size_t length : lengths) bytes = std::max(bytes, bench.bytes(length, 1));
    const LargeBlock M(bytes);
    std::vector<double> seconds(lengths.size(), 1e9);
    for (int round = 0; round < 9; ++round)
        for (std::size_t i = 0; i < lengths.size(); ++i) {
            const Limbs B(A.begin(), A.begin() + static_cast<std::ptrdiff_t>(lengths[i] / 2));
            seconds[i] = std::min(seconds[i], bench.product(M, C, B, Limbs(B.rbegin(), B.rend()), 1));
        }
    double worst = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < seconds.size(); ++i) {
        const double above = *std::min_element(seconds.begin() + static_cast<std::ptrdiff_t>(i) + 1, seconds.end());
        if (seconds[i] / above > worst) worst = seconds[i] / above, at = i;
    }
    std::printf("products of 2^23 to 2^26 bits in steps of 2 %%: at worst %.3f times a longer one, at %zu limbs\n",
                worst, lengths[at]);
}

} // namespace

/// Parameter: the most bits as a power of two, 30 if left out.
int main(int count, char** values) {
    const unsigned most = count > 1 ? static_cast<unsigned>(std::atoi(values[1])) : 30;
    Bench bench(std::uint64_t{1} << std::max(most, 26U));
    compare_with_gmp(bench, most);
    check_smoothness(bench);
}
