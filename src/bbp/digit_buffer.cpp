#include "bbp/digit_buffer.h"

#include <algorithm>

namespace BBPv2 {

namespace {

constexpr std::int64_t digit_base = std::int64_t{1} << digit_bits;

} // namespace

DigitBuffer::DigitBuffer(std::size_t words, std::size_t lanes_)
    : n(digit_count(words)), lanes(lanes_), blocks((n * lanes + 7) / 8) {}

std::size_t DigitBuffer::digit_count(std::size_t words) {
    return std::max<std::size_t>(2, (32 * words + digit_bits - 1) / digit_bits);
}

void DigitBuffer::normalize() {
    std::int64_t* sums = data();
    for (std::size_t i = n * lanes; i-- > 0;) {
        const std::int64_t carry = sums[i] >> digit_bits; // rounds down, so that what stays is in [0, 2^48)
        sums[i] -= carry * digit_base;
        if (i >= lanes) sums[i - lanes] += carry;
    }
}

void DigitBuffer::add_to(FractionFloat& out) {
    normalize();
    std::vector<std::uint64_t> digits(n);
    std::int64_t carry = 0;
    for (std::size_t j = n; j-- > 0;) {
        for (std::size_t lane = 0; lane < lanes; ++lane) carry += data()[j * lanes + lane];
        digits[j] = static_cast<std::uint64_t>(carry & (digit_base - 1));
        carry >>= digit_bits;
    }
    FractionFloat sum(out.length());
    for (std::size_t word = 0; word < sum.length(); ++word) {
        // Bits [bit, bit + 32) lie in one digit or in two neighbours.
        const std::size_t bit = 32 * word;
        const std::size_t j = bit / digit_bits;
        const std::size_t inside = bit % digit_bits;
        const std::uint64_t next = j + 1 < n ? digits[j + 1] : 0;
        const std::uint64_t window = inside <= digit_bits - 32 ? digits[j] >> (digit_bits - 32 - inside)
                                                               : digits[j] << (inside + 32 - digit_bits)
                                                                     | next >> (2 * digit_bits - 32 - inside);
        sum.words[word] = static_cast<std::uint32_t>(window);
    }
    out += sum;
}

} // namespace BBPv2
