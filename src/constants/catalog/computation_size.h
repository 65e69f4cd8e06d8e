#pragma once
// How many digits, and the words that carry them.

#include <cstdint>

namespace zvp {

/// Every constant reaches this many decimal digits; below the minimum none is computed.
inline constexpr std::uint64_t max_decimal_digits = 1'000'000'000'000'050;
inline constexpr std::uint64_t min_decimal_digits = 100;

/// What a computation carries beyond the digits that are wanted.
inline constexpr std::uint64_t guard_decimal_digits = 100;

/// The hexadecimal digits that carry so many decimal digits: decimal_digits log(10)/log(16), rounded down; exact up to
/// 2^53 digits.
std::uint64_t hexadecimal_equivalent_of(std::uint64_t decimal_digits);

/// The decimal digits that so many hexadecimal digits tell: hexadecimal_digits log(16)/log(10), rounded up.
std::uint64_t decimal_equivalent_of(std::uint64_t hexadecimal_digits);

/// The words of 32 bits that hold so many hexadecimal digits behind the point, with the words of an integer part and of
/// errors.
constexpr std::uint64_t words_of_hexadecimal(std::uint64_t hexadecimal_digits) { return (hexadecimal_digits >> 3) + 3; }

/// The size of a computation.
///
/// Hexadecimal digits that are as many as the decimal ones carry follow these as they change; another number stays.
class ComputationSize {
public:
    static constexpr std::uint64_t default_decimal_digits = 50'000'000;

    ComputationSize() : ComputationSize(default_decimal_digits) {}

    /// That many decimal digits and as many hexadecimal ones as they carry. No limits are checked.
    explicit ComputationSize(std::uint64_t decimal_digits_);

    /// Raise InvalidParametersException outside 100 .. `maximum` decimal digits, or what that is in hexadecimal digits; 0
    /// hexadecimal digits are none.
    void set_decimal_digits(std::uint64_t digits, std::uint64_t maximum);
    void set_hexadecimal_digits(std::uint64_t digits, std::uint64_t maximum);

    /// Hexadecimal digits as many as the decimal ones carry, or none.
    void enable_hexadecimal_digits(bool enabled) { hexadecimal_digits = enabled ? hexadecimal_equivalent : 0; }

    /// Takes the size into the limits of another constant, with a warning on the console for each change.
    void normalize(std::uint64_t maximum);

    /// The size at which the constant is computed: 100 decimal digits more than the longer of the two outputs.
    ComputationSize working_size() const;

    bool operator==(const ComputationSize&) const = default;

    std::uint64_t precision_words = 0; // of 32 bits
    std::uint64_t decimal_digits = 0;
    std::uint64_t hexadecimal_equivalent = 0; // hexadecimal digits that carry the decimal ones
    std::uint64_t hexadecimal_digits = 0;     // requested; 0 is none

private:
    void assign(std::uint64_t decimal_digits_);
    void assign_hexadecimal(std::uint64_t digits);
};

} // namespace zvp
