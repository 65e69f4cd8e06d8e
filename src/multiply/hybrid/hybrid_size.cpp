#include "multiply/hybrid/hybrid_size.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "multiply/basecase/mulb.h"
#include "multiply/fft/fft.h"

#include <algorithm>

namespace zvp {

namespace {

constexpr std::uint64_t cache_bytes = 0x180000;

std::uint64_t round_to_line(std::uint64_t bytes) { return (bytes + 63) / 64 * 64; }

/// Working memory of one ring product.
std::uint64_t ring_bytes(std::size_t n, const FftLength& ring) {
    if (n >= least_fft_ring) return 2 * fft_transform_bytes(ring) + fft_scratch_bytes(ring);
    return round_to_line(std::max<std::uint64_t>(8 * n + MULB::mul_scratch(n), 8 * n + 64));
}

/// The most tasks that a pass can employ: one for each column of two operands, or for each row.
std::uint64_t most_tasks(unsigned k, std::size_t n) {
    const unsigned column_levels = cache_split(k, n);
    return std::max(std::uint64_t{2} << (k - column_levels), std::uint64_t{1} << column_levels);
}

const HybridRow* first_of_capacity(std::span<const HybridRow> rows, std::uint64_t bits) {
    const auto below = [](const HybridRow& row, std::uint64_t wanted) { return row.capacity_bits() < wanted; };
    const auto found = std::lower_bound(rows.begin(), rows.end(), bits, below);
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

HybridRow hybrid_row(std::uint64_t bits) {
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()})
        if (const HybridRow* row = first_of_capacity(rows, bits)) return *row;
    throw LimitExceededException("hybrid_row()", "Product is too large.", hybrid_max_bits, bits);
}

std::uint64_t largest_hybrid_ring_bits(std::uint64_t bits) {
    std::uint64_t largest = 0;
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()})
        for (const HybridRow& row : rows) {
            largest = std::max(largest, 32 * row.n());
            if (row.capacity_bits() >= bits) break;
        }
    return largest;
}

unsigned cache_split(unsigned k, std::size_t n) {
    if (k < 4) fatal_stop("Invalid Function Parameters:   cache_split()");
    const auto fits = [n](unsigned v) { return (((n + 1) << v) + 2 * (n + 1)) * 4 < cache_bytes; };
    unsigned levels = 2;
    for (unsigned v = 3; v <= k / 2 && fits(v); ++v) levels = v;
    return levels;
}

HybridSize::HybridSize(HybridRow row, std::uint32_t tds)
    : k(row.k), m(row.m), n(row.n()), stride(n + 1), c(row.coefficient_words()), capacity_bits(row.capacity_bits()) {
    if (n >= least_fft_ring) ring = fft_ring_length(32 * std::uint64_t{n});
    tasks = static_cast<std::uint32_t>(std::min<std::uint64_t>(std::max<std::uint32_t>(tds, 1), most_tasks(k, n)));
    transform_bytes = round_to_line((4 * std::uint64_t{stride}) << k);
    ring_scratch_bytes = round_to_line(ring_bytes(n, ring));
    scratch_bytes = ring_scratch_bytes * tasks;
}

} // namespace zvp
