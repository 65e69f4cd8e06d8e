#pragma once
// The checksum of a sector.

#include <cstddef>
#include <cstdint>

namespace FileIO {

/// Stands for a sector that has no checksum yet; every checksum is below 2^31.
inline constexpr std::uint32_t no_checksum = 0x8000'0000;

/// A residue modulo 2^31 - 1 of the polynomial in 16 whose coefficients are the sector's pairs of 32-bit values: the pairs
/// at even places in one lane, the others in a second one that starts at `seed`. Data of zeros with the seed 0 give 0,
/// all others a value from 1 to 2^31 - 1.
///
/// data: `words` 64-bit words in the machine's (little-endian) order; `words` is even.
std::uint32_t sector_checksum(std::uint32_t seed, const std::uint64_t* data, std::size_t words);

} // namespace FileIO
