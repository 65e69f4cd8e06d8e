#pragma once
// The family of most hypergeometric series. A range has three numbers: P/Q is its sum, R/Q the factor that carries a
// later sum over it,
//
//     sum over k in (a, b] of P(k)/Q(k) * product over j in (a, k) of R(j)/Q(j),
//
// and two neighbouring ranges merge to P = P_a Q_b + R_a P_b, Q = Q_a Q_b, R = R_a R_b.

#include "series/splitting/family_numbers.h"
#include "series/splitting/short_range.h"
#include "series/splitting/sized_series.h"

namespace zvp::BinarySplitting::CommonP2B3 {

enum Index : std::size_t { P, Q, R, scratch };

class Series : public SizedSeries {
public:
    /// The numbers of (a, b], b - a < leaf_terms or b - a = 1, with their residues, each from the start of its buffer.
    /// `scratch` is free for use, and so is pars.M. Neither state nor heap: tasks share the series. The base throws
    /// InvalidParametersException ("BSR_E()", "Not implemented.").
    virtual void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& R,
                       ExactNumber& scratch, std::uint64_t a, std::uint64_t b) const;
};

/// A series whose leaves are made of short integers without sign. Where it is alternating, the terms of odd index are
/// negative, and their magnitudes fall.
class BasicIntSeries : public Series {
public:
    /// Wraps the targets, calls BSR_End() and sets exponents and signs.
    void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& R, ExactNumber& scratch,
               std::uint64_t a, std::uint64_t b) const override;

    /// The magnitudes of the numbers of (a, b], with their residues. The views come with storage and capacity and keep
    /// them; no storage overlaps another. The base splits at the middle down to leaf(); its products are schoolbook
    /// products.
    virtual void BSR_End(LeafInt& P, LeafInt& Q, LeafInt& R, LeafInt& scratch0, LeafInt& scratch1, std::uint64_t a,
                         std::uint64_t b) const;

    /// The magnitudes of P(k), Q(k), R(k), none of them zero, without zero top words and with their residues. The base
    /// throws InvalidParametersException ("BSR_End()", "Not implemented.").
    virtual void leaf(LeafInt& P, LeafInt& Q, LeafInt& R, std::uint64_t k) const;

    /// The same three numbers as limbs, without residues: leaves of such terms take a quarter less time. Returns false
    /// when they don't fit, as the base always does; leaf() is called then.
    virtual bool short_leaf(ShortTerm& term, std::uint64_t k) const;
};

/// What BSR_BlockB sums: see block.h.
struct Family {
    using Series = CommonP2B3::Series;
    static constexpr std::size_t numbers = 4; // P, Q, R, scratch
    static constexpr std::size_t results = 3;
    static constexpr std::size_t fixed_slack = 0;   // 0: the series' split_slack
    static constexpr std::uint32_t exact_terms = 0; // truncated ranges of fewer terms are exact
    static constexpr bool splits_at_even = false;   // where a range may go parallel
    template <class Number>
    using Numbers = std::array<Number, numbers>;
};

} // namespace zvp::BinarySplitting::CommonP2B3
