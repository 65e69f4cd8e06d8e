#pragma once
// Values that a user types: on the command line, at a prompt, in a digit file.
//
// All take the leading part of the text that they understand and ignore the rest; no digits give 0. A value
// beyond the result's type becomes the largest that it holds, so that the range check behind the parser sees
// it.

#include <cstdint>
#include <string_view>

namespace zvp {

/// Decimal digits.
std::uint64_t parse_uL(std::string_view text);

/// Decimal digits behind an optional "-".
std::int64_t parse_sL(std::string_view text);

/// parse_uL() and parse_sL(), held to the 32-bit range.
std::uint32_t parse_u32(std::string_view text);
std::int32_t parse_s32(std::string_view text);

/// Decimal digits with commas anywhere between them.
std::uint64_t parse_commas(std::string_view text);

/// A digit count: digits and one of the suffixes k, m, b, t (either case) for 10^3, 10^6, 10^9, 10^12.
std::uint64_t parse_digits(std::string_view text);

/// A digit count as the digit menu takes it: k, m, b, t are powers of ten, K, M, G, T powers of two.
std::uint64_t parse_menu_digits(std::string_view text);

/// A byte count: digits, an optional decimal fraction, blanks, and one of K, M, G, T, P, E (either case) for
/// 2^10 .. 2^60. The fraction of a unit is rounded up to a whole byte; without a unit it is dropped.
std::uint64_t parse_bytes(std::string_view text);

} // namespace zvp
