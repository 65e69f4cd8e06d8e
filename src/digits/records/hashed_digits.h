#pragma once

#include "digits/reader/digit_reader.h"

#include <cstdint>
#include <string>

namespace zvp {

/// The SHA-256 of digits that were computed and not written, so that a later, longer run can confirm them.
struct HashedDigits {
    /// Reads digits [start, start + length) and hashes their characters (0 to 9, a to f). Raises
    /// InvalidParametersException for a radix that is neither 10 nor 16, and what the reader raises.
    HashedDigits(DigitViewer2::BasicDigitReader& reader, std::uint64_t start, std::uint64_t length);

    /// "SHA256-dec(101 - 1,050): " and the digest; positions count from 1.
    std::string report_text() const;

    std::uint64_t start;
    std::uint64_t end; // offset behind the last digit
    std::uint64_t length;
    std::string sha256; // lower-case hexadecimal
};

} // namespace zvp
