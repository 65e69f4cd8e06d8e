#pragma once
// The sizes of the hybrid transform.
//
// 2^k points in the ring modulo 2^N + 1, N = 32 n. √2 has the order 4 N there, so that the exponents of twiddles count in
// half-bits, 4 N to the turn; one step between points of the transform is m = 4 N / 2^k of them. A point takes c = n/2 - 1
// words of an operand: a sum of 2^k products of two fits into n - 1 words.

#include "multiply/fft/fft_length.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zvp {

struct HybridRow {
    std::uint8_t k;
    std::uint16_t m;

    constexpr std::uint64_t n() const { return (std::uint64_t{m} << k) >> 7; }
    constexpr std::uint64_t coefficient_words() const { return n() / 2 - 1; }
    constexpr std::uint64_t capacity_bits() const { return 32 * coefficient_words() << k; }
};

inline constexpr std::uint64_t hybrid_max_bits = 8795824586752;

/// Rings of fewer words multiply by Karatsuba, others by the floating-point transform.
inline constexpr std::uint64_t least_fft_ring = 24;

/// The row of least capacity for a product of `bits`. Throws LimitExceededException beyond hybrid_max_bits.
HybridRow hybrid_row(std::uint64_t bits);

/// The largest ring, in bits N, of any row that products of at most `bits` take.
std::uint64_t largest_hybrid_ring_bits(std::uint64_t bits);

/// The rows that hybrid_row() takes first, and those for what is beyond, each by rising capacity.
std::span<const HybridRow> hybrid_rows();
std::span<const HybridRow> long_hybrid_rows();

/// Calls visit(row) for every row that products of `least` to `most` bits take.
template <class Visit>
void for_hybrid_rows(std::uint64_t least, std::uint64_t most, Visit&& visit) {
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()}) {
        for (const HybridRow& row : rows) {
            if (row.capacity_bits() < least) continue;
            visit(row);
            if (row.capacity_bits() >= most) return;
        }
        least = std::max(least, rows.back().capacity_bits() + 1); // shorter products don't get to the second list
    }
}

/// One size and how tasks divide it.
struct HybridSize {
    /// tds: as many tasks as the passes shall be cut for; 0 counts as 1. Tasks that no pass could give anything to do are
    /// left out, and so is their scratch.
    HybridSize(HybridRow row, std::uint32_t tds);

    unsigned k;
    std::uint64_t m;
    std::size_t n;      // words of a ring element without its top word
    std::size_t stride; // words of an element
    std::size_t c;      // words of an operand in a point
    std::uint64_t capacity_bits;
    FftLength ring; // of ring products, where n is at least least_fft_ring
    std::uint32_t tasks;
    std::uint64_t transform_bytes;
    std::uint64_t ring_scratch_bytes; // for one task
    std::uint64_t scratch_bytes;      // for all

    std::uint64_t turn() const { return 128 * std::uint64_t{n}; } // half-bits
};

/// Levels of a pass over columns of 2^k points whose elements have n words: a column and two elements more stay below
/// 1.5 MiB. k < 4 is a fatal stop.
unsigned cache_split(unsigned k, std::size_t n);

} // namespace zvp
