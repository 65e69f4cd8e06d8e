#pragma once
// The sizes of a series' ranges from one function of the index: S(x), the nats of the largest result of (0, x], fixed up
// to a constant.

#include "series/splitting/series.h"

namespace zvp::BinarySplitting {

/// Doubles serve as long as differences of S keep enough of their bits; beyond, the double-double twins do.
class SizedSeries : public Series {
public:
    /// S(x) for x >= 0, without decreases.
    virtual double size_at_double(std::uint64_t x) const = 0;
    virtual DoubleDouble size_at(std::uint64_t x) const = 0;

    /// Nats of the range: S(b) - S(a). A series whose single terms have parts beside S overrides both forms.
    virtual double log_range_double(std::uint64_t a, std::uint64_t b) const;
    DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const override;

    std::size_t size_words(std::uint64_t a, std::uint64_t b) const override;
    std::uint64_t size_digits(std::uint64_t a, std::uint64_t b) const override;

    /// By bisection on S alone.
    std::uint64_t midpoint(std::uint64_t a, std::uint64_t b) const override;
};

} // namespace zvp::BinarySplitting
