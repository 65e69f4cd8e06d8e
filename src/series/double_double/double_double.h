#pragma once
// Numbers of twice the precision of a double: an unevaluated sum hi + lo with |lo| <= ulp(hi) / 2.
//
// Sums and products follow T. J. Dekker, "A floating-point technique for extending the available precision" (1971), and
// D. E. Knuth's two-term sum; the sum of two numbers keeps both low parts apart (Briggs and Kahan's form), so that it
// loses nothing when the high parts cancel. Relative errors, for results that neither overflow nor come near the
// subnormal range: sum 3 * 2^-106, product 7 * 2^-106, quotient 15 * 2^-106 (M. Joldes, J.-M. Muller, V. Popescu,
// "Tight and rigorous error bounds for basic building blocks of double-word arithmetic", 2017). Operands of products
// and quotients stay below 2^996 in magnitude, where the splitting would overflow.

#include <compare>
#include <cstdint>
#include <string_view>

namespace zvp {

struct DoubleDouble {
    double hi = 0;
    double lo = 0;

    constexpr DoubleDouble() = default;
    constexpr DoubleDouble(double value) : hi(value) {}
    constexpr DoubleDouble(double hi_, double lo_) : hi(hi_), lo(lo_) {}

    /// Exact.
    static constexpr DoubleDouble from_integer(std::uint64_t value);
    static constexpr DoubleDouble from_signed(std::int64_t value);

    /// Reads digits with at most one point, and no sign: "0.6931471805599453094172321214581765680755". The error is
    /// below 2^-104 of the value; decimals behind the 37th count as zeros. Raises InvalidParametersException if a
    /// character is anything else, if there is no digit, or if the value is 2^53 or more.
    static DoubleDouble parse(std::string_view text);

    constexpr DoubleDouble operator-() const { return {-hi, -lo}; }

    /// By the high parts; by the low parts on a tie.
    constexpr std::partial_ordering operator<=>(const DoubleDouble& other) const {
        return hi == other.hi ? lo <=> other.lo : hi <=> other.hi;
    }
    constexpr bool operator==(const DoubleDouble& other) const = default;
};

/// a + b exactly, for any a and b.
constexpr DoubleDouble two_sum(double a, double b) {
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// a + b exactly, where |a| >= |b| or a is 0.
constexpr DoubleDouble quick_two_sum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// a * b exactly: each factor is split in halves of 26 bits, whose products fit a double.
constexpr DoubleDouble two_product(double a, double b) {
    constexpr double splitter = 134217729.0; // 2^27 + 1
    const double a_wide = splitter * a, b_wide = splitter * b;
    const double a_hi = a_wide - (a_wide - a), b_hi = b_wide - (b_wide - b);
    const double a_lo = a - a_hi, b_lo = b - b_hi;
    const double product = a * b;
    return {product, ((a_hi * b_hi - product) + a_hi * b_lo + a_lo * b_hi) + a_lo * b_lo};
}

constexpr DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble high = two_sum(a.hi, b.hi);
    const DoubleDouble low = two_sum(a.lo, b.lo);
    const DoubleDouble sum = quick_two_sum(high.hi, high.lo + low.hi);
    return quick_two_sum(sum.hi, sum.lo + low.lo);
}

constexpr DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b) { return a + (-b); }

constexpr DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble product = two_product(a.hi, b.hi);
    return quick_two_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

/// By long division: two quotient digits of 53 bits and a third that rounds.
constexpr DoubleDouble operator/(const DoubleDouble& a, const DoubleDouble& b) {
    const double first = a.hi / b.hi;
    DoubleDouble rest = a - b * DoubleDouble(first);
    const double second = rest.hi / b.hi;
    rest = rest - b * DoubleDouble(second);
    return quick_two_sum(first, second) + DoubleDouble(rest.hi / b.hi);
}

constexpr DoubleDouble& operator+=(DoubleDouble& a, const DoubleDouble& b) { return a = a + b; }
constexpr DoubleDouble& operator-=(DoubleDouble& a, const DoubleDouble& b) { return a = a - b; }
constexpr DoubleDouble& operator*=(DoubleDouble& a, const DoubleDouble& b) { return a = a * b; }

constexpr DoubleDouble abs(const DoubleDouble& a) { return a < DoubleDouble() ? -a : a; }

/// Each half truncated towards zero, then summed: how sizes become whole words and digits. One above the floor where
/// the value lies just below an integer that `hi` holds. |a| must be below 2^63.
constexpr std::int64_t truncated_sum(const DoubleDouble& a) {
    return static_cast<std::int64_t>(a.hi) + static_cast<std::int64_t>(a.lo);
}

/// The natural logarithm of a > 0, to a relative error of 2^-100.
DoubleDouble log(const DoubleDouble& a);

/// The angle of the point (x, y), in (-pi, pi], to 2^-100 of its magnitude. (0, 0) gives 0. |x| and |y| lie between
/// 2^-400 and 2^400, or are 0.
DoubleDouble atan2(const DoubleDouble& y, const DoubleDouble& x);

constexpr DoubleDouble DoubleDouble::from_integer(std::uint64_t value) {
    // Halves of 32 bits: the whole, rounded to a double, could be 2^64 and not convert back.
    return two_sum(static_cast<double>(value >> 32) * 4294967296.0, static_cast<double>(value & 0xFFFF'FFFF));
}

constexpr DoubleDouble DoubleDouble::from_signed(std::int64_t value) {
    const DoubleDouble magnitude = from_integer(value < 0 ? 0 - static_cast<std::uint64_t>(value) : value);
    return value < 0 ? -magnitude : magnitude;
}

} // namespace zvp
