#pragma once
// The roots of unity of the floating-point transform, in the order in which its kernels use them.
//
// The transform divides x^n - c step by step into factors x^(n/2) - sqrt(c) and x^(n/2) + sqrt(c). Level s of a family
// has m * 2^s such factors ("nodes"); the constant of node r * 2^s + k (r < m, k < 2^s) is e^(2 pi i f) with
//     f = (1 + 4 r) / (4 m 2^s) + reverse(k) / 2^s,    reverse: the s bits of k in opposite order.
// At level 0 of family 1 that is x^n - i, whose products are those of the real points modulo x^(2n) + 1.
// A pass over a node takes up to three levels at once and needs e^(2 pi i f/2), f/4, f/8 and f/8 + 1/8: eight doubles,
// one cache line. The last levels are done within registers, by "bases", whose lanes hold different nodes. Their roots are
// stored as vectors for short lengths; for long ones as those of the first lane, which times a constant are the others'.

#include "multiply/fft/fft_length.h"
#include "platform/kernel_set.h"

#include <array>
#include <cstddef>

namespace zvp {

/// How the kernels of a set divide a length. A base is a block of lanes * lanes complex points.
struct FftShape {
    unsigned lanes = 0;       // doubles of a vector
    unsigned levels = 0;      // binary levels from the blocks behind the family's own butterfly down to the bases
    bool short_bases = false; // the roots of a base's lanes are made when they are needed

    /// Roots of one base.
    std::size_t base_doubles() const { return lanes + std::size_t{lanes} * (short_bases ? 1 : lanes); }
};

FftShape fft_shape(platform::KernelSet set, const FftLength& length);

/// Sized first for everything that will come, placed once in memory of the caller, then read by all threads.
class FftTables {
public:
    explicit FftTables(platform::KernelSet set_ = platform::active_kernel_set()) : set(set_) {}

    /// Raises the wish to all lengths for products, or rings, of at most `bits`.
    void ensure(std::uint64_t bits);
    void ensure_rings(std::uint64_t bits);

    /// Bytes that place() takes, a multiple of 64; 0 when nothing was asked for.
    std::uint64_t bytes() const;

    /// Builds the tables at `memory` (aligned to 64 bytes) and returns the end.
    std::byte* place(std::byte* memory);

    /// The roots of one length: what its kernels walk through.
    struct Roots {
        const double* front;         // powers of the family's first root, (re, im)
        const double* const* passes; // by level: 8 doubles a node
        const double* bases;         // base_doubles() a node
        const double* lanes;         // for short bases: what a base's lanes have apart from the first
        bool short_bases;
    };

    /// A fatal stop when the tables weren't placed for this length.
    Roots roots(const FftLength& length) const;

    platform::KernelSet kernel_set() const { return set; }

private:
    static constexpr unsigned families = 3, most_levels = 32, most_lanes = 8;
    using Levels = std::array<const double*, most_levels>;

    struct Family {
        unsigned pass_levels = 0;                           // levels that are wanted: 0 .. pass_levels - 1
        std::array<unsigned, most_lanes + 1> base_levels{}; // by lanes
        const double* front = nullptr;
        Levels passes{};
        std::array<Levels, 2> bases{}; // for 8 lanes; for fewer
    };

    void want(const FftLength& length);
    template <class Visit>
    void for_each_table(Visit visit);

    platform::KernelSet set;
    std::array<Family, families> family{};
    std::array<const double*, 2> lane_tables{}; // for 8 lanes; for fewer
};

} // namespace zvp
