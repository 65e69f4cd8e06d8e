#pragma once
// Known digits of a constant, to see at once that a result is wrong.

#include "digits/reader/digit_reader.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zvp {

/// What a spot check compares with: by the count of digits behind the point at which they end, the ten digits there as a
/// number.
using DigitChecks = std::map<std::uint64_t, std::uint64_t>;

/// Reads lines of the form "position | value": decimal numbers with optional commas, blanks and tabs around them. A line
/// without both numbers, and one whose position has no ten digits in front, gives no entry. A position that comes twice is
/// told in red, and the first one stays.
DigitChecks parse_digit_checks(std::string_view text);

/// The checks of that name from the first of the folders where they are kept; nothing if there is no such file. The
/// folders are relative to that of the program's file, `program_folder`, which ends in "/".
std::optional<DigitChecks> load_digit_checks(const std::string& program_folder, const std::string& key_name);

/// Compares what the stream holds within its first `digits` digits, and prints the line that tells the outcome. Returns
/// the last position if all agree, minus the position of the first that doesn't, or 0 if nothing could be compared.
std::int64_t spot_check(const std::string& program_folder, DigitViewer2::BasicDigitReader& source, std::uint64_t digits,
                        const std::string& key_name);

} // namespace zvp
