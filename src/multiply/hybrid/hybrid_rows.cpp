// The rows of the hybrid transform.

#include "multiply/hybrid/hybrid_size.h"

#include <algorithm>
#include <vector>

namespace zvp {

namespace {

constexpr std::uint64_t last_of_first_table = 2012741632;

bool smaller_capacity(const HybridRow& a, const HybridRow& b) { return a.capacity_bits() < b.capacity_bits(); }

bool is_ring(std::uint64_t n) {
    if (n % 4 != 0) return false;
    if (n < least_fft_ring) return n >= 4;
    const auto rings = fft_ring_lengths();
    const auto below = [](const FftLength& row, std::uint64_t bits) { return row.capacity_bits() < bits; };
    const auto found = std::lower_bound(rings.begin(), rings.end(), 32 * n, below);
    return found != rings.end() && found->capacity_bits() == 32 * n;
}

std::vector<HybridRow> make_rows() {
    std::vector<HybridRow> rows;
    for (unsigned k = 4; k <= 15; ++k)
        for (unsigned m = 1; m < 65536; ++m) {
            const HybridRow row{static_cast<std::uint8_t>(k), static_cast<std::uint16_t>(m)};
            if ((std::uint64_t{m} << k) % 512 != 0 || !is_ring(row.n())) continue;
            if (row.capacity_bits() <= last_of_first_table) rows.push_back(row);
        }
    std::sort(rows.begin(), rows.end(), smaller_capacity);
    return rows;
}

std::vector<HybridRow> make_long_rows() {
    std::vector<HybridRow> rows;
    for (unsigned k = 8; k <= 23; ++k)
        for (unsigned m = k == 8 ? 2 : 1; m <= (k == 23 ? 1U : k == 22 ? 3U : 15U); m += k == 8 ? 2 : 1)
            rows.push_back({static_cast<std::uint8_t>(k), static_cast<std::uint16_t>(m)});
    std::sort(rows.begin(), rows.end(), smaller_capacity);
    return rows;
}

} // namespace

std::span<const HybridRow> hybrid_rows() {
    static const std::vector<HybridRow> rows = make_rows();
    return rows;
}

std::span<const HybridRow> long_hybrid_rows() {
    static const std::vector<HybridRow> rows = make_long_rows();
    return rows;
}

} // namespace zvp
