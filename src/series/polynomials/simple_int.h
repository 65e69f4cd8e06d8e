#pragma once
// Exact integers for the analysis of polynomials: coefficients and bounds of tens to thousands of bits, at plan time
// only. Schoolbook arithmetic throughout; big numbers of a computation are another class.

#include "series/double_double/double_double.h"
#include "series/polynomials/guarded_words.h"

#include <compare>
#include <cstdint>
#include <string>

namespace Polynomials {

/// Sign and magnitude. Zero has no words and the sign of a non-negative number.
class SimpleInt {
public:
    SimpleInt() = default;
    SimpleInt(std::int64_t value);
    static SimpleInt from_unsigned(std::uint64_t value);

    bool is_zero() const { return words.empty(); }
    int sign() const { return is_zero() ? 0 : non_negative ? 1 : -1; }
    std::size_t length() const { return words.size(); } ///< in 64-bit words
    std::size_t bits() const;                           ///< of the magnitude; 0 for zero
    bool fits_u64() const { return sign() >= 0 && length() <= 1; }
    std::uint64_t to_u64() const { return is_zero() ? 0 : words[0]; } ///< the lowest word of the magnitude

    SimpleInt operator-() const;
    SimpleInt abs() const;

    SimpleInt& operator+=(const SimpleInt& other) { return add(other, other.non_negative); }
    SimpleInt& operator-=(const SimpleInt& other) { return add(other, !other.non_negative); }

    friend SimpleInt operator+(SimpleInt a, const SimpleInt& b) { return a += b; }
    friend SimpleInt operator-(SimpleInt a, const SimpleInt& b) { return a -= b; }
    friend SimpleInt operator*(const SimpleInt& a, const SimpleInt& b);

    /// this += a * b, or -=; neither factor is this number.
    void add_product(const SimpleInt& a, const SimpleInt& b);
    void sub_product(const SimpleInt& a, const SimpleInt& b);

    /// Doubles; halves the magnitude, cutting its lowest bit: -3 becomes -1.
    void shift_left_1();
    void shift_right_1();

    std::strong_ordering operator<=>(const SimpleInt& other) const;
    bool operator==(const SimpleInt& other) const = default;

    std::string to_string() const; ///< decimal

    /// The value to double-double precision, its words accumulated from the top. Below 2^900.
    zvp::DoubleDouble to_double_double() const;

private:
    friend struct DivMod;

    SimpleInt& add(const SimpleInt& other, bool other_non_negative);
    void trim();

    bool non_negative = true;
    GuardedWords words; // low word first, the top word not zero
};

/// a = quotient * b + remainder, the quotient truncated towards zero, the remainder with the sign of a and a magnitude
/// below b's. Knuth, TAOCP 2, 4.3.1, algorithm D. Raises ArithmeticException if b is 0.
struct DivMod {
    DivMod(const SimpleInt& a, const SimpleInt& b);

    SimpleInt quotient;
    SimpleInt remainder;

private:
    void divide_by_word(const SimpleInt& a, std::uint64_t divisor);
    void divide_long(const SimpleInt& a, const SimpleInt& b);
};

inline DivMod divmod(const SimpleInt& a, const SimpleInt& b) { return DivMod(a, b); }

/// The greatest common divisor, not negative; gcd(0, 0) is 0.
SimpleInt gcd(SimpleInt a, SimpleInt b);

SimpleInt power(const SimpleInt& base, unsigned exponent);

/// A point of the complex plane with integer coordinates.
struct ComplexInt {
    SimpleInt real;
    SimpleInt imag;

    bool operator==(const ComplexInt& other) const = default;
};

} // namespace Polynomials
