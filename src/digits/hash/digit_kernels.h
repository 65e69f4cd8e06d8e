#pragma once
// The inner loops of the hash and the digit counts, one table for each kernel set.

#include "platform/kernel_set.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// No address needs to be aligned. A digit is the low 4 bits of its byte.
struct DigitKernels {
    platform::KernelSet set;
    std::size_t row_words;     // 32-bit words of a row
    std::size_t vector_digits; // digits of a vector

    /// The hash of `rows` rows of words, starting from 0: in [0, p).
    std::uint64_t (*hash_rows)(const std::byte* words, std::size_t rows);

    /// Continue h, in [0, p), over `vectors` * vector_digits digits.
    std::uint64_t (*hash_decimal)(std::uint64_t h, const std::uint8_t* digits, std::size_t vectors);
    std::uint64_t (*hash_hexadecimal)(std::uint64_t h, const std::uint8_t* digits, std::size_t vectors);

    /// Add to counts[d] how many of `vectors` * vector_digits digits are d, for d below 10 or for all 16.
    void (*count_decimal)(std::uint64_t* counts, const std::uint8_t* digits, std::size_t vectors);
    void (*count_all)(std::uint64_t* counts, const std::uint8_t* digits, std::size_t vectors);
};

/// The table of a set; call it only for sets that the machine supports.
const DigitKernels& digit_kernels(platform::KernelSet set);

} // namespace zvp
