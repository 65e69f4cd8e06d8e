#include "app/failure/exceptions.h"
#include "series/polynomials/simple_int.h"

#include <bit>
#include <utility>

namespace Polynomials {
namespace {

using Wide = unsigned __int128;

/// The magnitude shifted left by less than 64 bits, with one word more.
GuardedWords shifted_left(const GuardedWords& a, int shift) {
    GuardedWords result(a.size() + 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        result[i] |= a[i] << shift;
        if (shift) result[i + 1] = a[i] >> (64 - shift);
    }
    return result;
}

/// rest -= digit * divisor; returns true if that was one divisor too much.
bool subtract_multiple(std::uint64_t* rest, const GuardedWords& divisor, std::size_t n, std::uint64_t digit) {
    std::uint64_t carry = 0, borrow = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Wide product = Wide(digit) * divisor[i] + carry;
        carry = static_cast<std::uint64_t>(product >> 64);
        const Wide difference = Wide(rest[i]) - static_cast<std::uint64_t>(product) - borrow;
        rest[i] = static_cast<std::uint64_t>(difference);
        borrow = static_cast<std::uint64_t>(difference >> 64) & 1;
    }
    const Wide difference = Wide(rest[n]) - carry - borrow;
    rest[n] = static_cast<std::uint64_t>(difference);
    return difference >> 64;
}

void add_back(std::uint64_t* rest, const GuardedWords& divisor, std::size_t n) {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const Wide sum = Wide(rest[i]) + divisor[i] + carry;
        rest[i] = static_cast<std::uint64_t>(sum);
        carry = static_cast<std::uint64_t>(sum >> 64);
    }
    rest[n] += carry;
}

/// The quotient digit from the top three words of the rest and the top two of the normalised divisor: right, or, with
/// a probability near 2^-64, one too large.
std::uint64_t estimated_digit(const std::uint64_t* rest, const GuardedWords& divisor, std::size_t n) {
    const std::uint64_t top = divisor[n - 1];
    const Wide high = Wide(rest[n]) << 64 | rest[n - 1];
    Wide digit = rest[n] >= top ? ~std::uint64_t{0} : high / top;
    Wide remainder = high - digit * top;
    while (remainder >> 64 == 0 && digit * divisor[n - 2] > (remainder << 64 | rest[n - 2])) {
        --digit;
        remainder += top;
    }
    return static_cast<std::uint64_t>(digit);
}

} // namespace

DivMod::DivMod(const SimpleInt& a, const SimpleInt& b) {
    if (b.is_zero()) throw zvp::ArithmeticException("SimpleInt::divmod()", "Divide by zero.");
    if (a.length() < b.length()) {
        remainder = a;
        return;
    }
    if (b.length() == 1)
        divide_by_word(a, b.words[0]);
    else
        divide_long(a, b);
    quotient.non_negative = a.non_negative == b.non_negative;
    remainder.non_negative = a.non_negative;
    quotient.trim();
    remainder.trim();
}

void DivMod::divide_by_word(const SimpleInt& a, std::uint64_t divisor) {
    quotient.words.resize(a.length());
    std::uint64_t rest = 0;
    for (std::size_t i = a.length(); i-- > 0;) {
        const Wide value = Wide(rest) << 64 | a.words[i];
        quotient.words[i] = static_cast<std::uint64_t>(value / divisor);
        rest = static_cast<std::uint64_t>(value % divisor);
    }
    remainder.words.assign(1, rest);
}

void DivMod::divide_long(const SimpleInt& a, const SimpleInt& b) {
    const std::size_t n = b.length();
    const int shift = std::countl_zero(b.words.back());
    GuardedWords rest = shifted_left(a.words, shift);
    const GuardedWords divisor = shifted_left(b.words, shift);
    quotient.words.resize(a.length() - n + 1);
    for (std::size_t i = quotient.words.size(); i-- > 0;) {
        std::uint64_t digit = estimated_digit(&rest[i], divisor, n);
        if (subtract_multiple(&rest[i], divisor, n, digit)) {
            --digit;
            add_back(&rest[i], divisor, n);
        }
        quotient.words[i] = digit;
    }
    rest.resize(n);
    if (shift)
        for (std::size_t i = 0; i < n; ++i) rest[i] = rest[i] >> shift | (i + 1 < n ? rest[i + 1] << (64 - shift) : 0);
    remainder.words = std::move(rest);
}

SimpleInt gcd(SimpleInt a, SimpleInt b) {
    while (!b.is_zero()) {
        SimpleInt rest = divmod(a, b).remainder;
        a = std::move(b);
        b = std::move(rest);
    }
    return a.abs();
}

} // namespace Polynomials
