#pragma once
// Series objects over polynomials, one for each family, made for a precision. They refer to their data, which must stay.

#include "series/families/poly_data.h"
#include "series/splitting/binary_bbp.h"
#include "series/splitting/common_p2b3.h"
#include "series/splitting/hyperdescent.h"

#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting {

/// The sizes of any of the three.
template <class FamilySeries>
class PolynomialSeries : public FamilySeries {
public:
    double size_at_double(std::uint64_t x) const override { return sizes.log_at_double(x); }
    DoubleDouble size_at(std::uint64_t x) const override { return sizes.log_at(x); }
    double log_range_double(std::uint64_t a, std::uint64_t b) const override { return sizes.log_range_double(a, b); }
    DoubleDouble log_range(std::uint64_t a, std::uint64_t b) const override { return sizes.log_range(a, b); }

protected:
    explicit PolynomialSeries(const PolyData& data) : sizes(data) {}

private:
    const PolyData& sizes;
};

// Where `alternating`, the terms of even index have the other sign. Leaves hold one term; they raise
// BufferTooSmallException with the name of the class and "_BSR_E()".

class SeriesHypergeometric final : public PolynomialSeries<CommonP2B3::Series> {
public:
    SeriesHypergeometric(const SeriesHypergeometric_PolyData& data_, bool alternating_, std::size_t precision_words);

    DoubleDouble log_remaining(std::uint64_t x) const override;
    std::size_t precision_words(std::uint64_t x) const override;
    void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& R, ExactNumber& scratch,
               std::uint64_t a, std::uint64_t b) const override;

    const SeriesHypergeometric_PolyData& data;
    const DoubleDouble target; // nats that the first dropped term lies below one
};

/// Summed in one piece: log_remaining() and precision_words() raise InvalidParametersException ("Not Implemented").
class SeriesHyperdescent final : public PolynomialSeries<Hyperdescent::Series> {
public:
    SeriesHyperdescent(const SeriesHyperdescent_PolyData& data_, bool alternating_, std::size_t precision_words);

    DoubleDouble log_remaining(std::uint64_t x) const override;
    std::size_t precision_words(std::uint64_t x) const override;
    void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, std::uint64_t a,
               std::uint64_t b) const override;

    const SeriesHyperdescent_PolyData& data;
};

class SeriesBinaryBBP final : public PolynomialSeries<BinaryBBP::Series> {
public:
    /// shift: the power of two that the terms are multiplied by.
    SeriesBinaryBBP(const SeriesBinaryBBP_PolyData& data_, std::int64_t shift_, bool alternating_,
                    std::size_t precision_words);

    DoubleDouble log_remaining(std::uint64_t x) const override;
    std::size_t precision_words(std::uint64_t x) const override;
    void BSR_E(const MultiplyParameters& pars, ExactNumber& P, ExactNumber& Q, ExactNumber& scratch, std::uint64_t a,
               std::uint64_t b) const override;

    const SeriesBinaryBBP_PolyData& data;
    const std::int64_t shift;
    const std::size_t words; // of precision
};

} // namespace zvp::BinarySplitting
