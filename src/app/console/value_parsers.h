#pragma once
// Values that a user types: on the command line, at a prompt, in a digit file.
//
// All take the leading part of the text that they understand and ignore the rest; no digits give 0. A value
// beyond the result's type becomes the largest that it holds, so that the range check behind the parser sees
// it.

#include <cstdint>
#include <string>
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

/// Which of the parsers a typed number is for: parse_uL(), parse_sL(), parse_digits(), parse_menu_digits(), parse_bytes().
enum class NumberKind { integer, signed_integer, digits, menu_digits, bytes };

/// A number as somebody typed it. The parsers pass over what they don't understand, which would make 1 of "1e3".
struct TypedNumber {
    std::string text;   // for the parser: without blanks around it and commas between groups of three digits
    std::string unread; // what the parser wouldn't read; empty in a number that is right

    TypedNumber(std::string_view word, NumberKind kind);
};

/// "Invalid number: ", the word, and where it stops being one.
std::string invalid_number_text(std::string_view word, const TypedNumber& number);

} // namespace zvp
