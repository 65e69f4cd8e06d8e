#pragma once

#include "digits/reader/digit_reader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zvp {

/// The tail of a stream, as the user is shown it: from a multiple of 50 on, 51 to 100 digits, or all of up to 100.
struct LastDigits {
    static constexpr std::size_t max_digits = 100;

    /// Takes the last ones of the stream's first `total_digits` digits. Raises InvalidParametersException for a radix
    /// that is neither 10 nor 16, and what the reader raises; the record is as it was then.
    void set(std::uint64_t total_digits, DigitViewer2::BasicDigitReader& reader);

    /// "Last Decimal Digits:" or its like, by the radix.
    std::string_view label() const;

    /// The block of the validation file: the label, lines of 50 digits with the position behind each full one, an empty
    /// or broken-off last line.
    std::string file_text() const;

    /// The digits on the console in the same lines: digits in bright yellow, positions in bright green.
    void print() const;

    std::uint64_t start = 0; // offset of the first digit of `text`
    std::uint8_t radix = 0;
    char text[max_digits + 1]{};
};

} // namespace zvp
