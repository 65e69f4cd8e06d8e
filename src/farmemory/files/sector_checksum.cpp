#include "farmemory/files/sector_checksum.h"

#include <bit>

namespace FileIO {

namespace {

constexpr std::uint64_t modulus = 0x7FFF'FFFF; // 2^31 is 1 modulo it

/// The pair of 32-bit values of a word, the one that comes first in memory above, as a residue below 2^33 + 2^31.
std::uint64_t residue(std::uint64_t word) {
    const std::uint64_t pair = std::rotl(word, 32);
    return (pair & modulus) + (pair >> 31);
}

/// 16 * sum + residue(word), below 2^34 for a sum below 2^48.
std::uint64_t advance(std::uint64_t sum, std::uint64_t word) {
    return ((sum << 4) & modulus) + (sum >> 27) + residue(word);
}

/// Four steps over every second word, with one turn of the sum, which is what the next step waits for. The words make
/// less than 2^47, a sum below 2^48 makes less than 2^31 + 2^33.
std::uint64_t advance_by_four(std::uint64_t sum, const std::uint64_t* words) {
    const std::uint64_t upper = (residue(words[0]) << 4) + residue(words[2]);
    const std::uint64_t lower = (residue(words[4]) << 4) + residue(words[6]);
    return ((sum << 16) & modulus) + (sum >> 15) + (upper << 8) + lower;
}

} // namespace

// A sum is 0 only as long as everything was: neither a step nor a fold makes 0 of more than that. So each residue has one
// value at the end, however the steps were grouped.
std::uint32_t sector_checksum(std::uint32_t seed, const std::uint64_t* data, std::size_t words) {
    std::uint64_t even = 0, odd = seed;
    std::size_t i = 0;
    for (; i + 8 <= words; i += 8) {
        even = advance_by_four(even, data + i);
        odd = advance_by_four(odd, data + i + 1);
    }
    for (; i + 2 <= words; i += 2) {
        even = advance(even, data[i]);
        odd = advance(odd, data[i + 1]);
    }
    std::uint64_t sum = odd + (even & 0x1FFF'FFFF) * 4 + (even >> 29);
    for (int fold = 0; fold < 2; ++fold) sum = (sum & modulus) + (sum >> 31);
    return static_cast<std::uint32_t>(sum);
}

} // namespace FileIO
