#pragma once
// Fixed-point fractions.

#include <cstdint>
#include <vector>

namespace BBPv2 {

/// A number in [0, 1) with 32-bit words, the most significant first. All arithmetic is modulo 1.
class FractionFloat {
public:
    /// Zero. Fewer than 2 words raise InvalidParametersException.
    explicit FractionFloat(std::size_t length);

    std::size_t length() const { return words.size(); }

    /// Operands of another length raise InvalidParametersException "Lengths do not match.".
    FractionFloat& operator+=(const FractionFloat& other);
    FractionFloat& operator-=(const FractionFloat& other);

    /// Shifts right by any number of bits; zeros come in.
    FractionFloat& operator>>=(std::uint64_t bits);

    bool operator==(const FractionFloat& other) const;

    std::vector<std::uint32_t> words;

private:
    void check_length(const FractionFloat& other) const;
};

} // namespace BBPv2
