// Long products by the hybrid transform beside GMP's in one run, on one and two threads; then how the time
// grows with the length. Minima of several rounds, by the clock.

#include "multiply/algorithms/hnt_algorithm.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/hybrid/hybrid_transform.h"
#include "parallel/tasks/framework_config.h"
#include "platform/clock.h"
#include "platform/memory.h"

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

/// Touched memory in large pages where the system has them, as a computation's is.
class Block {
public:
    explicit Block(std::size_t bytes)
        : mapping(system.map(bytes, system.page_size(), platform::PageKind::large_transparent)) {
        if (!mapping.base) mapping = system.map(bytes, system.page_size(), platform::PageKind::small);
        if (!mapping.base) std::abort();
        std::memset(mapping.data, 0, bytes);
    }
    ~Block() { system.release(mapping); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    std::byte* get() const { return mapping.data; }

private:
    platform::MemorySystem& system = platform::memory_system();
    platform::Mapping mapping;
};

template <class Call>
double least(int rounds, Call&& call) {
    double seconds = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const auto began = platform::performance_counter();
        call();
        seconds = std::min(seconds, 1e-9 * static_cast<double>(platform::performance_counter() - began));
    }
    return seconds;
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
        table_memory = std::make_unique<Block>(tables.bytes());
        tables.place(table_memory->get());
    }

    /// Seconds of a product of so many limbs in all.
    double product(Limbs& C, const Limbs& A, const Limbs& B, std::uint32_t tds, int rounds) {
        const std::uint64_t bytes = algorithm.total(A.size() + B.size(), tds);
        const Block M(bytes);
        const MultiplyParameters pars{{tds, pool.get()}, nullptr, &tables, M.get(), bytes};
        return least(rounds, [&] {
            algorithm.mul(pars, C.data(), 0, A.size() + B.size(), A.data(), A.size(), B.data(), B.size());
        });
    }

private:
    const MultiplyAlgorithm<c64i>& algorithm = hnt_algorithm<c64i>();
    std::unique_ptr<ParallelFramework> pool;
    MultiplyTables tables;
    std::unique_ptr<Block> table_memory;
};

void compare_with_gmp(Bench& bench, unsigned most) {
    std::printf("product   GMP s    1 thread s  times   2 threads s  times   scaling\n");
    std::mt19937_64 random(1);
    for (unsigned log_bits = 24; log_bits <= most; log_bits += 2) {
        const std::size_t limbs = std::size_t{1} << (log_bits - 7);
        const Limbs A = random_limbs(random, limbs), B = random_limbs(random, limbs);
        Limbs C(2 * limbs), D(2 * limbs);
        const int rounds = log_bits < 26 ? 9 : log_bits < 29 ? 5 : 3;
        const double one = bench.product(D, A, B, 1, rounds), two = bench.product(D, A, B, 2, rounds);
        const double gmp = least(log_bits < 27 ? 3 : 1,
                                 [&] { mpn_mul_n(C.data(), A.data(), B.data(), static_cast<mp_size_t>(limbs)); });
        std::printf("2^%u  %8.4f  %8.4f  %6.2f   %8.4f  %6.2f   %6.2f%s\n", log_bits, gmp, one, gmp / one, two,
                    gmp / two, one / two, C == D ? "" : "  WRONG");
        std::fflush(stdout);
    }
}

/// Time of products of rising length: the most by which one exceeds a longer one.
void check_smoothness(Bench& bench) {
    std::mt19937_64 random(1);
    std::vector<double> seconds;
    std::vector<std::size_t> lengths;
    for (double limbs = 1 << 17; limbs < (1 << 20); limbs *= 1.02) lengths.push_back(static_cast<std::size_t>(limbs));
    Limbs C(lengths.back() + 1);
    for (const std::size_t length : lengths) {
        const Limbs A = random_limbs(random, length / 2), B = random_limbs(random, length / 2);
        seconds.push_back(bench.product(C, A, B, 1, 5));
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
