#include "bbp/fraction_float.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace BBPv2 {

FractionFloat::FractionFloat(std::size_t length) : words(length) {
    if (length < 2) throw zvp::InvalidParametersException("FractionFloat", "Length must be at least 2.");
}

void FractionFloat::check_length(const FractionFloat& other) const {
    if (length() != other.length()) throw zvp::InvalidParametersException("FractionFloat", "Lengths do not match.");
}

FractionFloat& FractionFloat::operator+=(const FractionFloat& other) {
    check_length(other);
    std::uint64_t carry = 0;
    for (std::size_t i = words.size(); i-- > 0;) {
        carry += std::uint64_t{words[i]} + other.words[i];
        words[i] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
    return *this;
}

FractionFloat& FractionFloat::operator-=(const FractionFloat& other) {
    check_length(other);
    std::uint64_t borrow = 0;
    for (std::size_t i = words.size(); i-- > 0;) {
        const std::uint64_t difference = std::uint64_t{words[i]} - other.words[i] - borrow;
        words[i] = static_cast<std::uint32_t>(difference);
        borrow = difference >> 63;
    }
    return *this;
}

FractionFloat& FractionFloat::operator>>=(std::uint64_t bits) {
    const auto skip = static_cast<std::size_t>(std::min<std::uint64_t>(bits / 32, words.size()));
    const unsigned shift = bits % 32;
    for (std::size_t i = words.size(); i-- > 0;) {
        const std::uint64_t low = i >= skip ? words[i - skip] : 0;
        const std::uint64_t high = i >= skip + 1 ? words[i - skip - 1] : 0;
        words[i] = static_cast<std::uint32_t>((high << 32 | low) >> shift);
    }
    return *this;
}

bool FractionFloat::operator==(const FractionFloat& other) const {
    check_length(other);
    return words == other.words;
}

} // namespace BBPv2
