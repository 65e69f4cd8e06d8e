#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zvp {

/// How many there are of each digit in a run, and the run's hash: its digits as one integer modulo 2^61 - 1, the first
/// digit being the most significant. A digit is the low 4 bits of its byte. One thread fills one object.
struct DigitCounts {
    /// Radix 2 to 16; `hash` is what stands before the run. Raises InvalidParametersException for another radix.
    explicit DigitCounts(unsigned radix, std::uint64_t hash = 0);

    /// Counts n digits. In radix 10 and 16 they also continue the hash, which in other radices stays as it is.
    void add(const std::uint8_t* digits, std::size_t n);

    /// Adds the other's counts and hash. Two parts of a run are joined by scale_hash() on the first, then merge().
    void merge(const DigitCounts& other);

    /// Multiplies the hash by radix^digits_after.
    void scale_hash(std::uint64_t digits_after);

    /// The counts of the radix's digits on one line, as "{3, 0, 12}".
    std::string counts_text() const;

    std::uint8_t radix;
    std::uint8_t radix_copy; // of the table of counts
    std::array<std::uint64_t, 16> counts{};
    std::uint64_t hash;
};

} // namespace zvp
