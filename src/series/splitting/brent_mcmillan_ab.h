#pragma once
// The family of the two series behind Euler's constant. A range (a, b] has four numbers N0 .. N3:
//
//     N0/N1   = sum of 1/k,
//     N2/N1^2 = sum of t(k),
//     N3/N1^3 = sum of t(k) * (1/(a+1) + ... + 1/k)
//
// over k in (a, b], with t(k) the leaves' N2(k)/N1^2 carried over the terms before them: N1 = (a+1) .. b. The numbers of
// neighbouring ranges, a0 .. a3 and b0 .. b3, merge to
//
//     N0 = a0 b1 + b0 a1,  N1 = a1 b1,  N2 = a2 b1^2 + b2,  N3 = a3 b1^3 + a0 b1 b2 + a1 b3.
//
// N3 is the longest: the series' S(x) is its size.

#include "series/splitting/family_numbers.h"
#include "series/splitting/sized_series.h"

namespace zvp::BinarySplitting::BrentMcMillanAB {

enum Index : std::size_t { N0, N1, N2, N3, scratch0, scratch1, scratch2 };

template <class Number>
using NumbersOf = std::array<Number, 7>;

class Series : public SizedSeries {
public:
    /// N0 .. N3 of (a, b], b - a < leaf_terms or b - a = 1, with their residues, each from the start of its buffer. The
    /// scratch numbers are free for use, and so is pars.M. Neither state nor heap: tasks share the series. The base
    /// throws InvalidParametersException ("BSR_E()", "Not implemented.").
    virtual void BSR_E(const MultiplyParameters& pars, NumbersOf<ExactNumber>& numbers, std::uint64_t a,
                       std::uint64_t b) const;
};

/// What BSR_BlockB sums: see block.h.
struct Family {
    using Series = BrentMcMillanAB::Series;
    static constexpr std::size_t numbers = 7; // N0 .. N3, three scratch numbers
    static constexpr std::size_t results = 4;
    static constexpr std::size_t fixed_slack = 42;  // in place of the series' split_slack
    static constexpr std::uint32_t exact_terms = 8; // truncated ranges of fewer terms are exact
    static constexpr bool splits_at_even = true;    // where a range may go parallel
    template <class Number>
    using Numbers = NumbersOf<Number>;
};

} // namespace zvp::BinarySplitting::BrentMcMillanAB
