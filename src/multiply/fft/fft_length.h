#pragma once
// The lengths of the floating-point transform and how many bits of an operand each point holds.
//
// A length is a number of real points, L = m * 2^k with m = 1, 3 or 5. It travels as a code whose two low bits tell the
// family: rising codes run through 2^j, 1.25 * 2^j, 1.5 * 2^j and 1.75 * 2^j (for which no transform exists).
// The bits per point are what keeps the convolution exact: fft.h tells the bound.

#include <cstdint>
#include <span>

namespace zvp {

struct FftLength {
    std::uint32_t code = 0;
    unsigned m = 1;
    unsigned k = 0;
    std::uint64_t L = 0; // real points
    unsigned bits_per_point = 0;

    constexpr std::uint64_t capacity_bits() const { return L * bits_per_point; }
};

/// The length of the least capacity for a product of `bits`. Throws LimitExceededException beyond fft_max_bits.
FftLength fft_length(std::uint64_t bits);

/// The length whose capacity is `bits` exactly, for rings modulo 2^bits + 1. Throws InvalidParametersException,
/// "Invalid Parameters", when there is none.
FftLength fft_ring_length(std::uint64_t bits);

inline constexpr std::uint64_t fft_max_bits = std::uint64_t{1} << 34;

/// Both tables, by rising capacity.
std::span<const FftLength> fft_lengths();
std::span<const FftLength> fft_ring_lengths();

} // namespace zvp
