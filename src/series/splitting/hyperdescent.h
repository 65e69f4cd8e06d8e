#pragma once
// The family of series whose terms are 1 or a polynomial over a growing product. A range has two numbers; its sum
//
//     sum over k in (a, b] of P(k) / product over j in (a, k] of Q(j)
//
// is P/Q, and two neighbouring ranges merge to P = P_a Q_b + P_b, Q = Q_a Q_b.

#include "series/splitting/family_numbers.h"
#include "series/splitting/sized_series.h"

namespace zvp::BinarySplitting::Hyperdescent {

enum Index : std::size_t { P, Q };

class Series : public SizedSeries {
public:
    /// The numbers of (a, b], b - a < leaf_terms or b - a = 1, with their residues, each from the start of its buffer.
    /// pars.M is free for use. Neither state nor heap: tasks share the series. The base throws
    /// InvalidParametersException ("BSR_E()", "Not implemented.").
    virtual void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, std::uint64_t a,
                       std::uint64_t b) const;
};

/// What BSR_BlockB sums: see block.h.
struct Family {
    using Series = Hyperdescent::Series;
    static constexpr std::size_t numbers = 2; // P, Q
    static constexpr std::size_t results = 2;
    static constexpr std::size_t fixed_slack = 0;   // 0: the series' split_slack
    static constexpr std::uint32_t exact_terms = 0; // truncated ranges of fewer terms are exact
    static constexpr bool splits_at_even = false;   // where a range may go parallel
    template <class Number>
    using Numbers = std::array<Number, numbers>;
};

} // namespace zvp::BinarySplitting::Hyperdescent
