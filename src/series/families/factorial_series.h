#pragma once
// The frame of the hand-coded series: terms that converge at a constant rate, with numbers Q that grow like factorials
// to some degree times powers of a constant.

#include "series/polynomials/term_sizer.h"
#include "series/splitting/common_p2b3.h"

#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting {

/// What tells one series from another, besides its leaves.
struct FactorialSeriesParameters {
    DoubleDouble convergence; // nats per term
    DoubleDouble constant;    // nats of the constant factor of Q per term
    DoubleDouble degree;      // of the factorials in Q
    std::uint32_t leaf_terms;
    std::uint32_t split_slack;
    bool alternating;
};

/// The terms that `precision_words` words need at so many nats each: rounded, and one more.
std::uint64_t term_count(std::size_t precision_words, const DoubleDouble& convergence);

class FactorialSeries : public CommonP2B3::BasicIntSeries {
public:
    FactorialSeries(std::size_t precision_words, const FactorialSeriesParameters& parameters);

    DoubleDouble log_remaining(std::uint64_t x) const override;
    std::size_t precision_words(std::uint64_t x) const override;
    double size_at_double(std::uint64_t x) const override { return sizer.S_double(static_cast<double>(x)); }
    DoubleDouble size_at(std::uint64_t x) const override { return sizer.S(DoubleDouble::from_integer(x)); }

    const DoubleDouble convergence;    // nats per term
    const DoubleDouble words_per_term; // the same in words

private:
    const Polynomials::FactorialSizer sizer;
};

} // namespace zvp::BinarySplitting
