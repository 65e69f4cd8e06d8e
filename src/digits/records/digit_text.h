#pragma once

#include "digits/reader/digit_reader.h"

#include <cstdint>
#include <string>

namespace zvp {

/// Digits [start, start + count) of the reader as characters: 0 to 9 and a to f. Takes a buffer of the size that the
/// reader asks for, but at most 1 GiB, for the time of the call. One thread.
std::string read_digit_text(DigitViewer2::BasicDigitReader& reader, std::uint64_t start, std::uint64_t count);

} // namespace zvp
