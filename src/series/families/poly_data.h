#pragma once
// Series that are given by integer polynomials: what they are and how large their numbers get.
//
//     hypergeometric  sum over k >= 1 of P(k)/Q(k) * product over j < k of R(j)/Q(j)
//     hyperdescent    sum over k >= 1 of P(k) / product over j <= k of Q(j)
//     binary          sum over k >= 1 of P(k)/Q(k) * 2^(shift - b k)
//
// All is checked at construction, where the zeros of the polynomials are found; series objects of any precision then
// refer to one of these (polynomial_series.h).

#include "series/polynomials/term_sizer.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace zvp::BinarySplitting {

/// The coefficients of a polynomial, low power first.
using Coefficients = std::vector<std::int64_t>;

/// Sizes in nats of the numbers of ranges (a, b]; read-only.
class PolyData {
public:
    virtual ~PolyData() = default;

    /// ln of the largest number: the product of Q over the range, with room for one P and Q (and R) at its end.
    virtual double log_range_double(std::uint64_t a, std::uint64_t b) const = 0;

    /// ln of the product of Q up to x, fixed up to a constant.
    virtual double log_at_double(std::uint64_t x) const = 0;

    virtual DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const = 0;
    virtual DoubleDouble log_at(std::uint64_t x) const = 0;

    const Coefficients P, Q;

protected:
    PolyData(Coefficients P_, Coefficients Q_);
};

/// Sizes by one sizer, of Q.
class SizedPolyData : public PolyData {
public:
    double log_range_double(std::uint64_t a, std::uint64_t b) const override;
    double log_at_double(std::uint64_t x) const override { return Q_sizer->S_double(x); }
    DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const override;
    DoubleDouble log_at(std::uint64_t x) const override { return Q_sizer->S(x); }

    /// The degrees of all polynomials together.
    std::size_t degrees = 0;
    std::unique_ptr<const Polynomials::PolynomialTermSizer> Q_sizer;

protected:
    using PolyData::PolyData;

    /// Makes Q's sizer, with `extra` nats per term.
    void make_Q_sizer(const DoubleDouble& extra);
};

// The constructors raise InvalidParametersException, with the class's name and "()", for a P or R without coefficients, a
// Q of fewer than two, a top coefficient of 0, and what make_sizer() refuses: a Q (or R) that is zero at a positive
// integer.

class SeriesHypergeometric_PolyData final : public SizedPolyData {
public:
    /// Raises InvalidParametersException as well where the series may not converge: enforce_convergence().
    SeriesHypergeometric_PolyData(Coefficients P_, Coefficients Q_, Coefficients R_);

    /// Nats by which the term x lies below one: S_Q(x) + (nQ - 1) ln x less those of R and P.
    DoubleDouble log_term(std::uint64_t x) const;

    const Coefficients R;
    std::unique_ptr<const Polynomials::PolynomialTermSizer> R_sizer;

private:
    /// Raises InvalidParametersException unless |R(x)/Q(x)| < 0.75 for all real x >= 1, decided in exact arithmetic.
    void enforce_convergence() const;
};

class SeriesHyperdescent_PolyData final : public SizedPolyData {
public:
    SeriesHyperdescent_PolyData(Coefficients P_, Coefficients Q_);
};

class SeriesBinaryBBP_PolyData final : public SizedPolyData {
public:
    /// power: b, from 1 to 1024.
    SeriesBinaryBBP_PolyData(std::uint32_t power_, Coefficients P_, Coefficients Q_);

    const std::uint32_t power;
};

} // namespace zvp::BinarySplitting
