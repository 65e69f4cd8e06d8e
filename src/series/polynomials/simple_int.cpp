#include "series/polynomials/simple_int.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Polynomials {
namespace {

using Wide = unsigned __int128;

std::strong_ordering compare_magnitudes(const GuardedWords& a, const GuardedWords& b) {
    if (a.size() != b.size()) return a.size() <=> b.size();
    for (std::size_t i = a.size(); i-- > 0;)
        if (a[i] != b[i]) return a[i] <=> b[i];
    return std::strong_ordering::equal;
}

void add_magnitude(GuardedWords& a, const GuardedWords& b) {
    if (a.size() < b.size()) a.resize(b.size());
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < a.size() && (i < b.size() || carry); ++i) {
        const Wide sum = Wide(a[i]) + (i < b.size() ? b[i] : 0) + carry;
        a[i] = static_cast<std::uint64_t>(sum);
        carry = static_cast<std::uint64_t>(sum >> 64);
    }
    if (carry) a.push_back(carry);
}

/// target = larger - smaller; the target may be either of them. |larger| >= |smaller|.
void subtract_magnitudes(GuardedWords& target, const GuardedWords& larger, const GuardedWords& smaller) {
    const std::size_t n = larger.size(), m = smaller.size();
    target.resize(n);
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Wide difference = Wide(larger[i]) - (i < m ? smaller[i] : 0) - borrow;
        target[i] = static_cast<std::uint64_t>(difference);
        borrow = static_cast<std::uint64_t>(difference >> 64) & 1;
    }
}

/// target += a * b, where the target has room for the whole sum.
void accumulate_product(GuardedWords& target, const GuardedWords& a, const GuardedWords& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::uint64_t carry = 0;
        std::size_t k = i;
        for (const std::uint64_t word : b) {
            const Wide step = Wide(a[i]) * word + target[k] + carry;
            target[k++] = static_cast<std::uint64_t>(step);
            carry = static_cast<std::uint64_t>(step >> 64);
        }
        while (carry) {
            const Wide step = Wide(target[k]) + carry;
            target[k++] = static_cast<std::uint64_t>(step);
            carry = static_cast<std::uint64_t>(step >> 64);
        }
    }
}

} // namespace

SimpleInt::SimpleInt(std::int64_t value) : non_negative(value >= 0) {
    if (value != 0) words.push_back(value < 0 ? 0 - static_cast<std::uint64_t>(value) : value);
}

SimpleInt SimpleInt::from_unsigned(std::uint64_t value) {
    SimpleInt result;
    if (value != 0) result.words.push_back(value);
    return result;
}

std::size_t SimpleInt::bits() const { return is_zero() ? 0 : 64 * words.size() - std::countl_zero(words.back()); }

SimpleInt SimpleInt::operator-() const {
    SimpleInt result(*this);
    if (!is_zero()) result.non_negative = !non_negative;
    return result;
}

SimpleInt SimpleInt::abs() const {
    SimpleInt result(*this);
    result.non_negative = true;
    return result;
}

void SimpleInt::trim() {
    while (!words.empty() && words.back() == 0) words.pop_back();
    if (words.empty()) non_negative = true;
}

SimpleInt& SimpleInt::add(const SimpleInt& other, bool other_non_negative) {
    if (other.is_zero()) return *this;
    if (is_zero()) non_negative = other_non_negative;
    if (non_negative == other_non_negative) {
        add_magnitude(words, other.words);
    } else if (compare_magnitudes(words, other.words) >= 0) {
        subtract_magnitudes(words, words, other.words);
    } else {
        subtract_magnitudes(words, other.words, words);
        non_negative = other_non_negative;
    }
    trim();
    return *this;
}

SimpleInt operator*(const SimpleInt& a, const SimpleInt& b) {
    SimpleInt product;
    product.non_negative = a.non_negative == b.non_negative;
    product.words.resize(a.length() + b.length());
    accumulate_product(product.words, a.words, b.words);
    product.trim();
    return product;
}

void SimpleInt::add_product(const SimpleInt& a, const SimpleInt& b) {
    if (a.is_zero() || b.is_zero()) return;
    const bool product_sign = a.non_negative == b.non_negative;
    if (!is_zero() && non_negative != product_sign) {
        *this += a * b;
        return;
    }
    non_negative = product_sign;
    words.resize(std::max(length(), a.length() + b.length()) + 1);
    accumulate_product(words, a.words, b.words);
    trim();
}

void SimpleInt::sub_product(const SimpleInt& a, const SimpleInt& b) {
    // The sign of a sum turned round twice leaves the difference.
    if (!is_zero()) non_negative = !non_negative;
    add_product(a, b);
    if (!is_zero()) non_negative = !non_negative;
}

void SimpleInt::shift_left_1() {
    std::uint64_t carry = 0;
    for (std::uint64_t& word : words) {
        const std::uint64_t out = word >> 63;
        word = word << 1 | carry;
        carry = out;
    }
    if (carry) words.push_back(carry);
}

void SimpleInt::shift_right_1() {
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = words[i] >> 1 | (i + 1 < words.size() ? words[i + 1] << 63 : 0);
    trim();
}

std::strong_ordering SimpleInt::operator<=>(const SimpleInt& other) const {
    if (non_negative != other.non_negative) return non_negative <=> other.non_negative;
    return non_negative ? compare_magnitudes(words, other.words) : compare_magnitudes(other.words, words);
}

SimpleInt power(const SimpleInt& base, unsigned exponent) {
    SimpleInt result = 1;
    for (unsigned i = 0; i < exponent; ++i) result = result * base;
    return result;
}

std::string SimpleInt::to_string() const {
    if (is_zero()) return "0";
    const SimpleInt ten = 10;
    std::string digits;
    for (SimpleInt rest = abs(); !rest.is_zero();) {
        DivMod step = divmod(rest, ten);
        digits += static_cast<char>('0' + step.remainder.to_u64());
        rest = std::move(step.quotient);
    }
    if (!non_negative) digits += '-';
    return {digits.rbegin(), digits.rend()};
}

zvp::DoubleDouble SimpleInt::to_double_double() const {
    zvp::DoubleDouble value;
    for (std::size_t i = words.size(); i-- > 0;)
        value = value * zvp::DoubleDouble(0x1p64) + zvp::DoubleDouble::from_integer(words[i]);
    return non_negative ? value : -value;
}

} // namespace Polynomials
