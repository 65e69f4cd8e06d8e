#pragma once
// Two hypergeometric series for 1/Pi, as sums over k from 1 of P(k)/Q(k) times the products of R(j)/Q(j), j < k.
//
// D. V. Chudnovsky, G. V. Chudnovsky, "Approximations and complex multiplication according to Ramanujan" (1988):
//     sqrt(10005) / Pi * 4270934400 = 13591409 + the sum, with alternating signs,
//     R = (2k-1)(6k-5)(6k-1), P = R * (545140134 k + 13591409), Q = k^3 * 640320^3 / 24.
// S. Ramanujan, "Modular equations and approximations to pi" (1914):
//     9801 / (2 sqrt(2) Pi) = 1103 + the sum, R = (2k-1)(4k-3)(4k-1), P = R * (26390 k + 1103), Q = k^3 * 396^4 / 8.

#include "series/families/factorial_series.h"

namespace zvp {

class PiChudnovskySeries final : public BinarySplitting::FactorialSeries {
public:
    explicit PiChudnovskySeries(std::size_t precision_words);
    void leaf(BinarySplitting::LeafInt& P, BinarySplitting::LeafInt& Q, BinarySplitting::LeafInt& R,
              std::uint64_t k) const override;
    bool short_leaf(BinarySplitting::CommonP2B3::ShortTerm& term, std::uint64_t k) const override;
};

class PiRamanujanSeries final : public BinarySplitting::FactorialSeries {
public:
    explicit PiRamanujanSeries(std::size_t precision_words);
    void leaf(BinarySplitting::LeafInt& P, BinarySplitting::LeafInt& Q, BinarySplitting::LeafInt& R,
              std::uint64_t k) const override;
    bool short_leaf(BinarySplitting::CommonP2B3::ShortTerm& term, std::uint64_t k) const override;
};

} // namespace zvp
