#pragma once
// The family of series of fractions that stand alone, each times a power of two that lies in the exponent of its P. A
// range has two numbers; its sum
//
//     sum over k in (a, b] of P(k)/Q(k)
//
// is P/Q, and two neighbouring ranges merge to P = P_a Q_b + P_b Q_a, Q = Q_a Q_b.

#include "series/splitting/family_numbers.h"
#include "series/splitting/sized_series.h"

namespace zvp::BinarySplitting::BinaryBBP {

enum Index : std::size_t { P, Q, scratch };

class Series : public SizedSeries {
public:
    /// The numbers of (a, b], b - a < leaf_terms or b - a = 1, with their residues, each from the start of its buffer.
    /// `scratch` is free for use, and so is pars.M. Neither state nor heap: tasks share the series. The base throws
    /// InvalidParametersException ("BSR_E()", "Not implemented.").
    virtual void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& scratch,
                       std::uint64_t a, std::uint64_t b) const;
};

/// What BSR_BlockB sums: see block.h.
struct Family {
    using Series = BinaryBBP::Series;
    static constexpr std::size_t numbers = 3; // P, Q, scratch
    static constexpr std::size_t results = 2;
    static constexpr std::size_t fixed_slack = 0;   // 0: the series' split_slack
    static constexpr std::uint32_t exact_terms = 0; // truncated ranges of fewer terms are exact
    static constexpr bool splits_at_even = false;   // where a range may go parallel
    template <class Number>
    using Numbers = std::array<Number, numbers>;
};

} // namespace zvp::BinarySplitting::BinaryBBP
