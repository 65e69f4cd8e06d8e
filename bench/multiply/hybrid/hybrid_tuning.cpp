// Chooses the rows of the hybrid transform on this machine, and prints them as they stand in hybrid_rows.cpp.
//
// The time of a product is modelled as 2^k * (ring product + passes + output) from measured parts: the ring product of
// every ring size, a radix-4 step with its three rotations, a radix-2 step, and the way out of a coefficient, for several
// sizes between which the time per word is interpolated. Rows whose roots need √2 are left out. A row stays when no row of
// more capacity takes less time: so no product is slower than a longer one by more than the model errs. Time is that of
// this thread alone, so that neighbours disturb little; minima of several rounds.
//
// With the parameter "limits": the algorithms of algorithm_lists.cpp beside each other around their limits.

#include "multiply/algorithms/bkt_algorithm.h"
#include "multiply/algorithms/fft_algorithm.h"
#include "multiply/algorithms/hnt_algorithm.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/hybrid/element_passes.h"
#include "support/large_block.h"

#include <ctime>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace zvp;

constexpr std::size_t most_ring_words = 16384 + 4096; // two forward forms and the points still fit the second cache
constexpr std::uint64_t last_capacity = 2012741632;

double thread_seconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// The least time of a call, from rounds of about a millisecond: the clock itself takes a third of a microsecond.
template <class Call>
double least(Call&& call) {
    const auto time_of = [&](int calls) {
        const double began = thread_seconds();
        for (int i = 0; i < calls; ++i) call();
        return thread_seconds() - began;
    };
    int calls = 1;
    while (time_of(calls) < 1e-3) calls *= 2;
    double best = 1e9;
    for (int round = 0; round < 9; ++round) best = std::min(best, time_of(calls) / calls);
    return best;
}

struct Parts {
    double quad, pair, output; // one radix-4 step, one radix-2 step, one coefficient
    double bits;               // what a rotation by bits takes beyond one by limbs
};

/// The parts of a transform of rings of n words, on as many elements as a column pass holds.
Parts measure_parts(const FftTables& tables, std::size_t n) {
    const HybridSize size({6, static_cast<std::uint16_t>(2 * n)}, 1); // 2^6 points: n = m * 2^6 / 2^7
    const LargeBlock M(std::max<std::uint64_t>(size.scratch_bytes, 16 * size.stride)), X(size.transform_bytes);
    const HybridJob job{size, ring_kernels(tables.kernel_set()), tables, {}, M.get()};
    auto* const x = reinterpret_cast<RingWord*>(X.get());
    std::mt19937 random(1); // equal elements would differ by zeros, through which borrows run
    for (std::size_t i = 0; i < size.transform_bytes / 4; ++i) x[i] = static_cast<RingWord>(random());
    for (std::size_t i = 0; i < 64; ++i) x[i * size.stride + n] = 0;
    const TaskScratch scratch{M.get()};
    Parts parts;
    parts.quad = least([&] { forward_levels(job, {x, size.stride, 4, 1, 4}, scratch); }) / 8; // two levels of four
    parts.pair = least([&] { forward_levels(job, {x, size.stride, 1, 1, 2}, scratch); });
    RingWord* const r = scratch.element(size, 0);
    const std::uint64_t middle = 16 * std::uint64_t{n} / 64 * 64;
    parts.bits =
        least([&] { job.kernels.rotate(r, x, n, middle + 11); }) - least([&] { job.kernels.rotate(r, x, n, middle); });
    parts.output = least([&] {
        job.kernels.rotate(r, x, n, 64 * std::uint64_t{n} - 11);
        job.kernels.normalize(r, n);
        std::memcpy(x, r, 4 * n);
    });
    return parts;
}

/// Linear between the measured sizes.
double interpolate(const std::map<std::size_t, Parts>& measured, std::size_t n, double Parts::*part) {
    auto above = measured.lower_bound(n);
    if (above == measured.begin())
        return above->second.*part * static_cast<double>(n) / static_cast<double>(above->first);
    if (above == measured.end()) --above;
    const auto below = std::prev(above);
    const double share = static_cast<double>(n - below->first) / static_cast<double>(above->first - below->first);
    return below->second.*part + share * (above->second.*part - below->second.*part);
}

class Model {
public:
    Model() : tables(platform::active_kernel_set()) {
        tables.ensure_rings(32 * most_ring_words);
        memory = std::make_unique<LargeBlock>(tables.bytes());
        tables.place(memory->get());
        for (const std::size_t n : {32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384, 20480})
            parts[n] = measure_parts(tables, n);
        for (const FftLength& ring : fft_ring_lengths()) {
            const std::size_t n = ring.capacity_bits() / 32;
            if (n % 4 == 0 && n >= least_fft_ring && n <= most_ring_words) products[n] = measure_product(ring);
        }
    }

    double seconds(const HybridRow& row) const {
        const std::size_t n = row.n();
        const double quads = interpolate(parts, n, &Parts::quad), pairs = interpolate(parts, n, &Parts::pair);
        double passes = 3 * (row.k / 2 * quads / 4 + row.k % 2 * pairs / 2);
        if (row.m % 128 != 0) passes += 3 * row.k / 2 * 0.75 * interpolate(parts, n, &Parts::bits);
        return static_cast<double>(std::uint64_t{1} << row.k)
               * (products.at(n) + passes + 2 * interpolate(parts, n, &Parts::output));
    }

    const std::map<std::size_t, double>& ring_products() const { return products; }
    const std::map<std::size_t, Parts>& pass_parts() const { return parts; }

private:
    double measure_product(const FftLength& ring) {
        const std::size_t n = ring.capacity_bits() / 32;
        const HybridSize size({7, static_cast<std::uint16_t>(n)}, 1);
        const LargeBlock M(size.scratch_bytes), elements(8 * size.stride);
        auto *const x = reinterpret_cast<RingWord*>(elements.get()), *const y = x + size.stride;
        const HybridJob job{size, ring_kernels(tables.kernel_set()), tables, {}, M.get()};
        x[n] = y[n] = 0;
        return least([&] {
            x[n] = 0;
            ring_product(job, x, x, y, {M.get()}, false);
        });
    }

    FftTables tables;
    std::unique_ptr<LargeBlock> memory;
    std::map<std::size_t, Parts> parts;
    std::map<std::size_t, double> products;
};

std::vector<HybridRow> candidates(const Model& model) {
    std::vector<HybridRow> rows;
    for (unsigned k = 4; k <= 15; ++k)
        for (const auto& [n, seconds] : model.ring_products()) {
            const std::uint64_t m = (std::uint64_t{n} << 7) >> k;
            const HybridRow row{static_cast<std::uint8_t>(k), static_cast<std::uint16_t>(m)};
            if (m < 65536 && m % 2 == 0 && row.n() == n && row.capacity_bits() <= last_capacity) rows.push_back(row);
        }
    std::sort(rows.begin(), rows.end(),
              [](const HybridRow& a, const HybridRow& b) { return a.capacity_bits() > b.capacity_bits(); });
    return rows;
}

/// How many times as long `first` takes for products and squares as `second`.
void compare(const MultiplyAlgorithm<c64i>& first, const MultiplyAlgorithm<c64i>& second,
             std::initializer_list<std::size_t> bits) {
    const MultiplyAlgorithm<c64i>* const both[2]{&first, &second};
    std::mt19937_64 random(1);
    std::printf("bits: times of %s / %s, product and square\n", first.id, second.id);
    for (const std::size_t length : bits) {
        const std::size_t n = length / 128;
        std::vector<c64i> a(n), b(n), product(2 * n);
        for (std::size_t i = 0; i < n; ++i) a[i] = random(), b[i] = random();
        MultiplyTables tables;
        for (const auto* algorithm : both) algorithm->ensure_tables(tables, 2 * n);
        const LargeBlock roots(tables.bytes());
        tables.place(roots.get());
        double seconds[2][2];
        for (int i = 0; i < 2; ++i) {
            const std::uint64_t bytes = both[i]->total(2 * n, 1);
            const LargeBlock M(bytes);
            const MultiplyParameters pars{{1, nullptr}, nullptr, &tables, M.get(), bytes};
            seconds[i][0] = least([&] { both[i]->mul(pars, product.data(), 0, 2 * n, a.data(), n, b.data(), n); });
            seconds[i][1] = least([&] { both[i]->sqr(pars, product.data(), 0, 2 * n, a.data(), n); });
        }
        std::printf("%9zu: %.3f %.3f\n", length, seconds[0][0] / seconds[1][0], seconds[0][1] / seconds[1][1]);
    }
}

void compare_algorithms() {
    compare(bkt_algorithm<c64i>(), fft_algorithm<c64i>(),
            {3200, 3840, 4480, 5120, 5760, 6400, 7040, 7680, 8960, 10240, 11520, 12800, 14080, 15360});
    compare(fft_algorithm<c64i>(), hnt_algorithm<c64i>(), {1 << 22, 1 << 23, 12 << 20, 14680064});
}

} // namespace

int main(int count, char** values) {
    if (count > 1 && std::strcmp(values[1], "limits") == 0) return compare_algorithms(), 0;
    const Model model;
    std::printf("// words: microseconds of a radix-4 step, a radix-2 step, a coefficient out, a ring product\n");
    for (const auto& [n, p] : model.pass_parts()) {
        const auto product = model.ring_products().find(n);
        std::printf("// %6zu: %8.3f %8.3f %8.3f %8.3f\n", n, 1e6 * p.quad, 1e6 * p.pair, 1e6 * p.output,
                    product == model.ring_products().end() ? 0 : 1e6 * product->second);
    }
    double least_above = 1e9;
    std::vector<HybridRow> chosen;
    for (const HybridRow& row : candidates(model)) {
        const double seconds = model.seconds(row);
        if (seconds >= least_above) continue;
        least_above = seconds;
        chosen.push_back(row);
    }
    std::reverse(chosen.begin(), chosen.end());
    std::printf("// %zu rows\n", chosen.size());
    for (const HybridRow& row : chosen)
        std::printf("{%u, %u}, // %.3e bits, n = %u, %.3f ps a bit\n", row.k, row.m,
                    static_cast<double>(row.capacity_bits()), static_cast<unsigned>(row.n()),
                    1e12 * model.seconds(row) / static_cast<double>(row.capacity_bits()));
}
