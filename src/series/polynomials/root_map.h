#pragma once
// Where the zeros of an integer polynomial lie, found in exact arithmetic: by Sturm's chains on the real axis, by Cauchy
// indices along the edges of rectangles above it. No tolerance anywhere.

#include "series/polynomials/integer_polynomial.h"

#include <compare>
#include <map>
#include <vector>

namespace Polynomials {

/// The place of one or more zeros. A real zero has both imaginary bounds 0; a box above the real axis stands for the
/// zeros in it and for their conjugates. In each coordinate the bounds are 1 apart and the zeros lie strictly between
/// them, or the bounds are equal and the coordinate is exact.
struct RootBox {
    SimpleInt real_low, real_high;
    SimpleInt imag_low, imag_high;

    std::strong_ordering operator<=>(const RootBox& other) const = default;
    bool operator==(const RootBox& other) const = default;
};

/// Boxes with the multiplicities of the zeros in them, added up.
using RootMap = std::map<RootBox, std::size_t>;

struct SquareFreeFactor {
    IntegerPolynomial polynomial;
    std::size_t multiplicity; // from 1
};

/// Factors without repeated zeros, pairwise without common ones, whose powers multiply to p up to a constant
/// (D. R. Musser, "Multivariate polynomial factorization", 1975). A p of fewer than 3 coefficients is its own factor.
/// Raises InvalidParametersException if p is empty.
std::vector<SquareFreeFactor> square_free_factors(const IntegerPolynomial& p);

/// All zeros of p. Integer zeros, and complex ones with two integer coordinates, come out exact; so does a coordinate
/// that is the integer of a line between boxes. Raises InvalidParametersException if p is empty, or if it has complex
/// zeros and a degree above 62. Prints a warning above degree 31.
RootMap isolate_zeros(const IntegerPolynomial& p);

/// The real zeros of p alone; any degree.
RootMap isolate_real_zeros(const IntegerPolynomial& p);

} // namespace Polynomials
