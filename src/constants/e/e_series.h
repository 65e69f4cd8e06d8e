#pragma once
// Taylor's series of exp(1) and exp(-1) from 1/2! on: the terms k = 2, 3, ... of 1/k!, or (-1)^k / k!.
//
// The index is shifted: the range (a, b] holds k = a+2 .. b+1, with Q = (a+2) .. (b+1) and P the sum of the products
// (k+1) .. (b+1).

#include "series/splitting/hyperdescent.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

class SeriesETaylor final : public BinarySplitting::Hyperdescent::Series {
public:
    /// `alternating_`: the series of exp(-1).
    SeriesETaylor(bool alternating_, std::size_t precision_words);

    // Of no use to a series that is summed in one piece: InvalidParametersException ("Not Implemented").
    DoubleDouble log_remaining(std::uint64_t x) const override;
    std::size_t precision_words(std::uint64_t x) const override;

    double size_at_double(std::uint64_t x) const override;
    DoubleDouble size_at(std::uint64_t x) const override;

    void BSR_E(const MultiplyParameters& pars, BinarySplitting::ExactNumber& P, BinarySplitting::ExactNumber& Q,
               std::uint64_t a, std::uint64_t b) const override;
};

} // namespace zvp
